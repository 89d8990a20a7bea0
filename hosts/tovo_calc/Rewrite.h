#ifndef TOVO_CALC_REWRITE_H
#define TOVO_CALC_REWRITE_H

#include <string>

#include "Options.h"

// A job file with one formula renamed or removed, and what that changed, in words.
struct Rewritten {
    std::string file; // its bytes, the same but for what changed
    std::string summary;
};

// Requires: options that ask for one of the two. Throws a FileFault for a file that is no job and
// std::invalid_argument for a formula that the job does not have.
Rewritten RewriteJob(const Options& options);

#endif
