#include <TovoFormula/ExprToken.h>

#include <cerrno>

#include <TovoFormula/CalcErrorTracker.h>
#include <TovoFormula/CalculationInterfaces.h>
#include <TovoFormula/MessageIds.h>
#include <TovoPlatform/NumberText.h>

#include "Computation.h"
#include "Pass.h"
#include "ScanRecord.h"

using namespace tovo::detail;

namespace {

// How one job value is read, and what a scan records of it.
struct JobValue {
    double (ICalculationSet::*get)();
    void (ICalculationSet::*setInCondition)(int);
    int (CScannedVariables::*isScanned)() const;
    void (CScannedVariables::*setScanned)(int);
};

constexpr JobValue kDuration = {
    &ICalculationSet::GetDuration, &ICalculationSet::SetDURATIONInCondition,
    &CScannedVariables::DURATIONScanned, &CScannedVariables::SetDURATIONScanned};
constexpr JobValue kJobSize = {
    &ICalculationSet::GetJobSize, &ICalculationSet::SetJOBSIZEInCondition,
    &CScannedVariables::JOBSIZEScanned, &CScannedVariables::SetJOBSIZEScanned};
constexpr JobValue kQuantity = {
    &ICalculationSet::GetQuantity, &ICalculationSet::SetQuantityInCondition,
    &CScannedVariables::QuantityScanned, &CScannedVariables::SetQuantityScanned};

double Read(const JobValue& job, ICalculationSet& calcSet, CScannedVariables* list)
{
    if (list) {
        const bool isFirst = (list->*job.isScanned)() == 0;
        if (isFirst)
            (list->*job.setScanned)(1);
        RecordMeeting(isFirst,
                      [&](int inCondition) { (calcSet.*job.setInCondition)(inCondition); });
    }
    return (calcSet.*job.get)();
}

double ReadQuantity(ICalculationSet& calcSet, CScannedVariables* list)
{
    if (list)
        calcSet.SetQuantityInCalculations(1);
    return Read(kQuantity, calcSet, list);
}

} // namespace

int CExprToken::Calculate(double* args, int numArgs, int nested, CScannedVariables* list)
{
    m_CalcError = MSG_NONE;
    StrError::Give(CalcSet(), CString());
    if (numArgs < m_MinArgs || numArgs > m_MaxArgs || (numArgs > 0 && !args))
        return HardFailure(MSG_GENERAL_FAILURE);

    errno = 0;
    if (IsVarValue())
        return ReadFromOutside(nested, list);
    if (IsIllegal())
        return HardFailure(MSG_GENERAL_FAILURE);
    if (IsOperator() || IsFunction())
        return Conclude(Compute(m_Code, {args, static_cast<std::size_t>(numArgs)}));
    return Give(m_Value);
}

bool CExprToken::BadErrno()
{
    switch (errno) {
    case EDOM:
        m_CalcError = MSG_INVALID_PARAMETER;
        break;
    case ERANGE:
        m_CalcError = MSG_MATH_RANGE;
        break;
    default:
        return false;
    }
    StrError::Give(CalcSet(), tovo::RuntimeErrorText(errno));
    return true;
}

int CExprToken::Conclude(const MathResult& result)
{
    errno = result.errorNumber;
    if (BadErrno())
        return DomainFailure(m_CalcError);
    return result.message != MSG_NONE ? DomainFailure(result.message) : Give(result.value);
}

int CExprToken::Give(double value)
{
    m_Value = value;
    m_Calculated = 1;
    return 1;
}

int CExprToken::HardFailure(unsigned int message)
{
    m_CalcError = message;
    m_Calculated = 0;
    CalcSet().ErrorTracker().SetError(m_CalcError, this);
    return 0;
}

// The set says whether a failure on the domain fails the calculation or counts as 0.0.
int CExprToken::DomainFailure(unsigned int message)
{
    m_Value = 0.0;
    if (CalcSet().GetReportFcnDomainErrors())
        return HardFailure(message);
    m_CalcError = MSG_NONE;
    return Give(0.0);
}

int CExprToken::ReadFromOutside(int nested, CScannedVariables* list)
{
    switch (m_Code) {
    case TOK_VARIABLE:
        return ReadVariable(list);
    case TOK_FORMULA:
        return nested ? ReadNested(CalcSet().GetFormulaObj(GetName()), list)
                      : HardFailure(MSG_NONE);
    case TOK_FORMTBL:
        return nested ? ReadNested(CalcSet().GetFormulaTableObj(GetName()), list)
                      : HardFailure(MSG_NONE);
    case TOK_DURATION:
        return Give(Read(kDuration, CalcSet(), list));
    case TOK_JOBSIZE:
        return Give(Read(kJobSize, CalcSet(), list));
    default:
        return Give(ReadQuantity(CalcSet(), list));
    }
}

int CExprToken::ReadVariable(CScannedVariables* list)
{
    const CString name = GetName();
    IVarObj* const variable = CalcSet().GetVarObj(name, 1, 0);
    if (!variable)
        return HardFailure(MSG_NONE);
    if (list)
        RecordVariable(*list, name, *variable);
    return Give(Pass::ValueOf(*variable));
}

// The object writes its message straight into this token's, which is 0 if it writes none.
template <typename Object>
int CExprToken::ReadNested(Object* object, CScannedVariables* list)
{
    if (!object)
        return HardFailure(MSG_NONE);
    const NestedCall call(*object);
    if (!object->Calculate(m_CalcError, list))
        return HardFailure(m_CalcError);
    return Give(object->GetValue());
}

template int CExprToken::ReadNested(IFormulaObj*, CScannedVariables*);
template int CExprToken::ReadNested(IFormulaTableObj*, CScannedVariables*);
