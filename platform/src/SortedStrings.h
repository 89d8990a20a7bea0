#ifndef TOVOPLATFORM_SORTEDSTRINGS_H
#define TOVOPLATFORM_SORTEDSTRINGS_H

#include <algorithm>
#include <span>
#include <vector>

#include <TovoPlatform/StringResources.h>

namespace tovo {

// Hosts may list their strings in any order; a lookup wants them by id. Those of one id keep their
// order.
inline std::vector<AfxStringResource> SortedById(std::span<const AfxStringResource> strings)
{
    std::vector<AfxStringResource> sorted(strings.begin(), strings.end());
    std::ranges::stable_sort(sorted, {}, &AfxStringResource::id);
    return sorted;
}

// The first text of that id; null if there is none. A text missing from a record that a host filled
// by hand counts as no entry.
inline const char16_t* FindById(std::span<const AfxStringResource> sorted, UINT id)
{
    const auto found = std::ranges::lower_bound(sorted, id, {}, &AfxStringResource::id);
    return found != sorted.end() && found->id == id ? found->text : nullptr;
}

} // namespace tovo

#endif
