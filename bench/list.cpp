// Lists of 32-byte elements beside the containers a user would pick instead.
// Filling is timed without the deletion that follows, deletion without filling.

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <list>
#include <numeric>
#include <random>
#include <vector>

#include <NCollection_Vector.hxx>
#include <absl/container/btree_map.h>
#include <absl/container/node_hash_map.h>
#include <benchmark/benchmark.h>

#include "vx/list.h"
#include "vx/tools.h"

namespace {

struct Element {
    int64_t words[4];
};

constexpr int32_t elementBytes = sizeof(Element);
constexpr int32_t keyed = 0;
constexpr int32_t linked = 1;
constexpr int32_t array = 2;

/** One of a few elements that are there to be copied from. */
const Element &elementOf(int32_t n)
{
    static const std::vector<Element> elements = [] {
        std::vector<Element> made;
        for (int64_t i = 0; i < 1024; ++i)
            made.push_back({{i, i + 1, i + 2, i + 3}});
        return made;
    }();
    return elements[static_cast<uint32_t>(n) % 1024];
}

/** Different keys from all integers, in random order. */
std::vector<int32_t> randomKeys(int64_t n)
{
    std::mt19937 random(20261121);
    std::vector<int32_t> keys;
    keys.reserve(static_cast<size_t>(n));
    absl::node_hash_map<int32_t, bool> seen;
    while (static_cast<int64_t>(keys.size()) < n) {
        auto key = static_cast<int32_t>(random());
        if (seen.try_emplace(key, true).second)
            keys.push_back(key);
    }
    return keys;
}

std::vector<int32_t> shuffled(std::vector<int32_t> keys)
{
    std::shuffle(keys.begin(), keys.end(), std::mt19937(7));
    return keys;
}

VxList *newList(int32_t layout, int32_t increment = 256)
{
    VxToolsGlobal();
    VxList *list = nullptr;
    if (VxListMk(layout, elementBytes, 0, increment, nullptr, &list))
        std::abort();
    return list;
}

void perItem(benchmark::State &state, int64_t n)
{
    state.SetItemsProcessed(state.iterations() * n);
}

// ---------------------------------------------------------------- keyed

using HashMap = absl::node_hash_map<int32_t, Element>;
using TreeMap = absl::btree_map<int32_t, Element>;

VxList *keyedList(const std::vector<int32_t> &keys)
{
    VxList *list = newList(keyed);
    for (int32_t key : keys)
        VxListSet(list, key, &elementOf(key));
    return list;
}

template <typename Map> Map filledMap(const std::vector<int32_t> &keys)
{
    Map map;
    for (int32_t key : keys)
        map[key] = elementOf(key);
    return map;
}

void keyedInsertVx(benchmark::State &state, int64_t n)
{
    auto keys = randomKeys(n);
    for (auto _ : state) {
        VxList *list = keyedList(keys);
        state.PauseTiming();
        VxListDel(&list);
        state.ResumeTiming();
    }
    perItem(state, n);
}

void keyedInsertAbsl(benchmark::State &state, int64_t n)
{
    auto keys = randomKeys(n);
    for (auto _ : state) {
        auto map = filledMap<HashMap>(keys);
        state.PauseTiming();
        HashMap().swap(map);
        state.ResumeTiming();
    }
    perItem(state, n);
}

void keyedFindVx(benchmark::State &state, int64_t n)
{
    auto keys = randomKeys(n);
    VxList *list = keyedList(keys);
    keys = shuffled(keys);
    for (auto _ : state) {
        int64_t sum = 0;
        for (int32_t key : keys) {
            void *element = nullptr;
            VxListGetPtr(list, key, &element);
            sum += static_cast<Element *>(element)->words[0];
        }
        benchmark::DoNotOptimize(sum);
    }
    VxListDel(&list);
    perItem(state, n);
}

void keyedFindAbsl(benchmark::State &state, int64_t n)
{
    auto keys = randomKeys(n);
    auto map = filledMap<HashMap>(keys);
    keys = shuffled(keys);
    for (auto _ : state) {
        int64_t sum = 0;
        for (int32_t key : keys)
            sum += map.find(key)->second.words[0];
        benchmark::DoNotOptimize(sum);
    }
    perItem(state, n);
}

void keyedEraseVx(benchmark::State &state, int64_t n)
{
    auto keys = randomKeys(n);
    auto order = shuffled(keys);
    for (auto _ : state) {
        state.PauseTiming();
        VxList *list = keyedList(keys);
        state.ResumeTiming();
        for (int32_t key : order)
            VxListDelElem(list, key, key);
        state.PauseTiming();
        VxListDel(&list);
        state.ResumeTiming();
    }
    perItem(state, n);
}

void keyedEraseAbsl(benchmark::State &state, int64_t n)
{
    auto keys = randomKeys(n);
    auto order = shuffled(keys);
    for (auto _ : state) {
        state.PauseTiming();
        auto map = filledMap<HashMap>(keys);
        state.ResumeTiming();
        for (int32_t key : order)
            map.erase(key);
        state.PauseTiming();
        HashMap().swap(map);
        state.ResumeTiming();
    }
    perItem(state, n);
}

void keyedWalkVx(benchmark::State &state, int64_t n)
{
    VxList *list = keyedList(randomKeys(n));
    VxListIter iter;
    VxListItrInit2(list, 1, &iter);
    for (auto _ : state) {
        int64_t sum = 0;
        void *element = nullptr;
        VxListItrInit2(list, 1, &iter);
        while (VxListItrPtr(&iter, &element) == 0)
            sum += static_cast<Element *>(element)->words[0];
        benchmark::DoNotOptimize(sum);
    }
    VxListDel(&list);
    perItem(state, n);
}

void keyedWalkAbsl(benchmark::State &state, int64_t n)
{
    auto map = filledMap<TreeMap>(randomKeys(n));
    for (auto _ : state) {
        int64_t sum = 0;
        for (const auto &[key, element] : map)
            sum += element.words[0];
        benchmark::DoNotOptimize(sum);
    }
    perItem(state, n);
}

BENCHMARK_CAPTURE(keyedInsertVx, some, 10'000)->Name("list keyed insert 10000/vx");
BENCHMARK_CAPTURE(keyedInsertAbsl, some, 10'000)->Name("list keyed insert 10000/absl node_hash_map");
BENCHMARK_CAPTURE(keyedInsertVx, many, 1'000'000)->Name("list keyed insert 1000000/vx");
BENCHMARK_CAPTURE(keyedInsertAbsl, many, 1'000'000)->Name("list keyed insert 1000000/absl node_hash_map");
BENCHMARK_CAPTURE(keyedFindVx, some, 10'000)->Name("list keyed look-up 10000/vx");
BENCHMARK_CAPTURE(keyedFindAbsl, some, 10'000)->Name("list keyed look-up 10000/absl node_hash_map");
BENCHMARK_CAPTURE(keyedFindVx, many, 1'000'000)->Name("list keyed look-up 1000000/vx");
BENCHMARK_CAPTURE(keyedFindAbsl, many, 1'000'000)->Name("list keyed look-up 1000000/absl node_hash_map");
BENCHMARK_CAPTURE(keyedEraseVx, some, 10'000)->Name("list keyed erase 10000/vx");
BENCHMARK_CAPTURE(keyedEraseAbsl, some, 10'000)->Name("list keyed erase 10000/absl node_hash_map");
BENCHMARK_CAPTURE(keyedEraseVx, many, 1'000'000)->Name("list keyed erase 1000000/vx");
BENCHMARK_CAPTURE(keyedEraseAbsl, many, 1'000'000)->Name("list keyed erase 1000000/absl node_hash_map");
BENCHMARK_CAPTURE(keyedWalkVx, many, 1'000'000)->Name("list keyed ordered walk/vx");
BENCHMARK_CAPTURE(keyedWalkAbsl, many, 1'000'000)->Name("list keyed ordered walk/absl btree_map");

// ---------------------------------------------------------------- array

using OccVector = NCollection_Vector<Element>; // grows by 256, as our list does

VxList *arrayList(int32_t n)
{
    VxList *list = newList(array);
    for (int32_t i = 0; i < n; ++i)
        VxListSet(list, i, &elementOf(i));
    return list;
}

void appendVx(benchmark::State &state, int64_t n)
{
    for (auto _ : state) {
        VxList *list = arrayList(static_cast<int32_t>(n));
        state.PauseTiming();
        VxListDel(&list);
        state.ResumeTiming();
    }
    perItem(state, n);
}

void appendOcc(benchmark::State &state, int64_t n)
{
    for (auto _ : state) {
        OccVector vector;
        for (int32_t i = 0; i < n; ++i)
            vector.Append(elementOf(i));
        state.PauseTiming();
        vector.Clear();
        state.ResumeTiming();
    }
    perItem(state, n);
}

/** One circle through all positions in random order: the position that comes after each. */
std::vector<int32_t> randomCircle(int64_t n)
{
    std::vector<int32_t> order(static_cast<size_t>(n));
    std::iota(order.begin(), order.end(), 0);
    order = shuffled(order);
    std::vector<int32_t> next(order.size());
    for (size_t i = 0; i < order.size(); ++i)
        next[static_cast<size_t>(order[i])] = order[(i + 1) % order.size()];
    return next;
}

// Elements refer to each other by position, and each one read says where to
// go on, as in a model whose parts refer to parts.

void followVx(benchmark::State &state, int64_t n)
{
    VxList *list = newList(array);
    for (int32_t next : randomCircle(n)) {
        Element element{{next, 0, 0, 0}};
        VxListSet(list, list->count, &element);
    }
    int32_t position = 0;
    for (auto _ : state)
        for (int64_t i = 0; i < n; ++i) {
            void *element = nullptr;
            VxListGetPtr(list, position, &element);
            position = static_cast<int32_t>(static_cast<Element *>(element)->words[0]);
        }
    benchmark::DoNotOptimize(position);
    VxListDel(&list);
    perItem(state, n);
}

void followOcc(benchmark::State &state, int64_t n)
{
    OccVector vector;
    for (int32_t next : randomCircle(n))
        vector.Append(Element{{next, 0, 0, 0}});
    int32_t position = 0;
    for (auto _ : state)
        for (int64_t i = 0; i < n; ++i)
            position = static_cast<int32_t>(vector.Value(position).words[0]);
    benchmark::DoNotOptimize(position);
    perItem(state, n);
}

// Positions known beforehand: processors read many elements at once where the
// whole access is compiled into the loop, as VxListAt is, fewer through a call.

std::vector<int32_t> randomPositions(int64_t n)
{
    std::vector<int32_t> positions(static_cast<size_t>(n));
    std::iota(positions.begin(), positions.end(), 0);
    return shuffled(positions);
}

/** @param get  the element at a position of a list */
template <typename Get> void randomGet(benchmark::State &state, int64_t n, Get get)
{
    VxList *list = arrayList(static_cast<int32_t>(n));
    auto positions = randomPositions(n);
    for (auto _ : state) {
        int64_t sum = 0;
        for (int32_t position : positions)
            sum += static_cast<Element *>(get(list, position))->words[0];
        benchmark::DoNotOptimize(sum);
    }
    VxListDel(&list);
    perItem(state, n);
}

void randomGetVx(benchmark::State &state, int64_t n)
{
    randomGet(state, n, [](VxList *list, int32_t position) {
        void *element = nullptr;
        VxListGetPtr(list, position, &element);
        return element;
    });
}

void randomGetVxInline(benchmark::State &state, int64_t n)
{
    randomGet(state, n, [](VxList *list, int32_t position) { return VxListAt(list, position); });
}

void randomGetOcc(benchmark::State &state, int64_t n)
{
    OccVector vector;
    for (int32_t i = 0; i < n; ++i)
        vector.Append(elementOf(i));
    auto positions = randomPositions(n);
    for (auto _ : state) {
        int64_t sum = 0;
        for (int32_t position : positions)
            sum += vector.Value(position).words[0];
        benchmark::DoNotOptimize(sum);
    }
    perItem(state, n);
}

constexpr int32_t insertCount = 10'000;

void insertVx(benchmark::State &state)
{
    std::vector<Element> elements(insertCount + 1, elementOf(1));
    Element element = elementOf(2);
    VxList list;
    VxListWrapArr(elementBytes, insertCount, insertCount + 1, elements.data(), &list);
    for (auto _ : state) {
        VxListIns(&list, insertCount / 2, &element);
        VxListDownsize(&list, insertCount);
        benchmark::ClobberMemory();
    }
}

void insertMemmove(benchmark::State &state)
{
    std::vector<Element> elements(insertCount + 1, elementOf(1));
    Element element = elementOf(2);
    benchmark::DoNotOptimize(elements.data());
    for (auto _ : state) {
        Element *at = elements.data() + insertCount / 2;
        std::memmove(at + 1, at, (insertCount - insertCount / 2) * sizeof(Element));
        *at = element;
        benchmark::ClobberMemory();
    }
}

BENCHMARK_CAPTURE(appendVx, many, 1'000'000)->Name("list array append/vx");
BENCHMARK_CAPTURE(appendOcc, many, 1'000'000)->Name("list array append/NCollection_Vector");
BENCHMARK_CAPTURE(followVx, many, 1'000'000)->Name("list array random get/vx");
BENCHMARK_CAPTURE(followOcc, many, 1'000'000)->Name("list array random get/NCollection_Vector");
BENCHMARK_CAPTURE(randomGetVx, many, 1'000'000)->Name("list array random get, positions known/vx");
BENCHMARK_CAPTURE(randomGetOcc, many, 1'000'000)
    ->Name("list array random get, positions known/NCollection_Vector");
BENCHMARK_CAPTURE(randomGetVxInline, many, 1'000'000)->Name("list array random get, inline/vx");
BENCHMARK_CAPTURE(randomGetOcc, many, 1'000'000)->Name("list array random get, inline/NCollection_Vector");
BENCHMARK(insertVx)->Name("list array insert in the middle/vx");
BENCHMARK(insertMemmove)->Name("list array insert in the middle/memmove");

// ---------------------------------------------------------------- sort

int32_t byFirstWord(const void *a, const void *b)
{
    int64_t x = static_cast<const Element *>(a)->words[0];
    int64_t y = static_cast<const Element *>(b)->words[0];
    return (x > y) - (x < y);
}

// Read at run time, so that no compiler works the comparator into a peer.
VxCmpFn volatile comparator = byFirstWord;

std::vector<Element> randomElements(int64_t n)
{
    std::vector<Element> elements;
    for (int32_t key : randomKeys(n))
        elements.push_back({{key, 1, 2, 3}});
    return elements;
}

/** @param paged  a list that grew store by store, else one over a block */
void sortVx(benchmark::State &state, int64_t n, bool paged)
{
    const auto elements = randomElements(n);
    auto sorted = elements;
    VxList block;
    VxListWrapArr(elementBytes, static_cast<int32_t>(sorted.size()), static_cast<int32_t>(sorted.size()),
                  sorted.data(), &block);
    VxList *pages = arrayList(static_cast<int32_t>(sorted.size()));
    for (auto _ : state) {
        state.PauseTiming();
        sorted = elements;
        for (int32_t i = 0; paged && i < n; ++i)
            VxListSet(pages, i, &elements[static_cast<size_t>(i)]);
        state.ResumeTiming();
        VxListSort(paged ? pages : &block, comparator);
    }
    VxListDel(&pages);
    perItem(state, n);
}

template <typename Sort> void sortPeer(benchmark::State &state, int64_t n, Sort sort)
{
    const auto elements = randomElements(n);
    auto sorted = elements;
    for (auto _ : state) {
        state.PauseTiming();
        sorted = elements;
        state.ResumeTiming();
        sort(sorted);
    }
    perItem(state, n);
}

void stdSort(std::vector<Element> &elements)
{
    std::sort(elements.begin(), elements.end(),
              [compare = comparator](const Element &a, const Element &b) { return compare(&a, &b) < 0; });
}

void libcSort(std::vector<Element> &elements)
{
    std::qsort(elements.data(), elements.size(), sizeof(Element), comparator);
}

BENCHMARK_CAPTURE(sortVx, block, 1'000'000, false)->Name("list sort/vx");
BENCHMARK_CAPTURE(sortPeer, std, 1'000'000, stdSort)->Name("list sort/std::sort");
BENCHMARK_CAPTURE(sortPeer, libc, 1'000'000, libcSort)->Name("list sort/qsort");
BENCHMARK_CAPTURE(sortVx, pages, 1'000'000, true)->Name("list sort in pages/vx");
BENCHMARK_CAPTURE(sortPeer, std, 1'000'000, stdSort)->Name("list sort in pages/std::sort");
BENCHMARK_CAPTURE(sortPeer, libc, 1'000'000, libcSort)->Name("list sort in pages/qsort");

// ---------------------------------------------------------------- linked

void linkedAppendVx(benchmark::State &state, int64_t n)
{
    for (auto _ : state) {
        VxList *list = newList(linked);
        for (int32_t i = 0; i < n; ++i)
            VxListSet(list, i, &elementOf(i));
        state.PauseTiming();
        VxListDel(&list);
        state.ResumeTiming();
    }
    perItem(state, n);
}

void linkedAppendStd(benchmark::State &state, int64_t n)
{
    for (auto _ : state) {
        std::list<Element> list;
        for (int32_t i = 0; i < n; ++i)
            list.push_back(elementOf(i));
        state.PauseTiming();
        list.clear();
        state.ResumeTiming();
    }
    perItem(state, n);
}

BENCHMARK_CAPTURE(linkedAppendVx, many, 1'000'000)->Name("list linked append/vx");
BENCHMARK_CAPTURE(linkedAppendStd, many, 1'000'000)->Name("list linked append/std::list");

}
