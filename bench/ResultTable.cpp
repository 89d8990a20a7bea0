#include "ResultTable.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <iterator>
#include <ostream>
#include <sstream>

namespace bench {
namespace {

constexpr const char* kEngineNames[] = {"ours", "muParser", "Lua", "C++"};
static_assert(std::size(kEngineNames) == kEngineCount);

constexpr int kNameWidth = 29;
constexpr int kColumnWidth = 9;
constexpr int kRatioWidth = 15;

enum class Judged { Nothing, EachRow, Mean };

// How a section is shown, and how many times as long as the other engine we may take there.
struct Section {
    const char* name;
    const char* unit;
    double size; // of the unit, in what is measured
    Judged judged;
    Engine against;
    double limit;
};

// clang-format off
constexpr Section kSections[] = {
    // name                                unit     size  judged            against           limit
    {"text to value",                      "µs",    1e3,  Judged::EachRow,  Engine::Lua,      1.0},
    {"again, after a variable changed",    "ns",    1,    Judged::Mean,     Engine::MuParser, 3.0},
    {"net of 1,000 formulas",              "µs",    1e3,  Judged::EachRow,  Engine::MuParser, 5.0},
    {"lookup in a table",                  "ns",    1,    Judged::Nothing,  Engine::ByHand,   0},
    {"loading 10,000 formulas, each",      "µs",    1e3,  Judged::EachRow,  Engine::MuParser, 1.0 / 3},
    {"memory of a loaded formula",         "bytes", 1,    Judged::Nothing,  Engine::MuParser, 0},
    {"a long sum, each token",             "ns",    1,    Judged::Nothing,  Engine::MuParser, 0},
};

// Two rows of a section held against each other: how the cost grows.
struct Growth {
    const char* section;
    const char* row;
    const char* base;
    double limit;
};
constexpr Growth kGrowths[] = {
    {"net of 1,000 formulas",  "100 deep, 10 wide", "10 deep, 100 wide", 1.5},
    {"a long sum, each token", "100,000 tokens",    "1,000 tokens",      1.5},
};
// clang-format on

using Value = std::optional<double>;

Value& At(Results& results, Engine engine)
{
    return results[static_cast<std::size_t>(engine)];
}

Value At(const Results& results, Engine engine)
{
    return results[static_cast<std::size_t>(engine)];
}

Value Ratio(Value value, Value base)
{
    return value && base ? Value(*value / *base) : std::nullopt;
}

Value RatioTo(const Results& results, Engine engine)
{
    return Ratio(At(results, Engine::Ours), At(results, engine));
}

// Three significant digits.
std::string Shown(Value value)
{
    if (!value)
        return "-";
    const int wholeDigits = *value < 1 ? 1 : static_cast<int>(std::log10(*value)) + 1;
    std::ostringstream text;
    text << std::fixed << std::setprecision(std::max(0, 3 - wholeDigits)) << *value;
    return text.str();
}

std::string Verdict(Value ratio, double limit)
{
    if (!ratio)
        return "";
    return "<= " + Shown(limit) + (*ratio <= limit ? "  met" : "  missed");
}

void PrintLine(std::ostream& out, const std::string& name, const std::array<std::string, 4>& values,
               const std::string& toMuParser, const std::string& toLua, const std::string& target)
{
    out << std::left << std::setw(kNameWidth) << name << std::right;
    for (const std::string& value : values)
        out << std::setw(kColumnWidth) << value;
    out << std::setw(kRatioWidth) << toMuParser << std::setw(kRatioWidth) << toLua;
    if (!target.empty())
        out << "  " << target;
    out << '\n';
}

std::array<std::string, 4> ShownIn(const Results& results, double unit)
{
    std::array<std::string, 4> texts;
    for (std::size_t engine = 0; engine < kEngineCount; ++engine)
        texts[engine] = Shown(Ratio(results[engine], unit));
    return texts;
}

// The rows that were not left out by a filter.
template <typename Rows>
Rows Measured(const Rows& rows)
{
    Rows measured;
    std::copy_if(rows.begin(), rows.end(), std::back_inserter(measured), [](const auto& row) {
        return std::any_of(row.results.begin(), row.results.end(),
                           [](const Value& value) { return value.has_value(); });
    });
    return measured;
}

template <typename Rows>
Value MeanRatio(const Rows& rows, Engine engine)
{
    double logarithms = 0;
    for (const auto& row : rows) {
        const Value ratio = RatioTo(row.results, engine);
        if (!ratio)
            return std::nullopt;
        logarithms += std::log(*ratio);
    }
    return std::exp(logarithms / static_cast<double>(rows.size()));
}

template <typename Rows>
void PrintMean(std::ostream& out, const Section& section, const Rows& rows)
{
    const Value ratio = MeanRatio(rows, section.against);
    const std::string verdict =
        section.judged == Judged::Mean ? Verdict(ratio, section.limit) : std::string();
    PrintLine(out, "  geometric mean", {}, Shown(MeanRatio(rows, Engine::MuParser)),
              Shown(MeanRatio(rows, Engine::Lua)), verdict);
}

template <typename Rows>
const Results* Find(const Rows& rows, const char* name)
{
    const auto found =
        std::find_if(rows.begin(), rows.end(), [&](const auto& row) { return row.name == name; });
    return found == rows.end() ? nullptr : &found->results;
}

template <typename Rows>
void PrintGrowths(std::ostream& out, const Section& section, const Rows& rows)
{
    for (const Growth& growth : kGrowths) {
        const Results* const grown = Find(rows, growth.row);
        const Results* const base = Find(rows, growth.base);
        if (section.name != std::string(growth.section) || !grown || !base)
            continue;
        Results ratios;
        for (std::size_t engine = 0; engine < kEngineCount; ++engine)
            ratios[engine] = Ratio((*grown)[engine], (*base)[engine]);
        PrintLine(out, "  the second to the first", ShownIn(ratios, 1), "", "",
                  Verdict(At(ratios, Engine::Ours), growth.limit));
    }
}

} // namespace

const char* NameOf(Engine engine)
{
    return kEngineNames[static_cast<std::size_t>(engine)];
}

void ResultTable::Name(const std::string& section, const std::string& row)
{
    RowOf(section, row);
}

void ResultTable::Note(const std::string& section, const std::string& row, Engine engine,
                       double value)
{
    Value& least = At(RowOf(section, row).results, engine);
    least = least ? std::min(*least, value) : value;
}

void ResultTable::Print(std::ostream& out) const
{
    for (const Section& section : kSections) {
        const auto found = m_Sections.find(section.name);
        if (found == m_Sections.end())
            continue;
        const std::vector<Row> rows = Measured(found->second);
        if (rows.empty())
            continue;
        out << section.name << ", in " << section.unit << '\n';
        PrintLine(out, "", {"ours", "muParser", "Lua", "C++"}, "ours/muParser", "ours/Lua",
                  section.judged == Judged::Nothing
                      ? ""
                      : std::string("against ") + NameOf(section.against));
        for (const Row& row : rows) {
            const bool isJudged = section.judged == Judged::EachRow;
            PrintLine(out, "  " + row.name, ShownIn(row.results, section.size),
                      Shown(RatioTo(row.results, Engine::MuParser)),
                      Shown(RatioTo(row.results, Engine::Lua)),
                      isJudged ? Verdict(RatioTo(row.results, section.against), section.limit)
                               : std::string());
        }
        if (rows.size() > 3)
            PrintMean(out, section, rows);
        PrintGrowths(out, section, rows);
        out << '\n';
    }
}

ResultTable::Row& ResultTable::RowOf(const std::string& section, const std::string& name)
{
    std::vector<Row>& rows = m_Sections[section];
    const auto found =
        std::find_if(rows.begin(), rows.end(), [&](const Row& row) { return row.name == name; });
    if (found != rows.end())
        return *found;
    rows.push_back({name, {}});
    return rows.back();
}

} // namespace bench
