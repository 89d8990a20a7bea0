#ifndef TOVO_TESTS_JOBS_H
#define TOVO_TESTS_JOBS_H

#include <charconv>
#include <string>
#include <utility>
#include <vector>

#include <TovoFormula/TovoFormula.h>
#include <TovoJob/TovoJob.h>

// Jobs to test with, and what they come to as one line.

namespace tovo::test {

inline std::string Numbered(int number)
{
    return "n" + std::to_string(number);
}

inline std::string Short(double value)
{
    char digits[32];
    return {digits, std::to_chars(digits, digits + sizeof digits, value).ptr};
}

inline std::string Short(const std::optional<double>& value)
{
    return value ? Short(*value) : "none";
}

// A table of one column.
inline Table StepTable(std::string name, Element selector, std::vector<double> limits,
                       std::vector<Element> cells)
{
    Table table;
    table.name = std::move(name);
    table.rowSelector = std::move(selector);
    table.rowLimits = std::move(limits);
    for (Element& cell : cells)
        table.cells.push_back({std::move(cell)});
    return table;
}

// Name=value unit, or Name!message of the first fault or of what it fails for.
inline std::string Dump(const Report& report)
{
    std::string text;
    for (const Outcome& outcome : report.outcomes) {
        text += (text.empty() ? "" : "; ") + outcome.object.name;
        if (outcome.value) {
            text += "=" + (outcome.isYesNo ? std::string(*outcome.value != 0 ? "yes" : "no")
                                           : Short(*outcome.value));
            text += outcome.unit.empty() ? "" : " " + outcome.unit;
            continue;
        }
        for (const Fault& fault : report.faults) {
            const bool isAffected = std::find(fault.affected.begin(), fault.affected.end(),
                                              outcome.object) != fault.affected.end();
            if (fault.object == outcome.object || isAffected) {
                text += "!" + std::to_string(fault.message);
                break;
            }
        }
    }
    return text;
}

// Without job values.
inline std::string Dump(const Changes& changes)
{
    std::string text;
    for (const ValueChange& change : changes.values) {
        if (change.object.kind != Kind::JobValue)
            text += (text.empty() ? "" : "; ") + change.object.name + ": " + Short(change.before) +
                    "->" + Short(change.after);
    }
    return text;
}

inline std::string Dump(const Element& element)
{
    if (const auto* const object = std::get_if<ObjectName>(&element))
        return WriteReference(*object);
    if (const auto* const number = std::get_if<double>(&element))
        return Short(*number);
    const auto* const yes = std::get_if<bool>(&element);
    return yes ? (*yes ? "YES" : "NO") : "";
}

// Everything that a job says.
inline std::string DumpContent(const Job& job)
{
    std::string text = Short(job.Values().duration) + " " + Short(job.Values().jobSize) + " " +
                       Short(job.Values().quantity);
    for (const Variable& variable : job.Variables())
        text += "; " + variable.name + "=" + Short(variable.value) + variable.unit + variable.note;
    for (const Formula& formula : job.Formulas())
        text += "; " + formula.name + "=" + formula.expression + formula.unit + formula.note;
    for (const Table& table : job.Tables()) {
        text += "; " + table.name + " by " + Dump(table.rowSelector) + Dump(table.columnSelector);
        for (const double limit : table.rowLimits)
            text += " " + Short(limit);
        for (const std::vector<Element>& row : table.cells)
            for (const Element& cell : row)
                text += " [" + Dump(cell) + "]";
    }
    return text;
}

} // namespace tovo::test

#endif
