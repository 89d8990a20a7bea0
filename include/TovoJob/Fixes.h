#ifndef TOVOJOB_FIXES_H
#define TOVOJOB_FIXES_H

#include <string>
#include <vector>

#include <TovoJob/Edit.h>
#include <TovoJob/Export.h>
#include <TovoJob/Fault.h>
#include <TovoJob/Job.h>
#include <TovoJob/Span.h>

namespace tovo {

// Text in place of a stretch of another text.
struct TextEdit {
    Span span; // in the text before all edits
    std::string replacement;
};

// A correction that can be applied as it is.
struct Fix {
    std::string description; // in English
    // What changes in the text that TextOf returns, in the order of the text, and the text after
    // that. Both are empty for a table.
    std::vector<TextEdit> edits;
    std::string text;
    Edit change;          // for Job::Apply
    bool isSound = false; // the object has no other fault of its own, either
};

// Corrections of a fault that the job has now: names and words that are spelled like known ones,
// separators of another country, signs of other languages, missing and superfluous parentheses and
// operators. Each has been applied to a copy of the job and cleared the fault there; it leaves the
// text in front of it without a fault, and makes no cycle. Those that leave no fault in the object
// come first. Empty if nothing is known that helps.
//
// Costs as much as calculating, some dozen times, the object and what it depends on. Variables that
// a host computes are not asked again.
TOVO_JOB_API std::vector<Fix> FixesFor(const Fault& fault, const Job& job);

} // namespace tovo

#endif
