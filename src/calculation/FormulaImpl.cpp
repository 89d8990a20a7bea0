#include <TovoFormula/FormulaImpl.h>

#include <optional>

#include <TovoPlatform/ArgumentValidator.h>

#include "../expression_core/FormulaMemory.h"
#include "../expression_core/Names.h"
#include "NamesInPass.h"

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
    : m_CalcSet(Checked(calcSet)),
      m_Expression(*m_CalcSet),
      m_Memory(std::make_unique<FormulaMemory>())
{}

FormulaImpl::~FormulaImpl() = default;

int FormulaImpl::Calculate(unsigned int& message, CScannedVariables* list)
{
    const Pass pass;
    const bool isFree = m_Expression.m_UnderWay == 0;
    if (isFree && m_Memory->IsCalculated(m_Expression.m_TreeState, list)) {
        StrError::Give(*m_CalcSet, m_Memory->LeftStrError());
        return 1;
    }
    // A host's formula counts as a change also in a branch that only the validation goes into.
    const Stamp before = Pass::Now();
    if (!Validate(message, 1))
        return 0;
    // Building the tree has calculated it already.
    if (isFree && m_Memory->IsCalculated(m_Expression.m_TreeState, list)) {
        StrError::Give(*m_CalcSet, m_Memory->LeftStrError());
        return 1;
    }
    const Stamp readsBefore = Pass::ForeignReads();
    if (!m_Expression.Calculate(list)) {
        message = static_cast<unsigned int>(m_Expression.GetMessageNum());
        return 0;
    }
    if (Pass::Now() == before && Pass::ForeignReads() == readsBefore)
        m_Memory->NoteCalculated(m_Expression.m_TreeState, list);
    return 1;
}

void FormulaImpl::GetVariables(CScannedVariables& list, int all, int clear)
{
    m_Expression.GetVariables(list, all, clear);
}

int FormulaImpl::IsValid(unsigned int& message, int nested)
{
    const Pass pass;
    return Validate(message, nested);
}

void FormulaImpl::SetName(CString& name)
{
    Pass::NoteChange();
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

// An expression under way is not asked for what it did before: it must say that it was come back
// to.
int FormulaImpl::Validate(unsigned int& message, int nested)
{
    const bool isFree = m_Expression.m_UnderWay == 0;
    if (nested && isFree && m_Memory->IsValidated(m_Expression.m_TreeState)) {
        StrError::Give(*m_CalcSet, m_Memory->LeftStrError());
        return 1;
    }
    const bool isShared =
        nested && Pass::IsRemembering() &&
        NamesInPass::IsShared(m_Name, *this, m_Memory->FormulasWith(*m_CalcSet, m_Name, this));
    const Stamp before = Pass::Now();
    const Stamp readsBefore = Pass::ForeignReads();
    {
        std::optional<NarrowerPass> narrower;
        if (isShared)
            narrower.emplace();
        if (!m_Expression.Validate(message, m_Name, nested))
            return 0;
    }
    if (!nested || Pass::Now() != before)
        return 1;
    // All of the tree was calculated while it was built.
    if (Pass::ForeignReads() == readsBefore)
        m_Memory->NoteCalculated(m_Expression.m_TreeState, nullptr);
    else
        m_Memory->NoteValidated(m_Expression.m_TreeState);
    return 1;
}
