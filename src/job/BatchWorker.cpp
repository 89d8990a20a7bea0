#include "BatchWorker.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <TovoFormula/LanguageScope.h>
#include <TovoFormula/MessageIds.h>

#include "Access.h"
#include "ExpressionText.h"
#include "Inputs.h"
#include "Messages.h"

namespace tovo::job {

namespace {

constexpr double kNoValue = std::numeric_limits<double>::quiet_NaN();

// The message for a value that the input cannot have; 0 for one that it can.
unsigned int MessageFor(double value, bool isYesNo)
{
    if (!std::isfinite(value))
        return MSG_JOB_INPUT_NOT_A_NUMBER;
    if (isYesNo && value != 0.0 && value != 1.0)
        return MSG_JOB_INPUT_NOT_YES_NO;
    return MSG_NONE;
}

} // namespace

StepRunner::StepRunner(const BatchPlan& plan)
{
    const LanguageScope english{FormulaLanguage()};
    const Job& job = plan.Frozen().Frozen();
    m_Set.SetReportFcnDomainErrors(job.Options().domainErrorsAreFaults ? 1 : 0);
    m_Set.SetDuration(job.Values().duration);
    m_Set.SetJobSize(job.Values().jobSize);
    m_Set.SetQuantity(job.Values().quantity);
    for (const BatchPlan::Slot& slot : plan.Slots()) {
        m_Slots.push_back(std::make_unique<VariableImpl>(&m_Set, Wide(slot.name), slot.value));
        m_Set.AddVariable(m_Slots.back().get());
    }
    for (std::size_t input = 0; input < plan.InputSlots().size(); ++input) {
        const ObjectName& name = plan.InputNames()[input];
        SetJobValue setJobValue = nullptr;
        if (name.kind == Kind::JobValue)
            setJobValue = name.name == "DURATION"  ? &CalcSetImpl::SetDuration
                          : name.name == "JOBSIZE" ? &CalcSetImpl::SetJobSize
                                                   : &CalcSetImpl::SetQuantity;
        m_Inputs.push_back(
            {m_Slots[plan.InputSlots()[input]].get(), setJobValue, IsYesNoName(name.name)});
    }
    for (const BatchPlan::Step& step : plan.Steps())
        AddStep(step);
    for (const BatchPlan::Output& output : plan.Outputs())
        m_Outputs.push_back(output.failure ? nullptr : m_Slots[output.slot].get());
}

void StepRunner::AddStep(const BatchPlan::Step& step)
{
    Step made{m_Slots[step.slot].get(), nullptr, nullptr, nullptr};
    if (const auto* const text = std::get_if<std::string>(&step.work)) {
        made.formula = std::make_unique<FormulaImpl>(&m_Set, made.result->GetName(), Wide(*text));
    } else {
        const Table& table = std::get<Table>(step.work);
        made.table = std::make_unique<FormulaTableImpl>(&m_Set, RowsOf(table), ColumnsOf(table));
        Fill(*made.table, m_Set, table);
        made.record = &table;
    }
    m_Steps.push_back(std::move(made));
}

// Outside any pass, since nothing is asked twice here.
bool StepRunner::Run(std::span<const double> inputs, std::span<double> outputs)
{
    for (std::size_t at = 0; at < m_Inputs.size(); ++at) {
        const Input& input = m_Inputs[at];
        if (MessageFor(inputs[at], input.isYesNo) != MSG_NONE)
            return false;
        input.variable->SetValue(inputs[at]);
        if (input.setJobValue)
            (m_Set.*input.setJobValue)(inputs[at]);
    }
    for (const Step& step : m_Steps) {
        unsigned int message = MSG_NONE;
        if (step.formula) {
            if (!step.formula->Calculate(message, nullptr))
                return false;
            step.result->SetValue(step.formula->GetValue());
            continue;
        }
        const FormulaTableImpl& table = *step.table;
        const auto value = ReachedValue(table, *step.record);
        if (!value)
            return false;
        step.result->SetValue(*value);
    }
    for (std::size_t output = 0; output < m_Outputs.size(); ++output)
        outputs[output] = m_Outputs[output] ? m_Outputs[output]->GetValue() : kNoValue;
    return true;
}

void RowExplainer::Run(std::span<const double> inputs, std::span<double> outputs,
                       const std::function<void(BatchCause)>& note)
{
    std::fill(outputs.begin(), outputs.end(), kNoValue);
    bool areProper = true;
    for (std::size_t input = 0; input < inputs.size(); ++input) {
        const ObjectName& name = m_Plan.InputNames()[input];
        const unsigned int message = MessageFor(inputs[input], IsYesNoName(name.name));
        if (message == MSG_NONE)
            continue;
        areProper = false;
        note({name, {message, MessageText(message), {name, {}, {}}, {name}}});
    }
    if (!areProper)
        return;
    Set(inputs);
    m_Job->Update();
    for (std::size_t output = 0; output < outputs.size(); ++output) {
        const ObjectName& name = m_Plan.OutputNames()[output];
        outputs[output] = m_Job->ValueOf(name).value_or(kNoValue);
        if (const auto failure = m_Job->FailureOf(name))
            note({name, *failure});
    }
}

// As edits would, without a history of them.
void RowExplainer::Set(std::span<const double> inputs)
{
    if (!m_Job)
        m_Job.emplace(m_Plan.Frozen().Frozen());
    Inside& inside = Access::InsideOf(*m_Job);
    JobValues values = m_Job->Values();
    for (std::size_t input = 0; input < inputs.size(); ++input) {
        const ObjectName& name = m_Plan.InputNames()[input];
        if (double* const value = JobValueNamed(values, name)) {
            *value = inputs[input];
            continue;
        }
        const Record before = inside.content.Find(name);
        Variable changed = *std::get<Shared<Variable>>(before);
        changed.value = inputs[input];
        inside.Take({before, std::make_shared<const Variable>(std::move(changed)),
                     inside.content.PositionOf(name)});
    }
    if (values != m_Job->Values())
        inside.Take({inside.content.Values(), std::make_shared<const JobValues>(values), 0});
}

} // namespace tovo::job
