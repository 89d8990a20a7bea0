#ifndef TOVOPLATFORM_TYPES_H
#define TOVOPLATFORM_TYPES_H

// The plain types of the host framework, and the mark of an exported declaration.

#include <TovoPlatform/SameBuild.h>

#include <cstdint>
#include <string>
#include <string_view>

// Marks what a shared library of this project lets hosts see; everything else stays hidden.
#define TOVO_API __attribute__((visibility("default")))

// One unit of UTF-16. Every wide character that an operation takes or gives is of this type.
#ifdef _WIN32
using WCHAR = wchar_t;
#else
using WCHAR = char16_t;
#endif

using WORD = std::uint16_t; // 16 bits, also where hosts store it
using UINT = unsigned int;  // an id
using BOOL = int;           // 0 or nonzero

using WideText = std::basic_string<WCHAR>;      // owns its characters
using WideView = std::basic_string_view<WCHAR>; // looks at characters that somebody else owns

#endif
