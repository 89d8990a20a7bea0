#ifndef TOVO_CALC_RTFREPORT_H
#define TOVO_CALC_RTFREPORT_H

#include <string>

#include <TovoJob/Job.h>

// One document with all formulas of the job, each after its name, in the colours of their
// references. Plain ASCII, for any reader.
std::string RtfReport(const tovo::Job& job);
// The same of one expression in the stored form.
std::string RtfReport(const std::string& expression);

#endif
