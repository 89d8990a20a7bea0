#include "TokenCatalogue.h"

#include <iterator>

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
    // code         name     English           type        prec min max  gives       takes
    {TOK_VARIABLE, {kNoName, u"V",             TT_VARVALUE,    0, 0, 0,  RT_ANY,     RT_NONE}},
    {TOK_FORMULA,  {kNoName, u"F",             TT_VARVALUE,    0, 0, 0,  RT_ANY,     RT_NONE}},
    {TOK_FORMTBL,  {kNoName, u"T",             TT_VARVALUE,    0, 0, 0,  RT_ANY,     RT_NONE}},
    {TOK_ILLEGAL,  {kNoName, u"",              TT_ILLEGAL,     0, 0, 0,  RT_NONE,    RT_NONE}},
    {TOK_NUMBER,   {6665,    u".0123456789",   TT_CONSTANT,    0, 0, 0,  RT_NUMERIC, RT_NONE}},
    {TOK_COMMA,    {6637,    u",",             TT_PUNCTUATION, 0, 0, 0,  RT_NONE,    RT_NONE}},
    {TOK_LPAREN,   {6653,    u"(",             TT_PUNCTUATION, 0, 0, 0,  RT_NONE,    RT_NONE}},
    {TOK_RPAREN,   {6673,    u")",             TT_PUNCTUATION, 0, 0, 0,  RT_NONE,    RT_NONE}},
    {TOK_PLUS,     {6668,    u"+",             TT_OPERATOR,    3, 2, 2,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_MINUS,    {6658,    u"-",             TT_OPERATOR,    3, 1, 2,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_TIMES,    {6660,    u"*",             TT_OPERATOR,    5, 2, 2,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_DIVIDE,   {6641,    u"/",             TT_OPERATOR,    5, 2, 2,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_EQ_SIGN,  {6644,    u"=",             TT_OPERATOR,    2, 2, 2,  RT_BOOLEAN, RT_ANY}},
    {TOK_GE_SIGN,  {6646,    u">=",            TT_OPERATOR,    2, 2, 2,  RT_BOOLEAN, RT_ANY}},
    {TOK_LE_SIGN,  {6652,    u"<=",            TT_OPERATOR,    2, 2, 2,  RT_BOOLEAN, RT_ANY}},
    {TOK_NE_SIGN,  {6662,    u"<>",            TT_OPERATOR,    2, 2, 2,  RT_BOOLEAN, RT_ANY}},
    {TOK_GT_SIGN,  {6648,    u">",             TT_OPERATOR,    2, 2, 2,  RT_BOOLEAN, RT_ANY}},
    {TOK_LT_SIGN,  {6655,    u"<",             TT_OPERATOR,    2, 2, 2,  RT_BOOLEAN, RT_ANY}},
    {TOK_AND,      {6633,    u"AND",           TT_OPERATOR,    1, 2, 2,  RT_BOOLEAN, RT_BOOLEAN}},
    {TOK_DURATION, {6642,    u"DURATION",      TT_VARVALUE,    0, 0, 0,  RT_NUMERIC, RT_NONE}},
    {TOK_EQ,       {6643,    u"EQ",            TT_OPERATOR,    2, 2, 2,  RT_BOOLEAN, RT_ANY}},
    {TOK_GE,       {6645,    u"GE",            TT_OPERATOR,    2, 2, 2,  RT_BOOLEAN, RT_ANY}},
    {TOK_GT,       {6647,    u"GT",            TT_OPERATOR,    2, 2, 2,  RT_BOOLEAN, RT_ANY}},
    {TOK_JOBSIZE,  {6650,    u"JOBSIZE",       TT_VARVALUE,    0, 0, 0,  RT_NUMERIC, RT_NONE}},
    {TOK_LE,       {6651,    u"LE",            TT_OPERATOR,    2, 2, 2,  RT_BOOLEAN, RT_ANY}},
    {TOK_LT,       {6654,    u"LT",            TT_OPERATOR,    2, 2, 2,  RT_BOOLEAN, RT_ANY}},
    {TOK_NE,       {6661,    u"NE",            TT_OPERATOR,    2, 2, 2,  RT_BOOLEAN, RT_ANY}},
    {TOK_NO,       {6663,    u"NO",            TT_CONSTANT,    0, 0, 0,  RT_BOOLEAN, RT_NONE}},
    {TOK_NOT,      {6664,    u"NOT",           TT_OPERATOR,    6, 1, 1,  RT_BOOLEAN, RT_BOOLEAN}},
    {TOK_OR,       {6666,    u"OR",            TT_OPERATOR,    1, 2, 2,  RT_BOOLEAN, RT_BOOLEAN}},
    {TOK_PI,       {6667,    u"PI",            TT_CONSTANT,    0, 0, 0,  RT_NUMERIC, RT_NONE}},
    {TOK_QUANTITY, {6670,    u"QUANTITY",      TT_VARVALUE,    0, 0, 0,  RT_NUMERIC, RT_NONE}},
    {TOK_YES,      {6681,    u"YES",           TT_CONSTANT,    0, 0, 0,  RT_BOOLEAN, RT_NONE}},
    {TOK_ABS,      {6631,    u"ABS",           TT_FUNCTION,    0, 1, 1,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_ACOS,     {6632,    u"ACOS",          TT_FUNCTION,    0, 1, 1,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_ASIN,     {6634,    u"ASIN",          TT_FUNCTION,    0, 1, 1,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_ATAN,     {6635,    u"ATAN",          TT_FUNCTION,    0, 1, 1,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_AVG,      {6636,    u"AVG",           TT_FUNCTION,    0, 1, kMax, RT_NUMERIC, RT_NUMERIC}},
    {TOK_COS,      {6638,    u"COS",           TT_FUNCTION,    0, 1, 1,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_COSH,     {6639,    u"COSH",          TT_FUNCTION,    0, 1, 1,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_GROUP,    {kNoName, u"",              TT_FUNCTION,    0, 1, 1,  RT_ANY,     RT_ANY}},
    {TOK_IF,       {6649,    u"IF",            TT_FUNCTION,    0, 2, 3,  RT_ANY,     RT_ANY}},
    {TOK_MAX,      {6656,    u"MAX",           TT_FUNCTION,    0, 1, kMax, RT_NUMERIC, RT_NUMERIC}},
    {TOK_MIN,      {6657,    u"MIN",           TT_FUNCTION,    0, 1, kMax, RT_NUMERIC, RT_NUMERIC}},
    {TOK_MOD,      {6659,    u"MOD",           TT_FUNCTION,    0, 2, 2,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_POWER,    {6669,    u"POWER",         TT_FUNCTION,    0, 2, 2,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_ROUND,    {6671,    u"ROUND",         TT_FUNCTION,    0, 1, 2,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_ROUNDTO,  {6672,    u"ROUNDTO",       TT_FUNCTION,    0, 1, 3,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_SIN,      {6674,    u"SIN",           TT_FUNCTION,    0, 1, 1,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_SINH,     {6675,    u"SINH",          TT_FUNCTION,    0, 1, 1,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_SQRT,     {6676,    u"SQRT",          TT_FUNCTION,    0, 1, 1,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_SUM,      {6677,    u"SUM",           TT_FUNCTION,    0, 1, kMax, RT_NUMERIC, RT_NUMERIC}},
    {TOK_TAN,      {6678,    u"TAN",           TT_FUNCTION,    0, 1, 1,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_TANH,     {6679,    u"TANH",          TT_FUNCTION,    0, 1, 1,  RT_NUMERIC, RT_NUMERIC}},
    {TOK_TRUNC,    {6680,    u"TRUNC",         TT_FUNCTION,    0, 1, 2,  RT_NUMERIC, RT_NUMERIC}},
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
