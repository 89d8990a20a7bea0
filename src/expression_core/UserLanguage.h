#ifndef TOVOFORMULA_SRC_USERLANGUAGE_H
#define TOVOFORMULA_SRC_USERLANGUAGE_H

#include <memory>

#include <TovoFormula/ExpressionNames.h>

namespace tovo::detail {

// The language of texts as the engine reads it.
struct UserLanguage {
    std::shared_ptr<const CExpressionNames> names; // of the tokens; null until they are loaded
    bool areNamesEnglish = false;                  // separators included

    UserLanguage() = default;
    explicit UserLanguage(std::shared_ptr<const CExpressionNames> loaded);
};

// The language of the process, and the one in force on this thread: the same, unless the thread has
// one of its own.
inline constinit UserLanguage processLanguage;
inline constinit thread_local const UserLanguage* languageInForce = &processLanguage;

inline bool HasOwnLanguage()
{
    return languageInForce != &processLanguage;
}

// The names in force, for a comparison with those that something was made from.
inline const CExpressionNames* NamesInForce()
{
    return languageInForce->names.get();
}

// The decimal separator of texts in the language in force, "." at first. Whoever loads the names of
// the process sets it, so that a number is read as it was scanned. Safe from any thread.
char16_t LocalDecimalSeparator();
void SetProcessDecimalSeparator(char16_t separator);

} // namespace tovo::detail

#endif
