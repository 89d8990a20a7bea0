#ifndef TOVO_JOB_JOB_H
#define TOVO_JOB_JOB_H

#include <map>
#include <memory>
#include <vector>

#include "JobFile.h"
#include "JobObjects.h"

// A value given beside the file, for a variable or a job value.
struct Setting {
    CString name;
    double value = 0.0;
};

// Puts the settings of the command line into a job. Throws std::invalid_argument for a variable
// that the job does not have.
void ApplySettings(JobEntries& entries, const std::vector<Setting>& settings);

// The job that one expression is: a formula without a name, whose kind its text decides, and the
// variables that the settings give.
JobEntries JobOfExpression(const std::string& expression, const std::vector<Setting>& settings);

// A job as objects of the library, in the order of its file.
//
// Owns: all objects, which live as long as the job.
class Job {
public:
    Job(const JobEntries& entries, bool isStrict);

    JobSet& Set() { return m_Set; }
    const std::vector<std::unique_ptr<VariableImpl>>& Variables() const { return m_Variables; }
    const std::vector<std::unique_ptr<JobFormula>>& Formulas() const { return m_Formulas; }
    const std::vector<std::unique_ptr<JobTable>>& Tables() const { return m_Tables; }
    // The library's tables have no unit; the file's do.
    CString UnitOf(const JobTable& table) const { return m_TableUnits.at(&table); }

    // From here on everything is calculated and scanned afresh.
    void StartPass();

private:
    void AddVariable(const VariableEntry& entry);
    void AddFormula(const FormulaEntry& entry);
    void AddTable(const TableEntry& entry);

    JobSet m_Set;
    std::vector<std::unique_ptr<VariableImpl>> m_Variables;
    std::vector<std::unique_ptr<JobFormula>> m_Formulas;
    std::vector<std::unique_ptr<JobTable>> m_Tables;
    std::map<const JobTable*, CString> m_TableUnits;
};

#endif
