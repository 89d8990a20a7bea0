#ifndef TOVO_CALC_RTFREPORT_H
#define TOVO_CALC_RTFREPORT_H

#include <string>

#include "Job.h"

// One document with all formulas of the job, each after its name, in the colours of their
// references; of an expression without a name the text alone. Plain ASCII, for any reader.
std::string RtfReport(const Job& job);

#endif
