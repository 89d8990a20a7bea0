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

void ChainMark::TakeBack()
{
    std::vector<Grown>& grown = m_Outermost->m_Grown;
    for (; grown.size() > m_Start; grown.pop_back()) {
        CCalcErrorTracker& tracker = *grown.back().tracker;
        tracker.m_Entries.SetSize(std::min(grown.back().length, tracker.NumObjs()));
    }
}

} // namespace tovo::detail

using tovo::detail::ChainMark;

CCalcErrorTracker::CCalcErrorTracker() = default;

CCalcErrorTracker::~CCalcErrorTracker()
{
    ChainMark::NoteGone(*this);
}

void CCalcErrorTracker::SetError(unsigned int error, CObject* object, CString text)
{
    // The new chain is made before the former one ends.
    const Entry first = Worded(object, std::move(text));
    if (m_Entries.IsEmpty())
        m_Entries.Add(first);
    else
        m_Entries.SetAt(0, first);
    m_Entries.SetSize(1);
    m_Error = error;
}

void CCalcErrorTracker::SetError(unsigned int error, CObject* object)
{
    SetError(error, object, CString());
}

void CCalcErrorTracker::AddObj(CObject* object, CString text)
{
    const Entry entry = Worded(object, std::move(text));
    ChainMark::NoteGrowing(*this, NumObjs());
    m_Entries.Add(entry);
}

CCalcErrorTracker::Entry CCalcErrorTracker::Worded(CObject* object, CString text)
{
    return {object, text.IsEmpty() ? Describe(object) : std::move(text)};
}

void CCalcErrorTracker::AddObj(CObject* object)
{
    AddObj(object, CString());
}

CObject* CCalcErrorTracker::GetObj(int index) const
{
    return index >= 0 && index < NumObjs() ? m_Entries[index].object : nullptr;
}

CString CCalcErrorTracker::GetStr(int index) const
{
    return index >= 0 && index < NumObjs() ? m_Entries[index].text : CString();
}
