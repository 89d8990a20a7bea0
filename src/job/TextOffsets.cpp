#include "TextOffsets.h"

#include <algorithm>

namespace tovo::job {

namespace {

constexpr WCHAR kReplacement = u'\uFFFD';

bool IsLeadingSurrogate(WCHAR character)
{
    return character >= 0xD800 && character <= 0xDBFF;
}

// How many bytes became the character. One that is part of no well-formed sequence became a
// replacement character alone.
std::size_t BytesOf(WCHAR character, std::string_view rest)
{
    if (character == kReplacement && !rest.starts_with("\xEF\xBF\xBD"))
        return 1;
    return character < 0x80 ? 1 : character < 0x800 ? 2 : IsLeadingSurrogate(character) ? 4 : 3;
}

} // namespace

TextOffsets::TextOffsets(WideView wide, std::string_view utf8)
{
    m_Bytes.reserve(wide.size() + 1);
    std::size_t byte = 0;
    for (std::size_t at = 0; at < wide.size(); ++at) {
        const std::size_t bytes = BytesOf(wide[at], utf8.substr(std::min(byte, utf8.size())));
        m_Bytes.push_back(byte);
        // Between the halves of a pair there is no gap: both begin where the pair does.
        if (IsLeadingSurrogate(wide[at]) && ++at < wide.size())
            m_Bytes.push_back(byte);
        byte += bytes;
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
