#include "MathFunctions.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cerrno>
#include <cmath>
#include <limits>
#include <numeric>

#include <TovoPlatform/Maths.h>

namespace tovo::detail {
namespace {

constexpr double kRadiansPerDegree = 0.017453292519943295;
constexpr double kDegreesPerRadian = 57.29577951308232;
// Beyond it the hyperbolic functions leave the range of a double.
constexpr double kHyperbolicLimit = 709.0;
// In degrees.
constexpr double kNearRightAngle = 0.0005;
constexpr double kDirectionThreshold = 0.0005;

using Function = double (*)(double);

// Powers of ten outside are subnormal, zero or infinite.
constexpr int kLowestPowerOfTen = std::numeric_limits<double>::min_exponent10;
constexpr int kHighestPowerOfTen = std::numeric_limits<double>::max_exponent10;

// Written out, since run-time libraries, and even one of them on different processors, compute some
// powers with a difference in the last bit. The macros append digits to the start of a literal.
//
// clang-format off
#define TOVO_TEN(start)                                                                            \
    start##0, start##1, start##2, start##3, start##4, start##5, start##6, start##7, start##8, start##9
#define TOVO_HUNDRED(start)                                                                        \
    TOVO_TEN(start##0), TOVO_TEN(start##1), TOVO_TEN(start##2), TOVO_TEN(start##3),                \
    TOVO_TEN(start##4), TOVO_TEN(start##5), TOVO_TEN(start##6), TOVO_TEN(start##7),                \
    TOVO_TEN(start##8), TOVO_TEN(start##9)

constexpr double kNegativePowersOfTen[1 - kLowestPowerOfTen] = { // by the exponent without its sign
    TOVO_HUNDRED(1e-0), TOVO_HUNDRED(1e-1), TOVO_HUNDRED(1e-2),
    1e-300, 1e-301, 1e-302, 1e-303, 1e-304, 1e-305, 1e-306, 1e-307,
};
constexpr auto kPowersOfTen = [] { // by the exponent
    std::array<double, 1 + kHighestPowerOfTen> powers = {
        TOVO_HUNDRED(1e0), TOVO_HUNDRED(1e1), TOVO_HUNDRED(1e2),
        1e300, 1e301, 1e302, 1e303, 1e304, 1e305, 1e306, 1e307, 1e308,
    };
    // Both lie halfway between two doubles, the second nearly so. Results have always come from the
    // upper one.
    powers[23] = 0x1.52d02c7e14af7p+76;
    powers[210] = 0x1.8557f31326bbcp+697;
    return powers;
}();

#undef TOVO_HUNDRED
#undef TOVO_TEN
// clang-format on

// No literal is missing.
static_assert(kNegativePowersOfTen[-kLowestPowerOfTen] > 0.0 && kPowersOfTen.back() > 0.0);

// Requires: an exponent in the range above.
double PowerOfTen(int exponent)
{
    assert(exponent >= kLowestPowerOfTen && exponent <= kHighestPowerOfTen);
    return exponent < 0 ? kNegativePowersOfTen[-exponent]
                        : kPowersOfTen[static_cast<std::size_t>(exponent)];
}

MathResult Fails(unsigned int message)
{
    return {0.0, message, 0};
}

MathResult FailsWith(int errorNumber)
{
    return {0.0, MSG_NONE, errorNumber};
}

MathResult Trigonometric(Function function, double degrees)
{
    const double radians = degrees * kRadiansPerDegree;
    if (std::isinf(radians))
        return FailsWith(EDOM);
    return {function(radians)};
}

MathResult InverseInUnitRange(Function function, double value)
{
    if (value < -1.0 || value > 1.0)
        return Fails(MSG_INVALID_PARAMETER);
    return {function(value) * kDegreesPerRadian};
}

MathResult Hyperbolic(Function function, double value)
{
    if (value > kHyperbolicLimit || value < -kHyperbolicLimit)
        return FailsWith(ERANGE);
    return {function(value)};
}

template <typename Better>
MathResult Best(std::span<const double> values, Better isBetter)
{
    double best = values.front();
    for (const double value : values.subspan(1))
        if (isBetter(value, best))
            best = value;
    return {best};
}

// The places argument, truncated; places that are no number count as none.
int PlacesOf(std::span<const double> values)
{
    if (values.size() < 2 || std::isnan(values[1]))
        return 0;
    return NarrowToInt(values[1]);
}

MathResult OnScaledValue(Function rounding, std::span<const double> values)
{
    const int places = PlacesOf(values);
    if (places > -kLowestPowerOfTen || places < -kHighestPowerOfTen)
        return FailsWith(ERANGE);
    const double scale = PowerOfTen(-places);
    return {rounding(values.front() / scale) * scale};
}

Function RoundingInDirection(double direction)
{
    if (direction >= kDirectionThreshold)
        return TvRoundUp;
    return direction <= -kDirectionThreshold ? TvTrunc : TvRound;
}

} // namespace

MathResult Divide(double dividend, double divisor)
{
    if (divisor == 0.0)
        return Fails(MSG_DIVIDE_BY_ZERO);
    return {dividend / divisor};
}

MathResult Sine(double degrees)
{
    return Trigonometric(std::sin, degrees);
}

MathResult Cosine(double degrees)
{
    return Trigonometric(std::cos, degrees);
}

MathResult Tangent(double degrees)
{
    // The remainder is exact and lies between -180 and 180, however large the angle.
    const double reduced = std::remainder(degrees, 360.0);
    if (std::fabs(90.0 - std::fabs(reduced)) < kNearRightAngle)
        return Fails(MSG_INVALID_PARAMETER);
    return Trigonometric(std::tan, degrees);
}

MathResult ArcSine(double value)
{
    return InverseInUnitRange(std::asin, value);
}

MathResult ArcCosine(double value)
{
    return InverseInUnitRange(std::acos, value);
}

MathResult ArcTangent(double value)
{
    return {std::atan(value) * kDegreesPerRadian};
}

MathResult HyperbolicSine(double value)
{
    return Hyperbolic(std::sinh, value);
}

MathResult HyperbolicCosine(double value)
{
    return Hyperbolic(std::cosh, value);
}

MathResult HyperbolicTangent(double value)
{
    return {std::tanh(value)};
}

MathResult SquareRoot(double value)
{
    if (value < 0.0)
        return Fails(MSG_INVALID_PARAMETER);
    return {std::sqrt(value)};
}

MathResult Power(double base, double exponent)
{
    if (base == 0.0 && exponent < 0.0)
        return FailsWith(ERANGE);
    const double power = std::pow(base, exponent);
    const bool isFinite = std::isfinite(base) && std::isfinite(exponent);
    if (isFinite && std::isnan(power))
        return FailsWith(EDOM);
    if (isFinite && std::isinf(power))
        return FailsWith(ERANGE);
    return {power};
}

MathResult Modulo(double dividend, double divisor)
{
    if (divisor == 0.0)
        return Fails(MSG_MOD_BY_ZERO);
    return {dividend - divisor * TvTrunc(dividend / divisor)};
}

MathResult Sum(std::span<const double> values)
{
    return {std::accumulate(values.begin() + 1, values.end(), values.front())};
}

MathResult Average(std::span<const double> values)
{
    return {Sum(values).value / static_cast<double>(values.size())};
}

MathResult Largest(std::span<const double> values)
{
    return Best(values, [](double value, double best) { return value > best; });
}

MathResult Smallest(std::span<const double> values)
{
    return Best(values, [](double value, double best) { return value < best; });
}

MathResult RoundToPlaces(std::span<const double> values)
{
    return OnScaledValue(TvRound, values);
}

MathResult TruncateToPlaces(std::span<const double> values)
{
    return OnScaledValue(TvTrunc, values);
}

MathResult RoundToStep(std::span<const double> values)
{
    const double step = values.size() > 2 && values[2] != 0.0 ? values[2] : 1.0;
    const Function rounding = values.size() > 1 ? RoundingInDirection(values[1]) : TvRound;
    return {step * rounding(values.front() / step)};
}

} // namespace tovo::detail
