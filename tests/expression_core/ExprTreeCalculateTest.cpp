#include <cstdlib>
#include <limits>
#include <stdexcept>
#include <vector>

#include "ExpressionFixture.h"

namespace tovo::test {

namespace {

class TreeCalculation : public ExpressionTest {
protected:
    // Loads each expression of the table, with domain errors not reported, and compares the value
    // or the fault of its calculation, where they are.
    void ExpectCalculates(std::string_view table)
    {
        for (const Row& row : RowsOf(table)) {
            m_Set.m_ReportDomainErrors = false;
            EXPECT_TRUE(Load(row.input).find(" at ") == std::string::npos) << row.input;
            m_Set.m_ReportDomainErrors = true;
            const std::string fault = Calculate();
            if (fault.empty())
                EXPECT_EQ(m_Tree.GetValue(), std::strtod(row.result.c_str(), nullptr)) << row.input;
            else
                EXPECT_EQ(fault, row.result) << row.input;
        }
    }

    // Makes a variable that notes, each time it is read, its name and the depth of conditions.
    void AddWitness(const std::string& name, double value)
    {
        m_Set.AddVariable(CString(name), value).m_OnRead = [this, name] { Note(name); };
    }

    void Note(const std::string& name)
    {
        m_Reads += (m_Reads.empty() ? "" : " ") + name + std::to_string(m_Tree.ConditionDepth());
    }

    std::string m_Reads;
};

TEST_F(TreeCalculation, EmptyTreeHasNothingToSay)
{
    EXPECT_FALSE(m_Tree.Calculate(nullptr));
    EXPECT_EQ(m_Tree.GetMsg(), 0u);
    EXPECT_FALSE(m_Tree.IsLoaded() || m_Tree.IsCalculated());
    EXPECT_FALSE(m_Tree.IsNumeric() || m_Tree.IsBoolean());
    EXPECT_EQ(m_Tree.GetValue(), 0.0);
    EXPECT_EQ(m_Tree.FindFirstVarFmlOrTbl(), nullptr);
}

TEST_F(TreeCalculation, ValuesFollowTheShape)
{
    m_Set.AddVariable("half?", 0.5);
    m_Set.AddVariable("none?", -0.0);
    m_Set.AddVariable("unknown?", std::numeric_limits<double>::quiet_NaN());
    // To an IF everything but exactly 0.0 is a yes; AND looks at the whole number only.
    ExpectCalculates(R"(
        7 -> 7;              PI -> 3.141592653589793;         - 2 * 3 - - 4 -> -2
        8 / 4 / 2 -> 1;      ( 1 + 2 ) * 3 -> 9;              2 - 3 - 4 -> -5
        1 < 2 = YES -> 1;    YES OR NO AND NO -> 0;           SUM ( 1 , 2 , 3 * 4 ) -> 15
        IF ( NO , 5 ) -> 0;  IF ( 1 = 2 , 3 , 4 ) + 1 -> 5;   POWER ( 2 , - 1 ) + .5 -> 1
        IF ( V:half? , 1 , 2 ) -> 1;       IF ( V:none? , 1 , 2 ) -> 2
        IF ( V:unknown? , 1 , 2 ) -> 1;    V:half? AND YES -> 0
    )");
}

TEST_F(TreeCalculation, OnlyTheBranchTakenIsCalculated)
{
    ExpectCalculates(R"(
        IF ( 1 = 1 , 2 , 1 / 0 )                   -> 2
        IF ( 1 = 2 , 1 / 0 , 2 )                   -> 2
        IF ( NO , 1 / 0 )                          -> 0
        IF ( YES , 2 , F:missing )                 -> 2
        IF ( NO , F:missing , T:missing + 1 )      -> 0 [token:  missing ]
        IF ( NO , F:missing , 3 )                  -> 3
        IF ( YES , IF ( NO , 1 / 0 , 3 ) , 1 / 0 ) -> 3
        IF ( YES , IF ( YES , 1 / 0 , 3 ) , 4 )    -> 6604 [token: /]
        IF ( 1 / 0 = 0 , 2 , 3 )                   -> 6604 [token: /]
        NO AND 1 / 0 = 1                           -> 6604 [token: /]
        YES OR 1 / 0 = 1                           -> 6604 [token: /]
    )");
}

TEST_F(TreeCalculation, ActiveWalkLeavesOutTheBranchNotTaken)
{
    // The nodes as they are visited, each with "^" for every condition that it stands in. Without
    // a decision both branches are active.
    const std::vector<Row> rows = RowsOf(R"(
        1 + 2 * 3                       -> 1 2 3 * +
        IF ( NOT NO , 1 , 2 ) + 3       -> ( NO^ NOT^ , 1 , ) IF 3 +
        IF ( NO , 1 , 2 )               -> ( NO^ , , 2 ) IF
        IF ( NO , 1 )                   -> ( NO^ , ) IF
        IF ( IF ( NO , NO , YES ) , 1 ) -> ( (^ NO^^ ,^ ,^ YES^ )^ IF^ , 1 ) IF
        IF ( F:f? , 1 , 2 )             -> ( F:f?^ , 1 , 2 ) IF
    )");
    for (const Row& row : rows) {
        Load(row.input);
        std::string visits;
        int depth = 0;
        for (CETree* node = m_Tree.Root()->FindFirstTwig(); node;) {
            visits += (visits.empty() ? "" : " ") + Dump(*node->GetData()) +
                      std::string(static_cast<std::size_t>(depth), '^');
            node = node->GetNextActiveTwigOrParent(depth);
        }
        EXPECT_EQ(visits, row.result) << row.input;
    }
}

TEST_F(TreeCalculation, DepthCountsTheConditionsAround)
{
    for (const char* name : {"a?", "b?", "c?", "d", "e"})
        AddWitness(name, 1.0);
    m_Set.AddFormula("f").m_OnCalculate = [this](CScannedVariables*) { Note("f"); };
    const std::vector<Row> rows = RowsOf(R"(
        V:d -> d0;                                  IF ( V:a? , V:d , V:e ) -> a?1 d0
        IF ( NOT V:a? , V:d , V:e ) -> a?1 e0;      IF ( F:f > 1 , V:d , V:e ) -> f1 e0
        IF ( IF ( V:a? , V:b? , V:c? ) , V:d ) -> a?2 b?1 d0
        IF ( V:a? , IF ( V:b? , V:d , V:e ) , 1 ) -> a?1 b?1 d0
        IF ( V:a? , 1 ) + IF ( V:b? , V:e ) -> a?1 b?1 e0
    )");
    for (const Row& row : rows) {
        Load(row.input);
        m_Reads.clear();
        EXPECT_EQ(Calculate(), "") << row.input;
        EXPECT_EQ(m_Reads, row.result) << row.input;
        EXPECT_EQ(m_Tree.ConditionDepth(), 0) << row.input;
    }
}

TEST_F(TreeCalculation, DepthIsPutBackHoweverACalculationEnds)
{
    m_Set.AddFormula("f?").m_Succeeds = false;
    Load("IF ( IF ( F:f? , YES ) , 1 )");
    CExprTree::StartIfCondition();
    EXPECT_FALSE(m_Tree.Calculate(nullptr));
    EXPECT_EQ(m_Tree.ConditionDepth(), 1);
    CExprTree::EndIfCondition();
    EXPECT_FALSE(CExprTree::InIfCondition());

    HostVariable& a = m_Set.AddVariable("a?");
    Load("IF ( V:a? , 1 )");
    a.m_OnRead = [] { throw std::runtime_error("the host's own"); };
    EXPECT_THROW(m_Tree.Calculate(nullptr), std::runtime_error);
    EXPECT_EQ(m_Tree.ConditionDepth(), 0);
}

TEST_F(TreeCalculation, ScanListsWhatIsReached)
{
    for (const char* name : {"a", "b", "no?"})
        m_Set.AddVariable(name, 0.0);
    m_Set.AddVariable("yes?", 1.0);
    // The variables in the order of the list, "^" behind those that are used in a condition.
    const std::vector<Row> rows = RowsOf(R"(
        V:a + V:b + V:a             -> a b;       V:no? AND V:yes?         -> no? yes?
        IF ( V:yes? , V:a , V:b )   -> yes?^ a;   IF ( V:no? , V:a , V:b ) -> no?^ b
        V:a + IF ( V:a > 0 , V:b )  -> a^;        IF ( V:a > 0 , 1 , V:a ) -> a^
    )");
    for (const Row& row : rows) {
        for (const auto& [name, variable] : m_Set.m_Variables)
            variable->SetInCond(1);
        Load(row.input);
        CScannedVariables list;
        EXPECT_EQ(Calculate(&list), "") << row.input;

        std::string names;
        for (POSITION pos = list.VariableList().GetHeadPosition(); pos;) {
            const CString name = list.VariableList().GetNext(pos);
            names += (names.empty() ? "" : " ") + name.ToUtf8();
            names += m_Set.m_Variables[name]->InCond() ? "^" : "";
        }
        EXPECT_EQ(names, row.result) << row.input;
    }
}

TEST_F(TreeCalculation, ScanFlagsJobValues)
{
    m_Set.m_Duration = m_Set.m_JobSize = m_Set.m_Quantity = 5.0;
    const std::vector<Row> rows = RowsOf(R"(
        DURATION + DURATION               -> DURATION in condition 0
        JOBSIZE + DURATION                -> JOBSIZE in condition 0, DURATION in condition 0
        IF ( DURATION > 1 , DURATION )    -> DURATION in condition 1
        JOBSIZE + IF ( JOBSIZE > 1 , 2 )  -> JOBSIZE in condition 0, JOBSIZE in condition 1
        IF ( JOBSIZE > 9 , DURATION , 1 ) -> JOBSIZE in condition 1
        IF ( QUANTITY > 1 , 2 )           -> QUANTITY counts 1, QUANTITY in condition 1
        DURATION + QUANTITY   -> DURATION in condition 0, QUANTITY counts 1, QUANTITY in condition 0
        QUANTITY + QUANTITY   -> QUANTITY counts 1, QUANTITY in condition 0, QUANTITY counts 1
    )");
    for (const Row& row : rows) {
        Load(row.input);
        m_Set.m_Flags.clear();
        EXPECT_EQ(Calculate(), "");
        EXPECT_TRUE(m_Set.m_Flags.empty()) << row.input << " without a list";

        CScannedVariables list;
        EXPECT_EQ(Calculate(&list), "");
        std::string flags;
        for (const std::string& flag : m_Set.m_Flags)
            flags += (flags.empty() ? "" : ", ") + flag;
        EXPECT_EQ(flags, row.result) << row.input;
        EXPECT_EQ(list.QuantityScanned(), flags.find("QUANTITY") != flags.npos) << row.input;
        EXPECT_EQ(list.JOBSIZEScanned(), flags.find("JOBSIZE") != flags.npos) << row.input;
        EXPECT_EQ(list.DURATIONScanned(), flags.find("DURATION") != flags.npos) << row.input;
    }
}

TEST_F(TreeCalculation, EachCalculationReadsAfresh)
{
    HostVariable& x = m_Set.AddVariable("x", 1.0);
    HostFormula& f = m_Set.AddFormula("f", 10.0);
    HostTable& t = m_Set.AddTable("t", 100.0);
    Load("V:x + F:f + T:t + DURATION");
    EXPECT_FALSE(m_Tree.IsCalculated());
    EXPECT_EQ(m_Tree.GetValue(), 0.0);

    EXPECT_EQ(Calculate(), "");
    EXPECT_EQ(m_Tree.GetValue(), 111.0);
    EXPECT_EQ(x.m_SetInCondCalls, 0);
    x.m_Value = 2.0;
    f.m_Value = 20.0;
    m_Set.m_Duration = 3000.0;
    CScannedVariables list;
    EXPECT_EQ(Calculate(&list), "");
    EXPECT_EQ(m_Tree.GetValue(), 3122.0);
    EXPECT_EQ(f.m_LastList, &list);
    EXPECT_EQ(t.m_LastList, &list);
}

TEST_F(TreeCalculation, ReferenceFailsWithWhatItsObjectWrote)
{
    m_Set.AddFormula("bad").m_Succeeds = false;
    m_Set.AddTable("bad").m_Succeeds = false;
    HostFormula& worded = m_Set.AddFormula("worded");
    worded.m_Succeeds = false;
    worded.m_Message = 6609;
    worded.m_OnCalculate = [this](CScannedVariables*) {
        m_Set.m_Tracker.SetError(6604, nullptr, "from inside");
    };
    ExpectCalculates(R"(
        F:worded      -> 6609 [token:  worded ];    1 + F:worded  -> 6609 [token:  worded ]
        F:bad         -> 0 [token:  bad ];          1 + ( T:bad ) -> 0 [token:  bad ]
        F:missing     -> 0 [token:  missing ];      2 * T:missing -> 0 [token:  missing ]
    )");

    Load("2 * V:x");
    m_Set.m_Variables.clear();
    m_Set.m_NullForUnknownVariables = true;
    EXPECT_EQ(Calculate(), "0 [token:  x ]");
}

TEST_F(TreeCalculation, FailedWalkLeavesWhatIsAboveTheFault)
{
    HostVariable& x = m_Set.AddVariable("x", 2.0);
    Load("1 + 4 / V:x");
    x.m_Value = 0.0;
    EXPECT_EQ(Calculate(), "6604 [token: /]");
    EXPECT_TRUE(m_Tree.IsCalculated());
    EXPECT_EQ(m_Tree.GetValue(), 3.0);
    x.m_Value = 4.0;
    EXPECT_EQ(Calculate(), "");
    EXPECT_EQ(m_Tree.GetValue(), 2.0);
    EXPECT_EQ(m_Tree.GetMsg(), 6604u) << "the message of the last failure stays";
}

TEST_F(TreeCalculation, ReferencesComeInTheOrderOfTheText)
{
    Load("IF ( V:a? , F:b + ( V:c ) , T:d ) * V:a");
    std::string all, named;
    CString text;
    int code = -1;
    for (POSITION pos = m_Tree.FindFirstVarFmlOrTbl(); pos;) {
        pos = m_Tree.GetNextVarFmlOrTbl(0, pos, text, code);
        all += std::to_string(code) + text.ToUtf8();
    }
    EXPECT_EQ(all, "0 a? 1 b 0 c 2 d 0 a ");
    for (POSITION pos = m_Tree.FindFirstFmlOrTbl(); pos;) {
        pos = m_Tree.GetNextFmlOrTbl(pos, text, code);
        named += std::to_string(code) + text.ToUtf8();
    }
    EXPECT_EQ(named, "1 b 2 d ");

    EXPECT_EQ(m_Tree.GetNextVarFmlOrTbl(0, nullptr, text, code), nullptr);
    EXPECT_EQ(m_Tree.GetNextFmlOrTbl(nullptr, text, code), nullptr);
    EXPECT_EQ(text, CString(" d "));
    Load("SUM ( 1 , V:x )");
    EXPECT_EQ(m_Tree.FindFirstFmlOrTbl(), nullptr);
}

// No depth that a text can have may exhaust the stack, which a call for each level would.
TEST_F(TreeCalculation, AnyDepthIsBuiltCalculatedAndDeleted)
{
    using Words = std::vector<const char*>;
    const struct {
        const char* what;
        int count;
        Words before;
        const char* middle;
        Words after;
        double value;
    } rows[] = {
        {"parentheses", 200000, {"("}, "7", {")"}, 7.0},
        {"unary minuses", 200000, {"-"}, "7", {}, 7.0},
        {"terms", 100000, {}, "V:x", {"+", "1"}, 100000.0},
        {"conditions", 20000, {"IF", "("}, "YES", {",", "YES", ")"}, 1.0},
    };
    for (const auto& row : rows) {
        bool isTaken = true;
        for (int i = 0; i < row.count; ++i) {
            for (const char* word : row.before)
                isTaken = isTaken && Insert(word);
        }
        isTaken = isTaken && Insert(row.middle);
        for (int i = 0; i < row.count; ++i) {
            for (const char* word : row.after)
                isTaken = isTaken && Insert(word);
        }
        EXPECT_TRUE(isTaken && m_Tree.EndOfExpression()) << row.what;
        EXPECT_EQ(Calculate(), "") << row.what;
        EXPECT_EQ(m_Tree.GetValue(), row.value) << row.what;
        m_Tree.Clear();
    }
}

} // namespace

} // namespace tovo::test
