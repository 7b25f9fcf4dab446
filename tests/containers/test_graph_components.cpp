#include <algorithm>
#include <random>
#include <tuple>
#include <vector>

#include <boost/graph/adjacency_list.hpp>
#include <boost/graph/strong_components.hpp>
#include <gtest/gtest.h>
#include <pthread.h>

#include "tests/containers/graph_fixture.h"
#include "tests/session/started_toolkit.h"
#include "tests/support/faults.h"
#include "vx/mem.h"

namespace {

using vx::test::Graph;
using vx::test::Pairs;
using vx::test::randomPairs;

using Numbers = std::vector<int32_t>;

void discard(VxList **components, int32_t count)
{
    for (int32_t i = 0; i < count; ++i)
        VxListDel(&components[i]);
    void *block = components;
    VxMemFree(&block);
}

std::vector<Numbers> componentsOf(VxGraph &graph)
{
    int32_t count = -1;
    VxList **components = nullptr;
    EXPECT_EQ(VxGraphSCC(&graph, &count, &components), 0u);
    std::vector<Numbers> all;
    for (int32_t i = 0; i < count; ++i)
        all.push_back(Graph::numbers(components[i]));
    discard(components, count);
    return all;
}

/** What is left of a graph after removals, as Boost's. Removed nodes stay as nodes without edges. */
boost::adjacency_list<> theirs(Graph &graph)
{
    boost::adjacency_list<> all(static_cast<size_t>(graph.nodes()));
    for (int32_t i = 0; i < graph.edges(); ++i) {
        const VxGraphEdge &edge = graph.edge(i);
        if (!edge.removed && !graph.node(edge.from).removed && !graph.node(edge.to).removed)
            add_edge(static_cast<size_t>(edge.from), static_cast<size_t>(edge.to), all);
    }
    return all;
}

void expectAgreementWithBoost(Graph &graph)
{
    const auto nodes = static_cast<size_t>(graph.nodes());
    std::vector<Numbers> components = componentsOf(graph.graph);
    Numbers expected(nodes), found(nodes, -1), foundOfExpected(nodes, -1);
    boost::strong_components(theirs(graph), expected.data());
    for (size_t i = 0; i < components.size(); ++i)
        for (int32_t member : components[i]) {
            const auto node = static_cast<size_t>(member);
            int32_t &same = foundOfExpected[static_cast<size_t>(expected[node])];
            const bool first = member == components[i][0];
            if (found[node] != -1 || (first ? same != -1 : same != static_cast<int32_t>(i)))
                FAIL() << "node " << member << " in component " << i;
            found[node] = same = static_cast<int32_t>(i);
        }
    for (size_t i = 0; i < nodes; ++i)
        if (graph.node(static_cast<int32_t>(i)).removed != (found[i] == -1))
            FAIL() << "node " << i;
    for (int32_t i = 0; i < graph.edges(); ++i) {
        const VxGraphEdge &edge = graph.edge(i);
        int32_t from = found[static_cast<size_t>(edge.from)], to = found[static_cast<size_t>(edge.to)];
        if (!edge.removed && from != -1 && to != -1 && from > to)
            FAIL() << "edge " << i << " leads back";
    }
}

/** The two walks as they are described, on graphs and with the walks that users have. */
std::vector<Numbers> literally(Graph &graph)
{
    int32_t finished = 0, reached = 0;
    VxGraphWalkInit(&graph.graph);
    for (int32_t i = 0; i < graph.nodes(); ++i)
        if (!graph.node(i).removed && graph.node(i).number == -1)
            VxGraphWalk(&graph.graph, 1, i, -1, nullptr, &finished, nullptr);
    Graph turned(finished);
    auto place = [&](int32_t node) { return finished - 1 - graph.node(node).number; };
    Numbers nodeAt(static_cast<size_t>(finished));
    for (int32_t i = 0; i < graph.nodes(); ++i)
        if (!graph.node(i).removed)
            nodeAt[static_cast<size_t>(place(i))] = i;
    for (int32_t i = 0; i < graph.edges(); ++i) {
        const VxGraphEdge &edge = graph.edge(i);
        if (!edge.removed && !graph.node(edge.from).removed && !graph.node(edge.to).removed)
            turned.add(place(edge.to), place(edge.from));
    }
    std::vector<Numbers> components;
    auto collect = [](VxGraph *walked, int32_t, int32_t to, int32_t, int32_t event) {
        if (event == VX_GRAPH_REACHED && Graph::at<VxGraphNode>(walked->nodes, to)->number == -1)
            static_cast<Numbers *>(walked->context)->push_back(to);
        return 0u;
    };
    VxGraphWalkInit(&turned.graph);
    for (int32_t i = 0; i < finished; ++i) {
        if (turned.node(i).number != -1)
            continue;
        turned.graph.context = &components.emplace_back();
        VxGraphWalk(&turned.graph, 0, i, -1, collect, &reached, nullptr);
        for (int32_t &member : components.back())
            member = nodeAt[static_cast<size_t>(member)];
    }
    return components;
}

/** A small graph with some directed edges, some undirected ones and removals. */
void fill(Graph &graph, unsigned seed)
{
    std::mt19937 random(seed);
    const auto nodes = static_cast<uint32_t>(graph.nodes());
    auto node = [&] { return static_cast<int32_t>(random() % nodes); };
    const auto undirected = random() % 3;
    for (auto n = random() % (2 * nodes + 2); n > 0; --n) {
        auto [from, to] = std::minmax({node(), node()});
        bool back = random() % 8 == 0; // most graphs have few cycles
        graph.add(back ? to : from, back ? from : to, random() % 4 >= undirected);
    }
    for (int32_t i = 0; i < graph.edges(); ++i)
        if (random() % 12 == 0)
            VxGraphEdgeDel(&graph.graph, i);
    if (random() % 4 == 0)
        VxGraphNodeDel(&graph.graph, node());
}

/** Lists as only their holder can make them: an edge that no list names, or one that stands where it does not
 * end. */
void tamper(Graph &graph, unsigned seed)
{
    std::mt19937 random(seed);
    const auto nodes = static_cast<uint32_t>(graph.nodes()), edges = static_cast<uint32_t>(graph.edges());
    for (auto n = random() % 4; n > 0 && edges > 0; --n) {
        VxList *list = graph.node(static_cast<int32_t>(random() % nodes)).edges;
        auto edge = static_cast<int32_t>(random() % (edges + 1)) - 1;
        if (list)
            VxListSet(list, static_cast<int32_t>(random() % static_cast<uint32_t>(list->count + 1)), &edge);
    }
}

Pairs path(int32_t nodes)
{
    Pairs pairs;
    for (int32_t i = 0; i + 1 < nodes; ++i)
        pairs.push_back({i, i + 1});
    return pairs;
}

/** With the pages that the start of the toolkit sets, without which long lists grow as one block. */
class GraphComponents : public testing::Test {
protected:
    void SetUp() override { VgPageSize = 4092; }
    void TearDown() override { VgPageSize = before_; }

private:
    int32_t before_ = VgPageSize;
};

}

TEST_F(GraphComponents, ofAMillionRandomEdgesAgreeWithBoost)
{
    std::mt19937 random(1);
    Graph graph(400'000, randomPairs(random, 400'000, 1'000'000));
    expectAgreementWithBoost(graph);
}

TEST_F(GraphComponents, ofAMillionEdgesInLayersAgreeWithBoost)
{
    std::mt19937 random(2);
    constexpr int32_t width = 1000, layers = 200;
    Pairs pairs = randomPairs(random, width, 1'000'000);
    for (auto &[from, to] : pairs) {
        int32_t layer = static_cast<int32_t>(random() % (layers - 1));
        from += layer * width;
        to += (layer + 1) * width;
    }
    for (int32_t i = 0; i < 100; ++i) // a few ways back
        std::swap(pairs[random() % pairs.size()].first, pairs[random() % pairs.size()].second);
    Graph graph(width * layers, pairs);
    expectAgreementWithBoost(graph);
}

TEST_F(GraphComponents, ofARingOfAMillionAgreeWithBoost)
{
    Pairs ring = path(1'000'000);
    ring.push_back({999'999, 0});
    Graph graph(1'000'000, ring);
    expectAgreementWithBoost(graph);
}

TEST_F(GraphComponents, ofWhatRemovalsLeaveAgreeWithBoost)
{
    std::mt19937 random(5);
    for (int round = 0; round < 1000 && !testing::Test::HasFailure(); ++round) {
        auto n = static_cast<int32_t>(1 + random() % 9);
        Graph graph(n, randomPairs(random, n, random() % 20));
        for (int32_t i = 0; i < graph.edges(); ++i)
            if (random() % 6 == 0)
                VxGraphEdgeDel(&graph.graph, i);
        if (random() % 2)
            VxGraphNodeDel(&graph.graph, static_cast<int32_t>(random() % 10) % n);
        expectAgreementWithBoost(graph);
    }
}

TEST_F(GraphComponents, andRecordsAreThoseOfTheTwoWalksAsDescribed)
{
    for (unsigned seed = 0; seed < 6000 && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        const auto nodes = static_cast<int32_t>(1 + seed % 12);
        Graph graph(nodes), same(nodes);
        for (Graph *made : {&graph, &same}) {
            fill(*made, seed);
            if (seed % 3 == 0)
                tamper(*made, seed);
        }
        EXPECT_EQ(componentsOf(graph.graph), literally(same));
        for (int32_t i = 0; i < nodes; ++i) {
            const VxGraphNode &a = graph.node(i), &b = same.node(i);
            EXPECT_EQ(std::tie(a.number, a.parentNode, a.parentEdge, a.low, a.low2, a.val[0], a.val[1]),
                      std::tie(b.number, b.parentNode, b.parentEdge, b.low, b.low2, b.val[0], b.val[1]))
                << "node " << i;
        }
        for (int32_t i = 0; i < graph.edges(); ++i)
            EXPECT_EQ(graph.edge(i).cycle, same.edge(i).cycle) << "edge " << i;
    }
}

TEST_F(GraphComponents, aPathOfAMillionNodesFitsASmallStack)
{
    Graph graph(1'000'000, path(1'000'000));
    pthread_attr_t small;
    pthread_attr_init(&small);
    ASSERT_EQ(pthread_attr_setstacksize(&small, 256 * 1024), 0);
    pthread_t thread;
    auto body = [](void *argument) -> void * {
        auto &walked = *static_cast<Graph *>(argument);
        for (int32_t mode = 0; mode < 3; ++mode) {
            int32_t counter = 0;
            EXPECT_EQ(VxGraphWalkInit(&walked.graph), 0u);
            EXPECT_EQ(VxGraphWalk(&walked.graph, mode, 0, -1, nullptr, &counter, nullptr), 0u);
            EXPECT_EQ(counter, walked.nodes());
        }
        EXPECT_EQ(componentsOf(walked.graph).size(), static_cast<size_t>(walked.nodes()));
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &small, body, &graph), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&small);
}

using GraphComponentFailures = vx::test::StartedToolkit;

TEST_F(GraphComponentFailures, refusedMemoryChangesNothing)
{
    Graph graph(12, {{0, 1}, {1, 0}, {1, 2}, {3, 4}, {4, 5}, {5, 3}, {5, 6}, {7, 7}});
    int64_t allocations = vx::test::refusingEachAllocation([&] {
        graph.node(0).number = 55;
        int32_t count = -1;
        VxList **components = reinterpret_cast<VxList **>(&graph);
        uint32_t failed = VxGraphSCC(&graph.graph, &count, &components);
        if (failed) {
            EXPECT_EQ(count, 0);
            EXPECT_EQ(components, nullptr);
            EXPECT_EQ(graph.node(0).number, 55);
        } else {
            EXPECT_EQ(count, 9);
        }
        discard(components, count);
    });
    EXPECT_GT(allocations, 18) << "two for each component";
}
