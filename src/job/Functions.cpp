#include <TovoJob/Functions.h>

#include <algorithm>

#include <TovoFormula/TokenCodes.h>

namespace tovo {

namespace {

// clang-format off
constexpr FunctionInfo kFunctions[] = {
    // code        name       parameters                          required repeats
    //     sentence, example, value of the example
    {TOK_ABS,     "ABS",     {"value"},                               1, false,
        "Returns the value without its sign.", "ABS(-2.5)", "2.5"},
    {TOK_ACOS,    "ACOS",    {"value"},                               1, false,
        "Returns the angle from 0 to 180 degrees that has this cosine.", "ACOS(-0.5)", "120"},
    {TOK_ASIN,    "ASIN",    {"value"},                               1, false,
        "Returns the angle from -90 to 90 degrees that has this sine.", "ASIN(-1)", "-90"},
    {TOK_ATAN,    "ATAN",    {"value"},                               1, false,
        "Returns the angle from -90 to 90 degrees that has this tangent.", "ATAN(1)", "45"},
    {TOK_AVG,     "AVG",     {"value"},                               1, true,
        "Returns the mean of the values.", "AVG(1,2,3,4)", "2.5"},
    {TOK_COS,     "COS",     {"angle"},                               1, false,
        "Returns the cosine of an angle in degrees.", "COS(60)", "0.5"},
    {TOK_COSH,    "COSH",    {"value"},                               1, false,
        "Returns the hyperbolic cosine.", "COSH(0)", "1"},
    {TOK_IF,      "IF",      {"condition", "value", "otherwise"},     2, false,
        "Returns the value if the condition is yes; if not, the other one, or 0 or NO without it.",
        "IF(2>1,10,20)", "10"},
    {TOK_MAX,     "MAX",     {"value"},                               1, true,
        "Returns the greatest of the values.", "MAX(1,3,2)", "3"},
    {TOK_MIN,     "MIN",     {"value"},                               1, true,
        "Returns the smallest of the values.", "MIN(3,-1,2)", "-1"},
    {TOK_MOD,     "MOD",     {"value", "divisor"},                    2, false,
        "Returns the remainder of the division, with the sign of the value.", "MOD(-7,3)", "-1"},
    {TOK_POWER,   "POWER",   {"base", "exponent"},                    2, false,
        "Returns the base to the power of the exponent.", "POWER(2,10)", "1024"},
    {TOK_ROUND,   "ROUND",   {"value", "places"},                     1, false,
        "Rounds to so many places after the point, or before it if they are negative.",
        "ROUND(2.675,2)", "2.68"},
    {TOK_ROUNDTO, "ROUNDTO", {"value", "direction", "step"},          1, false,
        "Rounds to a multiple of the step: to the nearest (0), away from zero (1) or toward it (-1).",
        "ROUNDTO(24.05,1,0.25)", "24.25"},
    {TOK_SIN,     "SIN",     {"angle"},                               1, false,
        "Returns the sine of an angle in degrees.", "SIN(30)", "0.5"},
    {TOK_SINH,    "SINH",    {"value"},                               1, false,
        "Returns the hyperbolic sine.", "SINH(0)", "0"},
    {TOK_SQRT,    "SQRT",    {"value"},                               1, false,
        "Returns the square root.", "SQRT(6.25)", "2.5"},
    {TOK_SUM,     "SUM",     {"value"},                               1, true,
        "Returns the sum of the values.", "SUM(1,2,3)", "6"},
    {TOK_TAN,     "TAN",     {"angle"},                               1, false,
        "Returns the tangent of an angle in degrees.", "TAN(45)", "1"},
    {TOK_TANH,    "TANH",    {"value"},                               1, false,
        "Returns the hyperbolic tangent.", "TANH(0)", "0"},
    {TOK_TRUNC,   "TRUNC",   {"value", "places"},                     1, false,
        "Cuts off all but so many places after the point.", "TRUNC(12.345,1)", "12.3"},
};
// clang-format on

} // namespace

std::span<const FunctionInfo> Functions()
{
    return kFunctions;
}

const FunctionInfo* FindFunction(int code)
{
    const auto* const found =
        std::find_if(std::begin(kFunctions), std::end(kFunctions),
                     [code](const FunctionInfo& function) { return function.code == code; });
    return found == std::end(kFunctions) ? nullptr : found;
}

} // namespace tovo
