#include "FunctionList.h"

#include <TovoFormula/FmlaExprBase.h>

#include <TovoJob/Functions.h>

namespace {

struct Row {
    int code;
    const char16_t* meaning;
};

// The words that take no arguments.
constexpr Row kRows[] = {
    {TOK_AND, u"both conditions"},
    {TOK_OR, u"one condition or both"},
    {TOK_NOT, u"not the condition after it"},
    {TOK_EQ, u"equal"},
    {TOK_NE, u"not equal"},
    {TOK_GE, u"greater or equal"},
    {TOK_GT, u"greater"},
    {TOK_LE, u"less or equal"},
    {TOK_LT, u"less"},
    {TOK_YES, u"yes"},
    {TOK_NO, u"no"},
    {TOK_PI, u"3.14159..."},
    {TOK_DURATION, u"job value: the duration"},
    {TOK_JOBSIZE, u"job value: the size of the job"},
    {TOK_QUANTITY, u"job value: the quantity"},
};

CString NameOf(int code)
{
    CString name;
    CFmlaExprBase::GetTokenString(code, name);
    return name;
}

// With the separator that the user has to type between them.
CString ArgumentsOf(const tovo::FunctionInfo& function)
{
    CString list;
    for (std::size_t at = 0; at < function.ParameterCount(); ++at) {
        const CString parameter(function.parameters[at]);
        list += (at > 0 ? NameOf(TOK_COMMA) + u" " : CString()) +
                (at < function.required ? parameter : u"[" + parameter + u"]");
    }
    return u"(" + list + (function.repeats ? NameOf(TOK_COMMA) + u" ..." : CString()) + u")";
}

} // namespace

// Functions first, since they are what one looks up.
std::vector<Word> WordsOfTheLanguage()
{
    std::vector<Word> words;
    for (const tovo::FunctionInfo& function : tovo::Functions())
        words.push_back({NameOf(function.code), ArgumentsOf(function), CString(function.sentence)});
    for (const Row& row : kRows)
        words.push_back({NameOf(row.code), {}, row.meaning});
    return words;
}
