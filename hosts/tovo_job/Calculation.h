#ifndef TOVO_JOB_CALCULATION_H
#define TOVO_JOB_CALCULATION_H

#include <optional>
#include <vector>

#include <TovoPlatform/WideString.h>

#include "Job.h"

// What there is to tell about a calculated job, for every form of report. Rows and columns of
// tables count from 1, as they do in the library's chains.

struct Dependency {
    CString name;
    bool inCondition = false; // never set by a static scan, which does not look at conditions
};

// Variables and job values are told with everything that the formulas and tables below read; the
// formulas and tables are those that the object itself refers to.
struct Dependencies {
    std::vector<Dependency> variables;
    std::vector<Dependency> jobValues; // under their English names
    std::vector<Dependency> formulas;
    std::vector<Dependency> tables;
};

struct Fault {
    unsigned int message = 0;
    CString text;
    std::vector<CString> chain; // innermost first
};

// A named value, or the value of an expression, whose name is empty.
struct Value {
    CString name;
    CString unit;
    bool isYesNo = false;
    double number = 0.0;
};

struct FormulaFacts {
    Value value;
    CString text; // in the user's language
    Dependencies uses;
    std::optional<Fault> fault; // with it there is no value and no dependency
    int faultPos = -1;          // where in the text, in 16-bit characters
};

struct TableFacts {
    Value value;
    int row = 0;
    int column = 0;
    CString cell; // the chosen one, as a combined string
    Value cellContent;
    Dependencies uses;
    std::optional<Fault> fault; // with it there is no value, no cell and no dependency
};

struct Facts {
    bool isStaticScan = false;
    std::vector<Value> jobValues; // under their English names
    std::vector<Value> variables;
    std::vector<FormulaFacts> formulas;
    std::vector<TableFacts> tables;
    // What the job refers to and does not define. Such a variable counts as 0, which is seldom what
    // a misspelt name was meant to.
    std::vector<CString> madeUpVariables;
};

// Calculates everything in the job, each object in a pass of its own.
Facts CalculateJob(Job& job, bool isStaticScan);

// One formula of the job, in a pass of its own.
FormulaFacts CalculateFormula(Job& job, JobFormula& formula, bool isStaticScan);

bool HasFault(const Facts& facts);

// How the user's language spells the job value of that English name.
CString LocalJobValueName(const CString& name);

#endif
