#include "TokenScanner.h"

#include <algorithm>

#include <TovoFormula/MessageIds.h>

namespace tovo::detail {
namespace {

constexpr int kMaxDigits = 15;

// The rows of the catalogue that are spelled as words, and those that are signs. A longer sign
// stands before its prefixes, so the first that is equal is the right one.
constexpr int kFirstWord = TOK_AND;
constexpr int kLastWord = TOK_TRUNC;
constexpr int kFirstSign = TOK_COMMA;
constexpr int kLastSign = TOK_LT_SIGN;

int WordCode(const Spelling& spelling, WideView word)
{
    for (int code = kFirstWord; code <= kLastWord; ++code)
        if (spelling.NameOf(code) == word)
            return code;
    return TOK_ILLEGAL;
}

int SignCode(const Spelling& spelling, WideView rest)
{
    for (int code = kFirstSign; code <= kLastSign; ++code) {
        const WideView name = spelling.NameOf(code);
        if (!name.empty() && name.front() == rest.front() && rest.starts_with(name))
            return code;
    }
    return TOK_ILLEGAL;
}

unsigned int FaultIn(WideView number, char16_t decimalSeparator)
{
    const auto separators = std::count(number.begin(), number.end(), decimalSeparator);
    if (separators > 1)
        return MSG_TWO_DECIMAL_POINTS;
    const auto digits = static_cast<std::ptrdiff_t>(number.size()) - separators;
    return digits > kMaxDigits ? MSG_TOO_MANY_DIGITS : MSG_NONE;
}

} // namespace

TokenScanner::TokenScanner(CString text, std::span<const Reference> references, Spelling spelling,
                           int scanPos)
    : m_Text(std::move(text)),
      m_Characters(m_Text.View()),
      m_References(references),
      m_Spelling(spelling),
      m_ScanPos(scanPos)
{}

// Most tokens are names, and need no text of their own.
CString TokenScanner::TokenString() const
{
    const bool isName = (m_TokenCode >= kFirstWord && m_TokenCode <= kLastWord) ||
                        (m_TokenCode >= kFirstSign && m_TokenCode <= kLastSign);
    return isName ? m_Spelling.TextOf(m_TokenCode) : CString(m_TokenText);
}

TokenScanner::Outcome TokenScanner::Next()
{
    if (m_ScanPos < 0)
        AfxThrowInvalidArgException();
    const int boundary = NextReferenceStart();
    while (m_ScanPos < boundary && CharacterAt(m_ScanPos) == u' ')
        ++m_ScanPos;
    m_TokenPos = m_ScanPos;
    if (m_ScanPos >= Length())
        return Outcome::End;
    if (m_ScanPos == boundary)
        return TakeReference();

    // Digits come first: a list separator may be the same character as the decimal one.
    const char16_t next = CharacterAt(m_ScanPos);
    if (m_Spelling.NumberCharacters().find(next) != WideView::npos)
        return TakeNumber(boundary);
    return IsWordLetter(next) ? TakeWord(boundary) : TakeSymbol();
}

int TokenScanner::NextReferenceStart()
{
    m_NextReference = NextEffective(m_References, m_NextReference, m_ScanPos, Length());
    return m_NextReference < m_References.size() ? m_References[m_NextReference].position
                                                 : Length();
}

TokenScanner::Outcome TokenScanner::TakeReference()
{
    const Reference& reference = m_References[m_NextReference];
    return Take(kReferenceKinds[reference.EffectiveKind()].code,
                std::min(reference.length, Length() - m_ScanPos));
}

TokenScanner::Outcome TokenScanner::TakeNumber(int boundary)
{
    const WideView characters = m_Spelling.NumberCharacters();
    const WideView number = RunUpTo(boundary, [characters](char16_t character) {
        return characters.find(character) != WideView::npos;
    });
    m_FaultMessage = FaultIn(number, m_Spelling.DecimalSeparator());
    if (m_FaultMessage == MSG_NONE)
        return Take(TOK_NUMBER, static_cast<int>(number.size()));
    m_TokenCode = TOK_ILLEGAL;
    m_TokenText = number;
    return Outcome::Fault;
}

TokenScanner::Outcome TokenScanner::TakeWord(int boundary)
{
    const WideView word = RunUpTo(boundary, IsWordLetter);
    return Take(WordCode(m_Spelling, word), static_cast<int>(word.size()));
}

TokenScanner::Outcome TokenScanner::TakeSymbol()
{
    const int code = SignCode(m_Spelling, m_Characters.substr(static_cast<std::size_t>(m_ScanPos)));
    return Take(code, code == TOK_ILLEGAL ? 1 : static_cast<int>(m_Spelling.NameOf(code).size()));
}

TokenScanner::Outcome TokenScanner::Take(int code, int length)
{
    m_TokenCode = code;
    m_TokenText =
        m_Characters.substr(static_cast<std::size_t>(m_ScanPos), static_cast<std::size_t>(length));
    m_ScanPos += length;
    return Outcome::Token;
}

template <typename Belongs>
WideView TokenScanner::RunUpTo(int boundary, Belongs belongs) const
{
    const auto start = static_cast<std::size_t>(m_ScanPos);
    const WideView rest = m_Characters.substr(start, static_cast<std::size_t>(boundary) - start);
    const auto end = std::find_if_not(rest.begin(), rest.end(), belongs);
    return rest.substr(0, static_cast<std::size_t>(end - rest.begin()));
}

} // namespace tovo::detail
