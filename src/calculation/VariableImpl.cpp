#include <TovoFormula/VariableImpl.h>

#include <bit>
#include <cstdint>

#include <TovoPlatform/ArgumentValidator.h>

#include "../expression_core/Names.h"
#include "../expression_core/Pass.h"

VariableImpl::VariableImpl(ICalculationSet* calcSet)
{
    CArgumentValidator::ValidateNonNullPointer("VariableImpl", __LINE__, calcSet, "pBadPtr",
                                               "VariableImpl::VariableImpl");
}

VariableImpl::VariableImpl(ICalculationSet* calcSet, const CExString& name, double value)
    : VariableImpl(calcSet)
{
    m_Name = name;
    m_Value = value;
    m_ValueType = tovo::detail::ValueTypeOfName(m_Name.View());
}

VariableImpl::~VariableImpl() = default;

void VariableImpl::SetName(CString& name)
{
    m_Name = name;
    m_ValueType = tovo::detail::ValueTypeOfName(m_Name.View());
}

void VariableImpl::SetValue(double value)
{
    // A host may set all its variables again, most to the value that they have.
    if (std::bit_cast<std::uint64_t>(value) == std::bit_cast<std::uint64_t>(m_Value))
        return;
    tovo::detail::Pass::NoteChange();
    m_Value = value;
}

void VariableImpl::SetUnit(const CString& unit, long)
{
    m_Unit = unit;
}
