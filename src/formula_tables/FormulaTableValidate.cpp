#include <TovoFormula/FormulaTableImpl.h>

#include <TovoFormula/CalcErrorTracker.h>
#include <TovoFormula/MessageIds.h>

#include "../calculation/UnderWay.h"
#include "../expression_core/Pass.h"
#include "../expression_core/ReferenceKinds.h"
#include "../expression_core/RestoreOnThrow.h"

using namespace tovo::detail;

namespace {

// Plain comparisons: two limits that a lookup takes for equal still rise.
bool Rise(const CArray<double, double>& limits, int count)
{
    for (int index = 1; index < count; ++index)
        if (limits[index - 1] >= limits[index])
            return false;
    return true;
}

} // namespace

int FormulaTableImpl::IsValid()
{
    unsigned int message = MSG_NONE;
    return IsValid(message, 1);
}

int FormulaTableImpl::IsValid(unsigned int& message, int nested)
{
    const Pass pass;
    if (m_Validated)
        return 1;
    const UnderWay underWay(m_UnderWay);
    if (!underWay.IsFirst())
        return FailOnTable(MSG_FORMULA_INSIDE_ITSELF, message);
    if (underWay.IsTooDeep())
        return FailOnTable(MSG_GENERAL_FAILURE, message);
    RestoreOnThrow former(message);
    const int isValid = ValidateAll(message, nested);
    former.End();
    if (isValid) {
        m_Validated = 1;
        ErrorTexts::NoteOnce();
    }
    return isValid;
}

int FormulaTableImpl::ValidateAll(unsigned int& message, int nested)
{
    if (!ValidateLimits(message) ||
        !ValidateSelector(m_RowSelector, u"Row selector", message, nested))
        return 0;
    if (m_NumColumns > 1 &&
        !ValidateSelector(m_ColumnSelector, u"Column selector", message, nested))
        return 0;
    return ValidateCells(message, nested);
}

int FormulaTableImpl::ValidateElement(CFormtblElem& element, unsigned int& message, int nested)
{
    const int kind = KindOfLetter(element.GetType());
    if (kind == kNoKind)
        return 1;
    const CString name = element.GetName();
    if (!IsNestedKind(kind))
        return m_CalcSet->GetVarObj(name, 1, 0) ? 1 : 0;
    return WithNested(*m_CalcSet, kind, name, [&](auto* object) {
        if (object)
            return object->IsValid(message, nested) ? 1 : 0;
        const ReferenceKind& row = kReferenceKinds[kind];
        m_CalcSet->ErrorTracker().SetError(row.notFound, this, row.label + name);
        message = row.notFound;
        return 0;
    });
}

// A lookup never reads the last limits. That of the rows must rise all the same, that of the
// columns may be anything.
int FormulaTableImpl::ValidateLimits(unsigned int& message)
{
    if (!Rise(m_RowLimits, m_NumRows))
        return FailOnTable(MSG_ROW_LIMITS_ORDER, message);
    if (!Rise(m_ColumnLimits, m_NumColumns - 1))
        return FailOnTable(MSG_COLUMN_LIMITS_ORDER, message);
    return 1;
}

int FormulaTableImpl::ValidateSelector(CFormtblElem& selector, const char16_t* text,
                                       unsigned int& message, int nested)
{
    if (ValidateElement(selector, message, nested))
        return 1;
    m_CalcSet->ErrorTracker().AddObj(&selector, text);
    m_CalcSet->ErrorTracker().AddObj(this);
    return 0;
}

int FormulaTableImpl::ValidateCells(unsigned int& message, int nested)
{
    for (int index = 0; index < m_Cells.GetSize(); ++index) {
        CFormtblElem* const cell = m_Cells[index];
        if (!cell)
            return FailOnMissingCell(index, message);
        if (ValidateElement(*cell, message, nested))
            continue;
        m_CalcSet->ErrorTracker().AddObj(cell, PlaceOfCell(index));
        m_CalcSet->ErrorTracker().AddObj(this);
        return 0;
    }
    return 1;
}

int FormulaTableImpl::FailOnTable(unsigned int error, unsigned int& message)
{
    m_CalcSet->ErrorTracker().SetError(error, this);
    message = error;
    return 0;
}

int FormulaTableImpl::FailOnMissingCell(int cell, unsigned int& message)
{
    m_CalcSet->ErrorTracker().SetError(MSG_GENERAL_FAILURE, nullptr, PlaceOfCell(cell));
    m_CalcSet->ErrorTracker().AddObj(this);
    message = MSG_GENERAL_FAILURE;
    return 0;
}

// People count rows and columns from 1.
CString FormulaTableImpl::PlaceOfCell(int cell) const
{
    CString text;
    text.Format(u"Cell at row %d, column %d.", cell / m_NumColumns + 1, cell % m_NumColumns + 1);
    return text;
}
