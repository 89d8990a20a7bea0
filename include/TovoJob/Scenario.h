#ifndef TOVOJOB_SCENARIO_H
#define TOVOJOB_SCENARIO_H

#include <memory>
#include <vector>

#include <TovoJob/Export.h>
#include <TovoJob/Fault.h>
#include <TovoJob/ObjectName.h>
#include <TovoJob/Report.h>
#include <TovoJob/Result.h>

namespace tovo {

class Job;

namespace job {
class FrozenJob;
}

// A value to be laid over that of a variable or a job value.
struct Assignment {
    ObjectName object;
    double value = 0.0;
};

// A question of the kind "what if": values laid over a job without touching it. Of several for one
// object the last counts.
struct Scenario {
    std::vector<Assignment> values;
};

// What a scenario comes to, and what is different from the job as it is.
struct ScenarioReport {
    Report report;                    // its changes are the differences, each with the job's value
    std::vector<Fault> newFaults;     // that the job does not have
    std::vector<Fault> clearedFaults; // that the job has and the scenario has not
};

// A job as it was at one moment. It never changes, whatever becomes of the job, and any number of
// threads may calculate scenarios on it at once. Copies share what it keeps.
//
//     const tovo::Snapshot snapshot(job);
//     const auto wider = snapshot.Calculate({{{tovo::VariableNamed("Width"), 3.0}}}).Value();
//
// What a host computes, or has linked, is asked once, while the snapshot is made; the answers stand
// from then on, so no callback and no linked object is ever called on another thread. Requires: on
// each thread that asks, the language that was in force where the snapshot was made.
class TOVO_JOB_API Snapshot {
public:
    explicit Snapshot(const Job& job);

    // The job itself, without a scenario. Its changes are empty.
    const Report& Base() const;

    // Costs what depends on the values that are laid over, and a whole calculation the first time
    // that so many threads ask at once. Refused for what is no variable or job value of the job,
    // and for a value that the object could not have.
    Result<ScenarioReport> Calculate(const Scenario& scenario,
                                     const Progress& progress = nullptr) const;

private:
    struct State;

    std::shared_ptr<const State> m_State;
};

} // namespace tovo

#endif
