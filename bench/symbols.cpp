// Symbol look-up beside the hash map a program would otherwise keep its names
// in. The toolkit has one table, so each number of names is a program.

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include <absl/container/flat_hash_map.h>
#include <benchmark/benchmark.h>

#include "vx/sym.h"

namespace {

int32_t entryPoint()
{
    return 0;
}

/** Names of 8 to 24 characters, as modules publish them. */
std::vector<std::string> namesOf(size_t count)
{
    const char *families[] = {"Cd", "Sketch", "Drw", "CamPath", "Ui", "Surface", "Part", "Mold"};
    const char *verbs[] = {"Get", "Set", "Insert", "Delete", "Update", "Trim", "Fillet", "Project"};
    std::mt19937 random(61);
    std::vector<std::string> names;
    for (size_t i = 0; i < count; ++i) {
        std::string name = families[random() % std::size(families)];
        name += verbs[random() % std::size(verbs)];
        name += std::to_string(100000 + i);
        while (name.size() < 24 && random() % 3)
            name += static_cast<char>('a' + random() % 26);
        names.push_back(name);
    }
    return names;
}

/** The names in the order in which they are asked for; both tables hold all of them. */
struct Names {
    Names() : order(namesOf(VX_BENCH_NAMES))
    {
        for (size_t i = 0; i < order.size(); ++i) {
            VxSymLogInt(order[i].c_str(), static_cast<int32_t>(i));
            VxSymLogFcn(order[i].c_str(), entryPoint);
            map[order[i]] = static_cast<int32_t>(i);
        }
        std::shuffle(order.begin(), order.end(), std::mt19937(62));
    }
    std::vector<std::string> order;
    absl::flat_hash_map<std::string, int32_t> map;
};

const Names &names()
{
    static const Names all;
    return all;
}

template <typename Find> void askForAll(benchmark::State &state, Find find)
{
    const auto &order = names().order;
    size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(find(order[next].c_str()));
        if (++next == order.size())
            next = 0;
    }
}

void lookUpInt(benchmark::State &state)
{
    askForAll(state, [](const char *name) {
        int32_t value;
        VxSymTryGetInt(name, &value);
        return value;
    });
}

void lookUpFcn(benchmark::State &state)
{
    askForAll(state, VxSymGetFcnNoErr);
}

void lookUpMap(benchmark::State &state)
{
    const auto &map = names().map;
    askForAll(state, [&map](const char *name) { return map.find(name)->second; });
}

#define VX_WORK_TEXT(work, names) #work " of " #names
#define VX_WORK(work, names) VX_WORK_TEXT(work, names)

BENCHMARK(lookUpInt)->Name(VX_WORK(symbol int, VX_BENCH_NAMES) "/vx");
BENCHMARK(lookUpMap)->Name(VX_WORK(symbol int, VX_BENCH_NAMES) "/flat_hash_map");
BENCHMARK(lookUpFcn)->Name(VX_WORK(symbol fcn, VX_BENCH_NAMES) "/vx");
BENCHMARK(lookUpMap)->Name(VX_WORK(symbol fcn, VX_BENCH_NAMES) "/flat_hash_map");

}
