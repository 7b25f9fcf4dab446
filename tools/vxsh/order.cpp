#include "tools/vxsh/order.h"

#include <algorithm>
#include <iterator>
#include <new>

#include "vx/graph.h"
#include "vx/mem.h"

namespace vxsh {

namespace {

using Needs = std::vector<std::vector<uint32_t>>;

constexpr uint32_t none = UINT32_MAX;

/** Memory is all that the toolkit's graphs can want here. */
void check(uint32_t failed)
{
    if (failed)
        throw std::bad_alloc();
}

struct Graph {
    VxGraph record{};

    ~Graph() { VxGraphFree(&record); }
};

struct Components {
    int32_t count = 0;
    VxList **lists = nullptr;

    ~Components()
    {
        for (int32_t i = 0; i < count; ++i)
            VxListDel(&lists[i]);
        void *block = lists;
        VxMemFree(&block);
    }

    std::vector<uint32_t> members(int32_t i) const
    {
        void *numbers = nullptr;
        check(VxListGetArray(lists[i], &numbers));
        auto first = static_cast<const uint32_t *>(numbers);
        std::vector<uint32_t> sorted(first, first + lists[i]->count);
        std::sort(sorted.begin(), sorted.end());
        return sorted;
    }
};

/** Calls found(members) for all that need each other, in ascending order; they come behind what they need. */
template <typename Found> void eachComponent(const Needs &needs, Found &&found)
{
    Graph graph;
    check(VxGraphMk(static_cast<int32_t>(needs.size()), &graph.record));
    for (size_t node = 0; node < needs.size(); ++node)
        for (uint32_t needed : needs[node])
            check(VxGraphAddEdge(&graph.record, static_cast<int32_t>(node), static_cast<int32_t>(needed), 1,
                                 nullptr));
    Components components;
    check(VxGraphSCC(&graph.record, &components.count, &components.lists));
    // Edges lead to later components.
    for (int32_t i = components.count; i-- > 0;)
        found(components.members(i));
}

/** Finds short circles; its tables are as long as the graph and made once. */
class CircleFinder {
public:
    explicit CircleFinder(const Needs &needs)
        : needs_(needs), component_(needs.size(), none), seen_(needs.size(), none), parent_(needs.size())
    {
    }

    Circle in(const std::vector<uint32_t> &members)
    {
        for (uint32_t member : members)
            component_[member] = members.front();
        Circle circle;
        for (uint32_t start : members) {
            // One walk is made whatever it costs, more only while there is effort left.
            if (!circle.path.empty() && (circle.path.size() == 1 || effort_ == 0))
                break;
            if (std::vector<uint32_t> path = shortestThrough(start, circle.path.size()); !path.empty())
                circle.path = std::move(path);
        }
        std::rotate(circle.path.begin(), std::min_element(circle.path.begin(), circle.path.end()),
                    circle.path.end());
        std::vector<uint32_t> sorted = circle.path;
        std::sort(sorted.begin(), sorted.end());
        std::set_difference(members.begin(), members.end(), sorted.begin(), sorted.end(),
                            std::back_inserter(circle.others));
        return circle;
    }

private:
    /** Breadth first from `start` back to it; empty when the way is not shorter than `limit` (0 for any). */
    std::vector<uint32_t> shortestThrough(uint32_t start, size_t limit)
    {
        queue_.assign(1, start);
        seen_[start] = start;
        size_t levelEnd = 1;
        size_t length = 1;
        for (size_t at = 0; at < queue_.size(); ++at) {
            if (at == levelEnd) {
                levelEnd = queue_.size();
                ++length;
            }
            if (limit && length >= limit)
                return {};
            uint32_t node = queue_[at];
            for (uint32_t needed : needs_[node]) {
                effort_ -= effort_ > 0;
                if (needed == start)
                    return pathTo(node, start);
                if (component_[needed] != component_[start] || seen_[needed] == start)
                    continue;
                seen_[needed] = start;
                parent_[needed] = node;
                queue_.push_back(needed);
            }
        }
        return {};
    }

    std::vector<uint32_t> pathTo(uint32_t last, uint32_t start) const
    {
        std::vector<uint32_t> path{last};
        while (path.back() != start)
            path.push_back(parent_[path.back()]);
        std::reverse(path.begin(), path.end());
        return path;
    }

    const Needs &needs_;
    std::vector<uint32_t> component_; ///< first member of the component of a node
    std::vector<uint32_t> seen_;      ///< the start of the last walk that met a node
    std::vector<uint32_t> parent_, queue_;
    size_t effort_ = 10'000'000; ///< edges that may yet be looked at for a shorter circle
};

bool needsItself(const Needs &needs, uint32_t node)
{
    return std::find(needs[node].begin(), needs[node].end(), node) != needs[node].end();
}

}

DependencyOrder dependencyOrder(const Needs &needs)
{
    DependencyOrder order;
    order.sequence.reserve(needs.size());
    CircleFinder circles(needs);
    eachComponent(needs, [&](const std::vector<uint32_t> &members) {
        if (members.size() == 1 && !needsItself(needs, members.front()))
            order.sequence.push_back(members.front());
        else
            order.circles.push_back(circles.in(members));
    });
    return order;
}

}
