#include "../expression_core/ObjectCalls.h"

#include <algorithm>
#include <typeinfo>

#include <TovoFormula/CalcSetImpl.h>
#include <TovoFormula/FormulaImpl.h>
#include <TovoFormula/VariableImpl.h>

#include "BoundWork.h"
#include "ObjectsOfSet.h"

namespace tovo::detail {

// What stock objects show to the library alone.
struct StockObjects {
    static bool UsesStockLookup(const CalcSetImpl& calcSet) { return calcSet.m_UsesStockLookup; }
    static bool HasStrError(const CalcSetImpl& calcSet) { return !calcSet.m_StrError.IsEmpty(); }
    static const void* Formulas(const CalcSetImpl& calcSet) { return calcSet.m_Formulas.get(); }
    static LookupState StateOf(const CalcSetImpl& calcSet)
    {
        // Numbers only grow, so the greater one changes with either map.
        return {std::max(calcSet.m_Variables->Version(), calcSet.m_MissingVariables->Version()),
                std::max(calcSet.m_Formulas->Version(), calcSet.m_FormulaTables->Version())};
    }
    static const double& ValueOf(const VariableImpl& variable) { return variable.m_Value; }
    static ExpressionState& StateOf(FormulaImpl& formula)
    {
        return BoundWork(formula.m_Expression, formula.m_Name).State();
    }
};

namespace {

template <typename Stock, typename Interface>
bool IsExactly(const Interface& object)
{
    return typeid(object) == typeid(Stock);
}

} // namespace

ExpressionState* StateOfStockFormula(IFormulaObj* formula)
{
    auto* const stock = dynamic_cast<FormulaImpl*>(formula);
    return stock ? &StockObjects::StateOf(*stock) : nullptr;
}

const void* NamesOfFormulas(const ICalculationSet& calcSet)
{
    const auto* const stock = dynamic_cast<const CalcSetImpl*>(&calcSet);
    return stock ? StockObjects::Formulas(*stock) : static_cast<const void*>(&calcSet);
}

namespace ObjectCalls {

const CalcSetImpl* WithStockLookup(const ICalculationSet& calcSet)
{
    const auto* const stock = dynamic_cast<const CalcSetImpl*>(&calcSet);
    const bool isKnown = stock && (IsStock(calcSet) || StockObjects::UsesStockLookup(*stock));
    return isKnown ? stock : nullptr;
}

LookupState LookupStateOf(const CalcSetImpl& calcSet)
{
    return StockObjects::StateOf(calcSet);
}

bool IsStock(const ICalculationSet& calcSet)
{
    return IsExactly<CalcSetImpl>(calcSet);
}

bool IsStrErrorClear(const ICalculationSet& calcSet)
{
    return IsStock(calcSet) && !StockObjects::HasStrError(static_cast<const CalcSetImpl&>(calcSet));
}

const double* ValueOf(const IVarObj& variable)
{
    return IsExactly<VariableImpl>(variable)
               ? &StockObjects::ValueOf(static_cast<const VariableImpl&>(variable))
               : nullptr;
}

ExpressionState* StateOf(IFormulaObj& formula, bool& isHost)
{
    isHost = !IsExactly<FormulaImpl>(formula);
    return isHost ? StateOfStockFormula(&formula)
                  : &StockObjects::StateOf(static_cast<FormulaImpl&>(formula));
}

void NoteFound(ExpressionState& formula, const CString& name)
{
    if (formula.formulaName && *formula.formulaName == name)
        formula.ownNameIn = Pass::Present();
}

bool CalculateByProgram(ExpressionState& formula, const CString& name, bool withIsValid)
{
    return BoundWork::CalculateByProgram(formula, name, withIsValid);
}

} // namespace ObjectCalls

} // namespace tovo::detail
