#include "../expression_core/OwnObjects.h"

#include <typeinfo>

#include <TovoFormula/FormulaImpl.h>
#include <TovoFormula/FormulaTableImpl.h>
#include <TovoFormula/VariableImpl.h>

namespace tovo::detail {

bool IsOwn(IFormulaObj& formula)
{
    return typeid(formula) == typeid(FormulaImpl);
}

bool IsOwn(IFormulaTableObj& table)
{
    return typeid(table) == typeid(FormulaTableImpl);
}

bool IsOwn(IVarObj& variable)
{
    return typeid(variable) == typeid(VariableImpl);
}

} // namespace tovo::detail
