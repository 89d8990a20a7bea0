#ifndef TOVO_EDIT_TERMINAL_H
#define TOVO_EDIT_TERMINAL_H

#include <functional>
#include <utility>

#include <TovoPlatform/WideString.h>

#include <TovoJob/ObjectName.h>

// What a key press or the mouse asks for.
enum class Key {
    Character,
    Enter,
    Escape,
    Backspace,
    Delete,
    Left,
    Right,
    WordLeft,
    WordRight,
    Up,
    Down,
    PageUp,
    PageDown,
    Home,
    End,
    Tab,
    F1,
    F2,
    F3,
    F4,
    F5,
    F6,
    F7,
    F8,
    F9,
    Undo,
    Redo,
    Save,
    SaveAs,
    Quit,
    Click,
    Resize,
    Idle,   // nothing was pressed for a moment
    HangUp, // the terminal is gone
    Other,
};

struct KeyPress {
    Key key = Key::Other;
    CString text; // of a Character
    int row = 0;  // of a Click
    int column = 0;
};

enum class Paint {
    Plain,
    Bar, // title and footer
    Selected,
    Variable,
    Formula,
    Table,
    Fault,
    FaultPlace, // where in a text it is
    Refused,
    Strong, // one word among others
};

Paint PaintOf(tovo::Kind kind);

// The terminal as a grid of cells, from construction to destruction; there is one at a time. Rows
// and columns count from 0, and what lies outside the grid is not drawn.
class Terminal {
public:
    // Throws std::runtime_error without a terminal that can show anything.
    Terminal();
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    int Rows() const;
    int Columns() const;

    void Clear();
    void Write(int row, int column, const CString& text, Paint paint = Paint::Plain);
    // A whole row in one paint, with the text at its start.
    void WriteBar(int row, const CString& text, Paint paint);
    void ShowCursor(int row, int column);
    void HideCursor();
    void Beep();

    // Shows what was drawn and waits for a key, or for a moment in which none comes.
    KeyPress Read();
    // Called before each wait, whoever waits.
    void OnWait(std::function<void()> callback) { m_OnWait = std::move(callback); }

private:
    std::function<void()> m_OnWait;
    void* m_Screen; // of the terminal library; owned
};

#endif
