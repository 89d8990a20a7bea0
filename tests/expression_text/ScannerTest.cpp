#include <string>

#include <gtest/gtest.h>

#include <TovoFormula/FmlaExpression.h>
#include <support/HostObjects.h>

#include "Texts.h"

namespace tovo::test {

namespace {

// All tokens as code:text@position, and the end or the message of a fault with its position. Holds
// every token against the text, so that no row gets by with a token from nowhere.
std::string Scan(CFmlaExprBase expression, TEXT_LANGUAGE language, int start = 0)
{
    CString token;
    int code = -1;
    int pos = -1;
    std::string tokens;
    int last = start - 1;
    for (int found = expression.FindFirstToken(token, code, pos, start, language); found != 0;
         found = expression.FindNextToken(token, code, pos, language)) {
        tokens += std::to_string(code) + ":" + token.ToUtf8() + "@" + std::to_string(pos) + " ";
        if (pos <= last || token.IsEmpty() ||
            token != expression.GetTextStr().Mid(pos, token.GetLength()))
            return tokens + "is astray";
        last = pos;
    }
    const int message = expression.GetMessageNum();
    return tokens + (message == 0 ? "end" : std::to_string(message)) + "@" + std::to_string(pos);
}

using Row = const char* [2]; // text and table, and the tokens

constexpr Row kEnglish[] = {
    {"IF( Length >=10,JOBSIZE,0)[3,8,0,]",
     "41:IF@0 6:(@2 0: Length @3 13:>=@11 4:10@13 5:,@15 23:JOBSIZE@16 5:,@23 4:0@24 7:)@25 "
     "end@26"},
    {"[]", "end@0"},
    {"\t1  []", "3:\t@0 4:1@1 end@4"},
    {"1234567890.12345[]", "4:1234567890.12345@0 end@16"},
    {"1+0000000000000001[]", "4:1@0 8:+@1 6616@2"},
    {".[]", "4:.@0 end@1"},
    {"1+1.2.3[]", "4:1@0 8:+@1 6620@2"},
    {"=>><[]", "12:=@0 16:>@1 16:>@2 17:<@3 end@4"},
    {">=<=<>[]", "13:>=@0 14:<=@2 15:<>@4 end@6"},
    {"abS?[]", "3:a@0 3:b@1 3:S@2 3:?@3 end@4"},
    {"ANDOR AND OR[]", "3:ANDOR@0 18:AND@6 29:OR@10 end@12"},
    {"ROUNDTO2ABS[]", "47:ROUNDTO@0 4:2@7 33:ABS@8 end@11"},
    {"\xC3\x84 1[]", "3:\xC3\x84@0 4:1@2 end@3"},
    {"12 34 5[2,4,0,]", "4:12@0 0: 34 @2 4:5@6 end@7"},
    {" AND [0,5,0,]", "0: AND @0 end@5"},
    {" 1.2.3 [0,7,1,]", "1: 1.2.3 @0 end@7"},
    {" a  b  c [0,3,1,3,3,2,6,3,7,]", "1: a @0 2: b @3 0: c @6 end@9"},
    // Stretches that were loaded without their blanks: only a sign of two characters reaches in.
    {">=x[1,2,0,]", "13:>=@0 3:x@2 end@3"},
    {"ABS [2,2,0,]", "3:AB@0 0:S @2 end@4"},
    {"1234[2,2,1,]", "4:12@0 1:34@2 end@4"},
    // A reference of no length or behind the text is none, nor is a part of a triple.
    {"1+2[1,0,0,]", "4:1@0 8:+@1 4:2@2 end@3"},
    {"1+2[0,0,0,0,0,1,3,0,2,]", "4:1@0 8:+@1 4:2@2 end@3"},
    {"1+2[3,3,0,900,3,0,1,1]", "4:1@0 8:+@1 4:2@2 end@3"},
};

TEST(Scanner, EnglishTextGivesItsTokens)
{
    for (const Row& row : kEnglish) {
        EXPECT_EQ(Scan(Expression(row[0]), TL_ENGLISH), row[1]) << row[0];
        EXPECT_EQ(Scan(Expression(row[0]), TL_LOCAL), row[1]) << row[0];
    }
}

TEST(Scanner, LocalTextTakesTheUsersNamesAndSeparators)
{
    const struct {
        const char* decimal;
        const char* list;
        TEXT_LANGUAGE language;
        Row row;
    } rows[] = {
        {",",
         ";",
         TL_LOCAL,
         {"WENN( Rate >1,5;2)[5,6,0,]",
          "41:WENN@0 6:(@4 0: Rate @5 16:>@11 4:1,5@12 5:;@15 4:2@16 7:)@17 end@18"}},
        {",", ";", TL_LOCAL, {"IF 1.5[]", "3:IF@0 4:1@3 3:.@4 4:5@5 end@6"}},
        {",", ";", TL_LOCAL, {"1,5,2[]", "6620@0"}},
        {",", ";", TL_LOCAL, {"NICHT JA NICHTJA[]", "28:NICHT@0 32:JA@6 3:NICHTJA@9 end@16"}},
        {",", ";", TL_ENGLISH, {"WENN 1.5[]", "3:WENN@0 4:1.5@5 end@8"}},
        {",", ";", TEXT_LANGUAGE{7}, {"WENN 1.5[]", "3:WENN@0 4:1.5@5 end@8"}},
        {",", ";", TL_ENGLISH, {"1,5;2[]", "4:1@0 5:,@1 4:5@2 3:;@3 4:2@4 end@5"}},
        {"", "||", TL_LOCAL, {"1||2|3,4[]", "4:1@0 5:||@1 4:2@3 3:|@4 4:3@5 3:,@6 4:4@7 end@8"}},
        // The digits come first, so a list separator that is also the decimal one never separates.
        {",", ",", TL_LOCAL, {"1,2[]", "4:1,2@0 end@3"}},
        // A decimal separator has one character; any other setting is passed over.
        {"::", "", TL_LOCAL, {"1.5,2[]", "4:1.5@0 5:,@3 4:2@4 end@5"}},
    };
    for (const auto& [decimal, list, language, row] : rows) {
        const UserLanguage german(decimal, list, kGermanNames);
        EXPECT_EQ(Scan(Expression(row[0]), language), row[1]) << row[0];
    }
}

TEST(Scanner, FaultIsReportedAgainAndChangesNothingElse)
{
    CFmlaExprBase expression = Expression("1.2.3+4[]");
    CString token;
    int code = 77;
    int pos = -1;
    EXPECT_EQ(expression.FindFirstToken(token, code, pos, 0, TL_ENGLISH), 0);
    expression.TrackError(0);
    EXPECT_EQ(expression.FindNextToken(token, code, pos, TL_ENGLISH), 0);
    EXPECT_EQ(expression.GetMessageNum(), 6620);
    EXPECT_EQ(pos, 0);
    // The end of the text is no fault: message, token and code stay.
    EXPECT_EQ(expression.FindFirstToken(token, code, pos, 7, TL_ENGLISH), 0);
    EXPECT_EQ(expression.GetMessageNum(), 6620);
    EXPECT_EQ(pos, 7);
    EXPECT_EQ(token.ToUtf8(), "1.2.3");
    EXPECT_EQ(code, 77);
}

TEST(Scanner, StartInsideAStretchReadsItsRestAsText)
{
    CFmlaExprBase expression = Expression("1+ AB +2 C [2,4,0,8,3,1,]");
    EXPECT_EQ(Scan(expression, TL_ENGLISH, 3), "3:AB@3 8:+@6 4:2@7 1: C @8 end@11");
    EXPECT_EQ(Scan(expression, TL_ENGLISH, 9), "3:C@9 end@11");
    EXPECT_EQ(Scan(expression, TL_ENGLISH, 50), "end@50");
    // A scan that goes back meets the reference again.
    CString token;
    int code = -1;
    int pos = -1;
    for (const int start : {7, 2})
        EXPECT_EQ(expression.FindFirstToken(token, code, pos, start, TL_ENGLISH), 1);
    EXPECT_EQ(token.ToUtf8(), " AB ");
}

TEST(Scanner, NoTableLeadsOutsideTheText)
{
    HostSet set;
    const UserLanguage german(",", ";", kGermanNames);
    for (const char* whole : {
             " a  b [3,3,0,0,3,1,]",
             " a  b [0,5,0,2,4,0,]",
             " a  b [3,3,0,3,3,0,0,3,0,0,3,0,]",
             "1+2[0,60000,0,]",
             "[0,3,0,65535,65535,65535,]",
             "WENN(1;2)[9,1,0,4,0,1,2,9,2,7]",
         }) {
        SCOPED_TRACE(whole);
        CFmlaExpression expression(set);
        CFmlaExprBase& text = expression;
        CFmlaExprBase loaded = Expression(whole);
        text = loaded;
        EXPECT_EQ(Scan(loaded, TL_ENGLISH).find("astray"), std::string::npos);
        EXPECT_EQ(Scan(loaded, TL_LOCAL).find("astray"), std::string::npos);
        for (int index = -1; index <= expression.NumVars(); ++index)
            EXPECT_LE(expression.VarName(index).GetLength(), expression.GetTextStr().GetLength());
        const int isValid = expression.IsValid();
        EXPECT_EQ(isValid == 0, expression.GetMessageNum() != 0);
        EXPECT_LE(expression.GetInvalidPos(), expression.GetTextStr().GetLength());
        expression.GetEncodedString();
        EXPECT_EQ(expression.GetRTFString("", 14).Right(6).ToUtf8(), " \\par}");
        expression.TranslateText(TL_ENGLISH);
        expression.TranslateText(TL_LOCAL);
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
