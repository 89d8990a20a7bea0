#ifndef TOVOFORMULA_SRC_COMPUTATION_H
#define TOVOFORMULA_SRC_COMPUTATION_H

#include <span>

#include "MathFunctions.h"

namespace tovo::detail {

// What an operator or a function makes of its arguments. Requires: as many as its row of the
// catalogue takes.
MathResult Compute(int code, std::span<const double> args);

} // namespace tovo::detail

#endif
