#ifndef TOVOJOB_SRC_BATCHWORKER_H
#define TOVOJOB_SRC_BATCHWORKER_H

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include <TovoJob/Batch.h>

#include "BatchPlan.h"
#include "EngineObjects.h"

namespace tovo::job {

// Calculates rows by the steps of a plan, on one thread at a time and in English, whatever the
// language of the thread.
class StepRunner {
public:
    explicit StepRunner(const BatchPlan& plan);
    StepRunner(const StepRunner&) = delete;
    StepRunner& operator=(const StepRunner&) = delete;

    // False, with nothing written, if a step fails or an input cannot have the value.
    bool Run(std::span<const double> inputs, std::span<double> outputs);

private:
    struct Step {
        VariableImpl* result;
        std::unique_ptr<FormulaImpl> formula; // or else a table
        std::unique_ptr<FormulaTableImpl> table;
        const Table* record; // of the plan; null for a formula
    };
    // How an input that is a job value gets into the set.
    using SetJobValue = void (CalcSetImpl::*)(double);
    struct Input {
        VariableImpl* variable;
        SetJobValue setJobValue; // null for a variable
        bool isYesNo;
    };

    void AddStep(const BatchPlan::Step& step);

    CalcSetImpl m_Set; // the stock one itself, which the engine asks for nothing twice
    std::vector<std::unique_ptr<VariableImpl>> m_Slots;
    std::vector<Input> m_Inputs;
    std::vector<Step> m_Steps;
    std::vector<VariableImpl*> m_Outputs; // null for one that always fails
};

// Calculates, by the job itself, rows of which the steps cannot tell all. In the language that is
// in force on its thread.
class RowExplainer {
public:
    explicit RowExplainer(const BatchPlan& plan) : m_Plan(plan) {}

    // Writes all outputs, NaN for each that fails, and calls note(BatchCause) for what is wrong.
    void Run(std::span<const double> inputs, std::span<double> outputs,
             const std::function<void(BatchCause)>& note);

private:
    void Set(std::span<const double> inputs);

    const BatchPlan& m_Plan;
    std::optional<Job> m_Job; // made for the first row that needs it
};

} // namespace tovo::job

#endif
