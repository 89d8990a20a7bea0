#ifndef TOVO_JOB_JOBOBJECTS_H
#define TOVO_JOB_JOBOBJECTS_H

#include <vector>

#include <TovoFormula/CalcSetImpl.h>
#include <TovoFormula/FormulaImpl.h>
#include <TovoFormula/FormulaTableImpl.h>
#include <TovoFormula/VariableImpl.h>

// The library's objects with what a job file asks of them. A file may hold any formulas: some that
// reach others by millions of ways, and some that nest deeper than the stack. So within a pass,
// which begins with StartPass, a formula answers from what it has, as the library's tables do; and
// what nests too deep fails with kNestedTooDeep.

inline constexpr int kDeepestNesting = 200; // objects under way, one inside the other

// A message of this program, outside the numbers of the library.
inline constexpr unsigned int kNestedTooDeep = 20001;

class JobSet : public CalcSetImpl {
public:
    // Strict: domain errors fail the calculation.
    explicit JobSet(bool isStrict) : m_IsStrict(isStrict) {}

    int GetReportFcnDomainErrors() override { return m_IsStrict ? 1 : 0; }

    // Takes back what scans have recorded with the job values and the variables.
    void ForgetConditions();
    // Null for a name that nobody asked for; unlike GetVarObj it makes up no variable.
    IVarObj* FindVariable(const CString& name) const;
    // The names that were asked for and that the job does not define.
    std::vector<CString> MadeUpVariables() const;

private:
    friend class NestingLevel;

    bool m_IsStrict;
    int m_Depth = 0; // formulas and tables under way, one inside the other
};

class JobFormula : public FormulaImpl {
public:
    explicit JobFormula(JobSet& set) : FormulaImpl(&set), m_Set(set) {}

    int Calculate(unsigned int& message, CScannedVariables* list) override;
    void GetVariables(CScannedVariables& list, int all, int clear) override;
    int IsValid(unsigned int& message, int nested) override;

    void StartPass();
    int GetScannedInCondition() const { return m_ScannedInCondition; }

private:
    bool AnswersFromValue(const CScannedVariables* list) const;

    JobSet& m_Set;
    int m_ScannedInCondition = 0;
};

class JobTable : public FormulaTableImpl {
public:
    JobTable(JobSet& set, int rows, int columns) : FormulaTableImpl(&set, rows, columns), m_Set(set)
    {}

    int Calculate(unsigned int& message, CScannedVariables* list) override;
    void GetVariables(CScannedVariables& list, int all, int clear) override;
    int IsValid(unsigned int& message, int nested) override;

private:
    JobSet& m_Set;
};

#endif
