#ifndef TOVO_EDIT_SURROGATES_H
#define TOVO_EDIT_SURROGATES_H

#include <TovoPlatform/Types.h>

// A character beyond the first 65536 is two 16-bit characters, a high surrogate and a low one.

inline bool IsHighSurrogate(char16_t character)
{
    return character >= 0xD800 && character < 0xDC00;
}

inline bool IsLowSurrogate(char16_t character)
{
    return character >= 0xDC00 && character < 0xE000;
}

#endif
