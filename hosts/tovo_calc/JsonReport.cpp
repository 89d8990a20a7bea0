#include "JsonReport.h"

#include <cmath>

#include <nlohmann/json.hpp>

namespace {

using Json = nlohmann::ordered_json; // keeps the keys in the order in which people read

// JSON has no word for these numbers, and null would read as if there were no value.
Json ValueJson(const Value& value)
{
    if (value.isYesNo)
        return value.number != 0.0;
    if (std::isnan(value.number))
        return "NaN";
    if (std::isinf(value.number))
        return value.number < 0 ? "-Infinity" : "Infinity";
    return value.number;
}

Json NamedJson(const Value& value)
{
    Json json;
    json["name"] = value.name.ToUtf8();
    if (!value.unit.IsEmpty())
        json["unit"] = value.unit.ToUtf8();
    return json;
}

Json NamesJson(const std::vector<Dependency>& uses, bool isStaticScan)
{
    Json names = Json::array();
    for (const Dependency& use : uses) {
        Json& name = names.emplace_back();
        name["name"] = use.name.ToUtf8();
        // A static scan does not know, and false would claim that it does.
        if (!isStaticScan)
            name["inCondition"] = use.inCondition;
    }
    return names;
}

Json UsesJson(const Dependencies& uses, bool isStaticScan)
{
    Json json;
    json["jobValues"] = NamesJson(uses.jobValues, isStaticScan);
    json["variables"] = NamesJson(uses.variables, isStaticScan);
    json["formulas"] = NamesJson(uses.formulas, isStaticScan);
    json["tables"] = NamesJson(uses.tables, isStaticScan);
    return json;
}

Json FaultJson(const Fault& fault)
{
    Json json;
    json["message"] = fault.message;
    json["text"] = fault.text.ToUtf8();
    // Without this an empty list would come out as null; the same goes for all lists below.
    json["chain"] = Json::array();
    for (const CString& entry : fault.chain)
        json["chain"].push_back(entry.ToUtf8());
    return json;
}

// What a formula and an expression have in common.
void AddFormula(Json& json, const FormulaFacts& formula, bool isStaticScan)
{
    json["text"] = formula.text.ToUtf8();
    if (formula.fault) {
        json["fault"] = FaultJson(*formula.fault);
        // In the library's own count and not in columns: an editor can set its cursor there.
        json["fault"]["position"] = formula.faultPos;
        return;
    }
    json["value"] = ValueJson(formula.value);
    json["uses"] = UsesJson(formula.uses, isStaticScan);
}

Json TableJson(const TableFacts& table, bool isStaticScan)
{
    Json json = NamedJson(table.value);
    if (table.fault) {
        json["fault"] = FaultJson(*table.fault);
        return json;
    }
    json["value"] = ValueJson(table.value);
    json["cell"]["row"] = table.row;
    json["cell"]["column"] = table.column;
    json["cell"]["content"] = table.cell.ToUtf8();
    json["uses"] = UsesJson(table.uses, isStaticScan);
    return json;
}

Json MadeUpJson(const Facts& facts)
{
    Json names = Json::array();
    for (const CString& name : facts.madeUpVariables)
        names.push_back(name.ToUtf8());
    return names;
}

} // namespace

std::string JsonReport(const Facts& facts)
{
    Json json;
    for (const Value& value : facts.jobValues)
        json["jobValues"][value.name.ToUtf8()] = ValueJson(value);
    json["variables"] = Json::array();
    for (const Value& value : facts.variables) {
        Json& variable = json["variables"].emplace_back(NamedJson(value));
        variable["value"] = ValueJson(value);
    }
    json["formulas"] = Json::array();
    for (const FormulaFacts& formula : facts.formulas) {
        Json& entry = json["formulas"].emplace_back(NamedJson(formula.value));
        AddFormula(entry, formula, facts.isStaticScan);
    }
    json["tables"] = Json::array();
    for (const TableFacts& table : facts.tables)
        json["tables"].push_back(TableJson(table, facts.isStaticScan));
    json["madeUpVariables"] = MadeUpJson(facts);
    return json.dump(2) + "\n";
}

std::string ExpressionJsonReport(const Facts& facts)
{
    Json json;
    AddFormula(json, facts.formulas.front(), facts.isStaticScan);
    json["madeUpVariables"] = MadeUpJson(facts);
    return json.dump(2) + "\n";
}
