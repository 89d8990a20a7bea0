#include "Reader.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

#include <TovoPlatform/NumberText.h>

#include "Oracles.h"

namespace tovo::fuzz {

int Reader::Pick(int count)
{
    while (!m_Rest.empty() && m_Rest.front() == '\n')
        m_Rest.remove_prefix(1);
    if (m_Rest.empty())
        return 0;
    const auto byte = static_cast<unsigned char>(m_Rest.front());
    m_Rest.remove_prefix(1);
    if (byte >= '0' && byte <= '9')
        return (byte - '0') % count;
    return byte >= 'a' && byte <= 'z' ? (byte - 'a' + 10) % count : byte % count;
}

int Reader::Int()
{
    return ParseInt(CString(Take(",\n")));
}

double Reader::Number()
{
    std::uint64_t bits = 0;
    if (m_Rest.starts_with('#') && m_Rest.size() > sizeof bits) {
        std::memcpy(&bits, m_Rest.data() + 1, sizeof bits);
        m_Rest.remove_prefix(1 + sizeof bits);
        return std::bit_cast<double>(bits);
    }
    const std::string_view number = Take(",\n");
    if (number == "nan")
        return std::numeric_limits<double>::quiet_NaN();
    if (number == "inf" || number == "-inf")
        return (number == "inf" ? 1 : -1) * std::numeric_limits<double>::infinity();
    return ParseDouble(CString(number));
}

// The end is taken too, but for that of a line when something else was looked for first.
std::string_view Reader::Take(std::string_view ends)
{
    const std::size_t size = std::min(m_Rest.find_first_of(ends), m_Rest.size());
    const std::string_view taken = m_Rest.substr(0, size);
    m_Rest.remove_prefix(std::min(size + 1, m_Rest.size()));
    return taken;
}

CString Reader::Wide(std::string_view bytes)
{
    if (bytes.starts_with('^')) {
        WideText wide((bytes.size() - 1) / sizeof(char16_t), u'\0');
        std::memcpy(wide.data(), bytes.data() + 1, wide.size() * sizeof(char16_t));
        return CString(std::move(wide));
    }
    if (bytes.size() < 3 || bytes[0] != '~')
        return CString(bytes);
    const CString once(bytes.substr(2));
    const int longest = MayBeLong() ? kLongestText : kLongestQuickText;
    const int mostTimes = longest / std::max(once.GetLength(), 1);
    WideText repeated;
    for (int count = std::min(10 << (bytes[1] & 7), mostTimes); count > 0; --count)
        repeated += once.View();
    return CString(std::move(repeated));
}

std::string Reader::Narrow(std::string_view bytes)
{
    const bool isPlain = !bytes.starts_with('^') && !bytes.starts_with('~');
    return isPlain ? std::string(bytes) : Wide(bytes).ToUtf8();
}

} // namespace tovo::fuzz
