#include <utility>

#include <JsonFile.h>

#include <TovoJob/JobFile.h>

#include "Access.h"
#include "NumberText.h"
#include "Validation.h"

// Two formats, which differ in how they write a cell or a selector.
//
//     version 2    "V(Width)"  "F(Edge)"  "T(Rate)"  4.5  true  null
//     version 1    "VWidth"    "FEdge"    "TRate"    "4500", in thousandths
//
// Version 1 has no key that tells its version.

namespace tovo {

namespace {

using job::ParseNumber;

constexpr int kVersion = 2;

std::string TextIn(const JsonPlace& object, const char* key)
{
    const auto place = object.FindMember(key);
    return place ? place->Text() : std::string();
}

// What stands in a cell in place of a reference, most often by mistake.
[[noreturn]] void RefuseText(const JsonPlace& place, const std::string& text)
{
    if (ParseNumber(text))
        place.Refuse("a number is written without quotation marks: " + text);
    const bool hasLetter = text.starts_with('V') || text.starts_with('F') || text.starts_with('T');
    const ObjectName meant{text.starts_with('F')   ? Kind::Formula
                           : text.starts_with('T') ? Kind::Table
                                                   : Kind::Variable,
                           hasLetter && text.size() > 1 ? text.substr(1) : text};
    place.Refuse("is no reference; a variable is written as \"V(Width)\", a formula as "
                 "\"F(Edge)\", a table as \"T(Rate)\"; is \"" +
                 WriteReference(meant) + "\" meant?");
}

Element ReadElement(const JsonPlace& place)
{
    if (place.IsNull())
        return std::monostate();
    if (place.IsNumber())
        return place.Number();
    if (place.IsYesNo())
        return place.YesNo();
    const std::string& text = place.Text();
    if (const auto object = ReadReference(text))
        return *object;
    RefuseText(place, text);
}

// An empty string is how version 1 keeps the constant 0.
Element ReadElementOfVersion1(const JsonPlace& place)
{
    const std::string& text = place.Text();
    constexpr std::string_view kLetters = "VFT";
    const std::size_t kind = text.empty() ? kLetters.npos : kLetters.find(text[0]);
    if (kind != kLetters.npos && text.size() == 1)
        place.Refuse("the reference has no name");
    if (kind != kLetters.npos)
        return ObjectName{static_cast<Kind>(kind), text.substr(1)};
    if (text.empty())
        return 0.0;
    if (const auto thousandths = ParseNumber(text))
        return *thousandths / 1000.0;
    place.Refuse("is neither V, F or T with a name nor a constant in thousandths");
}

// A reader of one job. What it refuses it throws, with the place.
class Reader {
public:
    Reader(const JsonPlace& job, const JobOptions& options) : m_Place(job), m_Job(options) {}

    Job Read()
    {
        m_IsVersion1 = !m_Place.FindMember("version");
        if (!m_IsVersion1)
            CheckVersion();
        ExpectKeys(m_Place, {"duration", "jobsize", "quantity", "variables", "formulas", "tables"});
        const JobValues values{m_Place.Member("duration").Number(),
                               m_Place.Member("jobsize").Number(),
                               m_Place.Member("quantity").Number()};
        job::Inside& inside = job::Access::InsideOf(m_Job);
        inside.Take({inside.content.Values(), std::make_shared<const JobValues>(values), 0});
        ReadAll("variables", [&](const JsonPlace& place) { return ReadVariable(place); });
        ReadAll("formulas", [&](const JsonPlace& place) { return ReadFormula(place); });
        ReadAll("tables", [&](const JsonPlace& place) { return ReadTable(place); });
        return std::move(m_Job);
    }

private:
    void CheckVersion() const
    {
        const JsonPlace version = m_Place.Member("version");
        if (version.Number() != kVersion)
            version.Refuse("is not known here; this program reads version " +
                           std::to_string(kVersion) + " and files without a version");
    }
    void ExpectKeys(const JsonPlace& object, std::vector<std::string_view> keys) const
    {
        if (!m_IsVersion1)
            keys.push_back(&object == &m_Place ? "version" : "note");
        object.ExpectKeys(keys);
    }

    template <typename ReadOne>
    void ReadAll(const char* key, ReadOne readOne)
    {
        const JsonPlace array = m_Place.Member(key);
        for (std::size_t index = 0; index < array.Size(); ++index) {
            const JsonPlace place = array.Element(index);
            Take(place, readOne(place));
        }
    }

    // The place is that of the object, but for a name, which has one of its own.
    template <typename Object>
    void Take(const JsonPlace& place, Object object)
    {
        job::Inside& inside = job::Access::InsideOf(m_Job);
        const ObjectName name = job::NameOf(object);
        if (const auto isNew = job::CheckNewName(inside.content, name); !isNew)
            place.Member("name").Refuse(isNew.Why().text);
        if (const auto isSound = job::CheckObject(object); !isSound)
            place.Refuse(isSound.Why().text);
        if (inside.content.Count() >= inside.options.limits.objects)
            place.Refuse("the limit of this job is " +
                         std::to_string(inside.options.limits.objects) + " objects");
        const std::size_t position = inside.content.CountOf(name.kind);
        inside.Take(
            {job::Shared<Object>(), std::make_shared<const Object>(std::move(object)), position});
    }

    Variable ReadVariable(const JsonPlace& place) const
    {
        ExpectKeys(place, {"name", "value", "unit"});
        Variable variable;
        variable.name = place.Member("name").Text();
        const JsonPlace value = place.Member("value");
        variable.value = IsYesNoName(variable.name) ? (value.YesNo() ? 1.0 : 0.0) : value.Number();
        variable.unit = TextIn(place, "unit");
        variable.note = TextIn(place, "note");
        return variable;
    }

    Formula ReadFormula(const JsonPlace& place) const
    {
        ExpectKeys(place, {"name", "unit", "expression"});
        Formula formula;
        formula.name = place.Member("name").Text();
        formula.expression = place.Member("expression").Text();
        formula.unit = TextIn(place, "unit");
        formula.note = TextIn(place, "note");
        return formula;
    }

    Table ReadTable(const JsonPlace& place) const
    {
        ExpectKeys(place, {"name", "unit", "rowSelector", "columnSelector", "rowLimits",
                           "columnLimits", "cells"});
        Table table;
        table.name = place.Member("name").Text();
        table.unit = TextIn(place, "unit");
        table.note = TextIn(place, "note");
        table.cells = ReadCells(place.Member("cells"));
        table.rowSelector = ReadOne(place.Member("rowSelector"));
        table.rowLimits = ReadLimits(place.Member("rowLimits"));
        // With one column these have no effect, but what is there must still make sense.
        const bool isNeeded = !table.cells.empty() && table.cells[0].size() > 1;
        if (isNeeded || place.FindMember("columnSelector"))
            table.columnSelector = ReadOne(place.Member("columnSelector"));
        if (isNeeded || place.FindMember("columnLimits"))
            table.columnLimits = ReadLimits(place.Member("columnLimits"));
        return table;
    }

    std::vector<std::vector<Element>> ReadCells(const JsonPlace& place) const
    {
        std::vector<std::vector<Element>> cells(place.Size());
        for (std::size_t row = 0; row < cells.size(); ++row) {
            const JsonPlace rowPlace = place.Element(row);
            cells[row].reserve(rowPlace.Size());
            for (std::size_t column = 0; column < rowPlace.Size(); ++column)
                cells[row].push_back(ReadOne(rowPlace.Element(column)));
        }
        return cells;
    }

    static std::vector<double> ReadLimits(const JsonPlace& place)
    {
        std::vector<double> limits(place.Size());
        for (std::size_t index = 0; index < limits.size(); ++index)
            limits[index] = place.Element(index).Number();
        return limits;
    }

    Element ReadOne(const JsonPlace& place) const
    {
        return m_IsVersion1 ? ReadElementOfVersion1(place) : ReadElement(place);
    }

    const JsonPlace& m_Place;
    Job m_Job;
    bool m_IsVersion1 = false;
};

} // namespace

Result<Job> ReadJob(std::string_view text, const std::string& name, const JobOptions& options)
{
    try {
        const nlohmann::json document = ParseJson(name, std::string(text));
        return Reader(JsonPlace(name, document), options).Read();
    } catch (const FileFault& fault) {
        return Refusal{RefusalKind::BadFile, fault.what(), {}};
    }
}

} // namespace tovo
