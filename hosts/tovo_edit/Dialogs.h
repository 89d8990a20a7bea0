#ifndef TOVO_EDIT_DIALOGS_H
#define TOVO_EDIT_DIALOGS_H

#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include <TovoPlatform/WideString.h>

#include "Terminal.h"

// Which of many lines is chosen, and which of them are in sight.
class ListCursor {
public:
    int Selected() const { return m_Selected; }
    // The first line in sight.
    int Top() const { return m_Top; }

    // Follows the keys that move in a list; passes over all others.
    void Handle(Key key, int height);
    void Select(int line) { m_Selected = line; }
    // To be called before drawing: keeps the chosen line in the list and in sight.
    void Fit(int count, int height);

private:
    int m_Selected = 0;
    int m_Top = 0;
};

struct PickEntry {
    CString kind;
    CString name; // what the filter looks at
    CString detail;
    Paint paint = Paint::Plain;
};

// A line of text that is typed.
class TextField {
public:
    explicit TextField(CString text) : m_Text(std::move(text)), m_Cursor(m_Text.GetLength()) {}

    const CString& Text() const { return m_Text; }
    // Passes over keys that are none of a line. Delete at the end clears the text.
    void Handle(const KeyPress& press);
    // From a column of a row to the edge of the screen, with the cursor in sight.
    void Draw(Terminal& terminal, int row, int column, Paint paint) const;

private:
    CString m_Text;
    int m_Cursor;
};

struct FormField {
    CString label;
    CString text;
};

struct Form {
    CString title;
    std::vector<FormField> fields;
    int active = 0;     // the field that the cursor is in
    CString fault = {}; // what was wrong with the texts when they were accepted last
};

// What the last row says until the next key.
struct Notice {
    CString text;
    bool isRefusal = false;
};

// The items, as many as the width takes, for a bar at the foot of the screen.
CString FooterOf(const std::vector<CString>& items, int width);
// The last row: the notice, or the keys if there is none.
void DrawFooter(Terminal& terminal, const Notice& notice, const std::vector<CString>& keys);

// These take the whole screen, or its last row, until they are answered; Escape gives no answer.
// Lets the user choose one entry out of those whose name contains what is typed, in any case. Verb:
// what Enter does.
std::optional<std::size_t> Pick(Terminal& terminal, const CString& title,
                                const std::vector<PickEntry>& entries, const CString& verb);
std::optional<CString> AskForText(Terminal& terminal, const CString& question, CString text);
// Lets the user change the texts of a form. False for Escape.
bool FillIn(Terminal& terminal, Form& form);
// Whether Enter was pressed below these lines.
bool Confirm(Terminal& terminal, const CString& title, const std::vector<CString>& lines,
             const CString& question);
std::optional<bool> AskYesOrNo(Terminal& terminal, const CString& question);

#endif
