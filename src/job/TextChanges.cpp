#include "TextChanges.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#include "ExpressionText.h"

namespace tovo::job {

CString TokenName(int code)
{
    CString text;
    CFmlaExprBase::GetTokenString(code, text);
    return text;
}

ChangedText::ChangedText(const CFmlaExprBase& expression, std::span<const TextChange> changes)
    : m_Source(expression.GetTextStr())
{
    for (const TextChange& change : changes) {
        CopyUpTo(expression, change.begin);
        Skip(expression, change.end);
        if (change.reference)
            AddReference(u" " + Wide(change.reference->name) + u" ",
                         static_cast<int>(change.reference->kind));
        else
            m_Text += change.text;
    }
    CopyUpTo(expression, m_Source.GetLength());
}

std::string ChangedText::Encoded() const
{
    CFmlaExprBase result;
    result.SetExpr(m_Text, m_Words);
    return result.GetEncodedString().ToUtf8();
}

void ChangedText::CopyUpTo(const CFmlaExprBase& expression, int end)
{
    const auto copyLiteral = [&](int to) {
        if (to > m_Copied)
            m_Text += m_Source.Mid(m_Copied, to - m_Copied);
        m_Copied = std::max(m_Copied, to);
    };
    while (m_NextReference < expression.NumVars() && expression.VarPos(m_NextReference) < end) {
        copyLiteral(expression.VarPos(m_NextReference));
        AddReference(expression.VarText(m_NextReference), expression.VarType(m_NextReference));
        m_Copied = std::max(m_Copied, expression.VarEndPos(m_NextReference++));
    }
    copyLiteral(end);
}

void ChangedText::Skip(const CFmlaExprBase& expression, int end)
{
    while (m_NextReference < expression.NumVars() && expression.VarPos(m_NextReference) < end)
        ++m_NextReference;
    m_Copied = std::max(m_Copied, end);
}

void ChangedText::AddReference(const CString& text, int kind)
{
    for (const int word : {m_Text.GetLength(), text.GetLength(), kind}) {
        m_Fits = m_Fits && word <= std::numeric_limits<std::uint16_t>::max();
        m_Words.Add(static_cast<WORD>(word));
    }
    m_Text += text;
}

} // namespace tovo::job
