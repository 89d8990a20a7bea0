#ifndef TOVOFORMULA_FORMULAIMPL_H
#define TOVOFORMULA_FORMULAIMPL_H

#include <concepts>
#include <string>

#include <TovoFormula/CalculationInterfaces.h>
#include <TovoFormula/Export.h>
#include <TovoFormula/FmlaExpression.h>

namespace tovo::detail {
struct StockObjects;
}

// The stock formula: a name, a unit text and an expression. The host makes, names, fills and owns
// it, and adds it to a set, which finds it under the name that it had then.
//
// The three flags are the host's: the library writes none of them. Each Calculate of a host
// validates and calculates afresh; within it, a formula that is named in several places is
// validated and calculated once, as long as nothing changes that it rests on.
class TOVO_FORMULA_API FormulaImpl : public CObject, public IFormulaObj {
public:
    // The set must outlive every calculation. A null pointer throws CInvalidArgException.
    explicit FormulaImpl(ICalculationSet* calcSet);
    // The same with its name and its encoded string.
    FormulaImpl(ICalculationSet* calcSet, const CExString& name, const CExString& encoded);
    ~FormulaImpl() override;

    FormulaImpl(const FormulaImpl&) = delete;
    FormulaImpl& operator=(const FormulaImpl&) = delete;

    CString& GetName() override { return m_Name; }
    double GetValue() override { return m_Expression.GetValue(); }
    // Validates with nested checks, then calculates. The list goes on into the formulas referred
    // to.
    [[nodiscard]] int Calculate(unsigned int& message, CScannedVariables* list) override;
    // Requires: a tree that IsValid or Calculate has built.
    void GetVariables(CScannedVariables& list, int all, int clear) override;
    [[nodiscard]] int IsValid(unsigned int& message, int nested) override;
    // With nested checks. The message is in GetMessageNum of the expression.
    [[nodiscard]] int IsValid();
    int GetScanned() override { return m_Scanned; }
    bool IsNumeric() override { return m_ValueType == VALUE_NUMERIC; }
    bool IsBoolean() override { return m_ValueType == VALUE_BOOLEAN; }
    int GetCalculated() override { return m_Calculated; }
    CString& GetUnit() override { return m_Unit; }
    int GetValidated() override { return m_Validated; }

    virtual void SetName(CString& name);
    // The same for any other text, such as a literal.
    void SetName(const CExString& name)
    {
        CString copy = name;
        SetName(copy);
    }

    void SetUnit(const CString& unit);
    // Text and pointer string, in the user's language.
    void SetExpression(const CString& text, const CString& references);
    // The encoded string, good in any language.
    void SetFromEncodedString(const CString& encoded);
    template <std::same_as<std::string> Text>
    void SetFromEncodedString(const Text& encoded)
    {
        SetFromEncodedString(CString(encoded));
    }
    // The expression itself, for display and editing; lives as long as the formula.
    CFmlaExpression& GetExpression() { return m_Expression; }

    void SetScanned(int scanned) { m_Scanned = scanned; }
    void SetCalculated(int calculated) { m_Calculated = calculated; }
    void SetValidated(int validated) { m_Validated = validated; }

protected:
    CString m_Name;
    CString m_Unit;
    int m_Scanned = 0;
    VALUETYPE m_ValueType = VALUE_NONE;
    int m_Calculated = 0;
    int m_Validated = 0;
    ICalculationSet* m_CalcSet; // not owned
    CFmlaExpression m_Expression;

private:
    friend struct tovo::detail::StockObjects;
};

#endif
