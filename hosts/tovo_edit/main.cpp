#include <cstdio>
#include <exception>
#include <string>

#include <CLI/CLI.hpp>
#include <fmt/core.h>

#include <TovoFormula/Module.h>

#include "Columns.h"
#include "Commands.h"
#include "Document.h"
#include "Language.h"
#include "ObjectListView.h"
#include "Terminal.h"

namespace {

constexpr int kNothingEdited = 2;

struct EditorOptions {
    std::string jobFile;
    LanguageOptions language;
    tovo::JobOptions judging;
};

void Describe(CLI::App& app, EditorOptions& options)
{
    app.add_option("JOB", options.jobFile,
                   "The job file (JSON) to edit; a new one if it is not there")
        ->option_text(" ")
        ->required();
    tovo::JobOptions& judging = options.judging;
    app.add_flag_callback(
        "--lenient-domains", [&judging] { judging.domainErrorsAreFaults = false; },
        "Count a division by zero, the root of a negative number and their like as 0");
    app.add_flag_callback(
        "--undefined-as-zero", [&judging] { judging.undefinedVariablesAreFaults = false; },
        "Count a variable that nobody defines as 0");
    app.add_option("--language", options.language.file, "Names of the words in another language")
        ->type_name("FILE");
    app.add_option("--decimal", options.language.decimal,
                   "The decimal separator, as in --decimal ,")
        ->type_name("MARK");
    app.add_option("--list", options.language.list,
                   "The separator of arguments; a semicolon if the decimal separator is a comma")
        ->type_name("MARK");
}

// Separators of the command line go before those of the file.
void Run(const EditorOptions& options)
{
    InitTovoFormulaDLL(0);
    const LanguageInForce language(LanguageOf(options.language));
    // Opened before the terminal, so that the fault of a file is told on a plain line.
    Document document(options.jobFile, options.judging);
    Terminal terminal;
    Commands commands(terminal, document, language.DecimalSeparator());
    if (!commands.AskAboutRecovery())
        return;
    terminal.OnWait([&commands] { commands.KeepRecovery(); });
    if (ObjectListView(terminal, document, commands).Run() == Key::HangUp)
        document.WriteRecovery().Value();
    else
        document.RemoveRecovery();
}

} // namespace

int main(int argc, char** argv)
{
    EditorOptions options;
    CLI::App app("Edits a job in the terminal: variables, formulas, tables and job values.",
                 "tovo-edit");
    Describe(app, options);
    try {
        app.parse(argc, argv);
        Run(options);
    } catch (const CLI::ParseError& end) {
        return app.exit(end) == 0 ? 0 : kNothingEdited;
    } catch (const std::exception& fault) {
        fmt::print(stderr, "tovo-edit: {}\n", Printable(std::string_view(fault.what())));
        return kNothingEdited;
    }
    return 0;
}
