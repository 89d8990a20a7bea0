#ifndef TOVOFORMULA_BENCH_HOSTOBJECTS_H
#define TOVOFORMULA_BENCH_HOSTOBJECTS_H

#include <memory>

#include <TovoFormula/TovoFormula.h>

namespace bench {

// Which classes a job is made of: those of the library, or ones that a host derived from them.
struct ObjectKinds {
    std::unique_ptr<CalcSetImpl> (*makeSet)();
    // Named, and added to the set.
    std::unique_ptr<VariableImpl> (*makeVariable)(CalcSetImpl& set, CString name);
    std::unique_ptr<FormulaImpl> (*makeFormula)(CalcSetImpl& set);
};

extern const ObjectKinds kStockObjects;
// A set that finds names as the stock set does, and says so.
extern const ObjectKinds kWithStockLookup;
// A set that looks among its own objects before it asks its base: variables are found there,
// formulas are not.
extern const ObjectKinds kWithHostSet;
// Variables whose value the library cannot know without asking.
extern const ObjectKinds kWithHostVariables;
// Formulas with data of the host that calculate as they inherited it.
extern const ObjectKinds kWithHostFormulas;
// Formulas that count their calculations.
extern const ObjectKinds kWithCountingFormulas;

} // namespace bench

#endif
