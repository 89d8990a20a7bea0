#include "TokenCatalogue.h"

#include <iterator>

#include <TovoFormula/TokenNameIds.h>

namespace tovo::detail {
namespace {

// The most arguments of the functions that take a list.
constexpr int kMax = 99;

struct Entry {
    TOKEN_CODE code;
    CatalogueRow row;
};

// AND and OR share one level, below the comparisons; the precedence of a minus is that of its
// binary form, and its place makes it unary. The names of the references are the letters that mark
// them in stored texts, the name of TOK_NUMBER is the set of its characters: neither is a keyword.
// clang-format off
constexpr Entry kEntries[] = {
    // code         name                   English           type        prec min max  gives       takes
    {TOK_VARIABLE, {kNoName,               u"V",             TT_VARVALUE,    0, 0, 0,  RT_ANY,     RT_NONE}},
    {TOK_FORMULA,  {kNoName,               u"F",             TT_VARVALUE,    0, 0, 0,  RT_ANY,     RT_NONE}},
    {TOK_FORMTBL,  {kNoName,               u"T",             TT_VARVALUE,    0, 0, 0,  RT_ANY,     RT_NONE}},
    {TOK_ILLEGAL,  {kNoName,               u"",              TT_ILLEGAL,     0, 0, 0,  RT_NONE,    RT_NONE}},
    {TOK_NUMBER,   {TOKEN_NAME_NUMBER,     u".0123456789",   TT_CONSTANT,    0, 0, 0,  RT_NUMERIC, RT_NONE}},
    {TOK_COMMA,    {TOKEN_NAME_COMMA,      u",",             TT_PUNCTUATION, 0, 0, 0,  RT_NONE,    RT_NONE}},
    {TOK_LPAREN,   {TOKEN_NAME_LPAREN,     u"(",             TT_PUNCTUATION, 0, 0, 0,  RT_NONE,    RT_NONE}},
    {TOK_RPAREN,   {TOKEN_NAME_RPAREN,     u")",             TT_PUNCTUATION, 0, 0, 0,  RT_NONE,    RT_NONE}},
    {TOK_PLUS,     {TOKEN_NAME_PLUS,       u"+",             TT_OPERATOR,    3, 2, 2,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_MINUS,    {TOKEN_NAME_MINUS,      u"-",             TT_OPERATOR,    3, 1, 2,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_TIMES,    {TOKEN_NAME_TIMES,      u"*",             TT_OPERATOR,    5, 2, 2,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_DIVIDE,   {TOKEN_NAME_DIVIDE,     u"/",             TT_OPERATOR,    5, 2, 2,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_EQ_SIGN,  {TOKEN_NAME_EQ_SIGN,    u"=",             TT_OPERATOR,    2, 2, 2,  RT_BOOLEAN, RT_ANY}},
    {TOK_GE_SIGN,  {TOKEN_NAME_GE_SIGN,    u">=",            TT_OPERATOR,    2, 2, 2,  RT_BOOLEAN, RT_ANY}},
    {TOK_LE_SIGN,  {TOKEN_NAME_LE_SIGN,    u"<=",            TT_OPERATOR,    2, 2, 2,  RT_BOOLEAN, RT_ANY}},
    {TOK_NE_SIGN,  {TOKEN_NAME_NE_SIGN,    u"<>",            TT_OPERATOR,    2, 2, 2,  RT_BOOLEAN, RT_ANY}},
    {TOK_GT_SIGN,  {TOKEN_NAME_GT_SIGN,    u">",             TT_OPERATOR,    2, 2, 2,  RT_BOOLEAN, RT_ANY}},
    {TOK_LT_SIGN,  {TOKEN_NAME_LT_SIGN,    u"<",             TT_OPERATOR,    2, 2, 2,  RT_BOOLEAN, RT_ANY}},
    {TOK_AND,      {TOKEN_NAME_AND,        u"AND",           TT_OPERATOR,    1, 2, 2,  RT_BOOLEAN, RT_BOOLEAN}},
    {TOK_DURATION, {TOKEN_NAME_DURATION,   u"DURATION",      TT_VARVALUE,    0, 0, 0,  RT_NUMERIC, RT_NONE}},
    {TOK_EQ,       {TOKEN_NAME_EQ,         u"EQ",            TT_OPERATOR,    2, 2, 2,  RT_BOOLEAN, RT_ANY}},
    {TOK_GE,       {TOKEN_NAME_GE,         u"GE",            TT_OPERATOR,    2, 2, 2,  RT_BOOLEAN, RT_ANY}},
    {TOK_GT,       {TOKEN_NAME_GT,         u"GT",            TT_OPERATOR,    2, 2, 2,  RT_BOOLEAN, RT_ANY}},
    {TOK_JOBSIZE,  {TOKEN_NAME_JOBSIZE,    u"JOBSIZE",       TT_VARVALUE,    0, 0, 0,  RT_NUMERIC, RT_NONE}},
    {TOK_LE,       {TOKEN_NAME_LE,         u"LE",            TT_OPERATOR,    2, 2, 2,  RT_BOOLEAN, RT_ANY}},
    {TOK_LT,       {TOKEN_NAME_LT,         u"LT",            TT_OPERATOR,    2, 2, 2,  RT_BOOLEAN, RT_ANY}},
    {TOK_NE,       {TOKEN_NAME_NE,         u"NE",            TT_OPERATOR,    2, 2, 2,  RT_BOOLEAN, RT_ANY}},
    {TOK_NO,       {TOKEN_NAME_NO,         u"NO",            TT_CONSTANT,    0, 0, 0,  RT_BOOLEAN, RT_NONE}},
    {TOK_NOT,      {TOKEN_NAME_NOT,        u"NOT",           TT_OPERATOR,    6, 1, 1,  RT_BOOLEAN, RT_BOOLEAN}},
    {TOK_OR,       {TOKEN_NAME_OR,         u"OR",            TT_OPERATOR,    1, 2, 2,  RT_BOOLEAN, RT_BOOLEAN}},
    {TOK_PI,       {TOKEN_NAME_PI,         u"PI",            TT_CONSTANT,    0, 0, 0,  RT_NUMERIC, RT_NONE}},
    {TOK_QUANTITY, {TOKEN_NAME_QUANTITY,   u"QUANTITY",      TT_VARVALUE,    0, 0, 0,  RT_NUMERIC, RT_NONE}},
    {TOK_YES,      {TOKEN_NAME_YES,        u"YES",           TT_CONSTANT,    0, 0, 0,  RT_BOOLEAN, RT_NONE}},
    {TOK_ABS,      {TOKEN_NAME_ABS,        u"ABS",           TT_FUNCTION,    0, 1, 1,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_ACOS,     {TOKEN_NAME_ACOS,       u"ACOS",          TT_FUNCTION,    0, 1, 1,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_ASIN,     {TOKEN_NAME_ASIN,       u"ASIN",          TT_FUNCTION,    0, 1, 1,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_ATAN,     {TOKEN_NAME_ATAN,       u"ATAN",          TT_FUNCTION,    0, 1, 1,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_AVG,      {TOKEN_NAME_AVG,        u"AVG",           TT_FUNCTION,    0, 1, kMax, RT_NUMERIC, RT_NUMERIC}},
    {TOK_COS,      {TOKEN_NAME_COS,        u"COS",           TT_FUNCTION,    0, 1, 1,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_COSH,     {TOKEN_NAME_COSH,       u"COSH",          TT_FUNCTION,    0, 1, 1,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_GROUP,    {kNoName,               u"",              TT_FUNCTION,    0, 1, 1,  RT_ANY,     RT_ANY}},
    {TOK_IF,       {TOKEN_NAME_IF,         u"IF",            TT_FUNCTION,    0, 2, 3,  RT_ANY,     RT_ANY}},
    {TOK_MAX,      {TOKEN_NAME_MAX,        u"MAX",           TT_FUNCTION,    0, 1, kMax, RT_NUMERIC, RT_NUMERIC}},
    {TOK_MIN,      {TOKEN_NAME_MIN,        u"MIN",           TT_FUNCTION,    0, 1, kMax, RT_NUMERIC, RT_NUMERIC}},
    {TOK_MOD,      {TOKEN_NAME_MOD,        u"MOD",           TT_FUNCTION,    0, 2, 2,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_POWER,    {TOKEN_NAME_POWER,      u"POWER",         TT_FUNCTION,    0, 2, 2,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_ROUND,    {TOKEN_NAME_ROUND,      u"ROUND",         TT_FUNCTION,    0, 1, 2,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_ROUNDTO,  {TOKEN_NAME_ROUNDTO,    u"ROUNDTO",       TT_FUNCTION,    0, 1, 3,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_SIN,      {TOKEN_NAME_SIN,        u"SIN",           TT_FUNCTION,    0, 1, 1,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_SINH,     {TOKEN_NAME_SINH,       u"SINH",          TT_FUNCTION,    0, 1, 1,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_SQRT,     {TOKEN_NAME_SQRT,       u"SQRT",          TT_FUNCTION,    0, 1, 1,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_SUM,      {TOKEN_NAME_SUM,        u"SUM",           TT_FUNCTION,    0, 1, kMax, RT_NUMERIC, RT_NUMERIC}},
    {TOK_TAN,      {TOKEN_NAME_TAN,        u"TAN",           TT_FUNCTION,    0, 1, 1,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_TANH,     {TOKEN_NAME_TANH,       u"TANH",          TT_FUNCTION,    0, 1, 1,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_TRUNC,    {TOKEN_NAME_TRUNC,      u"TRUNC",         TT_FUNCTION,    0, 1, 2,  RT_NUMERIC, RT_NUMERIC}},
};
// clang-format on

constexpr bool EveryRowStandsAtItsCode()
{
    int code = 0;
    for (const Entry& entry : kEntries)
        if (entry.code != code++)
            return false;
    return code == kTokenCount;
}
static_assert(EveryRowStandsAtItsCode(), "a row is missing or out of order");

} // namespace

const CatalogueRow& CatalogueOf(int code)
{
    const bool isRow = code >= 0 && code < kTokenCount;
    return kEntries[isRow ? code : TOK_ILLEGAL].row;
}

} // namespace tovo::detail
