#ifndef TOVOJOB_SOLVE_H
#define TOVOJOB_SOLVE_H

#include <cstddef>

#include <TovoJob/Export.h>
#include <TovoJob/ObjectName.h>
#include <TovoJob/Result.h>

namespace tovo {

class Job;

// Where an input is looked for, both ends included.
struct Range {
    double low = 0.0;
    double high = 0.0;
};

// How closely to look.
struct SolveOptions {
    // Into how many equal steps the range is cut at first. A pair of solutions within one step, or
    // a value that is only touched, may be missed.
    std::size_t steps = 256;
    // How far off the target the value may be, in parts of the target or of what the value varies
    // by over the range, whichever is more.
    double tolerance = 1e-9;
};

// The input that was found, and how well it does.
struct Solution {
    double input = 0.0;
    double value = 0.0;           // of the formula for that input
    std::size_t calculations = 0; // how many it took
};

// The smallest input in the range, as far as the steps show, for which a formula or a table has the
// value wanted. The input is a variable or a job value; everything else is as it is in the job,
// which stays untouched.
//
// Refused as NoSolution, in words with numbers, if no step takes the value past the target, if the
// value jumps over it, as a rounded one does, or if the formula has no value anywhere in the range;
// as UnknownName or BadValue if the question makes no sense.
TOVO_JOB_API Result<Solution> Solve(const Job& job, const ObjectName& formula, double target,
                                    const ObjectName& variable, Range range,
                                    const SolveOptions& options = {});

} // namespace tovo

#endif
