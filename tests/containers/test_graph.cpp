#include <algorithm>
#include <deque>
#include <iterator>
#include <random>
#include <tuple>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/containers/graph_fixture.h"
#include "tests/session/started_toolkit.h"
#include "tests/support/faults.h"

namespace {

using testing::ElementsAre;
using vx::test::Graph;

enum Mode { preOrder, postOrder, breadthFirst };
enum EventKind { reached, finished, targetReached, cycleClosed };

constexpr int32_t onPath = -2;

/** from, to, edge, event, and the number that `to` had at the time. */
using Event = std::tuple<int32_t, int32_t, int32_t, int32_t, int32_t>;
using Events = std::vector<Event>;

uint32_t record(VxGraph *graph, int32_t from, int32_t to, int32_t edge, int32_t event)
{
    int32_t number = Graph::at<VxGraphNode>(graph->nodes, to)->number;
    static_cast<Events *>(graph->context)->push_back({from, to, edge, event, number});
    return 0;
}

/** The walks as the header tells them, by recursion, on records of its own. */
struct Model {
    struct Node {
        int32_t number = -1, parent = -1, parentEdge = -1;
        std::vector<int32_t> lows;
    };

    Graph &graph;
    int32_t mode, target;
    std::vector<Node> nodes;
    std::vector<bool> cycle;
    Events events;
    int32_t counter = 0;
    bool found = false;

    Model(Graph &g, int32_t walkMode, int32_t end)
        : graph(g), mode(walkMode), target(end), nodes(static_cast<size_t>(g.nodes())),
          cycle(static_cast<size_t>(g.edges()))
    {
    }

    Node &at(int32_t i) { return nodes[static_cast<size_t>(i)]; }

    void tell(int32_t from, int32_t to, int32_t edge, int32_t event)
    {
        events.push_back({from, to, edge, event, at(to).number});
    }

    std::vector<std::pair<int32_t, int32_t>> ways(int32_t u)
    {
        std::vector<std::pair<int32_t, int32_t>> all;
        for (int32_t e : graph.incident(u)) {
            if (e == -1 || graph.edge(e).weight < 0)
                continue;
            int32_t v = graph.edge(e).from == u ? graph.edge(e).to : graph.edge(e).from;
            if (!graph.node(v).removed)
                all.push_back({e, v});
        }
        return all;
    }

    void run(int32_t start)
    {
        if (start == target) {
            at(start).number = counter++;
            found = true;
            tell(-1, start, -1, targetReached);
            return;
        }
        tell(-1, start, -1, reached);
        mode == breadthFirst ? spread(start) : descend(start);
    }

    /** True when the target was reached. */
    bool take(int32_t u, int32_t e, int32_t v)
    {
        at(v).parent = u;
        at(v).parentEdge = e;
        if (v == target) {
            at(v).number = counter++;
            found = true;
        }
        tell(u, v, e, found ? targetReached : reached);
        return found;
    }

    void descend(int32_t u)
    {
        at(u).number = mode == postOrder ? onPath : counter++;
        for (auto [e, v] : ways(u)) {
            if (e == at(u).parentEdge)
                continue;
            if (at(v).number == -1) {
                if (take(u, e, v))
                    return;
                descend(v);
                if (found)
                    return;
                at(u).lows.insert(at(u).lows.end(), at(v).lows.begin(), at(v).lows.end());
            } else if (at(v).number <= at(u).number) {
                tell(u, v, e, reached);
                cycle[static_cast<size_t>(e)] = true;
                tell(u, v, e, cycleClosed);
                at(u).lows.push_back(at(v).number);
            }
        }
        tell(at(u).parent, u, at(u).parentEdge, finished);
        if (mode == postOrder)
            at(u).number = counter++;
    }

    void spread(int32_t start)
    {
        at(start).number = counter++;
        for (std::deque<int32_t> queue{start}; !queue.empty(); queue.pop_front()) {
            int32_t u = queue.front();
            for (auto [e, v] : ways(u)) {
                if (e == at(u).parentEdge)
                    continue;
                if (at(v).number == -1) {
                    if (take(u, e, v))
                        return;
                    at(v).number = counter++;
                    queue.push_back(v);
                } else if (!cycle[static_cast<size_t>(e)]) {
                    cycle[static_cast<size_t>(e)] = true;
                    tell(u, v, e, cycleClosed);
                }
            }
        }
    }

    /** Two smallest of a node's own number and those that its subtree leads back to. */
    std::pair<int32_t, int32_t> lows(int32_t i)
    {
        std::vector<int32_t> all{at(i).number};
        std::copy_if(at(i).lows.begin(), at(i).lows.end(), std::back_inserter(all),
                     [&](int32_t low) { return low < at(i).number; });
        std::sort(all.begin(), all.end());
        all.erase(std::unique(all.begin(), all.end()), all.end());
        return {all[0], all.size() > 1 ? all[1] : all[0]};
    }
};

void expectAgreement(Graph &graph, int32_t mode, int32_t start, int32_t target)
{
    SCOPED_TRACE(testing::Message() << "mode " << mode << " from " << start << " to " << target);
    ASSERT_EQ(VxGraphWalkInit(&graph.graph), 0u);
    for (int32_t i = 0; i < graph.edges(); ++i) {
        EXPECT_TRUE(graph.edge(i).removed || graph.edge(i).weight == 0);
        graph.edge(i).weight = (i + start + target) % 8 == 0 ? -0.5 : 0;
    }
    Model model(graph, mode, target);
    model.run(start);
    Events events;
    int32_t counter = 0, found = -1;
    graph.graph.context = &events;
    EXPECT_EQ(VxGraphWalk(&graph.graph, mode, start, target, record, &counter, &found), 0u);
    EXPECT_EQ(found, model.found);
    EXPECT_EQ(counter, model.counter);
    EXPECT_EQ(events, model.events);
    for (int32_t i = 0; i < graph.nodes(); ++i) {
        if (graph.node(i).removed)
            continue;
        EXPECT_EQ(graph.node(i).number, model.at(i).number);
        EXPECT_EQ(graph.node(i).parentNode, model.at(i).parent);
        EXPECT_EQ(graph.node(i).parentEdge, model.at(i).parentEdge);
        if (mode == preOrder && !model.found && model.at(i).number >= 0) {
            EXPECT_EQ(std::pair(graph.node(i).low, graph.node(i).low2), model.lows(i)) << "node " << i;
        }
    }
    for (int32_t i = 0; i < graph.edges(); ++i)
        EXPECT_EQ(graph.edge(i).cycle, model.cycle[static_cast<size_t>(i)]);
}

}

TEST(Graph, walksTellAndNumberAsARecursiveModelDoes)
{
    std::mt19937 random(13);
    for (int round = 0; round < 600 && !testing::Test::HasFailure(); ++round) {
        auto n = static_cast<int32_t>(2 + random() % 9);
        auto below = [&](int32_t limit) {
            return static_cast<int32_t>(random() % static_cast<unsigned>(limit));
        };
        Graph graph(n);
        bool undirected = round % 3 == 0;
        for (int32_t i = below(3 * n); i >= 0; --i)
            graph.add(below(n), below(n), !undirected && random() % 4);
        for (int32_t i = 0; i < graph.edges(); ++i)
            if (random() % 8 == 0)
                VxGraphEdgeDel(&graph.graph, i);
        int32_t start = below(n), victim = below(n);
        if (victim != start)
            VxGraphNodeDel(&graph.graph, victim);
        for (int32_t mode : {preOrder, postOrder, breadthFirst}) {
            expectAgreement(graph, mode, start, -1);
            expectAgreement(graph, mode, start, below(n));
        }
    }
}

TEST(Graph, aWalkEndsWithTheResultOfItsCallBack)
{
    Graph graph(4, {{0, 1}, {1, 2}, {2, 3}});
    auto stopAtTwo = [](VxGraph *, int32_t, int32_t to, int32_t, int32_t) { return to == 2 ? 77u : 0u; };
    for (int32_t mode : {preOrder, postOrder, breadthFirst})
        for (int32_t target : {-1, 2}) {
            VxGraphWalkInit(&graph.graph);
            int32_t counter = 40, found = -1;
            EXPECT_EQ(VxGraphWalk(&graph.graph, mode, 0, target, stopAtTwo, &counter, &found), 77u);
            EXPECT_EQ(found, target == 2);
            EXPECT_EQ(graph.node(3).number, -1);
            EXPECT_GE(counter, 40) << "numbers go on from the caller's counter";
        }
}

TEST(Graph, edgesStandInTheListsOfTheirEndsAndDeletionLeavesGapsThere)
{
    Graph graph(3);
    graph.add(0, 1);
    for (auto [from, to] : vx::test::Pairs{{1, 2}, {2, 2}, {2, 0}})
        graph.add(from, to, false);
    EXPECT_THAT(graph.incident(1), ElementsAre(1)) << "nothing leads back along edge 0";
    EXPECT_THAT(graph.incident(2), ElementsAre(1, 2, 2, 3));
    EXPECT_EQ(VxGraphEdgeDel(&graph.graph, 1), 0u);
    EXPECT_EQ(VxGraphEdgeDel(&graph.graph, 1), 1u) << "already removed";
    EXPECT_EQ(VxGraphNodeDel(&graph.graph, 0), 0u);
    EXPECT_EQ(VxGraphNodeDel(&graph.graph, 0), 1u);
    EXPECT_THAT(graph.incident(2), ElementsAre(-1, 2, 2, -1));
    EXPECT_TRUE(graph.edge(0).removed && graph.edge(3).removed);
    int32_t counter = 0;
    for (int32_t mode : {preOrder, postOrder, breadthFirst}) {
        EXPECT_EQ(VxGraphWalk(&graph.graph, mode, 0, -1, nullptr, &counter, nullptr), 4u) << "removed";
        EXPECT_EQ(VxGraphWalk(&graph.graph, mode, 3, -1, nullptr, &counter, nullptr), 1u) << "none";
    }
    EXPECT_EQ(VxGraphAddEdge(&graph.graph, 0, 1, 1, nullptr), 1u) << "from a removed node";
    EXPECT_EQ(VxGraphAddEdge(&graph.graph, 0, 3, 1, nullptr), 1u) << "to none";
}

TEST(Graph, itsListsGrowAsAnyListDoesThroughBothLevelsOfPages)
{
    int32_t page = std::exchange(VgPageSize, 1200); // 150 pages of 30 edges at the first level
    Graph graph(400);
    std::vector<int32_t> ofNodeOne;
    VxList *expected = nullptr;
    ASSERT_EQ(VxListMk(2, sizeof(VxGraphEdge), 10, 10, nullptr, &expected), 0u);
    for (int32_t i = 0; i < 6000 && !testing::Test::HasFailure(); ++i) {
        VxGraphEdge *edge = nullptr;
        EXPECT_EQ(VxGraphAddEdge(&graph.graph, i % 3, i % 400, i % 5, &edge), 0u);
        EXPECT_EQ(edge, &graph.edge(i));
        EXPECT_EQ(VxListSet(expected, i, edge), 0u);
        EXPECT_EQ(graph.graph.edges->capacity, expected->capacity);
        EXPECT_EQ(graph.graph.edges->pageLevel, expected->pageLevel);
        for (int32_t end : {i % 3, i % 5 ? 0 : i % 400})
            if (end == 1)
                ofNodeOne.push_back(i);
    }
    EXPECT_EQ(expected->pageLevel, 2);
    for (int32_t i = 0; i < graph.edges(); ++i)
        EXPECT_EQ(graph.edge(i).from * 1000 + graph.edge(i).to, i % 3 * 1000 + i % 400);
    EXPECT_EQ(graph.incident(1), ofNodeOne);
    VxListDel(&expected);
    VgPageSize = page;
}

using GraphFailures = vx::test::StartedToolkit;

TEST_F(GraphFailures, refusedMemoryLeavesItAsItWas)
{
    vx::test::refusingEachAllocation([] {
        VxGraph graph{};
        uint32_t failed = VxGraphMk(60, &graph);
        if (failed) {
            EXPECT_EQ(graph.nodes, nullptr);
            return;
        }
        for (int32_t i = 0; i < 120; ++i) {
            int32_t from = i % 7, to = i % 5, edges = graph.edges->count;
            auto incident = [&](int32_t n) { return Graph::at<VxGraphNode>(graph.nodes, n)->edges->count; };
            int32_t out = incident(from), in = incident(to);
            if (VxGraphAddEdge(&graph, from, to, 0, nullptr)) {
                EXPECT_EQ(graph.edges->count, edges);
                EXPECT_EQ(incident(from), out);
                EXPECT_EQ(incident(to), in);
            }
        }
        for (int32_t mode : {preOrder, postOrder, breadthFirst}) {
            int32_t counter = 0;
            VxGraphWalkInit(&graph);
            bool refused = VxGraphWalk(&graph, mode, 0, -1, nullptr, &counter, nullptr) != 0;
            EXPECT_TRUE(refused || counter == 7);
        }
        VxGraphFree(&graph);
    });
}
