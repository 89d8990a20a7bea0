#include "BatchPlan.h"

#include <TovoFormula/MessageIds.h>

#include "Access.h"
#include "ExpressionText.h"
#include "Messages.h"
#include "TableParts.h"
#include "TextChanges.h"

namespace tovo::job {

namespace {

// Whether other inputs may bring another verdict.
bool RestsOnValues(const Fault& fault)
{
    return IsDomainMessage(fault.message) || fault.message == MSG_GENERAL_FAILURE ||
           fault.message == MSG_JOB_EMPTY_CELL;
}

} // namespace

BatchPlan::BatchPlan(const FrozenJob& job, std::vector<ObjectName> inputs,
                     std::vector<ObjectName> outputs)
    : m_Frozen(job),
      m_Calculation(Access::InsideOf(job.Frozen()).calculation),
      m_InputNames(std::move(inputs)),
      m_OutputNames(std::move(outputs))
{
    const Network& network = m_Calculation.Uses();
    std::vector<NodeId> inputNodes;
    for (const ObjectName& input : m_InputNames)
        inputNodes.push_back(*network.Find(input));
    // What an input leads to is open, all else closed.
    const std::vector<bool> isOpen = ReachedFrom(inputNodes);
    const std::vector<bool> isHopeless = ReachedFrom(AlwaysFailing(isOpen));

    m_IsDone.resize(network.Size());
    for (const NodeId input : inputNodes) {
        m_IsDone[input] = true;
        m_InputSlots.push_back(SlotOf(input));
    }
    for (const ObjectName& output : m_OutputNames) {
        const NodeId node = *network.Find(output);
        if (isHopeless[node]) {
            m_Failing.push_back(m_Outputs.size());
            m_Outputs.push_back({0, m_Calculation.FailureOf(output)});
        } else {
            AddStepsFor(node, isOpen);
            m_Outputs.push_back({SlotOf(node), std::nullopt});
        }
    }
}

// The nodes themselves, and all that depends on them.
std::vector<bool> BatchPlan::ReachedFrom(std::vector<NodeId> nodes) const
{
    std::vector<bool> isReached(m_Calculation.Uses().Size());
    for (const NodeId node : nodes)
        isReached[node] = true;
    for (std::size_t at = 0; at < nodes.size(); ++at) {
        m_Calculation.Uses().ForEachUser(nodes[at], [&](NodeId user) {
            if (!isReached[user])
                nodes.push_back(user);
            isReached[user] = true;
        });
    }
    return isReached;
}

std::vector<NodeId> BatchPlan::AlwaysFailing(const std::vector<bool>& isOpen) const
{
    const Network& network = m_Calculation.Uses();
    std::vector<NodeId> failing;
    for (const Fault& fault : m_Frozen.Base().faults) {
        const NodeId node = *network.Find(fault.object);
        if (!isOpen[node] || !RestsOnValues(fault))
            failing.push_back(node);
        for (const Place& place : fault.ring)
            failing.push_back(*network.Find(place.object));
    }
    return failing;
}

// Depth first, so that each step comes after those that it rests on. With a stack of its own, since
// chains may be of any depth.
void BatchPlan::AddStepsFor(NodeId output, const std::vector<bool>& isOpen)
{
    std::vector<NodeId> waiting = {output};
    while (!waiting.empty()) {
        const NodeId node = waiting.back();
        if (m_IsDone[node] || !isOpen[node]) {
            waiting.pop_back();
            continue;
        }
        const std::size_t count = waiting.size();
        m_Calculation.Uses().ForEachUse(node, [&](const Use& use) {
            if (isOpen[use.node] && !m_IsDone[use.node])
                waiting.push_back(use.node);
        });
        if (waiting.size() > count)
            continue;
        AddStep(node);
        m_IsDone[node] = true;
    }
}

void BatchPlan::AddStep(NodeId node)
{
    const ObjectName& object = m_Calculation.Uses().NameOf(node);
    if (const CFmlaExpression* const expression = m_Calculation.ExpressionOf(object)) {
        std::vector<TextChange> changes;
        for (int index = 0; index < expression->NumVars(); ++index)
            changes.push_back({expression->VarPos(index),
                               expression->VarEndPos(index),
                               {},
                               SlotName(ReferredBy(*expression, index))});
        const ChangedText text(*expression, changes);
        m_HasSteps = m_HasSteps && text.Fits();
        m_Steps.push_back({SlotOf(node), text.Encoded()});
        return;
    }
    Table table = *m_Frozen.Frozen().FindTable(object.name);
    ForEachElement(table, [&](const TablePart&, Element& element) {
        if (const auto* const used = std::get_if<ObjectName>(&element))
            element = SlotName(*used);
    });
    m_Steps.push_back({SlotOf(node), std::move(table)});
}

ObjectName BatchPlan::SlotName(const ObjectName& object)
{
    return VariableNamed(m_Slots[SlotOf(*m_Calculation.Uses().Find(object))].name);
}

std::size_t BatchPlan::SlotOf(NodeId node)
{
    const auto [entry, isNew] = m_SlotOf.try_emplace(node, m_Slots.size());
    if (isNew) {
        const ObjectName& object = m_Calculation.Uses().NameOf(node);
        // An undefined variable that is no fault counts as 0, and an object that fails at present
        // is calculated before it is read.
        m_Slots.push_back({std::to_string(m_Slots.size()) + (IsYesNoName(object.name) ? "?" : ""),
                           m_Calculation.ValueOf(object).value_or(0.0)});
    }
    return entry->second;
}

} // namespace tovo::job
