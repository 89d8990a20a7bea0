#include <bit>
#include <cstdint>
#include <utility>

#include <TovoFormula/CalculationPass.h>
#include <TovoFormula/MessageIds.h>

#include "Calculation.h"
#include "Rings.h"

namespace tovo::job {

namespace {

constexpr std::size_t kProgressInterval = 256; // objects between two calls of the callback

// To the bit, so that what rests on a value is calculated anew whenever that can matter.
bool IsSame(double a, double b)
{
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

} // namespace

// One update. It gathers everything that depends on what has changed, then lets each have its turn
// as soon as all that it uses has had its own. What never gets there is on a ring or depends on
// one: the rings are found and judged, and their users go on. A turn is skipped if nothing that the
// node uses has changed after all.
class Calculation::UpdateRun {
public:
    UpdateRun(Calculation& calculation, const Progress& progress)
        : m_Calculation(calculation),
          m_Progress(progress),
          m_StepsLeft(calculation.m_Options.limits.steps)
    {}

    // What had no turn, since the callback or an exception has ended the work, is left for the next
    // update.
    ~UpdateRun()
    {
        for (const NodeId id : m_Members) {
            if (std::exchange(TurnOf(id).isInUpdate, false) || TurnOf(id).isDirty) {
                TurnOf(id).isDirty = false;
                m_Calculation.MarkDirty(id);
            }
        }
    }
    UpdateRun(const UpdateRun&) = delete;
    UpdateRun& operator=(const UpdateRun&) = delete;

    Changes Run()
    {
        // What the host's objects returned in a pass that it holds itself may be another today.
        m_Pass.NoteHostChange();
        m_Calculation.SampleSources();
        Gather();
        CountUses();
        if (HaveTurns())
            HandleRings();
        if (m_Progress && m_Changes.isComplete)
            m_Progress(m_Members.size(), m_Members.size());
        return std::move(m_Changes);
    }

private:
    Node& At(NodeId id) { return m_Calculation.m_Nodes[id]; }
    Turn& TurnOf(NodeId id) { return m_Calculation.m_Turns[id]; }

    // All that depends on what is dirty, each once.
    void Gather()
    {
        for (const NodeId id : std::exchange(m_Calculation.m_Dirty, {}))
            Join(id);
        for (std::size_t at = 0; at < m_Members.size(); ++at)
            m_Calculation.m_Network.ForEachUser(m_Members[at], [&](NodeId user) { Join(user); });
    }
    void Join(NodeId id)
    {
        if (std::exchange(TurnOf(id).isInUpdate, true))
            return;
        TurnOf(id).waitsFor = 0;
        m_Members.push_back(id);
    }

    void CountUses()
    {
        for (const NodeId id : m_Members)
            m_Calculation.m_Network.ForEachUser(id, [&](NodeId user) { ++TurnOf(user).waitsFor; });
        for (const NodeId id : m_Members) {
            if (TurnOf(id).waitsFor == 0)
                m_Ready.push_back(id);
        }
    }

    // False if the callback has ended the work.
    bool HaveTurns()
    {
        for (; m_Next < m_Ready.size(); ++m_Next) {
            if (m_Next % kProgressInterval == 0 && m_Progress &&
                !m_Progress(m_Next, m_Members.size()))
                return m_Changes.isComplete = false;
            HaveTurn(m_Ready[m_Next]);
        }
        return true;
    }
    // What was on a ring is on none now that it has a turn.
    void HaveTurn(NodeId id)
    {
        if (TurnOf(id).isDirty || TurnOf(id).lastVerdict == Verdict::OnRing)
            Settle(id, [&] { m_Calculation.Judge(id, m_StepsLeft); });
        Release(id);
    }
    void Release(NodeId id)
    {
        TurnOf(id).isInUpdate = false;
        m_Calculation.m_Network.ForEachUser(id, [&](NodeId user) {
            if (TurnOf(user).isInUpdate && --TurnOf(user).waitsFor == 0)
                m_Ready.push_back(user);
        });
    }

    // Judges a node, and marks its users if that brings something new.
    template <typename Judge>
    void Settle(NodeId id, Judge judge)
    {
        Node& node = At(id);
        const double before = node.value;
        Turn& turn = TurnOf(id);
        const Verdict verdict = turn.lastVerdict;
        judge();
        turn.isDirty = false;
        turn.lastVerdict = turn.verdict;
        NoteChange(id);
        if (turn.verdict == verdict && IsSame(node.value, before))
            return;
        m_Calculation.m_Network.ForEachUser(id, [&](NodeId user) { MarkUser(user); });
    }
    // One that is on a ring has been judged already.
    void MarkUser(NodeId user)
    {
        Turn& turn = TurnOf(user);
        if (!turn.isInUpdate)
            return;
        turn.isDirty = true;
        turn.verdict = Verdict::Pending;
    }

    void NoteChange(NodeId id)
    {
        Node& node = At(id);
        const ObjectName& name = m_Calculation.m_Network.NameOf(id);
        if (name.kind == Kind::Formula || name.kind == Kind::Table)
            m_Changes.calculated += m_Calculation.IsDefined(id) ? 1 : 0;
        const auto value = m_Calculation.ValueAt(id);
        const bool isSame = value.has_value() == node.reported.has_value() &&
                            (!value || IsSame(*value, *node.reported));
        if (!isSame)
            m_Changes.values.push_back({name, node.reported, value});
        node.reported = value;
    }

    // The nodes that are left wait for one another.
    void HandleRings()
    {
        std::vector<NodeId> left;
        for (const NodeId id : m_Members) {
            if (TurnOf(id).isInUpdate)
                left.push_back(id);
        }
        for (const auto& group : NodesOnRings(m_Calculation.m_Network, left)) {
            m_Calculation.JudgeRing(group);
            for (const NodeId id : group)
                TurnOf(id).isInUpdate = false;
            for (const NodeId id : group)
                Settle(id, [] {});
            for (const NodeId id : group)
                Release(id);
        }
        HaveTurns();
    }

    Calculation& m_Calculation;
    const Progress& m_Progress;
    CalculationPass m_Pass;
    std::size_t m_StepsLeft;
    std::vector<NodeId> m_Members;
    std::vector<NodeId> m_Ready; // in the order of their turns
    std::size_t m_Next = 0;      // the first of them that has not had its turn
    Changes m_Changes;
};

Changes Calculation::Update(const Progress& progress)
{
    return UpdateRun(*this, progress).Run();
}

// Once for each update, so that everything in it sees the same.
void Calculation::SampleSources()
{
    for (const NodeId id : m_Sourced) {
        if (auto* const variable =
                std::get_if<std::unique_ptr<VariableImpl>>(&m_Nodes[id].object)) {
            const double value = std::get<Shared<Variable>>(m_Nodes[id].record)->source();
            if (IsSame(value, (*variable)->GetValue()))
                continue;
            (*variable)->SetValue(value);
        }
        MarkDirty(id);
    }
}

void Calculation::Judge(NodeId id, std::size_t& stepsLeft)
{
    Node& node = m_Nodes[id];
    node.faults.clear();
    node.because = kNoNode;
    Verdict& verdict = m_Turns[id].verdict;
    verdict = Verdict::Sound;
    switch (m_Network.NameOf(id).kind) {
    case Kind::JobValue:
        node.value = id == 0   ? m_Set.GetDuration()
                     : id == 1 ? m_Set.GetJobSize()
                               : m_Set.GetQuantity();
        return;
    case Kind::Variable:
        if (!IsDefined(id))
            return JudgeMissing(id);
        node.value = std::get<std::unique_ptr<VariableImpl>>(node.object)->GetValue();
        return;
    case Kind::Formula:
    case Kind::Table:
        break;
    }
    if (!IsDefined(id))
        return JudgeMissing(id);
    if (FindOwnFaults(id, stepsLeft)) {
        verdict = Verdict::Faulty;
    } else if (node.because = FirstFailingUse(id); node.because != kNoNode) {
        verdict = Verdict::Affected;
    } else if (auto* const formula = std::get_if<std::unique_ptr<EngineFormula>>(&node.object)) {
        TakeEvaluation(id, (*formula)->Evaluate());
    } else {
        TakeEvaluation(id, std::get<std::unique_ptr<EngineTable>>(node.object)->Evaluate());
    }
}

void Calculation::JudgeMissing(NodeId id)
{
    const bool countsAsZero =
        m_Network.NameOf(id).kind == Kind::Variable && !m_Options.undefinedVariablesAreFaults;
    m_Turns[id].verdict = countsAsZero ? Verdict::Sound : Verdict::Missing;
    m_Nodes[id].value = 0.0;
}

void Calculation::TakeEvaluation(NodeId id, const Evaluation& evaluation)
{
    Node& node = m_Nodes[id];
    if (!evaluation.isDone) {
        node.faults.push_back(FaultOfEngine(id, evaluation.message));
        m_Turns[id].verdict = Verdict::Faulty;
        return;
    }
    node.value = evaluation.value;
    if (auto* const formula = std::get_if<std::unique_ptr<EngineFormula>>(&node.object))
        (*formula)->SetKnownValue(evaluation.value);
    else
        std::get<std::unique_ptr<EngineTable>>(node.object)->SetKnownValue(evaluation.value);
}

NodeId Calculation::FirstFailingUse(NodeId id) const
{
    NodeId failing = kNoNode;
    m_Network.ForEachUse(id, [&](const Use& use) {
        if (failing == kNoNode && !HasValue(use.node))
            failing = use.node;
    });
    return failing;
}

} // namespace tovo::job
