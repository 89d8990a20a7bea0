#ifndef TOVOJOB_SRC_NETWORK_H
#define TOVOJOB_SRC_NETWORK_H

#include <cstdint>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include <TovoJob/ObjectName.h>

namespace tovo::job {

using NodeId = std::uint32_t;
inline constexpr NodeId kNoNode = ~NodeId{0};

// What one object reads of another one, whatever the number of references.
struct Use {
    NodeId node = kNoNode;
    bool asValue = false;
    bool inCondition = false;
};

// Who refers to whom. Everything that is defined or referred to is a node, so that an object which
// is added later finds those that have been waiting for its name.
class Network {
public:
    // The node of an object, made when it is first named. Nodes are numbered from 0 and stay.
    NodeId Enter(const ObjectName& object);
    std::optional<NodeId> Find(const ObjectName& object) const;
    const ObjectName& NameOf(NodeId node) const { return *m_Nodes[node].name; }
    std::size_t Size() const { return m_Nodes.size(); }

    // Replaces what a node uses, each node once. Its cost does not depend on how many others use
    // the same.
    void SetUses(NodeId node, std::span<const Use> uses);

    // Calls visit(const Use&) for what the node uses, in the order of its text.
    template <typename Visit>
    void ForEachUse(NodeId node, Visit visit) const
    {
        for (const Edge& edge : m_Nodes[node].uses)
            visit(edge.use);
    }
    // Calls visit(NodeId) for each node that uses this one, in no particular order.
    template <typename Visit>
    void ForEachUser(NodeId node, Visit visit) const
    {
        for (const BackEdge& back : m_Nodes[node].usedBy)
            visit(back.user);
    }
    std::size_t UserCount(NodeId node) const { return m_Nodes[node].usedBy.size(); }

private:
    // Each edge is known at both ends, and each end knows the place of the other, so that one can
    // be taken out without a search.
    struct Edge {
        Use use;
        std::uint32_t placeInUsedBy;
    };
    struct BackEdge {
        NodeId user;
        std::uint32_t placeInUses;
    };
    struct Node {
        const ObjectName* name; // the key in the map
        std::vector<Edge> uses;
        std::vector<BackEdge> usedBy;
    };

    void TakeOut(const Edge& edge);

    std::unordered_map<ObjectName, NodeId> m_Ids;
    std::vector<Node> m_Nodes;
};

} // namespace tovo::job

#endif
