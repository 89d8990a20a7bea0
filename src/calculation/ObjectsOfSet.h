#ifndef TOVOFORMULA_SRC_OBJECTSOFSET_H
#define TOVOFORMULA_SRC_OBJECTSOFSET_H

struct ICalculationSet;
struct IFormulaObj;

namespace tovo::detail {

struct ExpressionState;

// What a formula keeps that is a stock one or derives from it; null for any other, and for null.
ExpressionState* StateOfStockFormula(IFormulaObj* formula);
// The same for sets that have their formulas in common, as copies have.
const void* NamesOfFormulas(const ICalculationSet& calcSet);

} // namespace tovo::detail

#endif
