#ifndef TOVOJOB_SRC_BATCHPLAN_H
#define TOVOJOB_SRC_BATCHPLAN_H

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <variant>
#include <vector>

#include <TovoJob/Batch.h>
#include <TovoJob/Fault.h>
#include <TovoJob/Objects.h>

#include "FrozenJob.h"
#include "Network.h"

namespace tovo::job {

// What a row of a batch takes: which objects are calculated, in which order, from what.
//
// Every object that takes part has a slot, a variable of a set of its own. A formula that the
// inputs lead to becomes a step: its text with a slot in place of each reference, so that it calls
// nothing, which is what the engine calculates fastest. Its value goes into its own slot. A step
// follows what it reads. Whatever no input leads to has the value that it has in the job.
//
// Steps know success only. A row in which one fails is for the job itself to calculate.
class BatchPlan {
public:
    struct Slot {
        std::string name; // ends in "?" for a yes/no value, as the object's does
        double value;     // that it has in the job
    };
    struct Step {
        std::size_t slot;
        std::variant<std::string, Table> work; // a stored expression or a table, of slots
    };
    struct Output {
        std::size_t slot = 0;
        std::optional<Failure> failure; // of one that fails whatever the inputs are
    };

    // Requires: inputs and outputs that the job has.
    BatchPlan(const FrozenJob& job, std::vector<ObjectName> inputs,
              std::vector<ObjectName> outputs);

    const FrozenJob& Frozen() const { return m_Frozen; }
    const std::vector<ObjectName>& InputNames() const { return m_InputNames; }
    const std::vector<ObjectName>& OutputNames() const { return m_OutputNames; }

    const std::vector<std::size_t>& InputSlots() const { return m_InputSlots; }
    const std::vector<Output>& Outputs() const { return m_Outputs; }
    const std::vector<Slot>& Slots() const { return m_Slots; }
    const std::vector<Step>& Steps() const { return m_Steps; }
    // False if a text cannot be written with slots. Every row is then for the job.
    bool HasSteps() const { return m_HasSteps; }
    // Calls note(BatchCause) for each output that fails whatever the inputs are.
    template <typename Note>
    void NoteFailing(Note note) const
    {
        for (const std::size_t output : m_Failing)
            note(BatchCause{m_OutputNames[output], *m_Outputs[output].failure});
    }

private:
    std::vector<bool> ReachedFrom(std::vector<NodeId> nodes) const;
    std::vector<NodeId> AlwaysFailing(const std::vector<bool>& isOpen) const;
    void AddStepsFor(NodeId output, const std::vector<bool>& isOpen);
    void AddStep(NodeId node);
    std::size_t SlotOf(NodeId node);
    ObjectName SlotName(const ObjectName& object);

    const FrozenJob& m_Frozen;
    const Calculation& m_Calculation;
    std::vector<ObjectName> m_InputNames;
    std::vector<ObjectName> m_OutputNames;
    std::vector<std::size_t> m_InputSlots;
    std::vector<Output> m_Outputs;
    std::vector<std::size_t> m_Failing; // outputs that have a failure
    std::vector<Slot> m_Slots;
    std::vector<Step> m_Steps;
    std::unordered_map<NodeId, std::size_t> m_SlotOf;
    std::vector<bool> m_IsDone; // by node, of those whose step is there or that need none
    bool m_HasSteps = true;
};

} // namespace tovo::job

#endif
