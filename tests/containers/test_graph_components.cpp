#include <algorithm>
#include <random>
#include <vector>

#include <boost/graph/adjacency_list.hpp>
#include <boost/graph/strong_components.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include "tests/containers/graph_fixture.h"
#include "tests/session/started_toolkit.h"
#include "tests/support/faults.h"
#include "vx/mem.h"

namespace {

using testing::IsEmpty;
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

/** The component of each node, -1 for one in none. */
Numbers membership(const std::vector<Numbers> &components, int32_t nodes)
{
    Numbers of(static_cast<size_t>(nodes), -1);
    for (size_t i = 0; i < components.size(); ++i)
        for (int32_t node : components[i]) {
            EXPECT_EQ(of[static_cast<size_t>(node)], -1) << "in two components";
            of[static_cast<size_t>(node)] = static_cast<int32_t>(i);
        }
    return of;
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
    std::vector<Numbers> components = componentsOf(graph.graph);
    Numbers expected(static_cast<size_t>(graph.nodes()));
    int32_t count = boost::strong_components(theirs(graph), expected.data());
    Numbers of = membership(components, graph.nodes());
    for (int32_t i = 0; i < graph.nodes(); ++i) {
        bool removed = graph.node(i).removed;
        count -= removed;
        if (removed != (of[static_cast<size_t>(i)] == -1))
            FAIL() << "node " << i;
    }
    EXPECT_EQ(static_cast<int32_t>(components.size()), count);
    for (const Numbers &members : components)
        for (int32_t member : members)
            if (expected[static_cast<size_t>(member)] != expected[static_cast<size_t>(members[0])])
                FAIL() << member << " and " << members[0] << " are not in one component";
    for (int32_t i = 0; i < graph.edges(); ++i) {
        int32_t from = of[static_cast<size_t>(graph.edge(i).from)],
                to = of[static_cast<size_t>(graph.edge(i).to)];
        if (!graph.edge(i).removed && from != -1 && to != -1 && from > to)
            FAIL() << "edge " << i << " leads back";
    }
}

void expectAgreementWithBoost(int32_t nodes, const Pairs &pairs)
{
    Graph graph(nodes, pairs);
    expectAgreementWithBoost(graph);
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
    expectAgreementWithBoost(400'000, randomPairs(random, 400'000, 1'000'000));
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
    expectAgreementWithBoost(width * layers, pairs);
}

TEST_F(GraphComponents, ofARingOfAMillionAgreeWithBoost)
{
    constexpr int32_t n = 1'000'000;
    Pairs ring;
    for (int32_t i = 0; i < n; ++i)
        ring.push_back({i, (i + 1) % n});
    expectAgreementWithBoost(n, ring);
}

TEST_F(GraphComponents, ofWhatRemovalsLeaveAgreeWithBoost)
{
    unsigned seed = std::random_device()();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
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

TEST_F(GraphComponents, leaveTheRecordsAsPostOrderWalksDo)
{
    unsigned seed = std::random_device()();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    for (int round = 0; round < 300 && !testing::Test::HasFailure(); ++round) {
        Pairs pairs = randomPairs(random, 8, random() % 24);
        Graph walked(8), searched(8);
        for (auto [from, to] : pairs) {
            bool directed = random() % 4;
            walked.add(from, to, directed);
            searched.add(from, to, directed);
        }
        VxGraphWalkInit(&walked.graph);
        int32_t counter = 0;
        for (int32_t i = 0; i < 8; ++i)
            if (walked.node(i).number == -1)
                VxGraphWalk(&walked.graph, 1, i, -1, nullptr, &counter, nullptr);
        for (int32_t i = 0; i < searched.edges(); ++i)
            searched.edge(i).weight = 3;
        componentsOf(searched.graph);
        for (int32_t i = 0; i < 8; ++i) {
            const VxGraphNode &x = walked.node(i), &y = searched.node(i);
            EXPECT_EQ(std::tuple(x.number, x.parentNode, x.parentEdge, x.low, x.low2, x.val[0]),
                      std::tuple(y.number, y.parentNode, y.parentEdge, y.low, y.low2, y.val[0]));
        }
        for (int32_t i = 0; i < searched.edges(); ++i) {
            EXPECT_EQ(walked.edge(i).cycle, searched.edge(i).cycle);
            EXPECT_EQ(searched.edge(i).weight, 0);
        }
    }
}

TEST_F(GraphComponents, ofNoNodesAreNone)
{
    Graph none(0);
    EXPECT_THAT(componentsOf(none.graph), IsEmpty());
}

TEST_F(GraphComponents, aPathOfAMillionNodesFitsASmallStack)
{
    constexpr int32_t n = 1'000'000;
    Graph graph(n);
    for (int32_t i = 0; i + 1 < n; ++i)
        graph.add(i, i + 1);
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
        graph.edge(0).weight = 9;
        int32_t count = -1;
        VxList **components = reinterpret_cast<VxList **>(&graph);
        uint32_t failed = VxGraphSCC(&graph.graph, &count, &components);
        if (failed) {
            EXPECT_EQ(count, 0);
            EXPECT_EQ(components, nullptr);
            EXPECT_EQ(graph.node(0).number, 55);
            EXPECT_EQ(graph.edge(0).weight, 9);
        } else {
            EXPECT_EQ(count, 9);
            EXPECT_NE(graph.node(0).number, 55);
        }
        discard(components, count);
    });
    EXPECT_GT(allocations, 18) << "two for each component";
}
