#include "Measure.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iostream>

namespace bench {
namespace {

constexpr const char* kParts = "parts";

Engine EngineNamed(const std::string& name)
{
    Engine engine = Engine::Ours;
    while (name != NameOf(engine))
        engine = static_cast<Engine>(static_cast<int>(engine) + 1);
    return engine;
}

double NanosecondsOfOnePart(const benchmark::BenchmarkReporter::Run& run)
{
    const bool isRealTime = !run.run_name.time_type.empty();
    const double time = isRealTime ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime();
    const auto parts = run.counters.find(kParts);
    return parts == run.counters.end() ? time : time / parts->second.value;
}

} // namespace

void NoteParts(benchmark::State& state, std::size_t parts)
{
    state.counters[kParts] = static_cast<double>(parts);
}

void Require(bool holds, const std::string& words)
{
    if (holds)
        return;
    std::cerr << "tovo_bench: " << words << '\n';
    std::exit(1);
}

void RequireEqual(double found, double expected, const std::string& words)
{
    const double tolerance = 1e-12 * std::max(1.0, std::abs(expected));
    Require(std::abs(found - expected) <= tolerance,
            words + ": " + std::to_string(found) + " instead of " + std::to_string(expected));
}

void TableReporter::ReportRuns(const std::vector<Run>& runs)
{
    for (const Run& run : runs) {
        if (run.run_type != Run::RT_Iteration)
            continue;
        const std::string& name = run.run_name.function_name;
        const std::size_t row = name.find('/');
        const std::size_t engine = name.rfind('/');
        m_Table.Note(name.substr(0, row), name.substr(row + 1, engine - row - 1),
                     EngineNamed(name.substr(engine + 1)), NanosecondsOfOnePart(run));
    }
}

} // namespace bench
