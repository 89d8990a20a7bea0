#include "EditorView.h"

#include <algorithm>
#include <stdexcept>

#include "Dialogs.h"
#include "FunctionList.h"
#include "StatusText.h"

namespace {

constexpr std::size_t kMostResultLines = 3;

const std::vector<CString>& Keys()
{
    static const std::vector<CString> kKeys = {u"Esc back", u"F2 references", u"F3 functions",
                                               u"^S save",  u"^Z undo",       u"^Y redo",
                                               u"^Q quit"};
    return kKeys;
}

// The whole stretch is painted, blanks included: it is what a key takes.
Paint PaintAt(const CFmlaExprBase& expression, int position)
{
    for (int index = 0; index < expression.NumVars(); ++index) {
        if (position >= expression.VarPos(index) && position < expression.VarEndPos(index))
            return PaintOfReference(expression.VarType(index));
    }
    return Paint::Plain;
}

struct Candidate {
    CString name;
    int kind;
    CString detail;
};

// The formula that is edited is among them. To name itself is a fault, and the status says so.
std::vector<Candidate> CandidatesIn(Job& job, const TextManner& manner)
{
    std::vector<Candidate> candidates;
    for (const auto& variable : job.Variables()) {
        const Value value{variable->GetName(), variable->GetUnit(0), variable->IsBoolean(),
                          variable->GetValue()};
        candidates.push_back({value.name, TOK_VARIABLE,
                              CString(ValueText(value, manner).c_str()) + u" " + value.unit});
    }
    for (const auto& formula : job.Formulas())
        candidates.push_back({formula->GetName(), TOK_FORMULA, formula->GetUnit()});
    for (const auto& table : job.Tables())
        candidates.push_back({table->GetName(), TOK_FORMTBL, job.UnitOf(*table)});
    return candidates;
}

} // namespace

EditorView::EditorView(Terminal& terminal, JobDocument& document, std::size_t formula,
                       const TextManner& manner)
    : m_Terminal(terminal),
      m_Document(document),
      m_Formula(formula),
      m_Manner(manner),
      m_Session(document.Formula(formula).GetExpression(), document.Expression(formula))
{
    Check();
}

// Leaving stores the text, so that nothing typed is lost by the way out.
Key EditorView::Run()
{
    for (;;) {
        Draw();
        const KeyPress press = m_Terminal.Read();
        m_Notice.Empty();
        m_IsRefusal = false;
        if (press.key == Key::Escape || press.key == Key::Quit || press.key == Key::HangUp) {
            Store();
            return press.key;
        }
        Handle(press);
    }
}

void EditorView::Check()
{
    // The static scan: what the text depends on does not change with the values of a condition.
    m_Facts = CalculateFormula(m_Document.Objects(), m_Document.Formula(m_Formula), true);
    m_TextReadBack = m_Session.TextReadBack();
}

// Stores first, since what is saved are the document's bytes. The objects stay, and with them the
// undo steps of the session.
void EditorView::Save()
{
    Store();
    try {
        m_Document.Save();
        m_Notice = u"Saved " + CString(m_Document.Path().c_str());
    } catch (const std::runtime_error& fault) {
        m_Notice = u"Not saved: " + CString(fault.what());
        m_IsRefusal = true;
    }
}

void EditorView::Handle(const KeyPress& press)
{
    // Only a change of the text asks for a new check, which may calculate the whole job.
    if (press.key == Key::Save)
        Save();
    else if (press.key == Key::Click)
        Click(press);
    else if (!HandleMove(press))
        HandleEdit(press);
}

// Answers false for a key that is no move.
bool EditorView::HandleMove(const KeyPress& press)
{
    const int page = static_cast<int>(m_TextHeight);
    switch (press.key) {
    case Key::Left:
        m_Session.MoveLeft();
        return true;
    case Key::Right:
        m_Session.MoveRight();
        return true;
    case Key::WordLeft:
        m_Session.MoveWordLeft();
        return true;
    case Key::WordRight:
        m_Session.MoveWordRight();
        return true;
    case Key::Up:
    case Key::Down:
        MoveByRows(press.key == Key::Up ? -1 : 1);
        return true;
    case Key::PageUp:
    case Key::PageDown:
        MoveByRows(press.key == Key::PageUp ? -page : page);
        return true;
    case Key::Home:
        m_Session.TravelTo(0);
        return true;
    case Key::End:
        m_Session.TravelTo(m_Session.Text().GetLength());
        return true;
    default:
        return false;
    }
}

void EditorView::HandleEdit(const KeyPress& press)
{
    if (press.key == Key::Character)
        Tell(m_Session.Type(press.text));
    else if (press.key == Key::Backspace)
        Tell(m_Session.Backspace());
    else if (press.key == Key::Delete)
        Tell(m_Session.Delete());
    else if (press.key == Key::References)
        Tell(InsertReference());
    else if (press.key == Key::Functions)
        Tell(InsertFunction());
    else if (press.key == Key::Undo && !m_Session.Undo())
        m_Notice = u"Nothing to undo";
    else if (press.key == Key::Redo && !m_Session.Redo())
        m_Notice = u"Nothing to redo";
    Check();
}

void EditorView::Tell(Refusal refusal)
{
    if (refusal == Refusal::None)
        return;
    if (refusal == Refusal::TextLimit)
        m_Notice.Format(u"At the text limit of %d characters", kDefaultTextLimit);
    else if (refusal == Refusal::ReferenceLimit)
        m_Notice.Format(u"%d references at the most", kMaxReferences);
    else
        m_Notice = u"Not inside a reference";
    m_IsRefusal = true;
    m_Terminal.Beep();
}

void EditorView::Click(const KeyPress& press)
{
    // A click on the mark or below the text counts for the row above.
    const TextLayout layout(m_Session.Text(), Width());
    const std::vector<Line> lines = Lines(layout);
    const int shown = press.row - 1;
    if (shown < 0 || shown >= static_cast<int>(m_TextHeight))
        return;
    const std::size_t line = std::min(static_cast<std::size_t>(m_Top + shown), lines.size() - 1);
    m_Session.PlaceAt(layout.PositionAt({lines[line].row, press.column}));
}

void EditorView::MoveByRows(int rows)
{
    const TextLayout layout(m_Session.Text(), Width());
    // A move, not a click: out of a name that is longer than a row the nearest edge would lead
    // back.
    TextLayout::Place place = layout.PlaceOf(m_Session.Cursor());
    place.row = std::clamp(place.row + rows, 0, static_cast<int>(layout.Rows().size()) - 1);
    m_Session.TravelTo(layout.PositionAt(place));
}

Refusal EditorView::InsertReference()
{
    const std::vector<Candidate> candidates = CandidatesIn(m_Document.Objects(), m_Manner);
    std::vector<PickEntry> entries;
    for (const Candidate& candidate : candidates)
        entries.push_back({KindText(candidate.kind), candidate.name, candidate.detail,
                           PaintOfReference(candidate.kind)});
    const auto chosen = Pick(m_Terminal, u"References", entries);
    if (!chosen)
        return Refusal::None;
    return m_Session.InsertReference(candidates[*chosen].name, candidates[*chosen].kind);
}

Refusal EditorView::InsertFunction()
{
    // The filter looks at the arguments too: who forgot the name may know what it takes.
    const std::vector<Word> words = WordsOfTheLanguage();
    std::vector<PickEntry> entries;
    for (const Word& word : words)
        entries.push_back(
            {word.IsFunction() ? u"function" : u"word", word.name + word.arguments, word.meaning});
    const auto chosen = Pick(m_Terminal, u"Functions", entries);
    if (!chosen)
        return Refusal::None;
    return m_Session.InsertWord(words[*chosen].name, words[*chosen].IsFunction());
}

// A character of two columns must fit into a row, however narrow the terminal.
int EditorView::Width() const
{
    return std::max(m_Terminal.Columns(), 2);
}

// The mark has a line of its own, so a long text is not hidden by it. A fault without a place, such
// as a result of the wrong kind, is marked at the start.
std::vector<EditorView::Line> EditorView::Lines(const TextLayout& layout) const
{
    const int marked = m_Facts.fault ? layout.PlaceOf(std::max(m_Facts.faultPos, 0)).row : -1;
    std::vector<Line> lines;
    for (int row = 0; row < static_cast<int>(layout.Rows().size()); ++row) {
        lines.push_back({row, false});
        if (row == marked)
            lines.push_back({row, true});
    }
    return lines;
}

std::vector<EditorView::Message> EditorView::Status() const
{
    std::vector<Message> messages;
    const auto add = [&](const CString& text, std::size_t mostLines, Paint paint) {
        for (const CString& line : WrappedLines(text, Width(), mostLines))
            messages.push_back({line, paint});
    };
    add(ResultText(m_Facts, m_Manner), kMostResultLines,
        m_Facts.fault ? Paint::Fault : Paint::Plain);
    add(DependsText(m_Facts, m_Session.Expression(), m_Document.Objects().Set()),
        static_cast<std::size_t>(std::max(m_Terminal.Rows() / 3, 2)), Paint::Plain);
    // The stored form has no way to tell typed letters from a reference.
    if (m_TextReadBack != m_Session.Text())
        add(u"Stored, this will read: " + m_TextReadBack, 1, Paint::Fault);
    return messages;
}

// Keeps the cursor's line in sight, and a mark below it.
void EditorView::ScrollTo(const std::vector<Line>& lines, int row, int height)
{
    const auto isWanted = [row](const Line& line) { return line.row == row; };
    const int first =
        static_cast<int>(std::find_if(lines.begin(), lines.end(), isWanted) - lines.begin());
    const bool hasMark = first + 1 < static_cast<int>(lines.size()) &&
                         lines[static_cast<std::size_t>(first + 1)].isMark && height > 1;
    m_Top = std::clamp(m_Top, std::max(first + (hasMark ? 2 : 1) - height, 0), first);
}

void EditorView::Draw()
{
    const TextLayout layout(m_Session.Text(), Width());
    std::vector<Message> status = Status();
    // The text goes before the status, which is why a small terminal cuts that.
    const int room = std::max(m_Terminal.Rows() - 4, 0); // beside title, footer and two of text
    status.resize(std::min(status.size(), static_cast<std::size_t>(room)));
    const int statusRow = m_Terminal.Rows() - 1 - static_cast<int>(status.size());
    m_TextHeight = static_cast<std::size_t>(std::max(statusRow - 1, 1));

    m_Terminal.Clear();
    const bool isChanged =
        m_Document.IsChanged() || m_Session.Stored() != m_Document.Expression(m_Formula);
    m_Terminal.WriteBar(0, u"Formula " + m_Facts.value.name + (isChanged ? u" *" : u""),
                        Paint::Bar);
    for (std::size_t line = 0; line < status.size(); ++line)
        m_Terminal.Write(statusRow + static_cast<int>(line), 0, status[line].text,
                         status[line].paint);
    m_Terminal.WriteBar(m_Terminal.Rows() - 1,
                        m_Notice.IsEmpty() ? FooterOf(Keys(), m_Terminal.Columns()) : m_Notice,
                        m_IsRefusal ? Paint::Refused : Paint::Bar);
    DrawText(layout, Lines(layout));
}

// Comes last, since what is drawn takes the cursor along.
void EditorView::DrawText(const TextLayout& layout, const std::vector<Line>& lines)
{
    const TextLayout::Place cursor = layout.PlaceOf(m_Session.Cursor());
    ScrollTo(lines, cursor.row, static_cast<int>(m_TextHeight));
    const std::size_t top = static_cast<std::size_t>(m_Top);
    const std::size_t end = std::min(lines.size(), top + m_TextHeight);
    int cursorRow = 0;
    for (std::size_t index = top; index < end; ++index) {
        const int screenRow = static_cast<int>(index - top) + 1;
        DrawLine(layout, lines[index], screenRow);
        if (lines[index].row == cursor.row && !lines[index].isMark)
            cursorRow = screenRow;
    }
    m_Terminal.ShowCursor(cursorRow, cursor.column);
}

// Character by character, since a row may change paint at any of them.
void EditorView::DrawLine(const TextLayout& layout, const Line& line, int screenRow)
{
    if (line.isMark) {
        const int column = layout.PlaceOf(std::max(m_Facts.faultPos, 0)).column;
        m_Terminal.Write(screenRow, column, u"^", Paint::Fault);
        return;
    }
    const CString text = m_Session.Text();
    int column = 0;
    for (const Glyph& glyph : layout.Rows()[static_cast<std::size_t>(line.row)].glyphs) {
        m_Terminal.Write(screenRow, column, text.Mid(glyph.position, glyph.length),
                         PaintAt(m_Session.Expression(), glyph.position));
        column += glyph.width;
    }
}
