#ifndef TOVO_EDIT_WORDCHARACTER_H
#define TOVO_EDIT_WORDCHARACTER_H

#include <TovoPlatform/NumberText.h>

#include "Surrogates.h"

// Whether a character is part of a word or a number, for keys that take or pass whole words.
inline bool IsWordCharacter(char16_t character)
{
    return tovo::IsAlphabetic(character) || (character >= u'0' && character <= u'9') ||
           IsHighSurrogate(character) || IsLowSurrogate(character);
}

#endif
