#ifndef TOVOPLATFORM_FMT_H
#define TOVOPLATFORM_FMT_H

#include <concepts>
#include <string_view>

#include <fmt/format.h>

#include <TovoPlatform/WideString.h>

// For hosts that use fmt, which this library does not need: texts as arguments of fmt::format, in
// UTF-8 and with the format options of a string.

namespace fmt {

// Fills, aligns and cuts by what is shown, as fmt does with any text.
template <std::derived_from<CString> Text>
struct formatter<Text> : formatter<std::string_view> {
    auto format(const CString& text, format_context& context) const
    {
        return formatter<std::string_view>::format(text.ToUtf8(), context);
    }
};

} // namespace fmt

#endif
