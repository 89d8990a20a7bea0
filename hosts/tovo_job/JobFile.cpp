#include "JobFile.h"

#include <charconv>
#include <cmath>
#include <system_error>
#include <unordered_set>

#include <fmt/format.h>

#include "JsonFile.h"

namespace {

// A lookup counts rows and columns in 16 bits and throws where they end.
constexpr std::size_t kMostRowsOrColumns = 32768;

CString WideText(const JsonPlace& place)
{
    return CString(std::string_view(place.Text()));
}

CString ReadUnit(const JsonPlace& object)
{
    const auto unit = object.FindMember("unit");
    return unit ? WideText(*unit) : CString();
}

// The names of one kind of object, each of which the file may give once.
class NameReader {
public:
    CString Read(const JsonPlace& object)
    {
        const JsonPlace place = object.Member("name");
        const CString name = WideText(place);
        if (name.IsEmpty())
            place.Refuse("must not be empty");
        // A scan tells names without their trailing blanks, so such a name could not be found
        // again.
        CString trimmed = name;
        trimmed.TrimRight();
        if (trimmed != name)
            place.Refuse("must not end in a blank");
        if (!m_Names.insert(name).second)
            place.Refuse(fmt::format("the name \"{}\" is there twice", name.ToUtf8()));
        return name;
    }

private:
    std::unordered_set<CString> m_Names;
};

VariableEntry ReadVariable(const JsonPlace& place, NameReader& names)
{
    place.ExpectKeys({"name", "value", "unit"});
    const CString name = names.Read(place);
    const JsonPlace value = place.Member("value");
    // The library keeps any number under such a name; a job has no use for one that is neither.
    if (IsYesNoName(name))
        return {name, value.YesNo() ? 1.0 : 0.0, ReadUnit(place)};
    return {name, value.Number(), ReadUnit(place)};
}

FormulaEntry ReadFormula(const JsonPlace& place, NameReader& names)
{
    place.ExpectKeys({"name", "unit", "expression"});
    const CString name = names.Read(place);
    return {name, ReadUnit(place), WideText(place.Member("expression"))};
}

// The library takes any text for a constant and reads 0 where it is no number, which would hide a
// reference whose letter was forgotten.
CString ReadCombinedString(const JsonPlace& place)
{
    const std::string& text = place.Text();
    const bool isReference =
        text.starts_with('V') || text.starts_with('F') || text.starts_with('T');
    if (isReference && text.size() == 1)
        place.Refuse("the reference has no name");
    if (!isReference && !text.empty() && !ParseNumber(text))
        place.Refuse("is neither V, F or T with a name nor a constant in thousandths");
    return WideText(place);
}

// Whether the limits rise is not asked here: the library has a message for it.
std::vector<double> ReadLimits(const JsonPlace& place, std::size_t count, const char* what)
{
    if (place.Size() != count)
        place.Refuse(fmt::format("{} limits for {} {}", place.Size(), count, what));
    std::vector<double> limits;
    for (std::size_t index = 0; index < count; ++index)
        limits.push_back(place.Element(index).Number());
    return limits;
}

std::vector<CString> ReadRow(const JsonPlace& place, std::size_t width)
{
    if (place.Size() != width)
        place.Refuse(fmt::format("{} cells in a table of {} columns", place.Size(), width));
    std::vector<CString> row;
    for (std::size_t index = 0; index < width; ++index)
        row.push_back(ReadCombinedString(place.Element(index)));
    return row;
}

std::vector<std::vector<CString>> ReadCells(const JsonPlace& place)
{
    const std::size_t rowCount = place.Size();
    if (rowCount < 2 || rowCount > kMostRowsOrColumns)
        place.Refuse(fmt::format("a table has 2 to {} rows", kMostRowsOrColumns));
    // The first row sets the width, so that the complaint names the row that differs from it.
    const std::size_t width = place.Element(0).Size();
    if (width < 1 || width > kMostRowsOrColumns)
        place.Element(0).Refuse(fmt::format("a table has 1 to {} columns", kMostRowsOrColumns));

    std::vector<std::vector<CString>> cells;
    for (std::size_t index = 0; index < rowCount; ++index)
        cells.push_back(ReadRow(place.Element(index), width));
    return cells;
}

TableEntry ReadTable(const JsonPlace& place, NameReader& names)
{
    place.ExpectKeys(
        {"name", "unit", "rowSelector", "columnSelector", "rowLimits", "columnLimits", "cells"});
    TableEntry table;
    table.name = names.Read(place);
    table.unit = ReadUnit(place);
    table.cells = ReadCells(place.Member("cells"));
    table.rowSelector = ReadCombinedString(place.Member("rowSelector"));
    table.rowLimits = ReadLimits(place.Member("rowLimits"), table.cells.size(), "rows");

    const std::size_t width = table.cells[0].size();
    // With one column these have no effect, but what is there must still make sense.
    const bool isNeeded = width > 1;
    if (isNeeded || place.FindMember("columnSelector"))
        table.columnSelector = ReadCombinedString(place.Member("columnSelector"));
    if (isNeeded || place.FindMember("columnLimits"))
        table.columnLimits = ReadLimits(place.Member("columnLimits"), width, "columns");
    return table;
}

// Each kind of object has names of its own: a formula may be called as a table is.
template <typename Entry>
std::vector<Entry> ReadAll(const JsonPlace& array, Entry (*read)(const JsonPlace&, NameReader&))
{
    NameReader names;
    std::vector<Entry> entries;
    for (std::size_t index = 0; index < array.Size(); ++index)
        entries.push_back(read(array.Element(index), names));
    return entries;
}

} // namespace

JobEntries ReadJobFile(const std::string& path)
{
    return ParseJob(path, ReadWhole(path));
}

JobEntries ParseJob(const std::string& file, const std::string& text)
{
    const nlohmann::json document = ParseJson(file, text);
    const JsonPlace job(file, document);
    // First of all, because a misspelt key is a better explanation than the one that is missing.
    job.ExpectKeys({"duration", "jobsize", "quantity", "variables", "formulas", "tables"});

    JobEntries entries;
    entries.duration = job.Member("duration").Number();
    entries.jobSize = job.Member("jobsize").Number();
    entries.quantity = job.Member("quantity").Number();
    entries.variables = ReadAll(job.Member("variables"), ReadVariable);
    entries.formulas = ReadAll(job.Member("formulas"), ReadFormula);
    entries.tables = ReadAll(job.Member("tables"), ReadTable);
    return entries;
}

bool IsYesNoName(const CString& name)
{
    return name.View().ends_with(u'?');
}

// Not by way of the library, which passes over what follows a number.
std::optional<double> ParseNumber(std::string_view text)
{
    double value = 0.0;
    const char* const end = text.data() + text.size();
    const auto [rest, fault] = std::from_chars(text.data(), end, value);
    if (fault != std::errc() || rest != end || !std::isfinite(value))
        return std::nullopt;
    return value;
}
