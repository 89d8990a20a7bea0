#include <optional>

#include "Job.h"

namespace tovo::test {

namespace {

// Stock expressions, formulas and tables over a set that shares nothing with the stock one.
class HostObjects : public ::testing::Test {
protected:
    HostObjects()
    {
        m_Set.m_NullForUnknownVariables = true;
        m_Set.AddVariable("y", 9.0);
        m_Expression.SetFromEncodedString("V(x)+F(f)*T(t)");
    }
    unsigned int Check(const CString& encoded)
    {
        m_Expression.SetFromEncodedString(encoded);
        unsigned int message = 77;
        return m_Expression.IsValid(message, "", 1) != 0 && message == 77 ? 0 : message;
    }

    HostSet m_Set;
    HostVariable& m_X = m_Set.AddVariable("x", 2.0);
    HostFormula& m_F = m_Set.AddFormula("f", 3.0);
    HostTable& m_T = m_Set.AddTable("t", 4.0);
    CFmlaExpression m_Expression{m_Set};
};

TEST_F(HostObjects, ValuesAreReadThroughTheInterfaces)
{
    unsigned int message = 0;
    EXPECT_EQ(m_Expression.IsValid(message, "Result", 1), 1);
    EXPECT_EQ(m_F.m_LastNested + m_T.m_LastNested, 2);
    EXPECT_EQ(m_Expression.Calculate(nullptr), 1);
    EXPECT_EQ(m_Expression.GetValue(), 14.0);
    EXPECT_EQ(m_F.m_LastList, nullptr);
    EXPECT_EQ(m_X.m_SetInCondCalls, 0);
}

TEST_F(HostObjects, ScanHandsItsListOn)
{
    unsigned int message = 0;
    EXPECT_EQ(m_Expression.IsValid(message, "", 1), 1);
    CScannedVariables scanned;
    m_F.m_OnCalculate = [](CScannedVariables* list) { list->AddTail("from f"); };
    m_Expression.GetVariables(scanned, 0, 1);
    EXPECT_EQ(Names(scanned), "x from f");
    EXPECT_EQ(m_T.m_LastList, &scanned);
    EXPECT_EQ(m_X.m_SetInCondCalls, 1);
    EXPECT_EQ(m_Set.m_ClearScannedFlagsCalls, 1);

    m_F.m_OnGetVariables = [](CScannedVariables& list, int all, int clear) {
        list.AddTail(CString("f" + std::to_string(all) + std::to_string(clear)));
    };
    m_T.m_Scanned = 1;
    CScannedVariables walked;
    m_Expression.GetVariables(walked, 7, 1);
    EXPECT_EQ(Names(walked), "x f70");
    EXPECT_EQ(m_T.m_Scans, 0) << "it says that it was walked already";
    EXPECT_EQ(m_Set.m_ClearScannedFlagsCalls, 2);

    // Each object is walked once, and a host may scan into a list of its own in between.
    FormulaImpl stock(&m_Set);
    stock.SetFromEncodedString("V(y)");
    EXPECT_EQ(MessageOfCheck(stock, 0), 0u);
    m_Set.m_Formulas["stock"] = &stock;
    m_F.m_Scans = 0;
    m_F.m_OnGetVariables = [&stock](CScannedVariables&, int, int) {
        CScannedVariables own;
        stock.GetVariables(own, 1, 0);
        EXPECT_EQ(Names(own), "y");
    };
    m_Expression.SetFromEncodedString("F(stock)+F(f)+F(f)+F(stock)");
    EXPECT_EQ(m_Expression.IsValid(), 1);
    CScannedVariables once;
    m_Expression.GetVariables(once, 1, 0);
    EXPECT_EQ(Names(once), "y");
    EXPECT_EQ(m_F.m_Scans, 1);
}

TEST_F(HostObjects, MissingVariableFailsWhereItIsMet)
{
    EXPECT_EQ(Check("1+V(gone)"), 10732u);
    EXPECT_EQ(m_Expression.GetInvalidPos(), 2);
    EXPECT_EQ(Dump(m_Set.m_Tracker), "10732 [Unknown Object]");
    EXPECT_EQ(Check("1+V(x)"), 0u);
    m_Set.m_Variables.clear();
    EXPECT_EQ(m_Expression.Calculate(nullptr), 0);
    EXPECT_EQ(m_Expression.GetMessageNum(), 0);
    EXPECT_EQ(Dump(m_Set.m_Tracker), "0 [token:  x ]");
}

TEST_F(HostObjects, FailureOfAFormulaOrATableComesOutUnchanged)
{
    const struct {
        const char* encoded;
        unsigned int message; // what the host's object writes
        bool inTheCheck;
        unsigned int outcome;
        const char* chain; // what a check fails with is the host's to record
    } rows[] = {
        {"1+F(f)", 6611, true, 6611, "0 []"},
        {"1+T(t)", 0, true, 0, "0 []"},
        {"1+F(f)", 6611, false, 6611, "6611 [token:  f ]"},
        {"1+T(t)", 6611, false, 6611, "6611 [token:  t ]"},
        {"1+T(t)", 0, false, 10732, "10732 [Unknown Object]"},
    };
    const auto fail = [](auto& object, unsigned int message, bool inTheCheck) {
        object.m_Message = message;
        object.m_Succeeds = !inTheCheck;
        object.m_Calculates = inTheCheck;
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.encoded + std::to_string(row.message));
        fail(m_F, row.message, row.inTheCheck);
        fail(m_T, row.message, row.inTheCheck);
        EXPECT_EQ(Check(row.encoded), row.outcome);
        EXPECT_EQ(m_Expression.IsLoaded(), 0);
        EXPECT_EQ(m_Expression.GetInvalidPos(), 2);
        EXPECT_EQ(Dump(m_Set.m_Tracker), row.chain);
    }
}

TEST_F(HostObjects, TokenThatFailsHasNoValueOfAnEarlierCheck)
{
    m_F.m_Message = 6611;
    for (int count = 0; count < 3; ++count)
        EXPECT_EQ(Check("F(f)+1"), 0u);
    m_F.m_Calculates = false;
    EXPECT_EQ(Check("F(f)+1"), 6611u);
    const auto* const token = dynamic_cast<CExprToken*>(m_Set.m_Tracker.GetObj(0));
    ASSERT_NE(token, nullptr);
    EXPECT_EQ(token->GetValue(), 0.0);
    EXPECT_EQ(token->IsCalculated(), 0);
}

// The value is read, and so the expression come back to, before the table is checked.
TEST_F(HostObjects, MessageOfComingBackIsNotThatOfALaterFailure)
{
    for (int count = 0; count < 3; ++count)
        EXPECT_EQ(Check("V(x)+T(t)-1"), 0u);
    m_X.m_OnRead = [this] { EXPECT_EQ(m_Expression.LoadExpressionTree(1), 0); };
    m_T.m_Succeeds = false;
    EXPECT_EQ(Check("V(x)+T(t)-1"), 0u);
    EXPECT_EQ(m_Expression.IsLoaded(), 0);
}

TEST_F(HostObjects, TableWithAnUnknownVariableFailsWithoutAMessage)
{
    FormulaTableImpl table(&m_Set, 2, 1);
    table.SetRowLimit(1, 1.0);
    table.SetCell(0, 0, new CFormtblElem("Tt", m_Set));
    table.SetCell(1, 0, new CFormtblElem("Vx", m_Set));
    table.GetRowSelector().init("Vpick");
    EXPECT_EQ(MessageOfCheck(table, 1), 77u);
    HostVariable& pick = m_Set.AddVariable("pick", 0.0);
    EXPECT_EQ(ValueOf(table), 4.0);
    pick.m_Value = 1.0;
    m_Set.m_Variables.erase("x");
    table.SetCalculated(0);
    EXPECT_EQ(MessageOfCalculation(table), 77u);
    EXPECT_EQ(table.GetValue(), 4.0);
}

class HostObjectsInAStockSet : public Job {};

TEST_F(HostObjectsInAStockSet, StockAndHostObjectsCalculateOneAnother)
{
    HostFormula rate("Rate", 3.0);
    HostTable price("Price", 4.0);
    HostVariable done("Done?", 1.0);
    m_Set.m_HostFormulas["Rate"] = &rate;
    m_Set.m_HostTables["Price"] = &price;
    m_Set.m_HostVariables["Done?"] = &done;
    FormulaImpl& inner = Formula("Inner", "IF(V(Done?),F(Rate)*V(x),0)");
    Table("Table", "FRate", {"0", "0", "TPrice", "0"});
    FormulaImpl& outer = Formula("Outer", "F(Inner)+T(Table)");
    Var("x", 2);
    EXPECT_EQ(ValueOf(outer), 10.0);
    FormulaImpl& base = Formula("Base", "V(x)+3");
    rate.m_OnCalculate = [&](CScannedVariables*) {
        rate.m_Succeeds = MessageOfCalculation(base) == 0;
        rate.m_Value = base.GetValue();
    };
    EXPECT_EQ(ValueOf(inner), 10.0);
}

TEST_F(HostObjectsInAStockSet, EachListOfAHostIsFilled)
{
    FormulaImpl& base = Formula("Base", "V(x)+V(y)");
    // The lists stand one after another at the same place.
    std::optional<CScannedVariables> list;
    std::string met;
    HostVariable first("First", 1.0);
    HostVariable second("Second", 1.0);
    for (HostVariable* const own : {&first, &second}) {
        own->m_OnRead = [&] {
            list.emplace();
            EXPECT_EQ(MessageOfCalculation(base, &*list), 0u);
            met += '[' + Names(*list) + ']';
        };
        m_Set.m_HostVariables[own->m_Name] = own;
    }
    EXPECT_EQ(MessageOfCheck(Formula("Outer", "V(First)+V(Second)"), 1), 0u);
    EXPECT_EQ(met, "[x y][x y]");
}

TEST_F(HostObjectsInAStockSet, HostThatTellsOfAChangeHasAFormulaCheckedAnew)
{
    HostFormula rate("Rate", 3.0);
    m_Set.m_HostFormulas["Rate"] = &rate;
    Formula("Base", "1");
    Formula("Sum", "F(Base)");
    FormulaImpl& outer = Formula("Outer", "F(Sum)+F(Rate)");
    CFmlaExpression checker(m_Set);
    rate.m_OnCalculate = [&](CScannedVariables*) {
        CalculationPass pass;
        m_Set.m_HostFormulas["Base"] = nullptr;
        pass.NoteHostChange();
        EXPECT_EQ(checker.CheckNestedFormula("Sum"), 0);
        m_Set.m_HostFormulas.erase("Base");
        pass.NoteHostChange();
    };
    EXPECT_EQ(ValueOf(outer), 4.0);
}

} // namespace

} // namespace tovo::test
