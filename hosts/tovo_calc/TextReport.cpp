#include "TextReport.h"

#include <algorithm>
#include <array>
#include <utility>

#include <fmt/color.h>
#include <fmt/format.h>

#include <TovoFormula/FmlaExprBase.h>
#include <TovoFormula/TokenCodes.h>

#include "Columns.h"
#include "ValueText.h"

namespace {

constexpr std::size_t kListWidth = 76; // code points of a line before a list is broken
constexpr const char* kIndent = "    ";

std::string Painted(const std::string& text, const fmt::text_style& style, const TextManner& manner)
{
    return manner.isColoured ? fmt::format(style, "{}", text) : text;
}

std::string ValueOr(const char* none, const std::optional<double>& value, bool isYesNo,
                    const TextManner& manner)
{
    return value ? ValueText(*value, isYesNo, manner.decimalSeparator) : none;
}

std::string JobValuesText(const tovo::JobValues& values, const TextManner& manner)
{
    const std::pair<int, double> rows[] = {{TOK_DURATION, values.duration},
                                           {TOK_JOBSIZE, values.jobSize},
                                           {TOK_QUANTITY, values.quantity}};
    Columns columns("lr");
    for (const auto& [token, value] : rows) {
        CString name; // as the user's language has it
        CFmlaExprBase::GetTokenString(token, name);
        columns.AddRow({Printable(name), ValueText(value, false, manner.decimalSeparator)});
    }
    return columns.Print();
}

// The text is printed as it is, blanks at its start included, or the line under it would not fit.
std::string UnderlinedText(const std::string& text, const tovo::Span& span,
                           const TextManner& manner)
{
    const std::string_view view(text);
    const std::size_t before = WidthOf(view.substr(0, span.begin.utf8));
    const std::size_t width =
        WidthOf(view.substr(span.begin.utf8, span.end.utf8 - span.begin.utf8));
    return kIndent + Printable(text) + "\n" + kIndent + std::string(before, ' ') +
           Painted(std::string(std::max<std::size_t>(width, 1), '^'), fmt::fg(fmt::color::red),
                   manner) +
           "\n";
}

std::string PlaceText(const tovo::Job& job, const tovo::Place& place, const TextManner& manner)
{
    if (place.span)
        return UnderlinedText(job.TextOf(place.object), *place.span, manner);
    return place.part.empty() ? "" : kIndent + place.part + "\n";
}

std::string RingText(const tovo::Job& job, const std::vector<tovo::Place>& ring,
                     const TextManner& manner)
{
    std::string lines;
    for (const tovo::Place& place : ring)
        lines += kIndent + ObjectText(place.object) + "\n" + PlaceText(job, place, manner);
    return lines;
}

std::string ChainText(const std::vector<std::string>& chain)
{
    std::string lines;
    for (const std::string& entry : chain)
        lines += (lines.empty() ? "    at " : "    in ") + Printable(entry) + "\n";
    return lines;
}

std::string FaultText(const tovo::Job& job, const tovo::Fault& fault, const TextManner& manner)
{
    // The number helps whoever looks the message up, in whatever language the texts are.
    const std::string words = fmt::format("{} ({})", Printable(fault.text), fault.message);
    std::string lines = "  " + ObjectText(fault.object) + ": " +
                        Painted(words, fmt::fg(fmt::color::red), manner) + "\n";
    lines += fault.ring.empty() ? PlaceText(job, fault.place, manner) + ChainText(fault.chain)
                                : RingText(job, fault.ring, manner);
    std::vector<std::string> affected(fault.affected.size());
    std::transform(fault.affected.begin(), fault.affected.end(), affected.begin(), ObjectText);
    return lines + ListText("    fails too: ", affected);
}

std::string PlacesText(const std::vector<tovo::PlaceChange>& places)
{
    std::string lines;
    for (const tovo::PlaceChange& place : places) {
        lines += fmt::format("  {}, {}\n", ObjectText(place.object), Printable(place.part));
        if (place.before)
            lines += "    from  " + Printable(*place.before) + "\n";
        if (place.after)
            lines += "    to    " + Printable(*place.after) + "\n";
    }
    return lines;
}

std::string ValueChangesText(const std::vector<tovo::ValueChange>& values, const TextManner& manner)
{
    Columns columns("lrl");
    for (const tovo::ValueChange& change : values) {
        const bool isYesNo = tovo::IsYesNoName(change.object.name);
        columns.AddRow({ObjectText(change.object), ValueOr("none", change.before, isYesNo, manner),
                        "to " + ValueOr("none", change.after, isYesNo, manner)});
    }
    return columns.Print();
}

std::string PlainFaultsText(const tovo::Job& job, const std::vector<tovo::Fault>& faults,
                            const TextManner& manner)
{
    std::string lines;
    for (const tovo::Fault& fault : faults)
        lines += FaultText(job, fault, manner);
    return lines;
}

std::string FixesText(const std::vector<tovo::Fix>& fixes)
{
    std::string lines;
    for (const tovo::Fix& fix : fixes)
        lines += fmt::format("    fix: {}: {}\n", Printable(fix.description),
                             Trimmed(Printable(fix.text)));
    return lines;
}

} // namespace

std::string ObjectText(const tovo::ObjectName& object)
{
    const bool needsWord = object.kind == tovo::Kind::Formula || object.kind == tovo::Kind::Table;
    return (needsWord ? std::string(WordFor(object.kind)) + " " : "") + Printable(object.name);
}

std::string ListText(const std::string& heading, const std::vector<std::string>& entries)
{
    if (entries.empty())
        return "";
    const std::string indent(WidthOf(heading), ' ');
    std::string lines;
    std::string line = heading;
    for (const std::string& entry : entries) {
        const bool isFirst = WidthOf(line) == indent.size();
        if (!isFirst) {
            line += ",";
            if (WidthOf(line) + WidthOf(entry) < kListWidth) {
                line += " ";
            } else {
                lines += line + "\n";
                line = indent;
            }
        }
        line += entry;
    }
    return lines + line + "\n";
}

std::string Section(const std::string& heading, const std::string& lines, const TextManner& manner)
{
    if (lines.empty())
        return "";
    return "\n" + Painted(heading, fmt::emphasis::bold, manner) + "\n" + lines;
}

std::string FaultsText(const tovo::Job& job, const std::vector<tovo::Fault>& faults,
                       const TextManner& manner)
{
    std::string lines;
    std::size_t count = 0;
    for (const tovo::Fault& fault : faults) {
        lines += FaultText(job, fault, manner);
        if (++count <= kMostFixed)
            lines += FixesText(FixesFor(fault, job));
    }
    return lines;
}

std::string ReportText(const tovo::Job& job, const tovo::Report& report, const TextManner& manner)
{
    Columns variables("lrl");
    Columns formulas("lrll");
    Columns tables("lrl");
    for (const auto& [object, unit, isYesNo, value] : report.outcomes) {
        std::vector<std::string> row = {Printable(object.name),
                                        ValueOr("failed", value, isYesNo, manner), Printable(unit)};
        if (object.kind == tovo::Kind::Formula) {
            row.push_back(Trimmed(Printable(job.TextOf(object))));
            formulas.AddRow(std::move(row));
        } else {
            (object.kind == tovo::Kind::Table ? tables : variables).AddRow(std::move(row));
        }
    }
    const std::string text = Section("Job values", JobValuesText(job.Values(), manner), manner) +
                             Section("Variables", variables.Print(), manner) +
                             Section("Formulas", formulas.Print(), manner) +
                             Section("Tables", tables.Print(), manner) +
                             Section("Faults", FaultsText(job, report.faults, manner), manner);
    // Every section has an empty line before it, also the first.
    return text.substr(1);
}

std::string PreviewText(const tovo::Job& job, const tovo::Preview& preview,
                        const TextManner& manner)
{
    const std::string text =
        Section("Changes", PlacesText(preview.places), manner) +
        Section("Other values", ValueChangesText(preview.values, manner), manner) +
        Section("New faults", PlainFaultsText(job, preview.newFaults, manner), manner) +
        Section("Faults that are gone", PlainFaultsText(job, preview.clearedFaults, manner),
                manner);
    return text.empty() ? "Nothing changes.\n" : text.substr(1);
}
