#ifndef TOVOFORMULA_CALCULATIONPASS_H
#define TOVOFORMULA_CALCULATIONPASS_H

#include <TovoFormula/Export.h>
#include <TovoPlatform/Types.h>

// Holds one pass open from construction to destruction, for any number of calls on this thread.
//
// Within a pass each formula is checked and calculated once, however often it is named or asked:
// what has succeeded is answered from memory. Without a held pass, each call of a host is a pass of
// its own. A change made through the library (a setter, an edit, an object added) is noticed, and
// what may rest on it is calculated anew. A host-implemented object is taken to answer the same
// throughout the pass, unless NoteHostChange says otherwise.
//
//     CalculationPass pass;
//     for (FormulaImpl* formula : formulas)
//         if (!formula->Calculate(message, nullptr))
//             faults.push_back(formula);
//
// Passes nest; the outermost one counts. One thread: destroy it where it was made, in reverse
// order.
class TOVO_FORMULA_API CalculationPass {
public:
    [[nodiscard]] CalculationPass();
    ~CalculationPass();

    CalculationPass(const CalculationPass&) = delete;
    CalculationPass& operator=(const CalculationPass&) = delete;

    // Tells that a host-implemented object, of whatever kind, answers differently from now on.
    void NoteHostChange();
};

#endif
