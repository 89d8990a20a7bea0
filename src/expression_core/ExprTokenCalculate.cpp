#include <TovoFormula/ExprToken.h>

#include <cerrno>

#include <TovoFormula/CalcErrorTracker.h>
#include <TovoFormula/CalculationInterfaces.h>
#include <TovoFormula/MessageIds.h>
#include <TovoPlatform/NumberText.h>

#include "Computation.h"
#include "ErrorTexts.h"
#include "JobValues.h"
#include "ReferenceKinds.h"
#include "ScanRecord.h"

using namespace tovo::detail;

int CExprToken::Calculate(double* args, int numArgs, int nested, CScannedVariables* list)
{
    m_CalcError = MSG_NONE;
    ErrorTexts::Give(CalcSet(), 0);
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
    ErrorTexts::Give(CalcSet(), errno);
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
    if (IsNestedKind(m_Code) && !nested)
        return HardFailure(MSG_NONE);
    if (!IsVariable() && !IsNestedKind(m_Code))
        return Give(ReadJobValue(m_Code, CalcSet(), list));
    const CString name = GetName();
    return WithObject(CalcSet(), m_Code, name, [&](auto* object) {
        // The object writes its message straight into this token's, which is 0 if it writes none.
        if (!object || !Reach(*object, name, list))
            return HardFailure(m_CalcError);
        return Give(object->GetValue());
    });
}

bool CExprToken::Reach(IVarObj& variable, const CString& name, CScannedVariables* list)
{
    if (list)
        RecordVariable(*list, name, variable);
    return true;
}

template <typename Object>
bool CExprToken::Reach(Object& object, const CString&, CScannedVariables* list)
{
    return object.Calculate(m_CalcError, list) != 0;
}
