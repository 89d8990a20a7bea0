#ifndef TOVO_CALC_COMMANDS_H
#define TOVO_CALC_COMMANDS_H

#include <memory>

#include <CLI/CLI.hpp>

#include "Input.h"
#include "Output.h"

// The exit codes. Scripts test these: never renumber.
inline constexpr int kAllCalculated = 0;
inline constexpr int kFaulty = 1;
inline constexpr int kNothingDone = 2;

// Each adds its subcommands. Parsing a command line runs the one that it names, in the language
// that it asks for, and leaves the exit code.
void AddCalculating(CLI::App& app, int& exitCode);
void AddAsking(CLI::App& app, int& exitCode);
void AddEditing(CLI::App& app, int& exitCode);
void AddTrying(CLI::App& app, int& exitCode);

// Adds one subcommand. Its Options are InputOptions and what else it takes; describe adds what is
// not common to all.
template <typename Options>
void AddCommand(CLI::App& app, int& exitCode, const char* name, const char* summary,
                void (*describe)(CLI::App&, Options&),
                int (*run)(const Options&, const TextManner&))
{
    CLI::App* const command = app.add_subcommand(name, summary);
    command->footer(""); // that of the program
    const auto options = std::make_shared<Options>();
    describe(*command, *options);
    DescribeInput(*command, *options);
    command->callback([options, run, &exitCode] {
        // The language comes before the job, whose texts are brought into it as they are read.
        const LanguageInForce language(LanguageOf(options->language));
        exitCode = run(*options, MannerOf(language));
    });
}

#endif
