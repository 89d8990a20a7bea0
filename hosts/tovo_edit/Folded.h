#ifndef TOVO_EDIT_FOLDED_H
#define TOVO_EDIT_FOLDED_H

#include <wctype.h>

#include <TovoPlatform/WideString.h>

// A text for comparing without regard to case, in any alphabet that the locale knows.
inline WideText Folded(const CString& text)
{
    WideText folded(text.View());
    for (char16_t& character : folded)
        character = static_cast<char16_t>(towlower(character));
    return folded;
}

#endif
