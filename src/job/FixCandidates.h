#ifndef TOVOJOB_SRC_FIXCANDIDATES_H
#define TOVOJOB_SRC_FIXCANDIDATES_H

#include <string>
#include <vector>

#include <TovoJob/Fault.h>

#include "KnownNames.h"
#include "TextChanges.h"

namespace tovo::job {

// A correction that may or may not help.
struct Candidate {
    std::string description;
    std::vector<TextChange> changes; // in the order of the text
};

// What to try where an expression is at fault, the likely ones first.
std::vector<Candidate> CandidatesFor(const Fault& fault, const CFmlaExprBase& expression,
                                     const KnownNames& names);

// The object that a fault is about, if nobody has defined it.
std::optional<ObjectName> MissingObject(const Fault& fault);

// What it may have been instead, the most alike first.
std::vector<ObjectName> InsteadOf(const ObjectName& missing, const KnownNames& names);

} // namespace tovo::job

#endif
