#include <TovoPlatform/StringResources.h>

#include <algorithm>
#include <utility>
#include <vector>

#include <TovoPlatform/ProcessState.h>
#include <TovoPlatform/ThreadTexts.h>

#include "ModuleChain.h"
#include "ResourceLock.h"
#include "SortedStrings.h"

namespace {

using Table = std::vector<AfxStringResource>;

bool HasSameId(const AfxStringResource& a, const AfxStringResource& b)
{
    return a.id == b.id;
}

bool HasNoText(const AfxStringResource& string)
{
    return !string.text;
}

Table SortedTable(const AfxStringResource* strings, std::size_t count)
{
    return strings ? tovo::SortedById({strings, count}) : Table();
}

// A module's place on the chain, with a table of its own, so that what a host later does to the
// record meets no lookup.
struct Link {
    const CDynLinkLibrary* owner;
    Table table;
};

// The newest last. Modules of other libraries join it before main and leave it, or load a text,
// while the process ends.
constinit tovo::Everlasting<std::vector<Link>> chain;

} // namespace

BOOL AfxInitExtensionModule(AFX_EXTENSION_MODULE& module, const AfxStringResource* strings,
                            std::size_t stringCount)
{
    if (!strings)
        return 0;
    // In order, an id that is there twice stands beside itself.
    const Table table = SortedTable(strings, stringCount);
    if (std::any_of(table.begin(), table.end(), HasNoText))
        return 0;
    if (std::adjacent_find(table.begin(), table.end(), HasSameId) != table.end())
        return 0;
    module.strings = strings;
    module.stringCount = stringCount;
    return 1;
}

// The table is sorted before the lock is taken: a lookup on another thread need not wait for it.
CDynLinkLibrary::CDynLinkLibrary(AFX_EXTENSION_MODULE& module, BOOL)
{
    Link link{this, SortedTable(module.strings, module.stringCount)};
    const std::lock_guard lock(tovo::ResourceLock());
    chain.value.push_back(std::move(link));
}

CDynLinkLibrary::~CDynLinkLibrary()
{
    const std::lock_guard lock(tovo::ResourceLock());
    std::erase_if(chain.value, [this](const Link& link) { return link.owner == this; });
}

const char16_t* tovo::FindStringResource(UINT id)
{
    const ThreadTexts* const own = ThreadTexts::InForce();
    if (const char16_t* const text = own ? own->FindString(id) : nullptr)
        return text;
    const std::lock_guard lock(tovo::ResourceLock());
    for (auto link = chain.value.rbegin(); link != chain.value.rend(); ++link) {
        if (const char16_t* const text = FindById(link->table, id))
            return text;
    }
    return nullptr;
}
