#ifndef TOVO_EDIT_DIALOGS_H
#define TOVO_EDIT_DIALOGS_H

#include <cstddef>
#include <optional>
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

// The items, as many as the width takes, for a bar at the foot of the screen.
CString FooterOf(const std::vector<CString>& items, int width);

// These take the whole screen, or its last row, until they are answered; Escape gives no answer.
// Lets the user choose one entry out of those whose name contains what is typed, in any case.
std::optional<std::size_t> Pick(Terminal& terminal, const CString& title,
                                const std::vector<PickEntry>& entries);
std::optional<CString> AskForText(Terminal& terminal, const CString& question, CString text);
// Whether Enter was pressed below these lines.
bool Confirm(Terminal& terminal, const CString& title, const std::vector<CString>& lines,
             const CString& question);
std::optional<bool> AskYesOrNo(Terminal& terminal, const CString& question);

#endif
