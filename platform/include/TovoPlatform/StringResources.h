#ifndef TOVOPLATFORM_STRINGRESOURCES_H
#define TOVOPLATFORM_STRINGRESOURCES_H

#include <cstddef>

#include <TovoPlatform/Types.h>

// String resources: texts by id, from a chain of modules that each bring a table. The newest module
// is asked first, so a host translates a library by putting a module of its own on the chain. Safe
// to call from any thread; CString::LoadString reads the chain.

// One text of a module's table.
struct AfxStringResource {
    UINT id;
    const char16_t* text; // ends in a zero; lives as long as the process
};

// The record of one module. Does not own its table.
struct AFX_EXTENSION_MODULE {
    const AfxStringResource* strings = nullptr;
    std::size_t stringCount = 0;
};

// Fills the record. Answers 0, with the record unchanged, for a missing table or text, or an id
// that the table holds twice.
[[nodiscard]] TOVO_PLATFORM_API BOOL AfxInitExtensionModule(AFX_EXTENSION_MODULE& module,
                                                            const AfxStringResource* strings,
                                                            std::size_t stringCount);

// The presence of a module on the chain: from construction to destruction. The module's record
// must outlive it. The second argument of the constructor has no effect.
class TOVO_PLATFORM_API CDynLinkLibrary {
public:
    [[nodiscard]] explicit CDynLinkLibrary(AFX_EXTENSION_MODULE& module, BOOL system = 0);
    ~CDynLinkLibrary();

    CDynLinkLibrary(const CDynLinkLibrary&) = delete;
    CDynLinkLibrary& operator=(const CDynLinkLibrary&) = delete;
};

#endif
