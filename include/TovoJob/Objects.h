#ifndef TOVOJOB_OBJECTS_H
#define TOVOJOB_OBJECTS_H

#include <functional>
#include <string>
#include <variant>
#include <vector>

#include <TovoJob/ObjectName.h>

struct IFormulaObj;
struct IFormulaTableObj;

// What a job is made of, as plain values: a caller fills one and hands it to the job, or reads the
// job's own. All texts are UTF-8. Notes are for people; the job keeps them and never reads them.

namespace tovo {

// A named input. With a yes/no name the value is 1.0 or 0.0.
struct Variable {
    std::string name;
    double value = 0.0;
    std::string unit;
    std::string note;
    // Where a host computes the value: asked once at each calculation. Empty for a stored value.
    std::function<double()> source;
};

// A named expression.
struct Formula {
    std::string name;
    // In the stored form: English words, "." and ",", references as V(Width), F(Edge), T(Rate).
    std::string expression;
    std::string unit;
    std::string note;
    // A host's own object in place of the expression; not owned, and must outlive the job. The job
    // calculates it each time, since it cannot see what the object reads.
    IFormulaObj* linked = nullptr;
};

// A cell or a selector of a table: empty, a number, a yes/no value, or a reference.
using Element = std::variant<std::monostate, double, bool, ObjectName>;

// A named table: the selectors' values pick a row and a column, whose cell gives the value. A limit
// is the highest value of its row or column; the last ones take everything above.
struct Table {
    std::string name;
    std::string unit;
    std::string note;
    Element rowSelector;
    Element columnSelector;                  // without effect if there is one column
    std::vector<double> rowLimits;           // one for each row, rising
    std::vector<double> columnLimits;        // one for each column, or none if there is one column
    std::vector<std::vector<Element>> cells; // row by row: 2 rows at least, all of one length
    IFormulaTableObj* linked = nullptr;      // as Formula::linked
};

// The three values that formulas read as DURATION, JOBSIZE and QUANTITY.
struct JobValues {
    double duration = 0.0;
    double jobSize = 0.0;
    double quantity = 0.0;

    friend bool operator==(const JobValues&, const JobValues&) = default;
};

} // namespace tovo

#endif
