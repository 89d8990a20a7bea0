#include <cmath>
#include <cstdlib>
#include <sstream>
#include <vector>

#include "ExpressionFixture.h"

namespace tovo::test {

namespace {

// Functions and operators by themselves. A call is the name with the arguments, such as
// "ROUND 2.675 2"; "inf" and "nan" are numbers too. Its result is a number, or "fails" with the
// message and, if the run-time library's text of the error is given, the word "text".
class Functions : public testing::Test {
protected:
    void ExpectCalls(std::string_view table)
    {
        for (const Row& row : RowsOf(table))
            ExpectCall(row.input, row.result);
    }

    void ExpectCall(const std::string& call, const std::string& result)
    {
        std::istringstream callWords(call), resultWords(result);
        std::string name, value, text;
        unsigned int reported = 0;
        resultWords >> value >> reported >> text;
        std::vector<double> args;
        callWords >> name;
        for (std::string word; callWords >> word;)
            args.push_back(std::strtod(word.c_str(), nullptr));

        for (const unsigned int message : {reported, 0u}) {
            m_Set.m_ReportDomainErrors = message != 0;
            m_Set.m_Tracker.SetError(0, nullptr);
            CExprToken token(m_Set, CodeOf(name), CString(name), 0);
            token.SetValue(4.0);
            const int isDone =
                token.Calculate(args.data(), static_cast<int>(args.size()), 1, nullptr);
            EXPECT_EQ(isDone, message == 0) << call;
            EXPECT_EQ(token.IsCalculated(), message == 0) << call;
            EXPECT_EQ(token.GetCalculationError(), message) << call;
            EXPECT_EQ(m_Set.m_Tracker.GetError(), message) << call;
            EXPECT_EQ(m_Set.m_StrError.IsEmpty(), text.empty()) << call;
            EXPECT_TRUE(IsNearly(token.GetValue(), std::strtod(value.c_str(), nullptr)))
                << call << " gave " << token.GetValue();
        }
    }

private:
    // Equal but for the last bits, which differ between maths libraries.
    static bool IsNearly(double value, double expected)
    {
        return value == expected || (std::isnan(value) && std::isnan(expected)) ||
               std::fabs(value / expected - 1.0) <= 1e-10;
    }

    HostSet m_Set;
};

// A logical operator cuts each operand to a whole number first; 4294967296 is 0 in its lower 32
// bits. A list starts with its first value, and a remainder has the sign of the dividend.
TEST_F(Functions, ArithmeticGoesOnWithInfinitiesButNotBeyondADivisionByZero)
{
    ExpectCalls(R"(
        + 1 2 -> 3; - 1 -> -1;  - 1 3 -> -2;    * -2 3 -> -6;   + 1e308 1e308 -> inf
        - inf inf -> nan;   / 1 -4 -> -0.25;    / 1 inf -> 0;   / 0 0 -> fails 6604
        / 1 -0 -> fails 6604;   group 0.5 -> 0.5;   IF 0 5 -> 0;    IF 1 5 -> 5;    IF -0 5 6 -> 6
        IF 0.5 5 6 -> 5;    IF nan 5 6 -> 5;    NOT 1 -> 0; NOT 0 -> 1; NOT 0.99 -> 1;  NOT -1 -> 0
        NOT nan -> 0;   AND 1 1 -> 1;   AND 1 0 -> 0;   AND 0.5 1 -> 0; AND 1 4294967296 -> 1
        OR 0 0 -> 0;    OR 0 -1 -> 1;   OR inf 0 -> 1;  OR 0.5 -0.9 -> 0;   SUM 1 2 3 -> 6
        SUM -7 -> -7;   SUM 1e16 1 -1e16 -> 0;  AVG 1 2 6 -> 3; MAX 1 3 2 -> 3; MAX -7 -> -7
        MAX 1 nan 2 -> 2;   MAX nan 1 -> nan;   MIN 3 1 2 -> 1; MIN 7 -> 7; MIN 3 nan 2 -> 2
        MIN nan 1 -> nan;   MOD -7 3 -> -1; MOD 7 -3 -> 1;  MOD 5.5 2 -> 1.5;   MOD 2 5 -> 2
        MOD 12.3 0.1 -> 0;  MOD 7 inf -> nan;   MOD 7 0 -> fails 6605;  MOD 0 -0 -> fails 6605
    )");
}

TEST_F(Functions, ComparisonsTakeNearlyEqualForEqual)
{
    const std::vector<Row> comparisons = RowsOf(R"(
        = -> equal;         EQ -> equal;        <> -> less greater; NE -> less greater; < -> less
        LT -> less;         > -> greater;       GT -> greater;      <= -> less equal
        LE -> less equal;   >= -> greater equal;                    GE -> greater equal
    )");
    for (const Row& pair : RowsOf(R"(
        1 2 -> less;    2 1 -> greater; 0.30000000000000004 0.3 -> equal;       nan inf -> greater
    )")) {
        for (const Row& comparison : comparisons) {
            const bool isTrue = comparison.result.find(pair.result) != std::string::npos;
            ExpectCall(comparison.input + ' ' + pair.input, isTrue ? "1" : "0");
        }
    }
}

TEST_F(Functions, AnglesAreInDegreesAndTheTangentRefusesRightOnes)
{
    ExpectCalls(R"(
        SIN 30 -> 0.5;    SIN -90 -> -1;      COS 60 -> 0.5;    COS 180 -> -1;     SIN nan -> nan
        TAN 45 -> 1;      TAN 225 -> 1;       ACOS 0.5 -> 60;   ACOS -1 -> 180;    ACOS nan -> nan
        ASIN -1 -> -90;   ASIN 1 -> 90;       ATAN 1 -> 45;     ATAN -inf -> -90
        SIN inf -> fails 6611 text;   COS -inf -> fails 6611 text;   TAN inf -> fails 6611 text
        ACOS -1.000000000000001 -> fails 6611;       ASIN 1.000000000000001 -> fails 6611
        TAN 90 -> fails 6611;         TAN -90 -> fails 6611;         TAN 270 -> fails 6611
        TAN 90.0004 -> fails 6611;    TAN 89.9996 -> fails 6611;     TAN -360000000090 -> fails 6611
        TAN 89.999 -> 57295.77950726455;             TAN 90.0006 -> -95492.9658516465
        TAN -1e17 -> 10.212375217917408;             TAN 1e300 -> 1.1214160466583768
    )");
}

TEST_F(Functions, RootsPowersAndHyperbolicFunctionsHaveLimits)
{
    ExpectCalls(R"(
        ABS -2.5 -> 2.5;        ABS 2.5 -> 2.5; ABS -inf -> inf;        ABS nan -> nan
        SQRT -0 -> 0;   SQRT 2.25 -> 1.5;       SQRT inf -> inf;        SQRT -1e-300 -> fails 6611
        COSH 0 -> 1;    SINH nan -> nan;        COSH 709 -> 4.109203730777486e307
        TANH 1000 -> 1; TANH 0.5 -> 0.46211715726000973;        SINH -709 -> -4.109203730777486e307
        COSH 709.0000001 -> fails 6613 text;    SINH -inf -> fails 6613 text;   POWER 2 10 -> 1024
        POWER 0 0 -> 1; POWER 0 2 -> 0; POWER -2 3 -> -8;       POWER 4 -0.5 -> 0.5
        POWER inf 2 -> inf;     POWER nan 0 -> 1;       POWER 10 -400 -> 0
        POWER 0 -1 -> fails 6613 text;  POWER -0 -0.5 -> fails 6613 text
        POWER -8 0.5 -> fails 6611 text;        POWER -10 401 -> fails 6613 text
    )");
}

TEST_F(Functions, RoundingTakesPlacesAndAStepADirection)
{
    ExpectCalls(R"(
        ROUND 3.7 -> 4;         ROUND -2.5 -> -3;       ROUND 2.674 2 -> 2.67
        ROUND -2.675 2 -> -2.68;            ROUND 1.005 2 -> 1.01;  ROUND 1250 -2 -> 1300
        ROUND 3.74 1.9 -> 3.7;  ROUND 37.4 -0.9 -> 37;  ROUND 1.5 nan -> 2;     ROUND 7 -10 -> 0
        ROUND nan 2 -> nan;     ROUND -inf 2 -> -inf;   ROUND 1.25 300 -> 1.25; TRUNC -12.99 -> -12
        TRUNC 1299 -2 -> 1200;  TRUNC -12.39 1.9 -> -12.3;          TRUNC 12.3 1 -> 12.3
        TRUNC 2.9999999999999 -> 3;         TRUNC 2.999999999 -> 2; ROUND 1 400 -> fails 6613 text
        ROUND 1 -inf -> fails 6613 text;    ROUND 1 1e300 -> fails 6613 text
        TRUNC 0 -2147483648 -> fails 6613 text;         ROUNDTO 7.2 -> 7;       ROUNDTO 7.5 -> 8
        ROUNDTO 7.8 nan -> 8;   ROUNDTO 7.2 0.0005 -> 8;            ROUNDTO 7.2 0.0004 -> 7
        ROUNDTO 7 0 5 -> 5;     ROUNDTO 7.8 -0.0005 -> 7;           ROUNDTO 7.8 -0.0004 -> 8
        ROUNDTO 7.5 0 5 -> 10;  ROUNDTO 7 1 5 -> 10;    ROUNDTO 7 -1 5 -> 5
        ROUNDTO -7 1 5 -> -10;  ROUNDTO -7 -1 5 -> -5;  ROUNDTO 7 1 -5 -> 10
        ROUNDTO 7.2 1 -0 -> 8;  ROUNDTO 10 1 5 -> 10;   ROUNDTO 0.3 1 0.1 -> 0.3
        ROUNDTO 0.7 -1 0.1 -> 0.7
    )");
}

// The power itself comes out of rounding it. Two powers lie halfway between two doubles, and the
// upper one counts.
TEST_F(Functions, RoundingHasTheSamePowersOfTenOnEveryPlatform)
{
    HostSet set;
    for (int places = -308; places <= 307; ++places) {
        const double literal = std::strtod(("1e" + std::to_string(-places)).c_str(), nullptr);
        const bool isUpper = places == -23 || places == -210;
        for (const char* name : {"ROUND", "TRUNC"}) {
            double args[] = {literal, static_cast<double>(places)};
            CExprToken token(set, CodeOf(name), CString(name), 0);
            EXPECT_EQ(token.Calculate(args, 2, 1, nullptr), 1);
            EXPECT_EQ(token.GetValue(), isUpper ? std::nextafter(literal, HUGE_VAL) : literal)
                << name << " to " << places;
        }
    }
    ExpectCalls(R"(
        ROUND 1 308 -> fails 6613 text;     TRUNC 1 308 -> fails 6613 text
        ROUND 1 -309 -> fails 6613 text;    TRUNC 1 2147483647 -> fails 6613 text
    )");
}

} // namespace

} // namespace tovo::test
