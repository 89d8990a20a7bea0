#include "JsonReport.h"

#include <algorithm>
#include <cmath>

#include "TextReport.h"

namespace {

Json SpanJson(const tovo::Span& span)
{
    return {{"utf16", {span.begin.utf16, span.end.utf16}},
            {"utf8", {span.begin.utf8, span.end.utf8}}};
}

template <typename Entries, typename ToJson>
Json ListJson(const Entries& entries, ToJson toJson)
{
    Json list = Json::array();
    for (const auto& entry : entries)
        list.push_back(toJson(entry));
    return list;
}

Json FaultJson(const tovo::Fault& fault)
{
    Json json = {{"object", WriteReference(fault.object)},
                 {"message", fault.message},
                 {"text", fault.text},
                 {"place", PlaceJson(fault.place)}};
    if (!fault.offender.empty())
        json["offender"] = fault.offender;
    json["chain"] = fault.chain;
    if (!fault.ring.empty())
        json["ring"] = ListJson(fault.ring, PlaceJson);
    json["affected"] = ListJson(fault.affected, tovo::WriteReference);
    return json;
}

Json FixJson(const tovo::Fix& fix)
{
    return {{"description", fix.description}, {"text", fix.text}, {"sound", fix.isSound}};
}

Json OutcomeJson(const tovo::Job& job, const tovo::Outcome& outcome)
{
    Json json = {{"name", outcome.object.name}};
    if (!outcome.unit.empty())
        json["unit"] = outcome.unit;
    if (outcome.object.kind == tovo::Kind::Formula)
        json["text"] = job.TextOf(outcome.object);
    json["value"] = ValueJson(outcome.value, outcome.isYesNo);
    return json;
}

Json ChangeJson(const tovo::PlaceChange& change)
{
    Json json = {{"object", WriteReference(change.object)}, {"part", change.part}};
    json["before"] = change.before ? Json(*change.before) : Json(nullptr);
    json["after"] = change.after ? Json(*change.after) : Json(nullptr);
    return json;
}

Json ChangeJson(const tovo::ValueChange& change)
{
    const bool isYesNo = tovo::IsYesNoName(change.object.name);
    return {{"object", WriteReference(change.object)},
            {"before", ValueJson(change.before, isYesNo)},
            {"after", ValueJson(change.after, isYesNo)}};
}

} // namespace

std::string JsonText(const Json& json)
{
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

Json ValueJson(const std::optional<double>& value, bool isYesNo)
{
    if (!value)
        return nullptr;
    if (isYesNo)
        return *value != 0.0;
    // JSON has no word for these numbers, and null would read as if there were no value.
    if (std::isnan(*value))
        return "NaN";
    if (std::isinf(*value))
        return *value < 0 ? "-Infinity" : "Infinity";
    return *value;
}

Json PlaceJson(const tovo::Place& place)
{
    Json json = {{"object", WriteReference(place.object)}};
    if (place.span)
        json["span"] = SpanJson(*place.span);
    if (!place.part.empty())
        json["part"] = place.part;
    return json;
}

Json FaultsJson(const tovo::Job& job, const std::vector<tovo::Fault>& faults)
{
    Json list = ListJson(faults, FaultJson);
    for (std::size_t index = 0; index < std::min(list.size(), kMostFixed); ++index)
        list[index]["fixes"] = ListJson(FixesFor(faults[index], job), FixJson);
    return list;
}

Json ReportJson(const tovo::Job& job, const tovo::Report& report)
{
    const tovo::JobValues& values = job.Values();
    Json json;
    json["jobValues"] = {
        {"DURATION", values.duration}, {"JOBSIZE", values.jobSize}, {"QUANTITY", values.quantity}};
    for (const char* const kind : {"variables", "formulas", "tables"})
        json[kind] = Json::array();
    for (const tovo::Outcome& outcome : report.outcomes)
        json[std::string(WordFor(outcome.object.kind)) + "s"].push_back(OutcomeJson(job, outcome));
    json["faults"] = FaultsJson(job, report.faults);
    return json;
}

Json PreviewJson(const tovo::Preview& preview)
{
    const auto toJson = [](const auto& change) { return ChangeJson(change); };
    return {{"places", ListJson(preview.places, toJson)},
            {"values", ListJson(preview.values, toJson)},
            {"newFaults", ListJson(preview.newFaults, FaultJson)},
            {"clearedFaults", ListJson(preview.clearedFaults, FaultJson)}};
}
