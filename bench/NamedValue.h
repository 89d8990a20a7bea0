#ifndef TOVOFORMULA_BENCH_NAMEDVALUE_H
#define TOVOFORMULA_BENCH_NAMEDVALUE_H

#include <cmath>
#include <string>

namespace bench {

// A variable at the start, as the jobs of all engines are made from it.
struct NamedValue {
    std::string name;
    double value;
};

// What all engines take to round with; neither muParser nor Lua has it.
inline double RoundedTo(double value, double places)
{
    const double scale = std::pow(10.0, places);
    return std::round(value * scale) / scale;
}

} // namespace bench

#endif
