#include <algorithm>
#include <unordered_set>
#include <utility>

#include <TovoFormula/CalcErrorTracker.h>
#include <TovoFormula/MessageIds.h>

#include "Calculation.h"
#include "Messages.h"
#include "Rings.h"
#include "TableParts.h"
#include "WordCharacters.h"

namespace tovo::job {

namespace {

// The message for a name that nobody defined.
unsigned int NotFound(Kind kind)
{
    switch (kind) {
    case Kind::Formula:
        return MSG_FORMULA_NOT_FOUND;
    case Kind::Table:
        return MSG_FORMTBL_NOT_FOUND;
    case Kind::Variable:
    case Kind::JobValue:
        break;
    }
    return MSG_JOB_VARIABLE_NOT_FOUND;
}

// A line of a chain, in the words of the engine's own lines.
std::string ChainLine(const ObjectName& object)
{
    switch (object.kind) {
    case Kind::Formula:
        return "Formula: " + object.name;
    case Kind::Table:
        return "Formula table: " + object.name;
    case Kind::Variable:
    case Kind::JobValue:
        break;
    }
    return "Variable: " + object.name;
}

// The token at which a check has stopped; the whole text if the fault is the kind of its value.
Span SpanOfFault(const CFmlaExpression& expression, const TwofoldText& text, unsigned int message)
{
    if (message == MSG_WRONG_RESULT_TYPE)
        return text.SpanOf(0, expression.GetTextStr().GetLength());
    const int begin = std::max(0, expression.GetInvalidPos());
    return text.SpanOf(begin, EndOfTokenAt(expression, begin));
}

std::string_view PartOfMessage(unsigned int message)
{
    switch (message) {
    case MSG_ROW_LIMITS_ORDER:
        return "row limits";
    case MSG_COLUMN_LIMITS_ORDER:
        return "column limits";
    default:
        return "";
    }
}

std::string Trimmed(std::string text)
{
    const std::size_t end = text.find_last_not_of(' ');
    text.erase(end == text.npos ? 0 : end + 1);
    text.erase(0, text.find_first_not_of(' '));
    return text;
}

} // namespace

// Reports the limits that the object exceeds, the names that nobody defined, and, where something
// cannot be evaluated for that or for what it reads, what else is wrong with the text.
bool Calculation::FindOwnFaults(NodeId id, std::size_t& stepsLeft)
{
    Node& node = m_Nodes[id];
    const auto* const formula = std::get_if<std::unique_ptr<EngineFormula>>(&node.object);
    const auto exceed = [&](unsigned int message) {
        node.faults.push_back(MakeFault(id, message, {m_Network.NameOf(id), {}, {}}));
        return true;
    };
    if (node.length > m_Options.limits.textLength)
        return exceed(MSG_JOB_TEXT_TOO_LONG);
    if (node.nesting > m_Options.limits.nesting)
        return exceed(MSG_JOB_NESTED_TOO_DEEP);
    if (node.steps > stepsLeft)
        return exceed(MSG_JOB_TOO_MANY_STEPS);
    stepsLeft -= node.steps;

    FindUnknownNames(id);
    if (FirstFailingUse(id) == kNoNode)
        return false;
    const unsigned int message =
        formula ? (*formula)->CheckAlone()
                : std::get<std::unique_ptr<EngineTable>>(node.object)->CheckAlone();
    // An unknown variable counts as 0 here, so what is computed with it says nothing.
    const bool isOwn = message != 0 && message != MSG_FORMULA_NOT_FOUND &&
                       message != MSG_FORMTBL_NOT_FOUND &&
                       (node.faults.empty() || !IsDomainMessage(message));
    if (isOwn)
        node.faults.push_back(FaultOfEngine(id, message));
    return !node.faults.empty();
}

void Calculation::FindUnknownNames(NodeId id)
{
    m_Network.ForEachUse(id, [&](const Use& use) {
        if (m_Turns[use.node].verdict != Verdict::Missing)
            return;
        const ObjectName& unknown = m_Network.NameOf(use.node);
        for (Place& place : ReferencesTo(id, use.node)) {
            Fault fault = MakeFault(id, NotFound(unknown.kind), std::move(place));
            fault.offender = unknown.name;
            fault.chain.insert(fault.chain.begin(), ChainLine(unknown));
            m_Nodes[id].faults.push_back(std::move(fault));
        }
    });
}

// Each ring is a fault of its first node. The others of the group point there.
void Calculation::JudgeRing(const std::vector<NodeId>& group)
{
    for (const NodeId id : group) {
        m_Nodes[id].faults.clear();
        m_Turns[id].verdict = Verdict::OnRing;
        m_Nodes[id].because = group.front();
    }
    for (const std::vector<NodeId>& ring : RingsOf(m_Network, group)) {
        const NodeId first = ring.front();
        std::vector<Place> places = PlacesOf(ring);
        Fault fault = MakeFault(first, MSG_JOB_RING, places.front());
        fault.ring = std::move(places);
        for (const NodeId id : ring) {
            if (m_Nodes[id].faults.empty())
                m_Nodes[id].because = first;
        }
        m_Nodes[first].faults.push_back(std::move(fault));
    }
}

Fault Calculation::MakeFault(NodeId id, unsigned int message, Place place) const
{
    Fault fault;
    fault.object = m_Network.NameOf(id);
    fault.message = message;
    fault.text = MessageText(message);
    fault.place = std::move(place);
    fault.chain = {ChainLine(fault.object)};
    return fault;
}

// To be called right after the failure: the next operation overwrites the chain.
Fault Calculation::FaultOfEngine(NodeId id, unsigned int message)
{
    Fault fault = MakeFault(id, message, {m_Network.NameOf(id), {}, {}});
    const CCalcErrorTracker& tracker = m_Set.ErrorTracker();
    if (message == tracker.GetError()) {
        fault.chain.clear();
        for (int index = 0; index < tracker.NumObjs(); ++index)
            fault.chain.push_back(tracker.GetStr(index).ToUtf8());
    }
    fault.place.part = PartOfMessage(message);
    if (message == MSG_JOB_EMPTY_CELL) {
        const EngineTable& table = *std::get<std::unique_ptr<EngineTable>>(m_Nodes[id].object);
        fault.place.part = TablePart{TablePart::What::Cell, table.Row(), table.Column()}.Words();
    }
    const auto* const formula = std::get_if<std::unique_ptr<EngineFormula>>(&m_Nodes[id].object);
    if (formula && !std::get<Shared<Formula>>(m_Nodes[id].record)->linked) {
        const CFmlaExpression& expression = (*formula)->GetExpression();
        const TwofoldText text(expression.GetTextStr());
        const Span span = SpanOfFault(expression, text, message);
        fault.place.span = span;
        fault.offender = Trimmed(text.Part(span));
        if (message == MSG_INVALID_ELEMENT && IsWordCharacter(Wide(fault.offender)[0])) {
            const std::string whole = expression.GetTextStr().ToUtf8();
            const std::size_t next = whole.find_first_not_of(' ', span.end.utf8);
            const bool isCalled = next != whole.npos && whole[next] == '(';
            fault.text =
                MessageAbout(isCalled ? MSG_JOB_NO_FUNCTION : MSG_JOB_NO_WORD, fault.offender);
        }
    }
    return fault;
}

std::vector<Place> Calculation::ReferencesTo(NodeId id, NodeId used) const
{
    const ObjectName& self = m_Network.NameOf(id);
    const ObjectName& wanted = m_Network.NameOf(used);
    std::vector<Place> places;
    if (const CFmlaExpression* const expression = ExpressionOf(self)) {
        const TwofoldText text(expression->GetTextStr());
        for (const Token& token : Scan(*expression).tokens) {
            if (token.object == wanted)
                places.push_back({self, text.SpanOf(token.begin, token.end), {}});
        }
    } else if (const auto* const table = std::get_if<Shared<Table>>(&m_Nodes[id].record)) {
        ForEachElement(**table, [&](const TablePart& part, const Element& element) {
            const auto* const object = std::get_if<ObjectName>(&element);
            if (object && *object == wanted)
                places.push_back({self, {}, part.Words()});
        });
    }
    return places;
}

std::vector<Place> Calculation::PlacesOf(const std::vector<NodeId>& ring) const
{
    std::vector<Place> places;
    for (std::size_t at = 0; at < ring.size(); ++at)
        places.push_back(PlaceOfReference(ring[at], ring[(at + 1) % ring.size()]));
    return places;
}

Place Calculation::PlaceOfReference(NodeId id, NodeId used) const
{
    const std::vector<Place> places = ReferencesTo(id, used);
    return places.empty() ? Place{m_Network.NameOf(id), {}, {}} : places.front();
}

// The reference of a node that is on a ring to the next one there.
Place Calculation::PlaceOnRing(NodeId id, NodeId first) const
{
    const ObjectName& self = m_Network.NameOf(id);
    for (const Fault& fault : m_Nodes[first].faults) {
        const auto place = std::find_if(fault.ring.begin(), fault.ring.end(),
                                        [&](const Place& at) { return at.object == self; });
        if (place != fault.ring.end())
            return *place;
    }
    return {self, {}, {}};
}

// The node whose own fault it is that this one fails; kNoNode for one that does not.
NodeId Calculation::RootOf(NodeId id) const
{
    while (m_Turns[id].verdict == Verdict::Affected)
        id = m_Nodes[id].because;
    if (m_Turns[id].verdict == Verdict::OnRing)
        id = m_Nodes[id].because;
    return m_Nodes[id].faults.empty() ? kNoNode : id;
}

std::vector<Fault> Calculation::Faults(const Content& content) const
{
    std::vector<Fault> faults;
    std::vector<NodeId> affected;
    std::unordered_map<NodeId, std::size_t> firstFaults; // of each node that has some
    const auto visit = [&](const auto& objects) {
        for (const auto& object : objects.All()) {
            const NodeId id = *m_Network.Find(NameOf(*object));
            const Node& node = m_Nodes[id];
            const Verdict verdict = m_Turns[id].verdict;
            if (verdict == Verdict::Affected)
                affected.push_back(id);
            if (verdict != Verdict::Faulty && verdict != Verdict::OnRing)
                continue;
            if (!node.faults.empty())
                firstFaults.emplace(id, faults.size());
            faults.insert(faults.end(), node.faults.begin(), node.faults.end());
        }
    };
    visit(content.Formulas());
    visit(content.Tables());

    // The way to a root is gone once, whatever the number of those that share it.
    std::unordered_map<NodeId, NodeId> roots;
    for (const NodeId id : affected) {
        std::vector<NodeId> way;
        NodeId at = id;
        while (m_Turns[at].verdict == Verdict::Affected && !roots.contains(at)) {
            way.push_back(at);
            at = m_Nodes[at].because;
        }
        const NodeId root = roots.contains(at) ? roots[at] : RootOf(at);
        for (const NodeId passed : way)
            roots[passed] = root;
        if (const auto fault = firstFaults.find(root); fault != firstFaults.end())
            faults[fault->second].affected.push_back(m_Network.NameOf(id));
    }
    return faults;
}

std::vector<Fault> Calculation::OwnFaults(const ObjectName& object) const
{
    const auto found = m_Network.Find(object);
    return found && IsDefined(*found) ? m_Nodes[*found].faults : std::vector<Fault>();
}

std::optional<Failure> Calculation::FailureOf(const ObjectName& object) const
{
    const auto found = m_Network.Find(object);
    if (!found || !IsDefined(*found))
        return std::nullopt;
    const NodeId id = *found;
    const Verdict verdict = m_Turns[id].verdict;
    const NodeId root = RootOf(id);
    if (verdict == Verdict::Sound || verdict == Verdict::Pending || root == kNoNode)
        return std::nullopt;
    const Fault& fault = m_Nodes[root].faults.front();
    Failure failure{fault.message, fault.text, fault.place, {}};
    if (verdict == Verdict::Affected)
        failure.place = PlaceOfReference(id, m_Nodes[id].because);
    else if (verdict == Verdict::OnRing)
        failure.place = PlaceOnRing(id, root);
    NodeId at = id;
    for (; m_Turns[at].verdict == Verdict::Affected; at = m_Nodes[at].because)
        failure.path.push_back(m_Network.NameOf(at));
    failure.path.push_back(m_Network.NameOf(at));
    std::reverse(failure.path.begin(), failure.path.end());
    return failure;
}

} // namespace tovo::job
