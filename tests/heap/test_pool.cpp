#include "vx/pool.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "heap/pool.h"
#include "heap/pool_area.h"
#include "heap/pool_chunks.h"
#include "platform/os/os.h"
#include "tests/support/faults.h"
#include "tests/support/temp_folder.h"
#include "vx/err.h"

using namespace vx;
using namespace vx::heap;

namespace {

std::string complaints;

class Pools : public testing::Test {
protected:
    void SetUp() override
    {
        VxExitHeapStMgr();
        complaints.clear();
        os::setDebuggerSink([](const char *text) { complaints += text; });
        manager().checking = true;
    }

    void TearDown() override
    {
        VxExitHeapStMgr();
        manager().checking = false;
        manager().statistics = false;
        os::setDebuggerSink(nullptr);
        EXPECT_EQ(chunkBytesHeld(), 0);
        VxErrClear();
    }

    static void *makePool(int32_t kilobytes = 8, const char *name = "test")
    {
        void *pool = nullptr;
        EXPECT_EQ(VxCreHpMemPool(kilobytes, name, 0, nullptr, &pool), 0);
        return pool;
    }

    static int32_t areaOf(const void *pool) { return static_cast<const VxHpPool *>(pool)->area; }

    static void expectSound()
    {
        for (int32_t area = FindNextHSMArea(-2); area >= 0; area = FindNextHSMArea(area))
            ASSERT_STREQ(verifyArea(area), nullptr) << "area " << area;
    }
};

TEST_F(Pools, AListOneUnitLargerIsNotUsed)
{
    void *pool = makePool();
    std::vector<void *> blocks;
    for (int i = 0; i < 6; ++i)
        blocks.push_back(VxAlocHpMemPool(pool, 1, i % 2 ? 16 : 24)); // gross 24 and 32
    void *freed = blocks[2];                                         // payload 24
    VxDeleteMemObj(freed);
    void *smaller = VxAlocHpMemPool(pool, 1, 16); // payload 16: list 3 is one unit larger
    EXPECT_NE(smaller, freed);
    void *exact = VxAlocHpMemPool(pool, 1, 24);
    EXPECT_EQ(exact, freed);
    VxDeleteMemObj(exact);
    void *twoSmaller = VxAlocHpMemPool(pool, 1, 8); // payload 8: two units larger may be split
    EXPECT_EQ(twoSmaller, freed);
    expectSound();
}

TEST_F(Pools, NeighboursMergeAndAFreeChunkGoesBack)
{
    void *pool = makePool();
    VxHsmUsage usage{};
    std::vector<void *> blocks;
    auto chunks = [&] {
        EXPECT_EQ(VxHpAreaUsage(areaOf(pool), &usage), 0u);
        return usage.chunks;
    };
    while (chunks() < 3)
        blocks.push_back(VxAlocHpMemPool(pool, 1, 100'000));
    for (size_t i : {0u, 2u, 1u})
        VxDeleteMemObj(blocks[i]);
    expectSound();
    for (size_t i = 3; i < blocks.size(); ++i)
        VxDeleteMemObj(blocks[i]);
    EXPECT_EQ(chunks(), 1) << "the pool's own record still lives";
    expectSound();
    EXPECT_LE(chunkBytesHeld(), 3 * mebibyte) << "the pool's, the persistent area's, one spare";
}

/** How a random run goes: many small pools while everything is watched, or few at full speed. */
struct Course {
    unsigned seed;
    bool watched;
    size_t pools;
    size_t largest; ///< bytes of one block in twenty
    size_t freesOf1000;
    bool someWait; ///< a pool grows large
};

void PrintTo(const Course &run, std::ostream *out)
{
    *out << "seed " << run.seed;
}

class RandomRun : public Pools, public testing::WithParamInterface<Course> {};

INSTANTIATE_TEST_SUITE_P(Runs, RandomRun,
                         testing::Values(Course{20261121, true, 200, 40'000, 440, false},
                                         Course{7, false, 2, 20'000, 330, true},
                                         Course{8, false, 3, 1'000, 480, false}));

TEST_P(RandomRun, KeepsEveryByteOfEveryLiveBlock)
{
    Course run = GetParam();
    SCOPED_TRACE(run.seed);
    std::mt19937 random(run.seed);
    manager().checking = run.watched;
    VxHpStatistics(run.watched);
    auto below = [&](size_t n) { return static_cast<size_t>(random() % n); };
    struct Live {
        void *pool;
        int32_t size;
        unsigned char fill;
    };
    std::map<void *, Live> live;
    std::vector<void *> pools;
    bool someWaited = false, someKept = false;

    auto check = [](void *block, const Live &entry) {
        auto bytes = static_cast<unsigned char *>(block);
        ASSERT_TRUE(std::all_of(bytes, bytes + entry.size, [&](unsigned char b) { return b == entry.fill; }));
    };
    auto anyLive = [&] { return std::next(live.begin(), static_cast<ptrdiff_t>(below(live.size()))); };
    for (int step = 0; step < 60'000; ++step) {
        size_t what = below(1000);
        const void *touched = nullptr;
        if (what < 4 && pools.size() < run.pools) {
            pools.push_back(makePool(static_cast<int32_t>(below(3000)), "run"));
        } else if (what < 6 && (run.watched || step % 256 == 0) && !pools.empty()) {
            size_t which = below(pools.size());
            std::erase_if(live, [&](const auto &entry) { return entry.second.pool == pools[which]; });
            ASSERT_EQ(VxFreeHpMemPool(pools[which]), 0u);
            ASSERT_EQ(VxSetHpMemPool(pools[which]), 1u) << "a freed pool's record";
            pools.erase(pools.begin() + static_cast<ptrdiff_t>(which));
        } else if (what < 1000 - run.freesOf1000) {
            void *pool = pools.empty() || below(10) == 0 ? nullptr : pools[below(pools.size())];
            auto size = static_cast<int32_t>(below(20) == 0 ? 1 + below(run.largest) : 1 + below(300));
            auto fill = static_cast<unsigned char>(1 + below(255));
            if (what < 20)
                fault::refuse(fault::Kind::allocation, 1); // a chunk request that fails
            void *block = VxAlocHpMemPool(pool, 1, size);
            fault::refuse(fault::Kind::allocation, 0);
            if (!block)
                continue;
            check(block, {pool, size, 0});
            std::memset(block, fill, static_cast<size_t>(size));
            ASSERT_TRUE(live.try_emplace(block, Live{pool, size, fill}).second);
            touched = pool;
        } else if (!live.empty()) {
            auto entry = anyLive();
            touched = entry->second.pool;
            check(entry->first, entry->second);
            VxDeleteMemObj(entry->first);
            VxDeleteMemObj(entry->first); // ignored
            live.erase(entry);
        }
        someWaited |= manager().waiting.count > 0;
        someKept |= !pools.empty() && keepsAny(stateOf(areaOf(pools.front())));
        if (run.watched && touched) {
            ASSERT_STREQ(verifyArea(areaOf(touched)), nullptr);
        }
        if (step % 500 == 0)
            expectSound();
        if (HasFatalFailure())
            return;
    }
    EXPECT_EQ(someWaited, run.someWait);
    EXPECT_EQ(someKept, !run.watched);
    for (auto &[block, entry] : live)
        check(block, entry);
    std::shuffle(pools.begin(), pools.end(), random);
    for (void *pool : pools)
        EXPECT_EQ(VxFreeHpMemPool(pool), 0u);
    expectSound();
}

TEST_F(Pools, TheAreaTableGrowsPastSeveralSizesAndFreeBlocksSurviveTheMove)
{
    std::vector<void *> pools;
    std::vector<int32_t> sizes{VgNAreas};
    for (int i = 0; i < 60; ++i) {
        pools.push_back(makePool());
        VxDeleteMemObj(VxAlocHpMemPool(pools.back(), 1, 40)); // a free block on a list
        VxAlocHpMemPool(pools.back(), 1, 8);
        if (VgNAreas != sizes.back())
            sizes.push_back(VgNAreas);
    }
    ASSERT_GE(sizes.size(), 3u);
    expectSound();
    for (void *pool : pools)
        EXPECT_NE(VxAlocHpMemPool(pool, 1, 40), nullptr);
    expectSound();
    for (void *pool : pools)
        EXPECT_EQ(VxFreeHpMemPool(pool), 0u);
}

TEST_F(Pools, WhatIsNoBlockInUseIsIgnoredAndReported)
{
    void *pool = makePool(8, "model");
    auto block = static_cast<unsigned char *>(VxAlocHpMemPool(pool, 1, 40));
    int onStack = 0;
    VxDeleteMemObj(nullptr);
    EXPECT_EQ(complaints, "");
    for (void *foreign : {static_cast<void *>(&onStack), static_cast<void *>(block + 4),
                          reinterpret_cast<void *>(~uintptr_t{0}), reinterpret_cast<void *>(uintptr_t{8})}) {
        complaints.clear();
        VxDeleteMemObj(foreign);
        EXPECT_NE(complaints, "");
        EXPECT_EQ(AskHeapSMemArea(foreign), -1);
    }

    VxDeleteMemObj(block);
    complaints.clear();
    VxDeleteMemObj(block);
    EXPECT_NE(complaints.find("twice"), std::string::npos);
    EXPECT_EQ(AskHeapSMemArea(block), -1);
}

TEST_F(Pools, AFreeBlockThatWasWrittenOverIsNeverFollowed)
{
    void *pool = makePool(8, "model");
    unsigned char *blocks[4];
    for (unsigned char *&block : blocks)
        block = static_cast<unsigned char *>(VxAlocHpMemPool(pool, 1, 40));
    VxDeleteMemObj(blocks[1]);
    std::memset(blocks[0], 0xEE, 40 + 2 * 4 + 8); // over the end, and the header and links of the next
    EXPECT_NE(verifyArea(areaOf(pool)), nullptr);
    for (void *neighbour : {blocks[0], blocks[2]}) {
        complaints.clear();
        VxDeleteMemObj(neighbour);
        EXPECT_NE(complaints.find("VX:model"), std::string::npos);
    }
    EXPECT_EQ(VxAlocHpMemPool(pool, 1, 40), blocks[2]);
    complaints.clear();
    void *other = VxAlocHpMemPool(pool, 1, 40);
    EXPECT_NE(complaints.find("overwritten"), std::string::npos);
    EXPECT_GT(other, static_cast<void *>(blocks[3]));
    EXPECT_EQ(VxFreeHpMemPool(pool), 0u);
}

/** So many blocks of a pool that is not told of misuse. */
std::vector<void *> fill(void *pool, int count, int32_t size)
{
    manager().checking = false;
    std::vector<void *> blocks;
    for (int i = 0; i < count; ++i)
        blocks.push_back(VxAlocHpMemPool(pool, 1, size));
    return blocks;
}

TEST_F(Pools, WhatManyBlocksLeaveMergesBeforeAnybodyLooks)
{
    void *pool = makePool();
    VxHsmUsage usage{};
    std::vector<void *> blocks = fill(pool, 8 * 4096, 248);
    VxHpAreaUsage(areaOf(pool), &usage);
    ASSERT_EQ(usage.chunks, 9);

    std::shuffle(blocks.begin(), blocks.end(), std::mt19937(3));
    for (size_t i = 0; i < 16'000; ++i)
        VxDeleteMemObj(blocks[i]);
    settleWaiting();
    EXPECT_EQ(keptCount(stateOf(areaOf(pool))), 16'000u);
    expectSound();
    for (size_t i = 0; i < 16'000; ++i)
        ASSERT_NE(blocks[i] = VxAlocHpMemPool(pool, 1, 248), nullptr);
    EXPECT_EQ(keptCount(stateOf(areaOf(pool))), 0u);
    VxHpAreaUsage(areaOf(pool), &usage);
    EXPECT_EQ(usage.chunks, 9);

    for (void *block : blocks)
        VxDeleteMemObj(block);
    EXPECT_LE(chunkBytesHeld(), 3 * mebibyte) << "the pool's, the persistent area's, one spare";
    VxHpAreaUsage(areaOf(pool), &usage);
    EXPECT_EQ(usage.chunks, 1);
    expectSound();
}

TEST_F(Pools, ABlockOfALargeAreaHandedBackTwiceStaysWithItsNextOwner)
{
    void *pool = makePool();
    void *block = fill(pool, 8 * 4096, 248)[100];
    VxDeleteMemObj(block);
    settleWaiting();
    VxDeleteMemObj(block); // waits, though it is free
    EXPECT_EQ(VxAlocHpMemPool(pool, 1, 248), block);
    EXPECT_EQ(AskHeapSMemArea(block), areaOf(pool));
    VxDeleteMemObj(block);
    VxDeleteMemObj(block);
    EXPECT_EQ(AskHeapSMemArea(block), -1);
    expectSound();
}

TEST_F(Pools, AMergingWalkEndsAtWhatIsWrittenOver)
{
    void *pool = makePool(8, "model");
    std::vector<void *> blocks = fill(pool, 1000, 40);
    manager().checking = true;
    for (size_t i = 0; i < 1000; i += 2)
        VxDeleteMemObj(blocks[i]);
    std::memset(static_cast<char *>(blocks[501]) + 40, 0xEE, 24); // over the end, and a kept block's header
    VxHsmUsage usage{};
    VxHpAreaUsage(areaOf(pool), &usage);
    EXPECT_NE(complaints.find("VX:model"), std::string::npos);
    for (size_t i = 1; i < 1000; i += 2)
        VxDeleteMemObj(blocks[i]);
    std::vector<void *> again = fill(pool, 1000, 40);
    std::sort(again.begin(), again.end());
    EXPECT_EQ(std::adjacent_find(again.begin(), again.end()), again.end());
    EXPECT_FALSE(std::binary_search(again.begin(), again.end(), blocks[502]));
    EXPECT_EQ(VxFreeHpMemPool(pool), 0u);
}

TEST_F(Pools, BeforeAChunkIsRefusedEveryAreaMerges)
{
    test::Environment cap("BHSM_PSEUDO_VM_LIMIT", "0x300000");
    void *pools[] = {makePool(), makePool()};
    std::vector<void *> blocks = fill(pools[0], 2 * 4096, 248);
    blocks.resize(3000);
    for (void *block : blocks)
        VxDeleteMemObj(block); // fewer than an eighth would be merged for a chunk
    EXPECT_NE(VxAlocHpMemPool(pools[0], 1, 500'000), nullptr);
    expectSound();
}

TEST_F(Pools, RefusalsChangeNothing)
{
    void *pool = makePool();
    for (auto [count, size] : {std::pair{0, 8}, {8, 0}, {-1, 8}, {70'000, 70'000}})
        EXPECT_EQ(VxAlocHpMemPool(pool, count, size), nullptr);
    int notAPool = 0;
    EXPECT_EQ(VxAlocHpMemPool(&notAPool, 1, 8), nullptr);
    void *block = &notAPool;
    EXPECT_EQ(VxAlocSameMPool(&notAPool, 1, 8, &block), 1u);
    EXPECT_EQ(block, nullptr);
    Payload transient = allocate(0, 8);
    EXPECT_EQ(VxAlocSameMPool(transient, 1, 8, &block), 1u) << "area 0 serves nobody else";
    EXPECT_EQ(VxAlocSameMPool(pool, 1, 8, &block), 0u);
    EXPECT_EQ(AskHeapSMemArea(block), areaOf(pool));
    EXPECT_EQ(VxFreeHpMemPool(nullptr), 1u);
    EXPECT_EQ(VxFreeHpMemPool(block), 1u) << "a block that is no pool's record";
    expectSound();
}

TEST_F(Pools, TheCurrentPoolEndsWithItsPool)
{
    void *first = makePool();
    void *second = makePool();
    EXPECT_EQ(VxSetHpMemPool(first), 0u);
    EXPECT_EQ(VxSetHpMemPool(first), 0u);
    EXPECT_EQ(VxFreeHpMemPool(second), 0u);
    EXPECT_EQ(VxPoolGetCrnt(), first);
    EXPECT_EQ(VxSetHpMemPool(second), 1u);
    EXPECT_EQ(VxPoolGetCrnt(), first);
    EXPECT_EQ(VxFreeHpMemPool(first), 0u);
    EXPECT_EQ(VxPoolGetCrnt(), nullptr);
}

TEST_F(Pools, TheCapHoldsForAllAreasTogether)
{
    test::Environment cap("BHSM_PSEUDO_VM_LIMIT", "0x300000");
    void *pool = makePool();
    int n = 0;
    while (VxAlocHpMemPool(pool, 1, 500'000))
        ASSERT_LT(++n, 100);
    EXPECT_LE(chunkBytesHeld(), 3 * mebibyte);
    EXPECT_GE(n, 4);
    expectSound();
    VxFreeHpMemPool(pool);
    EXPECT_NE(makePool(), nullptr);
}

TEST_F(Pools, StatisticsTellWhereMemoryWent)
{
    VxHpStatistics(1);
    void *pool = makePool();
    VxHsmUsage before{}, usage{};
    VxHpAreaUsage(areaOf(pool), &before);
    void *block = VxAlocHpMemPool(pool, 10, 10);
    VxAlocHpMemPool(pool, 1, 1);
    VxDeleteMemObj(block);
    ASSERT_EQ(VxHpAreaUsage(areaOf(pool), &usage), 0u);
    EXPECT_EQ(std::tuple(usage.requests - before.requests, usage.frees - before.frees), std::tuple(2, 1));
    EXPECT_EQ(usage.bytes - before.bytes, 1);
    EXPECT_EQ(usage.peakBytes - before.bytes, 101);
    EXPECT_EQ(usage.grossBytes - before.grossBytes, 16);
}

TEST_F(Pools, NothingLeaksWhenAnyAllocationIsRefused)
{
    test::refusingEachAllocation([] {
        void *pool = nullptr;
        bool made = VxCreHpMemPool(8, "refused", 0, "described", &pool) == 0;
        void *block = made ? VxAlocHpMemPool(pool, 1, 3'000'000) : nullptr;
        bool refused = fault::refusals(fault::Kind::allocation) > 0;
        EXPECT_TRUE(refused || block);
        if (pool)
            VxFreeHpMemPool(pool);
        VxExitHeapStMgr();
        EXPECT_EQ(chunkBytesHeld(), 0);
    });
}

}
