#ifndef TOVOJOB_SRC_TEXTOFFSETS_H
#define TOVOJOB_SRC_TEXTOFFSETS_H

#include <cstddef>
#include <string_view>
#include <vector>

#include <TovoPlatform/WideString.h>

#include <TovoJob/Span.h>

namespace tovo::job {

// Turns positions in one text from UTF-16 to UTF-8 and back, each at once. Made in one pass.
class TextOffsets {
public:
    // A text as a caller has it, which need not be well-formed, and its 16-bit characters.
    // Requires: wide is CString(utf8), or utf8 is that of the wide text.
    TextOffsets(WideView wide, std::string_view utf8);

    // Positions after the end count as the end.
    Position At(std::size_t utf16) const;
    Span Between(std::size_t begin, std::size_t end) const { return {At(begin), At(end)}; }
    // The last gap between two characters that is not after the byte.
    std::size_t Utf16At(std::size_t utf8) const;

private:
    std::vector<std::size_t> m_Bytes; // by UTF-16 position, the end included
};

} // namespace tovo::job

#endif
