#ifndef TOVO_CALC_INPUT_H
#define TOVO_CALC_INPUT_H

#include <string>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>

#include <TovoJob/TovoJob.h>

#include "Language.h"

// What all subcommands take.
struct InputOptions {
    std::string job;                   // a path, or "-" for the standard input
    std::vector<std::string> settings; // NAME=VALUE
    tovo::JobOptions judging;
    LanguageOptions language;
    bool isJson = false;
};

// The options that all subcommands share. Which job they work on, and whether values can be set,
// is described by those that have it.
void DescribeInput(CLI::App& command, InputOptions& options);
CLI::Option* DescribeJob(CLI::App& command, InputOptions& options);
void DescribeSettings(CLI::App& command, InputOptions& options);

// Refuses an empty value, which would count as an option that is not there.
std::string RefuseEmpty(const std::string& value);

// Reads the job and gives it the values that are set; without a file the job is the variables that
// are set. Throws tovo::Refused for a file that is no job, or a value that the job cannot take.
tovo::Job ReadInput(const InputOptions& options);
// The job as the file has it, to be saved again.
tovo::JobFile OpenInput(const InputOptions& options);

// Gives the job values. With areNew a variable that it does not have is added.
void ApplySettings(tovo::Job& job, const std::vector<std::string>& settings, bool areNew);

// The object of a job that a user names: by its name alone, or as V(name), F(name) or T(name),
// which must be if objects of two kinds have the name. Throws std::invalid_argument for none.
tovo::ObjectName FindObject(const tovo::Job& job, const std::string& name);

#endif
