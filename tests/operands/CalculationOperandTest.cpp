#include <TovoFormula/CalculationOperand.h>
#include <TovoFormula/FormulaImpl.h>
#include <calculation/Job.h>

#include "Operands.h"

namespace tovo::test {

namespace {

class BoundOperand : public ::testing::Test {
protected:
    BoundOperand()
    {
        m_Set.AddVariable("Height", 2);
        m_Set.AddVariable("Done?", 1);
    }
    bool Load(const CString& row) { return tovo::test::Load(m_Operand, row); }
    // Type, whether it is calculated, and value: "number 1 2.5".
    std::string Value()
    {
        return TypeOf(m_Operand) + (m_Operand.GetCalculated() ? " 1 " : " 0 ") +
               std::to_string(m_Operand.GetValue()).substr(0, 3);
    }
    // The names of a scan; "!" if it was refused.
    std::string Scan(bool all, bool clear = true)
    {
        CScannedVariables scanned;
        const bool done = m_Operand.GetVariables(scanned, all, clear);
        return Names(scanned) + (done ? "" : "!");
    }
    // The letters of the accessors that do not throw.
    std::string Accessible()
    {
        const auto access = [](const char* letter, auto accessor) -> std::string {
            try {
                accessor();
                return letter;
            } catch (const CInvalidArgException&) {
                return "";
            }
        };
        return access("V", [this] { m_Operand.GetVarObj(); }) +
               access("F", [this] { m_Operand.GetFmlaObj(); }) +
               access("T", [this] { m_Operand.GetFormtblObj(); }) +
               access("E", [this] { m_Operand.GetFmlaExpression(); });
    }

    HostSet m_Set;
    HostFormula& m_Area = m_Set.AddFormula("Area", 6);
    HostTable& m_Union = m_Set.AddTable("Union?", 1);
    CalculationOperand m_Operand{m_Set};
};

TEST_F(BoundOperand, EachKindIsCalculated)
{
    FormulaImpl stock(&m_Set);
    CString name("Stock");
    stock.SetName(name);
    stock.SetFromEncodedString("2");
    m_Set.m_Formulas["Stock"] = &stock;
    const struct {
        const char* load;
        const char* before; // type, whether it is calculated, value
        const char* after;
        const char* accessible;
    } rows[] = {
        {"", "number 0 0.0", "number 0 0.0", ""},
        {"n2.5", "number 1 2.5", "number 1 2.5", ""},
        {"p2500", "unknown 1 2.5", "unknown 1 2.5", ""},
        {"pVDone?", "yes/no 1 1.0", "yes/no 1 1.0", "V"},
        {"FArea", "number 0 0.0", "number 1 6.0", "F"},
        {"eT(Union?)", "yes/no 0 0.0", "yes/no 1 1.0", "T"},
        {"eV(Height)+F(Area)", "unknown 0 0.0", "number 1 8.0", "E"},
        {"eNOT T(Union?)", "unknown 0 0.0", "yes/no 1 0.0", "E"},
        // Only its host tells that the value of a stock formula is good.
        {"FStock", "number 0 0.0", "number 0 0.0", "F"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.load);
        EXPECT_TRUE(Load(row.load));
        EXPECT_EQ(Value(), row.before);
        EXPECT_EQ(m_Operand.IsValid(true), m_Operand.IsLoaded());
        EXPECT_EQ(m_Operand.Calculate(), m_Operand.IsLoaded());
        EXPECT_EQ(Value(), row.after);
        m_Set.m_Lookups.clear();
        EXPECT_EQ(Accessible(), row.accessible);
        EXPECT_LE(m_Set.m_Lookups.size(), 1u) << "a set may make up what it is asked for";
        EXPECT_EQ(m_Operand.GetInvalidPos(), 0);
        EXPECT_EQ(m_Operand.GetMsgId(), 0u);
    }
    stock.SetCalculated(1);
    EXPECT_EQ(m_Operand.GetValue(), 2.0);
}

TEST_F(BoundOperand, LoadNeedsTheNameInTheSet)
{
    // An encoded string is read all the same, whatever becomes of a lone reference in it. A plain
    // operand that is assigned is looked up like one that is loaded.
    const struct {
        const char* load;
        bool loads;
        unsigned int message;
        const char* shown;
        bool hasDatabase = true;
    } rows[] = {
        {"VGone", false, 0, "-|||Gone|number"},
        {"FGone?", false, 6602, "-|||Gone?|yes/no"},
        {"TGone", false, 6603, "-|||Gone|number"},
        {"eV(Gone)", true, 0, "-|||Gone|number"},
        {"eF(Gone)", true, 6602, "-|||Gone|number"},
        {"eF(Gone)+1", true, 0, "E||F(Gone)+1| Gone +1|unknown"},
        {"FArea", false, 6602, "-|||Area|number", false},
        {"TUnion?", false, 6603, "-|||Union?|yes/no", false},
        {"VHeight", true, 0, "V|VHeight|V(Height)|Height|number", false},
        {"FArea", true, 0, "F|FArea|F(Area)|Area|number"},
    };
    m_Set.m_NullForUnknownVariables = true;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.load);
        m_Set.m_HasDatabase = row.hasDatabase;
        m_Operand.Clear();
        m_Operand.InitData();
        EXPECT_EQ(Load(row.load), row.loads);
        EXPECT_EQ(Show(m_Operand), row.shown);
        Load("n1");
        EXPECT_EQ(Show(m_Operand), "C|1.000|1.000|1.000|number");
        EXPECT_EQ(m_Operand.GetMsgId(), row.message);

        CalcOpBase plain;
        tovo::test::Load(plain, row.load);
        CalculationOperand bound(m_Set);
        bound = plain;
        EXPECT_EQ(Show(bound), row.shown);
        EXPECT_EQ(bound.GetMsgId(), row.message);
    }
}

TEST_F(BoundOperand, FailureIsToldUntilTheNextOne)
{
    const struct {
        const char* load;
        unsigned int message;
        int invalidPos;
        bool validAlone = false;
    } rows[] = {
        {"e", 6610, 0},
        {"eV(Height)+1.2.3", 6620, 9},
        {"eV(Height)+F(Gone)", 6614, 9, true},
        {"e1+1/0", 6604, 4},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.load);
        Load(row.load);
        EXPECT_EQ(m_Operand.GetInvalidPos(), -1);
        EXPECT_EQ(Scan(true), "!");
        EXPECT_EQ(m_Operand.GetMsgId(), row.message);
        EXPECT_EQ(m_Operand.GetInvalidPos(), row.invalidPos);
        EXPECT_EQ(m_Operand.IsValid(false), row.validAlone);
        EXPECT_FALSE(m_Operand.Calculate());
        Load("eV(Height)+1");
        EXPECT_TRUE(m_Operand.Calculate());
        EXPECT_EQ(m_Operand.GetMsgId(), row.message);
    }
}

TEST_F(BoundOperand, ObjectIsAskedEachTime)
{
    const auto expectAsked = [this](auto& object) {
        EXPECT_TRUE(m_Operand.IsValid(false));
        EXPECT_EQ(object.m_LastNested, 0);
        EXPECT_TRUE(m_Operand.Calculate());
        EXPECT_EQ(object.m_LastNested, 1);
        object.m_OnGetVariables = [](CScannedVariables& list, int all, int clear) {
            list.AddTail(CString(std::to_string(all) + std::to_string(clear)));
        };
        EXPECT_EQ(Scan(true, false) + ' ' + Scan(false, true), "10 01");
        object.m_OnCalculate = [&object](CScannedVariables*) { object.m_Succeeds = false; };
        object.m_Message = 6613;
        EXPECT_FALSE(m_Operand.Calculate()); // sound, but fails now
        EXPECT_EQ(m_Operand.GetMsgId(), 6613u);
        object.m_Message = 6611;
        EXPECT_EQ(Scan(true), "!");
        object.m_Message = 0;
        EXPECT_FALSE(m_Operand.IsValid(true));
        EXPECT_EQ(m_Operand.GetMsgId(), 6611u);
    };
    Load("FArea");
    expectAsked(m_Area);
    Load("TUnion?");
    expectAsked(m_Union);
}

TEST_F(BoundOperand, ScanListsWhatTheContentRefersTo)
{
    FormulaImpl sum(&m_Set);
    sum.SetFromEncodedString("V(Height)+V(Else)");
    m_Set.m_Formulas["Sum"] = &sum;
    FormulaImpl bad(&m_Set);
    bad.SetFromEncodedString("V(Height)+");
    m_Set.m_Formulas["Bad"] = &bad;
    const char* const rows[][3] = {
        {"n2", "", ""},
        {"FSum", "Height Else", "Height Else"},
        {"FBad", "!", "!"},
        {"eIF(V(Done?),V(Height),V(Else))+V(Height)", "Done? Height Else", "Done? Height"},
        {"eF(Sum)*2", "Height Else", "Height Else"},
    };
    for (const auto& [load, all, reached] : rows) {
        SCOPED_TRACE(load);
        Load(load);
        EXPECT_EQ(Scan(true), all);
        EXPECT_EQ(Scan(false), reached);
    }
    Load("eV(Height)+1");
    const int cleared = m_Set.m_ClearScannedFlagsCalls;
    Scan(true, false);
    Scan(true, true);
    EXPECT_EQ(m_Set.m_ClearScannedFlagsCalls, cleared + 1);

    // A variable is marked when it is first met, and listed once.
    HostVariable& depth = m_Set.AddVariable("Depth");
    depth.m_InCond = 1;
    Load("VDepth");
    CScannedVariables scanned;
    EXPECT_TRUE(m_Operand.GetVariables(scanned, false, false));
    EXPECT_TRUE(m_Operand.GetVariables(scanned, true, true));
    EXPECT_EQ(Names(scanned), "Depth");
    EXPECT_EQ(depth.m_InCond * 10 + depth.m_SetInCondCalls, 1);
}

TEST_F(BoundOperand, ReferenceIsShownAsItsObjectSpellsIt)
{
    m_Set.m_Variables["height?"] = m_Set.m_Variables["Height"];
    m_Set.m_Formulas["area?"] = &m_Area;
    m_Set.m_Tables["union"] = &m_Union;
    Load("Vheight?");
    EXPECT_EQ(Show(m_Operand), "V|VHeight|V(Height)|Height|number");
    Load("Farea?");
    EXPECT_NE(m_Operand.GetRTFDisplay().Find("\\cf2\\b\\ul  Area "), -1);
    Load("Tunion");
    EXPECT_EQ(Show(m_Operand), "T|TUnion?|T(Union?)|Union?|yes/no");
}

TEST_F(BoundOperand, ObjectMayLeaveTheSetAndComeBack)
{
    for (const auto& [name, message] : {std::pair("FArea", 6602u), std::pair("TUnion?", 6603u)}) {
        SCOPED_TRACE(name);
        Load(name);
        EXPECT_TRUE(m_Operand.Calculate());
        m_Set.m_Formulas.clear();
        m_Set.m_Tables.clear();
        EXPECT_FALSE(m_Operand.Calculate());
        EXPECT_EQ(m_Operand.GetMsgId(), message);
        EXPECT_FALSE(m_Operand.IsValid(false) || m_Operand.GetCalculated());
        EXPECT_EQ(m_Operand.GetValue(), 0.0);
        EXPECT_EQ(Scan(true) + Accessible(), "!");
        EXPECT_EQ(m_Operand.GetPrefixedString().ToUtf8(), name);
        m_Set.AddFormula("Area", 7);
        m_Set.AddTable("Union?", 7);
        EXPECT_TRUE(m_Operand.Calculate());
        EXPECT_EQ(m_Operand.GetValue(), 7.0);
    }
}

TEST_F(BoundOperand, AssignmentKeepsTheSetOfTheTarget)
{
    HostSet otherSet;
    otherSet.AddVariable("Height", 5);
    CalculationOperand target(otherSet);
    Load("eV(Height)+1");
    EXPECT_TRUE(m_Operand.Calculate());
    target = m_Operand;
    EXPECT_FALSE(target.GetCalculated()); // text and references came, but no tree
    EXPECT_TRUE(target.Calculate());
    EXPECT_EQ(target.GetValue(), 6.0);

    Load("FArea");
    target = m_Operand;
    EXPECT_FALSE(target.Calculate());
    EXPECT_EQ(target.GetMsgId(), 6602u);
    m_Operand = target;
    EXPECT_EQ(m_Operand.GetMsgId(), 0u);
    EXPECT_TRUE(m_Operand.Calculate());
}

} // namespace

} // namespace tovo::test
