#include "ValueText.h"

#include <charconv>
#include <cmath>

#include <fmt/format.h>

namespace {

// Beyond these six decimals would show mere noise, or nothing at all.
constexpr double kGreatestPlain = 1e15;
constexpr double kSmallestPlain = 5e-7;

std::string NumberText(double number)
{
    if (std::isnan(number))
        return "not a number";
    if (std::isinf(number))
        return number < 0 ? "-infinity" : "infinity";
    const double size = std::fabs(number);
    if (size >= kGreatestPlain || (size > 0 && size < kSmallestPlain))
        return fmt::format("{:.6g}", number);
    // A zero that came about with a minus sign is a zero to people.
    char digits[32]; // a sign, 16 digits, a point and 6 decimals at most
    std::string text(digits, std::to_chars(digits, digits + sizeof digits,
                                           number == 0 ? 0.0 : number, std::chars_format::fixed, 6)
                                 .ptr);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.ends_with('.'))
        text.pop_back();
    return text;
}

} // namespace

std::string ValueText(double value, bool isYesNo, const std::string& decimalSeparator)
{
    // An IF takes everything but 0 for yes, so that is how a value reads.
    if (isYesNo)
        return value != 0.0 ? "yes" : "no";
    std::string text = NumberText(value);
    if (const std::size_t point = text.find('.'); point != text.npos)
        text.replace(point, 1, decimalSeparator);
    return text;
}
