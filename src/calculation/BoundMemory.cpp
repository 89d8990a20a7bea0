#include <new>

#include <TovoFormula/CalculationInterfaces.h>
#include <TovoFormula/MessageIds.h>
#include <TovoFormula/ScannedVariables.h>

#include "BoundWork.h"

// What an expression remembers of its successes: the number of the pass for each kind of success,
// and the texts of errors that the same, done again, would leave.

namespace tovo::detail {
namespace {

// The last thing that a single reference does is to call an object. Once more, it may leave another
// text than the first time.
bool IsReferenceToObject(const CExprToken* root)
{
    return root && (root->IsFormula() || root->IsFormtbl());
}

} // namespace

bool BoundWork::IsChecked(const CString& name) const
{
    const ExpressionState* const state = m_Expression.m_State.get();
    return state && state->checkedIn == Pass::Present() && state->marks == 0 &&
           state->checkedName == name;
}

// With a list, only if another walk could not change an in-condition flag: a first meeting writes
// them, a later one raises them if it is inside a condition.
bool BoundWork::IsCalculated(CScannedVariables* list) const
{
    const ExpressionState* const state = m_Expression.m_State.get();
    if (!state || state->marks > 0)
        return false;
    if (!list)
        return state->calculatedIn == Pass::Present();
    return IsScanOf(*state, *list) && (state->isScannedInCondition || !CExprTree::InIfCondition());
}

// What a check that has succeeded leaves in the expression.
void BoundWork::NoteLoaded()
{
    m_Expression.m_MessageNum = MSG_NONE;
    m_Expression.m_InvalidPos = 0;
    m_Expression.m_ScanPos = m_Expression.m_ExprText.GetLength();
}

void BoundWork::NoteChecked(const CString& name, const Start& start)
{
    KeepText();
    // A table that has its value leaves another text the next time.
    if (!KeepElsewhere(start, &LeftElsewhere::byCheck) || Pass::Present() != start.pass ||
        !Pass::IsRemembering() || EndsWithTable())
        return;
    ExpressionState& state = State();
    state.checkedIn = start.pass;
    state.checkedName = name;
    state.value = m_Expression.GetValue();
    const bool isCalculated = !EndsWithObject() && !state.leftElsewhere && IsUnderOwnName(name);
    state.mayRunAgain = isCalculated && state.isLoadedByProgram;
    if (isCalculated)
        state.calculatedIn = start.pass;
}

void BoundWork::NoteCalculated(CScannedVariables* list, const Start& start,
                               const CString* checkedName)
{
    ExpressionState& state = State();
    state.reachedIn = Pass::First();
    // What a table leaves in a scan, it would not leave again.
    if (!list)
        KeepText();
    else if (EndsWithTable())
        return;
    const bool isKept =
        checkedName ? KeepElsewhere(start, &LeftElsewhere::byCalculation) : !state.leftElsewhere;
    if (!isKept)
        return;
    if (checkedName && !list && Pass::Present() == start.pass && Pass::IsRemembering()) {
        state.checkedIn = start.pass;
        state.checkedName = *checkedName;
    }
    // What is walked without a check may be an older text. Whoever came back to the expression
    // meanwhile has left a message, which a check takes away.
    if (Pass::Present() != start.pass || state.checkedIn != start.pass || m_Expression.m_MessageNum)
        return;
    if (IsUnderOwnName(checkedName ? *checkedName : state.checkedName))
        state.calculatedIn = start.pass;
    state.value = m_Expression.GetValue();
    if (!list || Pass::Scan() != start.scan)
        return;
    const bool wasInCondition = state.isScannedInCondition && IsScanOf(state, *list);
    state.isScannedInCondition = wasInCondition || CExprTree::InIfCondition();
    state.scannedIn = start.pass;
    state.scan = Pass::Scan();
    state.scannedList = list->m_Id;
}

bool BoundWork::IsScanOf(const ExpressionState& state, const CScannedVariables& list)
{
    return state.scannedIn == Pass::Present() && state.scan == Pass::Scan() &&
           state.scannedList == list.m_Id;
}

bool BoundWork::EndsWithObject() const
{
    const ExpressionState& state = *m_Expression.m_State;
    return state.isLoadedByProgram ? state.program->EndsWithObject()
                                   : IsReferenceToObject(m_Expression.m_Tree.RootToken());
}

bool BoundWork::EndsWithTable() const
{
    const ExpressionState& state = *m_Expression.m_State;
    if (state.isLoadedByProgram)
        return state.program->EndsWithTable();
    const CExprToken* const root = m_Expression.m_Tree.RootToken();
    return root && root->IsFormtbl();
}

// Where an object was called last, it has seen to the text.
void BoundWork::GiveTextOfProgram()
{
    if (!EndsWithObject())
        ErrorTexts::Give(State().calcSet, State().program->LeftText());
}

// Takes down what the same, done again, would leave as the text of its own set.
void BoundWork::KeepText()
{
    ExpressionState& state = State();
    if (state.isLoadedByProgram && !state.program->EndsWithObject())
        state.leftText = state.program->LeftText();
    else
        state.leftText = ErrorTexts::LastOf(state.calcSet);
}

// The same for other sets. False if that cannot be told: a table that did something for once has
// given texts, or taken away what others have given; or there is no memory to take it down.
bool BoundWork::KeepElsewhere(const Start& start, std::vector<LeftText> LeftElsewhere::*by) noexcept
try {
    ExpressionState& state = State();
    std::vector<LeftText> given = ErrorTexts::GivenElsewhere(state.calcSet, start.turn);
    if (given.empty()) {
        state.leftElsewhere.reset();
        return true;
    }
    if (ErrorTexts::HasOnce(start.turn))
        return false;
    if (!state.leftElsewhere)
        state.leftElsewhere = std::make_unique<LeftElsewhere>();
    (*state.leftElsewhere).*by = std::move(given);
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

void BoundWork::LeaveTexts(std::vector<LeftText> LeftElsewhere::*by)
{
    const ExpressionState& state = State();
    ErrorTexts::Give(state.calcSet, state.leftText);
    if (state.leftElsewhere)
        for (const LeftText& text : (*state.leftElsewhere).*by)
            ErrorTexts::Give(*text.calcSet, text.error);
}

} // namespace tovo::detail
