#include <TovoFormula/Module.h>

#include <new>

#include <TovoPlatform/StringResources.h>

#include "StringTable.h"

void InitTovoFormulaDLL(std::uintptr_t)
{
    // The chain keeps it for as long as the process runs: the library has no shutdown.
    try {
        static_cast<void>(new CDynLinkLibrary(tovo::detail::stringModule, 0));
    } catch (const std::bad_alloc&) {
        // The call has no answer to tell it with, and the language stays English.
    }
}
