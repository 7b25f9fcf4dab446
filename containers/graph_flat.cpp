// Reading a graph into flat arrays.

#include "containers/graph_flat.h"

#include <algorithm>
#include <array>

#include "containers/graph_records.h"

namespace vx::containers {

namespace {

bool isBelow(int32_t number, int32_t count) noexcept
{
    return static_cast<uint32_t>(number) < static_cast<uint32_t>(count);
}

/** The ends of all edges, and how many are not removed; false when one leads nowhere. */
bool readEdges(VxGraph &graph, FlatGraph &flat, int32_t &live)
{
    bool valid = true;
    flat.ends = Room<Ends>(flat.edges);
    bool all =
        forEach<VxGraphEdge>(*graph.edges, [&, nodes = flat.nodes](int32_t i, const VxGraphEdge &edge) {
            flat.ends[i] = edge.removed ? Ends{none, none} : Ends{edge.from, edge.to};
            valid = valid && (edge.removed || (isBelow(edge.from, nodes) && isBelow(edge.to, nodes)));
            live += edge.removed == 0;
        });
    return all && valid;
}

/** Reads the lists of nodes. What edges a list names is fetched while the lists behind it are read. */
class ListReader {
public:
    explicit ListReader(FlatGraph &flat) : flat_(flat)
    {
        flat.start = Room<int32_t>(flat.nodes + 1);
        flat.start[0] = 0;
        flat.to = Room<int32_t>(flat.edges); // suffices for a directed graph
        flat.edge = Room<int32_t>(flat.edges);
    }

    /** The list of the next node; null for a removed node. */
    void add(VxList *list)
    {
        if (list)
            copy(*list);
        ends_[lists_++] = waiting_;
        if (lists_ == ends_.size())
            findTargets();
    }

    void findTargets()
    {
        int32_t ways = flat_.start[node_];
        flat_.to.reserve(int64_t{ways} + waiting_, ways);
        flat_.edge.reserve(int64_t{ways} + waiting_, ways);
        int32_t at = 0;
        for (size_t i = 0; i < lists_; ++i, ++node_) {
            int32_t last = none; // a list in ascending order names no edge twice
            for (; at < ends_[i]; ++at) {
                int32_t edge = numbers_[at];
                Ends ends = flat_.ends[edge];
                bool leaves = ends.from == node_;
                flat_.to[ways] = leaves ? ends.to : ends.from;
                flat_.edge[ways] = edge;
                ways += ends.from != none;
                foreign_ = foreign_ || (!leaves && ends.to != node_ && ends.from != none);
                listed_ += leaves && edge > last;
                last = std::max(last, edge);
            }
            flat_.start[node_ + 1] = ways;
        }
        waiting_ = 0;
        lists_ = 0;
    }

    /** Whether the lists of a graph with so many edges name each where it leads from, and none elsewhere. */
    bool regular(int32_t edges) const noexcept { return listed_ == edges && !foreign_; }

    /** False when a list names an edge that there is not. */
    bool valid() const noexcept { return valid_; }

private:
    void copy(VxList &list)
    {
        numbers_.reserve(int64_t{waiting_} + list.count, waiting_);
        if (isArrayOf<int32_t>(&list) && list.pageLevel == 0) [[likely]] {
            copy(static_cast<const int32_t *>(list.data), list.count);
            return;
        }
        bool all = forEachRun<int32_t>(
            list, [this](int32_t, const int32_t *numbers, int32_t n) { copy(numbers, n); });
        valid_ = valid_ && all;
    }

    void copy(const int32_t *numbers, int32_t n)
    {
        for (int32_t i = 0; i < n; ++i) {
            int32_t edge = numbers[i];
            if (!isBelow(edge, flat_.edges)) {
                valid_ = valid_ && edge == none;
                continue;
            }
            __builtin_prefetch(&flat_.ends[edge]);
            numbers_[waiting_++] = edge;
        }
    }

    FlatGraph &flat_;
    Room<int32_t> numbers_;          ///< of edges, in the lists that wait
    int32_t waiting_ = 0;            ///< of the numbers
    std::array<int32_t, 32> ends_{}; ///< of each list that waits in the numbers
    size_t lists_ = 0;
    int32_t node_ = 0;   ///< the first that waits
    int32_t listed_ = 0; ///< edges that the node lists which they lead from, each counted once
    bool foreign_ = false;
    bool valid_ = true;
};

}

bool flatten(VxGraph &graph, FlatGraph &flat)
{
    if (!holds<VxGraphNode>(graph.nodes) || !holds<VxGraphEdge>(graph.edges))
        return false;
    flat.nodes = graph.nodes->count;
    flat.edges = graph.edges->count;
    int32_t live = 0;
    if (!readEdges(graph, flat, live))
        return false;
    flat.removed = Room<bool>(flat.nodes);
    ListReader lists(flat);
    bool holdEdges = true;
    bool all = forEach<VxGraphNode>(*graph.nodes, [&](int32_t i, const VxGraphNode &node) {
        flat.removed[i] = node.removed != 0;
        holdEdges = holdEdges && (node.removed || holds<int32_t>(node.edges));
        if (holdEdges)
            lists.add(node.removed ? nullptr : node.edges);
    });
    if (!all || !holdEdges || !lists.valid())
        return false;
    lists.findTargets();
    flat.regular = lists.regular(live);
    return true;
}

}
