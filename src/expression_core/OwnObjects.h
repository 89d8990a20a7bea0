#ifndef TOVOFORMULA_SRC_OWNOBJECTS_H
#define TOVOFORMULA_SRC_OWNOBJECTS_H

#include <algorithm>
#include <cstdint>
#include <typeinfo>

#include <TovoFormula/CalcSetImpl.h>
#include <TovoFormula/FormulaImpl.h>
#include <TovoFormula/FormulaTableImpl.h>
#include <TovoFormula/TokenCodes.h>
#include <TovoFormula/VariableImpl.h>

// What the library knows of an object that is exactly a stock one: it does what the stock class
// does and nothing else. A class derived from a stock one may do anything, so it counts as a
// host's. The only place where the core of the expressions knows the stock classes.
namespace tovo::detail {

class FormulaMemory;

// The object, if it is exactly a stock one; else null.
inline const FormulaImpl* AsOwn(IFormulaObj& formula)
{
    const bool isOwn = typeid(formula) == typeid(FormulaImpl);
    return isOwn ? static_cast<FormulaImpl*>(&formula) : nullptr;
}

inline const FormulaTableImpl* AsOwn(IFormulaTableObj& table)
{
    const bool isOwn = typeid(table) == typeid(FormulaTableImpl);
    return isOwn ? static_cast<FormulaTableImpl*>(&table) : nullptr;
}

inline const VariableImpl* AsOwn(IVarObj& variable)
{
    const bool isOwn = typeid(variable) == typeid(VariableImpl);
    return isOwn ? static_cast<VariableImpl*>(&variable) : nullptr;
}

inline const CalcSetImpl* AsOwn(ICalculationSet& calcSet)
{
    const bool isOwn = typeid(calcSet) == typeid(CalcSetImpl);
    return isOwn ? static_cast<CalcSetImpl*>(&calcSet) : nullptr;
}

// What stock objects show to the library alone.
struct OwnObjects {
    static double ValueOf(const VariableImpl& variable) { return variable.m_Value; }

    // Requires: a stock formula, within a pass.
    static int Validate(IFormulaObj& formula, unsigned int& message)
    {
        return static_cast<FormulaImpl&>(formula).Validate(message, 1);
    }
    static const FormulaMemory& MemoryOf(const FormulaImpl& formula) { return *formula.m_Memory; }
    static const CFmlaExpression& ExpressionOf(const FormulaImpl& formula)
    {
        return formula.m_Expression;
    }
    static std::uint64_t TreeState(const CFmlaExpression& expression)
    {
        return expression.m_TreeState;
    }
    static bool IsUnderWay(const CFmlaExpression& expression) { return expression.m_UnderWay != 0; }

    static bool HasStrError(const CalcSetImpl& calcSet) { return !calcSet.m_StrError.IsEmpty(); }

    // Whether the set has the formula under that name, by its own map; null if not, else the map,
    // which copies of the set share. Not asked is GetFormulaObj, which a host may have overridden.
    static const CObject* FormulasWith(const CalcSetImpl& calcSet, const CString& name,
                                       const FormulaImpl* formula)
    {
        FormulaImpl* found = nullptr;
        const bool isThere = calcSet.m_Formulas->Lookup(name, found) && found == formula;
        return isThere ? calcSet.m_Formulas.get() : nullptr;
    }

    // As long as these numbers stay what they are and are not 0, the set gives the same objects for
    // the names of variables, and for those of formulas and tables.
    static std::uint64_t VariablesState(const CalcSetImpl& calcSet)
    {
        // Numbers only grow, so the greater one changes with either map.
        return std::max(calcSet.m_Variables->Version(), calcSet.m_MissingVariables->Version());
    }
    static std::uint64_t NestedState(const CalcSetImpl& calcSet)
    {
        return std::max(calcSet.m_Formulas->Version(), calcSet.m_FormulaTables->Version());
    }
};

} // namespace tovo::detail

#endif
