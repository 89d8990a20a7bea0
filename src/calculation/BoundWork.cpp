#include "BoundWork.h"

#include <optional>
#include <typeinfo>

#include <TovoFormula/CalcErrorTracker.h>
#include <TovoFormula/CalculationInterfaces.h>
#include <TovoFormula/MessageIds.h>

#include "../expression_core/IfDepthGuard.h"
#include "../expression_core/RestoreOnThrow.h"
#include "../expression_core/ScanMark.h"
#include "BoundGuards.h"
#include "Namesakes.h"

namespace tovo::detail {

BoundWork::BoundWork(CFmlaExpression& expression, const CString& formulaName)
    : m_Expression(expression)
{
    if (expression.m_State && expression.m_State->formulaName)
        return;
    ExpressionState& state = State();
    state.formulaName = &formulaName;
    if (!IsUnderOwnName(state.checkedName))
        state.calculatedIn = kNeverInPass;
}

// Only what was checked under the name of its formula counts for those that refer to the formula: a
// check under another one says nothing about the kind.
bool BoundWork::IsUnderOwnName(const CString& name) const
{
    const CString* const own = m_Expression.m_State->formulaName;
    return !own || own == &name || *own == name;
}

ExpressionState& BoundWork::State()
{
    if (!m_Expression.m_State) {
        m_Expression.m_State =
            std::make_unique<ExpressionState>(m_Expression, m_Expression.CalcSet());
        m_Expression.m_Untouched = &m_Expression.m_State->mayRunAgain;
    }
    return *m_Expression.m_State;
}

// A host that derives may look at the tree, or keep what the library does not know of.
bool BoundWork::MayUsePrograms() const
{
    return typeid(m_Expression) == typeid(CFmlaExpression);
}

void BoundWork::NoteRenamed()
{
    State().mayRunAgain = false;
    State().ownNameAt = 0;
}

void BoundWork::TakeMessage(unsigned int message)
{
    NoteDisturbed();
    State().mayRunAgain = false;
    m_Expression.m_MessageNum = static_cast<int>(message);
}

int BoundWork::Fail(unsigned int message)
{
    State();
    m_Expression.CalcSet().ErrorTracker().SetError(message, &m_Expression);
    TakeMessage(message);
    return 0;
}

void BoundWork::Forget()
{
    if (!m_Expression.m_State)
        return;
    ExpressionState& state = *m_Expression.m_State;
    state.isLoadedByProgram = false;
    state.mayRunAgain = false;
    state.checkedIn = state.calculatedIn = state.scannedIn = kNeverInPass;
}

void BoundWork::ForgetTree()
{
    Forget();
    const ExpressionState* const state = m_Expression.m_State.get();
    if (!state || state->marks == 0)
        m_Expression.m_Tree.Clear();
}

// Ends what is remembered of whatever has reached this expression in the pass: done again, it would
// leave the expression as it was.
void BoundWork::NoteDisturbed()
{
    const ExpressionState* const state = m_Expression.m_State.get();
    if (state && state->reachedIn == Pass::First())
        Pass::NoteChange();
}

int BoundWork::Validate(unsigned int& message, const CString& name, int nested)
{
    if (!nested)
        return ValidateAfresh(message, name, nested);
    if (IsCheckedAtOnce(name))
        return 1;
    Former former(*this);
    const int isValid = ValidateWithCare(former, message, name);
    former.End();
    return isValid;
}

bool BoundWork::IsCheckedAtOnce(const CString& name)
{
    ExpressionState& state = State();
    m_IsNamesake = false;
    if (IsChecked(name)) {
        LeaveTexts(&LeftElsewhere::byCheck);
        NoteLoaded();
        return true;
    }
    if (!Namesakes::AreNone(state) || !RunAgain(state, name))
        return false;
    GiveTextOfProgram();
    return true;
}

int BoundWork::ValidateWithCare(Former& former, unsigned int& message, const CString& name)
{
    ExpressionState& state = State();
    std::optional<PassApart> apart;
    if (Namesakes::MayExist() && Namesakes::AreThere(state, name))
        apart.emplace();
    m_IsNamesake = apart.has_value();
    Rerun::EnterNames();
    std::optional<NestedNameGuard> entry;
    if (!name.IsEmpty()) {
        entry.emplace(CFmlaExpression::m_NestedFmlaNames, name);
        if (!entry->HasEntered()) {
            Fail(MSG_FORMULA_INSIDE_ITSELF);
            message = MSG_FORMULA_INSIDE_ITSELF;
            return 0;
        }
    }
    const Start start;
    const bool isDone = CheckByProgram(former, name);
    if (isDone)
        GiveTextOfProgram();
    if (isDone || LoadNamed(former, name, 1)) {
        state.reachedIn = Pass::First();
        if (!m_IsNamesake)
            NoteChecked(name, start);
        return 1;
    }
    message = static_cast<unsigned int>(m_Expression.m_MessageNum);
    return 0;
}

int BoundWork::ValidateAfresh(unsigned int& message, const CString& name, int nested)
{
    State();
    Former former(*this);
    const int isLoaded = LoadNamed(former, name, nested);
    former.End();
    if (!isLoaded)
        message = static_cast<unsigned int>(m_Expression.m_MessageNum);
    return isLoaded;
}

int BoundWork::CheckAndCalculate(unsigned int& message, const CString& name,
                                 CScannedVariables* list)
{
    if (IsChecked(name) && IsCalculated(list)) {
        LeaveTexts(&LeftElsewhere::byCalculation);
        NoteLoaded();
        return 1;
    }
    const Start start;
    std::optional<Former> former;
    if (list)
        former.emplace(*this);
    const bool isAtOnce = IsCheckedAtOnce(name);
    if (!former && !(isAtOnce && IsCalculated(list)))
        former.emplace(*this);
    const bool isValid = isAtOnce || ValidateWithCare(*former, message, name);
    // Building the tree has calculated it already.
    const bool isCalculated =
        isValid && (IsCalculated(list) || Walk(list, start, m_IsNamesake ? nullptr : &name));
    if (former)
        former->End();
    if (isValid && !isCalculated)
        message = static_cast<unsigned int>(m_Expression.m_MessageNum);
    return isCalculated ? 1 : 0;
}

int BoundWork::Calculate(CScannedVariables* list)
{
    if (State().marks > 0)
        return Fail(MSG_FORMULA_INSIDE_ITSELF);
    // In another set, the check may have left a text where a walk does not come by.
    if (IsCalculated(list) && !State().leftElsewhere) {
        LeaveTexts(&LeftElsewhere::byCalculation);
        return 1;
    }
    return Walk(list, Start(), nullptr);
}

int BoundWork::Walk(CScannedVariables* list, const Start& start, const CString* checkedName)
{
    ExpressionState& state = State();
    const UnderWay underWay(state.marks);
    if (!underWay.IsFirst())
        return Fail(MSG_FORMULA_INSIDE_ITSELF);
    RestoreOnThrow former(state.value, state.isLoadedByProgram);
    const bool hasProgram = state.isLoadedByProgram;
    ScanMark scanned(list);
    if (hasProgram && !list && RunAsWalk()) {
        GiveTextOfProgram();
    } else {
        if (hasProgram)
            BuildTreeOfProgram();
        if (!m_Expression.m_Tree.Calculate(list)) {
            m_Expression.m_MessageNum = static_cast<int>(m_Expression.m_Tree.GetMsg());
            NoteDisturbed();
            Forget();
            scanned.End();
            former.End();
            return 0;
        }
    }
    scanned.End();
    former.End();
    NoteCalculated(list, start, checkedName);
    if (list && hasProgram) {
        // The tree was for the scan alone.
        state.value = m_Expression.m_Tree.GetValue();
        m_Expression.m_Tree.Clear();
        state.isLoadedByProgram = true;
    }
    return 1;
}

bool BoundWork::RunAsWalk()
{
    const IfDepthGuard depth(CExprTree::m_InIfConditionCount);
    ExpressionState& state = State();
    const bool isDone = state.program->Run(state, Program::Purpose::Calculate);
    // An object may have changed the text, which counts from the next check on.
    state.isLoadedByProgram = true;
    return isDone;
}

} // namespace tovo::detail
