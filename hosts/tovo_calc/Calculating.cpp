#include <algorithm>
#include <fstream>

#include <fmt/format.h>

#include <TovoFormula/MessageIds.h>

#include "Columns.h"
#include "Commands.h"
#include "JsonFile.h"
#include "JsonReport.h"
#include "RtfReport.h"
#include "TextReport.h"
#include "ValueText.h"

// calc and check.

namespace {

struct CalcOptions : InputOptions {
    std::string expression;
    CLI::Option* expressionOption = nullptr; // an empty expression is one as well
    std::string rtfFile;                     // empty for none
};

void WriteFile(const std::string& path, const std::string& content)
{
    std::ofstream stream(path, std::ios::binary);
    stream << content;
    stream.close();
    if (!stream)
        throw FileFault(path, "cannot be written");
}

// A formula's name decides on the kind of its value, which an expression does not say: of the two
// names the one is taken whose kind fits.
tovo::ObjectName AddExpression(tovo::Job& job, const std::string& expression)
{
    const tovo::ObjectName number = tovo::FormulaNamed("(expression)");
    const tovo::ObjectName yesNo = tovo::FormulaNamed("(expression)?");
    job.AddFormula(number.name, expression).Value();
    job.Update();
    const std::vector<tovo::Fault> faults = job.Faults();
    if (std::none_of(faults.begin(), faults.end(), [&](const tovo::Fault& fault) {
            return fault.object == number && fault.message == MSG_WRONG_RESULT_TYPE;
        }))
        return number;
    job.Remove(number).Value();
    job.AddFormula(yesNo.name, expression).Value();
    job.Update();
    return yesNo;
}

// The fault by which an object fails: its own, or that of another that it depends on.
std::vector<tovo::Fault> FaultsOf(const tovo::Job& job, const tovo::ObjectName& object)
{
    std::vector<tovo::Fault> faults = job.Faults();
    std::erase_if(faults, [&](const tovo::Fault& fault) {
        return fault.object != object && std::find(fault.affected.begin(), fault.affected.end(),
                                                   object) == fault.affected.end();
    });
    return faults;
}

int CalculateExpression(const CalcOptions& options, const TextManner& manner)
{
    tovo::Job job = ReadInput(options);
    const tovo::ObjectName name = AddExpression(job, options.expression);
    if (!options.rtfFile.empty())
        WriteFile(options.rtfFile, RtfReport(options.expression));

    const std::optional<double> value = job.ValueOf(name);
    const bool isYesNo = tovo::IsYesNoName(name.name);
    const std::vector<tovo::Fault> faults =
        value ? std::vector<tovo::Fault>() : FaultsOf(job, name);
    const std::string text = job.TextOf(name);
    if (options.isJson)
        Print(JsonText({{"text", text},
                        {"value", ValueJson(value, isYesNo)},
                        {"faults", FaultsJson(job, faults)}}));
    else if (value)
        Print(fmt::format("{} = {}\n", Trimmed(Printable(text)),
                          ValueText(*value, isYesNo, manner.decimalSeparator)));
    else
        Print(FaultsText(job, faults, manner));
    return value ? kAllCalculated : kFaulty;
}

void DescribeCalc(CLI::App& command, CalcOptions& options)
{
    DescribeJob(command, options);
    options.expressionOption =
        command
            .add_option(
                "-e,--expression", options.expression,
                "Calculate this one expression, references as V(name), over the job or alone")
            ->option_text("EXPRESSION");
    DescribeSettings(command, options);
    command
        .add_option("--rtf", options.rtfFile, "Write the formulas to this file too, as rich text")
        ->type_name("FILE")
        ->check(RefuseEmpty);
}

int Calculate(const CalcOptions& options, const TextManner& manner)
{
    if (options.expressionOption->count() > 0)
        return CalculateExpression(options, manner);
    if (options.job.empty())
        throw CLI::RequiredError("a job file or an expression");
    tovo::Job job = ReadInput(options);
    const tovo::Report report = job.Calculate();
    // A file that cannot be written fails the whole run, so it comes before anything is printed.
    if (!options.rtfFile.empty())
        WriteFile(options.rtfFile, RtfReport(job));
    Print(options.isJson ? JsonText(ReportJson(job, report)) : ReportText(job, report, manner));
    return report.faults.empty() ? kAllCalculated : kFaulty;
}

void DescribeCheck(CLI::App& command, InputOptions& options)
{
    DescribeJob(command, options)->required();
    DescribeSettings(command, options);
}

int Check(const InputOptions& options, const TextManner& manner)
{
    tovo::Job job = ReadInput(options);
    job.Update();
    const std::vector<tovo::Fault> faults = job.Faults();
    if (options.isJson)
        Print(JsonText({{"faults", FaultsJson(job, faults)}}));
    else
        Print(faults.empty() ? "No faults.\n" : FaultsText(job, faults, manner));
    return faults.empty() ? kAllCalculated : kFaulty;
}

} // namespace

void AddCalculating(CLI::App& app, int& exitCode)
{
    AddCommand(app, exitCode, "calc", "Calculate a job, or one expression (the default)",
               DescribeCalc, Calculate);
    AddCommand(app, exitCode, "check", "List the faults of a job with their causes", DescribeCheck,
               Check);
}
