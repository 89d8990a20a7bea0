#ifndef TOVOFORMULA_SRC_TOKENCATALOGUE_H
#define TOVOFORMULA_SRC_TOKENCATALOGUE_H

#include <TovoFormula/TokenCodes.h>
#include <TovoPlatform/Types.h>

namespace tovo::detail {

// More than any row of the catalogue takes.
inline constexpr std::size_t kMaxArguments = 99;

// The name id of a token that no string resource names.
inline constexpr int kNoName = -1;

// One row of the token catalogue: what an element of the language is.
struct CatalogueRow {
    int nameId;           // the string resource of the name in the user's language
    WideView englishName; // the spelling of stored texts; never translated
    TOKEN_TYPE type;
    int precedence; // the higher binds tighter; 0 for what is no operator
    int minArgs;
    int maxArgs;
    RESULT_KIND returns;
    RESULT_KIND takes;
};

// What a minus binds with where it has one operand: as tightly as NOT.
inline constexpr int kUnaryPrecedence = 6;

// The value that PI, YES and NO stand for; 0.0 for any other code.
constexpr double ValueOfConstant(int code)
{
    constexpr double kPi = 3.141592653589793;
    constexpr double kYes = 1.0;
    return code == TOK_PI ? kPi : code == TOK_YES ? kYes : 0.0;
}

// The row of a code; a code outside 0 to 54 has that of TOK_ILLEGAL.
const CatalogueRow& CatalogueOf(int code);

} // namespace tovo::detail

#endif
