#ifndef TOVOFORMULA_SRC_SPELLING_H
#define TOVOFORMULA_SRC_SPELLING_H

#include <TovoPlatform/Collections.h>

#include "../expression_core/TokenCatalogue.h"

namespace tovo::detail {

// The names of the tokens in one language. Refers to the user's names, if it is theirs.
class Spelling {
public:
    // English.
    Spelling() = default;
    // A table that lacks names is not used.
    explicit Spelling(const CStringArray& names)
        : m_Names(names.GetSize() >= kTokenCount ? names.GetData() : nullptr)
    {}

    // Requires: a code of the catalogue.
    WideView NameOf(int code) const
    {
        return m_Names ? m_Names[code].View() : CatalogueOf(code).englishName;
    }
    // The same as a string, which shares the characters of the user's names.
    CString TextOf(int code) const
    {
        return m_Names ? m_Names[code] : CString(CatalogueOf(code).englishName);
    }
    // The characters of a number, the decimal separator first.
    WideView NumberCharacters() const { return NameOf(TOK_NUMBER); }
    char16_t DecimalSeparator() const { return NumberCharacters().front(); }

private:
    const CString* m_Names = nullptr; // by code
};

} // namespace tovo::detail

#endif
