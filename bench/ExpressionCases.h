#ifndef TOVOFORMULA_BENCH_EXPRESSIONCASES_H
#define TOVOFORMULA_BENCH_EXPRESSIONCASES_H

#include <array>
#include <span>
#include <vector>

#include "Jobs.h"

namespace bench {

// The variables of the cases.
enum Input { LENGTH, WIDTH, HEIGHT, PRICE, COUNT, ANGLE, kInputCount };
using Inputs = std::array<double, kInputCount>;

// One piece of maths as each engine spells it.
struct ExpressionCase {
    const char* what;
    const char* ours; // encoded
    const char* muParser;
    const char* lua;
    double (*byHand)(const Inputs&);
};

std::span<const ExpressionCase> ExpressionCases();

// The inputs at the start. Afterwards the length changes between the first value and the second.
const std::vector<NamedValue>& StartingInputs();
inline constexpr double kLengths[] = {12.5, 13.25};

} // namespace bench

#endif
