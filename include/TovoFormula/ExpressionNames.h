#ifndef TOVOFORMULA_EXPRESSIONNAMES_H
#define TOVOFORMULA_EXPRESSIONNAMES_H

#include <TovoFormula/Export.h>
#include <TovoPlatform/Collections.h>

// The spelling of the tokens in the user's language: entry i is the name of token code i, empty for
// a token that has none. Entry TOK_NUMBER is the set of characters of a number, the decimal
// separator first; entry TOK_COMMA is the list separator, of one character or more.
class TOVO_FORMULA_API CExpressionNames : public CStringArray {
public:
#ifdef _GLIBCXX_DEBUG // such a host is refused when it is linked, and has to come as far
    CExpressionNames() = default;
#else
    constexpr CExpressionNames() = default;
#endif
    ~CExpressionNames() override;

    // Loads all names from the string resources and the user's separators from the locale settings,
    // as they are on this thread, in place of those that are there. A name without a resource, or
    // with an empty one, is the English one.
    void Init();
};

#endif
