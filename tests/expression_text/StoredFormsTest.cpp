#include <chrono>
#include <iterator>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include <TovoFormula/CalcSetImpl.h>
#include <TovoFormula/FmlaExpression.h>
#include <support/Dump.h>

#include "Texts.h"

namespace tovo::test {

namespace {

std::string Stored(CFmlaExprBase expression)
{
    return expression.GetEncodedString().ToUtf8();
}

TEST(StoredForms, WhatIsWrittenReadsBack)
{
    const char* const rows[][3] = {
        // expression, encoded string, expression read
        {"2 *  Width + 3[4,7,0,]", "2 * V(Width)+ 3", "2 *  Width + 3[4,7,0,]"},
        {"IF( Length >=10,JOBSIZE,0)[3,8,0,]", "IF(V(Length)>=10,JOBSIZE,0)",
         "IF( Length >=10,JOBSIZE,0)[3,8,0,]"},
        {" Base Cost  Markup [0,11,1,11,8,2,]", "F(Base Cost)T(Markup)",
         " Base Cost  Markup [0,11,1,11,8,2,]"},
        {" Rate (a) [0,10,0,]", "V(Rate (a\\))", " Rate (a) [0,10,0,]"},
        {" a\\ [0,4,0,]", "V(a\\\\)", " a\\ [0,4,0,]"},
        {" V(1)+IF? [0,10,2,]", "T(V(1\\)+IF?)", " V(1)+IF? [0,10,2,]"},
        {"  a  [0,5,0,]", "V( a )", "  a  [0,5,0,]"},
        {"  [0,2,1,]", "F()", "  [0,2,1,]"},
        {"2 a +[1,3,0,]", "2V(a)+", "2 a +[1,3,0,]"},
        // A letter of any alphabet before the reference costs a blank, and moves what is behind it.
        {"NOT a AND b [3,3,0,9,3,1,]", "NOT V(a)AND F(b)", "NOT  a AND  b [4,3,0,11,3,1,]"},
        {"x a [1,3,0,]", "x V(a)", "x  a [2,3,0,]"},
        {"\xD0\x96 a [1,3,0,]", "\xD0\x96 V(a)", "\xD0\x96  a [2,3,0,]"},
        // A stretch without blanks gets them, an unknown kind becomes a variable.
        {"1+ab[2,2,0,]", "1+V(ab)", "1+ ab [2,4,0,]"},
        {" a [0,3,9,]", "V(a)", " a [0,3,0,]"},
        // Literal text is not escaped, so one that looks like a reference becomes one.
        {"1+V(3)[]", "1+V(3)", "1+ 3 [2,3,0,]"},
    };
    for (const auto& [expression, encoded, read] : rows) {
        EXPECT_EQ(Stored(Expression(expression)), encoded);
        EXPECT_EQ(Whole(Read(encoded)), read);
    }
    EXPECT_EQ(CFmlaExprBase::EncodeVariable("a)", 3).ToUtf8(), "(a\\))");
}

TEST(StoredForms, WhatIsNoReferenceStaysLiteral)
{
    const char* const rows[][2] = {
        {"SQRT(4)+T(Tbl)", "SQRT(4)+ Tbl [8,5,2,]"},
        {"V(a)V(b)", " a  b [0,3,0,3,3,0,]"},
        {"ANDV(x)", "ANDV(x)[]"},
        {"xV(x)", "x x [1,3,0,]"},
        {"\xC3\x84V(x)", "\xC3\x84 x [1,3,0,]"},
        {"IF(A)NOT(A)", "IF(A)NOT(A)[]"},
        {"(x)v(x)W(x)V (x)", "(x)v(x)W(x)V (x)[]"},
        {"V(V(a))", " V(a )[0,5,0,]"},
        {"V(\\a)", " a [0,3,0,]"},
        {"V(a\\)b)+1", " a)b +1[0,5,0,]"},
        {"V(x", "V(x[]"},
        // An unterminated form has lost the backslashes that were taken for escapes, and what has
        // lost its backslash is looked at again.
        {"V(a\\", "V(a[]"},
        {"V(a\\\\", "V(a\\[]"},
        {"V(a\\)+F(b", "V(a)+F(b[]"},
        {"V(F(b\\)", "V( b [2,3,1,]"},
        {"V(a\\)V(b\\)", "V(a) b [4,3,0,]"},
    };
    for (const auto& [encoded, read] : rows)
        EXPECT_EQ(Whole(Read(encoded)), read) << encoded;
}

TEST(StoredForms, PointerStringIsReadPieceByPiece)
{
    const char* const rows[][2] = {
        {"[]", ""},
        {"[4,7,0]", "4,7,0,"},
        {"[,,4,,7 , 2,,]", "4,7,2,"},
        {"[4 9,7,1]", "4,7,1,"}, // the first piece ends at a comma only
        {"[ +4,7x9 -0]", "4,7,0,"},
        {"[x,7,y]", "0,7,0,"},
        {"[65540,-1,65537]", "4,65535,1,"},
        {"[4,7,1,20,9]", "4,7,1,"},
    };
    for (const auto& [given, written] : rows)
        EXPECT_EQ(Expression(given).GetPtrStr().ToUtf8(), written) << given;
}

std::string Translated(const char* whole, TEXT_LANGUAGE target)
{
    CFmlaExprBase expression = Expression(whole);
    expression.TranslateText(target);
    return Whole(expression);
}

TEST(StoredForms, TranslationGoesBothWays)
{
    const struct {
        const char* list;
        const char* local;
        const char* english;
    } rows[] = {
        {";", "WENN( Rate >1,5;2;0)[5,6,0,]", "IF( Rate >1.5,2,0)[3,6,0,]"},
        {";", " a ODER b [0,3,0,7,3,1,]", " a OR b [0,3,0,5,3,1,]"},
        {";", "NICHT IF + WENN ;1,5 [5,4,0,10,6,2,]", "NOT IF + WENN ,1.5 [3,4,0,8,6,2,]"},
        {";", "XYZ\tODER?JA,[]", "XYZ\tOR?YES.[]"},
        {"||", "SUM(1|| a || b )[7,3,0,12,3,1,]", "SUM(1, a , b )[6,3,0,10,3,1,]"},
    };
    for (const auto& [list, local, english] : rows) {
        const UserLanguage german(",", list, kGermanNames);
        EXPECT_EQ(Translated(local, TL_ENGLISH), english);
        EXPECT_EQ(Translated(english, TL_LOCAL), local);
    }
    const UserLanguage german(",", ";", kGermanNames);
    // A word of the other language is illegal and stays, as does a "." outside a number.
    EXPECT_EQ(Translated("OR ODER 1.5[]", TL_ENGLISH), "OR OR 1.5[]");
    EXPECT_EQ(Translated("OR ODER 1.5,2[]", TL_LOCAL), "ODER ODER 1,5;2[]");
    // Nothing tells a text's language: one that is local already is read as English.
    EXPECT_EQ(Translated("1,5[]", TL_LOCAL), "1;5[]");
}

TEST(StoredForms, FaultInANumberStopsTheTranslation)
{
    const UserLanguage german(",", ";", kGermanNames);
    CalcSetImpl set;
    CFmlaExpression expression(set);
    expression.SetExpr("1;1,2,3;2 a ", "9,3,0,");
    EXPECT_EQ(expression.GetEncodedString().ToUtf8(), "1,1,2,3;2V(a)");
    // The copy that was translated has reported to the set they share; the object is unchanged.
    EXPECT_EQ(Dump(set.ErrorTracker()), "6620 [Expression: 1,1,2,3;2 a ]");
    EXPECT_EQ(expression.GetMessageNum(), 0);
    EXPECT_EQ(Whole(expression), "1;1,2,3;2 a [9,3,0,]");

    expression.SetFromEncodedString("1,1234567890123456,V(a)");
    EXPECT_EQ(Whole(expression), "1;1234567890123456, a [19,3,0,]");
    EXPECT_EQ(expression.GetMessageNum(), 6616);
}

TEST(StoredForms, ReadingLeavesNoMarkThatAHostSetAtAFault)
{
    struct : CFmlaExprBase {
        using CFmlaExprBase::operator=;
        void TrackError(unsigned int message) override
        {
            CFmlaExprBase::TrackError(message);
            m_InvalidPos = m_ScanPos;
        }
    } expression;
    expression.SetFromEncodedString("1+1.2.3");
    EXPECT_EQ(expression.GetMessageNum(), 6620);
    EXPECT_EQ(expression.GetInvalidPos(), -1);
}

// A text as users leave them, correct or not, with up to a dozen references. Lower-case letters are
// left out of the literals: behind one, a literal text that reads like a reference gets a blank
// only when it has become one.
std::string RandomExpression(std::mt19937& random)
{
    static constexpr const char* kLiterals[] = {"1,5 ", ";",    "+",     "(", ")",  "V", "F(", "#",
                                                " ",    "WENN", "ODER ", "2", ">=", "?", "<>"};
    static constexpr const char* kNames[] = {"a", "", "a)b", "b\\", " WENN ", "V(", "1,5", "Ok?"};
    const auto pick = [&random](std::size_t count) { return random() % count; };
    std::string text;
    std::string pointers;
    for (auto pieces = pick(14); pieces > 0; --pieces) {
        if (pick(2) == 0) {
            text += kLiterals[pick(std::size(kLiterals))];
            continue;
        }
        const std::string name = kNames[pick(std::size(kNames))];
        pointers += std::to_string(text.size()) + "," + std::to_string(name.size() + 2) + "," +
                    std::to_string(pick(3)) + ",";
        text += " " + name + " ";
    }
    return text + "[" + pointers + "]";
}

TEST(StoredForms, WhatWasStoredOnceStaysTheSame)
{
    const UserLanguage german(",", ";", kGermanNames);
    std::mt19937 random(20240229);
    for (int run = 0; run < 5000; ++run) {
        const std::string typed = RandomExpression(random);
        const std::string stored = Stored(Expression(typed));
        ASSERT_EQ(Stored(Read(stored)), stored) << typed;
        ASSERT_EQ(Stored(Expression(Whole(Read(stored)))), stored) << typed;
    }
}

TEST(StoredForms, TenThousandReferencesTakeLinearTime)
{
    const UserLanguage german(",", ";", kGermanNames);
    const auto secondsFor = [](int count) {
        const std::string encoded = Repeated("V(a)+", count) + "1.5";
        CFmlaExprBase expression = Read(encoded);
        EXPECT_EQ(expression.NumVars(), count);
        EXPECT_EQ(expression.GetTextStr().ToUtf8(), Repeated(" a +", count) + "1,5");
        EXPECT_TRUE(Stored(expression) == encoded);
        return BestSecondsOf(20, [&] {
            expression.SetExpr(expression.GetTextStr(), expression.GetPtrStr());
            expression.SetFromEncodedString(expression.GetEncodedString());
        });
    };
    const double few = secondsFor(2500);
    EXPECT_LT(secondsFor(10000) / few, 10.0);
}

TEST(StoredForms, HostileMegabytesEndQuickly)
{
    const struct {
        std::string head;
        std::string tail;
        const char* headStored; // null where escapes that nobody needed are gone from a part
    } rows[] = {
        {"V(", "", "V("},       {"V(", ")", "V("},      {"V(\\", "", "V("},
        {"V(\\", ")", nullptr}, {"V(a\\)", "", "V(a)"}, {"V(a)", "", "V(a)"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.head + " and " + row.tail);
        const int count = 1'000'000 / static_cast<int>(row.head.size() + row.tail.size());
        const std::string tail = Repeated(row.tail, count);
        const auto start = std::chrono::steady_clock::now();
        const std::string stored = Stored(Read(Repeated(row.head, count) + tail));
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
        if (row.headStored) {
            EXPECT_TRUE(stored == Repeated(row.headStored, count) + tail) << stored.substr(0, 40);
        }
    }
}

TEST(StoredForms, ReferenceThatSixteenBitsCannotHoldStaysLiteral)
{
    const struct {
        std::string encoded;
        const char* pointers;
    } rows[] = {
        {"V(" + Repeated("n", 65533) + ")", "0,65535,0,"},
        {"V(" + Repeated("n", 65534) + ")", ""},
        {Repeated(" ", 65535) + "V(n)", "65535,3,0,"},
        {Repeated(" ", 65536) + "V(n)+1.5", ""},
        {Repeated(" ", 65530) + "V(a)+V(b)V(c)", "65530,3,0,65534,3,0,"},
        {"V(" + Repeated("n", 70000) + ")+V(a\\)b)", ""},
        {"V(" + Repeated("n", 65000) + "F(" + Repeated("n", 1000) + ")", ""},
        // A name in literal text is translated there and back, as all literal text is.
        {Repeated(" ", 70000) + "V(1,5)+F(IF)", ""},
    };
    const UserLanguage german(",", ";", kGermanNames);
    for (const auto& row : rows) {
        SCOPED_TRACE("..." + row.encoded.substr(row.encoded.size() - 12));
        const CFmlaExprBase expression = Read(row.encoded);
        EXPECT_EQ(expression.GetPtrStr().ToUtf8(), row.pointers);
        EXPECT_TRUE(Stored(expression) == row.encoded);
    }
}

TEST(StoredForms, TableAnswersForEveryIndex)
{
    const CFmlaExprBase expression =
        Expression("  a    b c[0,5,1,5,2,2,7,1,8,8,1,0,9,9,0,50,2,0,]");
    std::string entries;
    for (int index = -1; index <= expression.NumVars(); ++index)
        entries += expression.VarName(index).ToUtf8() + ':' +
                   std::to_string(expression.VarEndPos(index)) + ':' +
                   std::to_string(expression.VarType(index)) + ' ';
    EXPECT_EQ(entries, ":0:0  a :5:1 :7:2 b:8:0 :9:0 c:18:0 :52:0 :0:0 ");
}

} // namespace

} // namespace tovo::test
