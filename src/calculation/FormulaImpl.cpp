#include <TovoFormula/FormulaImpl.h>

#include <TovoFormula/MessageIds.h>
#include <TovoPlatform/ArgumentValidator.h>

#include "../expression_core/Names.h"
#include "../expression_core/Pass.h"
#include "BoundWork.h"

using namespace tovo::detail;

namespace {

// The expression is built on the set, so the pointer is checked before it is followed.
ICalculationSet* Checked(ICalculationSet* calcSet)
{
    CArgumentValidator::ValidateNonNullPointer("FormulaImpl", __LINE__, calcSet, "pBadPtr",
                                               "FormulaImpl::FormulaImpl");
    return calcSet;
}

} // namespace

FormulaImpl::FormulaImpl(ICalculationSet* calcSet)
    : m_CalcSet(Checked(calcSet)), m_Expression(*m_CalcSet)
{}

FormulaImpl::FormulaImpl(ICalculationSet* calcSet, const CExString& name, const CExString& encoded)
    : FormulaImpl(calcSet)
{
    m_Name = name;
    m_ValueType = ValueTypeOfName(m_Name.View());
    m_Expression.SetFromEncodedString(encoded);
}

FormulaImpl::~FormulaImpl() = default;

int FormulaImpl::Calculate(unsigned int& message, CScannedVariables* list)
{
    if (!list && Pass::IsAtRest() && BoundWork::RunAlone(m_Expression, m_Name))
        return 1;
    const Pass pass;
    return BoundWork(m_Expression, m_Name).CheckAndCalculate(message, m_Name, list);
}

void FormulaImpl::GetVariables(CScannedVariables& list, int all, int clear)
{
    m_Expression.GetVariables(list, all, clear);
}

int FormulaImpl::IsValid(unsigned int& message, int nested)
{
    const Pass pass;
    return BoundWork(m_Expression, m_Name).Validate(message, m_Name, nested);
}

int FormulaImpl::IsValid()
{
    unsigned int message = MSG_NONE;
    return IsValid(message, 1);
}

void FormulaImpl::SetName(CString& name)
{
    Pass::NoteChange();
    BoundWork(m_Expression, m_Name).NoteRenamed();
    m_Name = name;
    m_ValueType = ValueTypeOfName(m_Name.View());
}

void FormulaImpl::SetUnit(const CString& unit)
{
    m_Unit = unit;
}

void FormulaImpl::SetExpression(const CString& text, const CString& references)
{
    m_Expression.SetExpr(text, references);
}

void FormulaImpl::SetFromEncodedString(const CString& encoded)
{
    m_Expression.SetFromEncodedString(encoded);
}
