#ifndef TOVO_CALC_OPTIONS_H
#define TOVO_CALC_OPTIONS_H

#include <optional>
#include <string>
#include <vector>

#include "Job.h"
#include "Language.h"

// The exit codes. Scripts test these: never renumber.
inline constexpr int kAllCalculated = 0;
inline constexpr int kCalculationFailed = 1;
inline constexpr int kNothingCalculated = 2;

struct Options {
    std::string jobFile; // empty if there is an expression
    std::optional<std::string> expression;
    std::vector<Setting> settings;
    LanguageOptions language;
    std::string rtfFile;                 // empty for none
    std::optional<std::string> renaming; // OLD=NEW
    std::optional<std::string> removal;  // the name of a formula
    bool isStrict = false;
    bool isStaticScan = false;
    bool isJson = false;
};

// Fills the options. Gives the exit code if there is nothing more to do: after the help text, and
// after a usage error, which is told to the user here.
std::optional<int> ReadCommandLine(int argc, char** argv, Options& options);

#endif
