// Errors beside a logging library that keeps its records in memory, and
// blocks beside the run-time heap.

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <spdlog/logger.h>
#include <spdlog/sinks/ringbuffer_sink.h>

#include "vx/err.h"
#include "vx/mem.h"

namespace {

/** Errors after which a host shows them, and records of the ring. */
constexpr int32_t kept = 50;

const char *const path = "\\home\\user\\parts\\bracket.prt";

// ---------------------------------------------------------------- errors

/** Each error is another one, so that none is a repeat; the list is emptied as a host would. */
void fileErrors(benchmark::State &state)
{
    static int32_t number = 1000;
    for (auto _ : state) {
        ++number;
        VxErrLogMsg(number, 0, "FileErrors", 0, "Unable to create the file %s (%d).", path, number);
        if (number % kept == 0)
            VxErrClear();
    }
    VxErrClear();
}

void repeatError(benchmark::State &state)
{
    for (auto _ : state)
        VxErrLogMsg(1, 0, "RepeatError", 0, "Unable to create the file %s (%d).", path, 1);
    VxErrClear();
}

void suppressError(benchmark::State &state)
{
    VxErrDisable();
    for (auto _ : state)
        VxErrLogMsg(2, 0, "SuppressError", 0, "Unable to create the file %s (%d).", path, 2);
    VxErrEnable();
}

void logToRing(benchmark::State &state)
{
    auto sink = std::make_shared<spdlog::sinks::ringbuffer_sink_mt>(static_cast<size_t>(kept));
    spdlog::logger logger("bench", sink);
    int32_t number = 1000;
    for (auto _ : state)
        logger.error("Unable to create the file {} ({}).", path, ++number);
}

BENCHMARK(fileErrors)->Name("error filed/vx");
BENCHMARK(logToRing)->Name("error filed/spdlog");
BENCHMARK(repeatError)->Name("error repeated/vx");
BENCHMARK(logToRing)->Name("error repeated/spdlog");
BENCHMARK(suppressError)->Name("error suppressed/vx");
BENCHMARK(logToRing)->Name("error suppressed/spdlog");

// ---------------------------------------------------------------- memory

struct Toolkit {
    static void allocate(int32_t size, void **block) { VxMemAlloc(size, block); }
    static void free(void **block) { VxMemFree(block); }
};

struct Heap {
    static void allocate(int32_t size, void **block)
    {
        *block = std::malloc(static_cast<size_t>(size));
        if (!*block)
            std::abort();
    }

    static void free(void **block)
    {
        std::free(*block);
        *block = nullptr;
    }
};

/**
 * A part at work: many blocks are alive, and one after the other, in no
 * order, is replaced by a new one, which is filled.
 */
template <typename Allocator> void replaceBlocks(benchmark::State &state, int32_t size)
{
    std::vector<void *> blocks(1 << 16);
    for (void *&block : blocks)
        Allocator::allocate(size, &block);
    std::mt19937 random(7);
    std::vector<uint32_t> order(1 << 16);
    for (uint32_t &index : order)
        index = static_cast<uint32_t>(random() % blocks.size());
    size_t next = 0;
    for (auto _ : state) {
        void *&block = blocks[order[next++ % order.size()]];
        Allocator::free(&block);
        Allocator::allocate(size, &block);
        std::memset(block, 1, static_cast<size_t>(size));
    }
    for (void *&block : blocks)
        Allocator::free(&block);
}

/** One block, taken and given back at once: what the layer itself costs. */
template <typename Allocator> void oneBlock(benchmark::State &state, int32_t size)
{
    void *block = nullptr;
    for (auto _ : state) {
        Allocator::allocate(size, &block);
        benchmark::DoNotOptimize(block);
        Allocator::free(&block);
    }
}

void registerMemory()
{
    for (int32_t size : {16, 72, 512}) {
        std::string bytes = std::to_string(size) + " bytes";
        benchmark::RegisterBenchmark(("memory replace " + bytes + "/vx").c_str(), replaceBlocks<Toolkit>, size);
        benchmark::RegisterBenchmark(("memory replace " + bytes + "/malloc").c_str(), replaceBlocks<Heap>, size);
        benchmark::RegisterBenchmark(("memory one block of " + bytes + "/vx").c_str(), oneBlock<Toolkit>, size);
        benchmark::RegisterBenchmark(("memory one block of " + bytes + "/malloc").c_str(), oneBlock<Heap>, size);
    }
}

const bool registered = (registerMemory(), true);

}
