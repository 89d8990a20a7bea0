#ifndef TOVOPLATFORM_MATHS_H
#define TOVOPLATFORM_MATHS_H

#include <TovoPlatform/Types.h>

// Comparing and rounding as a person expects of numbers that were written in decimals. "Equal"
// below means that TvCompareDoubles gives 0.

// Negative, 0 or positive for a less than, equal to or greater than b. An infinity equals only
// itself; finite values are equal within the greater of 1e-12 and 2^-48 times the larger magnitude;
// NaN equals NaN and stands above every number, so every pair has an answer.
TOVO_PLATFORM_API int TvCompareDoubles(double a, double b);

// The nearest integer; a value equal to an exact half goes away from zero. NaN and infinities stay.
TOVO_PLATFORM_API double TvRound(double value);
// The nearest integer if the value is equal to it, so that 12.3 / 0.1 counts as 123; otherwise the
// next one away from zero. NaN and infinities stay.
TOVO_PLATFORM_API double TvRoundUp(double value);
// The same, but otherwise the next one toward zero.
TOVO_PLATFORM_API double TvTrunc(double value);

namespace tovo {

// The value truncated toward zero; outside the range of int the nearer end of it, and for NaN its
// lower end. Never undefined.
TOVO_PLATFORM_API int NarrowToInt(double value);

} // namespace tovo

#endif
