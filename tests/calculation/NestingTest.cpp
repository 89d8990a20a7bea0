#include "Job.h"

namespace tovo::test {

namespace {

class Nesting : public Job {
protected:
    // Names of an outer validation, which no check below may touch.
    Nesting() { NestedNames::m_NestedFmlaNames.AddHead("Outer"); }
    ~Nesting() override { NestedNames::m_NestedFmlaNames.RemoveAll(); }

    void ExpectNothingLeftBehind()
    {
        EXPECT_EQ(Names(NestedNames::m_NestedFmlaNames), "Outer");
        EXPECT_EQ(CExprTree::InIfCondition(), 0);
    }
};

struct Object {
    char kind; // F: a formula and its text; T: a table and its cell; R: a table and its selector
    const char* name;
    const char* content;
};

TEST_F(Nesting, CircleOrMissingObjectEndsWithItsChain)
{
    const struct {
        std::vector<Object> objects; // the first is checked
        const char* chain;
    } rows[] = {
        {{{'F', "A", "F(A)"}}, "6608 [Expression:  A  | Formula: A]"},
        {{{'F', "A", "1+F(B)"}, {'F', "B", "F(A)"}},
         "6608 [Expression: 1+ B  | Formula: B | Formula: A]"},
        {{{'F', "", "F()"}}, "6608 [Expression:   ]"},
        {{{'F', "A", "F()"}, {'F', "", "F(A)"}}, "6608 [Expression:    | Formula: A]"},
        {{{'T', "T", "TU"}, {'R', "U", "TT"}},
         "6608 [Formula table: T | Row selector | Formula table: U | Cell at row 1, column 1. | "
         "Formula table: T]"},
        {{{'F', "A", "T(T)"}, {'T', "T", "FA"}},
         "6608 [Expression:  T  | Cell at row 1, column 1. | Formula table: T | Formula: A]"},
        {{{'F', "A", "1+F(Gone)"}}, "6614 [Formula: Gone | Formula: A]"},
        {{{'F', "A", "T(Gone)"}}, "6615 [Formula table : Gone | Formula: A]"},
        {{{'F', "A", "T(T)"}, {'T', "T", "FGone"}},
         "6614 [Formula: Gone | Cell at row 1, column 1. | Formula table: T | Formula: A]"},
        {{{'R', "T", "TGone"}}, "6615 [Formula table: Gone | Row selector | Formula table: T]"},
        {{{'F', "A", "F(B)*2"}, {'F', "B", "1+"}}, "10732 [token: + | Formula: B | Formula: A]"},
        {{{'F', "A", "F(B)"}, {'F', "B", "1>0"}}, "6609 [Expression: 1>0 | Formula: A]"},
        {{{'T', "T", "FA"}, {'F', "A", "x"}},
         "6682 [Expression: x | Formula: A | Cell at row 1, column 1. | Formula table: T]"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.chain);
        std::vector<FormulaImpl*> formulas;
        std::vector<FormulaTableImpl*> tables;
        for (const Object& object : row.objects) {
            if (object.kind == 'F')
                formulas.push_back(&Formula(object.name, object.content));
            else if (object.kind == 'T')
                tables.push_back(&Table(object.name, "1000", {object.content, ""}));
            else
                tables.push_back(&Table(object.name, object.content, {"1000", ""}));
        }
        EXPECT_EQ(row.objects[0].kind == 'F' ? MessageOfCheck(*formulas[0], 1)
                                             : MessageOfCheck(*tables[0], 1),
                  static_cast<unsigned int>(std::stoi(row.chain)));
        EXPECT_EQ(Chain(), row.chain);
        for (FormulaImpl* formula : formulas)
            EXPECT_NE(MessageOfCalculation(*formula), 0u);
        ExpectNothingLeftBehind();
    }
}

TEST_F(Nesting, CheckOfAFormulaAloneLooksAtNoOther)
{
    FormulaImpl& first = Formula("A", "F(B)+F(Gone)");
    FormulaImpl& second = Formula("B", "F(A)+F(B)+T(Gone)");
    EXPECT_EQ(MessageOfCheck(first, 0) + MessageOfCheck(second, 0), 0u);
    FormulaImpl& outer = Formula("Outer", "1");
    EXPECT_EQ(MessageOfCheck(outer, 1), 6608u) << "a formula of that name is being checked";
    EXPECT_EQ(MessageOfCheck(outer, 0), 0u);
    ExpectNothingLeftBehind();
}

// A table that was validated alone answers the check at once, so that the circle is met only by the
// calculation.
TEST_F(Nesting, CircleThroughAValidatedTableIsMetInTheCalculation)
{
    FormulaTableImpl& table = Table("T", "1000", {"FA", ""});
    FormulaImpl& formula = Formula("A", "T(T)+1");
    EXPECT_EQ(MessageOfCheck(table, 0), 0u);
    EXPECT_EQ(MessageOfCheck(formula, 1), 6608u);
    EXPECT_EQ(Chain(), "6608 [token:  T  | Formula: A]");
    EXPECT_EQ(formula.GetExpression().GetInvalidPos(), 3);
    EXPECT_EQ(MessageOfCalculation(table), 6608u);
    EXPECT_EQ(table.GetCalculated(), 0);

    FormulaTableImpl& itself = Table("Self", "TSelf", {"1000", "2000"});
    itself.SetValidated(1);
    EXPECT_EQ(MessageOfCalculation(itself), 6608u);
    EXPECT_EQ(Chain(), "6608 [Formula table: Self]");
    ExpectNothingLeftBehind();
}

// The host's formula calls back while its caller is loaded, and then while it is walked.
TEST_F(Nesting, HostFormulaThatCalculatesItsCallerGetsAMessage)
{
    HostFormula host("Host", 1.0);
    m_Set.m_HostFormulas["Host"] = &host;
    FormulaImpl& caller = Formula("Caller", "2+F(Host)");
    host.m_OnCalculate = [&](CScannedVariables*) {
        host.m_Message = 0;
        host.m_Succeeds = caller.Calculate(host.m_Message, nullptr) != 0;
    };
    EXPECT_EQ(MessageOfCalculation(caller), 6608u);
    ExpectNothingLeftBehind();
    host.m_OnCalculate = nullptr;
    host.m_Succeeds = true;
    EXPECT_EQ(ValueOf(caller), 3.0);
    CFmlaExpression& walked = caller.GetExpression();
    host.m_OnCalculate = [&walked](CScannedVariables*) {
        EXPECT_EQ(walked.Calculate(nullptr), 0);
        EXPECT_EQ(walked.GetMessageNum(), 6608);
        EXPECT_EQ(walked.LoadExpressionTree(0), 0);
    };
    EXPECT_EQ(walked.Calculate(nullptr), 1);
    EXPECT_EQ(walked.GetValue(), 3.0);
}

TEST_F(Nesting, ExceptionOfAHostLeavesNothingBehind)
{
    HostVariable trouble("Trouble", 1.0);
    m_Set.m_HostVariables["Trouble"] = &trouble;
    HostFormula host("Host", 1.0);
    m_Set.m_HostFormulas["Host"] = &host;
    Formula("Choice?", "IF(V(Trouble)>0,YES,F(Host)>0)");
    FormulaTableImpl& table = Table("T", "FInner?", {"1000", "2000"});
    Formula("Inner?", "V(Trouble)>F(Host)");
    FormulaImpl& outer = Formula("Result", "IF(F(Choice?),T(T),V(Trouble))");
    int harmlessCalls = 0;
    const auto count = [&harmlessCalls] {
        if (--harmlessCalls < 0)
            throw HostTrouble();
    };
    for (int first = 0; first < 30; ++first) {
        SCOPED_TRACE(first);
        m_Set.StartNewPass();
        table.SetValidated(0);
        harmlessCalls = first;
        trouble.m_OnRead = count;
        host.m_OnCalculate = [&count](CScannedVariables*) { count(); };
        try {
            unsigned int message = 0;
            CScannedVariables scanned;
            static_cast<void>(outer.Calculate(message, &scanned));
            static_cast<void>(outer.GetExpression().Calculate(&scanned));
            table.GetVariables(scanned, 0, 1);
        } catch (const HostTrouble&) {
        }
        ExpectNothingLeftBehind();
        trouble.m_OnRead = nullptr;
        host.m_OnCalculate = nullptr;
        m_Set.StartNewPass();
        EXPECT_EQ(ValueOf(outer), 1.0);
    }
}

TEST_F(Nesting, ExpressionWithoutANameIsNotCheckedInsideItself)
{
    HostFormula host("Host", 1.0);
    m_Set.m_HostFormulas["Host"] = &host;
    CFmlaExpression expression(m_Set);
    expression.SetFromEncodedString("2+F(Host)");
    host.m_OnCalculate = [&](CScannedVariables*) {
        host.m_Succeeds = expression.IsValid(host.m_Message, "", 1) != 0;
    };
    unsigned int message = 0;
    EXPECT_EQ(expression.IsValid(message, "", 1), 0);
    EXPECT_EQ(message, 6608u);
    ExpectNothingLeftBehind();
}

TEST_F(Nesting, NestedFormulasOKChecksTheLoadedTree)
{
    Formula("Good", "1");
    CFmlaExpression expression(m_Set);
    expression.SetFromEncodedString("F(Good)+ABS(T(Gone))");
    EXPECT_EQ(expression.NestedFormulasOK(), 1) << "there is no tree yet";
    EXPECT_EQ(expression.IsValid(), 1);
    expression.SetInvalidPos(4);
    EXPECT_EQ(expression.NestedFormulasOK(), 0);
    EXPECT_EQ(Chain(), "6615 [Formula table : Gone]");
    EXPECT_EQ(expression.GetMessageNum(), 6615);
    EXPECT_EQ(expression.GetInvalidPos(), 4);
    Table("Gone", "1000", {"1000", "2000"});
    EXPECT_EQ(expression.NestedFormulasOK(), 1);
    EXPECT_EQ(expression.CheckNestedFormula(" Good ") + expression.CheckNestedFormtbl("Gone"), 2);
    EXPECT_EQ(expression.CheckNestedFormula("  Good "), 0) << "one blank on either side";
    EXPECT_EQ(Chain(), "6614 [Formula:  Good]");
}

} // namespace

} // namespace tovo::test
