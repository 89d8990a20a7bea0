#ifndef TOVOJOB_EXPLANATION_H
#define TOVOJOB_EXPLANATION_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <TovoJob/Export.h>
#include <TovoJob/Fault.h>
#include <TovoJob/Job.h>
#include <TovoJob/Objects.h>

namespace tovo {

// One part of an expression with the value that the calculation gave it.
struct Step {
    Span span;        // in the text of the formula, parentheses included
    std::string text; // what stands there
    std::size_t depth =
        0; // 0 for the whole expression; a part has one more than what it is part of
    std::optional<double> value;
    bool isYesNo = false;
    // False within the branch of an IF that the condition rules out. Its value counts for nothing,
    // but it is checked all the same.
    bool isTaken = true;
    std::optional<ObjectName> refersTo; // a reference or a job value
};

// Where a selector's value fell among the limits.
struct Selection {
    double value = 0.0;
    std::size_t index = 0;       // of the row or the column, from 0
    std::optional<double> above; // the limit that it lies above; none in the first row or column
    std::optional<double> upTo;  // the limit that it does not exceed; none in the last
};

// How a table came to its value.
struct Lookup {
    Selection row;
    std::optional<Selection> column; // absent if there is one column
    Element cell;
};

// Why one object has the value that it has.
struct ExplainedObject {
    ObjectName object;
    std::string unit;
    std::optional<double> value;  // to the bit that of the calculation
    std::string text;             // of a formula, as TextOf returns it
    std::vector<Step> steps;      // of a formula: each part in front of the parts of its own
    std::optional<Lookup> lookup; // of a table
    std::optional<Failure> failure;
};

// The object that was asked for, and after it everything that its value rests on, each once, in the
// order in which it is met: the references that were taken, not those in branches ruled out.
struct Explanation {
    std::vector<ExplainedObject> objects;
};

// Brings the job up to date and explains a value, or why there is none. Refused as UnknownName is
// what the job does not have. What a later calculation changes is not told.
TOVO_JOB_API Result<Explanation> Explain(Job& job, const ObjectName& object);

// The explanation as lines of text, each part indented below what it is part of.
TOVO_JOB_API std::string WriteText(const Explanation& explanation);
// The same data as a JSON document, with positions in UTF-8 and in UTF-16.
TOVO_JOB_API std::string WriteJson(const Explanation& explanation);

} // namespace tovo

#endif
