#ifndef TOVOFORMULA_SRC_RTFRUNS_H
#define TOVOFORMULA_SRC_RTFRUNS_H

#include "ReferenceTable.h"

namespace tovo::detail {

// Black, blue, green, purple: the colour of literal text, then one for each kind of reference.
inline constexpr const char16_t* kRtfColourTable =
    u"{\\colortbl\\red0\\green0\\blue0;\\red0\\green0\\blue255;\\red0\\green128\\blue0;"
    u"\\red128\\green0\\blue128;}";

inline constexpr const char16_t* kRtfLiteralStyle = u"\\cf0\\b ";
inline constexpr const char16_t* kRtfReferenceStyles[] = {
    // indexed by the kind word
    u"\\cf1\\b\\ul ",
    u"\\cf2\\b\\ul ",
    u"\\cf3\\b\\ul ",
};

// Passes the text to the visitor run by run, literal text with kNoKind and references with their
// kind. A run is never empty.
template <typename Visit>
void ForEachRtfRun(WideView text, std::span<const Reference> references, Visit visit)
{
    const auto length = static_cast<int>(text.size());
    const auto part = [text](int start, int end) {
        return text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start));
    };
    int written = 0;
    for (std::size_t next = NextEffective(references, 0, 0, length); next < references.size();
         next = NextEffective(references, next, written, length)) {
        const Reference& reference = references[next];
        if (written < reference.position)
            visit(kNoKind, part(written, reference.position));
        visit(reference.EffectiveKind(), part(reference.position, reference.End()));
        written = reference.End();
    }
    if (written < length)
        visit(kNoKind, part(written, length));
}

inline const char16_t* RtfStyleOf(int kind)
{
    return kind == kNoKind ? kRtfLiteralStyle : kRtfReferenceStyles[kind];
}

} // namespace tovo::detail

#endif
