#include <algorithm>
#include <fstream>
#include <iostream>

#include <fmt/format.h>

#include "Columns.h"
#include "Commands.h"
#include "JsonFile.h"
#include "JsonReport.h"
#include "ProgressBar.h"
#include "TextReport.h"
#include "ValueText.h"

// batch and solve.

namespace {

constexpr std::size_t kMostCauses = 20; // that are told to people

struct BatchOptions : InputOptions {
    std::string rows;
    std::string results; // empty for the standard output
    std::vector<std::string> outputs;
    std::vector<std::string> copied;
    unsigned int threads = 0;
};

struct SolveOptions : InputOptions {
    std::string object;
    std::string variable;
    double target = 0.0;
    tovo::Range range;
};

void DescribeBatch(CLI::App& command, BatchOptions& options)
{
    DescribeJob(command, options)->required();
    command
        .add_option("ROWS", options.rows,
                    "CSV whose first line names the inputs, - for the standard input")
        ->option_text(" ")
        ->required();
    command
        .add_option("--output", options.outputs,
                    "A formula or table to write for each row; all formulas without this option")
        ->type_name("NAME")
        ->allow_extra_args(false);
    command.add_option("--copy", options.copied, "A column of the rows that is no input")
        ->type_name("COLUMN")
        ->allow_extra_args(false);
    command.add_option("--threads", options.threads, "How many calculate at once; 0 for all")
        ->type_name("COUNT");
    command.add_option("-o,--results", options.results, "The file for the results, as CSV")
        ->type_name("FILE")
        ->check(RefuseEmpty);
    DescribeSettings(command, options);
}

std::string FailureText(const tovo::BatchReport& report, std::size_t cause)
{
    const auto first = std::find_if(report.faults.begin(), report.faults.end(),
                                    [&](const auto& fault) { return fault.cause == cause; });
    const auto& [object, failure] = report.causes[cause];
    // People count rows from 1.
    return fmt::format("  row {}: {}: {} ({})\n", first->row + 1, ObjectText(object),
                       Printable(failure.text), failure.message);
}

std::string BatchText(const tovo::BatchReport& report)
{
    std::string text = fmt::format("{} rows, {} with a fault\n", report.rows, report.faultyRows);
    for (std::size_t cause = 0; cause < std::min(report.causes.size(), kMostCauses); ++cause)
        text += FailureText(report, cause);
    return text;
}

Json BatchJson(const tovo::BatchReport& report)
{
    Json causes = Json::array();
    for (const auto& [object, failure] : report.causes)
        causes.push_back({{"object", WriteReference(object)},
                          {"message", failure.message},
                          {"text", failure.text},
                          {"place", PlaceJson(failure.place)}});
    Json faults = Json::array();
    for (const auto& [row, cause] : report.faults)
        faults.push_back({{"row", row}, {"cause", cause}});
    return {{"rows", report.rows},
            {"faultyRows", report.faultyRows},
            {"causes", std::move(causes)},
            {"faults", std::move(faults)}};
}

tovo::BatchReport RunBatch(const BatchOptions& options, std::istream& rows, std::ostream& results)
{
    const tovo::Job job = ReadInput(options);
    ProgressBar bar;
    tovo::CsvBatchOptions batch;
    for (const std::string& output : options.outputs)
        batch.outputs.push_back(FindObject(job, output));
    batch.copied = options.copied;
    batch.threads = options.threads;
    batch.name = options.rows == "-" ? "standard input" : options.rows;
    batch.progress = [&](std::size_t done, std::size_t total) {
        bar.Show(done, total);
        return true;
    };
    return RunCsvBatch(job, rows, results, batch).Value();
}

// What went wrong is told on the standard output, unless the results go there.
int Batch(const BatchOptions& options, const TextManner&)
{
    if (options.job == "-" && options.rows == "-")
        throw CLI::ValidationError("ROWS", "the standard input cannot be the job and the rows");
    std::ifstream rowsFile;
    if (options.rows != "-") {
        rowsFile.open(options.rows, std::ios::binary);
        if (!rowsFile)
            throw FileFault(options.rows, "cannot be read");
    }
    std::ofstream resultsFile;
    if (!options.results.empty())
        resultsFile.open(options.results, std::ios::binary);
    if (!resultsFile)
        throw FileFault(options.results, "cannot be written");
    std::ostream& results = options.results.empty() ? std::cout : resultsFile;
    const tovo::BatchReport report =
        RunBatch(options, options.rows == "-" ? std::cin : rowsFile, results);
    if (!results.flush())
        throw FileFault(options.results.empty() ? "the results" : options.results,
                        "cannot be written");
    Print(options.isJson ? JsonText(BatchJson(report)) : BatchText(report),
          options.results.empty() ? stderr : stdout);
    return report.faultyRows == 0 ? kAllCalculated : kFaulty;
}

void DescribeSolve(CLI::App& command, SolveOptions& options)
{
    DescribeJob(command, options)->required();
    command.add_option("NAME", options.object, "The formula or table that is to have a value")
        ->option_text(" ")
        ->required();
    command.add_option("--target", options.target, "The value that it is to have")->required();
    command.add_option("--vary", options.variable, "The variable or job value to find")
        ->type_name("NAME")
        ->required();
    command.add_option("--from", options.range.low, "The lowest value to try")->required();
    command.add_option("--to", options.range.high, "The highest value to try")->required();
    DescribeSettings(command, options);
}

int SolveFor(const SolveOptions& options, const TextManner& manner)
{
    const tovo::Job job = ReadInput(options);
    const tovo::ObjectName object = FindObject(job, options.object);
    const tovo::ObjectName variable = FindObject(job, options.variable);
    const auto solution = Solve(job, object, options.target, variable, options.range);
    if (!solution && solution.Why().kind == tovo::RefusalKind::NoSolution) {
        Print(options.isJson ? JsonText({{"input", nullptr}, {"text", solution.Why().text}})
                             : "No solution: " + Printable(solution.Why().text) + "\n");
        return kFaulty;
    }
    const auto& [input, value, calculations] = solution.Value();
    if (options.isJson)
        Print(JsonText({{"input", input}, {"value", value}, {"calculations", calculations}}));
    else
        Print(fmt::format("{} = {}\n{} = {}\n", ObjectText(variable),
                          ValueText(input, false, manner.decimalSeparator), ObjectText(object),
                          ValueText(value, false, manner.decimalSeparator)));
    return kAllCalculated;
}

} // namespace

void AddTrying(CLI::App& app, int& exitCode)
{
    AddCommand(app, exitCode, "batch", "Calculate the job for each row of a CSV file",
               DescribeBatch, Batch);
    AddCommand(app, exitCode, "solve", "Find the input for which a formula has a value",
               DescribeSolve, SolveFor);
}
