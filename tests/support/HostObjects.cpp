#include <support/HostObjects.h>

namespace tovo::test {

namespace {

template <typename Object>
Object* FindIn(const std::map<CString, Object*>& objects, const CString& name)
{
    const auto found = objects.find(name);
    return found == objects.end() ? nullptr : found->second;
}

} // namespace

VALUETYPE KindOfName(const CString& name)
{
    if (name.IsEmpty())
        return VALUE_NONE;
    return name[name.GetLength() - 1] == u'?' ? VALUE_BOOLEAN : VALUE_NUMERIC;
}

HostVariable::HostVariable(const CString& name, double value) : m_Name(name), m_Value(value)
{}

double HostVariable::GetValue()
{
    if (m_OnRead)
        m_OnRead();
    return m_Value;
}

void HostVariable::SetInCond(int inCondition)
{
    ++m_SetInCondCalls;
    m_InCond = inCondition;
}

template <typename Object, typename Interface>
Object& HostSet::Add(std::map<CString, Interface*>& objects, const CString& name, double value)
{
    auto object = std::make_unique<Object>(name, value);
    Object& added = *object;
    objects[name] = &added;
    m_Owned.push_back(std::move(object));
    return added;
}

HostVariable& HostSet::AddVariable(const CString& name, double value)
{
    return Add<HostVariable>(m_Variables, name, value);
}

HostFormula& HostSet::AddFormula(const CString& name, double value)
{
    return Add<HostFormula>(m_Formulas, name, value);
}

HostTable& HostSet::AddTable(const CString& name, double value)
{
    return Add<HostTable>(m_Tables, name, value);
}

IVarObj* HostSet::GetVarObj(CExString name, int, long)
{
    m_Lookups.push_back("V:" + name.ToUtf8());
    IVarObj* const known = FindIn(m_Variables, name);
    if (known || m_NullForUnknownVariables)
        return known;
    return &AddVariable(name);
}

IFormulaObj* HostSet::GetFormulaObj(CExString name)
{
    m_Lookups.push_back("F:" + name.ToUtf8());
    return FindIn(m_Formulas, name);
}

IFormulaTableObj* HostSet::GetFormulaTableObj(CExString name)
{
    m_Lookups.push_back("T:" + name.ToUtf8());
    return FindIn(m_Tables, name);
}

void HostSet::SetDURATIONInCondition(int inCondition)
{
    m_Flags.push_back("DURATION in condition " + std::to_string(inCondition));
}

void HostSet::SetJOBSIZEInCondition(int inCondition)
{
    m_Flags.push_back("JOBSIZE in condition " + std::to_string(inCondition));
}

void HostSet::SetQuantityInCondition(int inCondition)
{
    m_Flags.push_back("QUANTITY in condition " + std::to_string(inCondition));
}

void HostSet::SetQuantityInCalculations(int met)
{
    m_Flags.push_back("QUANTITY counts " + std::to_string(met));
}

void HostSet::SetStrError(CString text)
{
    if (!text.IsEmpty())
        m_StrErrors.push_back(text);
    m_StrError = text;
}

void HostSet::ClearScannedFlags(int argument)
{
    ++(argument == 1 ? m_ClearScannedFlagsCalls : m_OtherClearCalls);
}

} // namespace tovo::test
