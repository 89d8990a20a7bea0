#include "Job.h"

#include <algorithm>
#include <stdexcept>

namespace {

// The job value of that name, or null.
double* JobValueOf(JobEntries& entries, const CString& name)
{
    if (name == CString(kDuration))
        return &entries.duration;
    if (name == CString(kJobSize))
        return &entries.jobSize;
    return name == CString(kQuantity) ? &entries.quantity : nullptr;
}

// The value that a setting of that name gives, or null. The words of the language come first: a
// variable of such a name is still reached as V(DURATION), but seldom what a user has in mind.
double* PlaceOf(JobEntries& entries, const CString& name)
{
    if (double* const jobValue = JobValueOf(entries, name))
        return jobValue;
    const auto found = std::find_if(entries.variables.begin(), entries.variables.end(),
                                    [&](const auto& variable) { return variable.name == name; });
    return found == entries.variables.end() ? nullptr : &found->value;
}

// A table takes no more limits than it has rows and columns, which the reader of the file has seen
// to.
void FillTable(JobTable& table, const TableEntry& entry, JobSet& set)
{
    table.SetRowSelector(CFormtblElem(entry.rowSelector, set));
    table.SetColumnSelector(CFormtblElem(entry.columnSelector, set));
    for (int column = 0; column < static_cast<int>(entry.columnLimits.size()); ++column)
        table.SetColumnLimit(column, entry.columnLimits[static_cast<std::size_t>(column)]);
    int row = 0;
    for (const std::vector<CString>& cells : entry.cells) {
        table.SetRowLimit(row, entry.rowLimits[static_cast<std::size_t>(row)]);
        int column = 0;
        for (const CString& cell : cells)
            // From here on the table owns the cell.
            table.SetCell(row, column++, std::make_unique<CFormtblElem>(cell, set).release());
        ++row;
    }
}

} // namespace

void ApplySettings(JobEntries& entries, const std::vector<Setting>& settings)
{
    for (const Setting& setting : settings) {
        double* const place = PlaceOf(entries, setting.name);
        if (!place)
            throw std::invalid_argument("--set: the job has no variable " + setting.name.ToUtf8());
        *place = setting.value;
    }
}

JobEntries JobOfExpression(const std::string& expression, const std::vector<Setting>& settings)
{
    JobEntries entries;
    for (const Setting& setting : settings) {
        // A name that is given twice makes one variable, with the value that was given last.
        if (!PlaceOf(entries, setting.name))
            entries.variables.push_back({setting.name, 0.0, CString()});
    }
    ApplySettings(entries, settings);
    entries.formulas.push_back({CString(), CString(), CString(std::string_view(expression))});
    return entries;
}

Job::Job(const JobEntries& entries, bool isStrict) : m_Set(isStrict)
{
    m_Set.SetDuration(entries.duration);
    m_Set.SetJobSize(entries.jobSize);
    m_Set.SetQuantity(entries.quantity);
    for (const VariableEntry& entry : entries.variables)
        AddVariable(entry);
    for (const FormulaEntry& entry : entries.formulas)
        AddFormula(entry);
    for (const TableEntry& entry : entries.tables)
        AddTable(entry);
}

void Job::StartPass()
{
    m_Set.StartNewPass();
    m_Set.ForgetConditions();
    for (const auto& formula : m_Formulas)
        formula->StartPass();
}

void Job::AddVariable(const VariableEntry& entry)
{
    auto& variable = *m_Variables.emplace_back(std::make_unique<VariableImpl>(&m_Set));
    CString name = entry.name;
    variable.SetName(name);
    variable.SetUnit(entry.unit, 0);
    variable.SetValue(entry.value);
    m_Set.AddVariable(&variable);
}

void Job::AddFormula(const FormulaEntry& entry)
{
    auto& formula = *m_Formulas.emplace_back(std::make_unique<JobFormula>(m_Set));
    CString name = entry.name;
    formula.SetName(name);
    formula.SetUnit(entry.unit);
    formula.SetFromEncodedString(entry.expression);
    // The set files an object under the name that it has now, so the name comes first. A formula
    // without a name, which an expression is, cannot be referred to and does no harm in the set.
    m_Set.AddFormula(&formula);
}

void Job::AddTable(const TableEntry& entry)
{
    const int rows = static_cast<int>(entry.cells.size());
    const int columns = static_cast<int>(entry.cells[0].size());
    auto& table = *m_Tables.emplace_back(std::make_unique<JobTable>(m_Set, rows, columns));
    CString name = entry.name;
    table.SetName(name);
    FillTable(table, entry, m_Set);
    m_TableUnits[&table] = entry.unit;
    m_Set.AddFormulaTable(&table);
}
