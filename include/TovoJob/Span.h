#ifndef TOVOJOB_SPAN_H
#define TOVOJOB_SPAN_H

#include <cstddef>

namespace tovo {

// A gap in a text, counted from 0 in both encodings: the engine counts UTF-16 units, a std::string
// bytes of UTF-8.
struct Position {
    std::size_t utf16 = 0;
    std::size_t utf8 = 0;

    friend bool operator==(const Position&, const Position&) = default;
};

// A stretch of a text. A fault at the end of a text has an empty one there.
struct Span {
    Position begin;
    Position end;

    friend bool operator==(const Span&, const Span&) = default;
};

} // namespace tovo

#endif
