#include "Output.h"

#include <cerrno>
#include <cstdlib>
#include <system_error>

#include <unistd.h>

TextManner MannerOf(const LanguageInForce& language)
{
    // NO_COLOR counts whatever its value is.
    return {language.DecimalSeparator(), isatty(STDOUT_FILENO) != 0 && !std::getenv("NO_COLOR")};
}

void Print(const std::string& text, std::FILE* stream)
{
    // A full disk shows only here, and a script must not take half a report for a whole one.
    if (std::fwrite(text.data(), 1, text.size(), stream) != text.size() || std::fflush(stream) != 0)
        throw std::system_error(errno, std::generic_category(), "the report cannot be written");
}
