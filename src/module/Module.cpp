#include <TovoFormula/Module.h>

#include <cassert>
#include <new>

#include <TovoPlatform/StringResources.h>

#include "StringTable.h"

namespace {

// Filled when the library is loaded.
AFX_EXTENSION_MODULE FilledRecord()
{
    AFX_EXTENSION_MODULE module;
    const auto strings = tovo::detail::StringTable();
    [[maybe_unused]] const BOOL isFilled =
        AfxInitExtensionModule(module, strings.data(), strings.size());
    assert(isFilled);
    return module;
}

AFX_EXTENSION_MODULE moduleRecord = FilledRecord();

} // namespace

void InitTovoFormulaDLL(std::uintptr_t)
{
    // The chain keeps it for as long as the process runs: the library has no shutdown.
    try {
        static_cast<void>(new CDynLinkLibrary(moduleRecord, 0));
    } catch (const std::bad_alloc&) {
        // The call has no answer to tell it with, and the language stays English.
    }
}
