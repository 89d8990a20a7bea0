#include "Sequence.h"

#include <algorithm>
#include <array>
#include <utility>

#include <TovoFormula/CalcErrorTracker.h>
#include <TovoFormula/CalculationInterfaces.h>
#include <TovoFormula/MessageIds.h>

#include "Computation.h"
#include "FormulaMemory.h"
#include "OwnObjects.h"
#include "Pass.h"
#include "TokenCatalogue.h"

namespace tovo::detail {
namespace {

// Steps that stand for more than their token, for the sake of a walk: the parenthesis and the
// commas of an IF.
constexpr std::uint16_t kConditionBegins = kTokenCount;
constexpr std::uint16_t kConditionEnds = kTokenCount + 1;
constexpr std::uint16_t kBranchEnds = kTokenCount + 2;

bool IsNested(int code)
{
    return code == TOK_FORMULA || code == TOK_FORMTBL;
}

// Whether a walk has to know when it comes by a punctuation.
bool IsPartOfIf(const CETree& punctuation)
{
    return punctuation.GetParent()->GetData()->GetCode() == TOK_IF;
}

bool IsComputed(const CExprToken& token)
{
    return token.IsOperator() || token.IsFunction();
}

bool RemembersValue(const FormulaImpl& formula)
{
    const CFmlaExpression& expression = OwnObjects::ExpressionOf(formula);
    return !OwnObjects::IsUnderWay(expression) &&
           OwnObjects::MemoryOf(formula).IsCalculated(OwnObjects::TreeState(expression), nullptr);
}

// How a set is asked for an object of each kind, and what tells that it would answer as before.
template <typename Object>
struct Names;

template <>
struct Names<IVarObj> {
    static IVarObj* Ask(ICalculationSet& calcSet, const CString& name)
    {
        return calcSet.GetVarObj(name, 1, 0);
    }
    static constexpr auto State = OwnObjects::VariablesState;
};

template <>
struct Names<IFormulaObj> {
    static IFormulaObj* Ask(ICalculationSet& calcSet, const CString& name)
    {
        return calcSet.GetFormulaObj(name);
    }
    static constexpr auto State = OwnObjects::NestedState;
};

template <>
struct Names<IFormulaTableObj> {
    static IFormulaTableObj* Ask(ICalculationSet& calcSet, const CString& name)
    {
        return calcSet.GetFormulaTableObj(name);
    }
    static constexpr auto State = OwnObjects::NestedState;
};

} // namespace

Sequence::Sequence(ICalculationSet& calcSet) : m_CalcSet(calcSet)
{}

Sequence::~Sequence() = default;

void Sequence::Finish()
{
    for (std::size_t completed = 0; completed < m_Completed.size(); ++completed)
        if (IsNeeded(completed))
            AddStep(completed);
    m_StepsInText = static_cast<std::size_t>(std::ranges::count_if(
        m_Steps, [this](const Step& step) { return step.completed < m_CompletedInText; }));
    m_Completed.shrink_to_fit();
    m_Steps.shrink_to_fit();
    m_IsFinished = true;
}

// Constants and punctuation have no other effect than to clear the set's text of an error. That
// shows only to what is called next, a formula or a table; before all others it is cleared anyway.
bool Sequence::IsNeeded(std::size_t completed) const
{
    const CETree* const node = m_Completed[completed];
    const CExprToken& token = *node->GetData();
    if (token.IsPunctuation() && IsPartOfIf(*node))
        return true;
    const bool isLast = completed + 1 == m_Completed.size();
    if (IsComputed(token)) // A function is closed by its parenthesis and again by what follows.
        return completed == 0 || m_Completed[completed - 1] != node;
    return token.IsVarValue() || isLast ||
           IsNested(m_Completed[completed + 1]->GetData()->GetCode());
}

void Sequence::AddStep(std::size_t completed)
{
    const CETree& node = *m_Completed[completed];
    CExprToken& token = *node.GetData();
    Step step = {};
    step.token = &token;
    step.code = static_cast<std::uint16_t>(token.GetCode());
    step.completed = static_cast<std::uint32_t>(completed);
    step.arguments = static_cast<std::uint32_t>(m_Arguments.size());
    step.reference = static_cast<std::uint32_t>(m_References.size());
    // The arguments of a function stand between punctuation.
    const int first = token.IsFunction() ? 1 : 0;
    const int apart = token.IsFunction() ? 2 : 1;
    for (int child = first; child < node.NumChildren(); child += apart)
        m_Arguments.push_back(node.GetChild(child)->GetData());
    step.numArgs = static_cast<std::uint16_t>(m_Arguments.size() - step.arguments);
    if (step.numArgs > 0)
        step.first = m_Arguments[step.arguments];
    if (step.numArgs > 1)
        step.second = m_Arguments[step.arguments + 1];
    if (step.numArgs <= 2)
        m_Arguments.resize(step.arguments);
    if (token.IsVariable() || IsNested(token.GetCode()))
        m_References.emplace_back().name = token.GetName();
    m_Steps.push_back(step);
    if (token.IsPunctuation() && IsPartOfIf(node))
        MarkPartOfIf(node);
}

// The step of the punctuation was added last.
void Sequence::MarkPartOfIf(const CETree& node)
{
    const CETree& parent = *node.GetParent();
    Step& step = m_Steps.back();
    if (node.GetData()->IsLeftParen()) {
        step.code = kConditionBegins;
        m_OpenIfs.emplace_back();
        return;
    }
    OpenIf& open = m_OpenIfs.back();
    const std::size_t next = m_Steps.size();
    if (node.GetData()->IsRightParen()) {
        const std::size_t last = open.behindBranch ? open.behindBranch : open.behindCondition;
        m_Steps[last].reference = static_cast<std::uint32_t>(next);
        m_OpenIfs.pop_back();
    } else if (open.behindCondition == 0) {
        step.code = kConditionEnds;
        step.first = parent.GetChild(1)->GetData();
        open.behindCondition = next - 1;
    } else {
        step.code = kBranchEnds;
        open.behindBranch = next - 1;
        m_Steps[open.behindCondition].reference = static_cast<std::uint32_t>(next);
    }
}

void Sequence::Start(bool isWalk)
{
    m_OwnSet = AsOwn(m_CalcSet);
    m_At = 0;
    m_End = m_StepsInText;
    m_IsWalk = isWalk;
    m_IsInText = true;
    m_HasCalledOut = false;
    LookAround();
}

void Sequence::ComeBack()
{
    m_HasCalledOut = true;
    LookAround();
}

void Sequence::LookAround()
{
    m_IsStrErrorClear = m_OwnSet && StrError::IsClear(*m_OwnSet);
    if (!m_OwnSet)
        return;
    m_VariablesState = OwnObjects::VariablesState(*m_OwnSet);
    m_NestedState = OwnObjects::NestedState(*m_OwnSet);
}

Sequence::Stop Sequence::Run()
{
    for (;;) {
        GoAtOnce();
        if (m_At < m_End) {
            const Step& step = m_Steps[m_At];
            if (IsNested(step.code)) {
                if (!ReadRemembered(step))
                    return Stop::Nested;
            } else if (!Calculate(step)) {
                return Stop::Failure;
            }
            ++m_At;
        } else if (std::exchange(m_IsInText, false)) {
            m_End = m_Steps.size();
            if (m_HasCalledOut)
                return Stop::TextEnd;
        } else {
            return Stop::End;
        }
    }
}

bool Sequence::Walk(int& ifCount)
{
    Start(true);
    m_End = m_Steps.size();
    for (GoAtOnce(); m_At < m_End; GoAtOnce()) {
        const Step& step = m_Steps[m_At];
        switch (step.code) {
        case kConditionBegins:
            ++ifCount;
            ++m_At;
            break;
        case kConditionEnds:
            --ifCount;
            m_At = step.first->m_Value != 0.0 ? m_At + 1 : step.reference;
            break;
        case kBranchEnds:
            m_At = step.reference;
            break;
        default:
            if (!(IsNested(step.code) ? ReadNested(step) : Calculate(step)))
                return false;
            ++m_At;
        }
    }
    return true;
}

// Goes on to the first step that fails, that may call an object of a host or a formula, or that a
// walk has to know of.
void Sequence::GoAtOnce()
{
    if (!m_IsStrErrorClear)
        return;
    const Step* step = m_Steps.data() + m_At;
    const Step* const end = m_Steps.data() + m_End;
    while (step != end && CalculateAtOnce(*step))
        ++step;
    m_At = static_cast<std::size_t>(step - m_Steps.data());
}

// False, with nothing done, if the step is none of those that GoAtOnce goes over. Requires: the
// set's text of an error clear.
inline bool Sequence::CalculateAtOnce(const Step& step)
{
    CExprToken& token = *step.token;
    switch (step.code) {
    case TOK_PLUS:
        return Give(token, step.first->m_Value + step.second->m_Value);
    case TOK_MINUS:
        return Give(token, step.second ? step.first->m_Value - step.second->m_Value
                                       : -step.first->m_Value);
    case TOK_TIMES:
        return Give(token, step.first->m_Value * step.second->m_Value);
    case TOK_DIVIDE:
        return step.second->m_Value != 0.0 &&
               Give(token, step.first->m_Value / step.second->m_Value);
    case TOK_GROUP:
        return Give(token, step.first->m_Value);
    case TOK_VARIABLE: {
        const Reference& reference = m_References[step.reference];
        return reference.variable && reference.state == m_VariablesState &&
               Give(token, OwnObjects::ValueOf(*reference.variable));
    }
    case TOK_FORMULA: {
        const Reference& reference = m_References[step.reference];
        return reference.formula && reference.state == m_NestedState &&
               RemembersValue(*reference.formula) &&
               OwnObjects::MemoryOf(*reference.formula).LeftStrError().IsEmpty() &&
               Give(token, OwnObjects::ExpressionOf(*reference.formula).GetValue());
    }
    case TOK_IF: {
        const bool hasOther = step.numArgs > 2;
        const double other = hasOther ? m_Arguments[step.arguments + 2]->m_Value : 0.0;
        return Give(token, step.first->m_Value != 0.0 ? step.second->m_Value : other);
    }
    case kConditionBegins:
    case kConditionEnds:
    case kBranchEnds:
        return !m_IsWalk;
    default: // what has no arguments and is not read is a constant or punctuation
        if (step.numArgs > 0)
            return ComputeAtOnce(step);
        return !token.IsVarValue() && Give(token, token.m_Value);
    }
}

bool Sequence::ComputeAtOnce(const Step& step)
{
    const MathResult result = Compute(step);
    return result.message == MSG_NONE && result.errorNumber == 0 && Give(*step.token, result.value);
}

// A step that GoAtOnce has stopped at.
bool Sequence::Calculate(const Step& step)
{
    if (!m_IsStrErrorClear) {
        ClearStrError();
        if (CalculateAtOnce(step))
            return true;
    }
    CExprToken& token = *step.token;
    if (step.code == TOK_VARIABLE)
        return ReadVariable(step);
    token.m_CalcError = MSG_NONE;
    const bool isCalculated = step.numArgs > 0 ? token.Conclude(Compute(step)) != 0
                                               : token.Calculate(nullptr, 0, 1, nullptr) != 0;
    ComeBack();
    return isCalculated;
}

MathResult Sequence::Compute(const Step& step) const
{
    std::array<double, kMaxArguments> args;
    if (step.numArgs <= 2) {
        args[0] = step.first->m_Value;
        args[1] = step.second ? step.second->m_Value : 0.0;
    } else {
        for (std::size_t argument = 0; argument < step.numArgs; ++argument)
            args[argument] = m_Arguments[step.arguments + argument]->m_Value;
    }
    return detail::Compute(step.code, {args.data(), step.numArgs});
}

bool Sequence::ReadVariable(const Step& step)
{
    IVarObj* const variable = Find<IVarObj>(step);
    if (!variable)
        return step.token->HardFailure(MSG_NONE) != 0;
    if (const VariableImpl* const own = AsOwn(*variable))
        return Give(*step.token, OwnObjects::ValueOf(*own));
    const double value = Pass::ValueOf(*variable);
    ComeBack();
    return Give(*step.token, value);
}

template <typename Object>
Object* Sequence::Find()
{
    return Find<Object>(m_Steps[m_At]);
}

template IFormulaObj* Sequence::Find<IFormulaObj>();
template IFormulaTableObj* Sequence::Find<IFormulaTableObj>();

void Sequence::NoteOwn(Reference& reference, IVarObj* variable)
{
    reference.variable = variable ? AsOwn(*variable) : nullptr;
}

void Sequence::NoteOwn(Reference& reference, IFormulaObj* formula)
{
    reference.formula = formula ? AsOwn(*formula) : nullptr;
}

// The stock set can tell whether its names are still the same; any other is asked each time.
template <typename Object>
Object* Sequence::Find(const Step& step)
{
    Reference& reference = m_References[step.reference];
    if (!m_OwnSet) {
        m_IsStrErrorClear = false;
        m_HasCalledOut = true;
        return Names<Object>::Ask(m_CalcSet, reference.name);
    }
    const std::uint64_t state = Names<Object>::State(*m_OwnSet);
    if (reference.state != state || state == 0) {
        Object* const object = Names<Object>::Ask(m_CalcSet, reference.name);
        reference.object = object;
        NoteOwn(reference, object);
        reference.state = Names<Object>::State(*m_OwnSet);
        LookAround();
    }
    return static_cast<Object*>(reference.object);
}

// A stock formula that remembers its value would pass the check and give it. Most formulas are
// named more than once in a pass.
bool Sequence::ReadRemembered(const Step& step)
{
    if (step.code != TOK_FORMULA || !m_OwnSet)
        return false;
    const Reference& reference = m_References[step.reference];
    if (reference.state != m_NestedState)
        Find<IFormulaObj>(step);
    const FormulaImpl* const formula = reference.formula;
    if (!formula || !RemembersValue(*formula))
        return false;
    if (!m_IsStrErrorClear)
        ClearStrError();
    const CFmlaExpression& expression = OwnObjects::ExpressionOf(*formula);
    const CString& left = OwnObjects::MemoryOf(*formula).LeftStrError();
    StrError::Give(expression.CalcSet(), left);
    m_IsStrErrorClear = left.IsEmpty();
    return Give(*step.token, expression.GetValue());
}

bool Sequence::ReadNested()
{
    const bool isRead = ReadNested(m_Steps[m_At]);
    if (isRead)
        ++m_At;
    return isRead;
}

bool Sequence::ReadNested(const Step& step)
{
    LookAround();
    if ((m_IsStrErrorClear && CalculateAtOnce(step)) || ReadRemembered(step))
        return true;
    CExprToken& token = *step.token;
    ClearStrError();
    token.m_CalcError = MSG_NONE;
    const bool isRead = step.code == TOK_FORMULA
                            ? token.ReadNested(Find<IFormulaObj>(step), nullptr) != 0
                            : token.ReadNested(Find<IFormulaTableObj>(step), nullptr) != 0;
    ComeBack();
    return isRead;
}

bool Sequence::Give(CExprToken& token, double value)
{
    token.m_Value = value;
    token.m_Calculated = 1;
    token.m_CalcError = MSG_NONE;
    return true;
}

void Sequence::ClearStrError()
{
    StrError::Give(m_CalcSet, CString());
    m_IsStrErrorClear = true;
}

void Sequence::StartReenacting(std::unique_ptr<CETree> tree, const SequenceCut& cut)
{
    m_Tree = std::move(tree);
    m_Reenacted = 0;
    m_Cut = cut;
}

int Sequence::Reenact(CExprToken& token)
{
    const CExprToken& before = *m_Completed[m_Reenacted]->GetData();
    const bool hasFailed = m_Reenacted++ == CompletedAt();
    if (hasFailed && m_Cut.thrown)
        std::rethrow_exception(m_Cut.thrown);
    // A failure on the domain has left 0.0 and any other none, so a token that fails keeps what it
    // was made with.
    if (!hasFailed)
        token.m_Value = before.m_Value;
    token.m_CalcError = before.m_CalcError;
    token.m_Calculated = hasFailed ? 0 : 1;
    if (hasFailed)
        m_CalcSet.ErrorTracker().SetError(token.m_CalcError, &token);
    return token.m_Calculated;
}

std::optional<int> Sequence::ReenactCheck() const
{
    if (m_Reenacted != CompletedAt() || m_Cut.isReading)
        return std::nullopt;
    if (m_Cut.thrown)
        std::rethrow_exception(m_Cut.thrown);
    return m_Cut.message;
}

} // namespace tovo::detail
