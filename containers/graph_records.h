#pragma once

// Access to the records of a graph. The lists are public, so each access
// checks that a list is what it should be.

#include <cstdint>

#include "containers/slots.h"
#include "vx/graph.h"

namespace vx::containers {

constexpr int32_t none = -1; ///< no node, no edge, no number

/** True when the list holds records of type T; else the stop error is filed, or nothing for a null list. */
template <typename T> bool holds(const VxList *list)
{
    if (!list)
        return false;
    if (list->elemSize == static_cast<int32_t>(sizeof(T)))
        return true;
    VxListSizeError();
    return false;
}

/** The record at an index below the list's count, or null. */
template <typename T> T *recordAt(VxList *list, int32_t index)
{
    if (!holds<T>(list) || index < 0 || index >= list->count)
        return nullptr;
    void *record = nullptr;
    if (list->layout == array)
        record = slotAt(*list, index); // without the call, which would show
    else
        VxListGetPtr(list, index, &record);
    return static_cast<T *>(record);
}

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

/** The node at the other end; that of a loop is the node itself. */
inline int32_t otherEnd(const VxGraphEdge &edge, int32_t node) noexcept
{
    return edge.from == node ? edge.to : edge.from;
}

/** Append a record: 0, or 1 with the list as it was. */
template <typename T> uint32_t append(VxList *list, const T &record)
{
    if (!holds<T>(list))
        return 1;
    if (list->layout == array && list->count < list->capacity) {
        if (void *slot = slotAt(*list, list->count)) {
            *static_cast<T *>(slot) = record;
            ++list->count;
            return 0;
        }
    }
    return VxListSet(list, list->count, &record);
}

/** A new list of edge numbers. */
uint32_t makeNumbers(VxList *&list);

} // namespace vx::containers
