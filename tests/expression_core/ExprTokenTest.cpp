#include <array>
#include <climits>

#include <TovoFormula/FmlaExprBase.h>
#include <TovoPlatform/LocaleSettings.h>

#include "ExpressionFixture.h"

namespace tovo::test {

namespace {

class Token : public testing::Test {
protected:
    CExprToken Make(int code, const char* text) { return CExprToken(m_Set, code, text, 0); }

    HostSet m_Set;
};

TEST_F(Token, CodeAndTextSettleWhatItIs)
{
    for (const int code : {-1, 55, INT_MIN, INT_MAX})
        EXPECT_EQ(Make(code, "text").GetCode(), TOK_ILLEGAL) << code;
    EXPECT_EQ(Make(TOK_IF, "IF").GetTokArgType(0), RT_BOOLEAN) << "whatever the others are";

    SetLocaleSetting(LOCALE_SDECIMAL, ",");
    CFmlaExprBase::ReInitExprNames();
    EXPECT_EQ(Make(TOK_NUMBER, "1,5").GetValue(), 1.5);
    SetLocaleSetting(LOCALE_SDECIMAL, "");
    CFmlaExprBase::ReInitExprNames();
}

// clang-format off

TEST_F(Token, TextOfAReferenceGivesKindAndName)
{
    const struct { const char* text; int kind; const char* name; } rows[] = {
        {" x ", RT_NUMERIC, "x"}, {"  ?x", RT_NUMERIC, " ?x"}, {" a b  ", RT_NUMERIC, "a b "},
        {" x? ", RT_BOOLEAN, "x?"}, {"?", RT_BOOLEAN, "?"}, {"x? \t\n", RT_BOOLEAN, "x? \t\n"},
        {"   ", RT_ANY, " "}, {"\t", RT_ANY, "\t"}};
    for (const auto& row : rows) {
        EXPECT_EQ(Make(TOK_FORMTBL, row.text).GetReturnType(), row.kind) << row.text;
        EXPECT_EQ(Make(TOK_FORMTBL, row.text).GetName(), CString(row.name)) << row.text;
    }
}

TEST_F(Token, CountOutsideTheLimitsFailsUnderEitherAnswer)
{
    std::array<double, 100> args{};
    const struct { int code, count; bool isTaken; } rows[] = {
        {TOK_MINUS, 0, false}, {TOK_MINUS, 1, true},  {TOK_MINUS, 2, true},  {TOK_MINUS, 3, false},
        {TOK_SUM, 0, false},   {TOK_SUM, 99, true},   {TOK_SUM, 100, false}, {TOK_IF, 1, false},
        {TOK_NUMBER, 1, false}, {TOK_ILLEGAL, 0, false}, {-1, 0, false}, {INT_MAX, 0, false}};
    for (const bool isReported : {true, false}) {
        m_Set.m_ReportDomainErrors = isReported;
        for (const auto& row : rows) {
            CExprToken token = Make(row.code, "text");
            m_Set.m_Tracker.SetError(0, nullptr);
            EXPECT_EQ(token.Calculate(args.data(), row.count, 1, nullptr), row.isTaken) << row.code;
            EXPECT_EQ(token.IsCalculated(), row.isTaken) << row.code << ' ' << row.count;
            EXPECT_EQ(token.GetCalculationError(), row.isTaken ? 0u : 10732u) << row.code;
            EXPECT_EQ(m_Set.m_Tracker.GetError(), row.isTaken ? 0u : 10732u) << row.code;
        }
    }
}

// clang-format on

TEST_F(Token, EveryCalculationStartsClean)
{
    CExprToken division = Make(TOK_DIVIDE, "/");
    std::array<double, 2> args = {1.0, 0.0};
    EXPECT_FALSE(division.Calculate(args.data(), 2, 1, nullptr));
    args[1] = 2.0;
    EXPECT_TRUE(division.Calculate(args.data(), 2, 1, nullptr));
    EXPECT_EQ(division.GetCalculationError(), 0u);
}

TEST_F(Token, NestedZeroKeepsFormulasAndTablesFromBeingLookedUp)
{
    m_Set.AddFormula("x", 5.0);
    m_Set.AddTable("x", 5.0);
    for (const int code : {TOK_FORMULA, TOK_FORMTBL}) {
        CExprToken token = Make(code, " x ");
        EXPECT_FALSE(token.Calculate(nullptr, 0, 0, nullptr)) << code;
        EXPECT_TRUE(m_Set.m_Lookups.empty()) << code;
        EXPECT_TRUE(token.Calculate(nullptr, 0, 1, nullptr)) << code;
        EXPECT_EQ(token.GetValue(), 5.0) << code;
        m_Set.m_Lookups.clear();
    }
}

} // namespace

} // namespace tovo::test
