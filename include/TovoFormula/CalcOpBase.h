#ifndef TOVOFORMULA_CALCOPBASE_H
#define TOVOFORMULA_CALCOPBASE_H

#include <memory>

#include <TovoFormula/Export.h>
#include <TovoFormula/FmlaExprBase.h>

// What an operand holds. Hosts store these numbers: never renumber.
enum OPERAND_KIND {
    OP_NOT_LOADED = 0,
    OP_CONSTANT = 1, // a number or a yes/no constant
    OP_VARIABLE = 2, // the name of one, as the next two
    OP_FORMULA = 3,
    OP_FORMTBL = 4,
    OP_EXPRESSION = 5,
};

// A host's one value that may be nothing, a constant, a reference by name or a whole expression;
// here without a set, so that it can only be stored, shown and asked for its kind.
//
// Two forms to store, which differ. The prefixed string ("VHeight") covers no expression, and a
// constant that it reads is in thousandths while the one it writes is not. The encoded string
// ("V(Height)") covers expressions, and a constant written by it comes back as an expression.
//
// Owns: its expression. Belongs to one caller at a time. Every Load replaces what was there and
// checks no text.
class TOVO_FORMULA_API CalcOpBase : public CObject {
public:
    CalcOpBase();
    ~CalcOpBase() override;

    CalcOpBase(const CalcOpBase&) = delete;

    // Sets every field to its empty value.
    virtual void InitData();
    // False if there can be no such reference; here always true.
    [[nodiscard]] virtual bool LoadVariable(CString& name);
    [[nodiscard]] virtual bool LoadFormula(CString& name);
    [[nodiscard]] virtual bool LoadFormulaTable(CString& name);
    // Makes the operand an empty expression; false, with the operand empty, if none can be made.
    [[nodiscard]] virtual bool CreateNewExpression();
    // Empties what the present kind uses.
    virtual void Clear();
    // Whether the kind of value is known. A constant that was read from a prefixed string and an
    // expression have none here; what has none answers false to both questions. Nothing counts as
    // a number.
    virtual bool IsTypeKnown();
    virtual bool IsBoolean();
    virtual bool IsNumeric();
    // A constant's text, an expression's text or a name.
    virtual CString GetTextDisplay();
    // Requires: an expression, else CInvalidArgException.
    virtual CFmlaExprBase& GetFmlaExprBase();

    // Copies the content; the copy has an expression of its own.
    CalcOpBase& operator=(CalcOpBase& other);

    // Shown with 3 decimals.
    void LoadNumericConstant(double value);
    // Yes for anything but 0.0.
    void LoadBooleanConstant(double value);
    [[nodiscard]] bool LoadExpression(const CString& text);
    [[nodiscard]] bool LoadExpression(const CString& text, const CWordArray& pointers);
    [[nodiscard]] bool LoadExpression(const CString& text, const CString& pointers);
    // An encoded string that is one reference becomes that reference. True also if that reference
    // could not be loaded.
    [[nodiscard]] bool LoadEncodedExpression(const CString& encoded);
    [[nodiscard]] bool LoadPrefixedString(const CString& text);

    CString GetPrefixedString();
    CString GetEncodedString();
    // The RTF document of the content in the reader's font and 14 half-points; empty for nothing.
    CString GetRTFDisplay();

    bool IsLoaded() const { return m_OperandKind != OP_NOT_LOADED; }
    bool IsConstant() const { return m_OperandKind == OP_CONSTANT; }
    bool IsVariable() const { return m_OperandKind == OP_VARIABLE; }
    bool IsFormula() const { return m_OperandKind == OP_FORMULA; }
    bool IsFormulaTable() const { return m_OperandKind == OP_FORMTBL; }
    bool IsExpression() const { return m_OperandKind == OP_EXPRESSION; }

protected:
    class FormerContent;

    // Makes the operand a reference, without looking the name up.
    void SetReference(OPERAND_KIND kind, const CString& name);
    bool IsReference() const { return IsVariable() || IsFormula() || IsFormulaTable(); }
    // Makes the expression given the operand's content.
    bool TakeExpression(std::unique_ptr<CFmlaExprBase> expression);

private:
    template <typename Fill>
    bool LoadNewExpression(Fill fill);
    bool LoadReference(int kind, const CString& name);
    void LoadConstant(double value);

protected:
    int m_OperandKind = OP_NOT_LOADED;
    CString m_ConstantText;
    double m_ConstantValue = 0.0;
    bool m_NumericConstant = false;
    bool m_BooleanConstant = false;
    CString m_RefName;
    CFmlaExprBase* m_Expression = nullptr; // owned by this operand; null unless it is an expression
};

#endif
