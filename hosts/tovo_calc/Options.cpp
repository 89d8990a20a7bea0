#include "Options.h"

#include <CLI/CLI.hpp>

#include "JobFile.h"

namespace {

constexpr const char* kExamples = R"(Examples:
  tovo-calc house-slab.json
  tovo-calc house-slab.json --set "Winter work?=yes" --set QUANTITY=5
  tovo-calc -e 'V(Length)*V(Width)' --set Length=12.5 --set Width=8.4
  tovo-calc house-slab.json --language house-slab.de.json
  tovo-calc house-slab.json --rename "Slab area=Floor area" > renamed.json

Exit codes: 0 all calculated, 1 a calculation failed, 2 nothing was calculated because of the
command line or a file.)";

double ParseValue(const CString& name, const std::string& text)
{
    if (IsYesNoName(name)) {
        if (text != "yes" && text != "no")
            throw CLI::ValidationError("--set", name.ToUtf8() + " takes yes or no, not " + text);
        return text == "yes" ? 1.0 : 0.0;
    }
    // With "." under any separators, so that a script works for every user.
    const std::optional<double> value = ParseNumber(text);
    if (!value)
        throw CLI::ValidationError("--set", name.ToUtf8() + " takes a number, not " + text);
    return *value;
}

// A name may hold an equals sign and a value never does, so the last one parts them.
Setting ParseSetting(const std::string& text)
{
    const std::size_t equals = text.rfind('=');
    if (equals == std::string::npos || equals == 0)
        throw CLI::ValidationError("--set", text + " is not NAME=VALUE");
    const CString name(std::string_view(text).substr(0, equals));
    return {name, ParseValue(name, text.substr(equals + 1))};
}

void DescribeJob(CLI::App& app, Options& options, std::string& expression,
                 std::vector<std::string>& settings)
{
    auto* const job = app.add_option("JOB", options.jobFile, "The job file (JSON) to calculate")
                          ->option_text(" ");
    app.add_option("-e,--expression", expression,
                   "Calculate this one expression, references as V(name), in place of a job")
        ->option_text("EXPRESSION")
        ->excludes(job);
    app.add_option("--set", settings,
                   "Give a variable a value, or DURATION, JOBSIZE or QUANTITY; a name that ends "
                   "in ? takes yes or no")
        ->type_name("NAME=VALUE")
        // One value for each --set: what follows may be the job file.
        ->allow_extra_args(false);
}

// Without this an empty value would count as an option that is not there.
std::string RefuseEmpty(const std::string& value)
{
    return value.empty() ? "must not be empty" : "";
}

void DescribeManner(CLI::App& app, Options& options)
{
    app.add_flag("--strict", options.isStrict,
                 "Report what a function or a division cannot do, in place of going on with 0");
    app.add_flag("--static", options.isStaticScan,
                 "Tell what the texts refer to, in place of what the calculation reads");
    app.add_option("--language", options.language.file, "Names of the words in another language")
        ->type_name("FILE")
        ->check(RefuseEmpty);
    app.add_option("--decimal", options.language.decimal,
                   "The decimal separator, as in --decimal ,")
        ->type_name("MARK")
        ->check(RefuseEmpty);
    app.add_option("--list", options.language.list,
                   "The separator of arguments; a semicolon if the decimal separator is a comma")
        ->type_name("MARK")
        ->check(RefuseEmpty);
    app.add_flag("--json", options.isJson, "Print the same facts as JSON");
    app.add_option("--rtf", options.rtfFile, "Write the formulas to this file too, as rich text")
        ->type_name("FILE")
        ->check(RefuseEmpty);
}

// These print a job file in place of calculating it.
void DescribeRewriting(CLI::App& app, Options& options)
{
    auto* const renaming =
        app.add_option("--rename", options.renaming,
                       "Print the job with a formula renamed wherever it is named")
            ->type_name("OLD=NEW");
    auto* const removal = app.add_option("--remove", options.removal,
                                         "Print the job with a formula taken out of all others")
                              ->type_name("NAME")
                              ->excludes(renaming);
    for (auto* const rewriting : {renaming, removal})
        for (const char* other : {"--expression", "--set", "--json", "--static", "--rtf"})
            rewriting->excludes(app.get_option(other));
}

} // namespace

std::optional<int> ReadCommandLine(int argc, char** argv, Options& options)
{
    CLI::App app("Calculates a job of variables, formulas and tables, or one expression.",
                 "tovo-calc");
    app.footer(kExamples);
    std::string expression;
    std::vector<std::string> settings;
    DescribeJob(app, options, expression, settings);
    DescribeManner(app, options);
    DescribeRewriting(app, options);
    try {
        app.parse(argc, argv);
        // An empty expression is one as well: it has a fault of its own.
        if (app.count("-e") > 0)
            options.expression = expression;
        if (options.jobFile.empty() && !options.expression)
            throw CLI::RequiredError("a job file or an expression");
        for (const std::string& setting : settings)
            options.settings.push_back(ParseSetting(setting));
    } catch (const CLI::ParseError& end) {
        // The parser's own exit codes tell kinds of usage errors apart, which no caller asks for.
        return app.exit(end) == 0 ? kAllCalculated : kNothingCalculated;
    }
    return std::nullopt;
}
