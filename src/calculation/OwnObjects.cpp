#include "../expression_core/OwnObjects.h"

#include <algorithm>
#include <typeinfo>

#include <TovoFormula/CalcSetImpl.h>
#include <TovoFormula/FormulaImpl.h>
#include <TovoFormula/FormulaTableImpl.h>
#include <TovoFormula/TokenCodes.h>
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

const CalcSetImpl* AsOwn(ICalculationSet& calcSet)
{
    const bool isOwn = typeid(calcSet) == typeid(CalcSetImpl);
    return isOwn ? static_cast<CalcSetImpl*>(&calcSet) : nullptr;
}

std::uint64_t VersionOfNames(const CalcSetImpl& calcSet, int kind)
{
    switch (kind) {
    case TOK_FORMULA:
        return calcSet.m_Formulas->Version();
    case TOK_FORMTBL:
        return calcSet.m_FormulaTables->Version();
    default:
        // Numbers only grow, so the greater one changes with either map.
        return std::max(calcSet.m_Variables->Version(), calcSet.m_MissingVariables->Version());
    }
}

} // namespace tovo::detail
