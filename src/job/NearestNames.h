#ifndef TOVOJOB_SRC_NEARESTNAMES_H
#define TOVOJOB_SRC_NEARESTNAMES_H

#include <cstddef>
#include <vector>

#include "KnownNames.h"

namespace tovo::job {

// A name of the job or a word of the language.
struct Suggestion {
    const KnownName* name = nullptr; // null for a word
    int code = 0;                    // of a word
};

// What may have been meant by a word that means nothing, the most alike first; letter case does not
// matter. With a parenthesis after the word, a function comes before a name.
std::vector<Suggestion> NearestTo(WideView word, const KnownNames& names, bool isCalled,
                                  std::size_t most);

} // namespace tovo::job

#endif
