#include "StringTable.h"

#include <TovoFormula/MessageIds.h>

namespace tovo::detail {
namespace {

constexpr UINT kFirstId = 6600;

// Some messages stand here twice, under ids of their own, so that a host can tell them apart. 6640
// is the decimal point of a language; the set of a number's characters carries it already.
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
    {6631, u"ABS"},
    {6632, u"ACOS"},
    {6633, u"AND"},
    {6634, u"ASIN"},
    {6635, u"ATAN"},
    {6636, u"AVG"},
    {6637, u","},
    {6638, u"COS"},
    {6639, u"COSH"},
    {6640, u"."},
    {6641, u"/"},
    {6642, u"DURATION"},
    {6643, u"EQ"},
    {6644, u"="},
    {6645, u"GE"},
    {6646, u">="},
    {6647, u"GT"},
    {6648, u">"},
    {6649, u"IF"},
    {6650, u"JOBSIZE"},
    {6651, u"LE"},
    {6652, u"<="},
    {6653, u"("},
    {6654, u"LT"},
    {6655, u"<"},
    {6656, u"MAX"},
    {6657, u"MIN"},
    {6658, u"-"},
    {6659, u"MOD"},
    {6660, u"*"},
    {6661, u"NE"},
    {6662, u"<>"},
    {6663, u"NO"},
    {6664, u"NOT"},
    {6665, u".0123456789"},
    {6666, u"OR"},
    {6667, u"PI"},
    {6668, u"+"},
    {6669, u"POWER"},
    {6670, u"QUANTITY"},
    {6671, u"ROUND"},
    {6672, u"ROUNDTO"},
    {6673, u")"},
    {6674, u"SIN"},
    {6675, u"SINH"},
    {6676, u"SQRT"},
    {6677, u"SUM"},
    {6678, u"TAN"},
    {6679, u"TANH"},
    {6680, u"TRUNC"},
    {6681, u"YES"},
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

} // namespace

std::span<const AfxStringResource> StringTable()
{
    return kStrings;
}

} // namespace tovo::detail
