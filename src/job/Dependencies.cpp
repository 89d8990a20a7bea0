#include <TovoJob/Dependencies.h>

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "Access.h"
#include "Rings.h"

namespace tovo {

namespace {

using job::Calculation;
using job::Network;
using job::NodeId;
using job::Use;

// What is reached from a node, each once, with the kinds of the ways that lead there.
class Walk {
public:
    // Calls next(node, visit) for the neighbours of a node; visit takes a Use whose node is one.
    template <typename Next>
    Walk(NodeId start, bool isTransitive, Next next)
    {
        next(start, [&](const Use& use) { Reach(use.node, use.asValue, use.inCondition); });
        for (std::size_t at = 0; isTransitive && at < m_Pending.size(); ++at) {
            const NodeId node = m_Pending[at];
            const Use from = m_Reached[m_Places[node]];
            next(node, [&](const Use& use) {
                // Behind a condition everything is in that condition.
                Reach(use.node, from.asValue && use.asValue,
                      from.inCondition || (from.asValue && use.inCondition));
            });
        }
    }

    const std::vector<Use>& Reached() const { return m_Reached; }

private:
    // A node that is reached in a new way is gone through again, at most twice.
    void Reach(NodeId node, bool asValue, bool inCondition)
    {
        const auto [place, isNew] = m_Places.try_emplace(node, m_Reached.size());
        if (isNew)
            m_Reached.push_back({node, false, false});
        Use& reached = m_Reached[place->second];
        const bool isNews =
            isNew || (asValue && !reached.asValue) || (inCondition && !reached.inCondition);
        reached.asValue = reached.asValue || asValue;
        reached.inCondition = reached.inCondition || inCondition;
        if (isNews)
            m_Pending.push_back(node);
    }

    std::vector<Use> m_Reached;
    std::unordered_map<NodeId, std::size_t> m_Places;
    std::vector<NodeId> m_Pending;
};

const Calculation& CalculationOf(const Job& job)
{
    return job::Access::InsideOf(job).calculation;
}

// The use of a node by one of its users.
Use UseBy(const Network& network, NodeId user, NodeId used)
{
    Use found;
    network.ForEachUse(user, [&](const Use& use) {
        if (use.node == used)
            found = use;
    });
    found.node = user;
    return found;
}

Dependency DependencyOn(const Job& job, const Use& use)
{
    const ObjectName& name = CalculationOf(job).Uses().NameOf(use.node);
    return {name, job.Has(name), use.asValue, use.inCondition, {}};
}

void SortByOrder(const Job& job, std::vector<Dependency>& dependencies)
{
    const auto& content = job::Access::InsideOf(job).content;
    const auto key = [&](const Dependency& dependency) {
        return std::pair(dependency.object.kind, content.PositionOf(dependency.object));
    };
    std::sort(dependencies.begin(), dependencies.end(),
              [&](const auto& a, const auto& b) { return key(a) < key(b); });
}

// Every node that is on a ring or leads nowhere but there is left out.
std::vector<NodeId> Sorted(const Network& network)
{
    std::vector<std::size_t> waitsFor(network.Size());
    std::vector<NodeId> sorted;
    for (NodeId node = 0; node < network.Size(); ++node) {
        network.ForEachUse(node, [&](const Use&) { ++waitsFor[node]; });
        if (waitsFor[node] == 0)
            sorted.push_back(node);
    }
    for (std::size_t at = 0; at < sorted.size(); ++at)
        network.ForEachUser(sorted[at], [&](NodeId user) {
            if (--waitsFor[user] == 0)
                sorted.push_back(user);
        });
    return sorted;
}

std::string Quoted(const std::string& text)
{
    std::string quoted = "\"";
    for (const char character : text) {
        if (character == '"' || character == '\\')
            quoted += '\\';
        quoted += character;
    }
    return quoted + "\"";
}

std::string NodeText(const Job& job, const ObjectName& object)
{
    constexpr const char* kShapes[] = {"ellipse", "box", "folder", "diamond"};
    const std::string colour = job.Has(object) ? "" : ", color=red";
    return "  " + Quoted(WriteReference(object)) + " [label=" + Quoted(object.name) +
           ", shape=" + kShapes[static_cast<std::size_t>(object.kind)] + colour + "];\n";
}

std::string GraphOf(const Job& job, const std::vector<NodeId>& nodes)
{
    const Network& network = CalculationOf(job).Uses();
    std::string text = "digraph job {\n  rankdir=LR;\n";
    for (const NodeId node : nodes)
        text += NodeText(job, network.NameOf(node));
    for (const NodeId node : nodes) {
        const std::string user = Quoted(WriteReference(network.NameOf(node)));
        network.ForEachUse(node, [&](const Use& use) {
            const char* const style = use.asValue ? "" : " [style=dashed]";
            text += "  " + Quoted(WriteReference(network.NameOf(use.node))) + " -> " + user +
                    style + ";\n";
        });
    }
    return text + "}\n";
}

} // namespace

std::vector<Dependency> Uses(const Job& job, const ObjectName& object, Reach reach)
{
    const Network& network = CalculationOf(job).Uses();
    const auto node = network.Find(object);
    if (!node)
        return {};
    const Walk walk(*node, reach == Reach::Transitive,
                    [&](NodeId from, auto visit) { network.ForEachUse(from, visit); });
    std::vector<Dependency> dependencies;
    for (const Use& use : walk.Reached()) {
        dependencies.push_back(DependencyOn(job, use));
        dependencies.back().places = CalculationOf(job).ReferencesTo(*node, use.node);
    }
    return dependencies;
}

std::vector<Dependency> UsedBy(const Job& job, const ObjectName& object, Reach reach)
{
    const Network& network = CalculationOf(job).Uses();
    const auto node = network.Find(object);
    if (!node)
        return {};
    const Walk walk(*node, reach == Reach::Transitive, [&](NodeId from, auto visit) {
        network.ForEachUser(from, [&](NodeId user) { visit(UseBy(network, user, from)); });
    });
    std::vector<Dependency> dependencies;
    for (const Use& use : walk.Reached()) {
        dependencies.push_back(DependencyOn(job, use));
        dependencies.back().places = CalculationOf(job).ReferencesTo(use.node, *node);
    }
    SortByOrder(job, dependencies);
    return dependencies;
}

std::vector<ObjectName> Order(const Job& job)
{
    const Network& network = CalculationOf(job).Uses();
    std::vector<ObjectName> order;
    for (const NodeId node : Sorted(network)) {
        const ObjectName& name = network.NameOf(node);
        const bool isCalculated = name.kind == Kind::Formula || name.kind == Kind::Table;
        if (isCalculated && job.Has(name))
            order.push_back(name);
    }
    return order;
}

std::vector<std::vector<Place>> Rings(const Job& job)
{
    const Network& network = CalculationOf(job).Uses();
    std::vector<NodeId> nodes(network.Size());
    for (NodeId node = 0; node < nodes.size(); ++node)
        nodes[node] = node;
    std::vector<std::vector<Place>> rings;
    for (const auto& group : job::NodesOnRings(network, nodes)) {
        for (const auto& ring : job::RingsOf(network, group))
            rings.push_back(CalculationOf(job).PlacesOf(ring));
    }
    return rings;
}

std::vector<ObjectName> Unused(const Job& job)
{
    const Network& network = CalculationOf(job).Uses();
    std::vector<ObjectName> unused;
    const auto list = [&](const auto& objects) {
        for (const auto& object : objects) {
            const NodeId node = *network.Find(job::NameOf(object));
            bool isUsed = false;
            network.ForEachUser(node, [&](NodeId user) { isUsed = isUsed || user != node; });
            if (!isUsed)
                unused.push_back(job::NameOf(object));
        }
    };
    list(job.Variables());
    list(job.Formulas());
    list(job.Tables());
    return unused;
}

// A name that nobody defines or uses any longer is not shown.
std::string WriteGraph(const Job& job)
{
    const Network& network = CalculationOf(job).Uses();
    std::vector<NodeId> nodes;
    for (NodeId node = 0; node < network.Size(); ++node) {
        const ObjectName& name = network.NameOf(node);
        const bool isShown = name.kind != Kind::JobValue && job.Has(name);
        if (isShown || network.UserCount(node) > 0)
            nodes.push_back(node);
    }
    return GraphOf(job, nodes);
}

std::string WriteGraph(const Job& job, const ObjectName& object)
{
    const Network& network = CalculationOf(job).Uses();
    const auto node = network.Find(object);
    std::vector<NodeId> nodes;
    if (node) {
        nodes.push_back(*node);
        for (const Dependency& used : Uses(job, object, Reach::Transitive)) {
            if (used.object != object)
                nodes.push_back(*network.Find(used.object));
        }
    }
    return GraphOf(job, nodes);
}

} // namespace tovo
