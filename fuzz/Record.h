#ifndef TOVOFORMULA_FUZZ_RECORD_H
#define TOVOFORMULA_FUZZ_RECORD_H

#include <concepts>
#include <cstdint>
#include <string>

#include <TovoPlatform/WideString.h>

namespace tovo::fuzz {

// What was seen, as a number that tells one sight from another. Whoever has to show it to a person
// does the same once more with a written record.
class Record {
public:
    explicit Record(bool isWritten = false) : m_IsWritten(isWritten) {}

    template <std::integral Number>
    Record& operator<<(Number number)
    {
        Mix(static_cast<std::uint64_t>(number));
        if (m_IsWritten)
            m_Text += std::to_string(number) + ' ';
        return *this;
    }
    // All its bits count, but not which of the numbers that are none it is.
    Record& operator<<(double value);
    Record& operator<<(const CString& text);
    Record& operator<<(const std::string& text);
    // A label for the reader of a written record.
    Record& operator<<(const char* label);

    bool IsWritten() const { return m_IsWritten; }
    std::uint64_t Hash() const { return m_Hash; }
    const std::string& Text() const { return m_Text; }

private:
    void Mix(std::uint64_t part)
    {
        constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15; // 2^64 by the golden ratio, odd
        m_Hash = (m_Hash ^ part) * kFactor;
        m_Hash ^= m_Hash >> 32;
    }

    bool m_IsWritten;
    std::uint64_t m_Hash = 0;
    std::string m_Text;
};

} // namespace tovo::fuzz

#endif
