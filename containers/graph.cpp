// Graphs: nodes and edges, made and removed. Walks, components and regions
// have files of their own.

#include "vx/graph.h"

#include "containers/graph_records.h"

namespace vx::containers {

namespace {

constexpr int32_t slots = 10; ///< of a new list, and of each growth

template <typename T> uint32_t makeList(VxList *&list)
{
    return VxListMk(array, sizeof(T), slots, slots, nullptr, &list);
}

void dropLast(VxList &list)
{
    VxListDelElem(&list, list.count - 1, list.count - 1);
}

VxGraphNode newNode(VxList *edges) noexcept
{
    VxGraphNode node{};
    node.edges = edges;
    node.number = node.parentNode = node.parentEdge = node.low = node.low2 = none;
    node.val[0] = node.val[1] = -1;
    return node;
}

VxGraphEdge newEdge(int32_t from, int32_t to) noexcept
{
    VxGraphEdge edge{};
    edge.from = from;
    edge.to = to;
    edge.region[0] = edge.region[1] = none;
    return edge;
}

uint32_t addNode(VxList &nodes)
{
    VxList *edges = nullptr;
    if (makeNumbers(edges))
        return 1;
    if (append(&nodes, newNode(edges)) == 0)
        return 0;
    VxListDel(&edges);
    return 1;
}

/** Room for all nodes in one step: the capacity that growing by increments would reach. */
uint32_t makeNodes(VxList &nodes, int32_t n)
{
    int32_t missing = n - nodes.capacity;
    if (missing > 0 && VxListResizeArr(&nodes, missing / slots * slots + (missing % slots ? slots : 0)))
        return 1;
    for (int32_t i = 0; i < n; ++i)
        if (addNode(nodes))
            return 1;
    return 0;
}

uint32_t make(VxGraph &graph, int32_t n)
{
    if (makeList<VxGraphNode>(graph.nodes) || makeList<VxGraphEdge>(graph.edges) ||
        makeList<VxGraphRegion>(graph.regions))
        return 1;
    return makeNodes(*graph.nodes, n);
}

bool isNode(VxGraph &graph, int32_t number)
{
    return holds<VxGraphNode>(graph.nodes) && number >= 0 && number < graph.nodes->count;
}

/** Append to both lists, or to neither; they may be one. */
uint32_t appendToBoth(VxList *first, VxList *second, int32_t number)
{
    if (append(first, number))
        return 1;
    if (second && append(second, number)) {
        dropLast(*first);
        return 1;
    }
    return 0;
}

/** Overwrite the first entry of an edge; the entries behind it stay where they are. */
void forget(VxList *edges, int32_t number)
{
    for (int32_t i = 0; edges && i < edges->count; ++i) {
        auto entry = recordAt<int32_t>(edges, i);
        if (entry && *entry == number) {
            *entry = none;
            return;
        }
    }
}

template <typename T> void deleteEdgeLists(VxList *records)
{
    for (int32_t i = 0; records && i < records->count; ++i)
        if (auto record = recordAt<T>(records, i))
            VxListDel(&record->edges);
}

}

uint32_t makeNumbers(VxList *&list)
{
    return makeList<int32_t>(list);
}

}

using namespace vx::containers;

uint32_t VxGraphMk(int32_t n, VxGraph *graph)
{
    if (!graph)
        return 1;
    *graph = {};
    if (n < 0)
        return 1;
    if (make(*graph, n) == 0)
        return 0;
    VxGraphFree(graph);
    return 1;
}

uint32_t VxGraphAddEdge(VxGraph *graph, int32_t from, int32_t to, int32_t directed, VxGraphEdge **edge)
{
    if (edge)
        *edge = nullptr;
    if (!graph || !holds<VxGraphEdge>(graph->edges))
        return 1;
    int32_t number = graph->edges->count;
    if (!isNode(*graph, from) || !isNode(*graph, to))
        return 1;
    // A removed node has no list. The far end of a directed edge is not looked at: a cache miss.
    VxList *first = nodeAt(*graph, from)->edges;
    VxList *second = directed ? nullptr : nodeAt(*graph, to)->edges;
    if (!first || (!directed && !second) || appendToBoth(first, second, number))
        return 1;
    if (append(graph->edges, newEdge(from, to))) {
        dropLast(*first);
        if (second)
            dropLast(*second);
        return 1;
    }
    if (edge)
        *edge = edgeAt(*graph, number);
    return 0;
}

uint32_t VxGraphEdgeDel(VxGraph *graph, int32_t number)
{
    VxGraphEdge *edge = graph ? liveEdgeAt(*graph, number) : nullptr;
    if (!edge)
        return 1;
    const VxGraphNode *from = liveNodeAt(*graph, edge->from);
    const VxGraphNode *to = liveNodeAt(*graph, edge->to);
    if (from)
        forget(from->edges, number);
    if (to)
        forget(to->edges, number);
    edge->removed = 1;
    return 0;
}

uint32_t VxGraphNodeDel(VxGraph *graph, int32_t number)
{
    VxGraphNode *node = graph ? liveNodeAt(*graph, number) : nullptr;
    if (!node || !holds<int32_t>(node->edges))
        return 1;
    for (int32_t i = 0; i < node->edges->count; ++i) {
        auto edge = recordAt<int32_t>(node->edges, i);
        if (edge && *edge != none)
            VxGraphEdgeDel(graph, *edge);
    }
    VxListDel(&node->edges);
    node->removed = 1;
    return 0;
}

uint32_t VxGraphFree(VxGraph *graph)
{
    if (!graph)
        return 1;
    deleteEdgeLists<VxGraphNode>(graph->nodes);
    deleteEdgeLists<VxGraphRegion>(graph->regions);
    VxListDel(&graph->nodes);
    VxListDel(&graph->edges);
    VxListDel(&graph->regions);
    return 0;
}

uint32_t VxGraphWalkInit(VxGraph *graph)
{
    if (!graph || !holds<VxGraphNode>(graph->nodes) || !holds<VxGraphEdge>(graph->edges))
        return 1;
    for (int32_t i = 0; i < graph->nodes->count; ++i) {
        VxGraphNode *node = liveNodeAt(*graph, i);
        if (!node)
            continue;
        node->number = node->parentNode = node->parentEdge = node->low = node->low2 = none;
        node->val[0] = node->val[1] = -1;
    }
    for (int32_t i = 0; i < graph->edges->count; ++i) {
        VxGraphEdge *edge = liveEdgeAt(*graph, i);
        if (!edge)
            continue;
        edge->weight = 0;
        edge->cycle = 0;
    }
    return 0;
}
