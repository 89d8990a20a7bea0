#ifndef TOVO_JOB_TEXTREPORT_H
#define TOVO_JOB_TEXTREPORT_H

#include <string>

#include "Calculation.h"

// How a report for people is written.
struct TextManner {
    std::string decimalSeparator = ".";
    bool isColoured = false;
};

// A value as people read it: yes or no, or a number with up to six decimals.
std::string ValueText(const Value& value, const TextManner& manner);

std::string TextReport(const Facts& facts, const TextManner& manner);
// The report on the one formula without a name that an expression is.
std::string ExpressionTextReport(const Facts& facts, const TextManner& manner);

#endif
