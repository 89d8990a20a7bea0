#include "Input.h"

#include <array>
#include <charconv>
#include <cmath>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <utility>

#include <JsonFile.h>
#include <fmt/format.h>

namespace {

constexpr std::array kKinds = {tovo::Kind::Variable, tovo::Kind::Formula, tovo::Kind::Table};

struct Setting {
    std::string name;
    double value = 0.0;
};

// With "." whatever the user's separators are, so that a script works for every user.
double ParseValue(const std::string& name, std::string_view text)
{
    if (tovo::IsYesNoName(name)) {
        if (text != "yes" && text != "no")
            throw CLI::ValidationError("--set",
                                       fmt::format("{} takes yes or no, not {}", name, text));
        return text == "yes" ? 1.0 : 0.0;
    }
    double value = 0.0;
    const char* const textEnd = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), textEnd, value);
    if (error != std::errc() || end != textEnd || !std::isfinite(value))
        throw CLI::ValidationError("--set", fmt::format("{} takes a number, not {}", name, text));
    return value;
}

// A name may hold an equals sign and a value never does, so the last one parts them.
Setting ParseSetting(const std::string& text)
{
    const std::size_t equals = text.rfind('=');
    if (equals == std::string::npos || equals == 0)
        throw CLI::ValidationError("--set", text + " is not NAME=VALUE");
    const std::string name = text.substr(0, equals);
    return {name, ParseValue(name, std::string_view(text).substr(equals + 1))};
}

// The one of that name; null for another name.
double* FindJobValue(tovo::JobValues& values, std::string_view name)
{
    if (name == "DURATION")
        return &values.duration;
    if (name == "JOBSIZE")
        return &values.jobSize;
    return name == "QUANTITY" ? &values.quantity : nullptr;
}

std::string ReadStandardInput()
{
    std::string text(std::istreambuf_iterator<char>(std::cin), {});
    if (std::cin.bad())
        throw FileFault("standard input", "cannot be read");
    return text;
}

tovo::Job ReadUnset(const InputOptions& options)
{
    const bool isStandardInput = options.job == "-";
    return tovo::ReadJob(isStandardInput ? ReadStandardInput() : ReadWhole(options.job),
                         isStandardInput ? "standard input" : options.job, options.judging)
        .Value();
}

} // namespace

std::string RefuseEmpty(const std::string& value)
{
    return value.empty() ? "must not be empty" : "";
}

CLI::Option* DescribeJob(CLI::App& command, InputOptions& options)
{
    return command.add_option("JOB", options.job, "The job file (JSON), - for the standard input")
        ->option_text(" ")
        ->check(RefuseEmpty);
}

void DescribeSettings(CLI::App& command, InputOptions& options)
{
    command
        .add_option("--set", options.settings,
                    "Give a variable a value, or DURATION, JOBSIZE or QUANTITY; a name that ends "
                    "in ? takes yes or no")
        ->type_name("NAME=VALUE")
        // One value for each --set: what follows may be the job file.
        ->allow_extra_args(false);
}

void DescribeInput(CLI::App& command, InputOptions& options)
{
    command.add_flag("--json", options.isJson, "Print the same facts as JSON");
    tovo::JobOptions& judging = options.judging;
    command.add_flag_callback(
        "--lenient-domains", [&judging] { judging.domainErrorsAreFaults = false; },
        "Count a division by zero, the root of a negative number and their like as 0");
    command.add_flag_callback(
        "--undefined-as-zero", [&judging] { judging.undefinedVariablesAreFaults = false; },
        "Count a variable that nobody defines as 0");
    command
        .add_option("--language", options.language.file, "Names of the words in another language")
        ->type_name("FILE")
        ->check(RefuseEmpty);
    command
        .add_option("--decimal", options.language.decimal,
                    "The decimal separator, as in --decimal ,")
        ->type_name("MARK")
        ->check(RefuseEmpty);
    command
        .add_option("--list", options.language.list,
                    "The separator of arguments; a semicolon if the decimal separator is a comma")
        ->type_name("MARK")
        ->check(RefuseEmpty);
}

tovo::Job ReadInput(const InputOptions& options)
{
    const bool isAlone = options.job.empty();
    tovo::Job job = isAlone ? tovo::Job(options.judging) : ReadUnset(options);
    ApplySettings(job, options.settings, isAlone);
    return job;
}

tovo::JobFile OpenInput(const InputOptions& options)
{
    if (options.job != "-")
        return tovo::JobFile::Open(options.job, options.judging).Value();
    tovo::JobFile file(options.job, options.judging);
    file.Content() = ReadUnset(options);
    return file;
}

void ApplySettings(tovo::Job& job, const std::vector<std::string>& settings, bool areNew)
{
    for (const std::string& text : settings) {
        const Setting setting = ParseSetting(text);
        tovo::JobValues values = job.Values();
        if (double* const jobValue = FindJobValue(values, setting.name)) {
            *jobValue = setting.value;
            job.SetJobValues(values).Value();
        } else if (areNew && !job.FindVariable(setting.name)) {
            job.AddVariable(setting.name, setting.value).Value();
        } else {
            job.SetValue(setting.name, setting.value).Value();
        }
    }
}

tovo::ObjectName FindObject(const tovo::Job& job, const std::string& name)
{
    std::vector<tovo::ObjectName> found;
    for (const tovo::Kind kind : kKinds)
        if (tovo::ObjectName object{kind, name}; job.Has(object))
            found.push_back(std::move(object));
    if (found.size() == 1)
        return found.front();
    if (found.size() > 1)
        throw std::invalid_argument(fmt::format(
            "{} is the name of a {} and a {}; write {} or {}", name, WordFor(found[0].kind),
            WordFor(found[1].kind), WriteReference(found[0]), WriteReference(found[1])));
    if (const auto reference = tovo::ReadReference(name); reference && job.Has(*reference))
        return *reference;
    tovo::JobValues values;
    if (FindJobValue(values, name))
        return {tovo::Kind::JobValue, name};
    throw std::invalid_argument(fmt::format("the job has no \"{}\"", name));
}
