#ifndef TOVOFORMULA_SRC_COMPUTATION_H
#define TOVOFORMULA_SRC_COMPUTATION_H

#include <cmath>
#include <span>

#include <TovoPlatform/Maths.h>

#include "MathFunctions.h"

namespace tovo::detail {

// What an operator or a function makes of its arguments. Requires: as many as its row of the
// catalogue takes.
MathResult Compute(int code, std::span<const double> args);

// TvCompareDoubles, settled without a call where the numbers lie well apart: by more than a
// generous tolerance, which no comparison with a NaN or an infinity exceeds.
inline int Order(double a, double b)
{
    constexpr double kAbsolute = 1e-9;
    constexpr double kRelative = 0x1p-40;
    const double difference = a - b;
    if (std::fabs(difference) > kAbsolute + kRelative * (std::fabs(a) + std::fabs(b)))
        return difference < 0.0 ? -1 : 1;
    return TvCompareDoubles(a, b);
}

inline double YesNo(bool yes)
{
    return yes ? 1.0 : 0.0;
}

// The logical operators see the whole part of a value, so 0.5 is a no to them.
inline bool IsYes(double value)
{
    return NarrowToInt(value) != 0;
}

// Only an exact zero is a no to an IF; without a third argument a no gives 0.0.
inline double Choose(std::span<const double> args)
{
    if (args[0] != 0.0)
        return args[1];
    return args.size() > 2 ? args[2] : 0.0;
}

} // namespace tovo::detail

#endif
