#ifndef TOVOFORMULA_TESTS_OPERANDS_H
#define TOVOFORMULA_TESTS_OPERANDS_H

#include <string>

#include <TovoFormula/CalcOpBase.h>
#include <TovoPlatform/NumberText.h>

namespace tovo::test {

// Loads what a row tells by a letter: "V", "F" or "T" and a name, "n" and a number, "b" and a
// yes/no value, "e" and an encoded string, "p" and a prefixed string. An empty row clears.
inline bool Load(CalcOpBase& operand, const CString& row)
{
    CString text = row.Mid(1);
    switch (row[0]) {
    case u'V':
        return operand.LoadVariable(text);
    case u'F':
        return operand.LoadFormula(text);
    case u'T':
        return operand.LoadFormulaTable(text);
    case u'e':
        return operand.LoadEncodedExpression(text);
    case u'p':
        return operand.LoadPrefixedString(text);
    case u'n':
        operand.LoadNumericConstant(ParseDouble(text));
        return true;
    case u'b':
        operand.LoadBooleanConstant(ParseDouble(text));
        return true;
    default:
        operand.Clear();
        return true;
    }
}

// What the type questions answer together: "number", "yes/no", "unknown", or else "confused".
inline std::string TypeOf(CalcOpBase& operand)
{
    if (!operand.IsTypeKnown())
        return operand.IsBoolean() || operand.IsNumeric() ? "confused" : "unknown";
    if (operand.IsBoolean() == operand.IsNumeric())
        return "confused";
    return operand.IsBoolean() ? "yes/no" : "number";
}

// Kind, prefixed string, encoded string, display and type: "V|VHeight|V(Height)|Height|number". The
// kind is "-" for nothing, "C", "V", "F", "T", and "E" for an expression.
inline std::string Show(CalcOpBase& operand)
{
    std::string shown = operand.IsLoaded() ? "" : "-";
    shown += operand.IsConstant() ? "C" : "";
    shown += operand.IsVariable() ? "V" : "";
    shown += operand.IsFormula() ? "F" : "";
    shown += operand.IsFormulaTable() ? "T" : "";
    shown += operand.IsExpression() ? "E" : "";
    return shown + '|' + operand.GetPrefixedString().ToUtf8() + '|' +
           operand.GetEncodedString().ToUtf8() + '|' + operand.GetTextDisplay().ToUtf8() + '|' +
           TypeOf(operand);
}

} // namespace tovo::test

#endif
