#include "ProgramBuilder.h"

#include <algorithm>
#include <cassert>

#include <TovoPlatform/NumberText.h>

#include "Names.h"
#include "TokenCatalogue.h"
#include "UserLanguage.h"

namespace tovo::detail {
namespace {

// How far back a name is looked for among those already bound. Most texts have fewer.
constexpr std::size_t kNamesLookedAt = 16;

bool Fits(int taken, int kind)
{
    return taken == RT_ANY || taken == kind;
}

// An operation in its three forms: the last number on the stack, in the instruction, in a variable.
struct Forms {
    Operation onStack;
    Operation withNumber;
    Operation withVariable;
};

constexpr Forms OnlyOnStack(Operation operation)
{
    return {operation, operation, operation};
}

constexpr Forms FormsOf(int code)
{
    switch (code) {
    case TOK_PLUS:
        return {Operation::Add, Operation::AddNumber, Operation::AddVariable};
    case TOK_MINUS:
        return {Operation::Subtract, Operation::SubtractNumber, Operation::SubtractVariable};
    case TOK_TIMES:
        return {Operation::Multiply, Operation::MultiplyNumber, Operation::MultiplyVariable};
    case TOK_DIVIDE:
        return OnlyOnStack(Operation::Divide);
    case TOK_EQ_SIGN:
    case TOK_EQ:
        return OnlyOnStack(Operation::Equal);
    case TOK_NE_SIGN:
    case TOK_NE:
        return OnlyOnStack(Operation::NotEqual);
    case TOK_GT_SIGN:
    case TOK_GT:
        return OnlyOnStack(Operation::Greater);
    case TOK_GE_SIGN:
    case TOK_GE:
        return OnlyOnStack(Operation::GreaterOrEqual);
    case TOK_LT_SIGN:
    case TOK_LT:
        return OnlyOnStack(Operation::Less);
    case TOK_LE_SIGN:
    case TOK_LE:
        return OnlyOnStack(Operation::LessOrEqual);
    default:
        return OnlyOnStack(Operation::Function);
    }
}

} // namespace

ProgramBuilder::ProgramBuilder(ICalculationSet& calcSet, int length)
    : m_Program(std::make_unique<Program>())
{
    // Most elements have a sign beside them, and little is written for most signs.
    m_Program->m_Code.reserve(static_cast<std::size_t>(length) / 4 + 4);
    m_Open.reserve(8);
    m_Kinds.reserve(8);
    m_Program->m_StockLookup = ObjectCalls::WithStockLookup(calcSet);
}

bool ProgramBuilder::Take(int code, WideView text)
{
    const CatalogueRow& row = CatalogueOf(code);
    Instruction instruction = {};
    switch (row.type) {
    case TT_CONSTANT:
        instruction.number = code == TOK_NUMBER ? tovo::ParseDouble(text, LocalDecimalSeparator())
                                                : ValueOfConstant(code);
        return TakeOperand(Operation::Number, row.returns, instruction);
    case TT_VARVALUE:
        instruction.index = static_cast<std::uint32_t>(code);
        m_Program->m_HasJobValues = true;
        return TakeOperand(Operation::JobValue, row.returns, instruction);
    case TT_OPERATOR:
        return TakeOperator(code);
    case TT_FUNCTION:
        return TakeFunction(code);
    case TT_PUNCTUATION:
        if (code == TOK_LPAREN)
            return OpenParenthesis();
        return code == TOK_COMMA ? TakeComma() : CloseParenthesis();
    case TT_ILLEGAL:
        break;
    }
    return false;
}

// A name of white space has no kind until its surroundings give it one, which is left to the tree.
bool ProgramBuilder::TakeReference(const ReferencePlace& place, WideView text)
{
    const RESULT_KIND kind = KindOfReference(text);
    if (kind == RT_ANY)
        return false;
    constexpr Operation kOperations[] = {Operation::Variable, Operation::Formula, Operation::Table};
    Instruction instruction = {};
    instruction.index = BindingOf(place, BareName(text));
    m_Program->m_Places.push_back(place);
    m_Program->m_HasNested = m_Program->m_HasNested || place.kind != TOK_VARIABLE;
    const bool isTaken = TakeOperand(kOperations[place.kind], kind, instruction);
    m_Program->m_LastCode = static_cast<std::uint8_t>(place.kind);
    return isTaken;
}

std::unique_ptr<Program> ProgramBuilder::Finish(const CString& text,
                                                std::shared_ptr<const CExpressionNames> names)
{
    if (m_NeedsOperand || m_NeedsParenthesis || !CloseOperators(0) || !m_Open.empty())
        return nullptr;
    assert(m_Kinds.size() == 1);
    Program& program = *m_Program;
    program.m_Kind = m_Kinds.back();
    program.m_Text = text;
    program.m_Names = std::move(names);
    program.m_Code.shrink_to_fit();
    program.m_Bindings.shrink_to_fit();
    program.m_Places.shrink_to_fit();
    if (m_Deepest > kStackAtHand)
        program.m_DeepStack = std::make_unique<double[]>(m_Deepest + kSpareOfStack);
    return std::move(m_Program);
}

bool ProgramBuilder::TakeOperand(Operation operation, RESULT_KIND kind,
                                 const Instruction& instruction)
{
    if (!m_NeedsOperand || m_NeedsParenthesis)
        return false;
    m_NeedsOperand = false;
    m_Program->m_Code.push_back(instruction);
    m_Program->m_Code.back().operation = operation;
    m_Program->m_LastCode = TOK_NUMBER;
    m_Kinds.push_back(static_cast<std::uint8_t>(kind));
    m_Deepest = std::max(m_Deepest, m_Kinds.size());
    return true;
}

// Where an operand is due, only a minus and NOT may stand; they wait for it.
bool ProgramBuilder::TakeOperator(int code)
{
    const CatalogueRow& row = CatalogueOf(code);
    const int args = m_NeedsOperand ? 1 : 2;
    if (m_NeedsParenthesis || args < row.minArgs || args > row.maxArgs)
        return false;
    const bool isUnary = args == 1;
    const int precedence = isUnary ? kUnaryPrecedence : row.precedence;
    if (!isUnary && !CloseOperators(precedence))
        return false;
    m_Open.push_back({static_cast<std::uint8_t>(code), static_cast<std::uint8_t>(precedence),
                      static_cast<std::uint8_t>(args), 0, static_cast<std::uint8_t>(row.takes), 0});
    m_NeedsOperand = true;
    return true;
}

bool ProgramBuilder::TakeFunction(int code)
{
    if (!m_NeedsOperand || m_NeedsParenthesis)
        return false;
    m_Open.push_back({static_cast<std::uint8_t>(code), 0, 0, 0,
                      static_cast<std::uint8_t>(CatalogueOf(code).takes), 0});
    m_NeedsParenthesis = true;
    return true;
}

bool ProgramBuilder::OpenParenthesis()
{
    if (!m_NeedsParenthesis && !TakeFunction(TOK_GROUP))
        return false;
    m_NeedsParenthesis = false;
    if (m_Open.back().code == TOK_IF)
        Write(Operation::IfBegins);
    return true;
}

bool ProgramBuilder::TakeComma()
{
    if (!CloseArgument(false))
        return false;
    m_NeedsOperand = true;
    return true;
}

bool ProgramBuilder::CloseParenthesis()
{
    if (!CloseArgument(true))
        return false;
    const Open open = m_Open.back();
    const CatalogueRow& row = CatalogueOf(open.code);
    if (open.argsTaken < row.minArgs)
        return false;
    m_Open.pop_back();
    WriteFunction(open);
    m_Kinds.resize(m_Kinds.size() - open.argsTaken);
    m_Kinds.push_back(row.returns == RT_ANY ? open.kind : static_cast<std::uint8_t>(row.returns));
    return true;
}

// Closes the operators that bind at least as tightly; those of equal precedence group from the
// left.
bool ProgramBuilder::CloseOperators(int precedence)
{
    while (!m_Open.empty() && m_Open.back().precedence > 0 &&
           m_Open.back().precedence >= precedence) {
        if (!CloseOperator(m_Open.back()))
            return false;
        m_Open.pop_back();
    }
    return true;
}

bool ProgramBuilder::CloseOperator(const Open& open)
{
    const int last = m_Kinds.back();
    const int first = m_Kinds[m_Kinds.size() - open.argsNeeded];
    if (!Fits(open.kind, first) || first != last)
        return false;
    WriteOperator(open);
    m_Kinds.resize(m_Kinds.size() - open.argsNeeded);
    m_Kinds.push_back(static_cast<std::uint8_t>(CatalogueOf(open.code).returns));
    return true;
}

// The condition of an IF is a yes/no value; the other arguments are of one kind.
bool ProgramBuilder::CloseArgument(bool isLast)
{
    if (m_NeedsOperand || m_NeedsParenthesis || !CloseOperators(0) || m_Open.empty())
        return false;
    Open& open = m_Open.back();
    const bool isCondition = open.code == TOK_IF && open.argsTaken == 0;
    const std::uint8_t kind = m_Kinds.back();
    if (isCondition ? kind != RT_BOOLEAN : !Fits(open.kind, kind))
        return false;
    if (!isCondition)
        open.kind = kind;
    ++open.argsTaken;
    if (!isLast && open.argsTaken >= CatalogueOf(open.code).maxArgs)
        return false;
    if (open.code == TOK_IF)
        WriteBranch(open, isLast);
    return true;
}

// A parenthesis does nothing to its value; yet an error below it leaves no text behind.
void ProgramBuilder::WriteFunction(const Open& open)
{
    if (open.code == TOK_IF)
        Write(Operation::IfEnds, 0, open.argsTaken);
    else if (open.code != TOK_GROUP)
        Write(Operation::Function, open.code, open.argsTaken);
    m_Program->m_LastCode = open.code;
}

// Where the last argument is a number or a variable by itself, it becomes part of the instruction.
void ProgramBuilder::WriteOperator(const Open& open)
{
    m_Program->m_LastCode = open.code;
    if (open.argsNeeded == 1)
        return open.code == TOK_MINUS ? Write(Operation::Negate)
                                      : Write(Operation::Function, open.code, 1);
    const Forms forms = FormsOf(open.code);
    Instruction& last = m_Program->m_Code.back();
    if (last.operation == Operation::Number && forms.withNumber != forms.onStack)
        last.operation = forms.withNumber;
    else if (last.operation == Operation::Variable && forms.withVariable != forms.onStack)
        last.operation = forms.withVariable;
    else
        Write(forms.onStack, open.code, open.argsNeeded);
}

// Writes what stands behind an argument of an IF, and gives what waits before it its goal.
void ProgramBuilder::WriteBranch(Open& open, bool isLast)
{
    const auto next = static_cast<std::uint32_t>(m_Program->m_Code.size());
    if (open.argsTaken == 1) {
        open.branch = next;
        Write(Operation::IfCondition);
    } else if (isLast) {
        m_Program->m_Code[open.branch].index = next - 1;
    } else {
        m_Program->m_Code[open.branch].index = next;
        open.branch = next;
        Write(Operation::IfBranchEnds);
    }
}

void ProgramBuilder::Write(Operation operation, std::uint32_t index, std::uint16_t count)
{
    Instruction& instruction = m_Program->m_Code.emplace_back();
    instruction.operation = operation;
    instruction.index = index;
    instruction.count = count;
}

std::uint32_t ProgramBuilder::BindingOf(const ReferencePlace& place, WideView name)
{
    auto& bindings = m_Program->m_Bindings;
    const std::size_t lookedAt = std::min(bindings.size(), kNamesLookedAt);
    for (std::size_t index = 0; index < lookedAt; ++index)
        if (bindings[index].kind == place.kind && m_Names[index] == name)
            return static_cast<std::uint32_t>(index);
    Program::Binding& binding = bindings.emplace_back();
    binding.place = static_cast<std::uint32_t>(m_Program->m_Places.size());
    binding.kind = place.kind;
    m_Names.push_back(name);
    return static_cast<std::uint32_t>(bindings.size() - 1);
}

} // namespace tovo::detail
