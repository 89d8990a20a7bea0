#include "TableView.h"

#include <algorithm>
#include <utility>

#include "Glyphs.h"
#include "ObjectRows.h"

namespace {

constexpr int kFieldWidth = 16;
constexpr std::size_t kHeadLines = TableGrid::kFirstRowLine;

const std::vector<KeyHelp>& Help()
{
    static const std::vector<KeyHelp> kHelp = {
        {u"arrows, page keys", u"move"},
        {u"Enter", u"edit the selector, the limit or the cell: a number, yes or no, or a name"},
        {u"letters, digits", u"type a new text for it"},
        {u"Delete", u"empty the cell"},
        {u"F2, F3", u"new row below, new column to the right"},
        {u"F4, F5", u"remove the row, the column"},
        {u"F6", u"offer corrections of a fault"},
        {u"F7", u"why: how the value came about"},
        {u"F8", u"who: the users of the table"},
        {u"Ctrl-Z, Ctrl-Y", u"undo, redo"},
        {u"Ctrl-S, Ctrl-W", u"save, save as"},
        {u"Esc", u"back to the list"},
        {u"Ctrl-Q", u"leave, with a question if something is not saved"},
    };
    return kHelp;
}

} // namespace

TableView::TableView(Terminal& terminal, Document& document, Commands& commands, std::string table)
    : m_Terminal(terminal),
      m_Document(document),
      m_Commands(commands),
      m_Object(tovo::TableNamed(std::move(table)))
{}

Key TableView::Run()
{
    for (;;) {
        m_Document.Update();
        Fit();
        Draw();
        const KeyPress press = m_Terminal.Read();
        if (press.key == Key::Idle)
            continue;
        m_Notice = {};
        if (press.key == Key::Escape || press.key == Key::Quit || press.key == Key::HangUp)
            return press.key;
        Handle(press);
        // An undo may reach back to before the table was there, or had this name.
        if (!m_Document.Job().Has(m_Object))
            return Key::Escape;
    }
}

TableGrid TableView::Grid() const
{
    return {*m_Document.Job().FindTable(m_Object.name), m_Document.Job(), m_Commands.Decimal()};
}

void TableView::Handle(const KeyPress& press)
{
    if (HandleMove(press.key))
        return;
    switch (press.key) {
    case Key::Enter:
        EditField(Wide(Grid().TextAt(m_Line, m_Column)));
        break;
    case Key::Character:
        EditField(press.text);
        break;
    case Key::F1:
        m_Commands.ShowKeys(u"Keys of a table", Help());
        break;
    case Key::F6:
        m_Notice = m_Commands.Correct(m_Object);
        break;
    case Key::F7:
        m_Commands.ShowWhy(m_Object);
        break;
    case Key::F8:
        m_Commands.ShowUsers(m_Object, m_Notice);
        break;
    case Key::Undo:
        m_Notice = {m_Document.Undo() ? u"Taken back" : u"Nothing to undo"};
        break;
    case Key::Redo:
        m_Notice = {m_Document.Redo() ? u"Done again" : u"Nothing to redo"};
        break;
    case Key::Save:
        m_Notice = m_Commands.Save();
        break;
    case Key::SaveAs:
        m_Notice = m_Commands.SaveAs();
        break;
    default:
        HandleChange(press.key);
    }
}

// Returns false for a key that is no move.
bool TableView::HandleMove(Key key)
{
    const std::size_t page = static_cast<std::size_t>(std::max(m_Terminal.Rows() - 6, 1));
    const auto back = [](std::size_t& place, std::size_t by) { place -= std::min(place, by); };
    if (key == Key::Up)
        back(m_Line, 1);
    else if (key == Key::Down)
        ++m_Line;
    else if (key == Key::PageUp)
        back(m_Line, page);
    else if (key == Key::PageDown)
        m_Line += page;
    else if (key == Key::Left)
        back(m_Column, 1);
    else if (key == Key::Right || key == Key::Tab)
        ++m_Column;
    else if (key == Key::Home)
        m_Column = 0;
    else if (key == Key::End)
        m_Column = Grid().ColumnCount();
    else
        return false;
    return true;
}

void TableView::HandleChange(Key key)
{
    const TableGrid grid = Grid();
    if (key == Key::F2) {
        Apply(grid.WithRowBelow(m_Line));
        m_Line = std::max(m_Line + 1, kHeadLines);
    } else if (key == Key::F3) {
        Apply(grid.WithColumnBehind(m_Column));
        m_Column += m_Notice.isRefusal ? 0 : 1;
    } else if (key == Key::F4) {
        Apply(grid.WithoutRow(m_Line));
    } else if (key == Key::F5) {
        Apply(grid.WithoutColumn(m_Column));
    } else if (key == Key::Delete && grid.HasField(m_Line, m_Column)) {
        Apply(grid.WithText(m_Line, m_Column, {}));
    }
}

// Asks again with what was typed until it can be taken.
void TableView::EditField(CString text)
{
    const std::size_t column = m_Line < TableGrid::kColumnLimitsLine ? 0 : m_Column;
    if (!Grid().HasField(m_Line, column))
        return;
    for (;;) {
        const auto typed = AskForText(m_Terminal, u"Content (Del clears): ", text);
        if (!typed)
            return;
        Apply(Grid().WithText(m_Line, column, typed->ToUtf8()));
        if (!m_Notice.isRefusal)
            return;
        text = *typed;
        m_Terminal.WriteBar(m_Terminal.Rows() - 2, std::exchange(m_Notice, {}).text,
                            Paint::Refused);
    }
}

void TableView::Apply(const tovo::Result<tovo::Table>& table)
{
    const auto isDone = table ? m_Document.Apply(tovo::ChangeObject{table.Value()})
                              : tovo::Result<void>(table.Why());
    m_Notice = isDone ? Notice() : Refused(isDone.Why());
    if (!isDone)
        m_Terminal.Beep();
}

// The lines of the head are always in sight, the others scroll.
void TableView::Fit()
{
    const TableGrid grid = Grid();
    m_Line = std::min(m_Line, grid.LineCount() - 1);
    m_Column = std::min(m_Column, grid.ColumnCount() - 1);
    const auto height = static_cast<std::size_t>(std::max(m_Terminal.Rows() - 6, 1));
    const auto width =
        static_cast<std::size_t>(std::max(m_Terminal.Columns() / kFieldWidth - 1, 1));
    if (m_Line >= kHeadLines)
        m_TopLine = std::clamp(
            m_TopLine, m_Line + 1 > height + kHeadLines ? m_Line + 1 - height : kHeadLines, m_Line);
    if (m_Column >= 1)
        m_LeftColumn =
            std::clamp(m_LeftColumn, m_Column + 1 > width + 1 ? m_Column + 1 - width : 1, m_Column);
    m_LeftColumn = std::min(m_LeftColumn, grid.ColumnCount() - 1);
    m_TopLine = std::min(m_TopLine, grid.LineCount() - 1);
}

void TableView::Draw()
{
    const TableGrid grid = Grid();
    m_Terminal.Clear();
    const CString star = m_Document.IsModified() ? u" *" : u"";
    m_Terminal.WriteBar(0, u"Table " + Wide(m_Object.name) + star, Paint::Bar);
    const int statusRow = m_Terminal.Rows() - 2;
    DrawGrid(grid, statusRow - 1);
    m_Terminal.Write(statusRow, 0, ResultText(),
                     m_Document.Job().ValueOf(m_Object) ? Paint::Plain : Paint::Fault);
    DrawFooter(m_Terminal, m_Notice,
               {u"Esc back", u"F1 keys", u"Enter edit", u"F2 row", u"F3 column", u"^S save",
                u"^Z undo", u"^Q quit"});
    m_Terminal.HideCursor();
}

void TableView::DrawGrid(const TableGrid& grid, int height)
{
    const auto draw = [&](int row, int column, std::size_t line, std::size_t field, int width) {
        const bool isHead = line < TableGrid::kColumnLimitsLine;
        const bool isSelected = line == m_Line && (isHead || field == m_Column);
        m_Terminal.Write(row, column, Padded(Wide(grid.TextAt(line, field)), width - 1),
                         isSelected ? Paint::Selected : Paint::Plain);
    };
    const auto drawLine = [&](int row, std::size_t line) {
        draw(row, 0, line, 0, kFieldWidth);
        int column = kFieldWidth;
        for (std::size_t field = m_LeftColumn;
             field < grid.ColumnCount() && column + kFieldWidth <= m_Terminal.Columns(); ++field) {
            draw(row, column, line, field, kFieldWidth);
            column += kFieldWidth;
        }
    };
    for (const std::size_t line : {TableGrid::kRowSelectorLine, TableGrid::kColumnSelectorLine}) {
        m_Terminal.Write(static_cast<int>(line) + 1, 0,
                         line == TableGrid::kRowSelectorLine ? u"rows by" : u"columns by");
        draw(static_cast<int>(line) + 1, kFieldWidth, line, 0, m_Terminal.Columns() - kFieldWidth);
    }
    drawLine(3, TableGrid::kColumnLimitsLine);
    if (m_Line != TableGrid::kColumnLimitsLine || m_Column != 0)
        m_Terminal.Write(3, 0, u"up to");
    for (int row = 4;
         row <= height && m_TopLine + static_cast<std::size_t>(row) - 4 < grid.LineCount(); ++row)
        drawLine(row, m_TopLine + static_cast<std::size_t>(row) - 4);
}

CString TableView::ResultText() const
{
    if (const auto failure = m_Document.Job().FailureOf(m_Object)) {
        const std::string place = failure->place.part.empty() ? "" : " " + failure->place.part;
        return Wide(failure->text + " (" + std::to_string(failure->message) + ")" + place);
    }
    const ObjectFacts facts = FactsOf(m_Document.Job(), m_Object, m_Commands.Decimal());
    return Wide("= " + facts.value + " " + facts.unit);
}
