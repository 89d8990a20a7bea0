#include "Record.h"

#include <bit>
#include <cmath>
#include <functional>
#include <limits>

#include "Oracles.h"

namespace tovo::fuzz {

Record& Record::operator<<(double value)
{
    const double kept = std::isnan(value) ? std::numeric_limits<double>::quiet_NaN() : value;
    Mix(std::bit_cast<std::uint64_t>(kept));
    if (m_IsWritten)
        m_Text += Shown(kept) + ' ';
    return *this;
}

Record& Record::operator<<(const CString& text)
{
    Mix(std::hash<CString>()(text));
    if (m_IsWritten)
        m_Text += '"' + text.ToUtf8() + "\" ";
    return *this;
}

Record& Record::operator<<(const std::string& text)
{
    Mix(std::hash<std::string>()(text));
    if (m_IsWritten)
        m_Text += '"' + text + "\" ";
    return *this;
}

Record& Record::operator<<(const char* label)
{
    if (m_IsWritten)
        m_Text += label;
    return *this;
}

} // namespace tovo::fuzz
