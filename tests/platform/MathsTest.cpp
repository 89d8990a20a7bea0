#include <TovoPlatform/Maths.h>

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace {

using Limits = std::numeric_limits<double>;
constexpr double kMax = Limits::max();
constexpr double kInfinity = Limits::infinity();
constexpr double kNaN = Limits::quiet_NaN();

// clang-format off

TEST(CompareDoubles, GivesEveryPairAnAnswer)
{
    const struct { double a, b; int order; } rows[] = {
        {0.0, -0.0, 0},  {0.0, 1e-12, 0}, {0.0, 1.1e-12, -1}, {kMax, kMax * (1.0 - 0x1p-50), 0},
        {kNaN, kNaN, 0}, {1.0, 1.0 + 0x1p-48, 0},             {1e3, 1e3 * (1.0 + 0x1p-47), -1},
        {kMax, Limits::lowest(), 1}, {kMax, kInfinity, -1},   {kInfinity, kInfinity, 0},
        {-kInfinity, kInfinity, -1}, {kInfinity, kNaN, -1}};
    for (const auto& row : rows) {
        EXPECT_EQ(TvCompareDoubles(row.a, row.b), row.order) << row.a << " and " << row.b;
        EXPECT_EQ(TvCompareDoubles(row.b, row.a), -row.order) << row.b << " and " << row.a;
    }
}

TEST(Rounding, TakesNoiseForTheIntegerOrTheHalfBesideIt)
{
    constexpr double odd = 0x1p52 + 1; // to which no half can be added
    const struct { double value, truncated, rounded, roundedUp; } rows[] = {
        {12.3 / 0.1, 123, 123, 123}, {1.1 * 1.1 * 100, 121, 121, 121}, {7.0 - 1e-9, 6, 7, 7},
        {2.675 / 0.01, 267, 268, 268}, {1.005 * 100, 100, 101, 101}, {2.5 - 1e-9, 2, 2, 3},
        {0.5, 0, 1, 1}, {std::nextafter(0.5, 0.0), 0, 1, 1}, {2.5, 2, 3, 3}, {5e-13, 0, 0, 0},
        {odd, odd, odd, odd}, {kMax, kMax, kMax, kMax},
        {kInfinity, kInfinity, kInfinity, kInfinity}};
    for (const auto& row : rows) {
        for (const double sign : {1.0, -1.0}) {
            EXPECT_EQ(TvTrunc(sign * row.value), sign * row.truncated) << sign * row.value;
            EXPECT_EQ(TvRound(sign * row.value), sign * row.rounded) << sign * row.value;
            EXPECT_EQ(TvRoundUp(sign * row.value), sign * row.roundedUp) << sign * row.value;
        }
    }
    for (const auto round : {TvTrunc, TvRound, TvRoundUp})
        EXPECT_TRUE(std::isnan(round(kNaN)));
}

TEST(NarrowToInt, SaturatesAndIsNeverUndefined)
{
    constexpr int highest = std::numeric_limits<int>::max();
    const struct { double value; int narrow; } rows[] = {
        {2.999, 2}, {2147483646.9, highest - 1}, {2147483648.0, highest}, {kInfinity, highest},
        {-2.999, -2}, {-2147483648.9, -highest - 1}, {kNaN, -highest - 1}};
    for (const auto& row : rows)
        EXPECT_EQ(tovo::NarrowToInt(row.value), row.narrow) << row.value;
}

// clang-format on

} // namespace
