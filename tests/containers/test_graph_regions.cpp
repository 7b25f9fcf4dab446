#include <algorithm>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/containers/graph_fixture.h"
#include "tests/session/started_toolkit.h"
#include "tests/support/faults.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using vx::test::Graph;

using Numbers = std::vector<int32_t>;

VxList *listOf(const Numbers &numbers)
{
    VxList *list = nullptr;
    EXPECT_EQ(VxListMk(2, sizeof(int32_t), 10, 10, nullptr, &list), 0u);
    for (int32_t number : numbers)
        EXPECT_EQ(VxListSet(list, list->count, &number), 0u);
    return list;
}

/** Make a region of edges, each told of it. */
int32_t addRegion(Graph &graph, const Numbers &edges)
{
    VxGraphRegion region{listOf(edges), 0};
    int32_t number = graph.graph.regions->count;
    EXPECT_EQ(VxListSet(graph.graph.regions, number, &region), 0u);
    for (int32_t i : edges) {
        VxGraphEdge &edge = graph.edge(i);
        edge.region[edge.regionCount++] = number;
    }
    return number;
}

Numbers regionEdges(Graph &graph, int32_t region)
{
    return Graph::numbers(Graph::at<VxGraphRegion>(graph.graph.regions, region)->edges);
}

Numbers regionsOf(const VxGraphEdge &edge)
{
    return {edge.region, edge.region + edge.regionCount};
}

}

TEST(GraphRegions, foundAtTheBorderStayUnlessTheNewLoopIsShorter)
{
    Graph graph(7);
    for (auto [from, to] : vx::test::Pairs{{0, 1}, {1, 2}, {3, 2}, {3, 0}, {3, 4}, {4, 5}, {5, 3}})
        graph.add(from, to, false);
    int32_t region = addRegion(graph, {0, 1, 2});
    EXPECT_EQ(VxRgnFromNode(&graph.graph, 1), 0u);
    EXPECT_THAT(regionEdges(graph, region), ElementsAre(0, 1, 2)) << "3 edges are not less than 3";

    addRegion(graph, {3});
    int32_t three = 3;
    VxListSet(Graph::at<VxGraphRegion>(graph.graph.regions, region)->edges, 3, &three);
    EXPECT_EQ(VxRgnFromNode(&graph.graph, 1), 0u);
    EXPECT_THAT(regionEdges(graph, region), UnorderedElementsAre(4, 5, 6));
    EXPECT_THAT(regionsOf(graph.edge(0)), IsEmpty());
}

TEST(GraphRegions, areRebuiltFromACycleThatCrossesNoBorder)
{
    // Two loops that meet in node 0, edges 0, 1, 2 and 3, 4, 5, and an edge without a region.
    Graph graph(6);
    for (auto [from, to] : vx::test::Pairs{{0, 1}, {1, 2}, {2, 0}, {0, 3}, {3, 4}, {0, 4}, {4, 5}})
        graph.add(from, to, false);
    int32_t outer = addRegion(graph, {0, 1, 2, 3, 4, 5});
    int32_t inner = addRegion(graph, {0, 1, 2});
    VxList *path = listOf({1, 6});
    EXPECT_EQ(VxRgnFromPath(&graph.graph, path), 5u);
    EXPECT_EQ(VxRgnFromNode(&graph.graph, 5), 5u) << "no edge of the node borders a region";
    path->count = 1;
    EXPECT_EQ(VxRgnFromPath(&graph.graph, path), 0u);
    VxListDel(&path);
    EXPECT_THAT(regionEdges(graph, outer), UnorderedElementsAre(0, 1, 2));
    for (int32_t i : {0, 1, 2})
        EXPECT_THAT(regionsOf(graph.edge(i)), ElementsAre(inner, outer)) << "detached, then added behind";
    for (int32_t i : {3, 4, 5})
        EXPECT_THAT(regionsOf(graph.edge(i)), IsEmpty());
}

using GraphRegionFailures = vx::test::StartedToolkit;

TEST_F(GraphRegionFailures, refusedMemoryChangesNoRegion)
{
    Graph graph(5);
    for (auto [from, to] : vx::test::Pairs{{0, 1}, {1, 2}, {2, 0}, {0, 3}, {3, 4}, {0, 4}})
        graph.add(from, to, false);
    int32_t outer = addRegion(graph, {0, 1, 2, 3, 4, 5});
    addRegion(graph, {0, 1, 2});
    bool done = false;
    vx::test::refusingEachAllocation([&] {
        bool failed = VxRgnFromNode(&graph.graph, 1) != 0;
        int32_t edges = Graph::at<VxGraphRegion>(graph.graph.regions, outer)->edges->count;
        EXPECT_EQ(edges, failed && !done ? 6 : 3);
        EXPECT_EQ(graph.edge(3).regionCount, failed && !done ? 1 : 0);
        done = done || !failed;
    });
}
