#include "Measure.h"

#include <algorithm>
#include <memory>

#include "Jobs.h"

// Looking up in tables of constants: both selectors are variables that a host sets, and every place
// of the table has its turn. Against two binary searches, as there is nothing like a table in the
// other engines: for C++ called directly, for muParser as a function in an expression.

namespace bench {
namespace {

struct Shape {
    int rows;
    int columns;
};
constexpr Shape kShapes[] = {{10, 10}, {100, 100}, {1000, 10}};

enum Selector { ROW, COLUMN };

// The limits are 10, 20, 30 and so on; a place is met by a value below its limit.
double LimitAt(int index)
{
    return 10.0 * (index + 1);
}

int CellAt(const Shape& shape, int row, int column)
{
    return row * shape.columns + column;
}

class OurTable {
public:
    explicit OurTable(const Shape& shape)
        : m_Job({{"Row", 0}, {"Column", 0}}), m_Table(&m_Job.Set(), shape.rows, shape.columns)
    {
        CString name(u"Table");
        m_Table.SetName(name);
        m_Table.GetRowSelector().SetVariable(u"Row");
        m_Table.GetColumnSelector().SetVariable(u"Column");
        for (int row = 0; row < shape.rows; ++row)
            m_Table.SetRowLimit(row, LimitAt(row));
        for (int column = 0; column < shape.columns; ++column)
            m_Table.SetColumnLimit(column, LimitAt(column));
        for (int row = 0; row < shape.rows; ++row)
            for (int column = 0; column < shape.columns; ++column)
                m_Table.SetCell(row, column, MakeCell(CellAt(shape, row, column)).release());
        m_Job.Set().AddFormulaTable(&m_Table);
    }

    double LookUp(double row, double column)
    {
        m_Job.SetValue(ROW, row);
        m_Job.SetValue(COLUMN, column);
        m_Job.Set().StartNewPass();
        unsigned int message = 0;
        if (!m_Table.Calculate(message, nullptr))
            Require(false, "message " + std::to_string(message));
        return m_Table.GetValue();
    }

private:
    std::unique_ptr<CFormtblElem> MakeCell(int value)
    {
        const CString thousandths(std::to_string(1000 * value));
        return std::make_unique<CFormtblElem>(thousandths, m_Job.Set());
    }

    OurJob m_Job;
    FormulaTableImpl m_Table;
};

class TableByHand {
public:
    explicit TableByHand(const Shape& shape) : m_Columns(shape.columns)
    {
        for (int row = 0; row < shape.rows - 1; ++row)
            m_RowLimits.push_back(LimitAt(row));
        for (int column = 0; column < shape.columns - 1; ++column)
            m_ColumnLimits.push_back(LimitAt(column));
        for (int cell = 0; cell < shape.rows * shape.columns; ++cell)
            m_Cells.push_back(cell);
    }

    double LookUp(double row, double column) const
    {
        return m_Cells[Place(m_RowLimits, row) * static_cast<std::size_t>(m_Columns) +
                       Place(m_ColumnLimits, column)];
    }

private:
    static std::size_t Place(const std::vector<double>& limits, double value)
    {
        return static_cast<std::size_t>(std::lower_bound(limits.begin(), limits.end(), value) -
                                        limits.begin());
    }

    int m_Columns;
    std::vector<double> m_RowLimits;
    std::vector<double> m_ColumnLimits;
    std::vector<double> m_Cells;
};

class MuParserTable {
public:
    explicit MuParserTable(const Shape& shape)
        : m_Job({{"Row", 0}, {"Column", 0}}), m_Table(shape), m_Parser(m_Job.MakeParser())
    {
        m_Parser.DefineFunUserData("Rate", Rate, &m_Table);
        m_Parser.SetExpr("Rate(Row,Column)");
    }

    double LookUp(double row, double column)
    {
        m_Job.SetValue(ROW, row);
        m_Job.SetValue(COLUMN, column);
        return m_Parser.Eval();
    }

private:
    static double Rate(void* table, double row, double column)
    {
        return static_cast<const TableByHand*>(table)->LookUp(row, column);
    }

    MuParserJob m_Job;
    TableByHand m_Table;
    mu::Parser m_Parser;
};

// Meets the rows and the columns in leaps, so that no search profits from the one before.
class Walk {
public:
    explicit Walk(const Shape& shape) : m_Shape(shape) {}

    void Step()
    {
        m_Row = (m_Row + 37) % m_Shape.rows;
        m_Column = (m_Column + 7) % m_Shape.columns;
    }
    double Row() const { return LimitAt(m_Row) - 5; }
    double Column() const { return LimitAt(m_Column) - 5; }

private:
    Shape m_Shape;
    int m_Row = 0;
    int m_Column = 0;
};

template <typename Table>
void RegisterLookup(ResultTable& results, const Shape& shape, Engine engine)
{
    const std::string row = std::to_string(shape.rows) + " x " + std::to_string(shape.columns);
    const auto table = std::make_shared<Table>(shape);
    for (int index = 0; index < shape.rows; ++index)
        for (int column = 0; column < shape.columns; ++column)
            RequireEqual(table->LookUp(LimitAt(index) - 5, LimitAt(column) - 5),
                         CellAt(shape, index, column), "table of " + row);
    Register(results, kLookup, row, engine, [table, shape](benchmark::State& state) {
        Walk walk(shape);
        for (auto _ : state) {
            walk.Step();
            benchmark::DoNotOptimize(table->LookUp(walk.Row(), walk.Column()));
        }
    });
}

} // namespace

void RegisterLookups(ResultTable& table)
{
    for (const Shape& shape : kShapes) {
        RegisterLookup<OurTable>(table, shape, Engine::Ours);
        RegisterLookup<MuParserTable>(table, shape, Engine::MuParser);
        RegisterLookup<TableByHand>(table, shape, Engine::ByHand);
    }
}

} // namespace bench
