#ifndef TOVOJOB_SRC_NEARESTNAMES_H
#define TOVOJOB_SRC_NEARESTNAMES_H

#include <cstddef>
#include <vector>

#include "KnownNames.h"

namespace tovo::job {

// How many characters must be put in, taken out, replaced or exchanged with their neighbour to turn
// one text into the other; most + 1 if it takes more than that.
std::size_t TypingDistance(WideView a, WideView b, std::size_t most);

// A name of the job or a word of the language.
struct Suggestion {
    const KnownName* name = nullptr; // null for a word
    int code = 0;                    // of a word
};

// What may have been meant by a word that stands for nothing, the most alike first; letter case
// does not matter. With a parenthesis behind the word, a function goes before a name.
std::vector<Suggestion> NearestTo(WideView word, const KnownNames& names, bool isCalled,
                                  std::size_t most);

} // namespace tovo::job

#endif
