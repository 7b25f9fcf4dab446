// Regions: closed loops of edges, each edge bordering at most two of them.

#include <algorithm>
#include <new>
#include <vector>

#include "containers/graph_records.h"
#include "vx/graph.h"

namespace vx::containers {

namespace {

using Numbers = std::vector<int32_t>;

constexpr uint32_t withoutRegion = 5;
constexpr double notCrossed = -1;

/** The region to rebuild, and whether the edge that led to it borders no other. */
struct Choice {
    int32_t region = none;
    int32_t edges = -1;
    bool atBorder = false;
};

VxGraphRegion *regionAt(VxGraph &graph, int32_t number)
{
    VxGraphRegion *region = recordAt<VxGraphRegion>(graph.regions, number);
    return region && holds<int32_t>(region->edges) ? region : nullptr;
}

/** Take the longest region that an edge borders, if longer than the choice so far. */
uint32_t chooseFrom(VxGraph &graph, const VxGraphEdge &edge, Choice &choice)
{
    for (int32_t i = 0; i < edge.regionCount && i < 2; ++i) {
        const VxGraphRegion *region = regionAt(graph, edge.region[i]);
        if (!region)
            return 1;
        if (region->edges->count > choice.edges)
            choice = {edge.region[i], region->edges->count, edge.regionCount == 1};
    }
    return 0;
}

uint32_t readNumbers(VxList *list, Numbers &numbers)
{
    if (!holds<int32_t>(list))
        return 1;
    numbers.reserve(static_cast<size_t>(list->count));
    for (int32_t i = 0; i < list->count; ++i) {
        const int32_t *number = recordAt<int32_t>(list, i);
        if (!number)
            return 1;
        if (*number != none)
            numbers.push_back(*number);
    }
    return 0;
}

/** Keep the walk from crossing edges with one region; `start` becomes a node of the last of these. */
void closeBorder(VxGraph &graph, int32_t &start)
{
    for (int32_t i = 0; i < graph.edges->count; ++i) {
        VxGraphEdge *edge = liveEdgeAt(graph, i);
        if (!edge || edge->regionCount != 1)
            continue;
        edge->weight = notCrossed;
        start = edge->from;
    }
}

/** What the call-back of the walk fills in. */
struct Loop {
    Numbers edges;
    bool outOfMemory = false;
};

/** The closing edge and the parent edges from `from` up to `to`; nothing when `to` does not stand above. */
Numbers loopOf(VxGraph &graph, int32_t from, int32_t to, int32_t edge)
{
    Numbers loop{edge};
    for (int32_t at = from; at != to;) {
        const VxGraphNode *node = nodeAt(graph, at);
        if (!node || node->parentNode == none)
            return {};
        loop.push_back(node->parentEdge);
        at = node->parentNode;
    }
    return loop;
}

uint32_t collectLoop(VxGraph *graph, int32_t from, int32_t to, int32_t edge, int32_t event)
{
    if (event != VX_GRAPH_CYCLE)
        return 0;
    auto loop = static_cast<Loop *>(graph->context);
    try {
        loop->edges = loopOf(*graph, from, to, edge);
    } catch (const std::bad_alloc &) {
        loop->outOfMemory = true;
    }
    return loop->outOfMemory || !loop->edges.empty();
}

/** The first cycle that a walk closes: 0 with its edges, or 1 when there is none. */
uint32_t findLoop(VxGraph &graph, int32_t start, Loop &loop)
{
    void *callersContext = graph.context;
    graph.context = &loop;
    int32_t counter = 0;
    VxGraphWalk(&graph, 0, start, none, collectLoop, &counter, nullptr);
    graph.context = callersContext;
    return loop.outOfMemory || loop.edges.empty();
}

bool borders(const VxGraphEdge &edge, int32_t region) noexcept
{
    return (edge.regionCount > 0 && edge.region[0] == region) ||
           (edge.regionCount > 1 && edge.region[1] == region);
}

void detach(VxGraphEdge &edge, int32_t region) noexcept
{
    if (!borders(edge, region))
        return;
    if (edge.region[0] == region)
        edge.region[0] = edge.region[1];
    edge.region[1] = none;
    --edge.regionCount;
}

void attach(VxGraphEdge &edge, int32_t region) noexcept
{
    edge.region[edge.regionCount++] = region;
}

/** True when each edge of the new loop borders at most one other region. */
bool hasPlace(VxGraph &graph, int32_t region, const Numbers &loop)
{
    return std::all_of(loop.begin(), loop.end(), [&](int32_t number) {
        const VxGraphEdge *edge = edgeAt(graph, number);
        return edge && edge->regionCount - borders(*edge, region) < 2;
    });
}

uint32_t makeList(const Numbers &numbers, VxList *&list)
{
    if (makeNumbers(list))
        return 1;
    for (int32_t number : numbers) {
        if (append(list, number)) {
            VxListDel(&list);
            return 1;
        }
    }
    return 0;
}

uint32_t replace(VxGraph &graph, int32_t number, const Numbers &old, const Numbers &loop)
{
    VxList *list = nullptr;
    if (!hasPlace(graph, number, loop) || makeList(loop, list))
        return 1;
    for (int32_t i : old)
        if (VxGraphEdge *edge = edgeAt(graph, i))
            detach(*edge, number);
    VxGraphRegion &region = *regionAt(graph, number);
    VxListDel(&region.edges);
    region.edges = list;
    for (int32_t i : loop)
        attach(*edgeAt(graph, i), number);
    return 0;
}

uint32_t rebuild(VxGraph &graph, const Choice &choice, int32_t start)
{
    Numbers old;
    if (readNumbers(regionAt(graph, choice.region)->edges, old) || VxGraphWalkInit(&graph))
        return 1;
    closeBorder(graph, start);
    Loop loop;
    if (findLoop(graph, start, loop))
        return 1;
    if (choice.atBorder && loop.edges.size() >= old.size())
        return 0;
    return replace(graph, choice.region, old, loop.edges);
}

uint32_t rebuildAtNode(VxGraph &graph, int32_t number)
{
    VxGraphNode *node = liveNodeAt(graph, number);
    Numbers edges;
    if (!node || readNumbers(node->edges, edges))
        return 1;
    Choice choice;
    for (int32_t i : edges)
        if (const VxGraphEdge *edge = liveEdgeAt(graph, i); edge && chooseFrom(graph, *edge, choice))
            return 1;
    return choice.region == none ? withoutRegion : rebuild(graph, choice, number);
}

uint32_t rebuildAlong(VxGraph &graph, VxList *path)
{
    Numbers edges;
    if (readNumbers(path, edges) || edges.empty())
        return 1;
    Choice choice;
    for (int32_t i : edges) {
        const VxGraphEdge *edge = liveEdgeAt(graph, i);
        if (!edge)
            return 1;
        if (edge->regionCount < 1)
            return withoutRegion;
        if (chooseFrom(graph, *edge, choice))
            return 1;
    }
    return rebuild(graph, choice, liveEdgeAt(graph, edges.front())->from);
}

template <typename Body> uint32_t guarded(Body &&body)
{
    try {
        return body();
    } catch (const std::bad_alloc &) {
        return 1;
    }
}

}

}

using namespace vx::containers;

uint32_t VxRgnFromNode(VxGraph *graph, int32_t node)
{
    return graph ? guarded([&] { return rebuildAtNode(*graph, node); }) : 1;
}

uint32_t VxRgnFromPath(VxGraph *graph, VxList *path)
{
    return graph && path ? guarded([&] { return rebuildAlong(*graph, path); }) : 1;
}
