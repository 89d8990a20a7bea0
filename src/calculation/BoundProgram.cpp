#include <optional>
#include <typeinfo>
#include <utility>

#include <TovoFormula/CalculationInterfaces.h>

#include "../expression_core/Names.h"
#include "../expression_core/ProgramBuilder.h"
#include "../expression_core/UserLanguage.h"
#include "../expression_text/TokenScanner.h"
#include "BoundGuards.h"
#include "Namesakes.h"

// The short road: the text is compiled once, and the program run from then on. It ends wherever
// there is something to report or something that it cannot be sure of, with nothing done that
// shows; the caller then takes the long road from the start.

namespace tovo::detail {

// Whoever asks meanwhile finds an expression that is not loaded. A part of its callers, as the
// next.
[[gnu::always_inline]] inline bool BoundWork::RunAsCheck(ExpressionState& state)
{
    state.isLoadedByProgram = false;
    const bool isDone = state.program->Run(state, Program::Purpose::Check);
    if (isDone) {
        state.isLoadedByProgram = true;
    } else {
        Forget();
        state.gaveUpIn = Pass::Present();
    }
    return isDone;
}

// With what is needed where an object may come back to the expression. A part of its caller, so
// that a chain of formulas takes less of the stack.
[[gnu::always_inline]] inline bool BoundWork::RerunMarked(ExpressionState& state)
{
    Rerun rerun(*this, state);
    const bool isDone = RunAsCheck(state);
    state.isLoadedByProgram = true;
    rerun.End();
    return isDone;
}

// Shorter still: what calls nothing has nobody who could use what a pass remembers.
bool BoundWork::RunAlone(CFmlaExpression& expression, const CString& name)
{
    ExpressionState* const state = expression.m_State.get();
    if (!state || !state->mayRunAgain || state->checkedName != name ||
        !CFmlaExpression::m_NestedFmlaNames.IsEmpty())
        return false;
    Program& program = *state->program;
    if (&program.Names() != NamesInForce() || !program.CallsNothing() ||
        !program.Run(*state, Program::Purpose::Check))
        return false;
    state->leftText = program.LeftText();
    if (state->leftText != 0 || !ObjectCalls::IsStrErrorClear(state->calcSet))
        ErrorTexts::Give(state->calcSet, state->leftText);
    return true;
}

// A short road, for a program that is as good as it was. False, with nothing done that shows,
// if the expression has to be looked at again.
bool BoundWork::RunAgain(ExpressionState& state, const CString& name)
{
    if (!state.mayRunAgain || state.marks > 0 || state.checkedName != name ||
        !Pass::IsRemembering())
        return false;
    const Program& program = *state.program;
    const CStringList& names = CFmlaExpression::m_NestedFmlaNames;
    if (&program.Names() != NamesInForce() || UnderWay::IsDeepest() || Rerun::IsNamed(name) ||
        (!names.IsEmpty() && names.Find(name)))
        return false;
    const Start start;
    if (!(program.CallsNothing() ? state.program->Run(state, Program::Purpose::Check)
                                 : RerunMarked(state)))
        return false;
    state.reachedIn = Pass::First();
    if (ErrorTexts::HasOthers()) {
        NoteChecked(name, start);
    } else if (Pass::Present() == start.pass) {
        state.leftText = program.LeftText();
        state.checkedIn = state.calculatedIn = start.pass;
    }
    if (state.calculatedIn != Pass::Present()) {
        // Something has changed meanwhile, and somebody may have come back to the expression.
        state.mayRunAgain = false;
        NoteLoaded();
    }
    return true;
}

// A part of its caller, as RunAsCheck.
[[gnu::always_inline]] inline bool BoundWork::RunMarked(Former& former, ExpressionState& state)
{
    const UnderWay underWay(state.marks);
    if (underWay.IsTooDeep())
        return false;
    former.TakeTree();
    return RunAsCheck(state);
}

// The road of the program, from the mark on the expression to the value. Where it gives up, the
// expression is as it was.
bool BoundWork::CheckByProgram(Former& former, const CString& name)
{
    ExpressionState& state = State();
    if (state.marks > 0 || state.gaveUpIn == Pass::Present())
        return false;
    if (!HasProgramFor(former, name) || !RunMarked(former, state)) {
        former.PutBack();
        return false;
    }
    m_Expression.m_Tree.m_Msg = MSG_NONE;
    NoteLoaded();
    return true;
}

// A part of its caller, as RunAsCheck.
[[gnu::always_inline]] inline bool BoundWork::CheckWithCare(Former& former, ExpressionState& state,
                                                            const CString& name, const Start& start)
{
    if (!state.formulaName || *state.formulaName != name)
        return false;
    if (state.calculatedIn == Pass::Present() && state.marks == 0)
        return true;
    Rerun::EnterNames();
    std::optional<NestedNameGuard> entry;
    if (!name.IsEmpty()) {
        entry.emplace(CFmlaExpression::m_NestedFmlaNames, name);
        if (!entry->HasEntered())
            return false;
    }
    if (!CheckByProgram(former, name))
        return false;
    state.reachedIn = Pass::First();
    NoteChecked(name, start);
    return true;
}

// Where it runs again, nothing is touched but the state, which is at hand already.
bool BoundWork::CalculateByProgram(ExpressionState& state, const CString& name, bool withIsValid)
{
    if (state.leftElsewhere || Namesakes::AreKnown())
        return false;
    BoundWork work(state.expression);
    if (!work.RunAgain(state, name))
        return work.CalculateWithCare(state, name, withIsValid);
    return state.calculatedIn == Pass::Present() ||
           work.CalculateDisturbed(state, name, withIsValid);
}

// Apart from its caller, whose frame is on the stack for each formula of a chain.
bool BoundWork::CalculateWithCare(ExpressionState& state, const CString& name, bool withIsValid)
{
    const Start start;
    Former former(*this);
    bool isDone = CheckWithCare(former, state, name, start);
    // The check has calculated all there is, unless it has called an object last.
    if (isDone && state.calculatedIn != Pass::Present())
        isDone = start.pass == Pass::Present() ? WalkByProgram(state, start, &name)
                                               : CalculateDisturbed(state, name, withIsValid);
    former.End();
    return isDone;
}

// Something has changed in the course of the check, so that it does not count. A calculation checks
// again what was checked before it.
bool BoundWork::CalculateDisturbed(ExpressionState& state, const CString& name, bool withIsValid)
{
    return withIsValid ? CalculateWithCare(state, name, false)
                       : WalkByProgram(state, Start(), nullptr);
}

bool BoundWork::WalkByProgram(ExpressionState& state, const Start& start,
                              const CString* checkedName)
{
    const UnderWay underWay(state.marks);
    if (!RunAsWalk())
        return false;
    NoteCalculated(nullptr, start, checkedName);
    return true;
}

// Whether there is a program for the present text, whose kind is what the name says.
bool BoundWork::HasProgramFor(Former& former, const CString& name)
{
    ExpressionState& state = State();
    const bool isCurrent = state.program && state.textOfProgram == m_Expression.m_TextVersion &&
                           &state.program->Names() == NamesInForce();
    if (!isCurrent) {
        if (!Pass::IsRemembering() || state.textWithoutProgram == m_Expression.m_TextVersion ||
            !MayUsePrograms())
            return false;
        std::unique_ptr<Program> program = Compile();
        if (!program) {
            state.textWithoutProgram = m_Expression.m_TextVersion;
            return false;
        }
        Forget();
        former.TakeProgram();
        state.program = std::move(program);
        state.textOfProgram = m_Expression.m_TextVersion;
    }
    return Pass::IsRemembering() &&
           (name.IsEmpty() || state.program->IsBoolean() == IsYesNoName(name.View()));
}

std::unique_ptr<Program> BoundWork::Compile()
{
    const std::vector<Reference> references = ReferencesOf(m_Expression.m_VarPtrs);
    TokenScanner scanner(m_Expression.m_ExprText, references, CFmlaExpression::SpellingOf(TL_LOCAL),
                         0);
    ProgramBuilder builder(m_Expression.CalcSet(), m_Expression.m_ExprText.GetLength());
    TokenScanner::Outcome outcome;
    while ((outcome = scanner.Next()) == TokenScanner::Outcome::Token) {
        const int code = scanner.TokenCode();
        const WideView text = scanner.TokenText();
        const bool isTaken = code < kReferenceKindCount
                                 ? builder.TakeReference({scanner.TokenPos(),
                                                          static_cast<std::uint16_t>(text.size()),
                                                          static_cast<std::uint16_t>(code)},
                                                         text)
                                 : builder.Take(code, text);
        if (!isTaken)
            return nullptr;
    }
    if (outcome == TokenScanner::Outcome::Fault)
        return nullptr;
    return builder.Finish(m_Expression.m_ExprText, CFmlaExprBase::PresentNames());
}

} // namespace tovo::detail
