#ifndef TOVOFORMULA_TESTS_NETOBJECTS_H
#define TOVOFORMULA_TESTS_NETOBJECTS_H

#include <functional>

#include <calculation/Job.h>

// Objects that a host derives from the stock ones, or makes of an expression of its own. Fields are
// public, so that a test arranges them directly.

namespace tovo::test {

inline CString Wide(const std::string& text)
{
    return CString(std::string_view(text));
}

// Leaves the getters alone and says so.
class LookupSet : public CalcSetImpl {
public:
    LookupSet() { UseStockLookup(); }
};

class HostJobSet : public JobSet {
public:
    double GetQuantity() override { return m_HostQuantity; }

    double m_HostQuantity = 0.0;
};

class ReadVariable : public VariableImpl {
public:
    using VariableImpl::VariableImpl;
    double GetValue() override
    {
        if (m_OnRead)
            m_OnRead();
        return m_Value;
    }

    std::function<void()> m_OnRead;
};

class PlainFormula : public FormulaImpl {
public:
    using FormulaImpl::FormulaImpl;
};

class PassingFormula : public FormulaImpl {
public:
    using FormulaImpl::FormulaImpl;
    double GetValue() override { return FormulaImpl::GetValue(); }
    int Calculate(unsigned int& message, CScannedVariables* list) override
    {
        return FormulaImpl::Calculate(message, list);
    }
    int IsValid(unsigned int& message, int nested) override
    {
        return FormulaImpl::IsValid(message, nested);
    }
};

class PassingTable : public FormulaTableImpl {
public:
    using FormulaTableImpl::FormulaTableImpl;
    double GetValue() override { return FormulaTableImpl::GetValue(); }
};

class PassingExpression : public CFmlaExpression {
public:
    using CFmlaExpression::CFmlaExpression;
    using CFmlaExpression::operator=;
    void TrackError(unsigned int message) override { CFmlaExpression::TrackError(message); }
};

// A formula or a table of the host's over an expression. What fails in it, fails it.
template <typename Base>
class OverExpression : public Base {
public:
    OverExpression(const CString& name, ICalculationSet& calcSet)
        : Base(name, 0.0), m_Expression(calcSet)
    {}

    double GetValue() override { return m_Expression.GetValue(); }
    int IsValid(unsigned int& message, int nested) override
    {
        if (m_OnCheck)
            m_OnCheck();
        return m_Expression.IsValid(message, this->m_Name, nested);
    }
    int Calculate(unsigned int& message, CScannedVariables* list) override
    {
        if (this->m_OnCalculate)
            this->m_OnCalculate(list);
        if (!IsValid(message, 1))
            return 0;
        if (m_Expression.Calculate(list))
            return 1;
        message = static_cast<unsigned int>(m_Expression.GetMessageNum());
        return 0;
    }
    void GetVariables(CScannedVariables& list, int all, int clear) override
    {
        m_Expression.GetVariables(list, all, clear);
    }

    CFmlaExpression m_Expression;
    std::function<void()> m_OnCheck;
};

using OwnFormula = OverExpression<HostFormula>;
using OwnTable = OverExpression<HostTable>;

} // namespace tovo::test

#endif
