#ifndef TOVOFORMULA_FUZZ_READER_H
#define TOVOFORMULA_FUZZ_READER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include <TovoPlatform/WideString.h>

namespace tovo::fuzz {

// Enough to pass what a 16-bit word holds, for inputs that may be long, and for others.
inline constexpr int kLongestText = 70000;
inline constexpr int kLongestQuickText = 300;

// Takes the bytes of an input for a script that a person can read: choices are single characters,
// numbers and names end in a comma, texts with the line. Any bytes are a script, and one that has
// ended goes on to give zeros and empty texts.
class Reader {
public:
    explicit Reader(std::string_view script) : m_Rest(script) {}
    Reader(const std::uint8_t* bytes, std::size_t count)
        : m_Rest(reinterpret_cast<const char*>(bytes), count)
    {}

    bool AtEnd() const { return m_Rest.empty(); }
    std::string_view Rest() const { return m_Rest; }

    // One of so many choices, counted from 0: "0" to "9", then "a" to "z". Line breaks before it
    // are passed over.
    int Pick(int count);
    int Int();
    // "#" and eight bytes stand for those bits; "inf", "-inf" and "nan" for what they say.
    double Number();
    // Up to a comma or the end of the line.
    CString Name() { return Wide(Take(",\n")); }
    // Up to the end of the line. One that begins with "~" and a digit comes ten times and more, one
    // that begins with "^" is a sequence of 16-bit characters.
    CString Text() { return Wide(Take("\n")); }
    // The same two in UTF-8, where bytes that are none stay as they are.
    std::string NameBytes() { return Narrow(Take(",\n")); }
    std::string TextBytes() { return Narrow(Take("\n")); }

private:
    std::string_view Take(std::string_view ends);
    static CString Wide(std::string_view bytes);
    static std::string Narrow(std::string_view bytes);

    std::string_view m_Rest;
};

} // namespace tovo::fuzz

#endif
