#ifndef TOVOFORMULA_SRC_STRINGTABLE_H
#define TOVOFORMULA_SRC_STRINGTABLE_H

#include <span>

#include <TovoPlatform/StringResources.h>

namespace tovo::detail {

// The library's string resources: its messages, and the token names in English.
std::span<const AfxStringResource> StringTable();

} // namespace tovo::detail

#endif
