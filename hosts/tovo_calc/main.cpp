#include <algorithm>
#include <exception>
#include <string_view>
#include <vector>

#include <fmt/core.h>

#include <TovoFormula/Module.h>

#include "Columns.h"
#include "Commands.h"

namespace {

constexpr const char* kExamples = R"(Examples:
  tovo-calc house-slab.json
  tovo-calc house-slab.json --set "Winter work?=yes" --set QUANTITY=5
  tovo-calc -e 'V(Length)*V(Width)' --set Length=12.5 --set Width=8.4
  tovo-calc check house-slab.json
  tovo-calc explain house-slab.json "Concrete rate"
  tovo-calc graph house-slab.json | dot -Tsvg > graph.svg
  tovo-calc batch house-slab.json rows.csv --output "Job price" > prices.csv
  tovo-calc solve house-slab.json "Slab area" --target 120 --vary Length --from 5 --to 20
  tovo-calc rename house-slab.json "Slab area" "Floor area" > renamed.json

A job whose file is called like a subcommand is written as ./calc.

Exit codes: 0 all calculated, 1 something is a fault, 2 nothing was done because of the command line
or a file.)";

// The arguments in the order in which the parser takes them from the end. Without a subcommand they
// are those of calc.
std::vector<std::string> ReversedArguments(const CLI::App& app, int argc, char** argv)
{
    std::vector<std::string> arguments(argv + 1, argv + argc);
    constexpr std::string_view kOwn[] = {"-h", "--help", "--version"};
    const auto isFirst = [&](const std::string_view name) { return arguments.front() == name; };
    const auto subcommands = app.get_subcommands({});
    const bool isOwn =
        !arguments.empty() &&
        (std::any_of(std::begin(kOwn), std::end(kOwn), isFirst) ||
         std::any_of(subcommands.begin(), subcommands.end(),
                     [&](const CLI::App* command) { return isFirst(command->get_name()); }));
    if (!isOwn)
        arguments.insert(arguments.begin(), "calc");
    std::reverse(arguments.begin(), arguments.end());
    return arguments;
}

int Run(int argc, char** argv)
{
    InitTovoFormulaDLL(0);
    int exitCode = kNothingDone;
    CLI::App app(
        "Calculates jobs of variables, formulas and tables, and answers what one asks about "
        "them.",
        "tovo-calc");
    app.footer(kExamples);
    app.set_version_flag("--version", "tovo-calc " TOVO_VERSION);
    app.require_subcommand(1);
    AddCalculating(app, exitCode);
    AddAsking(app, exitCode);
    AddEditing(app, exitCode);
    AddTrying(app, exitCode);
    try {
        app.parse(ReversedArguments(app, argc, argv));
    } catch (const CLI::ParseError& end) {
        // The parser's own exit codes tell kinds of usage errors apart, which no caller asks for.
        return app.exit(end) == 0 ? kAllCalculated : kNothingDone;
    }
    return exitCode;
}

} // namespace

int main(int argc, char** argv)
{
    try {
        return Run(argc, argv);
    } catch (const std::exception& fault) {
        fmt::print(stderr, "tovo-calc: {}\n", Printable(std::string_view(fault.what())));
        return kNothingDone;
    }
}
