#ifndef TOVOFORMULA_MODULE_H
#define TOVOFORMULA_MODULE_H

#include <cstdint>

#include <TovoFormula/Export.h>
#include <TovoPlatform/Types.h>

// Puts the library's string table, messages and token names, on the chain that CString::LoadString
// reads. A host calls it once, before its first expression; without it the language is English and
// the messages have no texts. The argument has no effect.
extern "C" TOVO_FORMULA_API void InitTovoFormulaDLL(std::uintptr_t unused = 0);

#endif
