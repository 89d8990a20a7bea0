#ifndef TOVOFORMULA_FUZZ_JOB_H
#define TOVOFORMULA_FUZZ_JOB_H

#include <array>
#include <memory>

#include <TovoFormula/TovoFormula.h>
#include <support/HostObjects.h>

#include "Record.h"

namespace tovo::fuzz {

// A job for texts to refer to: variables x, y and b?, formulas A, B, C? and D, and tables T of one
// column and S of two.
//
// In a set that is not the stock one, a variable "own" and a formula "host" are a host's own. The
// formula adds 1 to x and calculates A.
class Job {
public:
    static constexpr int kVariables = 3;
    static constexpr int kFormulas = 4;
    static constexpr int kTables = 2;

    Job(bool isStockSet, bool isStrict);

    CalcSetImpl& Set() { return *m_Set; }
    VariableImpl& Variable(int index) { return *m_Variables[static_cast<std::size_t>(index)]; }
    FormulaImpl& Formula(int index) { return *m_Formulas[static_cast<std::size_t>(index)]; }
    FormulaTableImpl& Table(int index) { return *m_Tables[static_cast<std::size_t>(index)]; }
    // Of a table: 0 and 1 are the selectors, then the cells row by row; beyond these, the last.
    CFormtblElem& Element(FormulaTableImpl& table, int index);

    // How many formulas and tables are referred to in all texts, selectors and cells.
    int CountNested();
    // All that a host can see of the objects and of the tracker.
    void Show(Record& record);

private:
    test::HostVariable m_HostVariable{u"own", 2.0};
    test::HostFormula m_HostFormula{u"host", 0.0};
    std::unique_ptr<CalcSetImpl> m_Set;
    std::array<std::unique_ptr<VariableImpl>, kVariables> m_Variables;
    std::array<std::unique_ptr<FormulaImpl>, kFormulas> m_Formulas;
    std::array<std::unique_ptr<FormulaTableImpl>, kTables> m_Tables;
};

// What a host can see of an expression, of what a scan has found and of a chain.
void Show(Record& record, CFmlaExpression& expression);
void Show(Record& record, const CScannedVariables& list);
void Show(Record& record, const CCalcErrorTracker& tracker);

// How many references the text has that are no variables.
int CountNested(const CFmlaExprBase& expression);

} // namespace tovo::fuzz

#endif
