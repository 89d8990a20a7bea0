#ifndef TOVOFORMULA_TESTS_DOCUMENTJOB_H
#define TOVOFORMULA_TESTS_DOCUMENTJOB_H

#include <string>
#include <vector>

#include <calculation/Job.h>

namespace tovo::test {

// The text of a message, "none" for one that the library has no text for.
std::string MessageText(unsigned int message);

struct Outcome {
    unsigned int message; // 0 for an expression that calculates
    int position;
    std::string value;
};

// A job as a document shows it, in the table | Name | Kind | Value |. An expression stands there as
// a person sees it: a name of the job with a blank on either side is a reference.
class DocumentJob : public Job {
protected:
    // Of a table, and of what is missing, only the name is taken.
    void MakeJob(const std::string& document);
    void Type(CFmlaExprBase& expression, const std::string& text) const;
    // Checks and calculates. A value has ten digits at the most, or is yes or no.
    Outcome OutcomeOf(const std::string& text);

private:
    struct Name {
        CString stretch;
        int kind;
    };

    std::vector<Name> m_Names; // the longest first
};

} // namespace tovo::test

#endif
