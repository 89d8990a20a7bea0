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

// Watches that no two formulas of one name are checked in one pass.
//
// What is under validation is known by name. So of two formulas that have the same name, as a host
// makes them that renames one without entering it anew, each fails while the other is under
// validation, and a success that is remembered says nothing for there. Once that comes up, nothing
// is remembered until the pass ends.
//
// A formula that its set has under its own name cannot be one of two, as long as the pass keeps to
// one set. Only from the first that is not on, the names are taken down.
class NamesInPass {
public:
    // Notes that the formula is going to be checked. Where its set has it under its own name, the
    // set's formulas are given, else null.
    static void Note(const CString& name, const FormulaImpl& formula, const CObject* formulasOfSet)
    {
        if (state.pass != Pass::Number())
            state = {Pass::Number(), formulasOfSet, false};
        if (state.isTakingDown || !formulasOfSet || formulasOfSet != state.formulasOfSet)
            TakeDown(name, formula);
    }

private:
    static void TakeDown(const CString& name, const FormulaImpl& formula);

    static inline constinit thread_local NamesInPassState state;
};

} // namespace tovo::detail

#endif
