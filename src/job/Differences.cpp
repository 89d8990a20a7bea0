#include "Differences.h"

#include <algorithm>
#include <map>
#include <tuple>

#include "NumberText.h"
#include "TableParts.h"

namespace tovo::job {

namespace {

struct Field {
    std::string part;
    std::string text;
};

std::string ElementText(const Element& element)
{
    struct Writer {
        std::string operator()(std::monostate) const { return ""; }
        std::string operator()(double number) const { return NumberText(number); }
        std::string operator()(bool yes) const { return yes ? "YES" : "NO"; }
        std::string operator()(const ObjectName& object) const { return WriteReference(object); }
    };
    return std::visit(Writer(), element);
}

std::string LimitsText(const std::vector<double>& limits)
{
    std::string text;
    for (const double limit : limits)
        text += (text.empty() ? "" : ", ") + NumberText(limit);
    return text;
}

std::vector<Field> FieldsOf(const Variable& variable)
{
    return {{"name", variable.name},
            {"value", variable.source ? "(from the host)" : NumberText(variable.value)},
            {"unit", variable.unit},
            {"note", variable.note}};
}

std::vector<Field> FieldsOf(const Formula& formula)
{
    return {{"name", formula.name},
            {"expression", formula.linked ? "(of the host)" : formula.expression},
            {"unit", formula.unit},
            {"note", formula.note}};
}

std::vector<Field> FieldsOf(const Table& table)
{
    std::vector<Field> fields = {{"name", table.name},
                                 {"unit", table.unit},
                                 {"note", table.note},
                                 {"row limits", LimitsText(table.rowLimits)},
                                 {"column limits", LimitsText(table.columnLimits)}};
    ForEachKeptElement(table, [&](const TablePart& part, const Element& element) {
        fields.push_back({part.Words(), ElementText(element)});
    });
    return fields;
}

std::vector<Field> FieldsOf(const JobValues& values)
{
    return {{"DURATION", NumberText(values.duration)},
            {"JOBSIZE", NumberText(values.jobSize)},
            {"QUANTITY", NumberText(values.quantity)}};
}

std::vector<Field> FieldsOfRecord(const Record& record)
{
    return std::visit(
        [](const auto& object) { return object ? FieldsOf(*object) : std::vector<Field>(); },
        record);
}

const std::string* TextOfPart(const std::vector<Field>& fields, std::size_t expected,
                              const std::string& part)
{
    // Fields come in one order, so that the place of one is nearly always the same.
    if (expected < fields.size() && fields[expected].part == part)
        return &fields[expected].text;
    const auto found = std::find_if(fields.begin(), fields.end(),
                                    [&](const Field& field) { return field.part == part; });
    return found == fields.end() ? nullptr : &found->text;
}

std::optional<std::string> Optional(const std::string* text)
{
    return text ? std::optional(*text) : std::nullopt;
}

auto KeyOf(const Fault& fault)
{
    return std::tie(fault.object, fault.message, fault.place.part, fault.offender);
}

} // namespace

std::vector<PlaceChange> DifferencesOf(const RecordChange& change)
{
    const std::vector<Field> before = FieldsOfRecord(change.before);
    const std::vector<Field> after = FieldsOfRecord(change.after);
    const ObjectName name =
        NameOfRecord(change.before)
            .value_or(NameOfRecord(change.after).value_or(ObjectName{Kind::JobValue, {}}));
    std::vector<PlaceChange> differences;
    const auto note = [&](const std::string& part, const std::string* old,
                          const std::string* present) {
        // An empty note or unit that comes or goes with its object is no news.
        const bool isNews = old && present ? *old != *present : !(old ? *old : *present).empty();
        if (!isNews)
            return;
        const ObjectName object =
            name.kind == Kind::JobValue ? ObjectName{Kind::JobValue, part} : name;
        differences.push_back({object, name.kind == Kind::JobValue ? "value" : part, Optional(old),
                               Optional(present)});
    };
    for (std::size_t at = 0; at < before.size(); ++at)
        note(before[at].part, &before[at].text, TextOfPart(after, at, before[at].part));
    for (std::size_t at = 0; at < after.size(); ++at) {
        if (!TextOfPart(before, at, after[at].part))
            note(after[at].part, nullptr, &after[at].text);
    }
    return differences;
}

std::vector<Fault> FaultsNotIn(const std::vector<Fault>& faults, const std::vector<Fault>& others)
{
    std::map<decltype(KeyOf(faults.front())), std::size_t> counts;
    for (const Fault& other : others)
        ++counts[KeyOf(other)];
    std::vector<Fault> rest;
    for (const Fault& fault : faults) {
        const auto count = counts.find(KeyOf(fault));
        if (count == counts.end() || count->second == 0)
            rest.push_back(fault);
        else
            --count->second;
    }
    return rest;
}

} // namespace tovo::job
