#include "Job.h"

namespace tovo::test {

namespace {

class Scan : public Job {
protected:
    Scan()
    {
        m_X.SetValue(1);
        m_Y.SetValue(2);
        Formula("Sum", "V(Y)+1");
        Table("Pick", "VX", {"VY", "VZ"});
    }

    // The names of a scan that begins with every in-condition flag at the given value.
    std::string ScanOf(CFmlaExpression& expression, int all, int flag)
    {
        for (VariableImpl* variable : {&m_X, &m_Y, &m_Z})
            variable->SetInCond(flag);
        m_Set.StartNewPass();
        CScannedVariables scanned;
        expression.GetVariables(scanned, all, 1);
        return Names(scanned);
    }
    std::string InCondition()
    {
        std::string names;
        for (VariableImpl* variable : {&m_X, &m_Y, &m_Z}) {
            if (variable->InCond() != 0)
                names += variable->GetName().ToUtf8();
        }
        return names;
    }

    VariableImpl& m_X = Var("X");
    VariableImpl& m_Y = Var("Y");
    VariableImpl& m_Z = Var("Z");
};

TEST_F(Scan, DynamicScanListsWhatIsReachedAndStaticScanAll)
{
    const struct {
        const char* encoded;
        const char* dynamic;
        const char* all;
        const char* cleared; // the flags of the dynamic scan where all were clear before
        const char* set;     // and where all were set
    } rows[] = {
        {"IF(V(X)<0,V(Y),V(Z))", "X Z", "X Y Z", "X", "XY"},
        {"V(X)+IF(V(X)>0,1,0)", "X", "X", "X", "XYZ"},
        {"V(Y)+V(X)+V(Y)", "Y X", "Y X", "", "Z"},
        {"IF(IF(V(X)>0,V(Y)>0,YES),V(Z),0)", "X Y Z", "X Y Z", "XY", "XY"},
        {"F(Sum)+V(X)", "Y X", "Y X", "", "Z"},
        {"T(Pick)", "X Y", "X Y Z", "X", "XZ"},
        // What was met outside a condition first is walked again inside one.
        {"T(Pick)+IF(T(Pick)>0,1,0)", "X Y", "X Y Z", "XY", "XYZ"},
        {"F(Sum)+IF(F(Sum)>0,1,0)", "Y", "Y", "Y", "XYZ"},
        {"IF(F(Sum)>0,F(Sum),0)", "Y", "Y", "Y", "XYZ"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.encoded);
        FormulaImpl& formula = Formula("Scanned", row.encoded);
        EXPECT_EQ(MessageOfCheck(formula, 1), 0u);
        CFmlaExpression& expression = formula.GetExpression();
        EXPECT_EQ(ScanOf(expression, 0, 0), row.dynamic);
        EXPECT_EQ(InCondition(), row.cleared);
        EXPECT_EQ(ScanOf(expression, 0, 1), row.dynamic);
        EXPECT_EQ(InCondition(), row.set);
        EXPECT_EQ(ScanOf(expression, 1, 0), row.all);
        EXPECT_EQ(InCondition(), "");
    }
}

TEST_F(Scan, JobValuesAreRecordedInTheSetByADynamicScanOnly)
{
    FormulaImpl& formula = Formula("Top", "IF(QUANTITY>0,DURATION,JOBSIZE)");
    m_Set.SetQuantity(5);
    m_Set.SetQuantityInCondition(-1);
    m_Set.SetDURATIONInCondition(-1);
    m_Set.SetJOBSIZEInCondition(-1);
    CScannedVariables scanned;
    EXPECT_EQ(ValueOf(formula), 0.0);
    formula.GetVariables(scanned, 1, 1);
    EXPECT_EQ(m_Set.GetQuantityInCalculations(), 0);
    formula.GetVariables(scanned, 0, 1);
    EXPECT_EQ(m_Set.GetQuantityInCalculations(), 1);
    EXPECT_EQ(m_Set.GetQuantityInCondition(), 1);
    EXPECT_EQ(m_Set.GetDURATIONInCondition(), 0);
    EXPECT_EQ(m_Set.GetJOBSIZEInCondition(), -1) << "the branch that was not taken";
}

TEST_F(Scan, SetIsToldOfANewScanOnce)
{
    FormulaImpl& formula = Formula("Top", "F(Sum)+T(Pick)+F(Sum)");
    EXPECT_EQ(MessageOfCheck(formula, 1), 0u);
    FormulaTableImpl& table = Table("Outer", "TPick", {"FTop", "FSum"});
    for (const int all : {0, 1}) {
        for (const int clear : {0, 5}) {
            SCOPED_TRACE(std::to_string(all) + " " + std::to_string(clear));
            CScannedVariables scanned;
            m_Set.m_ClearCalls.clear();
            const std::vector<int> expected(clear != 0 ? 1 : 0, 1);
            formula.GetVariables(scanned, all, clear);
            EXPECT_EQ(m_Set.m_ClearCalls, expected);
            m_Set.m_ClearCalls.clear();
            table.GetVariables(scanned, all, clear);
            EXPECT_EQ(m_Set.m_ClearCalls, expected);
        }
    }
}

TEST_F(Scan, StaticScanOfACircleEnds)
{
    FormulaImpl& first = Formula("A", "F(B)+V(X)");
    FormulaImpl& second = Formula("B", "F(A)+T(T)+V(Y)");
    FormulaTableImpl& table = Table("T", "TU", {"FA", "VZ"});
    Table("U", "TT", {"TU", "FB"});
    EXPECT_EQ(MessageOfCheck(first, 0) + MessageOfCheck(second, 0), 0u);
    const auto scan = [](auto& object) {
        CScannedVariables scanned;
        object.GetVariables(scanned, 1, 1);
        return Names(scanned);
    };
    EXPECT_EQ(scan(first), "Z Y X");
    EXPECT_EQ(scan(second), "X Z Y");
    EXPECT_EQ(scan(table), "X Y Z");
}

TEST_F(Scan, StaticScanVisitsAnObjectOnce)
{
    // Each level refers to the next twice: without that rule the walk would take 2^60 steps.
    FormulaImpl* top = &Formula("0", "V(X)");
    EXPECT_EQ(MessageOfCheck(*top, 0), 0u);
    for (int level = 1; level <= 60; ++level) {
        const std::string name = std::to_string(level);
        const std::string below = std::to_string(level - 1);
        top = &Formula(CString(name), CString("F(" + below + ")+T(T" + name + ")"));
        Table(CString("T" + name), "1000", {("F" + below).c_str(), ""});
        EXPECT_EQ(MessageOfCheck(*top, 0), 0u);
    }
    CScannedVariables scanned;
    top->GetVariables(scanned, 1, 1);
    EXPECT_EQ(Names(scanned), "X");
}

TEST_F(Scan, StaticScanPassesOverWhatIsScannedOrMissing)
{
    FormulaImpl& scannedAlready = Formula("Done", "V(W)");
    EXPECT_EQ(MessageOfCheck(scannedAlready, 1), 0u);
    scannedAlready.SetScanned(1);
    FormulaImpl& formula = Formula("Top", "V(X)+F(Done)+F(Gone)+T(Gone)+T(Pick)+V(Y)");
    EXPECT_EQ(MessageOfCheck(formula, 0), 0u);
    EXPECT_EQ(ScanOf(formula.GetExpression(), 1, 0), "X Y Z");
    formula.SetFromEncodedString("V(X)");
    formula.GetExpression().ClearExpr();
    EXPECT_EQ(ScanOf(formula.GetExpression(), 1, 0), "") << "without a tree there are no names";
}

TEST_F(Scan, FailureKeepsTheNamesMetAndLeavesNoCondition)
{
    m_Set.ReportDomainErrors();
    Formula("Inverse", "1/V(Z)");
    Table("ByInverse", "FInverse", {"1000", "2000"});
    // A formula that fails its check is not walked.
    const char* const rows[][2] = {
        {"V(X)+IF(1/V(Z)>0,1,2)+V(Y)", "X Z"},
        {"V(X)+IF(IF(F(Inverse)>0,YES,NO),1,2)", "X"},
        {"IF(YES,IF(F(Inverse)>0,1,2),3)", ""},
        {"IF(T(ByInverse)>0,1,2)", ""},
    };
    for (const auto& [encoded, met] : rows) {
        SCOPED_TRACE(encoded);
        m_Z.SetValue(1);
        FormulaImpl& formula = Formula("Top", encoded);
        EXPECT_EQ(MessageOfCheck(formula, 1), 0u);
        m_Z.SetValue(0);
        EXPECT_EQ(ScanOf(formula.GetExpression(), 0, 0), met);
        EXPECT_EQ(formula.GetExpression().GetMessageNum(), 6604);
        EXPECT_EQ(CExprTree::InIfCondition(), 0);
    }
}

TEST_F(Scan, CallersListCountsAsMet)
{
    FormulaImpl& formula = Formula("Top", "V(X)+IF(V(Y)>0,V(Z),0)");
    EXPECT_EQ(MessageOfCheck(formula, 1), 0u);
    CStringList names;
    {
        CScannedVariables scanned(names);
        scanned.AddTail("X  ");
        scanned.AddTail(" Y");
        EXPECT_EQ(scanned.Find("X "), 1);
        EXPECT_EQ(scanned.Find("Y"), 0);
        EXPECT_EQ(scanned.Find("x"), 0);
        m_X.SetInCond(1);
        formula.GetVariables(scanned, 0, 1);
        EXPECT_EQ(Names(scanned), "X  Y Y Z");
    }
    EXPECT_EQ(names.GetCount(), 4);
    EXPECT_EQ(InCondition(), "XY") << "X was met before, so its flag can only rise";
}

TEST_F(Scan, ListTakesBlanksOffTheEndAndNoOtherWhiteSpace)
{
    const struct {
        const char* name;
        const char* listed;
    } rows[] = {
        {"X", "X"},       {"X  ", "X"},   {"X\t", "X\t"},         {"X\t ", "X\t"},
        {"X \t", "X \t"}, {"X\n", "X\n"}, {"X\u00A0", "X\u00A0"}, {"  ", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        CScannedVariables scanned;
        scanned.AddTail(row.name);
        EXPECT_EQ(Names(scanned), row.listed);
        EXPECT_EQ(scanned.Find(row.name), 1);
        EXPECT_EQ(scanned.Find("X"), std::string(row.listed) == "X");

        FormulaImpl& formula = Formula("Top", CFmlaExprBase::EncodeVariable(row.name, 0));
        EXPECT_EQ(MessageOfCheck(formula, 0), 0u);
        for (const int all : {0, 1})
            EXPECT_EQ(ScanOf(formula.GetExpression(), all, 0), row.listed);
    }
}

} // namespace

} // namespace tovo::test
