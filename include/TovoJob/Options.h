#ifndef TOVOJOB_OPTIONS_H
#define TOVOJOB_OPTIONS_H

#include <cstddef>
#include <limits>

namespace tovo {

// What a job takes from authors that are not trusted. Each counts up to and including its number.
struct Limits {
    static constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

    std::size_t objects = kNone;    // variables, formulas and tables together
    std::size_t textLength = kNone; // of one expression as it is shown, in UTF-16 units
    std::size_t nesting = kNone;    // of parentheses in one expression
    std::size_t steps = kNone;      // tokens and table cells evaluated in one calculation
};

// How a job judges. The defaults are the safe ones.
struct JobOptions {
    // A division by zero, the root of a negative number and their like are faults; else they count
    // as 0.
    bool domainErrorsAreFaults = true;
    // A variable that nobody defined is a fault; else it counts as 0. A formula or a table that
    // nobody defined is a fault always.
    bool undefinedVariablesAreFaults = true;
    Limits limits;
};

} // namespace tovo

#endif
