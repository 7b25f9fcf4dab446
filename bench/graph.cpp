// A graph of a million edges beside Boost's adjacency_list: adding the edges
// to the nodes, and finding the strongly connected components.

#include <random>
#include <string>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>
#include <boost/graph/adjacency_list.hpp>
#include <boost/graph/strong_components.hpp>

#include "vx/graph.h"
#include "vx/mem.h"

namespace {

constexpr int32_t edges = 1'000'000;

using Pairs = std::vector<std::pair<int32_t, int32_t>>;
using Boosts = boost::adjacency_list<boost::vecS, boost::vecS, boost::directedS>;

/** Edges between random nodes. */
Pairs scattered(int32_t nodes)
{
    std::mt19937 random(1);
    std::uniform_int_distribution<int32_t> node(0, nodes - 1);
    Pairs pairs(edges);
    for (auto &[from, to] : pairs) {
        from = node(random);
        to = node(random);
    }
    return pairs;
}

/** Edges from each of 200 layers to the next, so that every node is a component. */
Pairs layered(int32_t nodes)
{
    std::mt19937 random(2);
    int32_t width = nodes / 200;
    std::uniform_int_distribution<int32_t> place(0, width - 1), layer(0, 198);
    Pairs pairs(edges);
    for (auto &[from, to] : pairs) {
        int32_t above = layer(random) * width;
        from = above + place(random);
        to = above + width + place(random);
    }
    return pairs;
}

/** One circle through all nodes. */
Pairs ring(int32_t nodes)
{
    Pairs pairs;
    for (int32_t i = 0; i < edges; ++i)
        pairs.emplace_back(i % nodes, (i + 1) % nodes);
    return pairs;
}

struct Vx {
    VxGraph graph{};

    Vx(int32_t nodes, const Pairs &pairs)
    {
        VxGraphMk(nodes, &graph);
        for (auto [from, to] : pairs)
            VxGraphAddEdge(&graph, from, to, 1, nullptr);
    }
    ~Vx() { VxGraphFree(&graph); }

    int32_t components()
    {
        int32_t count = 0;
        VxList **lists = nullptr;
        VxGraphSCC(&graph, &count, &lists);
        for (int32_t i = 0; i < count; ++i)
            VxListDel(&lists[i]);
        void *block = lists;
        VxMemFree(&block);
        return count;
    }
};

struct Boost {
    Boosts graph;

    Boost(int32_t nodes, const Pairs &pairs) : graph(static_cast<size_t>(nodes))
    {
        for (auto [from, to] : pairs)
            add_edge(static_cast<size_t>(from), static_cast<size_t>(to), graph);
    }

    int32_t components()
    {
        std::vector<int32_t> of(num_vertices(graph));
        return boost::strong_components(graph, of.data());
    }
};

/** Building alone: what was built is freed between the rounds. */
template <typename Graph> void build(benchmark::State &state, int32_t nodes, Pairs (*make)(int32_t))
{
    Pairs pairs = make(nodes);
    for (auto _ : state) {
        Graph *graph = new Graph(nodes, pairs);
        benchmark::DoNotOptimize(graph);
        state.PauseTiming();
        delete graph;
        state.ResumeTiming();
    }
}

template <typename Graph> void components(benchmark::State &state, int32_t nodes, Pairs (*make)(int32_t))
{
    Graph graph(nodes, make(nodes));
    for (auto _ : state)
        benchmark::DoNotOptimize(graph.components());
}

const bool registered = [] {
    VgPageSize = 4092; // as the start of the toolkit sets it
    using Run = void (*)(benchmark::State &, int32_t, Pairs (*)(int32_t));
    auto add = [](const char *work, const char *who, Run run, int32_t nodes, Pairs (*make)(int32_t)) {
        benchmark::RegisterBenchmark((std::string("graph ") + work + '/' + who).c_str(), run, nodes, make)
            ->Unit(benchmark::kMillisecond);
    };
    auto addAll = [add](const std::string &shape, int32_t nodes, Pairs (*make)(int32_t)) {
        add(("build " + shape).c_str(), "vx", build<Vx>, nodes, make);
        add(("build " + shape).c_str(), "adjacency_list", build<Boost>, nodes, make);
        add(("components " + shape).c_str(), "vx", components<Vx>, nodes, make);
        add(("components " + shape).c_str(), "strong_components", components<Boost>, nodes, make);
    };
    addAll("random", 200'000, scattered);
    addAll("layers", 200'000, layered);
    addAll("ring", edges, ring);
    return true;
}();

}
