#include "EngineObjects.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include <TovoJob/Fault.h>

#include "ExpressionText.h"
#include "NumberText.h"

namespace tovo::job {

namespace {

// The engine keeps a constant as a text in thousandths and divides by 1,000. The text is chosen so
// that the quotient is the number itself. For one number in fifty there is none, and the quotient
// is a neighbour of the number; beyond 1.7e305 it is that.
CString Thousandths(double value)
{
    constexpr double kMost = std::numeric_limits<double>::max();
    const double product = std::clamp(value * 1000.0, -kMost, kMost);
    for (const double scaled :
         {product, std::nextafter(product, -kMost), std::nextafter(product, kMost)}) {
        if (scaled / 1000.0 == value)
            return Wide(NumberText(scaled));
    }
    return Wide(NumberText(product));
}

CString CombinedString(const Element& element)
{
    struct Writer {
        CString operator()(std::monostate) const { return CString(); }
        CString operator()(double number) const { return Thousandths(number); }
        CString operator()(bool yes) const { return yes ? u"1000" : u"0"; }
        CString operator()(const ObjectName& object) const
        {
            return static_cast<char16_t>(WriteReference({object.kind, ""})[0]) + Wide(object.name);
        }
    };
    return std::visit(Writer(), element);
}

// A column limit may be missing where there is one column.
double LimitAt(const std::vector<double>& limits, int index)
{
    const auto at = static_cast<std::size_t>(index);
    return at < limits.size() ? limits[at] : 0.0;
}

// The outcome of a call that went well, or not.
template <typename Object>
Evaluation Told(Object& object, int isDone, unsigned int message)
{
    return isDone ? Evaluation{true, object.GetValue(), 0} : Evaluation{false, 0.0, message};
}

template <typename Linked>
Evaluation CalculateLinked(Linked& linked)
{
    unsigned int message = 0;
    const int isDone = linked.Calculate(message, nullptr);
    return Told(linked, isDone, message ? message : MSG_JOB_LINKED_FAILED);
}

} // namespace

EngineFormula::EngineFormula(CalcSetImpl& set, const Formula& formula)
    : InItsTurn(&set), m_Linked(formula.linked)
{
    CString name = Wide(formula.name);
    SetName(name);
    SetFromEncodedString(Wide(formula.expression));
}

Evaluation EngineFormula::Evaluate()
{
    if (m_Linked)
        return CalculateLinked(*m_Linked);
    const Turn turn(*this);
    unsigned int message = 0;
    const int isDone = Calculate(message, nullptr);
    return Told(*this, isDone, message);
}

unsigned int EngineFormula::CheckAlone()
{
    if (m_Linked)
        return 0;
    const Turn turn(*this);
    unsigned int message = 0;
    IsValid(message, 0);
    return message;
}

EngineTable::EngineTable(CalcSetImpl& set, std::shared_ptr<const Table> table)
    : InItsTurn(&set, RowsOf(*table), ColumnsOf(*table)), m_Record(std::move(table))
{
    CString name = Wide(m_Record->name);
    SetName(name);
    if (!m_Record->linked)
        Fill(*this, set, *m_Record);
}

Evaluation EngineTable::Evaluate()
{
    if (m_Record->linked)
        return CalculateLinked(*m_Record->linked);
    const Turn turn(*this);
    // The table would answer from its value, or from its verdict, as long as a flag is set.
    SetCalculated(0);
    unsigned int message = 0;
    const int isDone = IsValid(message, 1) && Calculate(message, nullptr);
    if (!isDone)
        return {false, 0.0, message};
    const auto value = ReachedValue(*this, *m_Record);
    return value ? Evaluation{true, *value, 0} : Evaluation{false, 0.0, MSG_JOB_EMPTY_CELL};
}

unsigned int EngineTable::CheckAlone()
{
    if (m_Record->linked)
        return 0;
    const Turn turn(*this);
    SetValidated(0);
    unsigned int message = 0;
    IsValid(message, 0);
    SetValidated(0);
    return message;
}

void Fill(FormulaTableImpl& stock, ICalculationSet& set, const Table& table)
{
    stock.GetRowSelector().init(CombinedString(table.rowSelector));
    stock.GetColumnSelector().init(CombinedString(table.columnSelector));
    for (int column = 0; column < stock.GetColumnCount(); ++column)
        stock.SetColumnLimit(column, LimitAt(table.columnLimits, column));
    for (int row = 0; row < stock.GetRowCount(); ++row) {
        stock.SetRowLimit(row, LimitAt(table.rowLimits, row));
        int column = 0;
        for (const Element& cell : table.cells[static_cast<std::size_t>(row)])
            // From here on the table owns the cell.
            stock.SetCell(row, column++,
                          std::make_unique<CFormtblElem>(CombinedString(cell), set).release());
    }
}

std::optional<double> ReachedValue(const FormulaTableImpl& stock, const Table& table)
{
    const auto row = static_cast<std::size_t>(stock.GetRowIndex());
    const auto column = static_cast<std::size_t>(stock.GetColIndex());
    const Element& cell = table.cells[row][column];
    if (std::holds_alternative<std::monostate>(cell))
        return std::nullopt;
    const auto* const number = std::get_if<double>(&cell);
    return number ? *number : stock.GetCell(stock.GetRowIndex(), stock.GetColIndex())->value();
}

int RowsOf(const Table& table)
{
    return std::max(2, static_cast<int>(table.cells.size()));
}

int ColumnsOf(const Table& table)
{
    return table.cells.empty() ? 1 : static_cast<int>(table.cells.front().size());
}

std::unique_ptr<VariableImpl> MakeEngineVariable(CalcSetImpl& set, const Variable& variable)
{
    auto made = std::make_unique<VariableImpl>(&set);
    CString name = Wide(variable.name);
    made->SetName(name);
    made->SetUnit(Wide(variable.unit), 0);
    made->SetValue(variable.value);
    return made;
}

} // namespace tovo::job
