#include "tools/vxsh/order.h"

#include <algorithm>
#include <iterator>

namespace vxsh {

namespace {

using Needs = std::vector<std::vector<uint32_t>>;

constexpr uint32_t none = UINT32_MAX;

/**
 * Strongly connected components by Tarjan's algorithm (R. Tarjan, "Depth-first
 * search and linear graph algorithms", 1972), with a stack of its own in place
 * of recursion. A component comes out behind those that it needs.
 */
class Components {
public:
    explicit Components(const Needs &needs) : needs_(needs), number_(needs.size(), none), low_(needs.size()) {}

    /** Calls found(members) for every component. */
    template <typename Found> void each(Found &&found)
    {
        for (uint32_t root = 0; root < needs_.size(); ++root)
            if (number_[root] == none)
                walk(root, found);
    }

private:
    struct Step {
        uint32_t node;
        size_t next; ///< the edge to follow next
    };

    void enter(uint32_t node)
    {
        number_[node] = low_[node] = counter_++;
        open_.push_back(node);
        steps_.push_back({node, 0});
    }

    template <typename Found> void walk(uint32_t root, Found &found)
    {
        enter(root);
        while (!steps_.empty()) {
            Step &step = steps_.back();
            uint32_t node = step.node;
            if (step.next == needs_[node].size()) {
                leave(node, found);
                continue;
            }
            uint32_t needed = needs_[node][step.next++];
            if (number_[needed] == none)
                enter(needed);
            else if (number_[needed] < closed)
                low_[node] = std::min(low_[node], number_[needed]);
        }
    }

    template <typename Found> void leave(uint32_t node, Found &found)
    {
        steps_.pop_back();
        if (!steps_.empty())
            low_[steps_.back().node] = std::min(low_[steps_.back().node], low_[node]);
        if (low_[node] != number_[node])
            return;
        auto first = std::find(open_.rbegin(), open_.rend(), node).base() - 1;
        std::vector<uint32_t> members(first, open_.end());
        open_.erase(first, open_.end());
        for (uint32_t member : members)
            number_[member] = closed;
        std::sort(members.begin(), members.end());
        found(std::move(members));
    }

    static constexpr uint32_t closed = none - 1; ///< number of a node whose component is complete

    const Needs &needs_;
    std::vector<uint32_t> number_, low_, open_;
    std::vector<Step> steps_;
    uint32_t counter_ = 0;
};

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
    size_t effort_ = 10'000'000;      ///< edges that may yet be looked at for a shorter circle
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
    Components(needs).each([&](std::vector<uint32_t> members) {
        if (members.size() == 1 && !needsItself(needs, members.front()))
            order.sequence.push_back(members.front());
        else
            order.circles.push_back(circles.in(members));
    });
    return order;
}

}
