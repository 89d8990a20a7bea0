#ifndef TOVO_EDIT_EDITORVIEW_H
#define TOVO_EDIT_EDITORVIEW_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "Commands.h"
#include "Dialogs.h"
#include "FormulaDraft.h"
#include "Glyphs.h"
#include "Terminal.h"

// The screen on which one formula is edited, with what it evaluates to after every change.
//
// Does not own: terminal, document and commands, which must outlive it.
class EditorView {
public:
    EditorView(Terminal& terminal, Document& document, Commands& commands,
               const std::string& formula);

    // Returns when the user leaves, and with which key: Escape, Quit or HangUp.
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
        Stretch strong = {}; // a part that stands out
    };

    void Handle(const KeyPress& press);
    bool HandleCompletions(Key key);
    bool HandleMove(const KeyPress& press);
    void HandleEdit(const KeyPress& press);
    void HandleQuestion(Key key);
    void Tell(KeyRefusal refusal);
    void Click(const KeyPress& press);
    void MoveByRows(int rows);
    KeyRefusal InsertReference();
    KeyRefusal InsertFunction();
    void Check();
    void OpenCompletions(bool all);
    const std::vector<FormulaDraft::Correction>& Corrections();
    void Correct();

    EditSession& Session() { return m_Draft.Session(); }
    int Width() const;
    std::vector<Line> Lines(const TextLayout& layout) const;
    std::vector<Message> Status() const;
    void AddSignature(std::vector<Message>& messages) const;
    void AddUses(std::vector<Message>& messages) const;
    CString ResultText() const;
    void ScrollTo(const std::vector<Line>& lines, int row, int height);
    void Draw();
    void DrawStatus(const std::vector<Message>& status, int row);
    void DrawText(const TextLayout& layout, const std::vector<Line>& lines);
    void DrawLine(const TextLayout& layout, const Line& line, int screenRow);
    void DrawMark(const TextLayout& layout, int screenRow);
    void DrawCompletions(int cursorRow, int cursorColumn);
    CString DetailOf(const tovo::Completion& completion) const;

    Terminal& m_Terminal;
    Document& m_Document;
    Commands& m_Commands;
    FormulaDraft m_Draft;
    // These are of the text as it is.
    std::optional<FormulaDraft::Problem> m_Problem;
    std::optional<tovo::Signature> m_Signature;
    std::vector<tovo::Dependency> m_Uses;
    // Absent until someone asks, since they take time.
    std::optional<std::vector<FormulaDraft::Correction>> m_Corrections;
    std::vector<tovo::Completion> m_Completions; // the list that is open; empty for none
    ListCursor m_CompletionCursor;
    Notice m_Notice;
    int m_Top = 0;                // the first line of the text in sight
    std::size_t m_TextHeight = 1; // lines of the text in sight, as drawn last
};

#endif
