#include "FormulaListView.h"

#include <algorithm>
#include <cstdint>
#include <stdexcept>

#include "EditorView.h"
#include "Glyphs.h"
#include "JsonFile.h"

namespace {

constexpr int kValueWidth = 12; // columns; most values have up to six decimals

CString Placed(std::size_t count)
{
    CString text;
    text.Format(count == 1 ? u"%d other place changed" : u"%d other places changed",
                static_cast<int>(count));
    return text;
}

// What a removal does, place by place.
std::vector<CString> Preview(const std::vector<Change>& changes, int width)
{
    std::vector<CString> lines;
    for (const Change& change : changes) {
        for (const CString& text :
             {change.place, u"  now:  " + change.before, u"  then: " + change.after}) {
            for (const CString& line : WrappedLines(text, width, SIZE_MAX))
                lines.push_back(line);
        }
    }
    if (lines.empty())
        lines.emplace_back(u"Nothing else names this formula.");
    return lines;
}

} // namespace

void FormulaListView::Run()
{
    for (;;) {
        Draw();
        const KeyPress press = m_Terminal.Read();
        m_Notice.Empty();
        m_IsRefusal = false;
        if (!Handle(press))
            return;
    }
}

// Title and footer take a row each.
int FormulaListView::Height() const
{
    return std::max(m_Terminal.Rows() - 2, 1);
}

// Answers false if the program is to end.
bool FormulaListView::Handle(const KeyPress& press)
{
    m_Cursor.Handle(press.key, Height());
    const bool hasFormula = m_Document.FormulaCount() > 0;
    if (press.key == Key::HangUp)
        return false;
    if (press.key == Key::Quit)
        return !MayQuit();
    if (press.key == Key::Click && press.row > 0 && press.row <= Height())
        m_Cursor.Select(m_Cursor.Top() + press.row - 1);
    else if (press.key == Key::Enter && hasFormula)
        return Edit();
    else if (press.key == Key::Rename && hasFormula)
        Rename();
    else if (press.key == Key::Remove && hasFormula)
        Remove();
    else if (press.key == Key::Undo)
        Tell(m_Document.Undo() ? u"Taken back" : u"Nothing to undo", false);
    else if (press.key == Key::Redo)
        Tell(m_Document.Redo() ? u"Done again" : u"Nothing to redo", false);
    else if (press.key == Key::Save)
        Save();
    return true;
}

// Answers false if the program is to end.
bool FormulaListView::Edit()
{
    // The editor works on the objects; from the bytes that it stored they are made anew, so that
    // the list shows what a reader of the file will find.
    const Key end = EditorView(m_Terminal, m_Document, Selected(), m_Manner).Run();
    m_Document.Refresh();
    if (end == Key::Escape)
        return true;
    return end == Key::Quit && !MayQuit();
}

void FormulaListView::Rename()
{
    const CString name = m_Document.Formula(Selected()).GetName();
    const auto newName = AskForText(m_Terminal, u"New name (Del clears): ", name);
    if (!newName || *newName == name)
        return;
    // The reader of job files is the judge of names, so its words tell what is wrong.
    try {
        Tell(Placed(m_Document.Rename(Selected(), *newName)), false);
    } catch (const FileFault& fault) {
        Tell(CString(fault.what()), true);
    }
}

// Asks in any case: a removal that changes nothing else still loses the formula's own text.
void FormulaListView::Remove()
{
    const CString name = m_Document.Formula(Selected()).GetName();
    const std::vector<CString> lines =
        Preview(m_Document.Effects(Selected(), std::nullopt), m_Terminal.Columns());
    if (Confirm(m_Terminal, u"Removing " + name, lines, u"Enter remove  Esc keep"))
        Tell(Placed(m_Document.Remove(Selected())), false);
}

bool FormulaListView::Save()
{
    try {
        m_Document.Save();
        Tell(u"Saved " + CString(m_Document.Path().c_str()), false);
        return true;
    } catch (const std::runtime_error& fault) {
        Tell(u"Not saved: " + CString(fault.what()), true);
        return false;
    }
}

bool FormulaListView::MayQuit()
{
    if (!m_Document.IsChanged())
        return true;
    // A save that fails must not lose what it was to keep.
    const auto isToSave = AskYesOrNo(m_Terminal, u"Save the changes?");
    return isToSave && (!*isToSave || Save());
}

void FormulaListView::Tell(const CString& notice, bool isRefusal)
{
    m_Notice = notice;
    m_IsRefusal = isRefusal;
    if (isRefusal)
        m_Terminal.Beep();
}

void FormulaListView::Draw()
{
    const int count = static_cast<int>(m_Document.FormulaCount());
    m_Cursor.Fit(count, Height());
    m_Terminal.Clear();
    m_Terminal.WriteBar(
        0, CString(m_Document.Path().c_str()) + (m_Document.IsChanged() ? u" *" : u""), Paint::Bar);
    for (int line = m_Cursor.Top(); line < std::min(count, m_Cursor.Top() + Height()); ++line)
        DrawFormula(line - m_Cursor.Top() + 1, static_cast<std::size_t>(line));
    const CString keys = FooterOf(
        {u"Enter edit", u"F4 rename", u"F5 remove", u"^S save", u"^Z undo", u"^Y redo", u"^Q quit"},
        m_Terminal.Columns());
    m_Terminal.WriteBar(m_Terminal.Rows() - 1, m_Notice.IsEmpty() ? keys : m_Notice,
                        m_IsRefusal ? Paint::Refused : Paint::Bar);
    m_Terminal.HideCursor();
}

// The text comes last, since it is the longest and the one that may be cut.
void FormulaListView::DrawFormula(int row, std::size_t formula)
{
    // Only what is in sight is calculated, at each drawing: a job may have thousands of formulas.
    const FormulaFacts facts =
        CalculateFormula(m_Document.Objects(), m_Document.Formula(formula), true);
    const int nameWidth = std::clamp(m_Terminal.Columns() * 2 / 5, 10, 30);
    const CString value =
        facts.fault ? CString(u"fault") : CString(ValueText(facts.value, m_Manner).c_str());
    const CString line = Padded(facts.value.name, nameWidth) + u" " + Padded(value, kValueWidth) +
                         u" " + Padded(facts.value.unit, 6) + u" " + facts.text;
    if (row - 1 + m_Cursor.Top() == m_Cursor.Selected())
        m_Terminal.WriteBar(row, line, Paint::Selected);
    else
        m_Terminal.Write(row, 0, line, facts.fault ? Paint::Fault : Paint::Plain);
}
