#ifndef TOVO_EDIT_TABLEGRID_H
#define TOVO_EDIT_TABLEGRID_H

#include <cstddef>
#include <string>
#include <string_view>

#include <TovoJob/TovoJob.h>

// A table as a grid of fields, each with a text: the row selector and the column selector in lines
// of their own, the column limits in the third line, and below them the rows, each with its limit
// in front of its cells.
//
// Does not own: table and job, which must outlive it and stay as they are meanwhile.
class TableGrid {
public:
    static constexpr std::size_t kRowSelectorLine = 0;
    static constexpr std::size_t kColumnSelectorLine = 1;
    static constexpr std::size_t kColumnLimitsLine = 2;
    static constexpr std::size_t kFirstRowLine = 3;

    TableGrid(const tovo::Table& table, const tovo::Job& job, std::string decimal);

    std::size_t LineCount() const { return kFirstRowLine + m_Table.cells.size(); }
    std::size_t ColumnCount() const { return 1 + CellColumns(); }
    // Whether the grid has a field there. The first line and the second have just one, at 0.
    bool HasField(std::size_t line, std::size_t column) const;
    std::string TextAt(std::size_t line, std::size_t column) const;

    // These return the table after the change; whether it may be is for the job to say.
    tovo::Result<tovo::Table> WithText(std::size_t line, std::size_t column,
                                       std::string_view text) const;
    // A row below the line, and a column to the right, with limits between their neighbours'.
    tovo::Table WithRowBelow(std::size_t line) const;
    tovo::Table WithColumnBehind(std::size_t column) const;
    tovo::Table WithoutRow(std::size_t line) const;
    tovo::Table WithoutColumn(std::size_t column) const;

private:
    std::size_t CellColumns() const { return m_Table.cells.front().size(); }

    const tovo::Table& m_Table;
    const tovo::Job& m_Job;
    std::string m_Decimal;
};

#endif
