#ifndef TOVOFORMULA_SRC_MATHFUNCTIONS_H
#define TOVOFORMULA_SRC_MATHFUNCTIONS_H

#include <span>

#include <TovoFormula/MessageIds.h>

// The mathematics of the language, free of tokens. Angles are in degrees.
//
// Faults are found by looking at arguments and results, never by the errno that the run-time
// library leaves: optimisers merge and move its calls, so only what stands here gives the same
// answer in every build.
namespace tovo::detail {

// A value, or why there is none: a message of its own, or the number of a run-time error, which
// brings its message and its text with it.
struct MathResult {
    double value = 0.0;
    unsigned int message = MSG_NONE;
    int errorNumber = 0;
};

MathResult Divide(double dividend, double divisor);

MathResult Sine(double degrees);
MathResult Cosine(double degrees);
// A right angle, within 0.0005 degrees, has no tangent.
MathResult Tangent(double degrees);
MathResult ArcSine(double value);
MathResult ArcCosine(double value);
MathResult ArcTangent(double value);

MathResult HyperbolicSine(double value);
MathResult HyperbolicCosine(double value);
MathResult HyperbolicTangent(double value);

MathResult SquareRoot(double value);
// Zero to a negative power is out of range; a result too small for a double is 0.0.
MathResult Power(double base, double exponent);
// The remainder with the sign of the dividend.
MathResult Modulo(double dividend, double divisor);

// Requires, of these: at least one value.
MathResult Sum(std::span<const double> values);
MathResult Average(std::span<const double> values);
// Plain comparisons: a NaN behind the first place is passed over.
MathResult Largest(std::span<const double> values);
MathResult Smallest(std::span<const double> values);

// The value, then optionally the places behind the decimal point; negative places round before it.
MathResult RoundToPlaces(std::span<const double> values);
MathResult TruncateToPlaces(std::span<const double> values);
// The value, then optionally a direction (up away from zero if positive, toward zero if negative)
// and the step whose multiple is wanted.
MathResult RoundToStep(std::span<const double> values);

} // namespace tovo::detail

#endif
