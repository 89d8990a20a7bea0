#include <TovoPlatform/Maths.h>

#include <cmath>
#include <initializer_list>
#include <limits>
#include <utility>

#include <gtest/gtest.h>

namespace {

using Limits = std::numeric_limits<double>;
constexpr double kInfinity = Limits::infinity();
constexpr double kNaN = Limits::quiet_NaN();

TEST(CompareDoubles, GivesEveryPairAnAnswer)
{
    const struct {
        double a, b;
        int order;
    } rows[] = {{0.1 + 0.2, 0.3, 0},
                {0.0, -0.0, 0},
                {0.0, 1e-12, 0},
                {0.0, 1.1e-12, -1},
                {1.0, 1.0 + 0x1p-48, 0},
                {1000.0, 1000.0 * (1.0 + 0x1p-47), -1},
                {Limits::max(), Limits::lowest(), 1},
                {Limits::max(), Limits::max() * (1.0 - 0x1p-50), 0},
                {kInfinity, kInfinity, 0},
                {-kInfinity, kInfinity, -1},
                {Limits::max(), kInfinity, -1},
                {kNaN, kNaN, 0},
                {kInfinity, kNaN, -1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.a << " and " << row.b);
        EXPECT_EQ(TvCompareDoubles(row.a, row.b), row.order);
        EXPECT_EQ(TvCompareDoubles(row.b, row.a), -row.order);
    }
}

struct RoundingRow {
    double value, truncated, rounded, roundedUp;
};

void ExpectRounding(std::initializer_list<RoundingRow> rows)
{
    for (const RoundingRow& row : rows) {
        for (const double sign : {1.0, -1.0}) {
            SCOPED_TRACE(testing::Message() << "value " << sign * row.value);
            EXPECT_EQ(TvTrunc(sign * row.value), sign * row.truncated);
            EXPECT_EQ(TvRound(sign * row.value), sign * row.rounded);
            EXPECT_EQ(TvRoundUp(sign * row.value), sign * row.roundedUp);
        }
    }
}

TEST(Rounding, TakesTheNearestIntegerAtOnceIfTheValueIsEqualToIt)
{
    ExpectRounding({{12.3 / 0.1, 123, 123, 123},
                    {1.1 * 1.1 * 100, 121, 121, 121},
                    {5e-13, 0, 0, 0},
                    {7.0 - 1e-9, 6, 7, 7},
                    {0x1p52 + 1, 0x1p52 + 1, 0x1p52 + 1, 0x1p52 + 1},
                    {Limits::max(), Limits::max(), Limits::max(), Limits::max()},
                    {kInfinity, kInfinity, kInfinity, kInfinity}});
    for (const auto round : {TvTrunc, TvRound, TvRoundUp})
        EXPECT_TRUE(std::isnan(round(kNaN)));
}

TEST(Rounding, ExactHalvesGoAwayFromZero)
{
    ExpectRounding({{2.675 / 0.01, 267, 268, 268},
                    {1.005 * 100, 100, 101, 101},
                    {0.5, 0, 1, 1},
                    {std::nextafter(0.5, 0.0), 0, 1, 1},
                    {2.5, 2, 3, 3},
                    {2.5 - 1e-9, 2, 2, 3}});
}

TEST(NarrowToInt, SaturatesAndIsNeverUndefined)
{
    constexpr int kLowest = std::numeric_limits<int>::lowest();
    constexpr int kHighest = std::numeric_limits<int>::max();
    const std::pair<double, int> rows[] = {{2.999, 2},
                                           {-2.999, -2},
                                           {2147483646.9, kHighest - 1},
                                           {2147483648.0, kHighest},
                                           {-2147483648.9, kLowest},
                                           {Limits::lowest(), kLowest},
                                           {kInfinity, kHighest},
                                           {kNaN, kLowest}};
    for (const auto& [value, narrow] : rows)
        EXPECT_EQ(tovo::NarrowToInt(value), narrow) << value;
}

} // namespace
