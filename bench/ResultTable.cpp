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

// Fewer are better looked at one by one.
constexpr std::size_t kRowsWorthAMean = 4;

enum class Judged { Nothing, EachRow, Mean };

// How a section is shown, how many times as long as the other engine we may take there, and how
// many times as long the second row may take as the first, 0 where that says nothing.
struct Section {
    const char* name;
    const char* unit;
    double size; // of the unit, in what is measured
    Judged judged;
    Engine against;
    double limit;
    double growthLimit;
};

// clang-format off
constexpr Section kSections[] = {
    // name        unit     size  judged            against           limit    growth
    {kTextToValue, "µs",    1e3,  Judged::EachRow,  Engine::Lua,      1.0,     0},
    {kAgain,       "ns",    1,    Judged::Mean,     Engine::MuParser, 3.0,     0},
    {kNet,         "µs",    1e3,  Judged::EachRow,  Engine::MuParser, 5.0,     1.5},
    {kLookup,      "ns",    1,    Judged::Nothing,  Engine::ByHand,   0,       0},
    {kLoading,     "µs",    1e3,  Judged::EachRow,  Engine::MuParser, 1.0 / 3, 0},
    {kMemory,      "bytes", 1,    Judged::Nothing,  Engine::MuParser, 0,       0},
    {kLongSum,     "ns",    1,    Judged::Nothing,  Engine::MuParser, 0,       1.5},
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
Rows Measured(const Rows& rows)
{
    Rows measured;
    std::copy_if(rows.begin(), rows.end(), std::back_inserter(measured), [](const Row& row) {
        return std::any_of(row.results.begin(), row.results.end(),
                           [](const Value& value) { return value.has_value(); });
    });
    return measured;
}

Value MeanRatio(const Rows& rows, Engine engine)
{
    double logarithms = 0;
    for (const Row& row : rows) {
        const Value ratio = RatioTo(row.results, engine);
        if (!ratio)
            return std::nullopt;
        logarithms += std::log(*ratio);
    }
    return std::exp(logarithms / static_cast<double>(rows.size()));
}

void PrintMean(std::ostream& out, const Section& section, const Rows& rows)
{
    const Value ratio = MeanRatio(rows, section.against);
    const std::string verdict =
        section.judged == Judged::Mean ? Verdict(ratio, section.limit) : std::string();
    PrintLine(out, "  geometric mean", {}, Shown(MeanRatio(rows, Engine::MuParser)),
              Shown(MeanRatio(rows, Engine::Lua)), verdict);
}

void PrintGrowth(std::ostream& out, const Section& section, const Rows& rows)
{
    if (section.growthLimit == 0 || rows.size() < 2)
        return;
    Results ratios;
    for (std::size_t engine = 0; engine < kEngineCount; ++engine)
        ratios[engine] = Ratio(rows[1].results[engine], rows[0].results[engine]);
    PrintLine(out, "  the second to the first", ShownIn(ratios, 1), "", "",
              Verdict(At(ratios, Engine::Ours), section.growthLimit));
}

void PrintRow(std::ostream& out, const Section& section, const Row& row)
{
    const bool isJudged = section.judged == Judged::EachRow;
    PrintLine(
        out, "  " + row.name, ShownIn(row.results, section.size),
        Shown(RatioTo(row.results, Engine::MuParser)), Shown(RatioTo(row.results, Engine::Lua)),
        isJudged ? Verdict(RatioTo(row.results, section.against), section.limit) : std::string());
}

void PrintSection(std::ostream& out, const Section& section, const Rows& rows)
{
    const bool isJudged = section.judged != Judged::Nothing;
    out << section.name << ", in " << section.unit << '\n';
    PrintLine(out, "", {"ours", "muParser", "Lua", "C++"}, "ours/muParser", "ours/Lua",
              isJudged ? std::string("against ") + NameOf(section.against) : std::string());
    for (const Row& row : rows)
        PrintRow(out, section, row);
    if (rows.size() >= kRowsWorthAMean)
        PrintMean(out, section, rows);
    PrintGrowth(out, section, rows);
    out << '\n';
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
        const Rows rows = found == m_Sections.end() ? Rows() : Measured(found->second);
        if (!rows.empty())
            PrintSection(out, section, rows);
    }
}

Row& ResultTable::RowOf(const std::string& section, const std::string& name)
{
    Rows& rows = m_Sections[section];
    const auto found =
        std::find_if(rows.begin(), rows.end(), [&](const Row& row) { return row.name == name; });
    if (found != rows.end())
        return *found;
    rows.push_back({name, {}});
    return rows.back();
}

} // namespace bench
