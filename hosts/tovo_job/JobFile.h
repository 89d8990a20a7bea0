#ifndef TOVO_JOB_JOBFILE_H
#define TOVO_JOB_JOBFILE_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <TovoPlatform/WideString.h>

// What a job file says, checked for its shape and not yet for its meaning: whether a formula can be
// calculated is for the library to say.

// The names under which a user gives the job values.
inline constexpr const char16_t* kDuration = u"DURATION";
inline constexpr const char16_t* kJobSize = u"JOBSIZE";
inline constexpr const char16_t* kQuantity = u"QUANTITY";

struct VariableEntry {
    CString name;
    double value = 0.0; // yes is 1.0, no is 0.0
    CString unit;
};

struct FormulaEntry {
    CString name;
    CString unit;
    CString expression; // the encoded string
};

// Selectors and cells are combined strings.
struct TableEntry {
    CString name;
    CString unit;
    CString rowSelector;
    CString columnSelector; // empty if there is one column
    std::vector<double> rowLimits;
    std::vector<double> columnLimits; // may be empty if there is one column
    std::vector<std::vector<CString>> cells;
};

struct JobEntries {
    double duration = 0.0;
    double jobSize = 0.0;
    double quantity = 0.0;
    std::vector<VariableEntry> variables;
    std::vector<FormulaEntry> formulas;
    std::vector<TableEntry> tables;
};

// Throws a FileFault for a file that is no job in every respect that README.md names.
JobEntries ReadJobFile(const std::string& path);
// The same for the text of such a file, whose name serves for messages.
JobEntries ParseJob(const std::string& file, const std::string& text);

// Whether the name stands for a yes/no value.
bool IsYesNoName(const CString& name);

// The finite number that the whole text is, with "." whatever the user's separators are; nothing
// for any other text.
std::optional<double> ParseNumber(std::string_view text);

#endif
