#ifndef TOVO_CALC_RTFFILE_H
#define TOVO_CALC_RTFFILE_H

#include <string>

#include "Job.h"

// One document with all formulas of the job, each behind its name, in the colours of their
// references; of an expression without a name the text alone. Plain ASCII, for any reader.
std::string RtfDocument(const Job& job);

#endif
