#ifndef TOVOJOB_SRC_DIFFERENCES_H
#define TOVOJOB_SRC_DIFFERENCES_H

#include <vector>

#include <TovoJob/Edit.h>

#include "Content.h"

namespace tovo::job {

// What a change writes where, for people: texts as they stand in a file.
std::vector<PlaceChange> DifferencesOf(const RecordChange& change);

// Those of the faults that are not among the others. A fault is the same one if it says the same of
// the same object, wherever in the text it stands.
std::vector<Fault> FaultsNotIn(const std::vector<Fault>& faults, const std::vector<Fault>& others);

} // namespace tovo::job

#endif
