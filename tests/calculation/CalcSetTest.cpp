#include <thread>

#include "Job.h"

namespace tovo::test {

namespace {

class CalcSet : public Job {};

TEST_F(CalcSet, UnknownVariableIsMadeUp)
{
    IVarObj* madeUp = m_Set.GetVarObj(u"Rate", 1, 0);
    ASSERT_NE(madeUp, nullptr);
    EXPECT_EQ(madeUp->GetValue(), 0.0);
    EXPECT_TRUE(madeUp->IsNumeric());
    EXPECT_TRUE(m_Set.GetVarObj(u"Rate?", 1, 0)->IsBoolean());
    EXPECT_EQ(m_Set.GetVarObj(u"Rate", 1, 0), madeUp);
    EXPECT_NE(m_Set.GetVarObj(u"rate", 1, 0), madeUp);
    madeUp->SetValue(5);
    m_Set.ClearMissingVariables();
    EXPECT_EQ(m_Set.GetVarObj(u"Rate", 1, 0)->GetValue(), 0.0);
    VariableImpl& added = Var("Rate", 7);
    EXPECT_EQ(m_Set.GetVarObj(u"Rate", 1, 0), &added);
}

TEST_F(CalcSet, ObjectIsFoundUnderTheNameThatItWasAddedWith)
{
    FormulaImpl& first = Formula("A", "1");
    EXPECT_EQ(m_Set.GetFormulaObj(u"A"), &first);
    FormulaImpl& second = Formula("A", "2");
    EXPECT_EQ(m_Set.GetFormulaObj(u"A"), &second);
    CString renamed("B");
    second.SetName(renamed);
    EXPECT_EQ(m_Set.GetFormulaObj(u"A"), &second);
    EXPECT_EQ(m_Set.GetFormulaObj(u"B"), nullptr);
    EXPECT_THROW(m_Set.AddVariable(nullptr), CInvalidArgException);
    EXPECT_THROW(FormulaImpl(nullptr), CInvalidArgException);
    EXPECT_THROW(VariableImpl(nullptr), CInvalidArgException);
}

TEST_F(CalcSet, EntriesAreTakenOut)
{
    VariableImpl& width = Var("Width", 2);
    FormulaImpl& area = Formula("Area", "V(Width)*3");
    FormulaImpl& cost = Formula("Cost", "F(Area)*2");
    EXPECT_EQ(cost.IsValid(), 1);
    EXPECT_EQ(cost.GetValue(), 12.0);

    const CalculationPass pass;
    unsigned int message = MSG_NONE;
    ASSERT_EQ(cost.Calculate(message, nullptr), 1);
    width.SetName("Wide");
    m_Set.AddVariable(&width);
    EXPECT_EQ(m_Set.RemoveVariable(&width), 2) << "every entry";
    EXPECT_EQ(m_Set.RemoveVariable(&width), 0);
    EXPECT_EQ(cost.Calculate(message, nullptr), 1);
    EXPECT_EQ(cost.GetValue(), 0.0) << "a variable made up";
    std::string missing;
    for (const auto& [name, variable] : m_Set.MissingVariables())
        missing += name.ToUtf8();
    EXPECT_EQ(missing, "Width");

    EXPECT_EQ(m_Set.RemoveFormula("area"), 0);
    EXPECT_EQ(m_Set.RemoveFormula("Area"), 1);
    EXPECT_EQ(cost.Calculate(message, nullptr), 0);
    EXPECT_EQ(message, MSG_FORMULA_NOT_FOUND);
    m_Set.AddFormula(&area);
    EXPECT_EQ(cost.Calculate(message, nullptr), 1);
    std::string formulas;
    for (const auto& [name, formula] : m_Set.Formulas())
        formulas += name.ToUtf8() + " ";
    EXPECT_EQ(formulas, "Cost Area ");

    FormulaTableImpl rate(&m_Set, 2, 1);
    m_Set.AddFormulaTable(&rate); // without a name
    EXPECT_EQ(m_Set.FormulaTables().GetCount(), 1);
    EXPECT_EQ(m_Set.RemoveFormulaTable(u""), 1);
    EXPECT_EQ(m_Set.RemoveFormulaTable(&rate), 0);
    EXPECT_THROW(m_Set.RemoveFormula(nullptr), CInvalidArgException);
}

TEST_F(CalcSet, CopiesShareTheirObjectsInAnyOrderOfDestruction)
{
    VariableImpl& before = Var("Before", 1);
    constexpr int kOrders[][3] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}};
    for (const auto& order : kOrders) {
        std::unique_ptr<CalcSetImpl> sets[3];
        sets[0] = std::make_unique<CalcSetImpl>();
        sets[0]->AddVariable(&before);
        IVarObj* madeUp = sets[0]->GetVarObj(u"Unknown", 1, 0);
        sets[1] = std::make_unique<CalcSetImpl>(*sets[0]);
        sets[2] = std::make_unique<CalcSetImpl>();
        sets[2]->GetVarObj(u"Forgotten", 1, 0);
        *sets[2] = *sets[1];
        VariableImpl& after = Var("After");
        sets[2]->AddVariable(&after);
        sets[1]->ErrorTracker().SetError(6607, nullptr);
        for (const int next : order) {
            SCOPED_TRACE(next);
            EXPECT_EQ(sets[next]->GetVarObj(u"Before", 1, 0), &before);
            EXPECT_EQ(sets[next]->GetVarObj(u"After", 1, 0), &after);
            EXPECT_EQ(sets[next]->GetVarObj(u"Unknown", 1, 0), madeUp);
            EXPECT_EQ(Dump(sets[next]->ErrorTracker()), "6607 [Unknown Object]");
            sets[next].reset();
        }
    }
}

TEST_F(CalcSet, NewPassCalculatesTheTablesAgain)
{
    VariableImpl& rate = Var("Rate", 3);
    FormulaTableImpl& table = Table("Price", "1000", {"VRate", "0"});
    FormulaImpl& formula = Formula("Result", "T(Price)*10");
    EXPECT_EQ(ValueOf(formula), 30.0);
    rate.SetValue(4);
    m_Set.ClearFormtblObjCalculatedFlags();
    EXPECT_EQ(ValueOf(formula), 30.0);
    m_Set.StartNewPass();
    EXPECT_EQ(ValueOf(formula), 40.0);
    CScannedVariables scanned;
    CExprTree::StartIfCondition();
    EXPECT_EQ(MessageOfCalculation(table, &scanned), 0u);
    CExprTree::EndIfCondition();
    EXPECT_EQ(table.GetScanned() + table.GetScannedInCondition(), 2);
    m_Set.StartNewPass();
    EXPECT_EQ(table.GetScanned() + table.GetScannedInCondition() + table.GetCalculated(), 0);
}

TEST_F(CalcSet, TrackerWordsEveryKindOfObject)
{
    CFmlaExpression expression(m_Set);
    expression.SetExpr("1+1");
    CFmlaExprBase plain;
    CExprToken token(m_Set, TOK_NUMBER, "12", 0);
    CFormtblElem element("VWidth", m_Set);
    HostFormula hostFormula("H", 1.0);
    HostTable hostTable("HT", 1.0);
    const struct {
        CObject* object;
        const char* text;
    } rows[] = {
        {&token, "token: 12"},
        {&expression, "Expression: 1+1"},
        {&Formula("A", "1"), "Formula: A"},
        {&Table("T", "", {"", ""}), "Formula table: T"},
        {&hostFormula, "Formula: H"},
        {&hostTable, "Formula table: HT"},
        {&element, "Formula table element: Width"},
        {&Var("x"), "Unknown Object"},
        {&plain, "Unknown Object"},
        {nullptr, "Unknown Object"},
    };
    CCalcErrorTracker tracker;
    EXPECT_EQ(Dump(tracker), "0 []");
    for (const auto& row : rows) {
        const std::string text = row.text;
        tracker.SetError(1, row.object, "Mine");
        tracker.SetError(6607, row.object);
        tracker.AddObj(row.object, "");
        tracker.AddObj(row.object, "Mine");
        EXPECT_EQ(Dump(tracker), "6607 [" + text + " | " + text + " | Mine]");
        EXPECT_EQ(tracker.GetObj(2), row.object);
    }
    EXPECT_EQ(tracker.NumObjs(), 3);
    for (const int outside : {-1, 3}) {
        EXPECT_EQ(tracker.GetObj(outside), nullptr);
        EXPECT_TRUE(tracker.GetStr(outside).IsEmpty());
    }
}

TEST_F(CalcSet, MathematicalErrorLeavesItsText)
{
    FormulaImpl& formula = Formula("A", "COSH(1000)");
    EXPECT_EQ(ValueOf(formula), 0.0);
    EXPECT_FALSE(m_Set.GetStrError().IsEmpty());
    formula.SetFromEncodedString("COSH(0)");
    EXPECT_EQ(MessageOfCalculation(formula), 0u);
    EXPECT_TRUE(m_Set.GetStrError().IsEmpty());

    // Checking the formula calculates the table, which answers from its value after that.
    Table("Table", "1000", {"FB", "0"});
    Formula("B", "COSH(1000)");
    EXPECT_EQ(ValueOf(Formula("C", "T(Table)")), 0.0);
    EXPECT_TRUE(m_Set.GetStrError().IsEmpty());
}

// Everything that leaves traces in shared state: conditions, names under validation, a circle, a
// table, a failure.
class ThreadJob : public Job {
public:
    void TestBody() override
    {
        FormulaImpl& sum = Formula("Sum", "V(x)+IF(T(Table)>1,ROUND(2.5,0),1/0)");
        FormulaImpl& circle = Formula("Circle", "IF(F(Back)>0,1,2)");
        Formula("Back", "F(Circle)");
        FormulaImpl& wrong = Formula("Wrong", "F(Sum)+1.2.3");
        Table("Table", "Vx", {"1000", "2000"});
        for (int run = 0; run < 300 && !HasFailure(); ++run) {
            m_Set.StartNewPass();
            m_Set.GetVarObj(u"x", 1, 0)->SetValue(run);
            EXPECT_EQ(ValueOf(sum), run < 2 ? run : run + 3.0);
            EXPECT_EQ(MessageOfCalculation(circle), 6608u);
            EXPECT_EQ(MessageOfCalculation(wrong), 6620u);
            CScannedVariables scanned;
            sum.GetVariables(scanned, run % 2, 1);
            EXPECT_EQ(Names(scanned), "x");
            EXPECT_EQ(CExprTree::InIfCondition(), 0);
        }
    }
};

TEST_F(CalcSet, ThreadsCalculateSetsOfTheirOwn)
{
    ThreadJob first, second;
    std::thread other([&first] { first.TestBody(); });
    second.TestBody();
    other.join();
}

TEST_F(CalcSet, SetIsHandedFromThreadToThread)
{
    VariableImpl& variable = Var("x");
    FormulaImpl& formula = Formula("Twice", "V(x)*2");
    for (int run = 0; run < 4; ++run)
        std::thread([&] {
            variable.SetValue(run);
            EXPECT_EQ(ValueOf(formula), 2.0 * run);
        }).join();
}

} // namespace

} // namespace tovo::test
