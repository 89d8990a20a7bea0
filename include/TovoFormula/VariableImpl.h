#ifndef TOVOFORMULA_VARIABLEIMPL_H
#define TOVOFORMULA_VARIABLEIMPL_H

#include <TovoFormula/CalculationInterfaces.h>
#include <TovoFormula/Export.h>
#include <TovoPlatform/Object.h>

namespace tovo::detail {
struct StockObjects;
}

// The stock variable: a name, a value and a unit text. The host makes, names and owns it, and adds
// it to a set, which finds it under the name that it had then.
class TOVO_FORMULA_API VariableImpl : public CObject, public IVarObj {
public:
    // The set is not kept. A null pointer throws CInvalidArgException.
    explicit VariableImpl(ICalculationSet* calcSet);
    // The same with its name and its value.
    VariableImpl(ICalculationSet* calcSet, const CExString& name, double value);
    ~VariableImpl() override;

    CString& GetName() override { return m_Name; }
    // The name is stored unchanged; "?" counts only as its very last character.
    void SetName(CString& name) override;
    // The same for any other text, such as a literal.
    void SetName(const CExString& name)
    {
        CString copy = name;
        SetName(copy);
    }
    double GetValue() override { return m_Value; }
    // Stored unchanged, also for a yes/no variable.
    void SetValue(double value) override;
    void SetInCond(int inCondition) override { m_InCond = inCondition != 0; }
    bool IsNumeric() override { return m_ValueType == VALUE_NUMERIC; }
    bool IsBoolean() override { return m_ValueType == VALUE_BOOLEAN; }
    CString& GetUnit(long) override { return m_Unit; }
    int InCond() override { return m_InCond ? 1 : 0; }
    VALUETYPE GetType() override { return m_ValueType; }

    void SetUnit(const CString& unit, long);

protected:
    CString m_Name;
    double m_Value = 0.0;
    bool m_InCond = false;
    CString m_Unit;
    VALUETYPE m_ValueType = VALUE_NONE;

private:
    friend struct tovo::detail::StockObjects;
};

#endif
