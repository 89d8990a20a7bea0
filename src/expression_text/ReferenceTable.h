#ifndef TOVOFORMULA_SRC_REFERENCETABLE_H
#define TOVOFORMULA_SRC_REFERENCETABLE_H

#include <limits>
#include <span>
#include <vector>

#include <TovoPlatform/Collections.h>

#include "../expression_core/ReferenceKinds.h"

namespace tovo::detail {

inline constexpr int kWordsPerReference = 3;
inline constexpr int kMaxWord = std::numeric_limits<WORD>::max();

// One entry of a reference table, with room for positions that its 16-bit words cannot hold.
struct Reference {
    int position = 0;
    int length = 0;
    int kind = 0; // as the table has it, which may be no kind at all

    int End() const { return position + length; }
    // The table has no other kinds, so any other word stands for a variable.
    int EffectiveKind() const { return kind > 0 && kind < kReferenceKindCount ? kind : 0; }
    bool FitsWords() const { return position <= kMaxWord && length <= kMaxWord; }
};

inline int CountReferences(const CWordArray& words)
{
    return words.GetSize() / kWordsPerReference;
}

// Requires: an index below the count.
inline Reference ReferenceAt(const CWordArray& words, int index)
{
    const int first = index * kWordsPerReference;
    return {words[first], words[first + 1], words[first + 2]};
}

inline std::vector<Reference> ReferencesOf(const CWordArray& words)
{
    std::vector<Reference> references;
    references.reserve(static_cast<std::size_t>(CountReferences(words)));
    for (int index = 0; index < CountReferences(words); ++index)
        references.push_back(ReferenceAt(words, index));
    return references;
}

// Requires: a reference that fits the words.
inline void AppendReference(CWordArray& words, const Reference& reference)
{
    for (const int word : {reference.position, reference.length, reference.kind})
        words.Add(static_cast<WORD>(word));
}

// The text without the blanks at its end. Other white space there stays: it is part of a name.
inline WideView WithoutTrailingBlanks(WideView text)
{
    return text.substr(0, text.find_last_not_of(u' ') + 1);
}

// A new name for the references of one kind that bear the old one. Refers to both names.
struct Renaming {
    int kind;
    WideView oldName;
    WideView newName;
};

// The first reference at or behind a place that stands for something: a host may hand in a table
// that is out of order, overlaps, is empty in places or reaches behind the text.
inline std::size_t NextEffective(std::span<const Reference> references, std::size_t index,
                                 int fromPosition, int textLength)
{
    while (index < references.size() &&
           (references[index].position < fromPosition || references[index].length == 0 ||
            references[index].position >= textLength))
        ++index;
    return index;
}

} // namespace tovo::detail

#endif
