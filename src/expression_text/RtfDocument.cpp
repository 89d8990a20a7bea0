#include <TovoFormula/RtfDocument.h>

#include <algorithm>
#include <cstdint>
#include <string>

#include "RtfRuns.h"

using namespace tovo::detail;

namespace {

// One character stands in for each number that a reader does not know.
constexpr const char16_t* kHead = u"{\\rtf1\\ansi\\uc1\\deff0";
constexpr const char16_t* kFontTableStart = u"{\\fonttbl{\\f0\\fnil ";
constexpr const char16_t* kFontTableEnd = u";}}";
constexpr const char16_t* kRunStart = u"\\plain\\f0\\fs";
constexpr const char16_t* kTextStyle = u"\\cf0 ";
// Readers pass over line ends, people do not.
constexpr const char16_t* kParagraphEnd = u"\\par\n";

constexpr int kMaxFontSize = 3276; // in half-points

constexpr char16_t kFirstPrintable = u' ';
constexpr char16_t kLastPrintable = u'~';

void AppendNumber(WideText& text, int number)
{
    const std::string digits = std::to_string(number);
    text.append(digits.begin(), digits.end());
}

void AppendEscaped(WideText& document, char16_t character)
{
    if (character == u'\\' || character == u'{' || character == u'}') {
        document.append({u'\\', character});
    } else if (character >= kFirstPrintable && character <= kLastPrintable) {
        document += character;
    } else if (character == u'\t') {
        document += u"\\tab ";
    } else if (character == u'\n') {
        document += u"\\line ";
    } else {
        document += u"\\u";
        AppendNumber(document, static_cast<std::int16_t>(character));
        document += u'?';
    }
}

std::vector<Reference> ReferencesIn(const CFmlaExprBase& expression)
{
    std::vector<Reference> references;
    for (int index = 0; index < expression.NumVars(); ++index)
        references.push_back(
            {expression.VarPos(index), expression.VarLength(index), expression.VarType(index)});
    return references;
}

} // namespace

RtfDocument::RtfDocument(const CString& fontName, int fontSize)
    : m_Text(kHead), m_RunStart(kRunStart)
{
    m_Text += kFontTableStart;
    for (const char16_t character : fontName.View())
        if (character != u';') // ends the name
            AppendEscaped(m_Text, character);
    m_Text += kFontTableEnd;
    m_Text += kRtfColourTable;
    m_Text += u'\n';
    AppendNumber(m_RunStart, std::clamp(fontSize, 1, kMaxFontSize));
}

void RtfDocument::AddText(const CString& text)
{
    if (!text.IsEmpty())
        AddRun(kTextStyle, text.View());
}

void RtfDocument::AddExpression(const CFmlaExprBase& expression)
{
    const CString text = expression.GetTextStr();
    ForEachRtfRun(text.View(), ReferencesIn(expression),
                  [this](int kind, WideView run) { AddRun(RtfStyleOf(kind), run); });
}

void RtfDocument::EndParagraph()
{
    m_Text += kParagraphEnd;
}

CString RtfDocument::GetRTFString() const
{
    return CString(m_Text + u"}\n");
}

void RtfDocument::AddRun(const char16_t* style, WideView text)
{
    m_Text += m_RunStart;
    m_Text += style;
    for (const char16_t character : text)
        AppendEscaped(m_Text, character);
}
