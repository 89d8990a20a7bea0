#include "EditorView.h"

#include <algorithm>

#include "FunctionList.h"
#include "ObjectRows.h"

namespace {

constexpr std::size_t kMostResultLines = 3;
constexpr int kMostCompletionRows = 8;
constexpr int kCompletionWidth = 44;

const std::vector<CString>& Keys()
{
    static const std::vector<CString> kKeys = {u"Esc back",     u"F1 keys",      u"F2 references",
                                               u"F3 functions", u"Tab complete", u"F6 correct",
                                               u"^S save",      u"^Z undo",      u"^Q quit"};
    return kKeys;
}

const std::vector<KeyHelp>& Help()
{
    static const std::vector<KeyHelp> kHelp = {
        {u"letters", u"type names as they are; a list opens with what fits"},
        {u"Tab", u"the list of all that fits here; in the list take the chosen one, as Enter does"},
        {u"Up, Down, Esc", u"in the list choose, or close it"},
        {u"arrows, Home, End", u"move; past a reference as a whole"},
        {u"Ctrl-Left, Ctrl-Right", u"to the next word"},
        {u"Backspace, Delete", u"take a character, or a reference whole"},
        {u"F2", u"insert a variable, a formula or a table"},
        {u"F3", u"insert a function or another word"},
        {u"F6", u"offer corrections of what is wrong"},
        {u"F7", u"why: how the value came about"},
        {u"F8", u"who: the users of the formula"},
        {u"Ctrl-Z, Ctrl-Y", u"undo and redo, word by word"},
        {u"Ctrl-S, Ctrl-W", u"save, save as"},
        {u"Esc", u"back to the list; the text is kept"},
        {u"Ctrl-Q", u"leave, with a question if something is not saved"},
    };
    return kHelp;
}

// The whole stretch is painted, blanks included: it is what a key takes.
Paint PaintAt(const CFmlaExprBase& expression, int position)
{
    for (int index = 0; index < expression.NumVars(); ++index) {
        if (position >= expression.VarPos(index) && position < expression.VarEndPos(index))
            return PaintOf(static_cast<tovo::Kind>(expression.VarType(index)));
    }
    return Paint::Plain;
}

// Variables and job values are told by their bare names, as in a report of the job.
std::string ReferenceText(const tovo::ObjectName& object)
{
    const bool needsWord = object.kind == tovo::Kind::Formula || object.kind == tovo::Kind::Table;
    return (needsWord ? std::string(WordFor(object.kind)) + " " : "") + object.name;
}

const char16_t* WordFor(tovo::CompletionKind kind)
{
    switch (kind) {
    case tovo::CompletionKind::Variable:
        return u"variable";
    case tovo::CompletionKind::Formula:
        return u"formula";
    case tovo::CompletionKind::Table:
        return u"table";
    case tovo::CompletionKind::Function:
        return u"function";
    case tovo::CompletionKind::JobValue:
        return u"job value";
    case tovo::CompletionKind::Constant:
    case tovo::CompletionKind::Operator:
        break;
    }
    return u"word";
}

} // namespace

EditorView::EditorView(Terminal& terminal, Document& document, Commands& commands,
                       const std::string& formula)
    : m_Terminal(terminal), m_Document(document), m_Commands(commands), m_Draft(document, formula)
{
    Check();
}

Key EditorView::Run()
{
    for (;;) {
        Draw();
        const KeyPress press = m_Terminal.Read();
        // A moment without keys is the time to look for corrections.
        if (press.key == Key::Idle) {
            if (m_Problem)
                Corrections();
            continue;
        }
        m_Notice = {};
        if (press.key == Key::Escape && !m_Completions.empty()) {
            m_Completions.clear();
            continue;
        }
        if (press.key == Key::Escape || press.key == Key::Quit || press.key == Key::HangUp)
            return press.key;
        Handle(press);
    }
}

void EditorView::Handle(const KeyPress& press)
{
    if (press.key == Key::Resize || press.key == Key::Other || HandleCompletions(press.key))
        return;
    m_Completions.clear();
    if (press.key == Key::Save)
        m_Notice = m_Commands.Save();
    else if (press.key == Key::SaveAs)
        m_Notice = m_Commands.SaveAs();
    else if (press.key == Key::Tab)
        OpenCompletions(true);
    else if (press.key >= Key::F6 || press.key == Key::F1)
        HandleQuestion(press.key);
    if (press.key == Key::Click)
        Click(press);
    else if (!HandleMove(press))
        HandleEdit(press);
}

// Returns false for a key that is none of the list.
bool EditorView::HandleCompletions(Key key)
{
    if (m_Completions.empty())
        return false;
    if (key == Key::Up || key == Key::Down || key == Key::PageUp || key == Key::PageDown) {
        m_CompletionCursor.Handle(key, kMostCompletionRows);
        m_CompletionCursor.Fit(static_cast<int>(m_Completions.size()), kMostCompletionRows);
        return true;
    }
    if (key != Key::Enter && key != Key::Tab)
        return false;
    const auto chosen = static_cast<std::size_t>(m_CompletionCursor.Selected());
    Tell(m_Draft.Take(m_Completions[chosen]));
    m_Completions.clear();
    Check();
    return true;
}

// Returns false for a key that is no move.
bool EditorView::HandleMove(const KeyPress& press)
{
    const int page = static_cast<int>(m_TextHeight);
    const int before = Session().Cursor();
    switch (press.key) {
    case Key::Left:
        Session().MoveLeft();
        break;
    case Key::Right:
        Session().MoveRight();
        break;
    case Key::WordLeft:
        Session().MoveWordLeft();
        break;
    case Key::WordRight:
        Session().MoveWordRight();
        break;
    case Key::Up:
    case Key::Down:
        MoveByRows(press.key == Key::Up ? -1 : 1);
        break;
    case Key::PageUp:
    case Key::PageDown:
        MoveByRows(press.key == Key::PageUp ? -page : page);
        break;
    case Key::Home:
        Session().TravelTo(0);
        break;
    case Key::End:
        Session().TravelTo(Session().Text().GetLength());
        break;
    default:
        return false;
    }
    // A word that the cursor leaves is finished.
    if (Session().Cursor() != before)
        Check();
    return true;
}

void EditorView::HandleEdit(const KeyPress& press)
{
    if (press.key == Key::Character)
        Tell(Session().Type(press.text));
    else if (press.key == Key::Backspace)
        Tell(Session().Backspace());
    else if (press.key == Key::Delete)
        Tell(Session().Delete());
    else if (press.key == Key::F2)
        Tell(InsertReference());
    else if (press.key == Key::F3)
        Tell(InsertFunction());
    else if (press.key == Key::Undo && !Session().Undo())
        m_Notice = {u"Nothing to undo"};
    else if (press.key == Key::Redo && !Session().Redo())
        m_Notice = {u"Nothing to redo"};
    else if (press.key != Key::Undo && press.key != Key::Redo)
        return;
    Check();
    if (press.key == Key::Character || press.key == Key::Backspace)
        OpenCompletions(false);
}

void EditorView::HandleQuestion(Key key)
{
    if (key == Key::F1)
        m_Commands.ShowKeys(u"Keys of the editor", Help());
    else if (key == Key::F6)
        Correct();
    else if (key == Key::F7)
        m_Commands.ShowWhy(m_Draft.Object());
    else if (key == Key::F8)
        m_Commands.ShowUsers(m_Draft.Object(), m_Notice);
}

void EditorView::Tell(KeyRefusal refusal)
{
    if (refusal == KeyRefusal::None)
        return;
    m_Notice.isRefusal = true;
    if (refusal == KeyRefusal::TextLimit)
        m_Notice.text.Format(u"At the text limit of %d characters", kDefaultTextLimit);
    else if (refusal == KeyRefusal::ReferenceLimit)
        m_Notice.text.Format(u"%d references at the most", kMaxReferences);
    else
        m_Notice.text = u"Not inside a reference";
    m_Terminal.Beep();
}

void EditorView::Click(const KeyPress& press)
{
    // A click on the mark or below the text counts for the row above.
    const TextLayout layout(Session().Text(), Width());
    const std::vector<Line> lines = Lines(layout);
    const int shown = press.row - 1;
    if (shown < 0 || shown >= static_cast<int>(m_TextHeight))
        return;
    const std::size_t line = std::min(static_cast<std::size_t>(m_Top + shown), lines.size() - 1);
    Session().PlaceAt(layout.PositionAt({lines[line].row, press.column}));
    Check();
}

void EditorView::MoveByRows(int rows)
{
    const TextLayout layout(Session().Text(), Width());
    // A move, not a click: out of a name that is longer than a row the nearest edge would lead
    // back.
    TextLayout::Place place = layout.PlaceOf(Session().Cursor());
    place.row = std::clamp(place.row + rows, 0, static_cast<int>(layout.Rows().size()) - 1);
    Session().TravelTo(layout.PositionAt(place));
}

// The formula that is edited is among them. To name itself is a fault, and the status says so.
KeyRefusal EditorView::InsertReference()
{
    const ObjectRows objects(m_Document.Job(), m_Commands.Decimal());
    std::vector<PickEntry> entries;
    std::vector<tovo::ObjectName> references;
    for (std::size_t at = 0; at < objects.Count(); ++at) {
        const tovo::ObjectName& object = objects.At(at);
        if (object.kind == tovo::Kind::JobValue)
            continue;
        const ObjectFacts facts = FactsOf(m_Document.Job(), object, m_Commands.Decimal());
        references.push_back(object);
        entries.push_back({Wide(facts.kind), Wide(facts.name), Wide(facts.value + " " + facts.unit),
                           PaintOf(object.kind)});
    }
    const auto chosen = Pick(m_Terminal, u"References", entries, u"insert");
    return chosen ? Session().InsertReference(references[*chosen]) : KeyRefusal::None;
}

KeyRefusal EditorView::InsertFunction()
{
    // The filter looks at the arguments too: who forgot the name may know what it takes.
    const std::vector<Word> words = WordsOfTheLanguage();
    std::vector<PickEntry> entries;
    for (const Word& word : words)
        entries.push_back(
            {word.IsFunction() ? u"function" : u"word", word.name + word.arguments, word.meaning});
    const auto chosen = Pick(m_Terminal, u"Functions", entries, u"insert");
    if (!chosen)
        return KeyRefusal::None;
    return Session().InsertWord(words[*chosen].name, words[*chosen].IsFunction());
}

void EditorView::Check()
{
    m_Draft.Check();
    m_Problem = m_Draft.WhatIsWrong();
    m_Signature = m_Draft.SignatureHere();
    m_Uses = m_Draft.Uses();
    m_Corrections.reset();
}

void EditorView::OpenCompletions(bool all)
{
    m_Completions = m_Draft.Completions(all);
    m_CompletionCursor = {};
    if (all && m_Completions.empty())
        m_Notice = {u"Nothing fits here"};
}

const std::vector<FormulaDraft::Correction>& EditorView::Corrections()
{
    if (!m_Corrections)
        m_Corrections = m_Draft.Corrections();
    return *m_Corrections;
}

void EditorView::Correct()
{
    if (!m_Problem || Corrections().empty()) {
        m_Notice = {m_Problem ? u"No correction is known" : u"Nothing is wrong"};
        return;
    }
    std::vector<PickEntry> entries;
    for (const FormulaDraft::Correction& correction : Corrections()) {
        CFmlaExprBase corrected;
        corrected.SetFromEncodedString(correction.expression);
        entries.push_back({u"correct", Wide(correction.description), corrected.GetTextStr()});
    }
    const auto chosen = Pick(m_Terminal, u"Corrections", entries, u"correct");
    if (!chosen)
        return;
    Session().ReplaceAll(Corrections()[*chosen].expression);
    Check();
}

// A character of two columns must fit into a row, however narrow the terminal.
int EditorView::Width() const
{
    return std::max(m_Terminal.Columns(), 2);
}

// The mark has a line of its own, so a long text is not hidden by it, and a terminal without
// colours shows it.
std::vector<EditorView::Line> EditorView::Lines(const TextLayout& layout) const
{
    const int marked = m_Problem ? layout.PlaceOf(m_Problem->place.begin).row : -1;
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
    for (const CString& line : WrappedLines(ResultText(), Width(), kMostResultLines))
        messages.push_back({line, m_Problem ? Paint::Fault : Paint::Plain});
    if (m_Problem && m_Corrections && !m_Corrections->empty())
        messages.push_back({u"F6: " + Wide(m_Corrections->front().description), Paint::Strong});
    AddSignature(messages);
    AddUses(messages);
    return messages;
}

void EditorView::AddSignature(std::vector<Message>& messages) const
{
    if (!m_Signature)
        return;
    Message message{Wide(m_Signature->text), Paint::Plain};
    if (m_Signature->parameter) {
        const tovo::Span& span = m_Signature->parameters[*m_Signature->parameter];
        message.strong = {static_cast<int>(span.begin.utf16), static_cast<int>(span.end.utf16)};
    }
    message.text += u"  " + Wide(m_Signature->function->sentence);
    messages.push_back(message);
}

void EditorView::AddUses(std::vector<Message>& messages) const
{
    std::string names;
    for (const tovo::Dependency& use : m_Uses)
        names += (names.empty() ? "" : ", ") + ReferenceText(use.object) +
                 (use.isDefined ? "" : " (not in the job)");
    const auto mostLines = static_cast<std::size_t>(std::max(m_Terminal.Rows() / 3, 2));
    const CString text = Wide("depends on: " + (names.empty() ? "nothing" : names));
    for (const CString& line : WrappedLines(text, Width(), mostLines))
        messages.push_back({line, Paint::Plain});
}

CString EditorView::ResultText() const
{
    if (m_Problem)
        return Wide(m_Problem->text);
    const ObjectFacts facts = FactsOf(m_Document.Job(), m_Draft.Object(), m_Commands.Decimal());
    return Wide("= " + facts.value + " " + facts.unit);
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
    const TextLayout layout(Session().Text(), Width());
    std::vector<Message> status = Status();
    // The text goes before the status, which is why a small terminal cuts that.
    const int room = std::max(m_Terminal.Rows() - 4, 0); // beside title, footer and two of text
    status.resize(std::min(status.size(), static_cast<std::size_t>(room)));
    const int statusRow = m_Terminal.Rows() - 1 - static_cast<int>(status.size());
    m_TextHeight = static_cast<std::size_t>(std::max(statusRow - 1, 1));

    m_Terminal.Clear();
    const CString star = m_Document.IsModified() ? u" *" : u"";
    m_Terminal.WriteBar(0, u"Formula " + Wide(m_Draft.Object().name) + star, Paint::Bar);
    DrawStatus(status, statusRow);
    DrawFooter(m_Terminal, m_Notice, Keys());
    DrawText(layout, Lines(layout));
}

void EditorView::DrawStatus(const std::vector<Message>& status, int row)
{
    for (const Message& message : status) {
        m_Terminal.Write(row, 0, message.text, message.paint);
        const CString strong =
            message.text.Mid(message.strong.begin, message.strong.end - message.strong.begin);
        m_Terminal.Write(row++, WidthOf(message.text.Left(message.strong.begin)), strong,
                         Paint::Strong);
    }
}

// Comes last, since what is drawn takes the cursor along.
void EditorView::DrawText(const TextLayout& layout, const std::vector<Line>& lines)
{
    const TextLayout::Place cursor = layout.PlaceOf(Session().Cursor());
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
    DrawCompletions(cursorRow, cursor.column);
    m_Terminal.ShowCursor(cursorRow, cursor.column);
}

// Character by character, since a row may change paint at any of them.
void EditorView::DrawLine(const TextLayout& layout, const Line& line, int screenRow)
{
    if (line.isMark) {
        DrawMark(layout, screenRow);
        return;
    }
    const CString text = Session().Text();
    int column = 0;
    for (const Glyph& glyph : layout.Rows()[static_cast<std::size_t>(line.row)].glyphs) {
        const bool isFaulty = m_Problem && glyph.position >= m_Problem->place.begin &&
                              glyph.position < m_Problem->place.end;
        m_Terminal.Write(screenRow, column, text.Mid(glyph.position, glyph.length),
                         isFaulty ? Paint::FaultPlace
                                  : PaintAt(Session().Expression(), glyph.position));
        column += glyph.width;
    }
}

// Below the faulty stretch, up to the end of its first row.
void EditorView::DrawMark(const TextLayout& layout, int screenRow)
{
    const TextLayout::Place begin = layout.PlaceOf(m_Problem->place.begin);
    const TextLayout::Place end = layout.PlaceOf(m_Problem->place.end);
    const int endColumn = end.row == begin.row ? end.column : Width();
    const int width = std::max(endColumn - begin.column, 1);
    m_Terminal.Write(screenRow, begin.column, CString(u'^', width), Paint::Fault);
}

// Below the cursor, or above it where there is more room.
void EditorView::DrawCompletions(int cursorRow, int cursorColumn)
{
    const int count = static_cast<int>(m_Completions.size());
    const int below = m_Terminal.Rows() - 2 - cursorRow;
    const int above = cursorRow - 1;
    const int height = std::min({count, kMostCompletionRows, std::max(below, above)});
    const int firstRow = height <= below ? cursorRow + 1 : cursorRow - height;
    const int width = std::min(kCompletionWidth, m_Terminal.Columns());
    const int column = std::clamp(cursorColumn, 0, m_Terminal.Columns() - width);
    m_CompletionCursor.Fit(count, std::max(height, 1));
    for (int row = 0; row < height; ++row) {
        const int index = m_CompletionCursor.Top() + row;
        const tovo::Completion& completion = m_Completions[static_cast<std::size_t>(index)];
        const CString line =
            u"\u2502" + Padded(Wide(completion.label), width / 2) + u" " + DetailOf(completion);
        m_Terminal.Write(firstRow + row, column, Padded(line, width),
                         index == m_CompletionCursor.Selected() ? Paint::Selected : Paint::Plain);
    }
}

CString EditorView::DetailOf(const tovo::Completion& completion) const
{
    CString detail = WordFor(completion.kind);
    if (completion.kind <= tovo::CompletionKind::Table) {
        const tovo::ObjectName object{static_cast<tovo::Kind>(completion.kind), completion.label};
        const ObjectFacts facts = FactsOf(m_Document.Job(), object, m_Commands.Decimal());
        detail += u" " + Wide(facts.value + " " + facts.unit);
    }
    return detail;
}
