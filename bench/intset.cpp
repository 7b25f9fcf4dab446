// Integer sets beside a linear scan, up to 7 members, and beside
// std::unordered_set for larger ones.

#include <cstdio>
#include <random>
#include <unordered_set>
#include <vector>

#include <benchmark/benchmark.h>

#include "vx/intset.h"

namespace {

using Values = std::vector<int32_t>;

/** Different numbers, in no order. */
Values members(size_t n)
{
    std::mt19937 random(1);
    std::unordered_set<int32_t> known;
    Values values;
    while (values.size() < n)
        if (auto value = static_cast<int32_t>(random()); known.insert(value).second)
            values.push_back(value);
    return values;
}

/** As many as the members, half of them members, in an order of their own. */
Values questions(const Values &values)
{
    std::mt19937 random(2);
    Values all;
    for (size_t i = 0; i < values.size(); ++i)
        all.push_back(i % 2 ? values[random() % values.size()] : static_cast<int32_t>(random()));
    return all;
}

struct Vx {
    VxList *values = nullptr;
    VxIntSet set{};

    Vx()
    {
        VxListMk(2, sizeof(int32_t), 1000, 1000, nullptr, &values);
        VxIntSetInit(values, &set);
    }
    ~Vx()
    {
        VxIntSetPurge(&set);
        VxListDel(&values);
    }
    void add(int32_t value) { VxIntSetAdd(&set, value, nullptr); }
    bool contains(int32_t value) { return VxIntSetContains(&set, value); }
};

struct Unordered {
    std::unordered_set<int32_t> set;

    void add(int32_t value) { set.insert(value); }
    bool contains(int32_t value) { return set.count(value); }
};

struct Scan {
    Values values;

    [[gnu::noinline]] bool contains(int32_t value)
    {
        for (int32_t member : values)
            if (member == value)
                return true;
        return false;
    }
    [[gnu::noinline]] void add(int32_t value)
    {
        if (!contains(value))
            values.push_back(value);
    }
};

template <typename Set> void contains(benchmark::State &state, size_t n)
{
    Values values = members(n);
    Set set;
    for (int32_t value : values)
        set.add(value);
    Values asked;
    while (asked.size() < 10'000)
        for (int32_t value : questions(values))
            asked.push_back(value);
    for (auto _ : state) {
        int32_t hits = 0;
        for (int32_t value : asked)
            hits += set.contains(value);
        benchmark::DoNotOptimize(hits);
    }
}

/** Adding alone: what was filled is freed between the rounds. */
template <typename Set> void fill(benchmark::State &state, size_t n)
{
    Values values = members(n);
    for (auto _ : state) {
        auto *set = new Set;
        for (int32_t value : values)
            set->add(value);
        state.PauseTiming();
        delete set;
        state.ResumeTiming();
    }
}

const bool registered = [] {
    VgPageSize = 4092; // as the start of the toolkit sets it
    auto add = [](const char *work, size_t n, const char *who, void (*run)(benchmark::State &, size_t)) {
        char name[64];
        std::snprintf(name, sizeof name, "intset %s %zu/%s", work, n, who);
        benchmark::RegisterBenchmark(name, run, n)->Unit(benchmark::kMicrosecond);
    };
    add("contains", 7, "vx", contains<Vx>);
    add("contains", 7, "linear scan", contains<Scan>);
    for (size_t n : {size_t{10'000}, size_t{1'000'000}}) {
        add("contains", n, "vx", contains<Vx>);
        add("contains", n, "unordered_set", contains<Unordered>);
        add("add", n, "vx", fill<Vx>);
        add("add", n, "unordered_set", fill<Unordered>);
    }
    return true;
}();

}
