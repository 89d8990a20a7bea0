#ifndef TOVOFORMULA_SRC_NAMESINPASS_H
#define TOVOFORMULA_SRC_NAMESINPASS_H

#include <cstdint>

#include <TovoFormula/FormulaImpl.h>

#include "../expression_core/Pass.h"

namespace tovo::detail {

struct NamesInPassState {
    std::uint64_t pass = 0;
    const CObject* formulasOfSet = nullptr; // those that all formulas so far belong to
    bool isTakingDown = false;
};

// Finds out which names of formulas belong to more than one in a pass.
//
// What is under validation is known by name. So of two formulas that have the same name, as a host
// makes them that renames one without entering it anew, each fails while the other is under
// validation, and a success had before says nothing for there.
//
// A formula that its set has under its own name cannot be one of two, as long as the pass keeps to
// one set. Only from the first that is not on, the names are taken down.
class NamesInPass {
public:
    // Notes that the formula is going to be checked, and tells whether its name is one of those.
    // Where its set has it under its own name, the set's formulas are given, else null.
    static bool IsShared(const CString& name, const FormulaImpl& formula,
                         const CObject* formulasOfSet)
    {
        if (state.pass != Pass::Number())
            state = {Pass::Number(), formulasOfSet, false};
        const bool isOnlyOne = formulasOfSet && formulasOfSet == state.formulasOfSet;
        return (state.isTakingDown || !isOnlyOne) && TakeDown(name, formula);
    }

private:
    static bool TakeDown(const CString& name, const FormulaImpl& formula);

    static inline constinit thread_local NamesInPassState state;
};

} // namespace tovo::detail

#endif
