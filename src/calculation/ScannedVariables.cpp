#include <TovoFormula/ScannedVariables.h>

#include "../expression_text/ReferenceTable.h"

namespace {

CString ListedName(const CString& name)
{
    return name.Left(static_cast<int>(tovo::detail::WithoutTrailingBlanks(name.View()).size()));
}

std::uint64_t NextId()
{
    static thread_local std::uint64_t last = 0;
    return ++last;
}

} // namespace

CScannedVariables::CScannedVariables(CStringList& list)
    : m_VariableList(&list), m_OwnsList(0), m_Id(NextId())
{}

CScannedVariables::CScannedVariables()
    : m_VariableList(std::make_unique<CStringList>().release()), m_OwnsList(1), m_Id(NextId())
{}

CScannedVariables::~CScannedVariables()
{
    if (m_OwnsList)
        delete m_VariableList;
}

int CScannedVariables::Find(const CString& name) const
{
    return m_VariableList->Find(ListedName(name)) ? 1 : 0;
}

void CScannedVariables::AddTail(const CString& name)
{
    m_VariableList->AddTail(ListedName(name));
}

void CScannedVariables::init()
{
    m_QuantityScanned = 0;
    m_DURATIONScanned = 0;
    m_JOBSIZEScanned = 0;
}
