#ifndef TOVOFORMULA_BENCH_MEASURE_H
#define TOVOFORMULA_BENCH_MEASURE_H

#include <benchmark/benchmark.h>

#include <array>
#include <memory>
#include <string>
#include <utility>

#include "ResultTable.h"

namespace bench {

// Each registers its measurements, after it has held the values of the engines against each other.
void RegisterExpressions(ResultTable& table);
void RegisterNets(ResultTable& table);
void RegisterLookups(ResultTable& table);
void RegisterLoading(ResultTable& table);
void RegisterJobs(ResultTable& table);
// Measured in time as it passes, since several threads share it, where the section compares those.
void RegisterBatches(ResultTable& table);
// Measures at once, as bytes do not vary.
void NoteStack(ResultTable& table);

// The body takes a benchmark::State and loops over it. A body that does its work on several things
// in each turn says how many with NoteParts, and the table then shows the time for one of them.
template <typename Body>
benchmark::internal::Benchmark* Register(ResultTable& table, const std::string& section,
                                         const std::string& row, Engine engine, Body body)
{
    table.Name(section, row);
    const std::string name = section + "/" + row + "/" + NameOf(engine);
    return benchmark::RegisterBenchmark(name.c_str(), std::move(body));
}
void NoteParts(benchmark::State& state, std::size_t parts);

// Ends the program with the words if a condition does not hold, or if two values are not equal but
// for the last bits.
void Require(bool holds, const std::string& words);
void RequireEqual(double found, double expected, const std::string& words);

// Registers a step that is repeated, after two of them have returned the values expected.
template <auto step, typename Work>
void RegisterStep(ResultTable& table, const std::string& section, const std::string& row,
                  Engine engine, const std::shared_ptr<Work>& work,
                  const std::array<double, 2>& expected)
{
    for (const double value : expected)
        RequireEqual(((*work).*step)(), value, section + ", " + row + ", " + NameOf(engine));
    Register(table, section, row, engine, [work](benchmark::State& state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(((*work).*step)());
    });
}

// Hands what was measured on to the table.
class TableReporter : public benchmark::BenchmarkReporter {
public:
    explicit TableReporter(ResultTable& table) : m_Table(table) {}

    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override;

private:
    ResultTable& m_Table;
};

} // namespace bench

#endif
