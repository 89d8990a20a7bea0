#ifndef TOVOJOB_SRC_RINGS_H
#define TOVOJOB_SRC_RINGS_H

#include <span>
#include <vector>

#include "Network.h"

namespace tovo::job {

// The groups of nodes each of which leads to every other one of its group, and the nodes that use
// themselves. Only the nodes given are looked at. Takes time linear in the uses, at any depth.
std::vector<std::vector<NodeId>> NodesOnRings(const Network& network,
                                              std::span<const NodeId> nodes);

// Rings that together pass through every node of such a group, each as short as possible from its
// first node and in the order of use. Many rings share their nodes; a group gets no more of them
// than it takes to search it a fixed number of times, so in a large tangle some nodes may be left
// out.
std::vector<std::vector<NodeId>> RingsOf(const Network& network, std::span<const NodeId> group);

} // namespace tovo::job

#endif
