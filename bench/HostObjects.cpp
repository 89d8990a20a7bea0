#include "HostObjects.h"

#include <unordered_map>

namespace bench {
namespace {

class StockLookupSet : public CalcSetImpl {
public:
    StockLookupSet() { UseStockLookup(); }

    void ClearScannedFlags(int) override { ++m_Scans; }

private:
    int m_Scans = 0;
};

class HostSet : public CalcSetImpl {
public:
    HostSet() : m_Overhead(this), m_Rates(this, 2, 1)
    {
        CString overhead(u"Overhead");
        m_Overhead.SetName(overhead);
        m_HostFormulas[overhead] = &m_Overhead;
        CString rates(u"Rates");
        m_Rates.SetName(rates);
        m_HostTables[rates] = &m_Rates;
    }

    // Hides that of the base, so that the variable is found here only.
    void AddVariable(VariableImpl* variable) { m_HostVariables[variable->GetName()] = variable; }

    IVarObj* GetVarObj(CExString name, int first, long second) override
    {
        const auto found = m_HostVariables.find(name);
        return found == m_HostVariables.end() ? CalcSetImpl::GetVarObj(name, first, second)
                                              : found->second;
    }
    IFormulaObj* GetFormulaObj(CExString name) override
    {
        const auto found = m_HostFormulas.find(name);
        return found == m_HostFormulas.end() ? CalcSetImpl::GetFormulaObj(name) : found->second;
    }
    IFormulaTableObj* GetFormulaTableObj(CExString name) override
    {
        const auto found = m_HostTables.find(name);
        return found == m_HostTables.end() ? CalcSetImpl::GetFormulaTableObj(name) : found->second;
    }

private:
    FormulaImpl m_Overhead;
    FormulaTableImpl m_Rates;
    std::unordered_map<CString, IVarObj*> m_HostVariables;
    std::unordered_map<CString, IFormulaObj*> m_HostFormulas;
    std::unordered_map<CString, IFormulaTableObj*> m_HostTables;
};

class HostVariable : public VariableImpl {
public:
    using VariableImpl::VariableImpl;

    double GetValue() override { return m_Reading; }
    void SetValue(double value) override { m_Reading = value; }

private:
    double m_Reading = 0;
};

class HostFormula : public FormulaImpl {
public:
    using FormulaImpl::FormulaImpl;

    CString& GetUnit() override { return m_HostUnit; }

private:
    CString m_HostUnit = u"m";
};

class CountingFormula : public FormulaImpl {
public:
    using FormulaImpl::FormulaImpl;

    int Calculate(unsigned int& message, CScannedVariables* list) override
    {
        ++m_Calculations;
        return FormulaImpl::Calculate(message, list);
    }

private:
    long m_Calculations = 0;
};

template <typename Set, typename Variable, typename Formula>
struct Maker {
    static std::unique_ptr<CalcSetImpl> MakeSet() { return std::make_unique<Set>(); }
    static std::unique_ptr<VariableImpl> MakeVariable(CalcSetImpl& set, CString name)
    {
        auto variable = std::make_unique<Variable>(&set);
        variable->SetName(name);
        static_cast<Set&>(set).AddVariable(variable.get());
        return variable;
    }
    static std::unique_ptr<FormulaImpl> MakeFormula(CalcSetImpl& set)
    {
        return std::make_unique<Formula>(&set);
    }
};

template <typename Set, typename Variable = VariableImpl, typename Formula = FormulaImpl>
constexpr ObjectKinds KindsOf()
{
    using Made = Maker<Set, Variable, Formula>;
    return {Made::MakeSet, Made::MakeVariable, Made::MakeFormula};
}

} // namespace

const ObjectKinds kStockObjects = KindsOf<CalcSetImpl>();
const ObjectKinds kWithStockLookup = KindsOf<StockLookupSet>();
const ObjectKinds kWithHostSet = KindsOf<HostSet>();
const ObjectKinds kWithHostVariables = KindsOf<CalcSetImpl, HostVariable>();
const ObjectKinds kWithHostFormulas = KindsOf<CalcSetImpl, VariableImpl, HostFormula>();
const ObjectKinds kWithCountingFormulas = KindsOf<CalcSetImpl, VariableImpl, CountingFormula>();

} // namespace bench
