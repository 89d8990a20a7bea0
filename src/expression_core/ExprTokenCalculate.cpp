#include <TovoFormula/ExprToken.h>

#include <cerrno>

#include <TovoFormula/CalcErrorTracker.h>
#include <TovoFormula/CalculationInterfaces.h>
#include <TovoFormula/MessageIds.h>
#include <TovoPlatform/NumberText.h>

#include "Computation.h"
#include "ErrorTexts.h"
#include "JobValues.h"
#include "Pass.h"
#include "ReferenceKinds.h"
#include "RestoreOnThrow.h"
#include "ScanRecord.h"

using namespace tovo::detail;

namespace {

// An object that changes something while it is asked may be gone when it returns.
template <typename Object>
bool IsThereStill(ICalculationSet& calcSet, int code, const CString& name, const Object* object)
{
    return WithObject(calcSet, code, name, [object](auto* found) {
        return static_cast<const void*>(found) == static_cast<const void*>(object);
    });
}

} // namespace

int CExprToken::Calculate(double* args, int numArgs, int nested, CScannedVariables* list)
{
    RestoreOnThrow former(m_CalcError);
    m_CalcError = MSG_NONE;
    const int result = CalculateAfresh(args, numArgs, nested, list);
    former.End();
    return result;
}

int CExprToken::CalculateAfresh(double* args, int numArgs, int nested, CScannedVariables* list)
{
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
    const int error = errno;
    if (error != EDOM && error != ERANGE)
        return false;
    ErrorTexts::Give(CalcSet(), error);
    m_CalcError = error == EDOM ? MSG_INVALID_PARAMETER : MSG_MATH_RANGE;
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
    CalcSet().ErrorTracker().SetError(message, this);
    m_CalcError = message;
    m_Calculated = 0;
    return 0;
}

// The set says whether a failure on the domain fails the calculation or counts as 0.0.
int CExprToken::DomainFailure(unsigned int message)
{
    if (CalcSet().GetReportFcnDomainErrors()) {
        HardFailure(message);
        m_Value = 0.0;
        return 0;
    }
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
        const PassNumber pass = Pass::Present();
        if (!object || !Reach(*object, name, list) ||
            (Pass::Present() != pass && !IsThereStill(CalcSet(), m_Code, name, object)))
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
