#include "StringTable.h"

#include <iterator>

#include <TovoFormula/MessageIds.h>
#include <TovoFormula/TokenNameIds.h>

namespace tovo::detail {
namespace {

constexpr UINT kFirstId = 6600;

// Some messages stand here twice, under ids of their own, so that a host can tell them apart.
// clang-format off
constexpr AfxStringResource kStrings[] = {
    {MSG_COMMA_EXPECTED, u"Comma expected."},
    {MSG_COMMA_OR_RPAREN_EXPECTED, u"Comma or right parenthesis expected."},
    {MSG_OPERAND_FORMULA_NOT_FOUND, u"Formula not found."},
    {MSG_OPERAND_FORMTBL_NOT_FOUND, u"Formula table not found."},
    {MSG_DIVIDE_BY_ZERO, u"A divide by zero occurred during calculation."},
    {MSG_MOD_BY_ZERO, u"A divide by zero occurred while processing a MOD function in the calculation."},
    {MSG_POWER_BY_ZERO, u"A divide by zero occurred while processing a POWER function in the calculation."},
    {MSG_INVALID_EXPRESSION, u"Invalid expression."},
    {MSG_FORMULA_INSIDE_ITSELF, u"Inserting a formula into itself is not allowed."},
    {MSG_WRONG_RESULT_TYPE, u"Formula returns wrong type."},
    {MSG_FORMULA_TEXT_REQUIRED, u"Formula text required."},
    {MSG_INVALID_PARAMETER, u"Function has an invalid parameter."},
    {MSG_LPAREN_EXPECTED, u"Left parenthesis expected."},
    {MSG_MATH_RANGE, u"A math function returned an invalid result.  Possibly, the result was too large to be processed by the system."},
    {MSG_FORMULA_NOT_FOUND, u"Formula not found."},
    {MSG_FORMTBL_NOT_FOUND, u"Formula table not found."},
    {MSG_TOO_MANY_DIGITS, u"Numbers with more than 15 digits cannot be processed."},
    {MSG_PARAMETER_NOT_NUMERIC, u"Parameter must have a numeric value."},
    {MSG_PARAMETER_NOT_YES_NO, u"Parameter must have a yes/no value."},
    {MSG_RPAREN_EXPECTED, u"Right parenthesis expected."},
    {MSG_TWO_DECIMAL_POINTS, u"The number entered has more than one decimal point."},
    {MSG_UNEXPECTED_COMMA, u"Unexpected comma."},
    {MSG_UNEXPECTED_END, u"Unexpected end of expression."},
    {MSG_UNEXPECTED_FUNCTION, u"Unexpected function."},
    {MSG_UNEXPECTED_LPAREN, u"Unexpected parenthesis."},
    {MSG_UNEXPECTED_LOGICAL_OPERATOR, u"Unexpected logical operator."},
    {MSG_UNEXPECTED_NUMERIC_OPERATOR, u"Unexpected numeric operator."},
    {MSG_UNEXPECTED_OPERAND, u"Unexpected operand."},
    {MSG_UNEXPECTED_OPERATOR, u"Unexpected operator."},
    {MSG_UNEXPECTED_RPAREN, u"Unexpected parenthesis."},
    {MSG_UNRECOGNIZED_ELEMENT, u"Unrecognized element."},
    {TOKEN_NAME_ABS, u"ABS"},
    {TOKEN_NAME_ACOS, u"ACOS"},
    {TOKEN_NAME_AND, u"AND"},
    {TOKEN_NAME_ASIN, u"ASIN"},
    {TOKEN_NAME_ATAN, u"ATAN"},
    {TOKEN_NAME_AVG, u"AVG"},
    {TOKEN_NAME_COMMA, u","},
    {TOKEN_NAME_COS, u"COS"},
    {TOKEN_NAME_COSH, u"COSH"},
    {TOKEN_NAME_DECIMAL_POINT, u"."},
    {TOKEN_NAME_DIVIDE, u"/"},
    {TOKEN_NAME_DURATION, u"DURATION"},
    {TOKEN_NAME_EQ, u"EQ"},
    {TOKEN_NAME_EQ_SIGN, u"="},
    {TOKEN_NAME_GE, u"GE"},
    {TOKEN_NAME_GE_SIGN, u">="},
    {TOKEN_NAME_GT, u"GT"},
    {TOKEN_NAME_GT_SIGN, u">"},
    {TOKEN_NAME_IF, u"IF"},
    {TOKEN_NAME_JOBSIZE, u"JOBSIZE"},
    {TOKEN_NAME_LE, u"LE"},
    {TOKEN_NAME_LE_SIGN, u"<="},
    {TOKEN_NAME_LPAREN, u"("},
    {TOKEN_NAME_LT, u"LT"},
    {TOKEN_NAME_LT_SIGN, u"<"},
    {TOKEN_NAME_MAX, u"MAX"},
    {TOKEN_NAME_MIN, u"MIN"},
    {TOKEN_NAME_MINUS, u"-"},
    {TOKEN_NAME_MOD, u"MOD"},
    {TOKEN_NAME_TIMES, u"*"},
    {TOKEN_NAME_NE, u"NE"},
    {TOKEN_NAME_NE_SIGN, u"<>"},
    {TOKEN_NAME_NO, u"NO"},
    {TOKEN_NAME_NOT, u"NOT"},
    {TOKEN_NAME_NUMBER, u".0123456789"},
    {TOKEN_NAME_OR, u"OR"},
    {TOKEN_NAME_PI, u"PI"},
    {TOKEN_NAME_PLUS, u"+"},
    {TOKEN_NAME_POWER, u"POWER"},
    {TOKEN_NAME_QUANTITY, u"QUANTITY"},
    {TOKEN_NAME_ROUND, u"ROUND"},
    {TOKEN_NAME_ROUNDTO, u"ROUNDTO"},
    {TOKEN_NAME_RPAREN, u")"},
    {TOKEN_NAME_SIN, u"SIN"},
    {TOKEN_NAME_SINH, u"SINH"},
    {TOKEN_NAME_SQRT, u"SQRT"},
    {TOKEN_NAME_SUM, u"SUM"},
    {TOKEN_NAME_TAN, u"TAN"},
    {TOKEN_NAME_TANH, u"TANH"},
    {TOKEN_NAME_TRUNC, u"TRUNC"},
    {TOKEN_NAME_YES, u"YES"},
    {MSG_INVALID_ELEMENT, u"Invalid formula element."},
};
// clang-format on

constexpr bool EveryIdIsNext()
{
    UINT id = kFirstId;
    for (const AfxStringResource& resource : kStrings)
        if (resource.id != id++)
            return false;
    return id == MSG_INVALID_ELEMENT + 1;
}
static_assert(EveryIdIsNext(), "an id is missing or out of order");

constexpr bool EveryIdHasAText()
{
    for (const AfxStringResource& resource : kStrings)
        if (!resource.text)
            return false;
    return true;
}
static_assert(EveryIdHasAText(), "a text is missing");

} // namespace

constinit AFX_EXTENSION_MODULE stringModule{kStrings, std::size(kStrings)};

} // namespace tovo::detail
