#include "Dialogs.h"

#include <algorithm>
#include <climits>

#include <wctype.h>

#include "Glyphs.h"

namespace {

constexpr int kKindWidth = 9;

// Title and footer take a row each.
int ListHeight(const Terminal& terminal)
{
    return std::max(terminal.Rows() - 2, 1);
}

// A terminal that is gone answers no question.
bool IsGone(Key key)
{
    return key == Key::Escape || key == Key::HangUp;
}

// For comparing without regard to case, in any alphabet that the locale knows.
WideText Folded(const CString& text)
{
    WideText folded(text.View());
    for (char16_t& character : folded)
        character = static_cast<char16_t>(towlower(character));
    return folded;
}

// In the order of the entries, which is that of the job file and what its author knows.
std::vector<std::size_t> Matching(const std::vector<PickEntry>& entries, const CString& filter)
{
    std::vector<std::size_t> found;
    for (std::size_t index = 0; index < entries.size(); ++index) {
        if (Folded(entries[index].name).find(Folded(filter)) != WideText::npos)
            found.push_back(index);
    }
    return found;
}

// Leaves room for some of the detail, in which a long name would leave none.
int NameWidth(const std::vector<PickEntry>& entries, int columns)
{
    int width = 0;
    for (const PickEntry& entry : entries)
        width = std::max(width, WidthOf(entry.name));
    return std::min(width, std::max(columns - kKindWidth - 12, 10));
}

// A chosen line has one paint from edge to edge, in which the colours of kinds would be lost.
void DrawEntry(Terminal& terminal, int row, const PickEntry& entry, int nameWidth, bool isSelected)
{
    const CString kind = Padded(entry.kind, kKindWidth);
    const CString name = Padded(entry.name, nameWidth);
    if (isSelected) {
        terminal.WriteBar(row, kind + name + u"  " + entry.detail, Paint::Selected);
        return;
    }
    terminal.Write(row, 0, kind);
    terminal.Write(row, kKindWidth, Clipped(entry.name, nameWidth), entry.paint);
    terminal.Write(row, kKindWidth + nameWidth + 2, entry.detail);
}

void DrawPick(Terminal& terminal, const CString& heading, const std::vector<PickEntry>& entries,
              const std::vector<std::size_t>& found, const ListCursor& cursor)
{
    terminal.Clear();
    terminal.WriteBar(0, heading, Paint::Bar);
    const int nameWidth = NameWidth(entries, terminal.Columns());
    const int end = std::min(static_cast<int>(found.size()), cursor.Top() + ListHeight(terminal));
    for (int line = cursor.Top(); line < end; ++line)
        DrawEntry(terminal, line - cursor.Top() + 1, entries[found[static_cast<std::size_t>(line)]],
                  nameWidth, line == cursor.Selected());
    const CString keys =
        FooterOf({u"Enter insert", u"Esc back", u"type to filter"}, terminal.Columns());
    terminal.WriteBar(terminal.Rows() - 1, keys, Paint::Bar);
    terminal.ShowCursor(0, std::min(WidthOf(heading), terminal.Columns() - 1));
}

// A whole character, with the marks on it.
void DeleteLast(CString& text)
{
    const std::vector<Glyph> glyphs = GlyphsOf(text);
    text = glyphs.empty() ? CString() : text.Left(glyphs.back().position);
}

} // namespace

void ListCursor::Handle(Key key, int height)
{
    if (key == Key::Up)
        --m_Selected;
    else if (key == Key::Down)
        ++m_Selected;
    else if (key == Key::PageUp)
        m_Selected -= height;
    else if (key == Key::PageDown)
        m_Selected += height;
    else if (key == Key::Home)
        m_Selected = 0;
    else if (key == Key::End)
        m_Selected = INT_MAX / 2;
}

void ListCursor::Fit(int count, int height)
{
    m_Selected = std::clamp(m_Selected, 0, std::max(count - 1, 0));
    // Scrolls by as little as shows the chosen line.
    m_Top = std::clamp(m_Top, std::max(m_Selected - height + 1, 0), m_Selected);
}

CString FooterOf(const std::vector<CString>& items, int width)
{
    CString footer;
    // Half an item would name the wrong key.
    for (const CString& item : items) {
        const CString longer = footer.IsEmpty() ? item : footer + u"  " + item;
        if (WidthOf(longer) > width)
            break;
        footer = longer;
    }
    return footer;
}

std::optional<std::size_t> Pick(Terminal& terminal, const CString& title,
                                const std::vector<PickEntry>& entries)
{
    CString filter;
    ListCursor cursor;
    for (;;) {
        const std::vector<std::size_t> found = Matching(entries, filter);
        const int count = static_cast<int>(found.size());
        const int height = ListHeight(terminal);
        cursor.Fit(count, height);
        DrawPick(terminal, title + u": " + filter, entries, found, cursor);

        const KeyPress press = terminal.Read();
        cursor.Handle(press.key, height);
        if (IsGone(press.key))
            return std::nullopt;
        if (press.key == Key::Character)
            filter += press.text;
        else if (press.key == Key::Backspace)
            DeleteLast(filter);
        // A click chooses at once: there is no second button for it.
        const bool isClick = press.key == Key::Click && press.row > 0 && press.row <= height;
        if (isClick)
            cursor.Select(cursor.Top() + press.row - 1);
        const bool isChosen = isClick || press.key == Key::Enter;
        if (isChosen && cursor.Selected() < count)
            return found[static_cast<std::size_t>(cursor.Selected())];
    }
}

// Leaves the rest of the screen as it is: what is asked about is on it.
std::optional<CString> AskForText(Terminal& terminal, const CString& question, CString text)
{
    for (;;) {
        // The end of a long text is what is being typed.
        CString shown = question + text;
        while (!shown.IsEmpty() && WidthOf(shown) >= terminal.Columns())
            shown = shown.Mid(1);
        terminal.WriteBar(terminal.Rows() - 1, shown, Paint::Bar);
        terminal.ShowCursor(terminal.Rows() - 1, WidthOf(shown));
        const KeyPress press = terminal.Read();
        if (IsGone(press.key))
            return std::nullopt;
        if (press.key == Key::Enter)
            return text;
        if (press.key == Key::Character)
            text += press.text;
        else if (press.key == Key::Backspace)
            DeleteLast(text);
        else if (press.key == Key::Delete)
            text.Empty();
    }
}

bool Confirm(Terminal& terminal, const CString& title, const std::vector<CString>& lines,
             const CString& question)
{
    ListCursor cursor;
    const int count = static_cast<int>(lines.size());
    for (;;) {
        const int height = ListHeight(terminal);
        cursor.Fit(count, height);
        terminal.Clear();
        terminal.WriteBar(0, title, Paint::Bar);
        for (int line = cursor.Top(); line < std::min(count, cursor.Top() + height); ++line)
            terminal.Write(line - cursor.Top() + 1, 0, lines[static_cast<std::size_t>(line)]);
        terminal.WriteBar(terminal.Rows() - 1, question, Paint::Bar);
        terminal.HideCursor();
        const Key key = terminal.Read().key;
        if (key == Key::Enter || IsGone(key))
            return key == Key::Enter;
        cursor.Handle(key, height);
    }
}

// Passes over every other key, so that what was typed ahead answers nothing by chance.
std::optional<bool> AskYesOrNo(Terminal& terminal, const CString& question)
{
    for (;;) {
        terminal.WriteBar(terminal.Rows() - 1, question + u" (y/n, Esc goes back)", Paint::Refused);
        terminal.HideCursor();
        const KeyPress press = terminal.Read();
        if (IsGone(press.key))
            return std::nullopt;
        const WideText answer = Folded(press.text);
        if (answer == u"y" || answer == u"n")
            return answer == u"y";
    }
}
