#ifndef TOVOFORMULA_SRC_OPERATIONS_H
#define TOVOFORMULA_SRC_OPERATIONS_H

#include <cstdint>

namespace tovo::detail {

// What an instruction does. The last number is taken from the stack or stands in the instruction;
// what else is needed comes from the stack, and the result goes there.
enum class Operation : std::uint16_t {
    Number,
    Variable,
    JobValue,
    Formula,
    Table,
    Add,
    AddNumber,
    AddVariable,
    Subtract,
    SubtractNumber,
    SubtractVariable,
    Multiply,
    MultiplyNumber,
    MultiplyVariable,
    Negate,
    Divide,
    Equal,
    NotEqual,
    Greater,
    GreaterOrEqual,
    Less,
    LessOrEqual,
    Function, // any other, computed by its code
    // An IF has its condition between the first two, and its branches apart by the third. Checking
    // computes both branches; a calculation goes on behind the one that is ruled out.
    IfBegins,
    IfCondition,
    IfBranchEnds,
    IfEnds,
};

constexpr bool ReadsVariable(Operation operation)
{
    return operation == Operation::Variable || operation == Operation::AddVariable ||
           operation == Operation::SubtractVariable || operation == Operation::MultiplyVariable;
}

} // namespace tovo::detail

#endif
