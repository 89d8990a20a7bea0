#ifndef TOVO_CALC_TEXTREPORT_H
#define TOVO_CALC_TEXTREPORT_H

#include <cstddef>
#include <string>
#include <vector>

#include <TovoJob/TovoJob.h>

#include "Output.h"

// What the subcommands tell, for people to read.

// An object with the word for its kind; a variable needs none, since a reader expects one.
std::string ObjectText(const tovo::ObjectName& object);
// Lines of about 72 columns, each indented, with commas between the entries.
std::string ListText(const std::string& heading, const std::vector<std::string>& entries);

// A heading over lines; nothing if there are none.
std::string Section(const std::string& heading, const std::string& lines, const TextManner& manner);

// How many faults of a list come with corrections, each of which costs some calculations.
inline constexpr std::size_t kMostFixed = 50;

// Each fault with its place underlined, the chain, what fails because of it, and corrections.
// Requires: faults that the job has now.
std::string FaultsText(const tovo::Job& job, const std::vector<tovo::Fault>& faults,
                       const TextManner& manner);
std::string ReportText(const tovo::Job& job, const tovo::Report& report, const TextManner& manner);
std::string PreviewText(const tovo::Job& job, const tovo::Preview& preview,
                        const TextManner& manner);

#endif
