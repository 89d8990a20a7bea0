#include <TovoFormula/ScannedVariables.h>

#include "../expression_core/Pass.h"

namespace {

CString Trimmed(CString name)
{
    name.TrimRight();
    return name;
}

} // namespace

CScannedVariables::CScannedVariables(CStringList& list) : m_VariableList(&list), m_OwnsList(0)
{}

CScannedVariables::CScannedVariables()
    : m_VariableList(std::make_unique<CStringList>().release()), m_OwnsList(1)
{}

CScannedVariables::~CScannedVariables()
{
    // What was scanned into this list is remembered by its address, which the next list may have.
    tovo::detail::Pass::NoteChange();
    if (m_OwnsList)
        delete m_VariableList;
}

int CScannedVariables::Find(const CString& name) const
{
    return m_VariableList->Find(Trimmed(name)) ? 1 : 0;
}

void CScannedVariables::AddTail(const CString& name)
{
    m_VariableList->AddTail(Trimmed(name));
}

void CScannedVariables::init()
{
    m_QuantityScanned = 0;
    m_DURATIONScanned = 0;
    m_JOBSIZEScanned = 0;
}
