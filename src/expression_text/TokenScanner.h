#ifndef TOVOFORMULA_SRC_TOKENSCANNER_H
#define TOVOFORMULA_SRC_TOKENSCANNER_H

#include <span>

#include "ReferenceTable.h"
#include "Spelling.h"

namespace tovo::detail {

// Turns a text with references into tokens, from the left. Knows nothing of grammar: what is no
// token comes as TOK_ILLEGAL. Always advances, and never reads outside the text.
//
// Shares the text, so that it may be replaced while it is scanned; does not own the references and
// the names. A scan of n characters and r references costs n + r, whatever their order.
class TokenScanner {
public:
    enum class Outcome { Token, End, Fault };

    TokenScanner(CString text, std::span<const Reference> references, Spelling spelling,
                 int scanPos);

    // Scans one token. A negative place throws CInvalidArgException, as any index outside a text.
    Outcome Next();

    // Where the next token is looked for; after a fault, where the number at fault begins.
    int ScanPos() const { return m_ScanPos; }
    // Of the token delivered last; the text also of a number at fault. At the end the position
    // alone.
    int TokenPos() const { return m_TokenPos; }
    int TokenCode() const { return m_TokenCode; }
    WideView TokenText() const { return m_TokenText; }
    CString TokenString() const;
    // What is wrong with the number at fault.
    unsigned int FaultMessage() const { return m_FaultMessage; }

private:
    int Length() const { return static_cast<int>(m_Characters.size()); }
    // Requires: a position in the text.
    char16_t CharacterAt(int position) const
    {
        return m_Characters[static_cast<std::size_t>(position)];
    }
    int NextReferenceStart();
    Outcome TakeReference();
    Outcome TakeNumber(int boundary);
    Outcome TakeWord(int boundary);
    Outcome TakeSymbol();
    Outcome Take(int code, int length);
    template <typename Belongs>
    WideView RunUpTo(int boundary, Belongs belongs) const;

    CString m_Text; // keeps the characters
    WideView m_Characters;
    std::span<const Reference> m_References;
    std::size_t m_NextReference = 0; // those before it lie behind the scan
    Spelling m_Spelling;
    int m_ScanPos;
    int m_TokenPos = 0;
    int m_TokenCode = TOK_ILLEGAL;
    WideView m_TokenText;
    unsigned int m_FaultMessage = 0;
};

// The letters of a word of the language, in every language.
constexpr bool IsWordLetter(char16_t character)
{
    return character >= u'A' && character <= u'Z';
}

} // namespace tovo::detail

#endif
