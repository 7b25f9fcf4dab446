// Strongly connected components.
//
// A post-order walk numbers the nodes as they are finished; walks over the
// reversed edges, begun at the node finished last, then reach one component
// each. The method is S. R. Kosaraju's, published by M. Sharir, "A strong-
// connectivity algorithm and its applications in data flow analysis",
// Computers & Mathematics with Applications 7 (1981).
//
// Both passes run over flat copies of what the lists hold. The records of the
// graph are written when all else is done, so that a failure changes nothing.

#include <cstring>
#include <new>
#include <vector>

#include "containers/graph_records.h"
#include "containers/memory.h"
#include "vx/graph.h"

namespace vx::containers {

namespace {

using Numbers = std::vector<int32_t>;

constexpr int32_t onPath = -2;

size_t at(int32_t number) noexcept
{
    return static_cast<size_t>(number);
}

/** The ways out of every node, one behind the other: those of node i at first[i] .. first[i + 1] - 1. */
struct Ways {
    Numbers first, to;
};

struct Ends {
    int32_t from = none;
    int32_t to = none;
};

/** A graph without what was removed: the ends of its edges, and the ways out of its nodes. */
struct Flat {
    int32_t nodes = 0;
    int32_t edges = 0;
    std::vector<uint8_t> live;
    std::vector<Ends> ends; ///< of each edge; none for one that was removed or leads to a removed node
    Ways ways;
    Numbers edgeOf; ///< the edge of each way
};

/** What the post-order walk finds. */
struct Finished {
    explicit Finished(const Flat &flat)
        : number(at(flat.nodes), none), parent(number), parentEdge(number), closes(at(flat.nodes), 0),
          cycle(at(flat.edges), 0)
    {
        order.reserve(at(flat.nodes));
    }

    Numbers number, parent, parentEdge;
    Numbers order; ///< the nodes as they were finished
    std::vector<uint8_t> closes, cycle;
};

void readNodes(VxGraph &graph, Flat &flat)
{
    flat.nodes = graph.nodes->count;
    flat.live.resize(at(flat.nodes));
    for (int32_t i = 0; i < flat.nodes; ++i)
        flat.live[at(i)] = liveNodeAt(graph, i) != nullptr;
}

bool readEdges(VxGraph &graph, Flat &flat)
{
    flat.edges = graph.edges->count;
    flat.ends.resize(at(flat.edges));
    for (int32_t i = 0; i < flat.edges; ++i) {
        const VxGraphEdge *edge = liveEdgeAt(graph, i);
        if (!edge)
            continue;
        if (edge->from < 0 || edge->from >= flat.nodes || edge->to < 0 || edge->to >= flat.nodes)
            return false;
        if (flat.live[at(edge->from)] && flat.live[at(edge->to)])
            flat.ends[at(i)] = {edge->from, edge->to};
    }
    return true;
}

/** The ways in the order of the nodes' lists. */
bool readWays(VxGraph &graph, Flat &flat)
{
    Ways &ways = flat.ways;
    ways.first.reserve(at(flat.nodes) + 1);
    ways.to.reserve(at(flat.edges));
    flat.edgeOf.reserve(at(flat.edges));
    for (int32_t i = 0; i < flat.nodes; ++i) {
        ways.first.push_back(static_cast<int32_t>(ways.to.size()));
        if (!flat.live[at(i)])
            continue;
        VxList *list = nodeAt(graph, i)->edges;
        if (!holds<int32_t>(list))
            return false;
        for (int32_t j = 0; j < list->count; ++j) {
            int32_t edge = *recordAt<int32_t>(list, j);
            if (edge == none)
                continue;
            if (edge < 0 || edge >= flat.edges)
                return false;
            Ends ends = flat.ends[at(edge)];
            if (ends.from == none)
                continue;
            ways.to.push_back(ends.from == i ? ends.to : ends.from);
            flat.edgeOf.push_back(edge);
        }
    }
    ways.first.push_back(static_cast<int32_t>(ways.to.size()));
    return true;
}

bool read(VxGraph &graph, Flat &flat)
{
    if (!holds<VxGraphNode>(graph.nodes) || !holds<VxGraphEdge>(graph.edges))
        return false;
    readNodes(graph, flat);
    return readEdges(graph, flat) && readWays(graph, flat);
}

/** One walk from `root`; the parents of the nodes on the path are the stack. */
void finishFrom(int32_t root, const Flat &flat, Numbers &next, Finished &done)
{
    done.number[at(root)] = onPath;
    for (int32_t node = root; node != none;) {
        int32_t way = next[at(node)]++;
        if (way == flat.ways.first[at(node) + 1]) {
            done.number[at(node)] = static_cast<int32_t>(done.order.size());
            done.order.push_back(node);
            node = done.parent[at(node)];
            continue;
        }
        int32_t edge = flat.edgeOf[at(way)];
        int32_t to = flat.ways.to[at(way)];
        if (edge == done.parentEdge[at(node)])
            continue;
        if (done.number[at(to)] == none) {
            done.number[at(to)] = onPath;
            done.parent[at(to)] = node;
            done.parentEdge[at(to)] = edge;
            node = to;
        } else if (done.number[at(to)] == onPath) {
            done.cycle[at(edge)] = 1;
            done.closes[at(node)] = 1;
        }
    }
}

Finished finish(const Flat &flat)
{
    Finished done(flat);
    Numbers next(flat.ways.first);
    for (int32_t i = 0; i < flat.nodes; ++i)
        if (flat.live[at(i)] && done.number[at(i)] == none)
            finishFrom(i, flat, next, done);
    return done;
}

/** The edges reversed, in their order, between nodes renumbered so that the one finished last is 0. */
Ways reversed(const Flat &flat, const Finished &done)
{
    size_t nodes = done.order.size();
    auto renumbered = [&](int32_t node) { return nodes - 1 - at(done.number[at(node)]); };
    Ways ways;
    ways.first.assign(nodes + 2, 0);
    for (Ends ends : flat.ends)
        if (ends.to != none)
            ++ways.first[renumbered(ends.to) + 2];
    for (size_t i = 2; i < ways.first.size(); ++i)
        ways.first[i] += ways.first[i - 1];
    ways.to.resize(at(ways.first.back()));
    // first[i + 1] runs from the start of node i's ways to their end.
    for (Ends ends : flat.ends)
        if (ends.to != none)
            ways.to[at(ways.first[renumbered(ends.to) + 1]++)] = static_cast<int32_t>(renumbered(ends.from));
    ways.first.pop_back();
    return ways;
}

/** Components one behind the other: component i is members[start[i]] .. members[start[i + 1] - 1]. */
struct Components {
    Numbers members, start;
};

void collectFrom(int32_t root, const Ways &ways, Numbers &next, Numbers &parent, Numbers &members)
{
    parent[at(root)] = root;
    members.push_back(root);
    for (int32_t node = root;;) {
        int32_t way = next[at(node)]++;
        if (way == ways.first[at(node) + 1]) {
            if (node == root)
                return;
            node = parent[at(node)];
            continue;
        }
        int32_t to = ways.to[at(way)];
        if (parent[at(to)] == none) {
            parent[at(to)] = node;
            members.push_back(to);
            node = to;
        }
    }
}

Components collect(const Ways &ways, const Numbers &order)
{
    Components found;
    size_t nodes = order.size();
    found.members.reserve(nodes);
    Numbers next(ways.first);
    Numbers parent(nodes, none);
    for (size_t i = 0; i < nodes; ++i) {
        if (parent[i] != none)
            continue;
        found.start.push_back(static_cast<int32_t>(found.members.size()));
        collectFrom(static_cast<int32_t>(i), ways, next, parent, found.members);
    }
    found.start.push_back(static_cast<int32_t>(nodes));
    for (int32_t &member : found.members)
        member = order[nodes - 1 - at(member)];
    return found;
}

void discard(VxList **lists, int32_t count)
{
    for (int32_t i = 0; i < count; ++i)
        VxListDel(&lists[i]);
}

uint32_t makeList(const int32_t *members, int32_t n, VxList *&list)
{
    Block<int32_t> block = allocate<int32_t>(n);
    if (!block)
        return 1;
    std::memcpy(block.get(), members, at(n) * sizeof *members);
    if (VxArrCnvrtList(sizeof *members, n, block.get(), &list))
        return 1;
    block.release();
    return 0;
}

/** An array of lists, null for no components. */
uint32_t makeLists(const Components &found, int32_t &count, VxList **&lists)
{
    auto n = static_cast<int32_t>(found.start.size()) - 1;
    if (n == 0)
        return 0;
    Block<VxList *> block = allocate<VxList *>(n);
    if (!block)
        return 1;
    for (int32_t i = 0; i < n; ++i) {
        int32_t start = found.start[at(i)];
        if (makeList(&found.members[at(start)], found.start[at(i) + 1] - start, block.get()[i])) {
            discard(block.get(), i);
            return 1;
        }
    }
    count = n;
    lists = block.release();
    return 0;
}

/** Leave the records as the post-order walk leaves them. */
void write(VxGraph &graph, const Flat &flat, const Finished &done)
{
    VxGraphWalkInit(&graph);
    for (int32_t i = 0; i < flat.nodes; ++i) {
        if (!flat.live[at(i)])
            continue;
        VxGraphNode &node = *nodeAt(graph, i);
        node.number = done.number[at(i)];
        node.parentNode = done.parent[at(i)];
        node.parentEdge = done.parentEdge[at(i)];
        if (done.closes[at(i)])
            node.low = onPath;
    }
    for (int32_t i = 0; i < flat.edges; ++i)
        if (done.cycle[at(i)])
            edgeAt(graph, i)->cycle = 1;
}

uint32_t components(VxGraph &graph, int32_t &count, VxList **&lists)
{
    Flat flat;
    if (!read(graph, flat))
        return 1;
    Finished done = finish(flat);
    Components found = collect(reversed(flat, done), done.order);
    if (makeLists(found, count, lists))
        return 1;
    write(graph, flat, done);
    return 0;
}

}

}

uint32_t VxGraphSCC(VxGraph *graph, int32_t *count, VxList ***components)
{
    if (!count || !components)
        return 1;
    *count = 0;
    *components = nullptr;
    if (!graph)
        return 1;
    try {
        return vx::containers::components(*graph, *count, *components);
    } catch (const std::bad_alloc &) {
        return 1;
    }
}
