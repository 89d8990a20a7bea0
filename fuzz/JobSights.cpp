#include "JobSights.h"

#include <algorithm>
#include <string>
#include <unordered_set>

#include "Oracles.h"

namespace tovo::fuzz {

namespace {

void Show(Record& record, const ObjectName& object)
{
    record << static_cast<int>(object.kind) << object.name;
}

void Show(Record& record, const Place& place)
{
    Show(record, place.object);
    record << place.part;
    if (place.span)
        record << place.span->begin.utf8 << place.span->end.utf8 << place.span->begin.utf16
               << place.span->end.utf16;
}

void Show(Record& record, const Fault& fault)
{
    record << "\n    ";
    Show(record, fault.object);
    record << fault.message << fault.text << fault.offender;
    Show(record, fault.place);
    for (const std::string& line : fault.chain)
        record << line;
    record << "ring " << fault.ring.size();
    for (const Place& place : fault.ring)
        Show(record, place);
    record << "affected " << fault.affected.size();
    for (const ObjectName& object : fault.affected)
        Show(record, object);
}

Position LengthOf(const std::string& text)
{
    return {static_cast<std::size_t>(CString(text).GetLength()), text.size()};
}

} // namespace

void Show(Record& record, const Report& report)
{
    for (const Outcome& outcome : report.outcomes) {
        record << "\n    ";
        Show(record, outcome.object);
        record << outcome.unit << outcome.isYesNo << outcome.value.has_value()
               << outcome.value.value_or(0.0);
    }
    for (const Fault& fault : report.faults)
        Show(record, fault);
}

void RequireSame(const char* expected, const Report& report, const Report& other)
{
    const auto shown = [](const Report& shownReport, bool isWritten) {
        Record record(isWritten);
        Show(record, shownReport);
        return record;
    };
    Require(shown(report, false).Hash() == shown(other, false).Hash(), expected,
            [&] { return shown(report, true).Text() + "\n--" + shown(other, true).Text(); });
}

void RequireInside(const Span& span, const Position& length)
{
    Require(span.begin.utf8 <= span.end.utf8 && span.end.utf8 <= length.utf8 &&
                span.begin.utf16 <= span.end.utf16 && span.end.utf16 <= length.utf16,
            "a span inside the text", [&] {
                return std::to_string(span.begin.utf16) + " to " + std::to_string(span.end.utf16) +
                       " of " + std::to_string(length.utf16);
            });
}

void RequireInside(const Span& span, const std::string& text)
{
    RequireInside(span, LengthOf(text));
}

void PlaceCheck::RequireSound(const Place& place)
{
    Require(m_Job.Has(place.object), "a place in an object of the job",
            [&] { return place.object.name; });
    if (!place.span)
        return;
    const auto [length, isNew] = m_Lengths.try_emplace(place.object);
    if (isNew)
        length->second = LengthOf(m_Job.TextOf(place.object));
    RequireInside(*place.span, length->second);
}

void RequireSoundFaults(const Job& job, const Report& report)
{
    PlaceCheck places(job);
    std::unordered_set<ObjectName> failing;
    for (const Fault& fault : report.faults) {
        Require(fault.message != 0 && !fault.text.empty(), "a fault in words",
                [&] { return fault.object.name; });
        Require(fault.place.object == fault.object, "a fault in its object",
                [&] { return fault.object.name; });
        places.RequireSound(fault.place);
        failing.insert(fault.object);
        for (const Place& place : fault.ring) {
            places.RequireSound(place);
            failing.insert(place.object);
        }
        for (const ObjectName& object : fault.affected)
            Require(failing.insert(object).second, "an object that fails for one reason",
                    [&] { return object.name; });
    }
    for (const Outcome& outcome : report.outcomes)
        Require(outcome.value.has_value() == !failing.contains(outcome.object),
                "either a value or a fault", [&] { return outcome.object.name; });
}

JobOptions OptionsOf(int choice)
{
    JobOptions options;
    options.domainErrorsAreFaults = choice % 2 == 0;
    options.undefinedVariablesAreFaults = choice / 2 == 0;
    return options;
}

} // namespace tovo::fuzz
