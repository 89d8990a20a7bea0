#include <string>

#include <gtest/gtest.h>

#include <TovoFormula/FmlaExpression.h>
#include <support/HostObjects.h>

#include "Texts.h"

namespace tovo::test {

namespace {

// All tokens as code:text@position, and the end or the message of a fault with its position. Holds
// every token against the text, so that no row gets by with a token from nowhere.
std::string Scan(CFmlaExprBase& expression, TEXT_LANGUAGE language, int start = 0)
{
    const CString text = expression.GetTextStr();
    CString token;
    int code = -1;
    int pos = -1;
    std::string tokens;
    expression.TrackError(0);
    int found = expression.FindFirstToken(token, code, pos, start, language);
    int last = start - 1;
    while (found != 0) {
        tokens += std::to_string(code) + ":" + token.ToUtf8() + "@" + std::to_string(pos) + " ";
        if (pos <= last || token.IsEmpty() || token != text.Mid(pos, token.GetLength()))
            return tokens + "is astray";
        last = pos;
        found = expression.FindNextToken(token, code, pos, language);
    }
    const int message = expression.GetMessageNum();
    return tokens + (message == 0 ? "end" : std::to_string(message)) + "@" + std::to_string(pos);
}

struct Row {
    const char* text;
    const char* pointers;
    const char* tokens;
};

void ExpectScan(const Row& row, TEXT_LANGUAGE language)
{
    SCOPED_TRACE(std::string(row.text) + " [" + row.pointers + "]");
    CFmlaExprBase expression;
    expression.SetExpr(row.text, row.pointers);
    EXPECT_EQ(Scan(expression, language), row.tokens);
}

constexpr Row kEnglish[] = {
    {"IF( Length >=10,JOBSIZE,0)", "3,8,0,",
     "41:IF@0 6:(@2 0: Length @3 13:>=@11 4:10@13 5:,@15 23:JOBSIZE@16 5:,@23 4:0@24 7:)@25 "
     "end@26"},
    {"", "", "end@0"},
    {"   ", "", "end@3"},
    {"1  ", "", "4:1@0 end@3"},
    {"\t1\n", "", "3:\t@0 4:1@1 3:\n@2 end@3"},
    {"1234567890.12345", "", "4:1234567890.12345@0 end@16"},
    {"1234567890.123456", "", "6616@0"},
    {"1+0000000000000001", "", "4:1@0 8:+@1 6616@2"},
    {"1.", "", "4:1.@0 end@2"},
    {".", "", "4:.@0 end@1"},
    {"1+1.2.3", "", "4:1@0 8:+@1 6620@2"},
    {"1..", "", "6620@0"},
    {"1.2.3456789012345678", "", "6620@0"},
    {"=>", "", "12:=@0 16:>@1 end@2"},
    {"><", "", "16:>@0 17:<@1 end@2"},
    {">=<=<>", "", "13:>=@0 14:<=@2 15:<>@4 end@6"},
    {"> =", "", "16:>@0 12:=@2 end@3"},
    {"ABC", "", "3:ABC@0 end@3"},
    {"abS", "", "3:a@0 3:b@1 3:S@2 end@3"},
    {"ANDOR", "", "3:ANDOR@0 end@5"},
    {"AND OR", "", "18:AND@0 29:OR@4 end@6"},
    {"ROUNDTO ROUND", "", "47:ROUNDTO@0 46:ROUND@8 end@13"},
    {"ABS2ABS", "", "33:ABS@0 4:2@3 33:ABS@4 end@7"},
    {"a?", "", "3:a@0 3:?@1 end@2"},
    {"\xC3\x84 1", "", "3:\xC3\x84@0 4:1@2 end@3"},
    {"12 34 5", "2,4,0,", "4:12@0 0: 34 @2 4:5@6 end@7"},
    {" AND ", "", "18:AND@1 end@5"},
    {" AND ", "0,5,0,", "0: AND @0 end@5"},
    {" 1.2.3 ", "0,7,1,", "1: 1.2.3 @0 end@7"},
    {" a  b  c ", "0,3,1,3,3,2,6,3,7,", "1: a @0 2: b @3 0: c @6 end@9"},
    // Only a sign of two characters reaches into a stretch, one that was loaded without its blank.
    {">=x", "1,2,0,", "13:>=@0 3:x@2 end@3"},
    {"ABS ", "2,2,0,", "3:AB@0 0:S @2 end@4"},
};

TEST(Scanner, EnglishTextGivesItsTokens)
{
    for (const Row& row : kEnglish) {
        ExpectScan(row, TL_ENGLISH);
        ExpectScan(row, TL_LOCAL);
    }
}

TEST(Scanner, LocalTextTakesTheUsersNamesAndSeparators)
{
    const UserLanguage german(",", ";", kGermanNames);
    const Row local[] = {
        {"WENN( Rate >1,5;2;0)", "5,6,0,",
         "41:WENN@0 6:(@4 0: Rate @5 16:>@11 4:1,5@12 5:;@15 4:2@16 5:;@17 4:0@18 7:)@19 end@20"},
        {"IF", "", "3:IF@0 end@2"},
        {"1.5", "", "4:1@0 3:.@1 4:5@2 end@3"},
        {"1,5,2", "", "6620@0"},
        {"NICHT JA", "", "28:NICHT@0 32:JA@6 end@8"},
        {"NICHTJA", "", "3:NICHTJA@0 end@7"},
    };
    for (const Row& row : local)
        ExpectScan(row, TL_LOCAL);
    const Row english[] = {
        {"WENN", "", "3:WENN@0 end@4"},
        {"1.5", "", "4:1.5@0 end@3"},
        {"1,5;2", "", "4:1@0 5:,@1 4:5@2 3:;@3 4:2@4 end@5"},
    };
    for (const Row& row : english)
        ExpectScan(row, TL_ENGLISH);
}

TEST(Scanner, SeparatorsOfAnyLengthAreTaken)
{
    const struct {
        const char* decimal;
        const char* list;
        Row row;
    } rows[] = {
        {"", "||", {"SUM(1||2)", "", "51:SUM@0 6:(@3 4:1@4 5:||@5 4:2@7 7:)@8 end@9"}},
        {"", "||", {"1|2", "", "4:1@0 3:|@1 4:2@2 end@3"}},
        {"", "||", {"1,2", "", "4:1@0 3:,@1 4:2@2 end@3"}},
        // The digits come first, so a list separator that is also the decimal one never separates.
        {",", ",", {"1,2", "", "4:1,2@0 end@3"}},
        // A decimal separator has one character; any other setting is passed over.
        {"::", "", {"1.5,2", "", "4:1.5@0 5:,@3 4:2@4 end@5"}},
    };
    for (const auto& [decimal, list, row] : rows) {
        const UserLanguage language(decimal, list);
        ExpectScan(row, TL_LOCAL);
    }
    ExpectScan({"1.5,2", "", "4:1.5@0 5:,@3 4:2@4 end@5"}, TL_LOCAL);
}

TEST(Scanner, FaultIsReportedAgainAndChangesNothingElse)
{
    CFmlaExprBase expression;
    expression.SetExpr("1.2.3+4");
    CString token;
    int code = 77;
    int pos = -1;
    for (int attempt = 0; attempt < 2; ++attempt) {
        expression.TrackError(0);
        EXPECT_EQ(attempt == 0 ? expression.FindFirstToken(token, code, pos, 0, TL_ENGLISH)
                               : expression.FindNextToken(token, code, pos, TL_ENGLISH),
                  0);
        EXPECT_EQ(token.ToUtf8(), "1.2.3");
        EXPECT_EQ(code, 77);
        EXPECT_EQ(pos, 0);
        EXPECT_EQ(expression.GetMessageNum(), 6620);
    }
    // The end of the text is no fault: message, token and code stay.
    EXPECT_EQ(expression.FindFirstToken(token, code, pos, 7, TL_ENGLISH), 0);
    EXPECT_EQ(token.ToUtf8(), "1.2.3");
    EXPECT_EQ(pos, 7);
    EXPECT_EQ(expression.GetMessageNum(), 6620);
}

TEST(Scanner, StartInsideAStretchReadsItsRestAsText)
{
    CFmlaExprBase expression;
    expression.SetExpr("1+ AB +2 C ", "2,4,0,8,3,1,");
    EXPECT_EQ(Scan(expression, TL_ENGLISH, 2), "0: AB @2 8:+@6 4:2@7 1: C @8 end@11");
    EXPECT_EQ(Scan(expression, TL_ENGLISH, 3), "3:AB@3 8:+@6 4:2@7 1: C @8 end@11");
    EXPECT_EQ(Scan(expression, TL_ENGLISH, 9), "3:C@9 end@11");
    EXPECT_EQ(Scan(expression, TL_ENGLISH, 50), "end@50");
}

TEST(Scanner, ReferenceOfNoLengthOrBehindTheTextIsAbsent)
{
    for (const char* pointers : {"1,0,0,", "0,0,0,0,0,1,3,0,2,", "3,3,0,", "900,3,0,", "1,1"})
        ExpectScan({"1+2", pointers, "4:1@0 8:+@1 4:2@2 end@3"}, TL_ENGLISH);
    ExpectScan({"", "0,0,0,", "end@0"}, TL_ENGLISH);
}

TEST(Scanner, NoTableLeadsOutsideTheText)
{
    HostSet set;
    for (const Row& row : {
             Row{" a  b ", "3,3,0,0,3,1,", "out of order"},
             Row{" a  b ", "0,5,0,2,4,0,", "overlapping"},
             Row{" a  b ", "0,6,0,0,3,1,3,3,2,", "inside another"},
             Row{" a  b ", "3,3,0,3,3,0,0,3,0,0,3,0,", "twice and out of order"},
             Row{"1+2", "0,60000,0,", "longer than the text"},
             Row{"1+2", "2,65535,9,1,0,0,", "up to the last word"},
             Row{"", "0,3,0,65535,65535,65535,", "without a text"},
             Row{"WENN(1;2)", "9,1,0,4,0,1,2,9,2,7", "across the tokens"},
         }) {
        SCOPED_TRACE(row.tokens);
        const UserLanguage german(",", ";", kGermanNames);
        CFmlaExpression expression(set);
        expression.SetExpr(row.text, row.pointers);
        EXPECT_EQ(Scan(expression, TL_ENGLISH).find("astray"), std::string::npos);
        EXPECT_EQ(Scan(expression, TL_LOCAL).find("astray"), std::string::npos);
        expression.IsValid();
        expression.GetEncodedString();
        for (int index = -1; index <= expression.NumVars(); ++index)
            EXPECT_LE(expression.VarName(index).GetLength(), expression.GetTextStr().GetLength());
        expression.TranslateText(TL_ENGLISH);
        expression.TranslateText(TL_LOCAL);
        EXPECT_LE(expression.GetInvalidPos(), expression.GetTextStr().GetLength());
    }
}

TEST(Scanner, ManyReferencesTakeLinearTime)
{
    const auto secondsFor = [](int count) {
        CFmlaExprBase expression;
        expression.SetFromEncodedString(CString(Repeated("V(a)+", count)));
        return BestSecondsOf(3, [&] {
            CString token;
            int code = -1;
            int pos = -1;
            int tokens = 0;
            for (int found = expression.FindFirstToken(token, code, pos, 0, TL_LOCAL); found != 0;
                 found = expression.FindNextToken(token, code, pos, TL_LOCAL))
                ++tokens;
            EXPECT_EQ(tokens, 2 * count);
        });
    };
    const double few = secondsFor(2500);
    EXPECT_LT(secondsFor(10000) / few, 10.0);
}

} // namespace

} // namespace tovo::test
