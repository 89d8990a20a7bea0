#include <TovoFormula/CalcErrorTracker.h>

#include <algorithm>

#include <TovoFormula/CalculationInterfaces.h>
#include <TovoFormula/ExprToken.h>
#include <TovoFormula/FmlaExpression.h>
#include <TovoFormula/FormtblElem.h>

#include "../expression_core/ChainMark.h"

namespace {

// The one place that looks at objects of every layer, to put them into words. A host's own formula
// or table is known by its interface.
CString Describe(CObject* object)
{
    if (const auto* token = dynamic_cast<CExprToken*>(object))
        return u"token: " + token->GetText();
    if (const auto* expression = dynamic_cast<CFmlaExpression*>(object))
        return u"Expression: " + expression->GetTextStr();
    if (auto* formula = dynamic_cast<IFormulaObj*>(object))
        return u"Formula: " + formula->GetName();
    if (auto* table = dynamic_cast<IFormulaTableObj*>(object))
        return u"Formula table: " + table->GetName();
    if (const auto* element = dynamic_cast<CFormtblElem*>(object))
        return u"Formula table element: " + element->GetName();
    return u"Unknown Object";
}

} // namespace

namespace tovo::detail {

ChainMark::~ChainMark()
{
    innermost = m_Outer;
    if (m_Outer)
        m_Outer->m_Grown.insert(m_Outer->m_Grown.end(), m_Grown.begin(), m_Grown.end());
}

void ChainMark::TakeBack()
{
    for (; !m_Grown.empty(); m_Grown.pop_back()) {
        CCalcErrorTracker& tracker = *m_Grown.back().tracker;
        const int length = std::min(m_Grown.back().length, tracker.NumObjs());
        tracker.m_Objects.SetSize(length);
        tracker.m_Strings.SetSize(length);
    }
}

} // namespace tovo::detail

using tovo::detail::ChainMark;

CCalcErrorTracker::CCalcErrorTracker() = default;

CCalcErrorTracker::~CCalcErrorTracker() = default;

void CCalcErrorTracker::SetError(unsigned int error, CObject* object, CString text)
{
    m_Error = error;
    m_Objects.RemoveAll();
    m_Strings.RemoveAll();
    Append(object, std::move(text));
}

void CCalcErrorTracker::SetError(unsigned int error, CObject* object)
{
    SetError(error, object, CString());
}

void CCalcErrorTracker::AddObj(CObject* object, CString text)
{
    ChainMark::NoteGrowing(*this, NumObjs());
    Append(object, std::move(text));
}

void CCalcErrorTracker::Append(CObject* object, CString text)
{
    m_Strings.Add(text.IsEmpty() ? Describe(object) : text);
    m_Objects.Add(object);
}

void CCalcErrorTracker::AddObj(CObject* object)
{
    AddObj(object, CString());
}

CObject* CCalcErrorTracker::GetObj(int index) const
{
    return index >= 0 && index < NumObjs() ? m_Objects.GetAt(index) : nullptr;
}

CString CCalcErrorTracker::GetStr(int index) const
{
    return index >= 0 && index < NumObjs() ? m_Strings.GetAt(index) : CString();
}
