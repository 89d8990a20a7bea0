#ifndef TOVOJOB_SRC_NUMBERTEXT_H
#define TOVOJOB_SRC_NUMBERTEXT_H

#include <charconv>
#include <cmath>
#include <optional>
#include <string>
#include <string_view>

namespace tovo::job {

// The shortest text that is read back as the same number, with "." in every locale.
inline std::string NumberText(double value)
{
    char digits[32];
    return {digits, std::to_chars(digits, digits + sizeof digits, value).ptr};
}

// The finite number that the whole text is; nothing for any other text.
inline std::optional<double> ParseNumber(std::string_view text)
{
    double value = 0.0;
    const char* const end = text.data() + text.size();
    const auto [rest, fault] = std::from_chars(text.data(), end, value);
    if (fault != std::errc() || rest != end || !std::isfinite(value))
        return std::nullopt;
    return value;
}

} // namespace tovo::job

#endif
