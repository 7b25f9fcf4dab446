#pragma once

// Access to the records of a graph.

#include <cstdint>

#include "containers/records.h"
#include "vx/graph.h"

namespace vx::containers {

constexpr int32_t none = -1; ///< no node, no edge, no number

inline VxGraphNode *nodeAt(VxGraph &graph, int32_t number)
{
    return recordAt<VxGraphNode>(graph.nodes, number);
}

inline VxGraphEdge *edgeAt(VxGraph &graph, int32_t number)
{
    return recordAt<VxGraphEdge>(graph.edges, number);
}

/** As nodeAt(), and null for a node that was deleted. */
inline VxGraphNode *liveNodeAt(VxGraph &graph, int32_t number)
{
    VxGraphNode *node = nodeAt(graph, number);
    return node && !node->removed ? node : nullptr;
}

inline VxGraphEdge *liveEdgeAt(VxGraph &graph, int32_t number)
{
    VxGraphEdge *edge = edgeAt(graph, number);
    return edge && !edge->removed ? edge : nullptr;
}

/** Make a record ready for a walk. */
inline void prepare(VxGraphNode &node) noexcept
{
    node.number = node.parentNode = node.parentEdge = node.low = node.low2 = none;
    node.val[0] = node.val[1] = -1;
}

inline void prepare(VxGraphEdge &edge) noexcept
{
    edge.weight = 0;
    edge.cycle = 0;
}

/** The node at the other end; that of a loop is the node itself. */
inline int32_t otherEnd(const VxGraphEdge &edge, int32_t node) noexcept
{
    return edge.from == node ? edge.to : edge.from;
}

/** A new list of edge numbers. */
uint32_t makeNumbers(VxList *&list);

}
