// Strongly connected components.
//
// A post-order walk numbers the nodes as they are finished; walks over the
// reversed edges, begun at the node finished last, then reach one component
// each. The method is S. R. Kosaraju's, published by M. Sharir, "A strong-
// connectivity algorithm and its applications in data flow analysis",
// Computers & Mathematics with Applications 7 (1981).
//
// The first walk already tells of most nodes that are alone. A way back to a
// node on the path joins all that is finished from then on until that node
// is. The nodes of a component are joined: only ways to the path lead to nodes
// finished later, so those on the round from the first finished to the last
// and back pass over all between. And what is not joined is alone: an edge
// into a component from outside comes from a node finished after all of it,
// which the second walks have taken by then. So they need only joined nodes.
// This holds when the ways go over each edge; else all nodes are joined.
//
// Both walks run over a flat copy of what the lists hold. The records of the
// graph are written when all else is done, so that a failure changes nothing.

#include <new>
#include <utility>

#include "containers/graph_flat.h"
#include "containers/graph_records.h"
#include "containers/memory.h"
#include "containers/small_array.h"
#include "vx/graph.h"

namespace vx::containers {

namespace {

constexpr int32_t closesCycle = -2;  ///< the low number of a node that leads back to its path
constexpr int32_t listIncrement = 4; ///< of a component's list

/** What is known of a node, in few bytes, since the walks look here for each way. */
enum class Mark : uint8_t {
    unseen = 0,
    onPath = 1,
    entered = 2, ///< on the path, and a way leads back into it
    closes = 4,  ///< a way leads back from it to the path; this stays
    joined = 8,  ///< finished, and not known to be alone
    alone = 16,  ///< in its component
    taken = 32   ///< by its component, or removed
};

constexpr Mark operator|(Mark a, Mark b) noexcept
{
    return static_cast<Mark>(static_cast<uint8_t>(a) | static_cast<uint8_t>(b));
}

constexpr Mark operator&(Mark a, Mark b) noexcept
{
    return static_cast<Mark>(static_cast<uint8_t>(a) & static_cast<uint8_t>(b));
}

constexpr bool has(Mark marks, Mark mark) noexcept
{
    return (marks & mark) != Mark::unseen;
}

/** A node that is finished. */
struct Visit {
    int32_t node;
    int32_t parent;
    int32_t way; ///< that led here, none to a root
};

/** What the post-order walk finds. A way that closes a cycle now leads to the complement of its node. */
struct Visits {
    Room<Mark> marks;
    Room<Visit> order; ///< as nodes were finished
    int32_t count = 0; ///< of them
    int32_t joined = 0;
};

class FirstWalk {
public:
    explicit FirstWalk(FlatGraph &flat)
        : flat_(flat), path_(flat.nodes + 1),
          open_(flat.regular ? 0 : 1), found_{Room<Mark>(flat.nodes), Room<Visit>(flat.nodes)}
    {
    }

    Visits fromEach()
    {
        path_[0] = {none, 0, 0};
        for (int32_t i = 0; i < flat_.nodes; ++i)
            found_.marks[i] = flat_.removed[i] ? Mark::taken : Mark::unseen;
        for (int32_t i = 0; i < flat_.nodes; ++i)
            if (found_.marks[i] == Mark::unseen)
                from(i);
        return std::move(found_);
    }

private:
    struct Step {
        int32_t node;
        int32_t next; ///< the first way not yet gone
        int32_t end;  ///< of the ways
    };

    Step enter(int32_t node)
    {
        found_.marks[node] = Mark::onPath;
        return {node, flat_.start[node], flat_.start[node + 1]};
    }

    void from(int32_t root)
    {
        for (Step step = enter(root); step.node != none;) {
            if (advance(step)) {
                path_[++depth_] = step;
                step = enter(flat_.to[step.next - 1]);
            } else {
                finish(step);
                step = path_[depth_ > 0 ? depth_-- : 0];
            }
        }
    }

    /** Go the ways of a node up to one that leads to an unseen node; false behind the last. */
    bool advance(Step &step)
    {
        while (step.next < step.end) {
            int32_t way = step.next++;
            if (!flat_.regular && ledTo(way))
                continue;
            Mark mark = found_.marks[flat_.to[way]];
            if (mark == Mark::unseen)
                return true;
            if (has(mark, Mark::onPath))
                close(step.node, way);
        }
        return false;
    }

    /** True when a way goes over the edge over which the walk came to its node. */
    bool ledTo(int32_t way) const
    {
        const Step &before = path_[depth_];
        return before.node != none && flat_.edge[way] == flat_.edge[before.next - 1];
    }

    void close(int32_t node, int32_t way)
    {
        Mark &mark = found_.marks[flat_.to[way]];
        open_ += !has(mark, Mark::entered);
        mark = mark | Mark::entered;
        // Only the way to the parent can go over the edge that led here, but in irregular lists.
        if (flat_.to[way] == path_[depth_].node && ledTo(way))
            return;
        flat_.to[way] = ~flat_.to[way];
        found_.marks[node] = found_.marks[node] | Mark::closes;
    }

    void finish(const Step &step)
    {
        Mark &mark = found_.marks[step.node];
        Mark state = open_ > 0 ? Mark::joined : Mark::alone;
        const Step &before = path_[depth_];
        found_.order[found_.count++] = {step.node, before.node, before.next - 1};
        found_.joined += open_ > 0;
        open_ -= has(mark, Mark::entered);
        mark = (mark & Mark::closes) | state;
    }

    FlatGraph &flat_;
    Room<Step> path_; ///< to the node where the walk is, behind a first step of no node
    int32_t depth_ = 0;
    int32_t open_; ///< nodes on the path that a way leads back into
    Visits found_;
};

/** Edges reversed, in their order: those into node i lead from items[start[i]] .. items[start[i + 1] - 1]. */
struct Reversed {
    Room<int32_t> start;
    Room<int32_t> items;
};

/** The edges between nodes that are joined. */
Reversed reverse(const FlatGraph &flat, const Room<Mark> &marks)
{
    Reversed ways;
    auto forJoined = [&](auto use) {
        for (int32_t i = 0; i < flat.edges; ++i) {
            Ends ends = flat.ends[i];
            if (ends.from != none && has(marks[ends.to] & marks[ends.from], Mark::joined))
                use(ends);
        }
    };
    ways.start = Room<int32_t>::zeros(flat.nodes + 2);
    forJoined([&](Ends ends) { ++ways.start[ends.to + 2]; });
    for (int32_t i = 0; i < flat.nodes; ++i)
        ways.start[i + 2] += ways.start[i + 1];
    ways.items = Room<int32_t>(ways.start[flat.nodes + 1]);
    // start[i + 1] runs from the start of node i's ways to their end.
    forJoined([&](Ends ends) { ways.items[ways.start[ends.to + 1]++] = ends.from; });
    return ways;
}

/** Components one behind the other: the i-th is members[first[i]] .. members[first[i + 1] - 1]. */
struct Components {
    Room<int32_t> first;
    Room<int32_t> members;
    int32_t count = 0;
};

/** The walks over the edges reversed. */
class SecondWalk {
public:
    SecondWalk(const FlatGraph &flat, const Visits &visits) : visits_(visits), path_(visits.joined)
    {
        found_.first = Room<int32_t>(visits.count + 1);
        found_.members = Room<int32_t>(visits.count);
        if (visits.joined > 0)
            ways_ = reverse(flat, visits.marks);
    }

    Components fromEach()
    {
        for (int32_t i = visits_.count - 1; i >= 0; --i) {
            int32_t node = visits_.order[i].node;
            if (has(visits_.marks[node], Mark::taken))
                continue;
            found_.first[found_.count++] = members_;
            if (has(visits_.marks[node], Mark::joined))
                from(node);
            else
                found_.members[members_++] = node;
        }
        found_.first[found_.count] = members_;
        return std::move(found_);
    }

private:
    /** The ways of a node that are not yet gone. */
    struct Step {
        int32_t next;
        int32_t end;
    };

    Step take(int32_t node)
    {
        Mark &mark = visits_.marks[node];
        mark = (mark & Mark::closes) | Mark::taken;
        found_.members[members_++] = node;
        return {ways_.start[node], ways_.start[node + 1]};
    }

    void from(int32_t root)
    {
        int32_t depth = 0;
        for (Step step = take(root);;) {
            while (step.next < step.end && has(visits_.marks[ways_.items[step.next]], Mark::taken))
                ++step.next;
            if (step.next < step.end) {
                int32_t next = ways_.items[step.next++];
                if (step.next < step.end)
                    path_[depth++] = step;
                step = take(next);
            } else if (depth > 0) {
                step = path_[--depth];
            } else {
                return;
            }
        }
    }

    const Visits &visits_;
    Reversed ways_;
    Room<Step> path_; ///< but for nodes of which no way is left
    Components found_;
    int32_t members_ = 0;
};

/** What the records are to hold. */
struct Result {
    struct Node {
        int32_t number;
        int32_t parent;
        int32_t parentEdge;
        int32_t low;
    };
    Room<Node> nodes;
    Room<bool> cycle; ///< edges
};

Result resultOf(const FlatGraph &flat, const Visits &visits)
{
    Result result{Room<Result::Node>(flat.nodes), Room<bool>::zeros(flat.edges)};
    for (int32_t i = 0; i < visits.count; ++i) {
        Visit visit = visits.order[i];
        result.nodes[visit.node] = {i, visit.parent, visit.way == none ? none : flat.edge[visit.way],
                                    has(visits.marks[visit.node], Mark::closes) ? closesCycle : none};
    }
    for (int32_t way = 0; way < flat.start[flat.nodes]; ++way)
        if (flat.to[way] < 0)
            result.cycle[flat.edge[way]] = true;
    return result;
}

void discard(VxList **lists, int32_t count)
{
    for (int32_t i = 0; i < count; ++i)
        VxListDel(&lists[i]);
}

/** An array of lists, null for no components. */
uint32_t makeLists(const Components &found, int32_t &count, VxList **&lists)
{
    if (found.count == 0)
        return 0;
    Block<VxList *> block = allocate<VxList *>(found.count);
    if (!block)
        return 1;
    for (int32_t i = 0; i < found.count; ++i) {
        int32_t first = found.first[i];
        block.get()[i] = newSmallArrayOf(sizeof(int32_t), &found.members[first], found.first[i + 1] - first,
                                         listIncrement);
        if (!block.get()[i]) {
            discard(block.get(), i);
            return 1;
        }
    }
    count = found.count;
    lists = block.release();
    return 0;
}

/** Leave the records as the post-order walk leaves them. */
void write(VxGraph &graph, const Result &result)
{
    forEach<VxGraphNode>(*graph.nodes, [&](int32_t i, VxGraphNode &node) {
        if (node.removed)
            return;
        const Result::Node &found = result.nodes[i];
        prepare(node);
        node.number = found.number;
        node.parentNode = found.parent;
        node.parentEdge = found.parentEdge;
        node.low = found.low;
    });
    forEach<VxGraphEdge>(*graph.edges, [&](int32_t i, VxGraphEdge &edge) {
        if (edge.removed)
            return;
        prepare(edge);
        edge.cycle = result.cycle[i];
    });
}

uint32_t components(VxGraph &graph, int32_t &count, VxList **&lists)
{
    FlatGraph flat;
    if (!flatten(graph, flat))
        return 1;
    Visits visits = FirstWalk(flat).fromEach();
    Components found = SecondWalk(flat, visits).fromEach();
    Result result = resultOf(flat, visits);
    if (makeLists(found, count, lists))
        return 1;
    write(graph, result);
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
