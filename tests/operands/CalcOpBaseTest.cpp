#include <gtest/gtest.h>

#include "Operands.h"

namespace tovo::test {

namespace {

class OpenOperand : public CalcOpBase {
public:
    using CalcOpBase::operator=;
    using CalcOpBase::m_ConstantValue;
};

struct Row {
    const char* load;
    const char* shown;
    double value = 0.0; // of a constant
};

constexpr Row kRows[] = {
    {"", "-||||number"},
    {"n2.5", "C|2.500|2.500|2.500|number", 2.5},
    {"n-0.0004", "C|0.000|0.000|0.000|number", -0.0004},
    {"b7", "C|1|1|1|yes/no", 1},
    {"b0", "C|0|0|0|yes/no"},
    {"VHeight", "V|VHeight|V(Height)|Height|number"},
    {"VDone?", "V|VDone?|V(Done?)|Done?|yes/no"},
    {"V", "V|V|V()||number"},
    {"Fa)b\\", "F|Fa)b\\|F(a\\)b\\\\)|a)b\\|number"},
    {"TUnion?", "T|TUnion?|T(Union?)|Union?|yes/no"},
    {"eV(Height)+1", "E||V(Height)+1| Height +1|unknown"},
    {"eV(Height)", "V|VHeight|V(Height)|Height|number"},
    {"eT(Union?)", "T|TUnion?|T(Union?)|Union?|yes/no"},
    {"e V(Height)", "E|| V(Height)|  Height |unknown"},
    {"e", "E||||unknown"},
    {"pV7", "V|V7|V(7)|7|number"},
    {"pFa?", "F|Fa?|F(a?)|a?|yes/no"},
    // A constant that comes in thousandths has a value, but neither a text nor a type.
    {"p2500", "C||||unknown", 2.5},
    {"p-5e2 V", "C||||unknown", -0.5},
    {"pV", "C||||unknown"},
};

TEST(Operand, ShowsWhatItHolds)
{
    for (const Row& row : kRows) {
        OpenOperand operand;
        EXPECT_TRUE(Load(operand, row.load));
        EXPECT_EQ(Show(operand), row.shown) << row.load;
        EXPECT_DOUBLE_EQ(operand.m_ConstantValue, row.value) << row.load;
    }
}

TEST(Operand, LoadsAndAssignmentsReplaceWhatWasThere)
{
    for (const Row& first : kRows) {
        for (const Row& second : kRows) {
            SCOPED_TRACE(first.load + std::string(" and ") + second.load);
            OpenOperand operand;
            Load(operand, first.load);
            OpenOperand other;
            Load(other, second.load);
            operand = other;
            EXPECT_EQ(Show(operand), second.shown);
            Load(operand, first.load);
            EXPECT_EQ(Show(operand), first.shown);
            EXPECT_DOUBLE_EQ(operand.m_ConstantValue, first.value);
            EXPECT_EQ(Show(other), second.shown);
        }
    }
}

TEST(Operand, CopyHasAnExpressionOfItsOwn)
{
    CalcOpBase operand;
    EXPECT_THROW(operand.GetFmlaExprBase(), CInvalidArgException);
    Load(operand, "eV(a)+1");
    CalcOpBase copy;
    copy = operand;
    EXPECT_EQ(copy.GetFmlaExprBase().InsertString("2", 0), 1);
    EXPECT_EQ(operand.GetEncodedString().ToUtf8(), "V(a)+1");
    EXPECT_EQ(copy.GetEncodedString().ToUtf8(), "2V(a)+1");
    // With text and table an expression stays one, also if it is a lone reference.
    EXPECT_TRUE(copy.LoadExpression(" b ", "0,3,2,"));
    EXPECT_EQ(Show(copy), "E||T(b)| b |unknown");
}

TEST(Operand, RtfHasTheColourOfTheKind)
{
    const char* const rows[][2] = {
        {"n2.5", R"(\cf0\b 2.500 \par})"},
        {"VHeight", R"(\cf1\b\ul  Height  \par})"},
        {"FWall\\Area", R"(\cf2\b\ul  Wall\\Area  \par})"},
        {"e1+F(a)", R"(\cf0\b 1+\plain\f0\fs14\cf2\b\ul  a  \par})"},
    };
    CalcOpBase operand;
    EXPECT_EQ(operand.GetRTFDisplay().ToUtf8(), "");
    for (const auto& [load, end] : rows) {
        Load(operand, load);
        EXPECT_TRUE(operand.GetRTFDisplay().ToUtf8().ends_with(end)) << load;
    }
}

} // namespace

} // namespace tovo::test
