#include "Program.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <span>
#include <utility>

#include <TovoFormula/CalculationInterfaces.h>
#include <TovoFormula/ExprTree.h>

#include "ChainMark.h"
#include "Computation.h"
#include "JobValues.h"
#include "Names.h"
#include "Operations.h"
#include "ReferenceKinds.h"

namespace tovo::detail {

CString Program::NameAt(const ReferencePlace& place) const
{
    return CString(BareName(m_Text.View().substr(static_cast<std::size_t>(place.position),
                                                 static_cast<std::size_t>(place.length))));
}

bool Program::Run(ExpressionState& state, Purpose purpose)
{
    assert(state.marks > 0 || CallsNothing());
    if (!IsBound() && !BindAll(state))
        return false;
    m_LeftText = 0;
    switch (purpose) {
    case Purpose::Check:
        return m_HasHostVariables ? Execute<Purpose::Check, true>(state)
                                  : Execute<Purpose::Check, false>(state);
    case Purpose::Calculate:
        return m_HasHostVariables ? Execute<Purpose::Calculate, true>(state)
                                  : Execute<Purpose::Calculate, false>(state);
    }
    return false;
}

bool Program::HasSameEntries() const
{
    const std::uint64_t version = MapVersions::Last();
    if (ObjectCalls::LookupStateOf(*m_StockLookup) != m_BoundIn)
        return false;
    m_SeenVersion = version;
    return true;
}

// A set that finds names elsewhere than in its entries is asked for each name in each run.
bool Program::BindAll(ExpressionState& state)
{
    m_HasHostVariables = false;
    m_EndsWithHostFormula = false;
    bool isWhole = true;
    bool hasMoved = !m_IsBound;
    m_IsBound = false;
    for (Binding& binding : m_Bindings) {
        if (binding.name.IsEmpty())
            binding.name = NameAt(m_Places[binding.place]);
        isWhole = WithObject(state.calcSet, binding.kind, binding.name, [&](auto* object) {
            return object && BindTo(state, binding, object, hasMoved);
        });
        if (!isWhole)
            return false;
    }
    if (hasMoved)
        TakeAddresses();
    m_IsClosed = m_StockLookup && (!m_HasJobValues || ObjectCalls::IsStock(state.calcSet)) &&
                 std::ranges::none_of(m_Bindings, [](const Binding& binding) {
                     return binding.isHost || binding.kind == TOK_FORMTBL;
                 });
    if (m_StockLookup)
        m_BoundIn = ObjectCalls::LookupStateOf(*m_StockLookup);
    m_BoundInPass = Pass::Present();
    m_IsBound = true;
    return true;
}

bool Program::BindTo(ExpressionState&, Binding& binding, IVarObj* variable, bool& hasMoved)
{
    const double* const value = ObjectCalls::ValueOf(*variable);
    // One text serves both.
    if (value && variable->GetName() == binding.name)
        binding.name = variable->GetName();
    hasMoved = hasMoved || binding.variable != variable || binding.isHost != !value;
    binding.variable = variable;
    binding.isHost = !value;
    m_HasHostVariables = m_HasHostVariables || binding.isHost;
    return true;
}

bool Program::BindTo(ExpressionState& state, Binding& binding, IFormulaObj* formula, bool& hasMoved)
{
    const auto former = std::pair(binding.state, binding.isHost);
    binding.formula = formula;
    binding.state = ObjectCalls::StateOf(*formula, binding.isHost);
    // Another object may have come to lie where the former one was.
    hasMoved = hasMoved || former != std::pair(binding.state, binding.isHost);
    if (!binding.isHost && *binding.state->formulaName == binding.name)
        binding.name = *binding.state->formulaName;
    if (m_LastCode == TOK_FORMULA && binding.isHost)
        m_EndsWithHostFormula = true;
    // The tokens of another set's formula give their texts to that set.
    return binding.isHost || &binding.state->calcSet == &state.calcSet;
}

bool Program::BindTo(ExpressionState&, Binding& binding, IFormulaTableObj* table, bool&)
{
    binding.table = table;
    return true;
}

// Where the values of variables and formulas stand.
void Program::TakeAddresses()
{
    for (Instruction& instruction : m_Code) {
        const bool isFormula = instruction.operation == Operation::Formula;
        if (!isFormula && !ReadsVariable(instruction.operation))
            continue;
        const Binding& binding = m_Bindings[instruction.index];
        if (isFormula)
            instruction.state = binding.isHost ? nullptr : binding.state;
        else
            instruction.address =
                binding.isHost ? &binding.value : ObjectCalls::ValueOf(*binding.variable);
    }
}

// The number on top of the stack is kept apart from the others.
template <Program::Purpose kPurpose, bool kReadsHost>
bool Program::Execute(ExpressionState& state)
{
    std::array<double, kStackAtHand + kSpareOfStack> atHand;
    double* stack = m_DeepStack ? m_DeepStack.get() : atHand.data();
    double top = 0.0;
    const Instruction* at = m_Code.data();
    const Instruction* const end = at + m_Code.size();
    for (; at != end; ++at) {
        if constexpr (kReadsHost)
            if (ReadsVariable(at->operation) && !ReadVariable(state, m_Bindings[at->index]))
                return false;
        switch (at->operation) {
        case Operation::Number:
            *stack++ = top;
            top = at->number;
            break;
        case Operation::Variable:
            *stack++ = top;
            top = *at->address;
            break;
        case Operation::JobValue:
            *stack++ = top;
            top = ReadJobValue(static_cast<int>(at->index), state.calcSet, nullptr);
            break;
        case Operation::Formula: {
            const ExpressionState* const formula = at->state;
            *stack++ = top;
            if (formula && !formula->marks && formula->calculatedIn == Pass::Present() &&
                !formula->leftElsewhere)
                top = formula->value;
            else if (!CallFormula(state, m_Bindings[at->index], kPurpose, top))
                return false;
            if (at + 1 == end && m_LastCode == TOK_FORMULA && at->state)
                m_LeftText = at->state->leftText;
            break;
        }
        case Operation::Table:
            *stack++ = top;
            if (!CallObject(state, m_Bindings[at->index], &Binding::table, kPurpose, top))
                return false;
            break;
        case Operation::Add:
            top = *--stack + top;
            break;
        case Operation::AddNumber:
            top += at->number;
            break;
        case Operation::AddVariable:
            top += *at->address;
            break;
        case Operation::Subtract:
            top = *--stack - top;
            break;
        case Operation::SubtractNumber:
            top -= at->number;
            break;
        case Operation::SubtractVariable:
            top -= *at->address;
            break;
        case Operation::Multiply:
            top = *--stack * top;
            break;
        case Operation::MultiplyNumber:
            top *= at->number;
            break;
        case Operation::MultiplyVariable:
            top *= *at->address;
            break;
        case Operation::Negate:
            top = -top;
            break;
        case Operation::Divide:
            --stack;
            if (top != 0.0)
                top = *stack / top;
            else if (!Compute(state.calcSet, *at, {stack, 1}, top))
                return false;
            break;
        case Operation::Equal:
            top = YesNo(Order(*--stack, top) == 0);
            break;
        case Operation::NotEqual:
            top = YesNo(Order(*--stack, top) != 0);
            break;
        case Operation::Greater:
            top = YesNo(Order(*--stack, top) > 0);
            break;
        case Operation::GreaterOrEqual:
            top = YesNo(Order(*--stack, top) >= 0);
            break;
        case Operation::Less:
            top = YesNo(Order(*--stack, top) < 0);
            break;
        case Operation::LessOrEqual:
            top = YesNo(Order(*--stack, top) <= 0);
            break;
        case Operation::Function:
            stack -= at->count - 1;
            if (!Compute(state.calcSet, *at, {stack, at->count - 1u}, top))
                return false;
            break;
        case Operation::IfBegins:
            if constexpr (kPurpose != Purpose::Check)
                CExprTree::StartIfCondition();
            break;
        case Operation::IfCondition:
            if constexpr (kPurpose != Purpose::Check) {
                CExprTree::EndIfCondition();
                if (top == 0.0) {
                    *stack++ = top;
                    at = m_Code.data() + at->index;
                }
            }
            break;
        case Operation::IfBranchEnds:
            if constexpr (kPurpose != Purpose::Check) {
                *stack++ = top;
                at = m_Code.data() + at->index;
            }
            break;
        case Operation::IfEnds:
            *stack = top;
            stack -= at->count - 1;
            top = Choose({stack, at->count});
            break;
        }
    }
    state.value = top;
    return true;
}

// What is done with a variable before its value is taken from where it stands.
bool Program::ReadVariable(ExpressionState& state, Binding& binding)
{
    if (!binding.isHost)
        return true;
    binding.value = binding.variable->GetValue();
    return IsBoundStill() || BindAll(state);
}

// The other arguments stand on the stack, the last one is the value.
bool Program::Compute(ICalculationSet& calcSet, const Instruction& instruction,
                      std::span<double> others, double& value)
{
    double* const first = others.data();
    first[others.size()] = value;
    const int code = static_cast<int>(instruction.index);
    const MathResult result = detail::Compute(code, {first, others.size() + 1});
    value = result.value;
    if (result.message == MSG_NONE && result.errorNumber == 0)
        return true;
    if (calcSet.GetReportFcnDomainErrors())
        return false;
    value = 0.0;
    // Any token that follows clears the text again.
    if (&instruction == &m_Code.back() && code == m_LastCode)
        m_LeftText = result.errorNumber;
    return true;
}

bool Program::CallFormula(ExpressionState& state, const Binding& binding, Purpose purpose,
                          double& value)
{
    if (!binding.isHost) {
        if (ObjectCalls::CalculateByProgram(*binding.state, binding.name,
                                            purpose == Purpose::Check)) {
            value = binding.state->value;
            return IsBoundStill() || BindAll(state);
        }
        if (binding.state->gaveUpIn == Pass::Present())
            return false;
        // It has not run, and may succeed by way of its own operations.
    }
    if (binding.state && binding.state->ownNameIn != Pass::Present())
        ObjectCalls::NoteFound(*binding.state, binding.name);
    return CallObject(state, binding, &Binding::formula, purpose, value);
}

// Asks as the tree does. An object that fails reports that when the tree asks it once more. One
// that has changed something may be gone when it returns: then the name is looked up again, and the
// tree sees to an object that is no longer there.
template <typename Object>
bool Program::CallObject(ExpressionState& state, const Binding& binding, Object* Binding::*object,
                         Purpose purpose, double& value)
{
    ChainMark chain;
    unsigned int message = MSG_NONE;
    Object* const asked = binding.*object;
    PassNumber pass = Pass::Present();
    const auto isThereStill = [&] {
        if (Pass::Present() == pass && IsBoundStill())
            return true;
        pass = Pass::Present();
        return BindAll(state) && binding.*object == asked;
    };
    bool isCalculated = purpose != Purpose::Check || (asked->IsValid(message, 1) && isThereStill());
    if (isCalculated) {
        // What the object leaves as a text may be the last one.
        if (EndsWithReference())
            ErrorTexts::Give(state.calcSet, 0);
        isCalculated = asked->Calculate(message, nullptr) && isThereStill();
    }
    if (!isCalculated) {
        chain.TakeBack();
        return false;
    }
    value = asked->GetValue();
    return IsBoundStill() || BindAll(state);
}

} // namespace tovo::detail
