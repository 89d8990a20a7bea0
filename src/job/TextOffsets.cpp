#include "TextOffsets.h"

#include <algorithm>

namespace tovo::job {

namespace {

constexpr char16_t kReplacement = u'\uFFFD';

bool IsPairAt(WideView text, std::size_t at)
{
    const auto isWithin = [&](std::size_t index, char16_t first, char16_t last) {
        return index < text.size() && text[index] >= first && text[index] <= last;
    };
    return isWithin(at, 0xD800, 0xDBFF) && isWithin(at + 1, 0xDC00, 0xDFFF);
}

// How many bytes stand for a character that is no half of a pair. In a text that was read, a byte
// that is part of no well-formed sequence became a replacement character alone; in one that was
// written, a half without the other became a replacement character of three bytes.
std::size_t BytesOf(char16_t character, std::string_view rest)
{
    if (character == kReplacement && !rest.starts_with("\xEF\xBF\xBD"))
        return 1;
    return character < 0x80 ? 1 : character < 0x800 ? 2 : 3;
}

} // namespace

TextOffsets::TextOffsets(WideView wide, std::string_view utf8)
{
    m_Bytes.reserve(wide.size() + 1);
    std::size_t byte = 0;
    for (std::size_t at = 0; at < wide.size(); ++at) {
        m_Bytes.push_back(byte);
        // Between the halves of a pair there is no gap: both begin where the pair does.
        if (IsPairAt(wide, at)) {
            m_Bytes.push_back(byte);
            byte += 4;
            ++at;
        } else {
            byte += BytesOf(wide[at], utf8.substr(std::min(byte, utf8.size())));
        }
    }
    m_Bytes.push_back(utf8.size());
}

Position TextOffsets::At(std::size_t utf16) const
{
    const std::size_t units = std::min(utf16, m_Bytes.size() - 1);
    return {units, m_Bytes[units]};
}

std::size_t TextOffsets::Utf16At(std::size_t utf8) const
{
    const auto after = std::upper_bound(m_Bytes.begin(), m_Bytes.end(), utf8);
    // Of both halves of a pair, the first.
    return static_cast<std::size_t>(std::lower_bound(m_Bytes.begin(), after, *(after - 1)) -
                                    m_Bytes.begin());
}

} // namespace tovo::job
