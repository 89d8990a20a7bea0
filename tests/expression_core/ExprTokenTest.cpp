#include <array>
#include <cerrno>
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

TEST_F(Token, CodeOutsideTheCatalogueIsIllegal)
{
    for (const int code : {-1, 55, INT_MIN, INT_MAX}) {
        const CExprToken token = Make(code, "text");
        EXPECT_EQ(token.GetCode(), TOK_ILLEGAL) << code;
        EXPECT_EQ(token.GetText(), CString("text")) << code;
        EXPECT_TRUE(token.IsIllegal() && token.IsLoaded() && token.IsCalculated()) << code;
        EXPECT_EQ(CExprToken::GetTokCodeType(code), TT_ILLEGAL) << code;
        EXPECT_EQ(CExprToken::GetTokCodeNameId(code), -1) << code;
    }
}

TEST_F(Token, NumberIsWhatTheTextBeginsWith)
{
    for (const Row& row : RowsOf("1.5 -> 1.5; .25 -> 0.25; 7. -> 7; 12ab -> 12; . -> 0; x -> 0")) {
        const CExprToken token = Make(TOK_NUMBER, row.input.c_str());
        EXPECT_EQ(token.GetValue(), std::stod(row.result)) << row.input;
        EXPECT_TRUE(token.IsLoaded() && token.IsCalculated()) << row.input;
    }
    EXPECT_EQ(Make(TOK_QUANTITY, "5").GetValue(), 0.0);
    EXPECT_FALSE(Make(TOK_QUANTITY, "5").IsCalculated());
}

TEST_F(Token, NumberIsReadWithTheUsersSeparatorToo)
{
    SetLocaleSetting(LOCALE_SDECIMAL, ",");
    CFmlaExprBase::ReInitExprNames();
    EXPECT_EQ(Make(TOK_NUMBER, "1,5").GetValue(), 1.5);
    EXPECT_EQ(Make(TOK_NUMBER, "1.5").GetValue(), 1.5);
    SetLocaleSetting(LOCALE_SDECIMAL, "");
    CFmlaExprBase::ReInitExprNames();
    EXPECT_EQ(Make(TOK_NUMBER, "1,5").GetValue(), 1.0);
}

TEST_F(Token, TextOfAReferenceGivesKindAndName)
{
    const struct {
        const char* text;
        int kind;
        const char* name;
    } rows[] = {
        {" x ", RT_NUMERIC, "x"},
        {" x? ", RT_BOOLEAN, "x?"},
        {"  ?x", RT_NUMERIC, " ?x"},
        {"?", RT_BOOLEAN, "?"},
        {"x? \t\n", RT_BOOLEAN, "x? \t\n"},
        {" a b  ", RT_NUMERIC, "a b "},
        {"   ", RT_ANY, " "},
        {"\t", RT_ANY, "\t"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Make(TOK_FORMTBL, row.text).GetReturnType(), row.kind) << row.text;
        EXPECT_EQ(Make(TOK_FORMTBL, row.text).GetName(), CString(row.name)) << row.text;
    }
    EXPECT_TRUE(Make(TOK_QUANTITY, "x?").IsNumeric());
}

TEST_F(Token, CountOfArgumentsSettlesOnce)
{
    const struct {
        int code;
        int first;
        bool isFirstTaken;
        int second;
        bool isSecondTaken;
        int precedence;
    } rows[] = {
        {TOK_MINUS, 1, true, 2, false, 6}, {TOK_MINUS, 2, true, 1, false, 3},
        {TOK_MINUS, 3, false, 2, true, 3}, {TOK_MINUS, 0, false, 1, true, 6},
        {TOK_PLUS, 1, false, 2, true, 3},  {TOK_NOT, 2, false, 1, true, 6},
        {TOK_ROUND, 2, true, 1, false, 0}, {TOK_SUM, 100, false, 99, true, 0},
    };
    for (const auto& row : rows) {
        CExprToken token = Make(row.code, "");
        EXPECT_EQ(token.SetNumArgs(row.first), row.isFirstTaken) << row.code << ' ' << row.first;
        EXPECT_EQ(token.SetNumArgs(row.second), row.isSecondTaken) << row.code << ' ' << row.second;
        EXPECT_EQ(token.GetPrecedence(), row.precedence) << row.code << ' ' << row.first;
    }
}

TEST_F(Token, ConditionIsYesNoWhateverTheOtherArgumentsAre)
{
    CExprToken choice = Make(TOK_IF, "IF");
    EXPECT_EQ(choice.GetTokArgType(1), RT_ANY);
    EXPECT_TRUE(choice.SetArgType(RT_NUMERIC));
    EXPECT_FALSE(choice.SetArgType(RT_BOOLEAN));
    EXPECT_EQ(choice.GetTokArgType(0), RT_BOOLEAN);
    EXPECT_EQ(choice.GetTokArgType(2), RT_NUMERIC);
    EXPECT_EQ(Make(TOK_SUM, "SUM").GetTokArgType(0), RT_NUMERIC);
}

TEST_F(Token, CountOutsideTheLimitsFailsUnderEitherAnswer)
{
    std::array<double, 100> args{};
    args.fill(1.0);
    const struct {
        int code;
        int count;
        bool isTaken;
    } rows[] = {
        {TOK_PLUS, 1, false},    {TOK_PLUS, 2, true},   {TOK_PLUS, 3, false},
        {TOK_MINUS, 0, false},   {TOK_MINUS, 1, true},  {TOK_MINUS, 2, true},
        {TOK_MINUS, 3, false},   {TOK_ABS, 0, false},   {TOK_ABS, 2, false},
        {TOK_IF, 1, false},      {TOK_IF, 4, false},    {TOK_SUM, 0, false},
        {TOK_SUM, 99, true},     {TOK_SUM, 100, false}, {TOK_NUMBER, 1, false},
        {TOK_ILLEGAL, 0, false},
    };
    for (const bool isReported : {true, false}) {
        m_Set.m_ReportDomainErrors = isReported;
        for (const auto& row : rows) {
            CExprToken token = Make(row.code, "text");
            token.SetValue(4.0);
            EXPECT_EQ(token.Calculate(args.data(), row.count, 1, nullptr), row.isTaken)
                << row.code << ' ' << row.count;
            EXPECT_EQ(token.IsCalculated(), row.isTaken) << row.code << ' ' << row.count;
            if (!row.isTaken) {
                EXPECT_EQ(token.GetValue(), 4.0) << row.code << ' ' << row.count;
                EXPECT_EQ(token.GetCalculationError(), 10732u) << row.code << ' ' << row.count;
                EXPECT_EQ(Dump(m_Set.m_Tracker), "10732 [token: text]") << row.code;
            }
        }
    }
}

TEST_F(Token, EveryCalculationStartsClean)
{
    CExprToken division = Make(TOK_DIVIDE, "/");
    std::array<double, 2> args = {1.0, 0.0};
    EXPECT_FALSE(division.Calculate(args.data(), 2, 1, nullptr));

    // What others left in errno is not the token's failure.
    errno = ERANGE;
    args = {6.0, 3.0};
    EXPECT_TRUE(division.Calculate(args.data(), 2, 1, nullptr));
    EXPECT_EQ(division.GetValue(), 2.0);
    EXPECT_EQ(division.GetCalculationError(), 0u);

    m_Set.SetStrError("a text");
    EXPECT_TRUE(Make(TOK_COMMA, ",").Calculate(nullptr, 0, 1, nullptr));
    EXPECT_TRUE(m_Set.m_StrError.IsEmpty());
}

TEST_F(Token, BadErrnoKnowsDomainAndRange)
{
    const struct {
        int error;
        unsigned int message;
    } rows[] = {{0, 0}, {EINVAL, 0}, {EDOM, 6611}, {ERANGE, 6613}};
    for (const auto& row : rows) {
        CExprToken token = Make(TOK_SIN, "SIN");
        m_Set.m_StrErrors.clear();
        errno = row.error;
        EXPECT_EQ(token.BadErrno(), row.message != 0) << row.error;
        EXPECT_EQ(token.GetCalculationError(), row.message) << row.error;
        EXPECT_EQ(m_Set.m_StrErrors.empty(), row.message == 0) << row.error;
    }
    errno = 0;
}

TEST_F(Token, NestedZeroKeepsFormulasAndTablesFromBeingLookedUp)
{
    m_Set.AddFormula("x", 5.0);
    m_Set.AddTable("x", 5.0);
    for (const int code : {TOK_FORMULA, TOK_FORMTBL}) {
        CExprToken token = Make(code, " x ");
        EXPECT_FALSE(token.Calculate(nullptr, 0, 0, nullptr)) << code;
        EXPECT_EQ(token.GetCalculationError(), 0u) << code;
        EXPECT_TRUE(m_Set.m_Lookups.empty()) << code;
        EXPECT_TRUE(token.Calculate(nullptr, 0, 1, nullptr)) << code;
        EXPECT_EQ(token.GetValue(), 5.0) << code;
        m_Set.m_Lookups.clear();
    }
}

} // namespace

} // namespace tovo::test
