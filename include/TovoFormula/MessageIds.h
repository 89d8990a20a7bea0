#ifndef TOVOFORMULA_MESSAGEIDS_H
#define TOVOFORMULA_MESSAGEIDS_H

// What the library reports: a message id, an unsigned int, 0 for none. The texts of ids 6600 to
// 6682 are string resources of the library; it reports ids only and never loads a text itself.
// Hosts compare and store these numbers: never renumber.
enum MESSAGE_ID : unsigned int {
    MSG_NONE = 0,

    MSG_COMMA_EXPECTED = 6600,
    MSG_COMMA_OR_RPAREN_EXPECTED = 6601,
    MSG_OPERAND_FORMULA_NOT_FOUND = 6602, // an operand's formula
    MSG_OPERAND_FORMTBL_NOT_FOUND = 6603, // an operand's table
    MSG_DIVIDE_BY_ZERO = 6604,
    MSG_MOD_BY_ZERO = 6605,
    MSG_POWER_BY_ZERO = 6606,      // in the table, never raised
    MSG_INVALID_EXPRESSION = 6607, // in the table, never raised
    MSG_FORMULA_INSIDE_ITSELF = 6608,
    MSG_WRONG_RESULT_TYPE = 6609,
    MSG_FORMULA_TEXT_REQUIRED = 6610,
    MSG_INVALID_PARAMETER = 6611,
    MSG_LPAREN_EXPECTED = 6612, // in the table, never raised
    MSG_MATH_RANGE = 6613,
    MSG_FORMULA_NOT_FOUND = 6614,
    MSG_FORMTBL_NOT_FOUND = 6615,
    MSG_TOO_MANY_DIGITS = 6616,
    MSG_PARAMETER_NOT_NUMERIC = 6617,
    MSG_PARAMETER_NOT_YES_NO = 6618,
    MSG_RPAREN_EXPECTED = 6619,
    MSG_TWO_DECIMAL_POINTS = 6620,
    MSG_UNEXPECTED_COMMA = 6621,
    MSG_UNEXPECTED_END = 6622, // in the table, never raised
    MSG_UNEXPECTED_FUNCTION = 6623,
    MSG_UNEXPECTED_LPAREN = 6624,
    MSG_UNEXPECTED_LOGICAL_OPERATOR = 6625,
    MSG_UNEXPECTED_NUMERIC_OPERATOR = 6626,
    MSG_UNEXPECTED_OPERAND = 6627,
    MSG_UNEXPECTED_OPERATOR = 6628,
    MSG_UNEXPECTED_RPAREN = 6629,
    MSG_UNRECOGNIZED_ELEMENT = 6630,
    // 6631 to 6681 are the token names: TokenNameIds.h.
    MSG_INVALID_ELEMENT = 6682,

    // Outside the string table: a host words these itself.
    MSG_GENERAL_FAILURE = 10732, // a token or a tree in a state that no other message covers
    MSG_COLUMN_LIMITS_ORDER = 10846,
    MSG_ROW_LIMITS_ORDER = 10847,
};

#endif
