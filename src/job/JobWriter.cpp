#include <cmath>
#include <string>

#include <nlohmann/json.hpp>

#include <TovoJob/JobFile.h>

#include "NumberText.h"

// One line for a variable or for a row of cells, so that a change of one thing is one line in a
// comparison of files.

namespace tovo {

namespace {

std::string Quoted(const std::string& text)
{
    return nlohmann::json(text).dump();
}

// A zero keeps its sign only with a fraction, since "-0" is read as an integer.
std::string NumberText(double number)
{
    return number == 0.0 && std::signbit(number) ? "-0.0" : job::NumberText(number);
}

std::string ElementText(const Element& element)
{
    struct Writer {
        std::string operator()(std::monostate) const { return "null"; }
        std::string operator()(double number) const { return NumberText(number); }
        std::string operator()(bool yes) const { return yes ? "true" : "false"; }
        std::string operator()(const ObjectName& object) const
        {
            return Quoted(WriteReference(object));
        }
    };
    return std::visit(Writer(), element);
}

template <typename Items, typename Write>
std::string Array(const Items& items, Write write, const std::string& separator = ", ")
{
    std::string text;
    for (const auto& item : items)
        text += (text.empty() ? "" : separator) + write(item);
    return "[" + text + "]";
}

// A member that an object need not have.
std::string Member(const char* key, const std::string& text, const char* separator = ", ")
{
    return text.empty() ? std::string() : separator + Quoted(key) + ": " + Quoted(text);
}

std::string Written(const Variable& variable)
{
    const std::string value = IsYesNoName(variable.name)
                                  ? (variable.value != 0.0 ? "true" : "false")
                                  : NumberText(variable.value);
    return "{\"name\": " + Quoted(variable.name) + ", \"value\": " + value +
           Member("unit", variable.unit) + Member("note", variable.note) + "}";
}

std::string Written(const Formula& formula)
{
    return "{\"name\": " + Quoted(formula.name) + Member("unit", formula.unit) +
           ",\n     \"expression\": " + Quoted(formula.expression) +
           Member("note", formula.note, ",\n     ") + "}";
}

std::string Written(const Table& table)
{
    const std::string line = ",\n     ";
    std::string text = "{\"name\": " + Quoted(table.name) + Member("unit", table.unit) + line +
                       "\"rowSelector\": " + ElementText(table.rowSelector);
    if (!std::holds_alternative<std::monostate>(table.columnSelector))
        text += ", \"columnSelector\": " + ElementText(table.columnSelector);
    text += line + "\"rowLimits\": " + Array(table.rowLimits, NumberText);
    if (!table.columnLimits.empty())
        text += line + "\"columnLimits\": " + Array(table.columnLimits, NumberText);
    const auto row = [](const std::vector<Element>& cells) { return Array(cells, ElementText); };
    text += line + "\"cells\": " + Array(table.cells, row, line + "          ");
    return text + Member("note", table.note, ",\n     ") + "}";
}

bool IsOfHost(const Variable& variable)
{
    return variable.source != nullptr;
}

template <typename Object>
bool IsOfHost(const Object& object)
{
    return object.linked != nullptr;
}

template <typename Objects>
std::string Section(const char* key, const Objects& objects)
{
    std::string text;
    for (const auto& object : objects) {
        if (!IsOfHost(object))
            text += (text.empty() ? "\n    " : ",\n    ") + Written(object);
    }
    return std::string(",\n  ") + Quoted(key) + ": [" + text + (text.empty() ? "]" : "\n  ]");
}

} // namespace

std::string WriteJob(const Job& job)
{
    const JobValues& values = job.Values();
    return "{\n  \"version\": 2,\n  \"duration\": " + NumberText(values.duration) +
           ",\n  \"jobsize\": " + NumberText(values.jobSize) +
           ",\n  \"quantity\": " + NumberText(values.quantity) +
           Section("variables", job.Variables()) + Section("formulas", job.Formulas()) +
           Section("tables", job.Tables()) + "\n}\n";
}

} // namespace tovo
