#include "TableGrid.h"

#include <algorithm>
#include <utility>

#include "ElementText.h"

namespace {

// A limit for what comes in at a position.
void InsertLimit(std::vector<double>& limits, std::size_t position)
{
    double limit = 1.0;
    if (position > 0)
        limit = position < limits.size() ? (limits[position - 1] + limits[position]) / 2
                                         : limits[position - 1] + 1.0;
    limits.insert(limits.begin() + static_cast<std::ptrdiff_t>(position), limit);
}

template <typename Entry>
void Erase(std::vector<Entry>& entries, std::size_t position)
{
    if (position < entries.size())
        entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(position));
}

} // namespace

TableGrid::TableGrid(const tovo::Table& table, const tovo::Job& job, std::string decimal)
    : m_Table(table), m_Job(job), m_Decimal(std::move(decimal))
{}

bool TableGrid::HasField(std::size_t line, std::size_t column) const
{
    if (line < kColumnLimitsLine)
        return column == 0;
    if (line == kColumnLimitsLine)
        return column > 0 && column <= m_Table.columnLimits.size();
    return line < LineCount() && column < ColumnCount();
}

std::string TableGrid::TextAt(std::size_t line, std::size_t column) const
{
    if (!HasField(line, column))
        return {};
    if (line < kColumnLimitsLine)
        return ElementText(line == kRowSelectorLine ? m_Table.rowSelector : m_Table.columnSelector,
                           m_Job, m_Decimal);
    if (line == kColumnLimitsLine)
        return ExactText(m_Table.columnLimits[column - 1], m_Decimal);
    const std::size_t row = line - kFirstRowLine;
    if (column == 0)
        return ExactText(m_Table.rowLimits[row], m_Decimal);
    return ElementText(m_Table.cells[row][column - 1], m_Job, m_Decimal);
}

tovo::Result<tovo::Table> TableGrid::WithText(std::size_t line, std::size_t column,
                                              std::string_view text) const
{
    tovo::Table changed = m_Table;
    const bool isRowLimit = line >= kFirstRowLine && column == 0;
    if (line == kColumnLimitsLine || isRowLimit) {
        const auto limit = ReadValue(text, false, m_Job, m_Decimal);
        if (!limit)
            return limit.Why();
        (isRowLimit ? changed.rowLimits[line - kFirstRowLine] : changed.columnLimits[column - 1]) =
            limit.Value();
        return changed;
    }
    auto element = ReadElement(text, m_Job, m_Decimal);
    if (!element)
        return element.Why();
    if (line == kRowSelectorLine)
        changed.rowSelector = std::move(element).Value();
    else if (line == kColumnSelectorLine)
        changed.columnSelector = std::move(element).Value();
    else
        changed.cells[line - kFirstRowLine][column - 1] = std::move(element).Value();
    return changed;
}

tovo::Table TableGrid::WithRowBelow(std::size_t line) const
{
    tovo::Table changed = m_Table;
    const std::size_t row = line < kFirstRowLine ? 0 : line - kFirstRowLine + 1;
    InsertLimit(changed.rowLimits, row);
    if (row == 0)
        changed.rowLimits[0] = changed.rowLimits[1] - 1.0;
    changed.cells.insert(changed.cells.begin() + static_cast<std::ptrdiff_t>(row),
                         std::vector<tovo::Element>(CellColumns()));
    return changed;
}

tovo::Table TableGrid::WithColumnBehind(std::size_t column) const
{
    tovo::Table changed = m_Table;
    // A single column may have no limit, of two both have one.
    if (changed.columnLimits.empty())
        changed.columnLimits.push_back(1.0);
    InsertLimit(changed.columnLimits, column);
    if (column == 0)
        changed.columnLimits[0] = changed.columnLimits[1] - 1.0;
    for (std::vector<tovo::Element>& row : changed.cells) {
        row.emplace_back();
        std::rotate(row.begin() + static_cast<std::ptrdiff_t>(column), row.end() - 1, row.end());
    }
    return changed;
}

tovo::Table TableGrid::WithoutRow(std::size_t line) const
{
    tovo::Table changed = m_Table;
    if (line >= kFirstRowLine) {
        Erase(changed.rowLimits, line - kFirstRowLine);
        Erase(changed.cells, line - kFirstRowLine);
    }
    return changed;
}

tovo::Table TableGrid::WithoutColumn(std::size_t column) const
{
    tovo::Table changed = m_Table;
    if (column == 0)
        return changed;
    Erase(changed.columnLimits, column - 1);
    for (std::vector<tovo::Element>& row : changed.cells)
        Erase(row, column - 1);
    return changed;
}
