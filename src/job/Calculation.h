#ifndef TOVOJOB_SRC_CALCULATION_H
#define TOVOJOB_SRC_CALCULATION_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include <TovoJob/Fault.h>
#include <TovoJob/Options.h>
#include <TovoJob/Report.h>

#include "Content.h"
#include "EngineObjects.h"
#include "ExpressionText.h"
#include "Network.h"

namespace tovo::job {

// What follows from a job's content: who refers to whom, and what everything comes to. It is told
// of each record that changes and calculates, when asked, what depends on those.
//
// All calculation is in topological order: an object has its turn when everything that it reads has
// had its own. So each is evaluated once, and no depth of references rests on the stack.
class Calculation {
public:
    explicit Calculation(const JobOptions& options);
    Calculation(const Calculation&) = delete;
    Calculation& operator=(const Calculation&) = delete;

    // Tells that an object has this record from now on; null takes it out. Job values are set as a
    // whole.
    void SetRecord(const ObjectName& object, const Record& record);
    void SetOptions(const JobOptions& options);

    Changes Update(const Progress& progress);

    // Of the last update; absent for what fails, is not there, or has changed since.
    std::optional<double> ValueOf(const ObjectName& object) const;
    // All faults, those of formulas in front of those of tables, each kind in its order.
    std::vector<Fault> Faults(const Content& content) const;
    std::optional<Failure> FailureOf(const ObjectName& object) const;
    // The faults of one object itself, without those of what it reads.
    std::vector<Fault> OwnFaults(const ObjectName& object) const;

    const Network& Uses() const { return m_Network; }
    // The expression of a formula with its text; null for what is none, or is linked.
    CFmlaExpression* ExpressionOf(const ObjectName& object) const;
    // The engine's table; null for what is none.
    EngineTable* TableOf(const ObjectName& object) const;
    CalcSetImpl& Set() { return m_Set; }
    // The places in a node where another one is referred to.
    std::vector<Place> ReferencesTo(NodeId id, NodeId used) const;
    // Of each node of a ring, the reference to the next one.
    std::vector<Place> PlacesOf(const std::vector<NodeId>& ring) const;

private:
    enum class Verdict : std::uint8_t {
        Pending,  // not looked at since it changed
        Sound,    // has a value
        Missing,  // nobody defined it
        Faulty,   // has faults of its own
        Affected, // reads something that has no value
        OnRing,   // depends on itself
    };
    using EngineObject = std::variant<std::monostate, std::unique_ptr<VariableImpl>,
                                      std::unique_ptr<EngineFormula>, std::unique_ptr<EngineTable>>;
    struct Node {
        Record record; // null for what is only referred to
        EngineObject object;
        double value = 0.0;
        std::optional<double> reported; // the value that a report has told last
        NodeId because = kNoNode;       // what fails, of an affected one; of a ring its first node
        std::vector<Fault> faults;      // its own
        std::size_t steps = 0;
        std::size_t nesting = 0;
        std::size_t length = 0;
        bool isSourced = false; // is among those below
    };
    // What the turn of one node looks at in others. It lies apart from the nodes, so that it is in
    // the processor's cache when a hundred thousand of them are calculated.
    struct Turn {
        std::uint32_t waitsFor = 0; // how many of its uses have not had their turn
        Verdict verdict = Verdict::Pending;
        Verdict lastVerdict = Verdict::Pending; // of the last turn
        bool isDirty = false;                   // is to be judged in the next update
        bool isInUpdate = false;                // has not had its turn in the present one
    };
    static constexpr std::size_t kNoPlace = ~std::size_t{0};
    class UpdateRun;
    friend class UpdateRun;

    NodeId Enter(const ObjectName& object);
    void Put(NodeId id, const Shared<Variable>& record);
    void Put(NodeId id, const Shared<Formula>& record);
    void Put(NodeId id, const Shared<Table>& record);
    void Put(NodeId id, const Shared<JobValues>& record);
    void TakeOut(NodeId id);
    void SetUses(NodeId id, const std::vector<std::pair<ObjectName, bool>>& references);
    void SetSourced(NodeId id, bool isSourced);
    void MarkDirty(NodeId id);
    std::optional<double> ValueAt(NodeId id) const;
    bool IsDefined(NodeId id) const;
    bool HasValue(NodeId id) const { return m_Turns[id].verdict == Verdict::Sound; }

    // Evaluate one node, whose uses have had their turn.
    void SampleSources();
    void Judge(NodeId id, std::size_t& stepsLeft);
    void JudgeMissing(NodeId id);
    bool FindOwnFaults(NodeId id, std::size_t& stepsLeft);
    void TakeEvaluation(NodeId id, const Evaluation& evaluation);
    void FindUnknownNames(NodeId id);
    NodeId FirstFailingUse(NodeId id) const;
    void JudgeRing(const std::vector<NodeId>& group);

    Fault MakeFault(NodeId id, unsigned int message, Place place) const;
    Fault FaultOfEngine(NodeId id, unsigned int message);
    Place PlaceOfReference(NodeId id, NodeId used) const;
    Place PlaceOnRing(NodeId id, NodeId first) const;
    NodeId RootOf(NodeId id) const;

    JobOptions m_Options;
    CalcSetImpl m_Set;
    Network m_Network;
    std::vector<Node> m_Nodes; // by NodeId, as the next
    std::vector<Turn> m_Turns;
    std::vector<std::size_t> m_PlaceInUses; // by NodeId: work space of SetUses, else kNoPlace
    std::vector<NodeId> m_Dirty;
    std::vector<NodeId> m_Sourced; // what a host computes: variables with a source, linked objects
};

} // namespace tovo::job

#endif
