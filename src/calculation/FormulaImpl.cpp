#include <TovoFormula/FormulaImpl.h>

#include <TovoPlatform/ArgumentValidator.h>

#include "../expression_core/Names.h"

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

FormulaImpl::~FormulaImpl() = default;

int FormulaImpl::Calculate(unsigned int& message, CScannedVariables* list)
{
    if (!m_Expression.IsValid(message, m_Name, 1))
        return 0;
    if (m_Expression.Calculate(list))
        return 1;
    message = static_cast<unsigned int>(m_Expression.GetMessageNum());
    return 0;
}

void FormulaImpl::GetVariables(CScannedVariables& list, int all, int clear)
{
    m_Expression.GetVariables(list, all, clear);
}

int FormulaImpl::IsValid(unsigned int& message, int nested)
{
    return m_Expression.IsValid(message, m_Name, nested);
}

void FormulaImpl::SetName(CString& name)
{
    m_Name = name;
    m_ValueType = tovo::detail::ValueTypeOfName(m_Name.View());
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
