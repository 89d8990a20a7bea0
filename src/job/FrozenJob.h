#ifndef TOVOJOB_SRC_FROZENJOB_H
#define TOVOJOB_SRC_FROZENJOB_H

#include <memory>
#include <vector>

#include <TovoFormula/CalcSetImpl.h>
#include <TovoFormula/FormulaImpl.h>
#include <TovoFormula/FormulaTableImpl.h>

#include <TovoJob/Job.h>

#include "Inside.h"

namespace tovo::job {

// A job in which nothing is left that calls its host: sources and linked objects return what they
// returned when it was made. Calculated. Any thread may read it and copy its job.
class FrozenJob {
public:
    explicit FrozenJob(const Job& job);
    FrozenJob(const FrozenJob&) = delete;
    FrozenJob& operator=(const FrozenJob&) = delete;

    // Copies of it must not outlive this.
    const Job& Frozen() const { return m_Job; }
    const Report& Base() const { return m_Base; }

private:
    // Stands in for an object of a host with what that returned.
    template <typename Stock>
    class Stand : public Stock {
    public:
        template <typename... Size>
        Stand(CalcSetImpl& set, const Evaluation& evaluation, Size... size)
            : Stock(&set, size...), m_Evaluation(evaluation)
        {}

        double GetValue() override { return m_Evaluation.value; }
        int Calculate(unsigned int& message, CScannedVariables*) override
        {
            if (!m_Evaluation.isDone)
                message = m_Evaluation.message;
            return m_Evaluation.isDone ? 1 : 0;
        }

    private:
        const Evaluation m_Evaluation;
    };

    void FreezeSources();
    template <typename Object, typename StandFor, typename... Size>
    void FreezeLinked(std::vector<Shared<Object>> objects,
                      std::vector<std::unique_ptr<StandFor>>& stands, Size... size);

    CalcSetImpl m_NoSet;
    std::vector<std::unique_ptr<Stand<FormulaImpl>>> m_Formulas;
    std::vector<std::unique_ptr<Stand<FormulaTableImpl>>> m_Tables;
    Job m_Job;
    Report m_Base;
};

} // namespace tovo::job

#endif
