// Compression and expansion of a megabyte beside one call of zlib at the same
// level.

#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <zlib.h>

#include "vx/compress.h"
#include "vx/mem.h"

namespace {

/** A megabyte of a part's records: names, counters and coordinates. */
const std::vector<unsigned char> &megabyte()
{
    static const auto bytes = [] {
        std::mt19937 random(66);
        std::vector<unsigned char> all;
        for (int32_t i = 0; all.size() < 1 << 20; ++i) {
            std::string line = "point " + std::to_string(i);
            for (int coordinate = 0; coordinate < 3; ++coordinate)
                line += " " + std::to_string(static_cast<double>(random() % 10000) * 0.125);
            line += '\n';
            all.insert(all.end(), line.begin(), line.end());
        }
        return all;
    }();
    return bytes;
}

const std::vector<unsigned char> &compressedMegabyte()
{
    static const auto bytes = [] {
        std::vector<unsigned char> out(compressBound(megabyte().size()));
        uLongf size = out.size();
        compress2(out.data(), &size, megabyte().data(), megabyte().size(), 9);
        out.resize(size);
        return out;
    }();
    return bytes;
}

void deflateVx(benchmark::State &state)
{
    for (auto _ : state) {
        void *block = nullptr;
        int32_t size = 0;
        VxLibDeflate(megabyte().data(), static_cast<int32_t>(megabyte().size()), &block, &size);
        benchmark::DoNotOptimize(size);
        VxMemFree(&block);
    }
}

void deflateZlib(benchmark::State &state)
{
    for (auto _ : state) {
        uLongf size = compressBound(megabyte().size());
        auto block = static_cast<Bytef *>(std::malloc(size));
        compress2(block, &size, megabyte().data(), megabyte().size(), 9);
        benchmark::DoNotOptimize(size);
        std::free(block);
    }
}

void inflateVx(benchmark::State &state)
{
    const auto &small = compressedMegabyte();
    for (auto _ : state) {
        void *block = nullptr;
        auto size = static_cast<int32_t>(megabyte().size());
        VxLibInflate(small.data(), static_cast<int32_t>(small.size()), &block, &size);
        benchmark::DoNotOptimize(size);
        VxMemFree(&block);
    }
}

void inflateZlib(benchmark::State &state)
{
    const auto &small = compressedMegabyte();
    for (auto _ : state) {
        uLongf size = megabyte().size();
        auto block = static_cast<Bytef *>(std::malloc(size));
        uncompress(block, &size, small.data(), small.size());
        benchmark::DoNotOptimize(size);
        std::free(block);
    }
}

BENCHMARK(deflateVx)->Name("deflate 1 MB/vx");
BENCHMARK(deflateZlib)->Name("deflate 1 MB/zlib");
BENCHMARK(inflateVx)->Name("inflate 1 MB/vx");
BENCHMARK(inflateZlib)->Name("inflate 1 MB/zlib");

}
