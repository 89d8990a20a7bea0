#ifndef TOVOFORMULA_BENCH_RESULTTABLE_H
#define TOVOFORMULA_BENCH_RESULTTABLE_H

#include <array>
#include <iosfwd>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace bench {

// Who does the same work: this library, muParser, Lua, LuaJIT, and C++ written by hand as the
// limit. Where ours is measured with the objects of a host, the stock objects stand beside it.
enum class Engine { Ours, Stock, MuParser, Lua, LuaJit, ByHand };
inline constexpr std::size_t kEngineCount = 6;
const char* NameOf(Engine engine);

// The sections of the table.
inline constexpr const char* kTextToValue = "text to value";
inline constexpr const char* kStoredToValue = "text to value, from the stored form";
inline constexpr const char* kAgain = "again, after a variable changed";
inline constexpr const char* kAgainStockLookup = "again, derived set with stock lookup";
inline constexpr const char* kAgainHostSet = "again, derived set with names of its own";
inline constexpr const char* kAgainHostVariables = "again, derived variables";
inline constexpr const char* kNet = "net of 1,000 formulas";
inline constexpr const char* kLastLayerInPass = "net of 1,000, last layer one by one, held pass";
inline constexpr const char* kLastLayer = "net of 1,000, last layer one by one, no pass held";
inline constexpr const char* kNetHostSet = "net of 1,000, derived set";
inline constexpr const char* kNetHostVariables = "net of 1,000, derived variables";
inline constexpr const char* kNetHostFormulas = "net of 1,000, derived formulas";
inline constexpr const char* kNetCounting = "net of 1,000, derived formulas that count";
inline constexpr const char* kLookup = "lookup in a table";
inline constexpr const char* kLoading = "loading 10,000 formulas, each";
inline constexpr const char* kMemory = "memory of a loaded formula";
inline constexpr const char* kStack = "stack of a call for a chain of 1,000 formulas";
inline constexpr const char* kJob = "a job read and calculated, each formula";
inline constexpr const char* kJobFirst = "the first calculation alone, each formula";
inline constexpr const char* kJobAgain = "everything in it calculated again, each formula";
inline constexpr const char* kBatch = "a row of a million of the example job";
inline constexpr const char* kBatchThreads = "the same on several threads";
inline constexpr const char* kLongSum = "a long sum, each token";

// One for each engine, empty where it was not measured.
using Results = std::array<std::optional<double>, kEngineCount>;

struct Row {
    std::string name;
    Results results;
};
using Rows = std::vector<Row>;

// What was measured, printed as one table with ratios and with what is aimed at. A row stands in
// the section of its name, in the order in which rows are first named. Values are nanoseconds or
// bytes; of several for one place the least is kept, since noise only adds.
class ResultTable {
public:
    // Gives the row its place in the table.
    void Name(const std::string& section, const std::string& row);
    void Note(const std::string& section, const std::string& row, Engine engine, double value);
    void Print(std::ostream& out) const;

private:
    Row& RowOf(const std::string& section, const std::string& name);
    Rows RowsOf(const char* section) const;

    std::map<std::string, Rows> m_Sections;
};

} // namespace bench

#endif
