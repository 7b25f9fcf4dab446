// Graphs: nodes and edges, made and removed. Walks, components and regions
// have files of their own.

#include "vx/graph.h"

#include <algorithm>
#include <new>

#include "containers/graph_records.h"
#include "containers/memory.h"
#include "containers/small_array.h"

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

inline VxGraphNode newNode(VxList *edges) noexcept
{
    return {.edges = edges,
            .reserved = 0,
            .number = none,
            .parentNode = none,
            .parentEdge = none,
            .low = none,
            .low2 = none,
            .val = {-1, -1},
            .removed = 0,
            .user = nullptr};
}

inline VxGraphEdge newEdge(int32_t from, int32_t to) noexcept
{
    return {.from = from,
            .to = to,
            .regionCount = 0,
            .region = {none, none},
            .weight = 0,
            .cycle = 0,
            .removed = 0};
}

// The lists of a graph's nodes are one block, so that a list can be fetched
// while its node is still on its way. The block is the chain of the list of
// nodes, which has no other. More nodes than a block can serve have lists of
// their own.

/** A node's list with its first slots: two lines of a cache. */
struct alignas(64) NodeList {
    VxList record;
    int32_t numbers[slots];
};

constexpr int64_t mostInOneBlock = INT32_MAX / static_cast<int64_t>(sizeof(NodeList)) - 1;

/** Where the lists are; null if they are no block. */
void *listBlock(const VxList *nodes) noexcept
{
    return nodes && nodes->layout == array && markOf(*nodes) > 1 ? nodes->order : nullptr;
}

/** Where a node's list is in the block, which has room for one more than there are nodes. */
uintptr_t addressIn(const void *block, int32_t node) noexcept
{
    constexpr uintptr_t alignment = alignof(NodeList);
    uintptr_t first = (reinterpret_cast<uintptr_t>(block) + alignment - 1) & ~(alignment - 1);
    return first + static_cast<uintptr_t>(node) * sizeof(NodeList);
}

/** What the lists in the block are copies of. */
NodeList emptyList() noexcept
{
    NodeList list{};
    makeSmallArray(&list, sizeof(int32_t), slots, slots);
    return list;
}

/** Put an empty list where it stays. */
inline VxList *place(const NodeList &empty, uintptr_t address) noexcept
{
    auto &list = *new (reinterpret_cast<void *>(address)) NodeList(empty);
    list.record.data = list.numbers;
    lendRecord(list.record);
    return &list.record;
}

/** Slots for n nodes, as many as growing by increments would make. */
uint32_t makeRoom(VxList &nodes, int32_t n)
{
    int32_t missing = std::max(n - nodes.capacity, 0);
    return VxListResizeArr(&nodes, (missing + slots - 1) / slots * slots);
}

/** Nodes in the slots from the first free one that lie side by side, up to the n-th. */
bool fillSlots(VxList &nodes, int32_t n)
{
    const NodeList empty = emptyList();
    void *block = listBlock(&nodes);
    int32_t first = nodes.count;
    int32_t run = std::min({n - first, nodes.capacity - first, runFrom(nodes, first)});
    auto node = slotIn<VxGraphNode>(nodes, first);
    for (int32_t i = 0; i < run; ++i, ++nodes.count) {
        VxList *list =
            block ? place(empty, addressIn(block, first + i)) : newSmallArray(sizeof(int32_t), slots, slots);
        if (!list)
            return false;
        node[i] = newNode(list);
    }
    return true;
}

uint32_t makeNodes(VxList &nodes, int32_t n)
{
    constexpr int32_t atOnce = 100; // new slots are zeros, and still in the cache when they are filled
    if (n > 0 && n <= mostInOneBlock) {
        Block<NodeList> block = allocate<NodeList>(int64_t{n} + 1);
        if (!block)
            return 1;
        heap::preferLargePages(block.get(), (static_cast<size_t>(n) + 1) * sizeof(NodeList));
        nodes.order = reinterpret_cast<VxLnkNode *>(block.release());
    }
    while (nodes.count < n)
        if (makeRoom(nodes, nodes.count + std::min(n - nodes.count, atOnce)) || !fillSlots(nodes, n))
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

bool isNode(const VxList &nodes, int32_t number) noexcept
{
    return static_cast<uint32_t>(number) < static_cast<uint32_t>(nodes.count);
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

/** Add an edge where lists may grow or be refused. */
[[gnu::noinline]] uint32_t addEdge(VxGraph *graph, int32_t from, int32_t to, bool directed,
                                   VxGraphEdge **edge)
{
    if (edge)
        *edge = nullptr;
    if (!graph || !holds<VxGraphEdge>(graph->edges) || !holds<VxGraphNode>(graph->nodes) ||
        !isNode(*graph->nodes, from) || !isNode(*graph->nodes, to))
        return 1;
    int32_t number = graph->edges->count;
    // A removed node has no list.
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

// A large graph is scattered over memory, and a processor that has few
// instructions to go to the next edge waits for the memory of several at once:
// that is most of the time. So edges that find free slots go a straight way,
// in two steps, for which the registers suffice.

/** The node that an edge leaves, on its way from memory with its list; null when there is more to see to. */
inline const VxGraphNode *fetch(const VxGraph *graph, int32_t from, int32_t to) noexcept
{
    const VxList *nodes = graph ? graph->nodes : nullptr;
    if (!isArrayOf<VxGraphNode>(nodes) || !isNode(*nodes, from) || !isNode(*nodes, to))
        return nullptr;
    auto node = slotIn<const VxGraphNode>(*nodes, from);
    // Its list is where the block says if the lists are one; any address can be asked for.
    uintptr_t list = addressIn(nodes->order, from);
    __builtin_prefetch(node);
    __builtin_prefetch(reinterpret_cast<const void *>(list), 1);
    __builtin_prefetch(reinterpret_cast<const void *>(list + sizeof(NodeList) / 2), 1);
    return node;
}

/** Add a directed edge. Its far end is not looked at: a cache miss. */
[[gnu::noinline]] uint32_t addInPlace(VxGraph *graph, int32_t from, int32_t to, const VxGraphNode *node,
                                      VxGraphEdge **added)
{
    VxList *edges = graph->edges;
    bool free = isArrayOf<VxGraphEdge>(edges) && edges->count < edges->capacity;
    auto edge = free ? slotIn<VxGraphEdge>(*edges, edges->count) : nullptr;
    VxList *list = node->edges;
    if (!edge || !isArrayOf<int32_t>(list) || list->pageLevel != 0 || list->count >= list->capacity)
        return addEdge(graph, from, to, true, added);
    static_cast<int32_t *>(list->data)[list->count++] = edges->count++;
    *edge = newEdge(from, to);
    if (added)
        *added = edge;
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
    if (holds<T>(records))
        forEach<T>(*records, [](int32_t, T &record) { VxListDel(&record.edges); });
}

}

uint32_t makeNumbers(VxList *&list)
{
    list = newSmallArray(sizeof(int32_t), slots, slots);
    return list ? 0 : 1;
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
    const VxGraphNode *node = fetch(graph, from, to);
    if (node && directed)
        return addInPlace(graph, from, to, node, edge);
    if (node)
        fetch(graph, to, from);
    return addEdge(graph, from, to, directed != 0, edge);
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
    void *lists = listBlock(graph->nodes);
    deleteEdgeLists<VxGraphNode>(graph->nodes);
    deleteEdgeLists<VxGraphRegion>(graph->regions);
    VxListDel(&graph->nodes);
    VxListDel(&graph->edges);
    VxListDel(&graph->regions);
    return VxMemFree(&lists);
}

uint32_t VxGraphWalkInit(VxGraph *graph)
{
    if (!graph || !holds<VxGraphNode>(graph->nodes) || !holds<VxGraphEdge>(graph->edges))
        return 1;
    forEach<VxGraphNode>(*graph->nodes, [](int32_t, VxGraphNode &node) {
        if (!node.removed)
            prepare(node);
    });
    forEach<VxGraphEdge>(*graph->edges, [](int32_t, VxGraphEdge &edge) {
        if (!edge.removed)
            prepare(edge);
    });
    return 0;
}
