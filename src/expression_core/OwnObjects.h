#ifndef TOVOFORMULA_SRC_OWNOBJECTS_H
#define TOVOFORMULA_SRC_OWNOBJECTS_H

#include <cstdint>

class CalcSetImpl;
struct ICalculationSet;
struct IFormulaObj;
struct IFormulaTableObj;
struct IVarObj;

namespace tovo::detail {

// Whether the object is exactly the stock one, and none that a host derived from it. The answer is
// given beside the stock objects, above this layer.
bool IsOwn(IFormulaObj& formula);
bool IsOwn(IFormulaTableObj& table);
bool IsOwn(IVarObj& variable);

// The set, if it is exactly the stock one; else null.
const CalcSetImpl* AsOwn(ICalculationSet& calcSet);
// As long as the number stays what it is and is not 0, the set gives the same objects for the names
// of that kind, which is the code of the reference's token.
std::uint64_t VersionOfNames(const CalcSetImpl& calcSet, int kind);

} // namespace tovo::detail

#endif
