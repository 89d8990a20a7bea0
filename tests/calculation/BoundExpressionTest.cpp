#include <clocale>
#include <locale>

#include <expression_text/Texts.h>

#include "Job.h"

namespace tovo::test {

namespace {

class BoundExpression : public Job {
protected:
    void Store(const CString& encoded) { m_Expression.SetFromEncodedString(encoded); }
    unsigned int Check(const CString& name = CString(), int nested = 0)
    {
        unsigned int message = 77;
        const int valid = m_Expression.IsValid(message, name, nested);
        return valid != 0 && message == 77 ? 0 : message;
    }
    double Value()
    {
        EXPECT_EQ(m_Expression.Calculate(nullptr), 1);
        return m_Expression.GetValue();
    }

    CFmlaExpression m_Expression{m_Set};
};

struct Refusal {
    const char* encoded;
    unsigned int message;
    int invalidPos;
    const char* chain;
};

constexpr Refusal kRefusals[] = {
    {"", 6610, 0, "6610 [Expression: ]"},
    {"abc", 6682, 0, "6682 [Expression: abc]"},
    {"1 +\t2", 6682, 3, "6682 [Expression: 1 +\t2]"},
    {"  1.2.3+1", 6620, 0, "6620 [Expression:   1.2.3+1]"},
    {"1+1.2.3", 6620, 2, "6620 [Expression: 1+1.2.3]"},
    {"1+1234567890123456", 6616, 2, "6616 [Expression: 1+1234567890123456]"},
    {"1+V(x)V(y)", 6627, 5, "6627 [token:  y ]"},
    // The tracker has what was raised for the unnamed function in front of the parenthesis.
    {"2(3)", 6624, 1, "6623 [token: ]"},
    {"ABS(1,2)", 6619, 5, "6619 [token: ,]"},
    {"1+YES", 6617, 2, "6617 [token: YES]"},
    {"1 AND YES", 6625, 2, "6625 [token: AND]"},
    // Faults that show at the end are marked at the last token.
    {"1+2  -", 10732, 5, "10732 [token: -]"},
    {"(", 10732, 0, "10732 [token: ]"},
    {"POWER(1  ", 6600, 6, "6600 [token: POWER]"},
    {"1/V(Zero)", 6604, 2, "6604 [token: /]"},
    {"IF(NO,1/0,2)", 6604, 9, "6604 [token: /]"},
};

TEST_F(BoundExpression, RefusalTellsMessagePlaceAndChain)
{
    m_Set.ReportDomainErrors();
    m_Set.SetDuration(3);
    Var("Length", 4);
    for (const Refusal& row : kRefusals) {
        SCOPED_TRACE(row.encoded);
        Store(row.encoded);
        EXPECT_EQ(Check(), row.message);
        EXPECT_EQ(m_Expression.GetMessageNum(), static_cast<int>(row.message));
        EXPECT_EQ(m_Expression.GetInvalidPos(), row.invalidPos);
        EXPECT_EQ(Chain(), row.chain);
        const std::string chain = row.chain;
        EXPECT_EQ(Check("Name"), row.message);
        EXPECT_EQ(Chain(), chain.substr(0, chain.size() - 1) + " | Formula: Name]");
        m_Expression.ClearExpr();
        EXPECT_EQ(m_Expression.GetValue(), 0.0);
        Store("(V(Length)-1)*DURATION");
        EXPECT_EQ(Check("Good"), 0u);
        EXPECT_EQ(m_Expression.GetInvalidPos() + m_Expression.GetMessageNum(), 0);
        EXPECT_EQ(Value(), 9.0);
    }
}

TEST_F(BoundExpression, GermanTextMeansTheSameUnderAnyLocale)
{
    struct CommaPoint : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
    };
    const std::locale before = std::locale::global(std::locale(std::locale(), new CommaPoint));
    const std::string numbersBefore = std::setlocale(LC_NUMERIC, nullptr);
    for (const char* name : {"C", "de_DE.UTF-8", "fr_FR.UTF-8"}) {
        SCOPED_TRACE(name);
        std::setlocale(LC_NUMERIC, name);
        const UserLanguage german(",", ";");
        FormulaImpl& formula = Formula("Rounded", "");
        CFmlaExpression& expression = formula.GetExpression();
        expression.SetExpr("ROUND(1,5;0)");
        EXPECT_EQ(expression.GetEncodedString().ToUtf8(), "ROUND(1.5,0)");
        formula.SetFromEncodedString("ROUND(1.5,0)");
        EXPECT_EQ(expression.GetTextStr().ToUtf8(), "ROUND(1,5;0)");
        EXPECT_EQ(ValueOf(formula), 2.0);
        expression.SetExpr("ROUND(1.5;0)");
        EXPECT_EQ(MessageOfCheck(formula, 0), 6682u);
        EXPECT_EQ(expression.GetInvalidPos(), 7);
    }
    std::setlocale(LC_NUMERIC, numbersBefore.c_str());
    std::locale::global(before);
}

TEST_F(BoundExpression, NameDecidesTheKindOfItsValue)
{
    const struct {
        const char* name;
        const char* encoded;
        unsigned int message;
    } rows[] = {
        {"Total", "1+1", 0},      {"Total", "1>0", 6609},   {"Ok?", "1+1", 6609},
        {"", "1>0", 0},           {"Ok? ", "1>0", 6609},    {"?", "YES", 0},
        {"Ok?", "V(x?)", 0},      {"Total", "V(x?)", 6609}, {"Ok?", "IF(YES,NO,YES)", 0},
        {"Total", "(YES)", 6609}, {"Total", "F(f)", 0},     {"Total", "F(f?)", 6609},
        {"Ok?", "T(t)", 6609},    {"Ok?", "NOT F(f?)", 0},  {"Ok?", "1+F(f)", 6609},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.name) + " = " + row.encoded);
        Store(row.encoded);
        EXPECT_EQ(Check(row.name), row.message);
        EXPECT_EQ(m_Expression.GetInvalidPos(), 0);
        if (row.message != 0) {
            EXPECT_EQ(Chain(), "6609 [Expression: " + m_Expression.GetTextStr().ToUtf8() + "]");
        }
    }
}

TEST_F(BoundExpression, LastReferenceGetsTheBlankThatItLacks)
{
    const struct {
        const char* text;
        const char* pointers;
        int limit;
        const char* taken;
    } rows[] = {
        {"1+ a", "2,3,1,", 1470, "1+ a "}, {"1+ a", "2,3,1,", 5, "1+ a "},
        {"1+ a", "2,3,1,", 4, "1+ a"},     {"1+ a ", "2,3,1,", 1470, "1+ a "},
        {"1+ a", "2,2,1,", 1470, "1+ a"},  {"1+ a", "2,4,1,", 1470, "1+ a"},
        {"1+ a", "", 1470, "1+ a"},        {" b + a", "0,3,0,4,3,0,", 1470, " b + a "},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.text) + " [" + row.pointers + "]");
        CFmlaExpression source(m_Set);
        source.SetExpr(row.text, row.pointers);
        m_Expression.SetExprTextLimit(row.limit);
        m_Expression.SetInvalidPos(3);
        m_Expression.SetExpr(source);
        EXPECT_EQ(m_Expression.GetTextStr().ToUtf8(), row.taken);
        EXPECT_EQ(m_Expression.GetPtrStr().ToUtf8(), row.pointers);
        EXPECT_EQ(m_Expression.GetInvalidPos(), -1);
        EXPECT_EQ(source.GetTextStr().ToUtf8(), row.text);
    }
}

// Everything that copying may carry over, as one line.
std::string State(const CFmlaExpression& expression)
{
    return expression.GetTextStr().ToUtf8() + "|" + expression.GetPtrStr().ToUtf8() + "|" +
           std::to_string(expression.GetInvalidPos()) + "|" +
           std::to_string(expression.GetMessageNum()) + "|" +
           std::to_string(expression.GetExprTextLimit()) +
           (expression.IsLoaded() ? "|loaded" : "|no tree");
}

TEST_F(BoundExpression, CopiesCarryTheTextButNoTree)
{
    JobSet other;
    Store("1+V(x)");
    EXPECT_EQ(Check(), 0u);
    m_Expression.SetInvalidPos(5);
    m_Expression.TrackError(6607);
    m_Expression.SetExprTextLimit(9);
    const std::unique_ptr<CFmlaExprBase> clone(m_Expression.Clone());
    EXPECT_EQ(State(dynamic_cast<CFmlaExpression&>(*clone)), "1+ x |2,3,0,|5|6607|9|no tree");
    EXPECT_EQ(State(CFmlaExpression(m_Expression)), "1+ x |2,3,0,|5|0|1470|no tree");

    CFmlaExpression target(other);
    target.SetExpr("7");
    EXPECT_EQ(target.IsValid(), 1);
    CFmlaExprBase& asBase = target;
    asBase = static_cast<CFmlaExprBase&>(m_Expression);
    EXPECT_EQ(State(target), "1+ x |2,3,0,|5|6607|9|loaded");
    EXPECT_EQ(target.GetValue(), 7.0);
    target = m_Expression;
    EXPECT_EQ(State(target), "1+ x |2,3,0,|5|6607|9|no tree");
    EXPECT_EQ(&target.CalcSet(), &other);
}

TEST_F(BoundExpression, NoTextIsTooLongOrTooDeep)
{
    constexpr int kDeep = 200'000;
    constexpr int kLong = 1'000'000;
    const struct {
        std::string text;
        unsigned int message;
        double value;
    } rows[] = {
        {Repeated("(", kDeep) + "1" + Repeated(")", kDeep), 0, 1},
        {Repeated("(", kDeep), 10732, 0},
        {Repeated("ABS(", 20'000) + "2" + Repeated(")", 20'000), 0, 2},
        {Repeated("IF(YES,", 20'000) + "3" + Repeated(")", 20'000), 0, 3},
        {Repeated("-", kDeep) + "4", 0, 4},
        {"1" + Repeated("+1", kLong / 2), 0, kLong / 2 + 1},
        {Repeated("x", kLong), 6682, 0},
        {Repeated(" ", kLong), 6610, 0},
        {Repeated("1", kLong), 6616, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text.substr(0, 20));
        m_Expression.SetExpr(CString(row.text));
        EXPECT_EQ(Check(), row.message);
        if (row.message == 0) {
            EXPECT_EQ(Value(), row.value);
        }
    }
}

} // namespace

} // namespace tovo::test
