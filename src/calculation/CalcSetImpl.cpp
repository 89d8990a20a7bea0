#include <TovoFormula/CalcSetImpl.h>

#include <vector>

#include <TovoFormula/CalcErrorTracker.h>
#include <TovoFormula/FormulaImpl.h>
#include <TovoFormula/FormulaTableImpl.h>
#include <TovoFormula/VariableImpl.h>
#include <TovoPlatform/ArgumentValidator.h>

#include "../expression_core/Pass.h"
#include "Namesakes.h"

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

template <typename Object>
int TakeOut(CMap<CString, const CString&, Object*, Object*>& map, const CString& name)
{
    Pass::NoteChange();
    return map.RemoveKey(name) ? 1 : 0;
}

// Nothing is taken out before all names are known, so that a lack of memory leaves all entries.
template <typename Object>
int TakeOut(CMap<CString, const CString&, Object*, Object*>& map, const Object* object, int line,
            const char* argument, const char* function)
{
    CArgumentValidator::ValidateNonNullPointer("CalcSetImpl", line, object, argument, function);
    std::vector<CString> names;
    for (const auto& [name, each] : map)
        if (each == object)
            names.push_back(name);
    for (const CString& name : names)
        TakeOut(map, name);
    return static_cast<int>(names.size());
}

void DeleteVariables(CMap<CString, const CString&, VariableImpl*, VariableImpl*>& variables)
{
    for (const auto& [name, variable] : variables)
        delete variable;
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

// Other maps count as changed ones.
CalcSetImpl& CalcSetImpl::operator=(const CalcSetImpl& other)
{
    if (this == &other)
        return *this;
    Pass::NoteChange();
    MapVersions::Next();
    m_Duration = other.m_Duration;
    m_DURATIONInCondition = other.m_DURATIONInCondition;
    m_JobSize = other.m_JobSize;
    m_JOBSIZEInCondition = other.m_JOBSIZEInCondition;
    m_Quantity = other.m_Quantity;
    m_QuantityInCalculations = other.m_QuantityInCalculations;
    m_QuantityInCondition = other.m_QuantityInCondition;
    m_ReportFcnDomainErrors = other.m_ReportFcnDomainErrors;
    m_StrError = other.m_StrError;
    m_HasDatabase = other.m_HasDatabase;
    m_ErrorTracker = other.m_ErrorTracker;
    m_Variables = other.m_Variables;
    m_MissingVariables = other.m_MissingVariables;
    m_Formulas = other.m_Formulas;
    m_FormulaTables = other.m_FormulaTables;
    m_UsesStockLookup = other.m_UsesStockLookup;
    return *this;
}

// A held pass may go on without it.
CalcSetImpl::~CalcSetImpl()
{
    Pass::NoteChange();
    ErrorTexts::NoteGone(*this);
    Namesakes::NoteGone(*this);
}

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

int CalcSetImpl::RemoveVariable(const CExString& name)
{
    return TakeOut(*m_Variables, name);
}

int CalcSetImpl::RemoveVariable(const VariableImpl* variable)
{
    return TakeOut(*m_Variables, variable, __LINE__, "variable", "CalcSetImpl::RemoveVariable");
}

int CalcSetImpl::RemoveFormula(const CExString& name)
{
    return TakeOut(*m_Formulas, name);
}

int CalcSetImpl::RemoveFormula(const FormulaImpl* formula)
{
    return TakeOut(*m_Formulas, formula, __LINE__, "formula", "CalcSetImpl::RemoveFormula");
}

int CalcSetImpl::RemoveFormulaTable(const CExString& name)
{
    return TakeOut(*m_FormulaTables, name);
}

int CalcSetImpl::RemoveFormulaTable(const FormulaTableImpl* table)
{
    return TakeOut(*m_FormulaTables, table, __LINE__, "table", "CalcSetImpl::RemoveFormulaTable");
}

void CalcSetImpl::ClearMissingVariables()
{
    Pass::NoteChange();
    DeleteVariables(*m_MissingVariables);
}

void CalcSetImpl::StartNewPass()
{
    for (const auto& [name, table] : *m_FormulaTables) {
        table->SetCalculated(0);
        table->SetScanned(0);
        table->SetScannedInCondition(0);
    }
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
