// Pools beside the C library's allocator and beside a heap of mimalloc's own.
//
// Blocks of 16 to 512 bytes, 72 on average, as object families of a model
// have them. Every block of a pool is zero-filled: calloc's are too, malloc's
// are not.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <mimalloc.h>

#include "vx/pool.h"

namespace {

/**
 * mimalloc's functions. Linked, its library would take malloc's place for
 * everybody in the program; opened like this it keeps to itself.
 */
struct Mimalloc {
    template <typename Function> static Function *find(const char *name)
    {
        static void *library = dlopen(VX_BENCH_MIMALLOC, RTLD_NOW | RTLD_LOCAL);
        void *found = library ? dlsym(library, name) : nullptr;
        if (!found)
            std::abort();
        return reinterpret_cast<Function *>(found);
    }

    decltype(mi_heap_new) *create = find<decltype(mi_heap_new)>("mi_heap_new");
    decltype(mi_heap_zalloc) *allocate = find<decltype(mi_heap_zalloc)>("mi_heap_zalloc");
    decltype(mi_heap_destroy) *destroy = find<decltype(mi_heap_destroy)>("mi_heap_destroy");
};

/** Many small ones and few large ones, whole units of 8 bytes as records with pointers and doubles are. */
std::vector<int32_t> sizes(size_t n)
{
    std::mt19937 random(1);
    std::exponential_distribution<double> units(1.0 / 7.5);
    std::vector<int32_t> out(n);
    for (int32_t &size : out)
        size = 8 * std::min(2 + static_cast<int32_t>(units(random)), 64);
    return out;
}

std::vector<uint32_t> shuffled(size_t n)
{
    std::vector<uint32_t> order(n);
    for (size_t i = 0; i < n; ++i)
        order[i] = static_cast<uint32_t>(i);
    std::shuffle(order.begin(), order.end(), std::mt19937(2));
    return order;
}

struct Pool {
    Pool() { VxCreHpMemPool(1024, "bench", 0, nullptr, &pool); }
    ~Pool() { VxFreeHpMemPool(pool); }
    void *allocate(int32_t size) { return VxAlocHpMemPool(pool, 1, size); }
    void free(void *block) { VxDeleteMemObj(block); }
    void *pool = nullptr;
};

struct Malloc {
    void *allocate(int32_t size) { return std::malloc(static_cast<size_t>(size)); }
    void free(void *block) { std::free(block); }
};

struct Calloc : Malloc {
    void *allocate(int32_t size) { return std::calloc(1, static_cast<size_t>(size)); }
};

template <typename Heap> void randomOrder(benchmark::State &state, size_t n)
{
    auto size = sizes(n);
    auto order = shuffled(n);
    std::vector<void *> blocks(n);
    Heap heap;
    for (auto _ : state) {
        for (size_t i = 0; i < n; ++i)
            blocks[i] = heap.allocate(size[i]);
        for (uint32_t i : order)
            heap.free(blocks[i]);
    }
}

template <typename Heap> void churn(benchmark::State &state, size_t n)
{
    auto size = sizes(n);
    auto order = shuffled(n);
    std::vector<void *> blocks(n);
    Heap heap;
    for (size_t i = 0; i < n; ++i)
        blocks[i] = heap.allocate(size[i]);
    for (auto _ : state) {
        for (size_t i = 0; i < n; ++i) {
            void *&block = blocks[order[i]];
            heap.free(block);
            block = heap.allocate(size[i]);
        }
    }
    for (void *block : blocks)
        heap.free(block);
}

void discardPool(benchmark::State &state, size_t n)
{
    auto size = sizes(n);
    for (auto _ : state) {
        Pool heap;
        for (int32_t bytes : size)
            benchmark::DoNotOptimize(heap.allocate(bytes));
    }
}

void discardMimalloc(benchmark::State &state, size_t n)
{
    auto size = sizes(n);
    Mimalloc mimalloc;
    for (auto _ : state) {
        mi_heap_t *heap = mimalloc.create();
        for (int32_t bytes : size)
            benchmark::DoNotOptimize(mimalloc.allocate(heap, static_cast<size_t>(bytes)));
        mimalloc.destroy(heap);
    }
}

/** Not a time: the bytes of the pool's chunks, or those asked for, stand for nanoseconds. */
void memory(benchmark::State &state, bool askedFor)
{
    auto size = sizes(300'000);
    VxHpStatistics(1);
    for (auto _ : state) {
        Pool heap;
        for (int32_t bytes : size)
            heap.allocate(bytes);
        VxHsmUsage usage{};
        VxHpAreaUsage(static_cast<VxHpPool *>(heap.pool)->area, &usage);
        state.SetIterationTime(1e-9 * static_cast<double>(askedFor ? usage.bytes : usage.chunkBytes));
    }
    VxHpStatistics(0);
}

const bool registered = [] {
    for (size_t n : {size_t{10'000}, size_t{300'000}}) {
        auto add = [n](const char *work, const char *who, void (*run)(benchmark::State &, size_t)) {
            char name[64];
            std::snprintf(name, sizeof name, "pool %s %zu/%s", work, n, who);
            benchmark::RegisterBenchmark(name, run, n)->Unit(benchmark::kMicrosecond);
        };
        add("random order", "vx", randomOrder<Pool>);
        add("random order", "malloc", randomOrder<Malloc>);
        add("random order", "calloc", randomOrder<Calloc>);
        add("churn", "vx", churn<Pool>);
        add("churn", "malloc", churn<Malloc>);
        add("churn", "calloc", churn<Calloc>);
        add("discard", "vx", discardPool);
        add("discard", "mimalloc heap", discardMimalloc);
    }
    benchmark::RegisterBenchmark("pool bytes 300000/vx", memory, false)->UseManualTime()->Iterations(1);
    benchmark::RegisterBenchmark("pool bytes 300000/asked for", memory, true)->UseManualTime()->Iterations(1);
    return true;
}();

}
