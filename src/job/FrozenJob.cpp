#include "FrozenJob.h"

#include "Access.h"

namespace tovo::job {

// The copy shares nothing with the job that could change.
FrozenJob::FrozenJob(const Job& job) : m_Job(job)
{
    m_Job.Update();
    FreezeSources();
    FreezeLinked(Access::InsideOf(m_Job).content.Formulas().All(), m_Formulas);
    FreezeLinked(Access::InsideOf(m_Job).content.Tables().All(), m_Tables, 2, 1);
    m_Job.Update();
    m_Base = m_Job.Calculate();
}

void FrozenJob::FreezeSources()
{
    Inside& inside = Access::InsideOf(m_Job);
    const auto variables = inside.content.Variables().All();
    for (std::size_t position = 0; position < variables.size(); ++position) {
        if (!variables[position]->source)
            continue;
        Variable frozen = *variables[position];
        frozen.source = nullptr;
        frozen.value = *m_Job.ValueOf(NameOf(frozen));
        inside.Take(
            {variables[position], std::make_shared<const Variable>(std::move(frozen)), position});
    }
}

template <typename Object, typename StandFor, typename... Size>
void FrozenJob::FreezeLinked(std::vector<Shared<Object>> objects,
                             std::vector<std::unique_ptr<StandFor>>& stands, Size... size)
{
    for (std::size_t position = 0; position < objects.size(); ++position) {
        if (!objects[position]->linked)
            continue;
        Object frozen = *objects[position];
        const auto value = m_Job.ValueOf(NameOf(frozen));
        const auto failure = m_Job.FailureOf(NameOf(frozen));
        const Evaluation evaluation{value.has_value(), value.value_or(0.0),
                                    failure ? failure->message : 0};
        stands.push_back(std::make_unique<StandFor>(m_NoSet, evaluation, size...));
        frozen.linked = stands.back().get();
        Access::InsideOf(m_Job).Take(
            {objects[position], std::make_shared<const Object>(std::move(frozen)), position});
    }
}

} // namespace tovo::job
