// Depth-first and breadth-first walks over a graph.
//
// The steps of a walk stand on a stack or in a queue of its own, so that the
// length of a path costs no stack of the thread. A call-back may change the
// graph: records are looked up anew after each call.

#include <algorithm>
#include <new>
#include <vector>

#include "containers/graph_records.h"
#include "vx/graph.h"

namespace vx::containers {

namespace {

enum Mode : int32_t { preOrder, postOrder, breadthFirst };

constexpr int32_t onPath = -2;
constexpr uint32_t removedStart = 4;

/** A way out of a node. */
struct Way {
    int32_t edge = none;
    int32_t to = none;
};

class Walk {
public:
    Walk(VxGraph &graph, Mode mode, int32_t target, VxGraphWalkFn tell, int32_t &counter)
        : graph_(graph), mode_(mode), target_(target), tell_(tell), counter_(counter)
    {
    }

    /** Walk to the end, the target, or a result other than 0 of the call-back, which is then the result. */
    uint32_t from(int32_t start)
    {
        if (start == target_)
            arrive({none, start}, none);
        else if (report(none, start, none, VX_GRAPH_REACHED) && enter(start))
            mode_ == breadthFirst ? spread() : descend();
        return result_;
    }

    bool found() const noexcept { return found_; }

private:
    struct Step {
        int32_t node;
        int32_t next; ///< position in the node's list of edges
    };

    // The steps of a walk give false when it is over, with result_ set.

    bool stop(uint32_t result) noexcept
    {
        result_ = result;
        return false;
    }

    bool report(int32_t from, int32_t to, int32_t edge, int32_t event)
    {
        uint32_t answer = tell_ ? tell_(&graph_, from, to, edge, event) : 0;
        return answer == 0 || stop(answer);
    }

    /** The target is numbered before it is told of. */
    bool arrive(Way way, int32_t from)
    {
        VxGraphNode *node = liveNodeAt(graph_, way.to);
        if (!node)
            return stop(1);
        node->number = counter_++;
        found_ = true;
        return report(from, way.to, way.edge, VX_GRAPH_TARGET) && stop(0);
    }

    bool enter(int32_t number)
    {
        VxGraphNode *node = liveNodeAt(graph_, number);
        if (!node)
            return stop(1);
        node->number = mode_ == postOrder ? onPath : counter_++;
        if (mode_ == preOrder)
            node->low = node->low2 = node->number;
        steps_.push_back({number, 0});
        return true;
    }

    bool isReached(int32_t number) { return nodeAt(graph_, number)->number != none; }

    /** Reach a node over an edge for the first time. */
    bool reach(int32_t from, Way way)
    {
        VxGraphNode *node = liveNodeAt(graph_, way.to);
        node->parentNode = from;
        node->parentEdge = way.edge;
        if (way.to == target_)
            return arrive(way, from);
        return report(from, way.to, way.edge, VX_GRAPH_REACHED) && enter(way.to);
    }

    /** Move a step on to the next edge that can be followed; `way` stays empty behind the last. */
    bool advance(Step &step, Way &way)
    {
        VxGraphNode *node = liveNodeAt(graph_, step.node);
        if (!node || !holds<int32_t>(node->edges))
            return stop(1);
        while (step.next < node->edges->count) {
            const int32_t *number = recordAt<int32_t>(node->edges, step.next++);
            if (!number)
                return stop(1);
            if (*number == none || *number == node->parentEdge)
                continue;
            const VxGraphEdge *edge = edgeAt(graph_, *number);
            if (!edge)
                return stop(1);
            int32_t to = otherEnd(*edge, step.node);
            // An edge into a deleted node is live when only its other end lists it.
            if (edge->removed || edge->weight < 0 || !liveNodeAt(graph_, to))
                continue;
            way = {*number, to};
            return true;
        }
        return true;
    }

    bool closeCycle(int32_t from, Way way)
    {
        VxGraphEdge *edge = edgeAt(graph_, way.edge);
        if (!edge)
            return stop(1);
        edge->cycle = 1;
        return report(from, way.to, way.edge, VX_GRAPH_CYCLE);
    }

    /** An edge to a node already reached closes a cycle unless it leads down to a later number. */
    bool meet(int32_t from, Way way)
    {
        int32_t number = nodeAt(graph_, way.to)->number;
        if (number > nodeAt(graph_, from)->number)
            return true;
        if (!report(from, way.to, way.edge, VX_GRAPH_REACHED) || !closeCycle(from, way))
            return false;
        if (VxGraphNode *node = liveNodeAt(graph_, from))
            keepLow(*node, number);
        return true;
    }

    /** Keep the two smallest numbers. */
    static void keepLow(VxGraphNode &node, int32_t number) noexcept
    {
        if (number < node.low) {
            node.low2 = node.low;
            node.low = number;
        } else if (number > node.low) {
            node.low2 = std::min(node.low2, number);
        }
    }

    bool leave()
    {
        int32_t number = steps_.back().node;
        steps_.pop_back();
        VxGraphNode *node = liveNodeAt(graph_, number);
        if (!node)
            return stop(1);
        if (!report(node->parentNode, number, node->parentEdge, VX_GRAPH_FINISHED))
            return false;
        node = liveNodeAt(graph_, number);
        if (!node)
            return stop(1);
        if (mode_ == postOrder) {
            node->number = counter_++;
        } else if (!steps_.empty()) {
            if (VxGraphNode *parent = liveNodeAt(graph_, steps_.back().node)) {
                keepLow(*parent, node->low);
                keepLow(*parent, node->low2);
            }
        }
        return true;
    }

    void descend()
    {
        while (!steps_.empty()) {
            Way way;
            int32_t node = steps_.back().node;
            if (!advance(steps_.back(), way))
                return;
            if (!(way.edge == none ? leave() : isReached(way.to) ? meet(node, way) : reach(node, way)))
                return;
        }
    }

    /** The steps are the queue; those before `at` are done. */
    void spread()
    {
        for (size_t at = 0; at < steps_.size();) {
            Step step = steps_[at];
            Way way;
            if (!advance(step, way))
                return;
            steps_[at] = step;
            if (way.edge == none)
                ++at;
            else if (!(isReached(way.to) ? meetOnce(step.node, way) : reach(step.node, way)))
                return;
        }
    }

    /** Breadth first, an edge between reached nodes may come from both of its ends; it is told of once. */
    bool meetOnce(int32_t from, Way way)
    {
        const VxGraphEdge *edge = edgeAt(graph_, way.edge);
        return edge && (edge->cycle || closeCycle(from, way));
    }

    VxGraph &graph_;
    Mode mode_;
    int32_t target_;
    VxGraphWalkFn tell_;
    int32_t &counter_;
    std::vector<Step> steps_;
    uint32_t result_ = 0;
    bool found_ = false;
};

}

}

using namespace vx::containers;

uint32_t VxGraphWalk(VxGraph *graph, int32_t mode, int32_t start, int32_t target, VxGraphWalkFn fn,
                     int32_t *counter, int32_t *found)
{
    if (found)
        *found = 0;
    if (!graph || mode < preOrder || mode > breadthFirst || !counter)
        return 1;
    VxGraphNode *first = nodeAt(*graph, start);
    if (!first)
        return 1;
    if (first->removed)
        return removedStart;
    first->parentNode = first->parentEdge = none;
    Walk walk(*graph, static_cast<Mode>(mode), target, fn, *counter);
    uint32_t result = 1;
    try {
        result = walk.from(start);
    } catch (const std::bad_alloc &) {
    }
    if (found)
        *found = walk.found();
    return result;
}
