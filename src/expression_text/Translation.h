#ifndef TOVOFORMULA_SRC_TRANSLATION_H
#define TOVOFORMULA_SRC_TRANSLATION_H

#include <vector>

#include "ReferenceTable.h"
#include "Spelling.h"

namespace tovo::detail {

// A text in another language, with its references moved along. A fault in a number ends it: what
// stands from there on is as it was.
struct Translation {
    WideText text;
    std::vector<Reference> references; // all that were given, in their order
    int scanPos = 0;                   // in the new text: its end, or the number at fault
    unsigned int fault = 0;            // its message, or 0
};

// Whether the token's name differs between the languages. A number has no name, only a separator.
bool NeedsTranslation(int code, const Spelling& from, const Spelling& to);

// Costs as much as text and references are long, and a logarithm for each reference. Names of
// references are not touched.
Translation Translate(const CString& text, std::vector<Reference> references, const Spelling& from,
                      const Spelling& to);

} // namespace tovo::detail

#endif
