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
#include "containers/small_array.h"
#include "vx/graph.h"

namespace vx::containers {

namespace {

using Numbers = std::vector<int32_t>;

constexpr int32_t closesCycle = -2;  ///< the low number of a node that leads back to its path
constexpr int32_t listIncrement = 4; ///< of a component's list

size_t at(int32_t number) noexcept
{
    return static_cast<size_t>(number);
}

/** Runs one behind the other: run i is items[first[i]] .. items[first[i + 1] - 1]. */
template <typename T> struct Runs {
    Numbers first;
    std::vector<T> items;
};

struct Way {
    int32_t to = none; ///< none: not to be gone
    int32_t edge = none;
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
    Runs<Way> ways;         ///< out of each node
};

/** Where a walk stands in one node, next to each other since they are needed at once. */
struct Place {
    int32_t next, end; ///< the ways not yet gone
    int32_t parent, parentEdge;
};

std::vector<Place> startOf(const Numbers &first)
{
    std::vector<Place> places(first.size() - 1);
    for (size_t i = 0; i < places.size(); ++i)
        places[i] = {first[i], first[i + 1], none, none};
    return places;
}

enum class Mark : uint8_t { unseen, onPath, done };

/** What the post-order walk finds. */
struct Finished {
    explicit Finished(const Flat &flat)
        : marks(at(flat.nodes), Mark::unseen), places(startOf(flat.ways.first)), closes(at(flat.nodes), 0),
          cycle(at(flat.edges), 0)
    {
        order.reserve(at(flat.nodes));
    }

    std::vector<Mark> marks; // few bytes, since a walk looks here for each way
    std::vector<Place> places;
    Numbers order;  ///< the nodes as they were finished
    Numbers number; ///< of each node in this order
    std::vector<uint8_t> closes, cycle;
};

bool readEdges(VxGraph &graph, Flat &flat)
{
    bool valid = true;
    auto isNode = [&](int32_t number) { return number >= 0 && number < flat.nodes; };
    flat.ends.resize(at(flat.edges));
    forEach<VxGraphEdge>(*graph.edges, [&](int32_t i, const VxGraphEdge &edge) {
        if (edge.removed)
            return;
        if (!isNode(edge.from) || !isNode(edge.to))
            valid = false;
        else if (flat.live[at(edge.from)] && flat.live[at(edge.to)])
            flat.ends[at(i)] = {edge.from, edge.to};
    });
    return valid;
}

/** The nodes and their edges, in the order of their lists. */
bool readNodes(VxGraph &graph, Flat &flat)
{
    bool valid = true;
    Runs<Way> &ways = flat.ways;
    flat.live.resize(at(flat.nodes));
    ways.first.reserve(at(flat.nodes) + 1);
    ways.items.reserve(at(flat.edges));
    for (int32_t i = 0; i < flat.nodes; ++i) {
        ways.first.push_back(static_cast<int32_t>(ways.items.size()));
        const VxGraphNode *node = liveNodeAt(graph, i);
        if (!node)
            continue;
        flat.live[at(i)] = 1;
        VxList *list = node->edges;
        if (!holds<int32_t>(list))
            return false;
        forEach<int32_t>(*list, [&](int32_t, int32_t edge) {
            valid = valid && edge >= none && edge < flat.edges;
            if (edge != none)
                ways.items.push_back({none, edge});
        });
    }
    ways.first.push_back(static_cast<int32_t>(ways.items.size()));
    return valid;
}

/** Where the ways lead: a pass of its own, in which the processor looks up many edges at once. */
void findTargets(Flat &flat)
{
    for (int32_t i = 0; i < flat.nodes; ++i)
        for (int32_t j = flat.ways.first[at(i)]; j < flat.ways.first[at(i) + 1]; ++j) {
            Way &way = flat.ways.items[at(j)];
            Ends ends = flat.ends[at(way.edge)];
            way.to = ends.from == i ? ends.to : ends.from;
        }
}

bool read(VxGraph &graph, Flat &flat)
{
    if (!holds<VxGraphNode>(graph.nodes) || !holds<VxGraphEdge>(graph.edges))
        return false;
    flat.nodes = graph.nodes->count;
    flat.edges = graph.edges->count;
    if (!readNodes(graph, flat) || !readEdges(graph, flat))
        return false;
    findTargets(flat);
    return true;
}

/** One walk from `root`; the parents of the nodes on the path are the stack. */
void finishFrom(int32_t root, const Flat &flat, Finished &done)
{
    done.marks[at(root)] = Mark::onPath;
    for (int32_t node = root; node != none;) {
        Place &place = done.places[at(node)];
        if (place.next == place.end) {
            done.marks[at(node)] = Mark::done;
            done.order.push_back(node);
            node = place.parent;
            continue;
        }
        Way way = flat.ways.items[at(place.next++)];
        if (way.to == none || way.edge == place.parentEdge)
            continue;
        Mark &mark = done.marks[at(way.to)];
        if (mark == Mark::unseen) {
            mark = Mark::onPath;
            done.places[at(way.to)].parent = node;
            done.places[at(way.to)].parentEdge = way.edge;
            node = way.to;
        } else if (mark == Mark::onPath) {
            done.cycle[at(way.edge)] = 1;
            done.closes[at(node)] = 1;
        }
    }
}

Finished finish(const Flat &flat)
{
    Finished done(flat);
    for (int32_t i = 0; i < flat.nodes; ++i)
        if (flat.live[at(i)] && done.marks[at(i)] == Mark::unseen)
            finishFrom(i, flat, done);
    done.number.assign(at(flat.nodes), none);
    for (size_t i = 0; i < done.order.size(); ++i)
        done.number[at(done.order[i])] = static_cast<int32_t>(i);
    return done;
}

/** The ends of the edges reversed, in their order, between nodes renumbered: the one finished last is 0. */
Runs<int32_t> reversed(const Flat &flat, const Finished &done)
{
    auto last = static_cast<int32_t>(done.order.size()) - 1;
    Runs<int32_t> ways;
    ways.first.assign(done.order.size() + 2, 0);
    std::vector<Ends> turned;
    turned.reserve(flat.ends.size());
    for (Ends ends : flat.ends) {
        if (ends.to == none)
            continue;
        turned.push_back({last - done.number[at(ends.to)], last - done.number[at(ends.from)]});
        ++ways.first[at(turned.back().from) + 2];
    }
    for (size_t i = 2; i < ways.first.size(); ++i)
        ways.first[i] += ways.first[i - 1];
    ways.items.resize(turned.size());
    // first[i + 1] runs from the start of node i's ways to their end.
    for (Ends ends : turned)
        ways.items[at(ways.first[at(ends.from) + 1]++)] = ends.to;
    ways.first.pop_back();
    return ways;
}

/** A walk over all that is reached from `root` and not yet seen. */
void collectFrom(int32_t root, const Runs<int32_t> &ways, std::vector<Mark> &marks,
                 std::vector<Place> &places, Numbers &members)
{
    marks[at(root)] = Mark::done;
    members.push_back(root);
    for (int32_t node = root; node != none;) {
        Place &place = places[at(node)];
        if (place.next == place.end) {
            node = place.parent;
            continue;
        }
        int32_t to = ways.items[at(place.next++)];
        if (marks[at(to)] == Mark::unseen) {
            marks[at(to)] = Mark::done;
            members.push_back(to);
            places[at(to)].parent = node;
            node = to;
        }
    }
}

/** The components, with the numbers that the nodes have in the graph. */
Runs<int32_t> collect(const Runs<int32_t> &ways, const Numbers &order)
{
    Runs<int32_t> found;
    size_t nodes = order.size();
    found.items.reserve(nodes);
    std::vector<Mark> marks(nodes, Mark::unseen);
    std::vector<Place> places = startOf(ways.first);
    for (size_t i = 0; i < nodes; ++i) {
        if (marks[i] != Mark::unseen)
            continue;
        found.first.push_back(static_cast<int32_t>(found.items.size()));
        collectFrom(static_cast<int32_t>(i), ways, marks, places, found.items);
    }
    found.first.push_back(static_cast<int32_t>(nodes));
    for (int32_t &member : found.items)
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
    list = newSmallArray(sizeof *members, n, listIncrement);
    if (!list)
        return 1;
    std::memcpy(list->data, members, at(n) * sizeof *members);
    list->count = n;
    return 0;
}

/** An array of lists, null for no components. */
uint32_t makeLists(const Runs<int32_t> &found, int32_t &count, VxList **&lists)
{
    auto n = static_cast<int32_t>(found.first.size()) - 1;
    if (n == 0)
        return 0;
    Block<VxList *> block = allocate<VxList *>(n);
    if (!block)
        return 1;
    for (int32_t i = 0; i < n; ++i) {
        int32_t first = found.first[at(i)];
        if (makeList(&found.items[at(first)], found.first[at(i) + 1] - first, block.get()[i])) {
            discard(block.get(), i);
            return 1;
        }
    }
    count = n;
    lists = block.release();
    return 0;
}

/** Leave the records as the post-order walk leaves them. */
void write(VxGraph &graph, const Finished &done)
{
    forEach<VxGraphNode>(*graph.nodes, [&](int32_t i, VxGraphNode &node) {
        if (node.removed)
            return;
        prepare(node);
        node.number = done.number[at(i)];
        node.parentNode = done.places[at(i)].parent;
        node.parentEdge = done.places[at(i)].parentEdge;
        if (done.closes[at(i)])
            node.low = closesCycle;
    });
    forEach<VxGraphEdge>(*graph.edges, [&](int32_t i, VxGraphEdge &edge) {
        if (edge.removed)
            return;
        prepare(edge);
        edge.cycle = done.cycle[at(i)];
    });
}

uint32_t components(VxGraph &graph, int32_t &count, VxList **&lists)
{
    Flat flat;
    if (!read(graph, flat))
        return 1;
    Finished done = finish(flat);
    Runs<int32_t> found = collect(reversed(flat, done), done.order);
    if (makeLists(found, count, lists))
        return 1;
    write(graph, done);
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
