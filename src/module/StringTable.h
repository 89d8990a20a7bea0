#ifndef TOVOFORMULA_SRC_STRINGTABLE_H
#define TOVOFORMULA_SRC_STRINGTABLE_H

#include <TovoPlatform/StringResources.h>

namespace tovo::detail {

// The library's string resources: its messages, and the token names in English. Filled before any
// static object of a host can ask for them.
extern constinit AFX_EXTENSION_MODULE stringModule;

} // namespace tovo::detail

#endif
