#include "Rings.h"

#include <algorithm>
#include <unordered_map>

namespace tovo::job {

namespace {

constexpr std::size_t kMostSearches = 32; // of one group

std::vector<NodeId> UsesOf(const Network& network, NodeId node)
{
    std::vector<NodeId> uses;
    network.ForEachUse(node, [&](const Use& use) { uses.push_back(use.node); });
    return uses;
}

bool UsesItself(const Network& network, NodeId node)
{
    const std::vector<NodeId> uses = UsesOf(network, node);
    return std::find(uses.begin(), uses.end(), node) != uses.end();
}

// Tarjan's strongly connected components, with a stack of its own in place of the calls. A node
// gets a number when it is met first; its low mark is the smallest number of a node on the stack
// that it is known to lead to. Where both are the same, the group that begins with it is complete.
class Components {
public:
    Components(const Network& network, std::span<const NodeId> nodes) : m_Network(network)
    {
        for (const NodeId node : nodes)
            m_Marks[node] = {};
        for (const NodeId node : nodes) {
            if (m_Marks[node].number == 0)
                Walk(node);
        }
    }

    std::vector<std::vector<NodeId>> Take() { return std::move(m_Groups); }

private:
    struct Mark {
        std::size_t number = 0; // 0 before the node is met
        std::size_t low = 0;
        bool isOnStack = false;
    };
    struct Visit {
        NodeId node;
        std::vector<NodeId> uses;
        std::size_t next = 0;
    };

    void Walk(NodeId start)
    {
        Enter(start);
        while (!m_Visits.empty()) {
            Visit& visit = m_Visits.back();
            if (visit.next < visit.uses.size())
                Follow(visit.node, visit.uses[visit.next++]);
            else
                Leave();
        }
    }
    void Enter(NodeId node)
    {
        Mark& mark = m_Marks[node];
        mark.number = mark.low = ++m_Count;
        mark.isOnStack = true;
        m_Stack.push_back(node);
        m_Visits.push_back({node, UsesOf(m_Network, node)});
    }
    void Follow(NodeId node, NodeId used)
    {
        const auto found = m_Marks.find(used);
        if (found == m_Marks.end())
            return;
        if (found->second.number == 0)
            Enter(used);
        else if (found->second.isOnStack)
            Lower(node, found->second.number);
    }
    void Leave()
    {
        const NodeId node = m_Visits.back().node;
        m_Visits.pop_back();
        const Mark& mark = m_Marks[node];
        if (!m_Visits.empty())
            Lower(m_Visits.back().node, mark.low);
        if (mark.low == mark.number)
            TakeGroup(node);
    }
    void Lower(NodeId node, std::size_t low)
    {
        Mark& mark = m_Marks[node];
        mark.low = std::min(mark.low, low);
    }
    void TakeGroup(NodeId first)
    {
        const auto begin = std::find(m_Stack.rbegin(), m_Stack.rend(), first).base() - 1;
        std::vector<NodeId> group(begin, m_Stack.end());
        m_Stack.erase(begin, m_Stack.end());
        for (const NodeId node : group)
            m_Marks[node].isOnStack = false;
        // Whatever the history of the job, the same rings are found.
        std::sort(group.begin(), group.end(),
                  [&](NodeId a, NodeId b) { return m_Network.NameOf(a) < m_Network.NameOf(b); });
        if (group.size() > 1 || UsesItself(m_Network, first))
            m_Groups.push_back(std::move(group));
    }

    const Network& m_Network;
    std::unordered_map<NodeId, Mark> m_Marks;
    std::vector<NodeId> m_Stack;
    std::vector<Visit> m_Visits;
    std::vector<std::vector<NodeId>> m_Groups;
    std::size_t m_Count = 0;
};

// A shortest way from a node back to itself within its group, by breadth.
std::vector<NodeId> RingThrough(const Network& network, NodeId start,
                                const std::unordered_map<NodeId, bool>& group)
{
    std::unordered_map<NodeId, NodeId> cameFrom;
    std::vector<NodeId> met = {start};
    for (std::size_t at = 0; at < met.size(); ++at) {
        for (const NodeId used : UsesOf(network, met[at])) {
            if (!group.contains(used) || !cameFrom.try_emplace(used, met[at]).second)
                continue;
            if (used != start) {
                met.push_back(used);
                continue;
            }
            std::vector<NodeId> ring;
            for (NodeId node = met[at]; node != start; node = cameFrom[node])
                ring.push_back(node);
            ring.push_back(start);
            std::reverse(ring.begin(), ring.end());
            return ring;
        }
    }
    return {};
}

} // namespace

std::vector<std::vector<NodeId>> NodesOnRings(const Network& network, std::span<const NodeId> nodes)
{
    return Components(network, nodes).Take();
}

std::vector<std::vector<NodeId>> RingsOf(const Network& network, std::span<const NodeId> group)
{
    std::unordered_map<NodeId, bool> isCovered;
    for (const NodeId node : group)
        isCovered[node] = false;
    std::vector<std::vector<NodeId>> rings;
    for (const NodeId node : group) {
        if (isCovered[node])
            continue;
        if (rings.size() == kMostSearches)
            break;
        rings.push_back(RingThrough(network, node, isCovered));
        for (const NodeId member : rings.back())
            isCovered[member] = true;
    }
    return rings;
}

} // namespace tovo::job
