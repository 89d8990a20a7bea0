#ifndef TOVO_EDIT_FUNCTIONLIST_H
#define TOVO_EDIT_FUNCTIONLIST_H

#include <vector>

#include <TovoPlatform/WideString.h>

// A word of the expression language, in the user's spelling.
struct Word {
    CString name;
    CString arguments; // in parentheses; empty for a word that takes none
    CString meaning;

    bool IsFunction() const { return !arguments.IsEmpty(); }
};

std::vector<Word> WordsOfTheLanguage();

#endif
