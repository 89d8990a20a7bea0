#include "WordCharacters.h"

#include <algorithm>

#include <TovoPlatform/NumberText.h>

namespace tovo::job {

namespace {

bool IsBetween(char16_t first, char16_t character, char16_t last)
{
    return first <= character && character <= last;
}

} // namespace

bool IsDigit(char16_t character)
{
    return IsBetween(u'0', character, u'9');
}

bool IsWordCharacter(char16_t character)
{
    const bool isAccent = IsBetween(0x0300, character, 0x036F);
    const bool isHalf = IsBetween(0xD800, character, 0xDFFF);
    return IsAlphabetic(character) || IsDigit(character) || character == u'_' || isAccent || isHalf;
}

std::size_t EndOfWord(WideView text, std::size_t begin)
{
    const WideView rest = text.substr(std::min(begin, text.size()));
    const auto end = std::find_if_not(rest.begin(), rest.end(), IsWordCharacter);
    return begin + static_cast<std::size_t>(end - rest.begin());
}

char16_t Folded(char16_t character)
{
    constexpr struct {
        char16_t first;
        char16_t last;
        char16_t distance;
    } kCapitals[] = {
        {u'A', u'Z', 32},     {0x00C0, 0x00D6, 32}, {0x00D8, 0x00DE, 32}, {0x0391, 0x03A1, 32},
        {0x03A3, 0x03AB, 32}, {0x0400, 0x040F, 80}, {0x0410, 0x042F, 32},
    };
    for (const auto& range : kCapitals) {
        if (IsBetween(range.first, character, range.last))
            return static_cast<char16_t>(character + range.distance);
    }
    // Here capital and small letters take turns, the capital first.
    const bool isEvenPair =
        IsBetween(0x0100, character, 0x012F) || IsBetween(0x014A, character, 0x0177);
    const bool isOddPair =
        IsBetween(0x0139, character, 0x0148) || IsBetween(0x0179, character, 0x017E);
    if ((isEvenPair && character % 2 == 0) || (isOddPair && character % 2 == 1))
        return static_cast<char16_t>(character + 1);
    return character;
}

WideText Folded(WideView text)
{
    WideText folded(text);
    for (char16_t& character : folded)
        character = Folded(character);
    return folded;
}

WideText InCapitals(WideView text)
{
    WideText capitals(text);
    for (char16_t& character : capitals) {
        if (IsBetween(u'a', character, u'z'))
            character = static_cast<char16_t>(character - 32);
    }
    return capitals;
}

} // namespace tovo::job
