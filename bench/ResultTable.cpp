#include "ResultTable.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <iterator>
#include <ostream>
#include <span>
#include <sstream>

namespace bench {
namespace {

constexpr const char* kEngineNames[] = {"ours", "stock", "muParser", "Lua", "LuaJIT", "C++"};
static_assert(std::size(kEngineNames) == kEngineCount);

constexpr int kNameWidth = 29;
constexpr int kColumnWidth = 9;
constexpr int kRatioWidth = 13;

// Fewer are better looked at one by one.
constexpr std::size_t kRowsWorthAMean = 4;

constexpr Engine kAll[] = {Engine::Ours, Engine::MuParser, Engine::Lua, Engine::LuaJit,
                           Engine::ByHand};
constexpr Engine kEngines[] = {Engine::Ours, Engine::MuParser, Engine::Lua, Engine::LuaJit};
constexpr Engine kOnTheHeap[] = {Engine::Ours, Engine::MuParser, Engine::Lua};
constexpr Engine kToLua[] = {Engine::Ours, Engine::Lua, Engine::LuaJit};
constexpr Engine kToStock[] = {Engine::Ours, Engine::Stock};
constexpr Engine kToMuParser[] = {Engine::Ours, Engine::MuParser};
constexpr Engine kCallingByHand[] = {Engine::Ours, Engine::MuParser, Engine::ByHand};
constexpr Engine kOurs[] = {Engine::Ours};

enum class Judged { Nothing, EachRow, LastRow, Mean };

// The highest value that we may take: times that of another engine, or in the unit of the section
// if there is none.
struct Bar {
    Judged judged;
    std::optional<Engine> against;
    double limit;
};
constexpr Bar kNoBar = {Judged::Nothing, std::nullopt, 0};

// How a section is shown, and what is aimed at. Figures that its rows lack come from the rows of
// the same names in the base, where ours is what the stock objects take.
struct Section {
    const char* name;
    const char* unit;
    double size; // of the unit, in what is measured
    std::span<const Engine> columns;
    Bar bar;
    double growthLimit; // how many times the first row our second may take; 0 for no such bar
    const char* base;   // null for none
};

// clang-format off
constexpr Section kSections[] = {
    // name               unit     size  columns         bar                                       growth  base
    {kTextToValue,        "µs",    1e3,  kEngines,       {Judged::EachRow, Engine::Lua, 1.0},      0,      nullptr},
    {kStoredToValue,      "µs",    1e3,  kEngines,       {Judged::EachRow, Engine::Lua, 1.0},      0,      kTextToValue},
    {kAgain,              "ns",    1,    kAll,           {Judged::Mean, Engine::MuParser, 2.0},    0,      nullptr},
    {kAgainStockLookup,   "ns",    1,    kToStock,       {Judged::Mean, Engine::Stock, 1.3},       0,      kAgain},
    {kAgainHostSet,       "ns",    1,    kToStock,       {Judged::Mean, Engine::Stock, 2.5},       0,      kAgain},
    {kAgainHostVariables, "ns",    1,    kToStock,       {Judged::Mean, Engine::Stock, 1.5},       0,      kAgain},
    {kNet,                "µs",    1e3,  kAll,           {Judged::EachRow, Engine::MuParser, 2.0}, 1.5,    nullptr},
    {kLastLayerInPass,    "µs",    1e3,  kToMuParser,    {Judged::EachRow, Engine::MuParser, 2.5}, 0,      nullptr},
    {kLastLayer,          "µs",    1e3,  kToMuParser,    {Judged::EachRow, Engine::MuParser, 150}, 0,      kLastLayerInPass},
    {kNetHostSet,         "µs",    1e3,  kToStock,       {Judged::EachRow, Engine::Stock, 3.0},    0,      kNet},
    {kNetHostVariables,   "µs",    1e3,  kToStock,       {Judged::EachRow, Engine::Stock, 3.0},    0,      kNet},
    {kNetHostFormulas,    "µs",    1e3,  kToStock,       {Judged::EachRow, Engine::Stock, 3.0},    0,      kNet},
    {kNetCounting,        "µs",    1e3,  kToStock,       {Judged::EachRow, Engine::Stock, 3.0},    0,      kNet},
    {kLookup,             "ns",    1,    kCallingByHand, {Judged::EachRow, Engine::MuParser, 2.0}, 0,      nullptr},
    {kLoading,            "µs",    1e3,  kEngines,       {Judged::EachRow, Engine::Lua, 1.0},      0,      nullptr},
    {kMemory,             "bytes", 1,    kOnTheHeap,     {Judged::LastRow, std::nullopt, 1200},    0,      nullptr},
    {kStack,              "KiB",   1024, kOurs,          {Judged::EachRow, std::nullopt, 512},     0,      nullptr},
    {kJob,                "µs",    1e3,  kToStock,       {Judged::EachRow, Engine::Stock, 3.0},    0,      nullptr},
    {kJobFirst,           "µs",    1e3,  kOurs,          kNoBar,                                   2.0,    nullptr},
    {kJobAgain,           "ns",    1,    kToStock,       kNoBar,                                   2.0,    nullptr},
    {kBatch,              "ns",    1,    kToLua,         {Judged::EachRow, Engine::Lua, 1.0 / 3},  0,      nullptr},
    {kBatchThreads,       "ns",    1,    kOurs,          kNoBar,                                   1 / 1.7, nullptr},
    {kLongSum,            "ns",    1,    kOurs,          kNoBar,                                   1.5,    nullptr},
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

// The engines that our figures are divided by, column by column.
std::vector<Engine> ComparedIn(const Section& section)
{
    std::vector<Engine> engines;
    std::copy_if(section.columns.begin(), section.columns.end(), std::back_inserter(engines),
                 [](Engine engine) { return engine != Engine::Ours && engine != Engine::ByHand; });
    return engines;
}

std::string Verdict(Value value, double limit)
{
    if (!value)
        return "";
    return "<= " + Shown(limit) + (*value <= limit ? "  met" : "  missed");
}

std::string VerdictOnRow(const Section& section, const Results& results)
{
    const Bar& bar = section.bar;
    return Verdict(bar.against ? RatioTo(results, *bar.against)
                               : Ratio(At(results, Engine::Ours), section.size),
                   bar.limit);
}

std::string BarHeading(const Bar& bar)
{
    if (bar.judged == Judged::Nothing)
        return "";
    return bar.against ? std::string("against ") + NameOf(*bar.against) : "limit";
}

using Texts = std::vector<std::string>;

void PrintLine(std::ostream& out, const std::string& name, const Texts& values, const Texts& ratios,
               const std::string& verdict)
{
    out << std::left << std::setw(kNameWidth) << name << std::right;
    for (const std::string& value : values)
        out << std::setw(kColumnWidth) << value;
    for (const std::string& ratio : ratios)
        out << std::setw(kRatioWidth) << ratio;
    if (!verdict.empty())
        out << "  " << verdict;
    out << '\n';
}

template <typename Text>
Texts ForEach(std::span<const Engine> engines, Text text)
{
    Texts texts;
    std::transform(engines.begin(), engines.end(), std::back_inserter(texts), text);
    return texts;
}

Texts ShownIn(const Section& section, const Results& results, double unit)
{
    return ForEach(section.columns,
                   [&](Engine engine) { return Shown(Ratio(At(results, engine), unit)); });
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

void PrintHeading(std::ostream& out, const Section& section)
{
    out << section.name << ", in " << section.unit << '\n';
    PrintLine(out, "", ForEach(section.columns, NameOf),
              ForEach(ComparedIn(section),
                      [](Engine engine) { return std::string("to ") + NameOf(engine); }),
              BarHeading(section.bar));
}

void PrintRow(std::ostream& out, const Section& section, const Row& row, bool isJudged)
{
    PrintLine(out, "  " + row.name, ShownIn(section, row.results, section.size),
              ForEach(ComparedIn(section),
                      [&](Engine engine) { return Shown(RatioTo(row.results, engine)); }),
              isJudged ? VerdictOnRow(section, row.results) : "");
}

void PrintMean(std::ostream& out, const Section& section, const Rows& rows)
{
    const Bar& bar = section.bar;
    PrintLine(
        out, "  geometric mean", Texts(section.columns.size()),
        ForEach(ComparedIn(section), [&](Engine engine) { return Shown(MeanRatio(rows, engine)); }),
        bar.judged == Judged::Mean ? Verdict(MeanRatio(rows, *bar.against), bar.limit) : "");
}

void PrintGrowth(std::ostream& out, const Section& section, const Rows& rows)
{
    Results ratios;
    for (std::size_t engine = 0; engine < kEngineCount; ++engine)
        ratios[engine] = Ratio(rows[1].results[engine], rows[0].results[engine]);
    PrintLine(out, "  the second to the first", ShownIn(section, ratios, 1),
              Texts(ComparedIn(section).size()),
              Verdict(At(ratios, Engine::Ours), section.growthLimit));
}

void PrintSection(std::ostream& out, const Section& section, const Rows& rows)
{
    PrintHeading(out, section);
    for (const Row& row : rows) {
        const bool isLast = &row == &rows.back();
        const Judged judged = section.bar.judged;
        PrintRow(out, section, row,
                 judged == Judged::EachRow || (judged == Judged::LastRow && isLast));
    }
    if (rows.size() >= kRowsWorthAMean)
        PrintMean(out, section, rows);
    if (section.growthLimit != 0 && rows.size() > 1)
        PrintGrowth(out, section, rows);
    out << '\n';
}

// Completes the rows of a section with what the base has in its rows of the same names.
void TakeOver(Rows& rows, const Rows& base)
{
    for (Row& row : rows) {
        const auto found = std::find_if(base.begin(), base.end(), [&](const Row& candidate) {
            return candidate.name == row.name;
        });
        if (found == base.end())
            continue;
        Results completed = found->results;
        At(completed, Engine::Stock) = At(found->results, Engine::Ours);
        for (std::size_t engine = 0; engine < kEngineCount; ++engine)
            row.results[engine] = row.results[engine] ? row.results[engine] : completed[engine];
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
        Rows rows = RowsOf(section.name);
        if (rows.empty())
            continue;
        if (section.base)
            TakeOver(rows, RowsOf(section.base));
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

Rows ResultTable::RowsOf(const char* section) const
{
    const auto found = m_Sections.find(section);
    return found == m_Sections.end() ? Rows() : Measured(found->second);
}

} // namespace bench
