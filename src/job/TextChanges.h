#ifndef TOVOJOB_SRC_TEXTCHANGES_H
#define TOVOJOB_SRC_TEXTCHANGES_H

#include <optional>
#include <span>
#include <string>

#include <TovoFormula/FmlaExprBase.h>

#include <TovoJob/ObjectName.h>

namespace tovo::job {

// What is to stand in place of a stretch of an expression's text. A stretch of no length is a gap,
// and no stretch cuts a reference.
struct TextChange {
    int begin = 0; // in UTF-16 units
    int end = 0;
    CString text = {};                        // literal text
    std::optional<ObjectName> reference = {}; // in place of literal text
};

// The user's name of a token.
CString TokenName(int code);

// An expression after changes; everything else stays as it is, to the character.
//
// Requires: changes in the order of the text that do not overlap.
class ChangedText {
public:
    ChangedText(const CFmlaExprBase& expression, std::span<const TextChange> changes);

    // Whether all references are kept: the engine's positions have 16 bits.
    bool Fits() const { return m_Fits; }
    // The text as shown, with each reference between its blanks.
    const CString& Text() const { return m_Text; }
    // The stored form.
    std::string Encoded() const;

private:
    void CopyUpTo(const CFmlaExprBase& expression, int end);
    void Skip(const CFmlaExprBase& expression, int end);
    void AddReference(const CString& text, int kind);

    const CString m_Source;
    CString m_Text;
    CWordArray m_Words;
    int m_Copied = 0;        // up to here the source was taken, or was replaced
    int m_NextReference = 0; // the first one of the source that was neither
    bool m_Fits = true;
};

} // namespace tovo::job

#endif
