#ifndef TOVO_CALC_JSONREPORT_H
#define TOVO_CALC_JSONREPORT_H

#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include <TovoJob/TovoJob.h>

// What the subcommands tell, as JSON. An object is its reference, as in "F(Slab area)"; a position
// counts in both encodings.

using Json = nlohmann::ordered_json; // keeps the keys in the order in which people read

// As the text of a document.
std::string JsonText(const Json& json);

// Yes/no values are true and false, no value is null; a number that JSON cannot hold is the string
// "Infinity", "-Infinity" or "NaN".
Json ValueJson(const std::optional<double>& value, bool isYesNo);
Json PlaceJson(const tovo::Place& place);
// Requires: faults that the job has now.
Json FaultsJson(const tovo::Job& job, const std::vector<tovo::Fault>& faults);
Json ReportJson(const tovo::Job& job, const tovo::Report& report);
Json PreviewJson(const tovo::Preview& preview);

#endif
