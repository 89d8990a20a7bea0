#ifndef TOVOPLATFORM_WIDESTRING_H
#define TOVOPLATFORM_WIDESTRING_H

#include <compare>
#include <concepts>
#include <cstdint>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

#include <TovoPlatform/Types.h>

class CString;

// One argument of CString::Format: a text for %s or a number for %d.
class TOVO_PLATFORM_API CFormatArgument {
public:
    CFormatArgument(int number);
    CFormatArgument(const char16_t* text);
    CFormatArgument(const CString& text);

    const WideText& Text() const { return m_Text; }

private:
    WideText m_Text;
};

// A text of 16-bit characters, compared exactly and case-sensitively.
//
// A value type: copies share their characters until one of them is changed, so passing a CString by
// value costs no copy of the text. Different objects may be used on different threads, also when
// they were copied from one another. Positions and lengths count 16-bit characters; every length is
// below 2^31.
class TOVO_PLATFORM_API CString {
public:
    CString() = default;
    // Ends at the first zero; null gives an empty string.
    CString(const char16_t* text);
    // The character, count times; a count of 0 or below gives an empty string.
    explicit CString(char16_t character, int count = 1);
    CString(WideView text);
    explicit CString(WideText text);
    // From UTF-8: each byte that belongs to no well-formed sequence becomes U+FFFD.
    CString(const char* utf8);
    CString(std::string_view utf8);
    // A std::string is taken by CString(utf8) and here. An implicit constructor would make a call
    // ambiguous where a host has a function for CString and one for std::string_view.
    template <std::same_as<std::string> Text>
    CString& operator=(const Text& utf8)
    {
        return *this = CString(utf8);
    }

    // In UTF-8; a lone surrogate becomes U+FFFD.
    std::string ToUtf8() const;

    int GetLength() const noexcept { return m_Text ? static_cast<int>(m_Text->size()) : 0; }
    bool IsEmpty() const noexcept { return !m_Text || m_Text->empty(); }
    void Empty() noexcept { m_Text.reset(); }

    // Ends in a zero. Valid until this object is changed or destroyed.
    const char16_t* GetString() const noexcept;
    // The characters, valid as GetString is.
    WideView View() const noexcept { return m_Text ? *m_Text : WideView(); }

    // The character at an index from 0 to the length, where the length gives the terminating zero;
    // any other index throws CInvalidArgException.
    char16_t operator[](int index) const;
    char16_t GetAt(int index) const { return (*this)[index]; }
    // Requires: an index from 0 to the length less 1, else CInvalidArgException.
    void SetAt(int index, char16_t character);

    // Parts clipped to the string: a negative count or start counts as 0.
    CString Left(int count) const;
    CString Right(int count) const;
    CString Mid(int start) const;
    CString Mid(int start, int count) const;

    // Takes white space off the end.
    void TrimRight();

    // The first position at or behind start, -1 for none. A negative start counts as 0.
    int Find(const CString& text, int start = 0) const;
    int Find(char16_t character, int start = 0) const;

    // Replaces every occurrence, left to right, and gives their count. An empty text has none.
    int Replace(const CString& text, const CString& replacement);
    // Puts the text before the character at the index, clipped to the string; gives the new length.
    int Insert(int index, const CString& text);
    // Takes out count characters from the index on, clipped to the string; gives the new length.
    int Delete(int index, int count = 1);

    // Takes the format, with each %s and %d replaced by the next argument and %% by one %. A place
    // without an argument gives nothing; a surplus argument is passed over.
    template <typename... Arguments>
    void Format(const char16_t* format, const Arguments&... arguments)
    {
        FormatList(format, {CFormatArgument(arguments)...});
    }

    // The string resource of that id: this thread's own, else from the newest module on the chain
    // that has it. Answers 0, with this string unchanged, if none has.
    [[nodiscard]] BOOL LoadString(UINT id);

    CString& operator+=(const CString& text);
    CString& operator+=(char16_t character);

    friend bool operator==(const CString& a, const CString& b) noexcept
    {
        return a.m_Text == b.m_Text || a.View() == b.View();
    }
    friend std::strong_ordering operator<=>(const CString& a, const CString& b) noexcept
    {
        return a.View() <=> b.View();
    }
    // With the standard library's texts. Those of 16-bit characters are not copied for it.
    template <typename Text>
    requires std::same_as<Text, WideView> || std::same_as<Text, WideText>
    friend bool operator==(const CString& a, const Text& b) noexcept
    {
        return a.View() == WideView(b);
    }
    template <typename Text>
    requires std::same_as<Text, WideView> || std::same_as<Text, WideText>
    friend std::strong_ordering operator<=>(const CString& a, const Text& b) noexcept
    {
        return a.View() <=> WideView(b);
    }
    template <std::same_as<std::string> Text>
    friend bool operator==(const CString& a, const Text& utf8)
    {
        return a == CString(utf8);
    }
    template <std::same_as<std::string> Text>
    friend std::strong_ordering operator<=>(const CString& a, const Text& utf8)
    {
        return a <=> CString(utf8);
    }

    // Writes the text in UTF-8. A template, so that a host's own operator goes before it.
    template <typename Traits>
    friend std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>& out,
                                                        const CString& text)
    {
        return out << text.ToUtf8();
    }

private:
    void FormatList(const char16_t* format, std::initializer_list<CFormatArgument> arguments);
    WideText& Unshared();

    // Null for an empty string; the characters are not changed while another CString shares them.
    std::shared_ptr<WideText> m_Text;
};

TOVO_PLATFORM_API CString operator+(const CString& a, const CString& b); // a, and b behind it
TOVO_PLATFORM_API CString operator+(const CString& a, char16_t b);       // likewise
TOVO_PLATFORM_API CString operator+(char16_t a, const CString& b);       // likewise

// Makes a text a key of the standard library's hashed containers: four characters at a time are
// multiplied into the number, the last four once more.
template <>
struct std::hash<CString> {
    std::size_t operator()(const CString& text) const noexcept
    {
        constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15; // 2^64 by the golden ratio, odd
        constexpr std::size_t kCharacters = sizeof(std::uint64_t) / sizeof(char16_t);
        const WideView view = text.View();
        if (view.empty())
            return 0;
        std::uint64_t mixed = view.size();
        const auto mix = [&](const char16_t* characters, std::size_t count) {
            std::uint64_t part = 0;
            std::memcpy(&part, characters, count * sizeof(char16_t));
            mixed = (mixed ^ part) * kFactor;
            mixed ^= mixed >> 32;
        };
        if (view.size() < kCharacters) {
            mix(view.data(), view.size());
            return static_cast<std::size_t>(mixed);
        }
        const char16_t* const last = view.data() + view.size() - kCharacters;
        for (const char16_t* at = view.data(); at < last; at += kCharacters)
            mix(at, kCharacters);
        mix(last, kCharacters);
        return static_cast<std::size_t>(mixed);
    }
};

namespace tovo {

// The text without the white space at its end.
TOVO_PLATFORM_API WideView TrimmedRight(WideView text);

} // namespace tovo

// The string in which names are passed to a calculation set: made from any text, a std::string
// included.
class TOVO_PLATFORM_API CExString : public CString {
public:
    CExString() = default;
    CExString(const CString& text) : CString(text) {}
    CExString(CString&& text) noexcept : CString(std::move(text)) {}
    CExString(const char16_t* text) : CString(text) {}
    template <typename Text>
    requires std::same_as<Text, std::string> || std::same_as<Text, WideText>
    CExString(const Text& text) : CString(text)
    {}
    using CString::CString; // and from whatever else a CString is made from
};

#endif
