#ifndef TOVOFORMULA_SRC_OPERANDKINDS_H
#define TOVOFORMULA_SRC_OPERANDKINDS_H

#include <TovoFormula/CalcOpBase.h>

namespace tovo::detail {

// The three kinds of reference follow one another as their kind words do.
constexpr OPERAND_KIND OperandKindOf(int referenceKind)
{
    return static_cast<OPERAND_KIND>(OP_VARIABLE + referenceKind);
}

constexpr int ReferenceKindOf(int operandKind)
{
    return operandKind - OP_VARIABLE;
}

} // namespace tovo::detail

#endif
