#include "RtfReader.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <vector>

namespace tovo::test {

namespace {

constexpr std::array<std::string_view, 10> kWordsThatShowNothing = {
    "rtf", "ansi", "deff", "f", "fnil", "fs", "uc", "red", "green", "blue"};

bool IsLetter(char character)
{
    return character >= 'a' && character <= 'z';
}

class Reader {
public:
    explicit Reader(std::string_view document) : m_Rest(document) {}

    std::optional<RtfContent> Run()
    {
        bool isSound = m_Rest.starts_with("{\\rtf1");
        while (isSound && !m_Rest.empty())
            isSound = TakeNext();
        return isSound && m_Groups.size() == 1 ? std::optional(m_Content) : std::nullopt;
    }

private:
    struct Look {
        int colour = 0;
        bool isBold = false;
        bool isUnderlined = false;
        bool isHidden = false; // text of a table of fonts or colours
    };

    char Take()
    {
        const char character = m_Rest.front();
        m_Rest.remove_prefix(1);
        return character;
    }

    bool TakeNext()
    {
        const char next = Take();
        if (next == '\n')
            return true;
        if (next == '{') {
            m_Groups.push_back(m_Groups.back());
            return m_Groups.size() > 2 || !m_HasEnded;
        }
        // Text outside all groups is in no document, and no group ends there.
        if (m_Groups.size() == 1 || next < ' ' || next > '~')
            return false;
        if (next == '}') {
            m_Groups.pop_back();
            m_HasEnded = m_Groups.size() == 1;
            return true;
        }
        if (next == '\\')
            return TakeControl();
        Show(static_cast<char16_t>(next));
        return true;
    }

    bool TakeControl()
    {
        if (m_Rest.empty())
            return false;
        if (!IsLetter(m_Rest.front())) {
            const char symbol = Take();
            Show(static_cast<char16_t>(symbol));
            return symbol == '\\' || symbol == '{' || symbol == '}';
        }
        const auto end = std::find_if_not(m_Rest.begin(), m_Rest.end(), IsLetter);
        const std::string_view word(m_Rest.begin(), end);
        m_Rest.remove_prefix(word.size());
        int number = 1; // of a word that switches something on
        const auto [rest, error] =
            std::from_chars(m_Rest.data(), m_Rest.data() + m_Rest.size(), number);
        if (error == std::errc::result_out_of_range)
            return false;
        const bool hasNumber = error == std::errc();
        m_Rest.remove_prefix(static_cast<std::size_t>(rest - m_Rest.data()));
        if (m_Rest.starts_with(' '))
            m_Rest.remove_prefix(1);
        return word == "u" ? hasNumber && ShowNumber(number) : Obey(word, number);
    }

    // A character by its number, with one in its place for readers that do not know numbers.
    bool ShowNumber(int number)
    {
        if (number < -0x8000 || number > 0x7FFF || m_Rest.empty() || Take() != '?')
            return false;
        Show(static_cast<char16_t>(number));
        return true;
    }

    bool Obey(std::string_view word, int number)
    {
        Look& look = m_Groups.back();
        if (word == "plain")
            look = Look{0, false, false, look.isHidden};
        else if (word == "cf")
            look.colour = number;
        else if (word == "b")
            look.isBold = number != 0;
        else if (word == "ul")
            look.isUnderlined = number != 0;
        else if (word == "fonttbl" || word == "colortbl")
            look.isHidden = true;
        else if (word == "par" || word == "line")
            Show(u'\n');
        else if (word == "tab")
            Show(u'\t');
        else
            return std::find(kWordsThatShowNothing.begin(), kWordsThatShowNothing.end(), word) !=
                   kWordsThatShowNothing.end();
        return true;
    }

    void Show(char16_t character)
    {
        if (m_Groups.back().isHidden)
            return;
        m_Content.text += character;
        m_Content.looks += LookAsLetter();
    }

    char LookAsLetter() const
    {
        const Look& look = m_Groups.back();
        if (look.isUnderlined)
            return look.isBold && look.colour >= 1 && look.colour <= 3 ? "VFT"[look.colour - 1]
                                                                       : '?';
        return look.colour != 0 ? '?' : look.isBold ? 'l' : 't';
    }

    std::string_view m_Rest;
    std::vector<Look> m_Groups{Look()}; // the first is outside all groups
    bool m_HasEnded = false;
    RtfContent m_Content;
};

} // namespace

std::optional<RtfContent> ReadRtf(std::string_view document)
{
    return Reader(document).Run();
}

} // namespace tovo::test
