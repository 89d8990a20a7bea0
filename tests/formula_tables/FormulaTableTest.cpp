#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <random>

#include <TovoPlatform/Maths.h>
#include <calculation/Job.h>

namespace tovo::test {

namespace {

class FormulaTable : public Job {
protected:
    // A table of the given size whose cells are the constants 1, 2, 3 and so on, row by row, and
    // whose limits are 10, 20, 30 and so on.
    std::unique_ptr<FormulaTableImpl> Grid(int rows, int columns, const CString& rowSelector = "",
                                           const CString& columnSelector = "")
    {
        auto table = std::make_unique<FormulaTableImpl>(&m_Set, rows, columns);
        CString name("Grid");
        table->SetName(name);
        table->SetRowSelector(CFormtblElem(rowSelector, m_Set));
        table->SetColumnSelector(CFormtblElem(columnSelector, m_Set));
        for (int row = 0; row < rows; ++row) {
            table->SetRowLimit(row, 10.0 * (row + 1));
            for (int column = 0; column < columns; ++column)
                SetCell(*table, row, column, std::to_string(1000 * (row * columns + column + 1)));
        }
        for (int column = 0; column < columns; ++column)
            table->SetColumnLimit(column, 10.0 * (column + 1));
        return table;
    }
    void SetCell(FormulaTableImpl& table, int row, int column, const std::string& combined)
    {
        delete table.GetCell(row, column);
        table.SetCell(row, column, new CFormtblElem(CString(combined), m_Set));
    }
};

TEST_F(FormulaTable, SelectorPicksTheFirstLimitThatIsNotBelowIt)
{
    const struct {
        double selector;
        short index; // of three rows or columns
    } rows[] = {
        {-1e300, 0}, {0, 0},    {10, 0},   {10 + 5e-13, 0}, {10 + 1e-9, 1},
        {20, 1},     {20.5, 2}, {30.5, 2}, {1e300, 2},
    };
    VariableImpl& down = Var("down");
    VariableImpl& across = Var("across");
    const auto table = Grid(3, 3, "Vdown", "Vacross");
    // The last limit of all is never read in a lookup.
    table->SetColumnLimit(2, -7.0);
    for (const auto& row : rows) {
        for (const auto& column : rows) {
            SCOPED_TRACE(std::to_string(row.selector) + " " + std::to_string(column.selector));
            down.SetValue(row.selector);
            across.SetValue(column.selector);
            table->SetCalculated(0);
            EXPECT_EQ(ValueOf(*table), 3 * row.index + column.index + 1);
        }
    }
}

// A table whose limits are also written past the setters.
class OpenTable : public FormulaTableImpl {
public:
    using FormulaTableImpl::FormulaTableImpl;

    void Write(int row, double limit) { m_RowLimits[row] = limit; }
    void Resize(int rows) { m_RowLimits.SetSize(rows); }
};

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

int PlaceByScan(double value, const std::vector<double>& limits)
{
    int place = 0;
    while (place + 1 < static_cast<int>(limits.size()) &&
           TvCompareDoubles(value, limits[static_cast<std::size_t>(place)]) > 0)
        ++place;
    return place;
}

// Limits of all manners, and values at their tolerance.
class LimitDice {
public:
    std::vector<double> Limits()
    {
        static constexpr double kStarts[] = {0.0, -1e-12, -1e-300, 1.0, -300.0, 1e6, -1e15, -1e300};
        static constexpr double kSteps[] = {0.0, 0.25, 0.5, 1.0, 1.0000001, 2.0, 3.0, 1e6};
        const double start = One(kStarts);
        const bool hasOneStep = Below(3) > 0;
        const double step = One(kSteps);
        std::vector<double> limits{start};
        const int count = 2 + Below(30);
        while (static_cast<int>(limits.size()) < count)
            limits.push_back(limits.back() +
                             (hasOneStep ? step : One(kSteps)) * Tolerance(limits.back()));
        if (Below(3) == 0)
            limits[Index(limits)] = Below(2) ? kInfinity : -kInfinity;
        if (Below(4) == 0)
            limits.front() = -kInfinity;
        if (Below(8) == 0)
            limits[Index(limits)] = kNoNumber;
        if (Below(6) == 0)
            std::shuffle(limits.begin(), limits.end(), m_Random);
        return limits;
    }
    double ValueNear(const std::vector<double>& limits)
    {
        static constexpr double kDistances[] = {-2.0, -1.0, -0.5, 0.0, 0.5, 1.0, 2.0};
        if (Below(30) == 0)
            return Below(2) ? kNoNumber : kInfinity;
        const double limit = limits[Index(limits)];
        const double value = limit + One(kDistances) * Tolerance(limit);
        return Below(2) ? value : std::nextafter(value, Below(2) ? kInfinity : -kInfinity);
    }
    std::size_t Index(const std::vector<double>& limits)
    {
        return static_cast<std::size_t>(Below(static_cast<int>(limits.size())));
    }
    int Below(int count) { return static_cast<int>(m_Random() % static_cast<unsigned>(count)); }

private:
    static double Tolerance(double limit)
    {
        return std::isfinite(limit) ? std::max(1e-12, 0x1p-48 * std::fabs(limit)) : 1.0;
    }
    template <std::size_t COUNT>
    double One(const double (&numbers)[COUNT])
    {
        return numbers[Below(COUNT)];
    }

    std::mt19937 m_Random{20240229};
};

TEST_F(FormulaTable, LookupFindsThePlaceThatAScanFinds)
{
    VariableImpl& down = Var("down");
    VariableImpl& across = Var("across");
    LimitDice dice;
    int risingTables = 0;
    for (int round = 0; round < 2000 && !HasFailure(); ++round) {
        std::vector<double> rows = dice.Limits();
        const std::vector<double> columns = dice.Limits();
        SCOPED_TRACE(testing::PrintToString(rows) + testing::PrintToString(columns));
        OpenTable table(&m_Set, static_cast<int>(rows.size()), static_cast<int>(columns.size()));
        table.SetRowSelector(CFormtblElem("Vdown", m_Set));
        table.SetColumnSelector(CFormtblElem("Vacross", m_Set));
        for (int row = 0; row < static_cast<int>(rows.size()); ++row)
            table.SetRowLimit(row, rows[static_cast<std::size_t>(row)]);
        for (int column = 0; column < static_cast<int>(columns.size()); ++column)
            table.SetColumnLimit(column, columns[static_cast<std::size_t>(column)]);
        risingTables +=
            std::adjacent_find(rows.begin(), rows.end(), std::greater_equal<>()) == rows.end();
        for (int lookup = 0; lookup < 60; ++lookup) {
            down.SetValue(dice.ValueNear(rows));
            across.SetValue(dice.ValueNear(columns));
            EXPECT_EQ(table.GetRowIndex(), PlaceByScan(down.GetValue(), rows)) << down.GetValue();
            EXPECT_EQ(table.GetColIndex(), PlaceByScan(across.GetValue(), columns))
                << across.GetValue();
            if (dice.Below(8) > 0)
                continue;
            const std::size_t changed = dice.Index(rows);
            rows[changed] = dice.ValueNear(rows);
            if (dice.Below(2))
                table.SetRowLimit(static_cast<int>(changed), rows[changed]);
            else
                table.Write(static_cast<int>(changed), rows[changed]);
            if (dice.Below(8) == 0 && rows.size() > 1) {
                rows.pop_back();
                table.Resize(static_cast<int>(rows.size()));
            }
        }
    }
    EXPECT_GT(risingTables, 400);
}

TEST_F(FormulaTable, LookupReachesNoFurtherThanAShort)
{
    constexpr int kRows = 32770;
    VariableImpl& down = Var("down");
    OpenTable table(&m_Set, kRows, 1);
    table.SetRowSelector(CFormtblElem("Vdown", m_Set));
    for (const bool isRising : {true, false}) {
        SCOPED_TRACE(isRising);
        for (int row = 0; row < kRows; ++row)
            table.SetRowLimit(row, row);
        if (!isRising)
            table.SetRowLimit(0, 1.0);
        for (const int row : {0, 2, 20000, 32766, 32767}) {
            down.SetValue(row);
            EXPECT_EQ(table.GetRowIndex(), row);
        }
        for (const double value : {32767.5, 32769.0, 1e300, kNoNumber}) {
            down.SetValue(value);
            EXPECT_THROW(table.GetRowIndex(), CInvalidArgException) << value;
        }
    }
}

TEST_F(FormulaTable, YesNoSelectorIsOneOrZero)
{
    VariableImpl& done = Var("Done?");
    const auto table = Grid(2, 1, "VDone?", "FGone");
    table->SetRowLimit(0, 0.0);
    EXPECT_EQ(MessageOfCalculation(*table), 0u) << "one column needs no column selector";
    EXPECT_EQ(table->GetValue(), 1.0);
    EXPECT_EQ(table->GetColIndex(), 0);
    done.SetValue(1);
    table->SetCalculated(0);
    EXPECT_EQ(ValueOf(*table), 2.0);
}

TEST_F(FormulaTable, LimitsMustRise)
{
    const struct {
        std::vector<double> rowLimits;
        std::vector<double> columnLimits;
        unsigned int message;
    } rows[] = {
        {{1, 2, 3}, {0}, 0},      {{1, 2, 2}, {0}, 10847}, {{2, 1, 3}, {0}, 10847},
        {{1, 1 + 1e-15}, {0}, 0}, {{1, 2}, {0, 0}, 0},     {{1, 2}, {5, 5, 0}, 10846},
        {{1, 2}, {1, 5, 0}, 0},   {{1, 1}, {5, 5}, 10847},
    };
    for (const auto& row : rows) {
        const auto table =
            Grid(static_cast<int>(row.rowLimits.size()), static_cast<int>(row.columnLimits.size()));
        for (std::size_t i = 0; i < row.rowLimits.size(); ++i)
            table->SetRowLimit(static_cast<int>(i), row.rowLimits[i]);
        for (std::size_t i = 0; i < row.columnLimits.size(); ++i)
            table->SetColumnLimit(static_cast<int>(i), row.columnLimits[i]);
        EXPECT_EQ(MessageOfCheck(*table, 0), row.message)
            << testing::PrintToString(row.rowLimits) << testing::PrintToString(row.columnLimits);
        if (row.message != 0) {
            EXPECT_EQ(Chain(), std::to_string(row.message) + " [Formula table: Grid]");
            EXPECT_NE(MessageOfCalculation(*table), 0u);
        }
    }
}

TEST_F(FormulaTable, ChainLeadsFromTheFaultToTheTable)
{
    const auto expectChain = [this](FormulaTableImpl& table, const std::string& chain) {
        EXPECT_EQ(std::to_string(MessageOfCheck(table, 1)), chain.substr(0, chain.find(' ')));
        EXPECT_EQ(Chain(), chain);
        EXPECT_EQ(MessageOfCalculation(table), MessageOfCheck(table, 1));
        EXPECT_EQ(table.GetCalculated(), 0);
    };
    const auto table = Grid(2, 3);
    SetCell(*table, 1, 2, "FGone");
    expectChain(*table, "6614 [Formula: Gone | Cell at row 2, column 3. | Formula table: Grid]");
    table->GetColumnSelector().init("FGone");
    expectChain(*table, "6614 [Formula: Gone | Column selector | Formula table: Grid]");
    Table("Inner", "FGone", {"", ""});
    table->GetRowSelector().init("TInner");
    expectChain(*table, "6614 [Formula: Gone | Row selector | Formula table: Inner | Row selector "
                        "| Formula table: Grid]");
}

TEST_F(FormulaTable, EmptyPlaceIsAFaultAndNoCrash)
{
    const auto table = Grid(2, 3, "15000", "25000");
    delete table->GetCell(1, 2);
    table->SetCell(1, 2, nullptr);
    EXPECT_EQ(MessageOfCheck(*table, 0), 10732u);
    for (const int validated : {0, 1}) {
        table->SetValidated(validated);
        m_Set.ErrorTracker().SetError(0, nullptr);
        EXPECT_EQ(MessageOfCalculation(*table), 10732u);
        EXPECT_EQ(Chain(), "10732 [Cell at row 2, column 3. | Formula table: Grid]");
    }
    CScannedVariables scanned;
    table->GetVariables(scanned, 1, 0);
    EXPECT_EQ(Names(scanned), "");
}

TEST_F(FormulaTable, CalculatedTableAnswersAtOnce)
{
    VariableImpl& rate = Var("Rate", 3);
    VariableImpl& pick = Var("Pick", 5);
    const auto table = Grid(2, 1, "VPick");
    SetCell(*table, 0, 0, "VRate");
    EXPECT_EQ(table->GetValue(), 0.0);
    EXPECT_EQ(MessageOfCalculation(*table), 0u);
    rate.SetValue(4);
    EXPECT_EQ(ValueOf(*table), 3.0);
    EXPECT_EQ(table->GetCalculated() * 10 + table->GetScanned(), 10);

    // A scan passes through a table that was only calculated, and once more inside a condition.
    const auto scan = [&](bool inCondition) {
        CScannedVariables scanned;
        if (inCondition)
            CExprTree::StartIfCondition();
        EXPECT_EQ(MessageOfCalculation(*table, &scanned), 0u);
        if (inCondition)
            CExprTree::EndIfCondition();
        EXPECT_EQ(CExprTree::InIfCondition(), 0);
        return Names(scanned) + (table->GetScannedInCondition() ? " in condition" : "");
    };
    EXPECT_EQ(scan(false), "Pick Rate");
    EXPECT_EQ(table->GetValue(), 4.0);
    EXPECT_EQ(table->GetScanned(), 1);
    EXPECT_EQ(pick.InCond() * 10 + rate.InCond(), 10);
    EXPECT_EQ(scan(false), "");
    EXPECT_EQ(scan(true), "Pick Rate in condition");
    EXPECT_EQ(rate.InCond(), 1);
    EXPECT_EQ(scan(true), " in condition");
    table->SetScanned(0);
    EXPECT_EQ(scan(false), "Pick Rate in condition");
}

TEST_F(FormulaTable, ValidatedTableIsNotLookedAtAgain)
{
    FormulaImpl& cell = Formula("Cell", "F(Gone)");
    const auto table = Grid(2, 1, "5000");
    SetCell(*table, 0, 0, "FCell");
    EXPECT_EQ(MessageOfCheck(*table, 1), 6614u);
    EXPECT_EQ(MessageOfCheck(*table, 0), 0u) << "the formula alone is sound";
    table->SetRowLimit(1, 0.0);
    EXPECT_EQ(MessageOfCheck(*table, 1), 0u);

    // A failed calculation leaves the value and the flags of the last good one.
    EXPECT_EQ(MessageOfCalculation(*table), 6614u);
    EXPECT_EQ(table->GetCalculated(), 0);
    cell.SetFromEncodedString("8");
    EXPECT_EQ(MessageOfCalculation(*table), 0u);
    cell.SetFromEncodedString("1+");
    CScannedVariables scanned;
    EXPECT_EQ(MessageOfCalculation(*table, &scanned), 10732u);
    EXPECT_EQ(table->GetValue(), 8.0);
    EXPECT_EQ(table->GetCalculated() * 10 + table->GetScanned(), 10);
    table->SetValidated(0);
    EXPECT_EQ(MessageOfCheck(*table, 0), 10847u);

    // A calculation validates each cell by itself, so a formula that is not selected may be broken
    // further down.
    const auto fresh = Grid(2, 1, "5000");
    cell.SetFromEncodedString("F(Gone)");
    SetCell(*fresh, 1, 0, "FCell");
    EXPECT_EQ(ValueOf(*fresh), 1.0);
}

TEST_F(FormulaTable, ScanListsEveryCellOrWhatIsReached)
{
    for (const char* name : {"down", "across", "a", "b", "c", "d"})
        Var(name, 15);
    const auto names = [](FormulaTableImpl& table, int all) {
        CScannedVariables scanned;
        table.GetVariables(scanned, all, 1);
        return Names(scanned);
    };
    const auto square = Grid(2, 2, "Vdown", "Vacross");
    const auto line = Grid(2, 1, "Vdown", "Vacross");
    for (int i = 0; i < 4; ++i)
        SetCell(*square, i / 2, i % 2, std::string("V") + "abcd"[i]);
    SetCell(*line, 0, 0, "Va");
    SetCell(*line, 1, 0, "Vb");
    EXPECT_EQ(names(*square, 1), "down across a b c d");
    EXPECT_EQ(square->GetCalculated() + square->GetScanned(), 0);
    EXPECT_EQ(names(*square, 0), "down across d");
    EXPECT_EQ(names(*line, 1), "down a b");
    EXPECT_EQ(names(*line, 0), "down b");
    EXPECT_EQ(m_Set.m_ClearCalls, (std::vector<int>{1, 1, 1, 1}));
}

TEST_F(FormulaTable, BadArgumentIsRefused)
{
    const auto table = Grid(3, 2);
    CFormtblElem cell(m_Set);
    EXPECT_THROW(FormulaTableImpl(nullptr, 2, 1), CInvalidArgException);
    for (const auto& [rows, columns] : {std::pair(1, 1), std::pair(2, 0)})
        EXPECT_THROW(FormulaTableImpl(&m_Set, rows, columns), CInvalidArgException);
    for (const int row : {-1, 3}) {
        EXPECT_THROW(table->GetRowLimit(row), CInvalidArgException);
        EXPECT_THROW(table->SetRowLimit(row, 1.0), CInvalidArgException);
        EXPECT_THROW(table->GetCell(row, 0), CInvalidArgException);
    }
    for (const int column : {-1, 2}) {
        EXPECT_THROW(table->GetColumnLimit(column), CInvalidArgException);
        EXPECT_THROW(table->SetColumnLimit(column, 1.0), CInvalidArgException);
        EXPECT_THROW(table->SetCell(0, column, &cell), CInvalidArgException);
    }
    EXPECT_EQ(MessageOfCheck(*table, 1), 0u) << "no refused call has changed the table";
}

} // namespace

} // namespace tovo::test
