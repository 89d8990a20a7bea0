#ifndef GERMAN_H
#define GERMAN_H

#include <TovoFormula/LanguageScope.h>
#include <TovoFormula/MessageIds.h>
#include <TovoFormula/TokenNameIds.h>

// German for authors of formulas: all words of the language that differ from English, and all
// messages, those included for which the library has no text. Signs stay what they are, and so do
// PI, MAX, MIN and the names of angles that are the same in both. A word has no umlaut: the
// language knows the letters A to Z.

inline constexpr AfxStringResource kGerman[] = {
    {TOKEN_NAME_ABS, u"BETRAG"},
    {TOKEN_NAME_ACOS, u"ARCCOS"},
    {TOKEN_NAME_AND, u"UND"},
    {TOKEN_NAME_ASIN, u"ARCSIN"},
    {TOKEN_NAME_ATAN, u"ARCTAN"},
    {TOKEN_NAME_AVG, u"MITTEL"},
    {TOKEN_NAME_DURATION, u"DAUER"},
    {TOKEN_NAME_EQ, u"GLEICH"},
    {TOKEN_NAME_GE, u"MINDESTENS"},
    {TOKEN_NAME_GT, u"GROESSER"},
    {TOKEN_NAME_IF, u"WENN"},
    {TOKEN_NAME_JOBSIZE, u"UMFANG"},
    {TOKEN_NAME_LE, u"HOECHSTENS"},
    {TOKEN_NAME_LT, u"KLEINER"},
    {TOKEN_NAME_MOD, u"REST"},
    {TOKEN_NAME_NE, u"UNGLEICH"},
    {TOKEN_NAME_NO, u"NEIN"},
    {TOKEN_NAME_NOT, u"NICHT"},
    {TOKEN_NAME_OR, u"ODER"},
    {TOKEN_NAME_POWER, u"POTENZ"},
    {TOKEN_NAME_QUANTITY, u"ANZAHL"},
    {TOKEN_NAME_ROUND, u"RUNDEN"},
    {TOKEN_NAME_ROUNDTO, u"RUNDENAUF"},
    {TOKEN_NAME_SQRT, u"WURZEL"},
    {TOKEN_NAME_SUM, u"SUMME"},
    {TOKEN_NAME_TRUNC, u"KUERZEN"},
    {TOKEN_NAME_YES, u"JA"},

    {MSG_COMMA_EXPECTED, u"Hier fehlt ein Trennzeichen."},
    {MSG_COMMA_OR_RPAREN_EXPECTED, u"Hier fehlt ein Trennzeichen oder eine schließende Klammer."},
    {MSG_OPERAND_FORMULA_NOT_FOUND, u"Diese Formel gibt es nicht."},
    {MSG_OPERAND_FORMTBL_NOT_FOUND, u"Diese Formeltabelle gibt es nicht."},
    {MSG_DIVIDE_BY_ZERO, u"Bei der Berechnung wurde durch null geteilt."},
    {MSG_MOD_BY_ZERO, u"Bei der Berechnung von REST wurde durch null geteilt."},
    {MSG_POWER_BY_ZERO, u"Bei der Berechnung von POTENZ wurde durch null geteilt."},
    {MSG_INVALID_EXPRESSION, u"Der Ausdruck ist ungültig."},
    {MSG_FORMULA_INSIDE_ITSELF, u"Eine Formel darf sich nicht selbst enthalten."},
    {MSG_WRONG_RESULT_TYPE, u"Das Ergebnis der Formel hat die falsche Art."},
    {MSG_FORMULA_TEXT_REQUIRED, u"Die Formel ist leer."},
    {MSG_INVALID_PARAMETER, u"Die Funktion ist für diesen Wert nicht erklärt."},
    {MSG_LPAREN_EXPECTED, u"Hier fehlt eine öffnende Klammer."},
    {MSG_MATH_RANGE, u"Eine Funktion hat kein gültiges Ergebnis. Vielleicht ist es zu groß."},
    {MSG_FORMULA_NOT_FOUND, u"Diese Formel gibt es nicht."},
    {MSG_FORMTBL_NOT_FOUND, u"Diese Formeltabelle gibt es nicht."},
    {MSG_TOO_MANY_DIGITS, u"Zahlen mit mehr als 15 Ziffern sind nicht möglich."},
    {MSG_PARAMETER_NOT_NUMERIC, u"Hier wird eine Zahl gebraucht."},
    {MSG_PARAMETER_NOT_YES_NO, u"Hier wird ein Ja/Nein-Wert gebraucht."},
    {MSG_RPAREN_EXPECTED, u"Hier fehlt eine schließende Klammer."},
    {MSG_TWO_DECIMAL_POINTS, u"Die Zahl hat mehr als ein Dezimalzeichen."},
    {MSG_UNEXPECTED_COMMA, u"Hier darf kein Trennzeichen stehen."},
    {MSG_UNEXPECTED_END, u"Der Ausdruck endet zu früh."},
    {MSG_UNEXPECTED_FUNCTION, u"Hier darf keine Funktion stehen."},
    {MSG_UNEXPECTED_LPAREN, u"Hier darf keine Klammer stehen."},
    {MSG_UNEXPECTED_LOGICAL_OPERATOR, u"Hier darf kein logischer Operator stehen."},
    {MSG_UNEXPECTED_NUMERIC_OPERATOR, u"Hier darf kein Rechenzeichen stehen."},
    {MSG_UNEXPECTED_OPERAND, u"Hier darf kein Wert stehen."},
    {MSG_UNEXPECTED_OPERATOR, u"Hier darf kein Operator stehen."},
    {MSG_UNEXPECTED_RPAREN, u"Hier darf keine Klammer stehen."},
    {MSG_UNRECOGNIZED_ELEMENT, u"Das ist kein Teil der Formelsprache."},
    {MSG_INVALID_ELEMENT, u"Das ist kein gültiger Teil einer Formel."},
    {MSG_GENERAL_FAILURE, u"Der Ausdruck ist unvollständig oder nicht zu berechnen."},
    {MSG_COLUMN_LIMITS_ORDER, u"Die Grenzen der Spalten steigen nicht."},
    {MSG_ROW_LIMITS_ORDER, u"Die Grenzen der Zeilen steigen nicht."},
};

inline const FormulaLanguage& German()
{
    static const FormulaLanguage german(kGerman, u",", u";");
    return german;
}

#endif
