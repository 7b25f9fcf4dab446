#pragma once

// A graph that frees itself, and graphs of random edges.

#include <cstdint>
#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "vx/graph.h"

namespace vx::test {

using Pairs = std::vector<std::pair<int32_t, int32_t>>;

struct Graph {
    VxGraph graph{};

    explicit Graph(int32_t n) { EXPECT_EQ(VxGraphMk(n, &graph), 0u); }
    Graph(int32_t n, const Pairs &directed) : Graph(n)
    {
        for (auto [from, to] : directed)
            add(from, to);
    }
    ~Graph() { VxGraphFree(&graph); }
    Graph(const Graph &) = delete;
    Graph &operator=(const Graph &) = delete;

    int32_t add(int32_t from, int32_t to, bool directed = true)
    {
        EXPECT_EQ(VxGraphAddEdge(&graph, from, to, directed, nullptr), 0u);
        return graph.edges->count - 1;
    }
    VxGraphNode &node(int32_t i) { return *at<VxGraphNode>(graph.nodes, i); }
    VxGraphEdge &edge(int32_t i) { return *at<VxGraphEdge>(graph.edges, i); }
    int32_t nodes() const { return graph.nodes->count; }
    int32_t edges() const { return graph.edges->count; }

    /** The numbers in the list of a node. */
    std::vector<int32_t> incident(int32_t i) { return numbers(node(i).edges); }

    static std::vector<int32_t> numbers(VxList *list)
    {
        std::vector<int32_t> all;
        for (int32_t i = 0; i < list->count; ++i)
            all.push_back(*at<int32_t>(list, i));
        return all;
    }

    template <typename T> static T *at(VxList *list, int32_t i)
    {
        void *record = nullptr;
        EXPECT_EQ(VxListGetPtr(list, i, &record), 0u);
        return static_cast<T *>(record);
    }
};

inline Pairs randomPairs(std::mt19937 &random, int32_t nodes, size_t edges)
{
    std::uniform_int_distribution<int32_t> node(0, nodes - 1);
    Pairs all(edges);
    for (auto &[from, to] : all) {
        from = node(random);
        to = node(random);
    }
    return all;
}

}
