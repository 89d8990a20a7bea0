#include <TovoPlatform/Maths.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// Near zero the noise of a difference is small by itself but huge beside the result; elsewhere it
// grows with the numbers.
constexpr double kAbsoluteTolerance = 1e-12;
constexpr double kRelativeTolerance = 0x1p-48; // leaves 16 units in the last place for noise
constexpr double kHalf = 0.5;

bool AreEqual(double a, double b)
{
    return TvCompareDoubles(a, b) == 0;
}

} // namespace

int TvCompareDoubles(double a, double b)
{
    if (std::isnan(a) || std::isnan(b))
        return static_cast<int>(std::isnan(a)) - static_cast<int>(std::isnan(b));
    if (a == b)
        return 0;
    const int order = a < b ? -1 : 1;
    // Beside an infinity the tolerance would be infinite, and every number equal to it.
    if (std::isinf(a) || std::isinf(b))
        return order;
    const double magnitude = std::max(std::fabs(a), std::fabs(b));
    const double tolerance = std::max(kAbsoluteTolerance, kRelativeTolerance * magnitude);
    // The difference of two huge opposites is infinite, which no tolerance reaches.
    return std::fabs(a - b) <= tolerance ? 0 : order;
}

double TvRound(double value)
{
    const double nearest = std::round(value);
    if (AreEqual(value, nearest))
        return nearest;
    // Noise may have put an exact half to either side of it; the side does not count.
    const double whole = std::trunc(value);
    if (AreEqual(value, whole + std::copysign(kHalf, value)))
        return whole + std::copysign(1.0, value);
    return nearest;
}

double TvRoundUp(double value)
{
    const double nearest = std::round(value);
    if (AreEqual(value, nearest))
        return nearest;
    return value < 0.0 ? std::floor(value) : std::ceil(value);
}

double TvTrunc(double value)
{
    const double nearest = std::round(value);
    return AreEqual(value, nearest) ? nearest : std::trunc(value);
}

namespace tovo {

int NarrowToInt(double value)
{
    constexpr int kLowest = std::numeric_limits<int>::lowest();
    constexpr int kHighest = std::numeric_limits<int>::max();
    if (std::isnan(value) || value <= kLowest)
        return kLowest;
    return value >= kHighest ? kHighest : static_cast<int>(value);
}

} // namespace tovo
