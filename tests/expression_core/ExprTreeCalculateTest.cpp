#include <algorithm>
#include <cstdlib>
#include <limits>
#include <stdexcept>

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
            Load(row.input);
            m_Set.m_ReportDomainErrors = true;
            const std::string fault = Calculate();
            const double value = std::strtod(row.result.c_str(), nullptr);
            EXPECT_TRUE(fault.empty() ? m_Tree.GetValue() == value : fault == row.result)
                << row.input << " gave " << m_Tree.GetValue() << fault;
        }
    }
};

TEST_F(TreeCalculation, OnlyTheBranchTakenIsCalculated)
{
    m_Set.AddVariable("half?", 0.5);
    m_Set.AddVariable("none?", -0.0);
    m_Set.AddVariable("unknown?", std::numeric_limits<double>::quiet_NaN());
    // To an IF everything but exactly 0.0 is a yes; AND looks at the whole number only.
    ExpectCalculates(R"(
        PI -> 3.141592653589793;        - 2 * 3 - - 4 -> -2;    8 / 4 / 2 -> 1; ( 1 + 2 ) * 3 -> 9
        1 < 2 = YES -> 1;       YES OR NO AND NO -> 0;  SUM ( 1 , 2 , 3 * 4 ) -> 15
        POWER ( 2 , - 1 ) + .5 -> 1;    IF ( V:half? , 1 , 2 ) -> 1;    IF ( V:none? , 1 , 2 ) -> 2
        IF ( V:unknown? , 1 , 2 ) -> 1; V:half? AND YES -> 0;   IF ( 1 = 1 , 2 , 1 / 0 ) -> 2
        IF ( 1 = 2 , 1 / 0 , 2 ) -> 2;  IF ( NO , 1 / 0 ) + 1 -> 1
        IF ( YES , 2 , F:missing ) -> 2;        IF ( NO , F:missing , 3 ) -> 3
        IF ( NO , 1 , F:missing ) -> 0 missing; IF ( YES , IF ( NO , 1 / 0 , 3 ) , 1 / 0 ) -> 3
        IF ( YES , IF ( YES , 1 / 0 , 3 ) , 4 ) -> 6604 /;      IF ( 1 / 0 = 0 , 2 , 3 ) -> 6604 /
        NO AND 1 / 0 = 1 -> 6604 /
    )");
}

TEST_F(TreeCalculation, ActiveWalkLeavesOutTheBranchNotTaken)
{
    // The nodes as they are visited, each with "^" for every condition that it stands in. Without
    // a decision both branches are active.
    for (const Row& row : RowsOf(R"(
        1 + 2 * 3 -> 1 2 3 * +;         IF ( NOT NO , 1 , 2 ) + 3 -> ( NO^ NOT^ , 1 , ) IF 3 +
        IF ( NO , 1 , 2 ) -> ( NO^ , , 2 ) IF;          IF ( NO , 1 ) -> ( NO^ , ) IF
        IF ( F:f? , 1 , 2 ) -> ( F:f?^ , 1 , 2 ) IF
        IF ( IF ( NO , NO , YES ) , 1 ) -> ( (^ NO^^ ,^ ,^ YES^ )^ IF^ , 1 ) IF
    )")) {
        Load(row.input);
        std::string visits;
        int depth = 0;
        for (CETree* node = m_Tree.Root()->FindFirstTwig(); node;) {
            visits += (visits.empty() ? "" : " ") + Dump(*node->GetData());
            visits.append(static_cast<std::size_t>(depth), '^');
            node = node->GetNextActiveTwigOrParent(depth);
        }
        EXPECT_EQ(visits, row.result) << row.input;
    }
}

TEST_F(TreeCalculation, DepthCountsTheConditionsAroundAndIsPutBack)
{
    std::string reads;
    for (const std::string name : {"a?", "b?", "c?", "d", "e"}) {
        m_Set.AddVariable(CString(name), 1.0).m_OnRead = [&reads, name] {
            reads += ' ' + name + std::to_string(InspectedTree::ConditionDepth());
        };
    }
    for (const Row& row : RowsOf(R"(
        IF ( NOT V:a? , V:d , V:e ) -> a?1 e0;  IF ( V:a? , 1 ) + IF ( V:b? , V:e ) -> a?1 b?1 e0
        IF ( IF ( V:a? , V:b? , V:c? ) , V:d ) -> a?2 b?1 d0
        IF ( V:a? , IF ( V:b? , V:d , V:e ) , 1 ) -> a?1 b?1 d0
    )")) {
        Load(row.input);
        reads.clear();
        EXPECT_EQ(Calculate(), "") << row.input;
        EXPECT_EQ(reads, ' ' + row.result) << row.input;
        EXPECT_EQ(m_Tree.ConditionDepth(), 0) << row.input;
    }

    Load("IF ( IF ( F:f? , YES ) , V:a? )");
    CExprTree::StartIfCondition();
    EXPECT_FALSE(m_Tree.Calculate(nullptr));
    EXPECT_EQ(m_Tree.ConditionDepth(), 1);
    CExprTree::EndIfCondition();
    m_Set.AddFormula("f?").m_OnCalculate = [](auto*) { throw std::runtime_error("the host's"); };
    EXPECT_THROW(static_cast<void>(m_Tree.Calculate(nullptr)), std::runtime_error);
    EXPECT_EQ(m_Tree.ConditionDepth(), 0);
}

TEST_F(TreeCalculation, ScanListsWhatIsReachedAndFlagsJobValues)
{
    for (const char* name : {"a", "b", "no?", "yes?"})
        m_Set.AddVariable(name, *name == 'y' ? 1.0 : 0.0);
    m_Set.m_Duration = m_Set.m_JobSize = m_Set.m_Quantity = 5.0;
    // The variables in the order of the list, "^" behind those that are used in a condition, then
    // the flags in the order of their calls, with 1 for a condition.
    for (const Row& row : RowsOf(R"(
        V:a + V:b + V:a -> a b;                 V:no? AND V:yes? -> no? yes?
        IF ( V:yes? , V:a , V:b ) -> yes?^ a;   IF ( V:no? , V:a , V:b ) -> no?^ b
        V:a + IF ( V:a > 0 , V:b ) -> a^;       IF ( V:a > 0 , 1 , V:a ) -> a^
        DURATION + JOBSIZE + DURATION -> DURATION0 JOBSIZE0
        JOBSIZE + DURATION -> JOBSIZE0 DURATION0;       IF ( DURATION > 1 , DURATION ) -> DURATION1
        JOBSIZE + IF ( JOBSIZE > 9 , DURATION , 2 ) -> JOBSIZE0 JOBSIZE1
        IF ( QUANTITY > 1 , 2 ) -> COUNTS1 QUANTITY1
        QUANTITY + QUANTITY -> COUNTS1 QUANTITY0 COUNTS1
    )")) {
        for (const auto& [name, variable] : m_Set.m_Variables)
            variable->SetInCond(1);
        Load(row.input);
        m_Set.m_Flags.clear();
        EXPECT_EQ(Calculate(), "") << row.input;
        EXPECT_EQ(m_Set.m_Flags, "") << row.input << " without a list";

        CScannedVariables list;
        EXPECT_EQ(Calculate(&list), "") << row.input;
        std::string all;
        for (POSITION pos = list.VariableList().GetHeadPosition(); pos;) {
            const CString name = list.VariableList().GetNext(pos);
            all += ' ' + name.ToUtf8() + (m_Set.m_Variables[name]->InCond() ? "^" : "");
        }
        EXPECT_EQ(all + m_Set.m_Flags, ' ' + row.result) << row.input;
    }
}

TEST_F(TreeCalculation, EachCalculationReadsAfresh)
{
    HostVariable& x = m_Set.AddVariable("x", 1.0);
    HostFormula& f = m_Set.AddFormula("f", 10.0);
    HostTable& t = m_Set.AddTable("t", 100.0);
    EXPECT_FALSE(m_Tree.Calculate(nullptr)) << "nothing is there yet";
    Load("V:x + F:f + T:t / V:x");
    EXPECT_EQ(Calculate(), "");
    EXPECT_EQ(m_Tree.GetValue(), 111.0);
    EXPECT_EQ(x.m_SetInCondCalls, 0);
    x.m_Value = 0.0;
    EXPECT_EQ(Calculate(), "6604 /");
    EXPECT_EQ(m_Tree.GetValue(), 111.0) << "what is above the fault stays";
    x.m_Value = 2.0;
    f.m_Value = 20.0;
    CScannedVariables list;
    EXPECT_EQ(Calculate(&list), "");
    EXPECT_EQ(m_Tree.GetValue(), 72.0);
    EXPECT_EQ(m_Tree.GetMsg(), 6604u) << "the message of the last failure stays";
    EXPECT_TRUE(f.m_LastList == &list && t.m_LastList == &list);
}

TEST_F(TreeCalculation, ReferenceFailsWithWhatItsObjectWrote)
{
    m_Set.AddTable("bad").m_Succeeds = false;
    HostFormula& worded = m_Set.AddFormula("worded");
    worded.m_Succeeds = false;
    worded.m_Message = 6609;
    worded.m_OnCalculate = [this](auto*) { m_Set.m_Tracker.SetError(6604, nullptr, "inside"); };
    ExpectCalculates(R"(
        F:worded -> 6609 worded;                1 + F:worded -> 6609 worded
        F:missing -> 0 missing;                 1 + ( T:bad ) -> 0 bad
    )");
    Load("2 * V:x");
    m_Set.m_Variables.clear();
    m_Set.m_NullForUnknownVariables = true;
    EXPECT_EQ(Calculate(), "0 x");
}

TEST_F(TreeCalculation, ReferencesComeInTheOrderOfTheText)
{
    Load("IF ( V:a? , F:b + ( V:c ) , T:d ) * V:a");
    std::string all, named;
    CString text;
    int code = -1;
    for (POSITION pos = m_Tree.FindFirstVarFmlOrTbl(); pos; all += text.ToUtf8())
        pos = m_Tree.GetNextVarFmlOrTbl(0, pos, text, code);
    EXPECT_EQ(all, " a?  b  c  d  a ");
    for (POSITION pos = m_Tree.FindFirstFmlOrTbl(); pos; named += std::to_string(code))
        pos = m_Tree.GetNextFmlOrTbl(pos, text, code);
    EXPECT_EQ(named, "12");
    EXPECT_EQ(m_Tree.GetNextFmlOrTbl(nullptr, text, code), nullptr);
}

// No depth that a text can have may exhaust the stack, which a call for each level would.
TEST_F(TreeCalculation, AnyDepthIsBuiltCalculatedAndDeleted)
{
    // clang-format off
    const struct { int count; const char *before, *middle, *after; double value; } rows[] = {
        {200000, "( ", "7", " )", 7.0}, {100000, "", "V:x", " + 1", 100000.0},
        {200000, "- ", "7", "", 7.0}, {1000, "IF ( ", "YES", " , YES )", 1.0}};
    // clang-format on
    for (const auto& row : rows) {
        std::string text;
        for (int place = -row.count; place <= row.count; ++place)
            text += place < 0 ? row.before : place > 0 ? row.after : row.middle;
        bool isTaken = true;
        for (std::size_t at = 0, end = 0; isTaken && end < text.size(); at = end + 1) {
            end = std::min(text.find(' ', at), text.size());
            isTaken = Insert(std::string_view(text).substr(at, end - at));
        }
        EXPECT_TRUE(isTaken && m_Tree.EndOfExpression()) << row.before;
        EXPECT_EQ(Calculate(), "") << row.before;
        EXPECT_EQ(m_Tree.GetValue(), row.value) << row.before;
        m_Tree.Clear();
    }
}

} // namespace

} // namespace tovo::test
