#ifndef TOVO_CALC_OUTPUT_H
#define TOVO_CALC_OUTPUT_H

#include <cstdio>
#include <string>

#include "Language.h"

// How a report for people is written.
struct TextManner {
    std::string decimalSeparator = ".";
    bool isColoured = false; // on a terminal, unless NO_COLOR is set
};

TextManner MannerOf(const LanguageInForce& language);

// Throws std::system_error if the text cannot be written in full.
void Print(const std::string& text, std::FILE* stream = stdout);

#endif
