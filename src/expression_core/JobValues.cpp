#include "JobValues.h"

#include <cassert>

#include <TovoFormula/CalculationInterfaces.h>
#include <TovoFormula/TokenCodes.h>

#include "ScanRecord.h"

namespace tovo::detail {
namespace {

// How one job value is read, and what a scan records of it.
struct JobValue {
    int code;
    double (ICalculationSet::*get)();
    void (ICalculationSet::*setInCondition)(int);
    int (CScannedVariables::*isScanned)() const;
    void (CScannedVariables::*setScanned)(int);
};

constexpr JobValue kJobValues[] = {
    {TOK_DURATION, &ICalculationSet::GetDuration, &ICalculationSet::SetDURATIONInCondition,
     &CScannedVariables::DURATIONScanned, &CScannedVariables::SetDURATIONScanned},
    {TOK_JOBSIZE, &ICalculationSet::GetJobSize, &ICalculationSet::SetJOBSIZEInCondition,
     &CScannedVariables::JOBSIZEScanned, &CScannedVariables::SetJOBSIZEScanned},
    {TOK_QUANTITY, &ICalculationSet::GetQuantity, &ICalculationSet::SetQuantityInCondition,
     &CScannedVariables::QuantityScanned, &CScannedVariables::SetQuantityScanned},
};

const JobValue& JobValueOf(int code)
{
    assert(code == TOK_DURATION || code == TOK_JOBSIZE || code == TOK_QUANTITY);
    const JobValue* job = kJobValues;
    while (job->code != code)
        ++job;
    return *job;
}

void Record(const JobValue& job, ICalculationSet& calcSet, CScannedVariables& list)
{
    if (job.code == TOK_QUANTITY)
        calcSet.SetQuantityInCalculations(1);
    const bool isFirst = (list.*job.isScanned)() == 0;
    if (isFirst)
        (list.*job.setScanned)(1);
    RecordMeeting(isFirst, [&](int inCondition) { (calcSet.*job.setInCondition)(inCondition); });
}

} // namespace

double ReadJobValue(int code, ICalculationSet& calcSet, CScannedVariables* list)
{
    const JobValue& job = JobValueOf(code);
    if (list)
        Record(job, calcSet, *list);
    return (calcSet.*job.get)();
}

} // namespace tovo::detail
