#ifndef TOVOFORMULA_TOKENCODES_H
#define TOVOFORMULA_TOKENCODES_H

// The elements of the expression language and their kinds. Hosts store and switch over these
// numbers: never renumber.

// What can stand in an expression; the code is the row of the token catalogue.
enum TOKEN_CODE {
    TOK_VARIABLE = 0,
    TOK_FORMULA = 1,
    TOK_FORMTBL = 2,
    TOK_ILLEGAL = 3,
    TOK_NUMBER = 4,
    TOK_COMMA = 5,
    TOK_LPAREN = 6,
    TOK_RPAREN = 7,
    TOK_PLUS = 8,
    TOK_MINUS = 9, // one argument or two, as its place decides
    TOK_TIMES = 10,
    TOK_DIVIDE = 11,
    TOK_EQ_SIGN = 12,
    TOK_GE_SIGN = 13,
    TOK_LE_SIGN = 14,
    TOK_NE_SIGN = 15,
    TOK_GT_SIGN = 16,
    TOK_LT_SIGN = 17,
    TOK_AND = 18,
    TOK_DURATION = 19,
    TOK_EQ = 20,
    TOK_GE = 21,
    TOK_GT = 22,
    TOK_JOBSIZE = 23,
    TOK_LE = 24,
    TOK_LT = 25,
    TOK_NE = 26,
    TOK_NO = 27,
    TOK_NOT = 28,
    TOK_OR = 29,
    TOK_PI = 30,
    TOK_QUANTITY = 31,
    TOK_YES = 32,
    TOK_ABS = 33,
    TOK_ACOS = 34,
    TOK_ASIN = 35,
    TOK_ATAN = 36,
    TOK_AVG = 37,
    TOK_COS = 38,
    TOK_COSH = 39,
    TOK_GROUP = 40, // the nameless function of a plain pair of parentheses
    TOK_IF = 41,
    TOK_MAX = 42,
    TOK_MIN = 43,
    TOK_MOD = 44,
    TOK_POWER = 45,
    TOK_ROUND = 46,
    TOK_ROUNDTO = 47,
    TOK_SIN = 48,
    TOK_SINH = 49,
    TOK_SQRT = 50,
    TOK_SUM = 51,
    TOK_TAN = 52,
    TOK_TANH = 53,
    TOK_TRUNC = 54,
};

inline constexpr int kTokenCount = 55; // the codes are 0 to 54

// The part that an element plays.
enum TOKEN_TYPE {
    TT_CONSTANT = 0,    // a value fixed by the text
    TT_VARVALUE = 1,    // a value from outside: a reference or a job value
    TT_OPERATOR = 2,    // infix or prefix
    TT_FUNCTION = 3,    // with a parenthesised list of arguments
    TT_PUNCTUATION = 4, // comma and parentheses
    TT_ILLEGAL = 5,     // no element of the language
};

// The kind of a value, as what a token gives and as what it takes.
enum RESULT_KIND {
    RT_NONE = 0,    // gives no value; takes no arguments
    RT_NUMERIC = 1, // a number; every argument a number
    RT_BOOLEAN = 2, // a yes/no value; every argument a yes/no value
    RT_ANY = 3,     // not known from the row alone; any kind, but one kind for all arguments
};

#endif
