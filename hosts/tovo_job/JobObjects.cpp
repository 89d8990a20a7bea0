#include "JobObjects.h"

#include <TovoFormula/CalcErrorTracker.h>
#include <TovoFormula/ExprTree.h>
#include <TovoFormula/ScannedVariables.h>

// One formula or table under way, for as long as the object lives.
class NestingLevel {
public:
    explicit NestingLevel(JobSet& set) : m_Set(set) { ++m_Set.m_Depth; }
    ~NestingLevel() { --m_Set.m_Depth; }
    NestingLevel(const NestingLevel&) = delete;
    NestingLevel& operator=(const NestingLevel&) = delete;

    // Every way down goes through these levels, so none is deeper than the stack allows.
    bool IsTooDeep() const { return m_Set.m_Depth > kDeepestNesting; }

    int Fail(unsigned int& message, CObject* object)
    {
        message = kNestedTooDeep;
        // The objects above add themselves to the chain, as they do for a fault of the library's.
        m_Set.ErrorTracker().SetError(message, object);
        return 0;
    }

private:
    JobSet& m_Set;
};

void JobSet::ForgetConditions()
{
    SetDURATIONInCondition(0);
    SetJOBSIZEInCondition(0);
    SetQuantityInCondition(0);
    // A scan overwrites the marks of what it meets and leaves all others as they were.
    for (const auto& variables : {m_Variables, m_MissingVariables}) {
        CString name;
        VariableImpl* variable = nullptr;
        for (POSITION place = variables->GetStartPosition(); place;) {
            variables->GetNextAssoc(place, name, variable);
            variable->SetInCond(0);
        }
    }
}

IVarObj* JobSet::FindVariable(const CString& name) const
{
    VariableImpl* variable = nullptr;
    if (!m_Variables->Lookup(name, variable))
        m_MissingVariables->Lookup(name, variable);
    return variable;
}

std::vector<CString> JobSet::MadeUpVariables() const
{
    std::vector<CString> names;
    CString name;
    VariableImpl* variable = nullptr;
    for (POSITION place = m_MissingVariables->GetStartPosition(); place;) {
        m_MissingVariables->GetNextAssoc(place, name, variable);
        names.push_back(name);
    }
    return names;
}

int JobFormula::Calculate(unsigned int& message, CScannedVariables* list)
{
    if (AnswersFromValue(list))
        return 1;
    NestingLevel level(m_Set);
    if (level.IsTooDeep())
        return level.Fail(message, this);
    if (!FormulaImpl::Calculate(message, list))
        return 0;
    SetCalculated(1);
    // The same marks as the library keeps for its tables.
    if (list) {
        SetScanned(1);
        if (CExprTree::InIfCondition())
            m_ScannedInCondition = 1;
    }
    return 1;
}

// A scan tells of no failure. What is too deep here was so for the calculation before, which did.
void JobFormula::GetVariables(CScannedVariables& list, int all, int clear)
{
    NestingLevel level(m_Set);
    if (!level.IsTooDeep())
        FormulaImpl::GetVariables(list, all, clear);
}

int JobFormula::IsValid(unsigned int& message, int nested)
{
    // A check without the nested ones says nothing of what lies below, so it is not remembered. Nor
    // is a failure: the chain of a fault has to be made anew for each formula above it.
    if (nested && GetValidated())
        return 1;
    NestingLevel level(m_Set);
    if (level.IsTooDeep())
        return level.Fail(message, this);
    if (!FormulaImpl::IsValid(message, nested))
        return 0;
    if (nested)
        SetValidated(1);
    return 1;
}

void JobFormula::StartPass()
{
    SetCalculated(0);
    SetValidated(0);
    SetScanned(0);
    m_ScannedInCondition = 0;
}

// A scan passes again through a formula that it met outside conditions only, when it comes from
// inside one: what the formula reads counts as read in a condition then.
bool JobFormula::AnswersFromValue(const CScannedVariables* list) const
{
    if (!m_Calculated)
        return false;
    return !list || (m_Scanned && (m_ScannedInCondition || !CExprTree::InIfCondition()));
}

int JobTable::Calculate(unsigned int& message, CScannedVariables* list)
{
    NestingLevel level(m_Set);
    if (level.IsTooDeep())
        return level.Fail(message, this);
    return FormulaTableImpl::Calculate(message, list);
}

void JobTable::GetVariables(CScannedVariables& list, int all, int clear)
{
    NestingLevel level(m_Set);
    if (!level.IsTooDeep())
        FormulaTableImpl::GetVariables(list, all, clear);
}

int JobTable::IsValid(unsigned int& message, int nested)
{
    NestingLevel level(m_Set);
    if (level.IsTooDeep())
        return level.Fail(message, this);
    return FormulaTableImpl::IsValid(message, nested);
}
