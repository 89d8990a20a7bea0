#include "Dialogs.h"

#include <algorithm>
#include <climits>

#include "Folded.h"
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
              const std::vector<std::size_t>& found, const ListCursor& cursor, const CString& verb)
{
    terminal.Clear();
    terminal.WriteBar(0, heading, Paint::Bar);
    const int nameWidth = NameWidth(entries, terminal.Columns());
    const int end = std::min(static_cast<int>(found.size()), cursor.Top() + ListHeight(terminal));
    for (int line = cursor.Top(); line < end; ++line)
        DrawEntry(terminal, line - cursor.Top() + 1, entries[found[static_cast<std::size_t>(line)]],
                  nameWidth, line == cursor.Selected());
    const CString keys =
        FooterOf({u"Enter " + verb, u"Esc back", u"type to filter"}, terminal.Columns());
    terminal.WriteBar(terminal.Rows() - 1, keys, Paint::Bar);
    terminal.ShowCursor(0, std::min(WidthOf(heading), terminal.Columns() - 1));
}

// Where the character ends, or begins, that is next to a position, with the marks on it.
int NextEnd(const CString& text, int position)
{
    for (const Glyph& glyph : GlyphsOf(text)) {
        if (glyph.position >= position)
            return glyph.position + glyph.length;
    }
    return text.GetLength();
}

int PreviousBegin(const CString& text, int position)
{
    int begin = 0;
    for (const Glyph& glyph : GlyphsOf(text)) {
        if (glyph.position < position)
            begin = glyph.position;
    }
    return begin;
}

CString Cut(const CString& text, int begin, int end)
{
    return text.Left(begin) + text.Mid(end);
}

bool LeavesField(Key key)
{
    return key == Key::Enter || key == Key::Tab || key == Key::Up || key == Key::Down ||
           IsGone(key);
}

void DrawForm(Terminal& terminal, const Form& form, int labelWidth)
{
    terminal.Clear();
    terminal.WriteBar(0, form.title, Paint::Bar);
    DrawFooter(terminal, {form.fault, true}, {u"Enter accept", u"Esc back", u"Tab next field"});
    int row = 0;
    for (const FormField& field : form.fields) {
        terminal.Write(++row, 0, field.label);
        if (row != form.active + 1)
            terminal.Write(row, labelWidth, field.text);
    }
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

void TextField::Handle(const KeyPress& press)
{
    if (press.key == Key::Character) {
        m_Text = m_Text.Left(m_Cursor) + press.text + m_Text.Mid(m_Cursor);
        m_Cursor += press.text.GetLength();
    } else if (press.key == Key::Backspace) {
        const int begin = PreviousBegin(m_Text, m_Cursor);
        m_Text = Cut(m_Text, begin, m_Cursor);
        m_Cursor = begin;
    } else if (press.key == Key::Delete && m_Cursor == m_Text.GetLength()) {
        m_Text.Empty();
        m_Cursor = 0;
    } else if (press.key == Key::Delete) {
        m_Text = Cut(m_Text, m_Cursor, NextEnd(m_Text, m_Cursor));
    } else if (press.key == Key::Left) {
        m_Cursor = PreviousBegin(m_Text, m_Cursor);
    } else if (press.key == Key::Right) {
        m_Cursor = NextEnd(m_Text, m_Cursor);
    } else if (press.key == Key::Home) {
        m_Cursor = 0;
    } else if (press.key == Key::End) {
        m_Cursor = m_Text.GetLength();
    }
}

void TextField::Draw(Terminal& terminal, int row, int column, Paint paint) const
{
    const int room = std::max(terminal.Columns() - column - 1, 1);
    int begin = 0;
    while (begin < m_Cursor && WidthOf(m_Text.Mid(begin, m_Cursor - begin)) > room)
        begin = NextEnd(m_Text, begin);
    terminal.Write(row, column, m_Text.Mid(begin), paint);
    terminal.ShowCursor(row, column + WidthOf(m_Text.Mid(begin, m_Cursor - begin)));
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

void DrawFooter(Terminal& terminal, const Notice& notice, const std::vector<CString>& keys)
{
    const CString text = notice.text.IsEmpty() ? FooterOf(keys, terminal.Columns()) : notice.text;
    const bool isRefused = notice.isRefusal && !notice.text.IsEmpty();
    terminal.WriteBar(terminal.Rows() - 1, text, isRefused ? Paint::Refused : Paint::Bar);
}

std::optional<std::size_t> Pick(Terminal& terminal, const CString& title,
                                const std::vector<PickEntry>& entries, const CString& verb)
{
    CString filter;
    ListCursor cursor;
    for (;;) {
        const std::vector<std::size_t> found = Matching(entries, filter);
        const int count = static_cast<int>(found.size());
        const int height = ListHeight(terminal);
        cursor.Fit(count, height);
        DrawPick(terminal, title + u": " + filter, entries, found, cursor, verb);

        const KeyPress press = terminal.Read();
        cursor.Handle(press.key, height);
        if (IsGone(press.key))
            return std::nullopt;
        if (press.key == Key::Character)
            filter += press.text;
        else if (press.key == Key::Backspace)
            filter = filter.Left(PreviousBegin(filter, filter.GetLength()));
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
    TextField field(std::move(text));
    for (;;) {
        const int row = terminal.Rows() - 1;
        const CString shown = Clipped(question, terminal.Columns() / 2);
        terminal.WriteBar(row, shown, Paint::Bar);
        field.Draw(terminal, row, WidthOf(shown), Paint::Bar);
        const KeyPress press = terminal.Read();
        if (IsGone(press.key))
            return std::nullopt;
        if (press.key == Key::Enter)
            return field.Text();
        field.Handle(press);
    }
}

bool FillIn(Terminal& terminal, Form& form)
{
    const int count = static_cast<int>(form.fields.size());
    int labelWidth = 0;
    for (const FormField& field : form.fields)
        labelWidth = std::max(labelWidth, WidthOf(field.label) + 2);
    for (;;) {
        FormField& active = form.fields[static_cast<std::size_t>(form.active)];
        TextField typed(active.text);
        KeyPress press;
        do {
            active.text = typed.Text();
            DrawForm(terminal, form, labelWidth);
            typed.Draw(terminal, form.active + 1, labelWidth, Paint::Plain);
            press = terminal.Read();
            typed.Handle(press);
            if (press.key != Key::Idle)
                form.fault.Empty();
        } while (!LeavesField(press.key));
        if (press.key == Key::Enter || IsGone(press.key))
            return press.key == Key::Enter;
        form.active = (form.active + (press.key == Key::Up ? count - 1 : 1)) % count;
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
