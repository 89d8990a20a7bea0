#include "ExpressionText.h"

#include <algorithm>
#include <utility>

#include <TovoFormula/TokenCodes.h>

#include "WordCharacters.h"

namespace tovo::job {

namespace {

// Hands out the tokens of an expression one by one, each with its end.
class TokenReader : public CFmlaExprBase {
public:
    explicit TokenReader(const CFmlaExprBase& expression) : CFmlaExprBase(expression) {}
    using CFmlaExprBase::operator=;

    bool Next(Token& token)
    {
        CString text;
        const int isThere = m_IsFirst ? FindFirstToken(text, token.code, token.begin, 0, TL_LOCAL)
                                      : FindNextToken(text, token.code, token.begin, TL_LOCAL);
        m_IsFirst = false;
        token.end = m_ScanPos;
        return isThere != 0;
    }

    // A fault is no news here: whoever checks the expression reports it.
    void TrackError(unsigned int) override {}

private:
    bool m_IsFirst = true;
};

// The parentheses that are open, and of which function's arguments.
class Nesting {
public:
    void Take(int code)
    {
        if (code == TOK_LPAREN) {
            m_Open.push_back({m_LastCode == TOK_IF});
            m_Deepest = std::max(m_Deepest, m_Open.size());
            m_Conditions += m_Open.back().isCondition ? 1 : 0;
        } else if (code == TOK_COMMA && !m_Open.empty()) {
            EndCondition();
        } else if (code == TOK_RPAREN && !m_Open.empty()) {
            EndCondition();
            m_Open.pop_back();
        }
        m_LastCode = code;
    }
    bool IsInCondition() const { return m_Conditions > 0; }
    std::size_t Deepest() const { return m_Deepest; }

private:
    struct Open {
        bool isCondition;
    };

    void EndCondition()
    {
        m_Conditions -= m_Open.back().isCondition ? 1 : 0;
        m_Open.back().isCondition = false;
    }

    std::vector<Open> m_Open;
    std::size_t m_Deepest = 0;
    int m_Conditions = 0;
    int m_LastCode = TOK_ILLEGAL;
};

bool IsReference(int code)
{
    return code == TOK_VARIABLE || code == TOK_FORMULA || code == TOK_FORMTBL;
}

} // namespace

TwofoldText::TwofoldText(const CString& text)
    : m_Utf8(text.ToUtf8()), m_Offsets(text.View(), m_Utf8)
{}

Span TwofoldText::SpanOf(int begin, int end) const
{
    return m_Offsets.Between(static_cast<std::size_t>(std::max(begin, 0)),
                             static_cast<std::size_t>(std::max(end, 0)));
}

std::string TwofoldText::Part(const Span& span) const
{
    return m_Utf8.substr(span.begin.utf8, span.end.utf8 - span.begin.utf8);
}

ObjectName ReferredBy(const CFmlaExprBase& expression, int index)
{
    // The engine's kinds are the token codes 0, 1 and 2, in the order of ours.
    return {static_cast<Kind>(expression.VarType(index)), expression.VarName(index).ToUtf8()};
}

ScannedText Scan(const CFmlaExprBase& expression)
{
    ScannedText scanned;
    Nesting nesting;
    int nextReference = 0;
    TokenReader reader(expression);
    for (Token token; reader.Next(token);) {
        token.object = {};
        nesting.Take(token.code);
        token.inCondition = nesting.IsInCondition();
        if (IsReference(token.code))
            token.object = ReferredBy(expression, nextReference++);
        else if (const auto word = JobValueWord(token.code))
            token.object = {Kind::JobValue, std::string(*word)};
        scanned.tokens.push_back(std::move(token));
    }
    for (; nextReference < expression.NumVars(); ++nextReference)
        scanned.tokens.push_back(
            {expression.VarType(nextReference), expression.VarPos(nextReference),
             expression.VarEndPos(nextReference), false, ReferredBy(expression, nextReference)});
    scanned.nesting = nesting.Deepest();
    return scanned;
}

namespace {

// The end of the word that a token begins or goes on with, up to the next reference.
int EndOfUnknownWord(const CFmlaExprBase& expression, const Token& token)
{
    const CString text = expression.GetTextStr();
    auto end = static_cast<int>(EndOfWord(text.View(), static_cast<std::size_t>(token.begin)));
    for (int index = 0; index < expression.NumVars(); ++index) {
        if (expression.VarPos(index) >= token.end)
            end = std::min(end, expression.VarPos(index));
    }
    return end;
}

} // namespace

int EndOfTokenAt(const CFmlaExprBase& expression, int position)
{
    TokenReader reader(expression);
    for (Token token; reader.Next(token);) {
        if (token.begin > position || position >= token.end)
            continue;
        // A word in small letters is an unknown sign for each of them.
        return token.code == TOK_ILLEGAL ? std::max(token.end, EndOfUnknownWord(expression, token))
                                         : token.end;
    }
    // What the scanner could not take is a number: it reaches to the next thing that no number has.
    const CString whole = expression.GetTextStr();
    const WideView text = whole.View();
    auto end = static_cast<std::size_t>(std::max(position, 0));
    while (end < text.size() &&
           ((text[end] >= u'0' && text[end] <= u'9') || text[end] == u'.' || text[end] == u','))
        ++end;
    return static_cast<int>(end);
}

std::optional<std::string_view> JobValueWord(int code)
{
    switch (code) {
    case TOK_DURATION:
        return "DURATION";
    case TOK_JOBSIZE:
        return "JOBSIZE";
    case TOK_QUANTITY:
        return "QUANTITY";
    default:
        return std::nullopt;
    }
}

} // namespace tovo::job
