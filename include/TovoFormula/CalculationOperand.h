#ifndef TOVOFORMULA_CALCULATIONOPERAND_H
#define TOVOFORMULA_CALCULATIONOPERAND_H

#include <TovoFormula/CalcOpBase.h>
#include <TovoFormula/CalculationInterfaces.h>
#include <TovoFormula/Export.h>

class CFmlaExpression;
class CScannedVariables;

// An operand bound to a calculation set: load it, ask IsValid, Calculate, then GetValue, and
// GetMsgId if something failed.
//
// A name must be known to the set when it is loaded, and formulas and tables load only if the set's
// HasDatabase says so. Later uses look the name up again; a formula or table that has left the set
// makes them answer false with 6602 or 6603, while what the operand shows is still its name.
//
// Does not own: the set, which must outlive it, and the object that a name stands for.
class TOVO_FORMULA_API CalculationOperand : public CalcOpBase {
public:
    explicit CalculationOperand(ICalculationSet& calcSet);
    ~CalculationOperand() override;

    void InitData() override;
    // The message id of a refusal is 6602 or 6603; a variable is refused without one. The operand
    // is then not loaded, but still shows the name.
    [[nodiscard]] bool LoadVariable(CString& name) override;
    [[nodiscard]] bool LoadFormula(CString& name) override;
    [[nodiscard]] bool LoadFormulaTable(CString& name) override;
    [[nodiscard]] bool CreateNewExpression() override;
    void Clear() override;
    // An expression's type is known once it has been validated.
    bool IsTypeKnown() override;
    bool IsBoolean() override;
    bool IsNumeric() override;
    // A reference is shown as the object spells its name.
    CString GetTextDisplay() override;
    CFmlaExprBase& GetFmlaExprBase() override;

    // Copy the content; this operand keeps its set and its message id. An expression comes without
    // its tree. A plain operand's name is looked up in this set, and a name that is not there
    // leaves the operand not loaded.
    CalculationOperand& operator=(CalculationOperand& other);
    CalculationOperand& operator=(CalcOpBase& other);

    ICalculationSet& CalcSet() const { return *m_CalcSet; }
    // The object and the expression. Requires: the kind named, and an object that is in the set,
    // else CInvalidArgException.
    IVarObj& GetVarObj();
    IFormulaObj& GetFmlaObj();
    IFormulaTableObj& GetFormtblObj();
    CFmlaExpression& GetFmlaExpression();
    // The position of the fault in an expression's text, -1 for none; 0 for any other kind.
    int GetInvalidPos();
    // The message id of the last failure. No success and no load takes it back.
    unsigned int GetMsgId() const { return m_MsgId; }

    // Nested also checks what is referred to, and looks for circles.
    [[nodiscard]] bool IsValid(bool nested = true);
    // Validates first.
    [[nodiscard]] bool Calculate();
    // Adds what the content refers to; all and clear as IFormulaObj::GetVariables takes them.
    // Validates a formula or table each time, an expression if it is not loaded.
    [[nodiscard]] bool GetVariables(CScannedVariables& list, bool all, bool clear);
    bool GetCalculated();
    // 0.0 for what is not calculated.
    double GetValue();

protected:
    IVarObj* m_VarObj = nullptr; // what the last load found; not owned, not followed
    IFormulaObj* m_FmlaObj = nullptr;
    IFormulaTableObj* m_FormtblObj = nullptr;
    unsigned int m_MsgId = 0;
    ICalculationSet* m_CalcSet; // never null, not owned

private:
    bool RefuseLoad(unsigned int message);
    bool TakeMessageOfExpression();
    template <typename Answer, typename Visit>
    Answer AskObject(Answer missing, Visit visit);
    template <typename Visit>
    bool OnNested(Visit visit);
};

#endif
