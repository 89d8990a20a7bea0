#include "BoundWork.h"

#include <cassert>
#include <optional>
#include <typeinfo>
#include <utility>

#include <TovoFormula/CalcErrorTracker.h>
#include <TovoFormula/CalculationInterfaces.h>
#include <TovoFormula/MessageIds.h>
#include <TovoFormula/ScannedVariables.h>
#include <TovoPlatform/NumberText.h>

#include "../expression_core/IfDepthGuard.h"
#include "../expression_core/LocalNumbers.h"
#include "../expression_core/Names.h"
#include "../expression_core/ProgramBuilder.h"
#include "../expression_text/TokenScanner.h"
#include "Namesakes.h"
#include "UnderWay.h"

namespace tovo::detail {
namespace {

// The last thing that a single reference does is to call an object. Once more, it may leave another
// text than the first time.
bool IsReferenceToObject(const CExprToken* root)
{
    return root && (root->IsFormula() || root->IsFormtbl());
}

} // namespace

// Leaves an expression without a tree if an object throws while it is being checked.
class BoundWork::Throwing {
public:
    explicit Throwing(BoundWork& work) : m_Work(work) {}
    ~Throwing()
    {
        if (m_HasEnded)
            return;
        m_Work.NoteDisturbed();
        m_Work.Forget();
        m_Work.m_Expression.m_Tree.Clear();
        m_Work.m_Expression.m_Tree.m_Msg = MSG_NONE;
        m_Work.m_Expression.m_MessageNum = MSG_NONE;
        m_Work.m_Expression.m_InvalidPos = 0;
    }

    Throwing(const Throwing&) = delete;
    Throwing& operator=(const Throwing&) = delete;

    void End() { m_HasEnded = true; }

private:
    BoundWork& m_Work;
    bool m_HasEnded = false;
};

// An expression whose program is run again. What is in progress is known by its names, but as long
// as nothing looks for them, they need not be entered.
class BoundWork::Rerun {
public:
    explicit Rerun(BoundWork& work)
        : m_Throwing(work),
          m_State(*work.m_Expression.m_State),
          m_Mark(m_State.marks),
          m_Outer(innermost)
    {
        if (!m_Outer)
            outermost = this;
        innermost = this;
    }
    ~Rerun()
    {
        innermost = m_Outer;
        if (m_Entry)
            CFmlaExpression::m_NestedFmlaNames.RemoveAt(m_Entry);
    }

    Rerun(const Rerun&) = delete;
    Rerun& operator=(const Rerun&) = delete;

    void End() { m_Throwing.End(); }

    // Whether the outermost one, which need not be in its set, bears the name.
    static bool IsNamed(const CString& name)
    {
        return innermost && outermost->m_State.checkedName == name;
    }
    // To be called before names are looked for or entered.
    static void EnterNames()
    {
        if (innermost && !innermost->m_IsEntered)
            innermost->EnterWithOuter();
    }

private:
    void EnterWithOuter()
    {
        if (m_Outer && !m_Outer->m_IsEntered)
            m_Outer->EnterWithOuter();
        m_IsEntered = true;
        if (!m_State.checkedName.IsEmpty())
            m_Entry = CFmlaExpression::m_NestedFmlaNames.AddHead(m_State.checkedName);
    }

    static inline constinit thread_local Rerun* innermost = nullptr;
    static inline constinit thread_local Rerun* outermost = nullptr;

    Throwing m_Throwing;
    ExpressionState& m_State;
    UnderWay m_Mark;
    Rerun* const m_Outer;
    POSITION m_Entry = nullptr;
    bool m_IsEntered = false;
};

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

void BoundWork::TakeMessage(unsigned int message)
{
    NoteDisturbed();
    State().mayRunAgain = false;
    m_Expression.m_MessageNum = static_cast<int>(message);
}

int BoundWork::Fail(unsigned int message)
{
    TakeMessage(message);
    m_Expression.CalcSet().ErrorTracker().SetError(message, &m_Expression);
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
    ExpressionState& state = State();
    if (IsChecked(name)) {
        NoteLoaded();
        LeaveTexts(&LeftElsewhere::byCheck);
        return 1;
    }
    if (Namesakes::AreNone(state) && RunAgain(name)) {
        GiveTextOfProgram();
        m_IsNamesake = false;
        return 1;
    }
    std::optional<PassApart> apart;
    if (Namesakes::MayExist() && Namesakes::AreThere(state, name))
        apart.emplace();
    m_IsNamesake = apart.has_value();
    Rerun::EnterNames();
    std::optional<NestedNameGuard> entry;
    if (!name.IsEmpty()) {
        entry.emplace(CFmlaExpression::m_NestedFmlaNames, name);
        if (!entry->HasEntered()) {
            message = MSG_FORMULA_INSIDE_ITSELF;
            return Fail(message);
        }
    }
    Throwing throwing(*this);
    const Start start;
    const bool isDone = CheckByProgram(name);
    if (isDone)
        GiveTextOfProgram();
    if (isDone || LoadNamed(name, nested)) {
        throwing.End();
        state.reachedIn = Pass::First();
        if (!m_IsNamesake)
            NoteChecked(name, start);
        return 1;
    }
    throwing.End();
    message = static_cast<unsigned int>(m_Expression.m_MessageNum);
    return 0;
}

int BoundWork::ValidateAfresh(unsigned int& message, const CString& name, int nested)
{
    if (LoadNamed(name, nested))
        return 1;
    message = static_cast<unsigned int>(m_Expression.m_MessageNum);
    return 0;
}

int BoundWork::LoadNamed(const CString& name, int nested)
{
    const int isLoaded = Load(nested);
    if (name.IsEmpty())
        return isLoaded;
    if (!isLoaded) {
        m_Expression.CalcSet().ErrorTracker().AddObj(&m_Expression, u"Formula: " + name);
        return 0;
    }
    const bool isYesNo = m_Expression.m_Tree.IsBoolean() != 0;
    return isYesNo == IsYesNoName(name.View()) ? 1 : Fail(MSG_WRONG_RESULT_TYPE);
}

int BoundWork::Load(int nested)
{
    // A tree that is being built or walked further up must not be torn down.
    const UnderWay underWay(State().marks);
    if (!underWay.IsFirst())
        return Fail(MSG_FORMULA_INSIDE_ITSELF);
    if (underWay.IsTooDeep())
        return Fail(MSG_GENERAL_FAILURE);

    Throwing throwing(*this);
    m_Expression.m_Tree.Clear();
    m_Expression.m_MessageNum = MSG_NONE;
    m_Expression.m_InvalidPos = 0;
    State().isLoadedByProgram = false;
    const int isBuilt = BuildTree(nested);
    throwing.End();
    if (!nested || !isBuilt)
        NoteDisturbed();
    Forget();
    return isBuilt;
}

// Requires: an empty tree.
int BoundWork::BuildTree(int nested)
{
    CFmlaExpression& expression = m_Expression;
    expression.m_ScanPos = 0;
    const std::vector<Reference> references = ReferencesOf(expression.m_VarPtrs);
    TokenScanner scanner(expression.m_ExprText, references, CFmlaExpression::SpellingOf(TL_LOCAL),
                         expression.m_ScanPos);
    CString token;
    int code = TOK_ILLEGAL;
    int pos = 0;
    if (!expression.DeliverToken(scanner, token, code, pos))
        return expression.m_MessageNum ? 0 : Fail(MSG_FORMULA_TEXT_REQUIRED);

    int lastPos = pos;
    do {
        lastPos = pos;
        if (!InsertScanned(code, token, pos, nested))
            return 0;
    } while (expression.DeliverToken(scanner, token, code, pos));
    return CloseTree(lastPos, pos);
}

// Takes one token of the text into the tree, a reference after its check. The position at fault is
// that of the token, until it is taken.
int BoundWork::InsertScanned(int code, const CString& token, int pos, int nested)
{
    m_Expression.m_InvalidPos = pos;
    if (code == TOK_ILLEGAL)
        return Fail(MSG_INVALID_ELEMENT);
    if (nested && !CheckNestedReference(code, token))
        return 0;
    if (!m_Expression.m_Tree.InsertToken(code, token, pos, nested)) {
        m_Expression.m_MessageNum = static_cast<int>(m_Expression.m_Tree.GetMsg());
        return 0;
    }
    m_Expression.m_MessageNum = MSG_NONE;
    m_Expression.m_InvalidPos = 0;
    return 1;
}

// What is left to do when the scanner delivers no more: endPos is where it stopped, lastPos where
// the last token stands.
int BoundWork::CloseTree(int lastPos, int endPos)
{
    if (m_Expression.m_MessageNum) {
        m_Expression.m_InvalidPos = endPos;
        return 0;
    }
    if (m_Expression.m_Tree.EndOfExpression())
        return 1;
    m_Expression.m_MessageNum = static_cast<int>(m_Expression.m_Tree.GetMsg());
    m_Expression.m_InvalidPos = lastPos;
    return 0;
}

// Builds the tree that the program stands for, from the text and the names that it was compiled
// from, for whoever has to walk it.
void BoundWork::BuildTreeOfProgram()
{
    const Program& program = *State().program;
    CExprTree& tree = m_Expression.m_Tree;
    std::vector<Reference> references;
    for (const ReferencePlace& place : program.Places())
        references.push_back({place.position, place.length, place.kind});
    const Spelling spelling(program.Names());
    TokenScanner scanner(program.Text(), references, spelling, 0);
    tree.Clear();
    tree.m_IsShapeOnly = true;
    while (scanner.Next() == TokenScanner::Outcome::Token) {
        tree.InsertToken(scanner.TokenCode(), scanner.TokenString(), scanner.TokenPos(), 1);
        if (scanner.TokenCode() == TOK_NUMBER)
            tree.m_LastToken->SetValue(
                tovo::ParseDouble(scanner.TokenText(), spelling.DecimalSeparator()));
    }
    tree.EndOfExpression();
    tree.m_IsShapeOnly = false;
    tree.m_Root->GetData()->SetValue(State().value);
    State().isLoadedByProgram = false;
}

// With what is needed where an object may come back to the expression. A part of its caller, so
// that a chain of formulas takes less of the stack.
[[gnu::always_inline]] inline bool BoundWork::RerunMarked()
{
    ExpressionState& state = *m_Expression.m_State;
    Rerun rerun(*this);
    state.isLoadedByProgram = false;
    const bool isDone = state.program->Run(state, Program::Purpose::Check, nullptr);
    rerun.End();
    if (isDone) {
        state.isLoadedByProgram = true;
    } else {
        Forget();
        state.gaveUpIn = Pass::Present();
    }
    return isDone;
}

// The shortest road, for a program that is as good as it was. False, with nothing done that shows,
// if the expression has to be looked at again.
bool BoundWork::RunAgain(const CString& name)
{
    ExpressionState& state = *m_Expression.m_State;
    if (!state.mayRunAgain || state.marks > 0 || state.checkedName != name ||
        !Pass::IsRemembering())
        return false;
    const Program& program = *state.program;
    const CStringList& names = CFmlaExpression::m_NestedFmlaNames;
    if (&program.Names() != namesInForce || UnderWay::IsDeepest() || Rerun::IsNamed(name) ||
        (!names.IsEmpty() && names.Find(name)))
        return false;
    const Start start;
    const bool callsNothing = program.IsClosed() && !program.HasNested() && program.IsBound();
    if (!(callsNothing ? state.program->Run(state, Program::Purpose::Check, nullptr)
                       : RerunMarked()))
        return false;
    state.reachedIn = Pass::First();
    if (ErrorTexts::HasOthers()) {
        NoteChecked(name, start);
    } else if (Pass::Present() == start.pass) {
        state.leftText = program.LeftText();
        state.checkedIn = state.calculatedIn = start.pass;
    }
    // What changes things while it is asked would be asked twice each time.
    state.mayRunAgain = state.calculatedIn == Pass::Present();
    return state.mayRunAgain;
}

// The road of the program, from the mark on the expression to the value.
bool BoundWork::CheckByProgram(const CString& name)
{
    ExpressionState& state = State();
    if (state.marks > 0 || state.gaveUpIn == Pass::Present() || !HasProgramFor(name))
        return false;
    const UnderWay underWay(state.marks);
    if (underWay.IsTooDeep())
        return false;
    // Whoever asks meanwhile finds an expression that is not loaded.
    state.isLoadedByProgram = false;
    m_Expression.m_Tree.Clear();
    if (!state.program->Run(state, Program::Purpose::Check, nullptr)) {
        Forget();
        state.gaveUpIn = Pass::Present();
        return false;
    }
    state.isLoadedByProgram = true;
    m_Expression.m_Tree.m_Msg = MSG_NONE;
    NoteLoaded();
    return true;
}

bool BoundWork::CalculateByProgram(const CString& name)
{
    ExpressionState& state = *m_Expression.m_State;
    if (state.leftElsewhere || Namesakes::AreKnown())
        return false;
    if (RunAgain(name))
        return true;
    return CalculateWithCare(name);
}

// Apart from its caller, whose frame is on the stack for each formula of a chain.
bool BoundWork::CalculateWithCare(const CString& name)
{
    ExpressionState& state = *m_Expression.m_State;
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
    Throwing throwing(*this);
    const Start start;
    const bool isChecked = CheckByProgram(name);
    throwing.End();
    if (!isChecked)
        return false;
    state.reachedIn = Pass::First();
    NoteChecked(name, start);
    entry.reset();
    // The check has calculated all there is, unless something has changed meanwhile.
    if (state.calculatedIn == Pass::Present())
        return true;
    const UnderWay underWay(state.marks);
    if (!RunAsWalk(nullptr))
        return false;
    NoteCalculated(nullptr, start, &name);
    return true;
}

// Whether there is a program for the present text, whose kind is what the name says.
bool BoundWork::HasProgramFor(const CString& name)
{
    ExpressionState& state = State();
    const bool isCurrent = state.program && state.textOfProgram == m_Expression.m_TextVersion &&
                           &state.program->Names() == namesInForce;
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

int BoundWork::CheckAndCalculate(unsigned int& message, const CString& name,
                                 CScannedVariables* list)
{
    if (!list && !Pass::HasHistory() && RunAgain(name)) {
        const ExpressionState& state = *m_Expression.m_State;
        if (state.leftText != 0 || !ObjectCalls::IsStrErrorClear(state.calcSet))
            ErrorTexts::Give(state.calcSet, state.leftText);
        return 1;
    }
    if (IsChecked(name) && IsCalculated(list)) {
        NoteLoaded();
        LeaveTexts(&LeftElsewhere::byCalculation);
        return 1;
    }
    const Start start;
    if (!Validate(message, name, 1))
        return 0;
    // Building the tree has calculated it already.
    if (IsCalculated(list) || Walk(list, start, m_IsNamesake ? nullptr : &name))
        return 1;
    message = static_cast<unsigned int>(m_Expression.m_MessageNum);
    return 0;
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
    if (state.isLoadedByProgram && RunAsWalk(list)) {
        // A scan has gone into formulas by way of their own operations.
        if (!list || !state.program->EndsWithReference())
            GiveTextOfProgram();
    } else {
        if (state.isLoadedByProgram)
            BuildTreeOfProgram();
        if (!m_Expression.m_Tree.Calculate(list)) {
            m_Expression.m_MessageNum = static_cast<int>(m_Expression.m_Tree.GetMsg());
            NoteDisturbed();
            Forget();
            return 0;
        }
    }
    NoteCalculated(list, start, checkedName);
    return 1;
}

bool BoundWork::RunAsWalk(CScannedVariables* list)
{
    const IfDepthGuard depth(CExprTree::m_InIfConditionCount);
    const auto purpose = list ? Program::Purpose::Scan : Program::Purpose::Calculate;
    return State().program->Run(State(), purpose, list);
}

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
    if (EndsWithObject() || state.leftElsewhere || !IsUnderOwnName(name))
        return;
    state.calculatedIn = start.pass;
    state.mayRunAgain = state.isLoadedByProgram;
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
// given texts, or taken away what others have given.
bool BoundWork::KeepElsewhere(const Start& start, std::vector<LeftText> LeftElsewhere::*by)
{
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
