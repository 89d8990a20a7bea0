#ifndef TOVO_CALC_JSONREPORT_H
#define TOVO_CALC_JSONREPORT_H

#include <string>

#include "Calculation.h"

// The facts as one JSON document. Yes/no values are true and false; a number that JSON cannot hold
// is the string "Infinity", "-Infinity" or "NaN".
std::string JsonReport(const Facts& facts);
// The same for the one formula without a name that an expression is.
std::string ExpressionJsonReport(const Facts& facts);

#endif
