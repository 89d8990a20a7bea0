#include <support/HostObjects.h>

namespace tovo::test {

VALUETYPE KindOfName(const CString& name)
{
    if (name.IsEmpty())
        return VALUE_NONE;
    return name[name.GetLength() - 1] == u'?' ? VALUE_BOOLEAN : VALUE_NUMERIC;
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
    IVarObj* const known = Find(m_Variables, "V:", name);
    return known || m_NullForUnknownVariables ? known : &AddVariable(name);
}

} // namespace tovo::test
