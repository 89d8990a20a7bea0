#include "Network.h"

namespace tovo::job {

NodeId Network::Enter(const ObjectName& object)
{
    const auto [entry, isNew] = m_Ids.try_emplace(object, static_cast<NodeId>(m_Nodes.size()));
    if (isNew)
        m_Nodes.push_back({&entry->first, {}, {}});
    return entry->second;
}

std::optional<NodeId> Network::Find(const ObjectName& object) const
{
    const auto found = m_Ids.find(object);
    if (found == m_Ids.end())
        return std::nullopt;
    return found->second;
}

void Network::SetUses(NodeId node, std::span<const Use> uses)
{
    for (const Edge& edge : m_Nodes[node].uses)
        TakeOut(edge);
    std::vector<Edge>& edges = m_Nodes[node].uses;
    edges.clear();
    edges.reserve(uses.size());
    for (const Use& use : uses) {
        std::vector<BackEdge>& usedBy = m_Nodes[use.node].usedBy;
        edges.push_back({use, static_cast<std::uint32_t>(usedBy.size())});
        usedBy.push_back({node, static_cast<std::uint32_t>(edges.size() - 1)});
    }
}

// The last one takes the place that becomes free.
void Network::TakeOut(const Edge& edge)
{
    std::vector<BackEdge>& usedBy = m_Nodes[edge.use.node].usedBy;
    const BackEdge moved = usedBy.back();
    usedBy[edge.placeInUsedBy] = moved;
    m_Nodes[moved.user].uses[moved.placeInUses].placeInUsedBy = edge.placeInUsedBy;
    usedBy.pop_back();
}

} // namespace tovo::job
