#include "FunctionList.h"

#include <TovoFormula/FmlaExprBase.h>

namespace {

struct Row {
    int code;
    const char16_t* arguments; // parted by commas, null for none
    const char16_t* meaning;
};

// All words but the nameless function of a pair of parentheses: functions first, since they are
// what one looks up.
// clang-format off
constexpr Row kRows[] = {
    {TOK_ABS,      u"number",                     u"without its sign"},
    {TOK_ACOS,     u"number",                     u"arc cosine, in degrees"},
    {TOK_ASIN,     u"number",                     u"arc sine, in degrees"},
    {TOK_ATAN,     u"number",                     u"arc tangent, in degrees"},
    {TOK_AVG,      u"number,...",                 u"the average"},
    {TOK_COS,      u"degrees",                    u"cosine"},
    {TOK_COSH,     u"number",                     u"hyperbolic cosine"},
    {TOK_IF,       u"condition,then,else",        u"one of two values"},
    {TOK_MAX,      u"number,...",                 u"the greatest"},
    {TOK_MIN,      u"number,...",                 u"the least"},
    {TOK_MOD,      u"number,divisor",             u"the remainder, with the sign of the number"},
    {TOK_POWER,    u"base,exponent",              u"the power"},
    {TOK_ROUND,    u"number,[places]",            u"to so many decimal places"},
    {TOK_ROUNDTO,  u"number,[direction],[step]",  u"to a multiple; direction 1 up, 0 nearest, -1 down"},
    {TOK_SIN,      u"degrees",                    u"sine"},
    {TOK_SINH,     u"number",                     u"hyperbolic sine"},
    {TOK_SQRT,     u"number",                     u"the square root"},
    {TOK_SUM,      u"number,...",                 u"the sum"},
    {TOK_TAN,      u"degrees",                    u"tangent"},
    {TOK_TANH,     u"number",                     u"hyperbolic tangent"},
    {TOK_TRUNC,    u"number,[places]",            u"cut off behind so many decimal places"},
    {TOK_AND,      nullptr,                       u"both conditions"},
    {TOK_OR,       nullptr,                       u"one condition or both"},
    {TOK_NOT,      nullptr,                       u"not the condition behind it"},
    {TOK_EQ,       nullptr,                       u"equal"},
    {TOK_NE,       nullptr,                       u"not equal"},
    {TOK_GE,       nullptr,                       u"greater or equal"},
    {TOK_GT,       nullptr,                       u"greater"},
    {TOK_LE,       nullptr,                       u"less or equal"},
    {TOK_LT,       nullptr,                       u"less"},
    {TOK_YES,      nullptr,                       u"yes"},
    {TOK_NO,       nullptr,                       u"no"},
    {TOK_PI,       nullptr,                       u"3.14159..."},
    {TOK_DURATION, nullptr,                       u"job value: the duration"},
    {TOK_JOBSIZE,  nullptr,                       u"job value: the size of the job"},
    {TOK_QUANTITY, nullptr,                       u"job value: the quantity"},
};
// clang-format on

CString NameOf(int code)
{
    CString name;
    CFmlaExprBase::GetTokenString(code, name);
    return name;
}

// With the separator that the user has to type between them.
CString ArgumentsOf(const Row& row)
{
    if (!row.arguments)
        return CString();
    CString list = row.arguments;
    list.Replace(u",", NameOf(TOK_COMMA) + u" ");
    return u"(" + list + u")";
}

} // namespace

std::vector<Word> WordsOfTheLanguage()
{
    std::vector<Word> words;
    for (const Row& row : kRows)
        words.push_back({NameOf(row.code), ArgumentsOf(row), row.meaning});
    return words;
}
