#include <TovoJob/Scenario.h>

#include <utility>

#include "Access.h"
#include "Differences.h"
#include "FrozenJob.h"
#include "Inputs.h"
#include "Pool.h"

namespace tovo {

namespace {

// The edit that gives an object of the job another value; the job values gather in one place.
Result<void> Lay(const Assignment& assignment, const Job& job, JobValues& values,
                 std::vector<Edit>& edits)
{
    const ObjectName& object = assignment.object;
    if (double* const value = job::JobValueNamed(values, object)) {
        *value = assignment.value;
        return {};
    }
    const Variable* const variable =
        object.kind == Kind::Variable ? job.FindVariable(object.name) : nullptr;
    if (!variable)
        return job::NoInput(object);
    Variable changed = *variable;
    changed.value = assignment.value;
    edits.emplace_back(ChangeObject{std::move(changed)});
    return {};
}

} // namespace

struct Snapshot::State {
    explicit State(const Job& job) : frozen(job) {}

    job::FrozenJob frozen;
    // Calculated copies.
    mutable job::Pool<Job> copies;
};

Snapshot::Snapshot(const Job& job) : m_State(std::make_shared<const State>(job))
{}

const Report& Snapshot::Base() const
{
    return m_State->frozen.Base();
}

Result<ScenarioReport> Snapshot::Calculate(const Scenario& scenario, const Progress& progress) const
{
    std::unique_ptr<Job> job = m_State->copies.Take([&] {
        auto copy = std::make_unique<Job>(m_State->frozen.Frozen());
        copy->Update();
        return copy;
    });
    std::vector<Edit> edits;
    JobValues values = job->Values();
    for (const Assignment& assignment : scenario.values) {
        if (const Result<void> isLaid = Lay(assignment, *job, values, edits); !isLaid)
            return isLaid.Why();
    }
    edits.emplace_back(ChangeJobValues{values});
    if (const Result<void> isDone = job->Apply(edits); !isDone)
        return isDone.Why();
    ScenarioReport result;
    result.report = job->Calculate(progress);
    result.newFaults = job::FaultsNotIn(result.report.faults, Base().faults);
    result.clearedFaults = job::FaultsNotIn(Base().faults, result.report.faults);
    job->Undo();
    job->Update();
    m_State->copies.GiveBack(std::move(job));
    return result;
}

} // namespace tovo
