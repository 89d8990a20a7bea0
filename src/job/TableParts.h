#ifndef TOVOJOB_SRC_TABLEPARTS_H
#define TOVOJOB_SRC_TABLEPARTS_H

#include <cstddef>
#include <string>

#include <TovoJob/Objects.h>

namespace tovo::job {

// A selector or a cell of a table.
struct TablePart {
    enum class What { RowSelector, ColumnSelector, Cell };

    What what = What::Cell;
    std::size_t row = 0; // of a cell, from 0
    std::size_t column = 0;

    // As people are told, who count from 1.
    std::string Words() const
    {
        switch (what) {
        case What::RowSelector:
            return "row selector";
        case What::ColumnSelector:
            return "column selector";
        case What::Cell:
            break;
        }
        return "row " + std::to_string(row + 1) + ", column " + std::to_string(column + 1);
    }
};

inline bool HasColumns(const Table& table)
{
    return !table.cells.empty() && table.cells.front().size() > 1;
}

// Calls visit(const TablePart&, Element&) for everything in a table that a calculation can reach,
// in the order in which the engine checks it. The table may be const.
template <typename AnyTable, typename Visit>
void ForEachElement(AnyTable& table, Visit visit)
{
    visit(TablePart{TablePart::What::RowSelector}, table.rowSelector);
    if (HasColumns(table))
        visit(TablePart{TablePart::What::ColumnSelector}, table.columnSelector);
    for (std::size_t row = 0; row < table.cells.size(); ++row) {
        for (std::size_t column = 0; column < table.cells[row].size(); ++column)
            visit(TablePart{TablePart::What::Cell, row, column}, table.cells[row][column]);
    }
}

// The same for everything that a table keeps: also for a column selector that has no effect.
template <typename AnyTable, typename Visit>
void ForEachKeptElement(AnyTable& table, Visit visit)
{
    ForEachElement(table, visit);
    if (!HasColumns(table))
        visit(TablePart{TablePart::What::ColumnSelector}, table.columnSelector);
}

} // namespace tovo::job

#endif
