#ifndef TOVOPLATFORM_WHITESPACE_H
#define TOVOPLATFORM_WHITESPACE_H

#include <TovoPlatform/Types.h>

namespace tovo {

// White space of any kind: blanks of every width, the ones that do not break a line included, and
// the ends of lines.
constexpr bool IsWhiteSpace(char16_t character)
{
    const auto code = static_cast<std::uint16_t>(character);
    if (code < 0x80)
        return code == ' ' || (code >= '\t' && code <= '\r');
    if (code >= 0x2000 && code <= 0x200A)
        return true;
    switch (code) {
    case 0x0085: // next line
    case 0x00A0: // blank that does not break
    case 0x1680: // Ogham mark
    case 0x2028: // line separator
    case 0x2029: // paragraph separator
    case 0x202F: // narrow blank that does not break
    case 0x205F: // mathematical blank
    case 0x3000: // ideographic blank
        return true;
    }
    return false;
}

} // namespace tovo

#endif
