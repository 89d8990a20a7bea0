#include <iostream>
#include <vector>

#include "Measure.h"

// Prints how fast the library is beside other engines. Takes the options of Google Benchmark.
int main(int argc, char** argv)
{
    // What the caller gives comes last and wins. Several short measurements, spread over the whole
    // run, find a quiet moment on a busy machine where one long one would not.
    char repetitions[] = "--benchmark_repetitions=5";
    char time[] = "--benchmark_min_time=0.03";
    char spread[] = "--benchmark_enable_random_interleaving=true";
    std::vector<char*> arguments = {argv[0], repetitions, time, spread};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 1;

    bench::ResultTable table;
    bench::RegisterExpressions(table);
    bench::RegisterNets(table);
    bench::RegisterLookups(table);
    bench::RegisterLoading(table);
    bench::RegisterJobs(table);
    bench::RegisterBatches(table);
    bench::NoteStack(table);
    bench::TableReporter reporter(table);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    table.Print(std::cout);
    return 0;
}
