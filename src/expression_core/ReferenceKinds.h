#ifndef TOVOFORMULA_SRC_REFERENCEKINDS_H
#define TOVOFORMULA_SRC_REFERENCEKINDS_H

#include <cassert>
#include <iterator>

#include <TovoFormula/CalculationInterfaces.h>
#include <TovoFormula/MessageIds.h>
#include <TovoFormula/TokenCodes.h>

namespace tovo::detail {

// What the three kinds of reference differ in. Letters and kind words are in stored texts: never
// renumber. A variable is never reported as missing.
struct ReferenceKind {
    TOKEN_CODE code;
    char16_t letter;
    unsigned int notFound;
    unsigned int notFoundByOperand;
    const char16_t* missingLabel; // before the name, where an expression lacks the object
    const char16_t* label;        // before the name, where a table lacks it
};

inline constexpr ReferenceKind kReferenceKinds[] = {
    // indexed by the kind word, which is the token code
    // clang-format off
    {TOK_VARIABLE, u'V', MSG_NONE,              MSG_NONE,                      u"",                 u""},
    {TOK_FORMULA,  u'F', MSG_FORMULA_NOT_FOUND, MSG_OPERAND_FORMULA_NOT_FOUND, u"Formula: ",        u"Formula: "},
    {TOK_FORMTBL,  u'T', MSG_FORMTBL_NOT_FOUND, MSG_OPERAND_FORMTBL_NOT_FOUND, u"Formula table : ", u"Formula table: "},
    // clang-format on
};
inline constexpr int kReferenceKindCount = static_cast<int>(std::size(kReferenceKinds));

inline constexpr int kNoKind = -1;

// The kind word that a letter of a stored text stands for.
constexpr int KindOfLetter(char16_t letter)
{
    for (int kind = 0; kind < kReferenceKindCount; ++kind)
        if (kReferenceKinds[kind].letter == letter)
            return kind;
    return kNoKind;
}

constexpr bool IsNestedKind(int code)
{
    return code == TOK_FORMULA || code == TOK_FORMTBL;
}

// Asks the set for the formula or table of that name and returns what the visitor returns, who is
// given an IFormulaObj * or an IFormulaTableObj *, null if there is none.
// Requires: one of these kinds.
template <typename Visit>
auto WithNested(ICalculationSet& calcSet, int kind, const CString& name, Visit visit)
{
    assert(IsNestedKind(kind));
    return kind == TOK_FORMULA ? visit(calcSet.GetFormulaObj(name))
                               : visit(calcSet.GetFormulaTableObj(name));
}

// The same for all kinds; the visitor may also be given an IVarObj *. Requires: a kind of the
// table.
template <typename Visit>
auto WithObject(ICalculationSet& calcSet, int kind, const CString& name, Visit visit)
{
    assert(kind >= 0 && kind < kReferenceKindCount);
    return IsNestedKind(kind) ? WithNested(calcSet, kind, name, visit)
                              : visit(calcSet.GetVarObj(name, 1, 0));
}

} // namespace tovo::detail

#endif
