#include "Pass.h"

#include "OwnObjects.h"

namespace tovo::detail {
namespace {

thread_local int depth = 0;
thread_local bool isInForeignCall = false;
thread_local bool isRemembering = true;
thread_local Stamp present = kNeverStamped;
thread_local Stamp foreignReads = 0;
thread_local CString lastStrError;

} // namespace

Pass::Pass() : m_WasInForeignCall(isInForeignCall)
{
    if (depth++ == 0 || isInForeignCall)
        NoteChange();
    isInForeignCall = false;
}

Pass::~Pass()
{
    --depth;
    isInForeignCall = m_WasInForeignCall;
}

Stamp Pass::Now()
{
    if (depth == 0 || !isRemembering)
        NoteChange();
    return present;
}

void Pass::NoteChange()
{
    ++present;
}

double Pass::ValueOf(IVarObj& variable)
{
    if (!IsOwn(variable))
        ++foreignReads;
    return variable.GetValue();
}

Stamp Pass::ForeignReads()
{
    return foreignReads;
}

bool Pass::IsRemembering()
{
    return isRemembering;
}

void Pass::SetRemembering(bool isOn)
{
    isRemembering = isOn;
}

NestedCall::NestedCall(IFormulaObj& formula) : NestedCall(!IsOwn(formula))
{}

NestedCall::NestedCall(IFormulaTableObj& table) : NestedCall(!IsOwn(table))
{}

NestedCall::NestedCall(bool isForeign) : m_IsForeign(isForeign), m_WasInForeignCall(isInForeignCall)
{
    isInForeignCall = isInForeignCall || isForeign;
}

NestedCall::~NestedCall()
{
    isInForeignCall = m_WasInForeignCall;
    if (m_IsForeign)
        Pass::NoteChange();
}

NoChange::NoChange() : m_Found(present)
{}

NoChange::~NoChange()
{
    present = m_Found;
}

void GiveStrError(ICalculationSet& calcSet, const CString& text)
{
    lastStrError = text;
    calcSet.SetStrError(text);
}

const CString& LastStrError()
{
    return lastStrError;
}

} // namespace tovo::detail
