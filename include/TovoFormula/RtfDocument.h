#ifndef TOVOFORMULA_RTFDOCUMENT_H
#define TOVOFORMULA_RTFDOCUMENT_H

#include <TovoFormula/Export.h>
#include <TovoFormula/FmlaExprBase.h>

// A whole RTF document, written from its start to its end: expressions, text beside them, and
// paragraphs.
//
// Any text may go in, also an expression that a check refuses: nothing in it acts as a command, and
// a reader finds exactly its characters. GetRTFString of an expression escapes less, and its result
// is for sound expressions only. The document is plain ASCII: other characters are written by
// number, with a question mark for readers that do not know such numbers. A line feed breaks the
// line within its paragraph.
//
//     RtfDocument document(u"Arial", 22);
//     for (const auto& formula : formulas) {
//         document.AddText(formula->GetName() + u" = ");
//         document.AddExpression(formula->GetExpression());
//         document.EndParagraph();
//     }
//     file << document.GetRTFString().ToUtf8();
//
// A value type, for one thread at a time.
class TOVO_FORMULA_API RtfDocument {
public:
    // The size is in half-points and taken to the nearest that readers know, 1 to 3276. An empty
    // font name leaves the font to the reader; a semicolon in it is left out.
    RtfDocument(const CString& fontName, int fontSize);

    // Appends black text, not bold.
    void AddText(const CString& text);
    // Appends the expression in its present language: literal text bold and black, references bold,
    // underlined and blue (variables), green (formulas) or purple (tables).
    void AddExpression(const CFmlaExprBase& expression);
    void EndParagraph();

    // All that was added so far, as a complete document.
    CString GetRTFString() const;

private:
    void AddRun(const char16_t* style, WideView text);

    WideText m_Text;
    WideText m_RunStart; // every run repeats it, so that none depends on another
};

#endif
