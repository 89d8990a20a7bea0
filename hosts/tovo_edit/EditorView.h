#ifndef TOVO_EDIT_EDITORVIEW_H
#define TOVO_EDIT_EDITORVIEW_H

#include <cstddef>
#include <vector>

#include "Calculation.h"
#include "EditSession.h"
#include "Glyphs.h"
#include "JobDocument.h"
#include "Terminal.h"
#include "TextReport.h"

// The screen on which one formula is edited, with what it gives after every change.
//
// Does not own: terminal and document, which must outlive it. The document's objects must stay
// while it lives.
class EditorView {
public:
    EditorView(Terminal& terminal, JobDocument& document, std::size_t formula,
               const TextManner& manner);

    // Returns when the user leaves, with the text stored in the document, and gives the key that
    // they left by: Escape, Quit or HangUp.
    Key Run();

private:
    // A line of the screen: a row of the text, or the mark below it.
    struct Line {
        int row;
        bool isMark;
    };
    struct Message {
        CString text;
        Paint paint;
    };

    void Check();
    void Store() { m_Document.StoreExpression(m_Formula, m_Session.Stored()); }
    void Save();

    void Handle(const KeyPress& press);
    bool HandleMove(const KeyPress& press);
    void HandleEdit(const KeyPress& press);
    void Tell(Refusal refusal);
    void Click(const KeyPress& press);
    void MoveByRows(int rows);
    Refusal InsertReference();
    Refusal InsertFunction();

    int Width() const;
    std::vector<Line> Lines(const TextLayout& layout) const;
    std::vector<Message> Status() const;
    void ScrollTo(const std::vector<Line>& lines, int row, int height);
    void Draw();
    void DrawText(const TextLayout& layout, const std::vector<Line>& lines);
    void DrawLine(const TextLayout& layout, const Line& line, int screenRow);

    Terminal& m_Terminal;
    JobDocument& m_Document;
    const std::size_t m_Formula;
    const TextManner& m_Manner;
    EditSession m_Session;
    FormulaFacts m_Facts;
    CString m_TextReadBack;
    CString m_Notice;             // in the footer until the next key
    bool m_IsRefusal = false;     // of the notice
    int m_Top = 0;                // the first line of the text in sight
    std::size_t m_TextHeight = 1; // lines of the text in sight, as drawn last
};

#endif
