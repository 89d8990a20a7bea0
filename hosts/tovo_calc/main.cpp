#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <system_error>

#include <fmt/core.h>
#include <unistd.h>

#include <TovoFormula/Module.h>

#include "Calculation.h"
#include "Columns.h"
#include "Job.h"
#include "JobFile.h"
#include "JsonFile.h"
#include "JsonReport.h"
#include "Language.h"
#include "Options.h"
#include "Rewrite.h"
#include "RtfReport.h"
#include "TextReport.h"

namespace {

// What the command line says goes before what the file says.
JobEntries EntriesOf(const Options& options)
{
    if (options.expression)
        return JobOfExpression(*options.expression, options.settings);
    JobEntries entries = ReadJobFile(options.jobFile);
    ApplySettings(entries, options.settings);
    return entries;
}

std::string ReportOn(const Facts& facts, const Options& options, const TextManner& manner)
{
    if (options.expression)
        return options.isJson ? ExpressionJsonReport(facts) : ExpressionTextReport(facts, manner);
    return options.isJson ? JsonReport(facts) : TextReport(facts, manner);
}

// NO_COLOR counts whatever its value is.
bool WantsColour()
{
    return isatty(STDOUT_FILENO) != 0 && !std::getenv("NO_COLOR");
}

void Print(const std::string& text)
{
    fmt::print("{}", text);
    // A full disk shows only here, and a script must not take half a report for a whole one.
    if (std::fflush(stdout) != 0)
        throw std::system_error(errno, std::generic_category(), "the report cannot be written");
}

void WriteFile(const std::string& path, const std::string& content)
{
    std::ofstream stream(path, std::ios::binary);
    stream << content;
    stream.close();
    if (!stream)
        throw FileFault(path, "cannot be written");
}

int Rewrite(const Options& options)
{
    const Rewritten rewritten = RewriteJob(options);
    Print(rewritten.file);
    fmt::print(stderr, "{}", rewritten.summary);
    return kAllCalculated;
}

int Run(const Options& options)
{
    InitTovoFormulaDLL(0);
    // The language comes before the job: the job's texts are brought into it as they are read.
    const LanguageInForce language(LanguageOf(options.language));
    if (options.renaming || options.removal)
        return Rewrite(options);
    Job job(EntriesOf(options), options.isStrict);
    const Facts facts = CalculateJob(job, options.isStaticScan);
    // A file that cannot be written fails the whole run, so it comes before anything is printed.
    if (!options.rtfFile.empty())
        WriteFile(options.rtfFile, RtfReport(job));
    const TextManner manner{language.DecimalSeparator(), WantsColour()};
    Print(ReportOn(facts, options, manner));
    return HasFault(facts) ? kCalculationFailed : kAllCalculated;
}

} // namespace

int main(int argc, char** argv)
{
    try {
        Options options;
        if (const std::optional<int> end = ReadCommandLine(argc, argv, options))
            return *end;
        return Run(options);
    } catch (const std::exception& fault) {
        fmt::print(stderr, "tovo-calc: {}\n", Printable(std::string_view(fault.what())));
        return kNothingCalculated;
    }
}
