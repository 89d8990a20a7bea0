#include <TovoFormula/CalcSetImpl.h>

#include <TovoFormula/CalcErrorTracker.h>
#include <TovoFormula/FormulaImpl.h>
#include <TovoFormula/FormulaTableImpl.h>
#include <TovoFormula/VariableImpl.h>
#include <TovoPlatform/ArgumentValidator.h>

#include "../expression_core/Pass.h"

using namespace tovo::detail;

namespace {

// The object that a map has under a name, null if there is none.
template <typename Object>
Object* Find(const CMap<CString, const CString&, Object*, Object*>& map, const CString& name)
{
    Object* object = nullptr;
    map.Lookup(name, object);
    return object;
}

template <typename Object>
void Enter(CMap<CString, const CString&, Object*, Object*>& map, Object* object, int line,
           const char* argument, const char* function)
{
    CArgumentValidator::ValidateNonNullPointer("CalcSetImpl", line, object, argument, function);
    Pass::NoteChange();
    map.SetAt(object->GetName(), object);
}

template <typename Object, typename Visit>
void ForEach(const CMap<CString, const CString&, Object*, Object*>& map, Visit visit)
{
    CString name;
    Object* object = nullptr;
    for (POSITION position = map.GetStartPosition(); position;) {
        map.GetNextAssoc(position, name, object);
        visit(*object);
    }
}

void DeleteVariables(CMap<CString, const CString&, VariableImpl*, VariableImpl*>& variables)
{
    ForEach(variables, [](VariableImpl& variable) { delete &variable; });
    variables.RemoveAll();
}

} // namespace

CalcSetImpl::CalcSetImpl()
    : m_ErrorTracker(std::make_shared<CCalcErrorTracker>()),
      m_Variables(std::make_shared<VariableMap>()),
      m_MissingVariables(new VariableMap,
                         [](VariableMap* variables) {
                             DeleteVariables(*variables);
                             delete variables;
                         }),
      m_Formulas(std::make_shared<FormulaMap>()),
      m_FormulaTables(std::make_shared<FormulaTableMap>())
{}

CalcSetImpl::CalcSetImpl(const CalcSetImpl& other) = default;

CalcSetImpl& CalcSetImpl::operator=(const CalcSetImpl& other) = default;

CalcSetImpl::~CalcSetImpl() = default;

IVarObj* CalcSetImpl::GetVarObj(CExString name, int, long)
{
    if (VariableImpl* const variable = Find(*m_Variables, name))
        return variable;
    if (VariableImpl* const variable = Find(*m_MissingVariables, name))
        return variable;
    // Whoever has read the name before has had the variable created, so no pass is told of a
    // change.
    auto variable = std::make_unique<VariableImpl>(this);
    variable->SetName(name);
    m_MissingVariables->SetAt(name, variable.get());
    return variable.release();
}

IFormulaObj* CalcSetImpl::GetFormulaObj(CExString name)
{
    return Find(*m_Formulas, name);
}

IFormulaTableObj* CalcSetImpl::GetFormulaTableObj(CExString name)
{
    return Find(*m_FormulaTables, name);
}

CCalcErrorTracker& CalcSetImpl::ErrorTracker()
{
    return *m_ErrorTracker;
}

void CalcSetImpl::SetStrError(CString text)
{
    m_StrError = std::move(text);
}

void CalcSetImpl::ClearScannedFlags(int)
{}

void CalcSetImpl::ClearFormtblObjList()
{}

void CalcSetImpl::ClearFmlaObjList()
{}

void CalcSetImpl::ClearFormtblObjScannedFlags()
{}

void CalcSetImpl::ClearFormtblObjCalculatedFlags()
{}

void CalcSetImpl::ClearItemTableList()
{}

void CalcSetImpl::AddVariable(VariableImpl* variable)
{
    Enter(*m_Variables, variable, __LINE__, "variable", "CalcSetImpl::AddVariable");
}

void CalcSetImpl::AddFormula(FormulaImpl* formula)
{
    Enter(*m_Formulas, formula, __LINE__, "formula", "CalcSetImpl::AddFormula");
}

void CalcSetImpl::AddFormulaTable(FormulaTableImpl* table)
{
    Enter(*m_FormulaTables, table, __LINE__, "table", "CalcSetImpl::AddFormulaTable");
}

void CalcSetImpl::ClearMissingVariables()
{
    Pass::NoteChange();
    DeleteVariables(*m_MissingVariables);
}

void CalcSetImpl::StartNewPass()
{
    ForEach(*m_FormulaTables, [](FormulaTableImpl& table) {
        table.SetCalculated(0);
        table.SetScanned(0);
        table.SetScannedInCondition(0);
    });
}

void CalcSetImpl::SetReportFcnDomainErrors(int report)
{
    Pass::NoteChange();
    m_ReportFcnDomainErrors = report;
}

void CalcSetImpl::SetHasDatabase(int has)
{
    m_HasDatabase = has;
}

void CalcSetImpl::SetDuration(double duration)
{
    Pass::NoteChange();
    m_Duration = duration;
}

void CalcSetImpl::SetJobSize(double jobSize)
{
    Pass::NoteChange();
    m_JobSize = jobSize;
}

void CalcSetImpl::SetQuantity(double quantity)
{
    Pass::NoteChange();
    m_Quantity = quantity;
}
