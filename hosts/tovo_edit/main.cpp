#include <cstdio>
#include <exception>
#include <string>

#include <CLI/CLI.hpp>
#include <fmt/core.h>

#include <TovoFormula/Module.h>

#include "Columns.h"
#include "FormulaListView.h"
#include "JobDocument.h"
#include "Language.h"
#include "Terminal.h"

namespace {

constexpr int kNothingEdited = 2;

struct EditorOptions {
    std::string jobFile;
    LanguageOptions language;
    bool isStrict = false;
};

void Describe(CLI::App& app, EditorOptions& options)
{
    app.add_option("JOB", options.jobFile, "The job file (JSON) to edit")
        ->option_text(" ")
        ->required();
    app.add_flag("--strict", options.isStrict,
                 "Report what a function or a division cannot do, in place of going on with 0");
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
    const TextManner manner{language.DecimalSeparator(), false};
    // Opened before the terminal, so that the fault of a file is told on a plain line.
    JobDocument document(options.jobFile, options.isStrict);
    Terminal terminal;
    FormulaListView(terminal, document, manner).Run();
}

} // namespace

int main(int argc, char** argv)
{
    EditorOptions options;
    CLI::App app("Edits the formulas of a job in the terminal.", "tovo-edit");
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
