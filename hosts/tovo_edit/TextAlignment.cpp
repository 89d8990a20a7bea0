#include "TextAlignment.h"

#include <algorithm>

#include <wctype.h>

namespace {

std::vector<int> Characters(const CString& text)
{
    std::vector<int> places;
    for (int at = 0; at < text.GetLength(); ++at) {
        if (text[at] != u' ')
            places.push_back(at);
    }
    return places;
}

bool AreAlike(char16_t a, char16_t b)
{
    return a == b || towlower(a) == towlower(b);
}

} // namespace

TextAlignment::TextAlignment(const CString& from, const CString& to)
    : m_From(Characters(from)), m_To(Characters(to)), m_ToLength(to.GetLength())
{
    const std::size_t most = std::min(m_From.size(), m_To.size());
    while (m_AlikeAtStart < most &&
           AreAlike(from[m_From[m_AlikeAtStart]], to[m_To[m_AlikeAtStart]]))
        ++m_AlikeAtStart;
    while (m_AlikeAtStart + m_AlikeAtEnd < most &&
           AreAlike(from[m_From[m_From.size() - 1 - m_AlikeAtEnd]],
                    to[m_To[m_To.size() - 1 - m_AlikeAtEnd]]))
        ++m_AlikeAtEnd;
}

int TextAlignment::End(int position) const
{
    const std::size_t count = CharactersBefore(position);
    return count == 0 ? 0 : m_To[count - 1] + 1;
}

int TextAlignment::Begin(int position) const
{
    const std::size_t count = CharactersBefore(position);
    return count == m_To.size() ? m_ToLength : m_To[count];
}

// How many characters of the other text lie in front of the place.
std::size_t TextAlignment::CharactersBefore(int position) const
{
    const auto count = static_cast<std::size_t>(
        std::lower_bound(m_From.begin(), m_From.end(), position) - m_From.begin());
    if (count <= m_AlikeAtStart)
        return count;
    const std::size_t behind = std::min(m_From.size() - count, m_AlikeAtEnd);
    return m_To.size() - behind;
}
