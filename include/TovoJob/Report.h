#ifndef TOVOJOB_REPORT_H
#define TOVOJOB_REPORT_H

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <TovoJob/Fault.h>
#include <TovoJob/ObjectName.h>

namespace tovo {

// The value of one object after a calculation.
struct Outcome {
    ObjectName object;
    std::string unit;
    bool isYesNo = false;
    std::optional<double> value; // absent if the object fails
};

// An object whose value is another one than at the calculation before.
struct ValueChange {
    ObjectName object;
    std::optional<double> before; // absent if it had none: it failed, or was not there
    std::optional<double> after;
};

// Called now and then in long work with what is done and what there is to do; false ends the work.
using Progress = std::function<bool(std::size_t done, std::size_t total)>;

// What one calculation did.
struct Changes {
    std::vector<ValueChange> values; // in the order of calculation
    std::size_t calculated = 0;      // how many formulas and tables were worked on, each once
    // False if the progress callback ended it. What is left is done by the next calculation.
    bool isComplete = true;
};

// A calculated job: variables, then formulas, then tables, each kind in its order.
struct Report {
    std::vector<Outcome> outcomes;
    std::vector<Fault> faults;
    Changes changes;
};

} // namespace tovo

#endif
