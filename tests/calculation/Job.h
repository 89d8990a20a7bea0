#ifndef TOVOFORMULA_TESTS_JOB_H
#define TOVOFORMULA_TESTS_JOB_H

#include <initializer_list>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <TovoFormula/TovoFormula.h>
#include <support/Dump.h>
#include <support/HostObjects.h>

namespace tovo::test {

// What a host's object throws when its data is gone.
struct HostTrouble : std::runtime_error {
    HostTrouble() : std::runtime_error("the host's data is gone") {}
};

// The stock set as a host derives it: some of the names stand for objects of the host's own.
class JobSet : public CalcSetImpl {
public:
    IVarObj* GetVarObj(CExString name, int flag, long key) override
    {
        const auto found = m_HostVariables.find(name);
        return found != m_HostVariables.end() ? found->second
                                              : CalcSetImpl::GetVarObj(name, flag, key);
    }
    IFormulaObj* GetFormulaObj(CExString name) override
    {
        const auto found = m_HostFormulas.find(name);
        return found != m_HostFormulas.end() ? found->second : CalcSetImpl::GetFormulaObj(name);
    }
    IFormulaTableObj* GetFormulaTableObj(CExString name) override
    {
        const auto found = m_HostTables.find(name);
        return found != m_HostTables.end() ? found->second : CalcSetImpl::GetFormulaTableObj(name);
    }
    void ClearScannedFlags(int argument) override { m_ClearCalls.push_back(argument); }
    void ReportDomainErrors() { m_ReportFcnDomainErrors = 1; }

    std::map<CString, IVarObj*> m_HostVariables;
    std::map<CString, IFormulaObj*> m_HostFormulas;
    std::map<CString, IFormulaTableObj*> m_HostTables;
    std::vector<int> m_ClearCalls;
};

// Opens the list of names under validation to a test.
struct NestedNames : CFmlaExpression {
    using CFmlaExpression::operator=;
    using CFmlaExpression::m_NestedFmlaNames;
};

inline std::string Names(const CStringList& list)
{
    std::string names;
    for (POSITION pos = list.GetHeadPosition(); pos;)
        names += (names.empty() ? "" : " ") + list.GetNext(pos).ToUtf8();
    return names;
}

inline std::string Names(const CScannedVariables& scanned)
{
    return Names(scanned.VariableList());
}

// The message of a check, 0 for a good one. A message argument is written on failure only.
template <typename Object>
unsigned int MessageOfCheck(Object& object, int nested)
{
    unsigned int message = 77;
    const int valid = object.IsValid(message, nested);
    return valid != 0 && message == 77 ? 0 : message;
}

template <typename Object>
unsigned int MessageOfCalculation(Object& object, CScannedVariables* list = nullptr)
{
    unsigned int message = 77;
    const int calculated = object.Calculate(message, list);
    return calculated != 0 && message == 77 ? 0 : message;
}

template <typename Object>
double ValueOf(Object& object)
{
    EXPECT_EQ(MessageOfCalculation(object), 0u);
    return object.GetValue();
}

// A job as a host keeps it: the set and the objects that a test puts into it.
class Job : public ::testing::Test {
protected:
    VariableImpl& Var(CString name, double value = 0.0)
    {
        VariableImpl& variable = Keep(std::make_unique<VariableImpl>(&m_Set));
        variable.SetName(name);
        variable.SetValue(value);
        m_Set.AddVariable(&variable);
        return variable;
    }
    FormulaImpl& Formula(CString name, const CString& encoded)
    {
        FormulaImpl& formula = Keep(std::make_unique<FormulaImpl>(&m_Set));
        formula.SetName(name);
        formula.SetFromEncodedString(encoded);
        m_Set.AddFormula(&formula);
        return formula;
    }
    // A table of one column with a row for each cell, in combined strings. A row selector of 1
    // picks the first row, of 2 the second.
    FormulaTableImpl& Table(CString name, const CString& rowSelector,
                            std::initializer_list<const char*> cells)
    {
        const int rows = static_cast<int>(cells.size());
        FormulaTableImpl& table = Keep(std::make_unique<FormulaTableImpl>(&m_Set, rows, 1));
        table.SetName(name);
        table.GetRowSelector().init(rowSelector);
        for (int row = 0; row < rows; ++row) {
            table.SetRowLimit(row, row + 1.0);
            table.SetCell(row, 0, new CFormtblElem(cells.begin()[row], m_Set));
        }
        m_Set.AddFormulaTable(&table);
        return table;
    }
    std::string Chain() { return Dump(m_Set.ErrorTracker()); }

    JobSet m_Set;

private:
    template <typename Object>
    Object& Keep(std::unique_ptr<Object> object)
    {
        Object& kept = *object;
        m_Objects.push_back(std::move(object));
        return kept;
    }

    std::vector<std::unique_ptr<CObject>> m_Objects;
};

} // namespace tovo::test

#endif
