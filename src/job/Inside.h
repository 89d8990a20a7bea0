#ifndef TOVOJOB_SRC_INSIDE_H
#define TOVOJOB_SRC_INSIDE_H

#include <string>
#include <vector>

#include <TovoJob/Job.h>

#include "Calculation.h"
#include "Content.h"

namespace tovo::job {

// Edits that were applied together and are undone together.
using Transaction = std::vector<RecordChange>;

// What a job is made of: what it says, what follows from that, and how it came to be so.
struct Inside {
    explicit Inside(const JobOptions& jobOptions) : options(jobOptions), calculation(jobOptions) {}

    // Applies a change to the content and to what follows from it.
    void Take(const RecordChange& change);

    // Brings the calculation up to date, and returns what has changed since the last call.
    Changes Update(const Progress& progress);
    // The same without telling: the next Update tells what changed here as well.
    void UpdateQuietly();
    // What quiet updates have found that nobody was told. Whoever takes it puts it back, in front
    // of what they find from then on.
    Changes TakeUntold();
    void PutBackUntold(Changes taken);

    // The formulas and tables that refer to an object, in their order.
    std::vector<ObjectName> UsersOf(const ObjectName& object) const;

    JobOptions options;
    Content content;
    Calculation calculation;
    std::vector<Transaction> done; // the last one is undone first
    std::vector<Transaction> undone;
    Changes untold; // of quiet updates
};

} // namespace tovo::job

#endif
