#include "ObjectForms.h"

#include <utility>

#include "ElementText.h"

namespace {

// The one of that name. Requires: the word of a job value.
double& JobValueOf(tovo::JobValues& values, const std::string& name)
{
    double& other = name == "JOBSIZE" ? values.jobSize : values.quantity;
    return name == "DURATION" ? values.duration : other;
}

template <typename Object>
std::vector<ObjectField> UnitAndNote(const Object& object)
{
    return {{"Unit", object.unit}, {"Note", object.note}};
}

template <typename Object>
tovo::Edit WithUnitAndNote(Object object, const std::vector<std::string>& texts)
{
    object.unit = texts[0];
    object.note = texts[1];
    return tovo::ChangeObject{std::move(object)};
}

// Of two rows, the fewest that there can be; the author goes on in the table itself.
tovo::Table NewTable(tovo::Element selector)
{
    tovo::Table table;
    table.rowSelector = std::move(selector);
    table.rowLimits = {1.0, 2.0};
    table.cells.assign(2, std::vector<tovo::Element>(1));
    return table;
}

} // namespace

std::vector<ObjectField> NewForm(tovo::Kind kind)
{
    switch (kind) {
    case tovo::Kind::Variable:
        return {{"Name", {}}, {"Value", {}}, {"Unit", {}}, {"Note", {}}};
    case tovo::Kind::Formula:
        return {{"Name", {}}, {"Unit", {}}, {"Note", {}}};
    case tovo::Kind::Table:
        return {{"Name", {}}, {"Rows by", {}}, {"Unit", {}}, {"Note", {}}};
    case tovo::Kind::JobValue:
        break;
    }
    return {};
}

std::vector<ObjectField> FormOf(const tovo::Job& job, const tovo::ObjectName& object,
                                const std::string& decimal)
{
    switch (object.kind) {
    case tovo::Kind::Variable: {
        const tovo::Variable& variable = *job.FindVariable(object.name);
        const bool isYesNo = tovo::IsYesNoName(object.name);
        return {{"Value", ValueToEdit(variable.value, isYesNo, decimal)},
                {"Unit", variable.unit},
                {"Note", variable.note}};
    }
    case tovo::Kind::Formula:
        return UnitAndNote(*job.FindFormula(object.name));
    case tovo::Kind::Table:
        return UnitAndNote(*job.FindTable(object.name));
    case tovo::Kind::JobValue:
        break;
    }
    tovo::JobValues values = job.Values();
    return {{"Value", ExactText(JobValueOf(values, object.name), decimal)}};
}

tovo::Result<tovo::Edit> ReadNewForm(const tovo::Job& job, tovo::Kind kind,
                                     const std::vector<std::string>& texts,
                                     const std::string& decimal)
{
    if (kind == tovo::Kind::Formula) {
        tovo::Formula formula;
        formula.name = texts[0];
        formula.unit = texts[1];
        formula.note = texts[2];
        return tovo::Edit(tovo::AddObject{std::move(formula)});
    }
    if (kind == tovo::Kind::Table) {
        auto selector = ReadElement(texts[1], job, decimal);
        if (!selector)
            return selector.Why();
        tovo::Table table = NewTable(std::move(selector).Value());
        table.name = texts[0];
        table.unit = texts[2];
        table.note = texts[3];
        return tovo::Edit(tovo::AddObject{std::move(table)});
    }
    const auto value = ReadValue(texts[1], tovo::IsYesNoName(texts[0]), job, decimal);
    if (!value)
        return value.Why();
    return tovo::Edit(
        tovo::AddObject{tovo::Variable{texts[0], value.Value(), texts[2], texts[3], {}}});
}

tovo::Result<tovo::Edit> ReadForm(const tovo::Job& job, const tovo::ObjectName& object,
                                  const std::vector<std::string>& texts, const std::string& decimal)
{
    if (object.kind == tovo::Kind::Formula)
        return WithUnitAndNote(*job.FindFormula(object.name), texts);
    if (object.kind == tovo::Kind::Table)
        return WithUnitAndNote(*job.FindTable(object.name), texts);
    const bool isYesNo = object.kind == tovo::Kind::Variable && tovo::IsYesNoName(object.name);
    const auto value = ReadValue(texts[0], isYesNo, job, decimal);
    if (!value)
        return value.Why();
    if (object.kind == tovo::Kind::JobValue) {
        tovo::JobValues values = job.Values();
        JobValueOf(values, object.name) = value.Value();
        return tovo::Edit(tovo::ChangeJobValues{values});
    }
    tovo::Variable variable = *job.FindVariable(object.name);
    variable.value = value.Value();
    variable.unit = texts[1];
    variable.note = texts[2];
    return tovo::Edit(tovo::ChangeObject{std::move(variable)});
}
