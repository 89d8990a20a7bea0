#ifndef TOVOFORMULA_SRC_OWNOBJECTS_H
#define TOVOFORMULA_SRC_OWNOBJECTS_H

struct IFormulaObj;
struct IFormulaTableObj;
struct IVarObj;

namespace tovo::detail {

// Whether the object is exactly the stock one, and none that a host derived from it. The answer is
// given beside the stock objects, above this layer.
bool IsOwn(IFormulaObj& formula);
bool IsOwn(IFormulaTableObj& table);
bool IsOwn(IVarObj& variable);

} // namespace tovo::detail

#endif
