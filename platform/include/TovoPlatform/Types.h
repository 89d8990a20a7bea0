#ifndef TOVOPLATFORM_TYPES_H
#define TOVOPLATFORM_TYPES_H

// The plain types of the host framework.

#include <TovoPlatform/Export.h>
#include <TovoPlatform/SameBuild.h>

#include <cstdint>
#include <string>
#include <string_view>

// The host framework's name of the type of all wide characters here, one unit of UTF-16. On Windows
// that name is the system's, of another type, so there is only char16_t.
#ifndef _WIN32
using WCHAR = char16_t;
#endif

using WORD = std::uint16_t; // 16 bits, also where hosts store it
using UINT = unsigned int;  // an id
using BOOL = int;           // 0 or nonzero

using WideText = std::basic_string<char16_t>;      // owns its characters
using WideView = std::basic_string_view<char16_t>; // looks at characters that somebody else owns

#endif
