#include "Computation.h"

#include <TovoFormula/TokenCodes.h>

namespace tovo::detail {
namespace {

MathResult Subtract(std::span<const double> args)
{
    return {args.size() == 1 ? -args[0] : args[0] - args[1]};
}

} // namespace

MathResult Compute(int code, std::span<const double> args)
{
    switch (static_cast<TOKEN_CODE>(code)) {
    case TOK_PLUS:
        return {args[0] + args[1]};
    case TOK_MINUS:
        return Subtract(args);
    case TOK_TIMES:
        return {args[0] * args[1]};
    case TOK_DIVIDE:
        return Divide(args[0], args[1]);
    case TOK_EQ_SIGN:
    case TOK_EQ:
        return {YesNo(Order(args[0], args[1]) == 0)};
    case TOK_NE_SIGN:
    case TOK_NE:
        return {YesNo(Order(args[0], args[1]) != 0)};
    case TOK_GT_SIGN:
    case TOK_GT:
        return {YesNo(Order(args[0], args[1]) > 0)};
    case TOK_GE_SIGN:
    case TOK_GE:
        return {YesNo(Order(args[0], args[1]) >= 0)};
    case TOK_LT_SIGN:
    case TOK_LT:
        return {YesNo(Order(args[0], args[1]) < 0)};
    case TOK_LE_SIGN:
    case TOK_LE:
        return {YesNo(Order(args[0], args[1]) <= 0)};
    case TOK_AND:
        return {YesNo(IsYes(args[0]) && IsYes(args[1]))};
    case TOK_OR:
        return {YesNo(IsYes(args[0]) || IsYes(args[1]))};
    case TOK_NOT:
        return {YesNo(!IsYes(args[0]))};
    case TOK_GROUP:
        return {args[0]};
    case TOK_IF:
        return {Choose(args)};
    case TOK_ABS:
        return {args[0] < 0.0 ? -args[0] : args[0]};
    case TOK_ACOS:
        return ArcCosine(args[0]);
    case TOK_ASIN:
        return ArcSine(args[0]);
    case TOK_ATAN:
        return ArcTangent(args[0]);
    case TOK_AVG:
        return Average(args);
    case TOK_COS:
        return Cosine(args[0]);
    case TOK_COSH:
        return HyperbolicCosine(args[0]);
    case TOK_MAX:
        return Largest(args);
    case TOK_MIN:
        return Smallest(args);
    case TOK_MOD:
        return Modulo(args[0], args[1]);
    case TOK_POWER:
        return Power(args[0], args[1]);
    case TOK_ROUND:
        return RoundToPlaces(args);
    case TOK_ROUNDTO:
        return RoundToStep(args);
    case TOK_SIN:
        return Sine(args[0]);
    case TOK_SINH:
        return HyperbolicSine(args[0]);
    case TOK_SQRT:
        return SquareRoot(args[0]);
    case TOK_SUM:
        return Sum(args);
    case TOK_TAN:
        return Tangent(args[0]);
    case TOK_TANH:
        return HyperbolicTangent(args[0]);
    case TOK_TRUNC:
        return TruncateToPlaces(args);
    case TOK_VARIABLE:
    case TOK_FORMULA:
    case TOK_FORMTBL:
    case TOK_ILLEGAL:
    case TOK_NUMBER:
    case TOK_COMMA:
    case TOK_LPAREN:
    case TOK_RPAREN:
    case TOK_DURATION:
    case TOK_JOBSIZE:
    case TOK_QUANTITY:
    case TOK_NO:
    case TOK_PI:
    case TOK_YES:
        break;
    }
    return {0.0, MSG_GENERAL_FAILURE, 0};
}

} // namespace tovo::detail
