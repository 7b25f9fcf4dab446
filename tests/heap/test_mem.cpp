#include "vx/mem.h"

#include <atomic>
#include <cstring>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "heap/spare_chunks.h"
#include "heap/heap_state.h"
#include "platform/os/os.h"
#include "tests/support/error_log.h"
#include "tests/support/faults.h"
#include "vx/tools.h"

using namespace vx;

namespace {

int emergencies = 0;
bool reserveWasThere = false;

/** An empty error log with the toolkit's alert file, an allocator without a reserve, a counting hook. */
class Memory : public test::ErrorLog {
protected:
    Memory()
    {
        toolsAlertFile("1,0,allocate %d\n2,0,resize %d\n57,0,out of memory");
        VgEmergency = nullptr;
        VxMemExit();
        emergencies = 0;
        VgEmergency = [](int32_t argument) -> uint32_t {
            EXPECT_EQ(argument, 0);
            reserveWasThere = heap::state().reserve != nullptr;
            ++emergencies;
            return 17;
        };
    }

    ~Memory() override
    {
        VgMemLeak = 0;
        VgEmergency = nullptr;
        VxMemExit();
    }

    /** Call with the next allocation refused. */
    template <typename Call> static uint32_t refused(Call call)
    {
        fault::refuse(fault::Kind::allocation, 1);
        uint32_t result = call();
        EXPECT_EQ(fault::refusals(fault::Kind::allocation), 1);
        fault::refuse(fault::Kind::allocation, 0);
        return result;
    }

    static std::vector<std::string> filed()
    {
        std::vector<std::string> texts;
        for (const auto &record : frame::errorState().pending)
            texts.emplace_back(record.text);
        VxErrClear();
        setSecond(second_ += 2);
        return texts;
    }

    using Texts = std::vector<std::string>;
    static inline int64_t second_ = 5000;
};

TEST_F(Memory, ABlockComesThroughThePointer)
{
    for (auto allocate : {VxMemAlloc, VxMemAllocZero, VxMemAllocAlt, VxMemAllocNoEmer})
        for (int32_t size : {1, 16, 512, 1000000}) {
            const int64_t before = VgMemUsed;
            void *block = nullptr;
            ASSERT_EQ(allocate(size, &block), 0u);
            EXPECT_TRUE(allocate != VxMemAllocZero || VxMemIsZero(block, size));
            std::memset(block, 0xAA, static_cast<size_t>(size));
            EXPECT_EQ(VxMemFree(&block), 0u);
            EXPECT_EQ(block, nullptr);
            EXPECT_EQ(VgMemUsed, before + size) << "the bytes asked for so far";
            EXPECT_TRUE(!VxMemDup(2, "x", &block) && !std::memcmp(block, "x", 2) && !VxMemFree(&block));
        }
}

TEST_F(Memory, ASizeBelowOneIsRefused)
{
    int local = 0;
    for (int32_t size : {0, -1, std::numeric_limits<int32_t>::min()}) {
        std::string number = std::to_string(size);
        void *block = &local;
        for (auto allocate : {VxMemAlloc, VxMemAllocZero, VxMemAllocAlt}) {
            EXPECT_EQ(allocate(size, &block), 1u);
            EXPECT_EQ(filed(), (Texts{"allocate " + number}));
        }
        EXPECT_EQ(VxMemResize(size, &block), 1u);
        EXPECT_EQ(filed(), (Texts{"resize " + number}));
        EXPECT_EQ(VxMemResizeNoEmer(size, &block), 1u);
        EXPECT_EQ(block, &local);
        EXPECT_EQ(VxMemAllocNoEmer(size, &block), 1u);
        EXPECT_EQ(block, nullptr);
        EXPECT_TRUE(filed().empty());
    }
    EXPECT_EQ(emergencies, 0);
}

TEST_F(Memory, ARefusalGivesTheReserveBackAndReports)
{
    ASSERT_EQ(VxMemInit(), 0u);
    int local = 0;
    void *block = &local;
    EXPECT_EQ(refused([&] { return VxMemAlloc(100, &block); }), 1u);
    EXPECT_EQ(block, nullptr);
    EXPECT_EQ(heap::state().reserve, nullptr);
    EXPECT_EQ(emergencies, 1);
    EXPECT_FALSE(reserveWasThere);
    EXPECT_EQ(filed(), (Texts{"allocate 100", "out of memory"}));
    VgMemLeak = 1;
    os::setDebuggerSink([](const char *line) { VxErrLogMsg(9, 0, "", 0, "%s", line); });
    EXPECT_EQ(refused([&] { return VxMemAllocZero(200, &block); }), 1u);
    os::setDebuggerSink(nullptr);
    EXPECT_EQ(filed()[0], "200 bytes of memory were refused\n");
    EXPECT_EQ(emergencies, 2) << "although the reserve has gone";
    // A host that has recovered takes it anew.
    EXPECT_EQ(VxMemInit(), 0u);
    EXPECT_NE(heap::state().reserve, nullptr);
}

TEST_F(Memory, EachFunctionReportsInItsWay)
{
    void *block = nullptr;
    ASSERT_EQ(VxMemAlloc(10, &block), 0u);
    void *old = block;
    EXPECT_EQ(refused([&] { return VxMemResize(300, &block); }), 1u);
    EXPECT_EQ(filed(), (Texts{"resize 300", "out of memory"}));
    EXPECT_EQ(refused([&] { return VxMemSmrtResize(301, &block); }), 1u);
    EXPECT_EQ(filed(), (Texts{"resize 301", "out of memory"}));
    EXPECT_EQ(emergencies, 2);
    EXPECT_EQ(refused([&] { return VxMemResizeNoEmer(302, &block); }), 1u);
    EXPECT_EQ(block, old);
    VxMemFree(&block);
    EXPECT_EQ(refused([&] { return VxMemSmrtResize(303, &block); }), 1u);
    EXPECT_EQ(filed(), (Texts{"allocate 303", "out of memory"}));
    EXPECT_EQ(refused([&] { return VxMemAllocAlt(304, &block); }), 1u);
    EXPECT_EQ(filed(), (Texts{"allocate 304"}));
    EXPECT_EQ(emergencies, 4);
    EXPECT_EQ(refused([&] { return VxMemAllocNoEmer(305, &block); }), 1u);
    EXPECT_EQ(emergencies, 4);
    EXPECT_TRUE(filed().empty());
}

TEST_F(Memory, SuppressionHidesNoRefusedAllocation)
{
    VxErrDisable();
    void *block = nullptr;
    refused([&] { return VxMemAlloc(100, &block); });
    EXPECT_EQ(filed(), (Texts{"allocate 100", "out of memory"}));
    EXPECT_TRUE(VxErrIsDisabled());
    refused([&] { return VxMemAllocAlt(100, &block); });
    refused([&] { return VxMemResize(100, &block); });
    EXPECT_TRUE(filed().empty());
    VxErrEnable();
}

TEST_F(Memory, WithNoMemoryAtAllARefusalStillReturns)
{
    VxMemInit();
    fault::refuseFrom(fault::Kind::allocation, 1);
    void *block = nullptr;
    uint32_t result = VxMemAlloc(100, &block);
    fault::refuse(fault::Kind::allocation, 0);
    EXPECT_EQ(result, 1u);
    EXPECT_EQ(emergencies, 1);
    EXPECT_EQ(VxErrCnt(), 0);
}

TEST_F(Memory, TheReserveIsTakenOnceAndGivenBackOnRequest)
{
    EXPECT_EQ(VxMemInit(), 0u);
    void *reserve = heap::state().reserve;
    EXPECT_GE(os::usableSize(reserve), size_t{8'000'000});
    EXPECT_EQ(VxMemInit(), 0u);
    EXPECT_EQ(heap::state().reserve, reserve);
    EXPECT_EQ(VxMemEmerFree(), 17u);
    EXPECT_EQ(heap::state().reserve, nullptr);
    EXPECT_EQ(refused(VxMemInit), 1u);
    EXPECT_EQ(filed(), (Texts{"allocate 8000000", "out of memory"}));
}

TEST_F(Memory, ResizingKeepsTheContents)
{
    void *block = nullptr;
    EXPECT_EQ(VxMemSmrtResize(0, &block), 1u);
    EXPECT_EQ(block, nullptr);
    EXPECT_EQ(VxMemSmrtResize(4, &block), 0u);
    std::memcpy(block, "abcd", 4);
    EXPECT_EQ(VxMemSmrtResize(100000, &block), 0u);
    EXPECT_EQ(std::memcmp(block, "abcd", 4), 0);
    EXPECT_EQ(VxMemResize(2, &block), 0u);
    EXPECT_EQ(VxMemResizeNoEmer(5000, &block), 0u);
    EXPECT_EQ(std::memcmp(block, "ab", 2), 0);
    VxMemFree(&block);
    EXPECT_TRUE(filed().empty());
}

TEST_F(Memory, CopyingAndFillingStayInBounds)
{
    char buffer[] = "12345678";
    EXPECT_EQ(VxMemCpy(buffer, 4, "abcdef", 5), 1u);
    EXPECT_EQ(VxMemCpy(buffer, 4, "abcdef", -1), 1u);
    EXPECT_EQ(VxMemCpy(buffer, 0, "abcdef", 0), 1u);
    EXPECT_STREQ(buffer, "12345678");
    EXPECT_EQ(VxMemCpy(buffer, 4, "abcdef", 4), 0u);
    EXPECT_STREQ(buffer, "abcd5678");
    EXPECT_EQ(VxMemCpy(buffer + 1, 7, buffer, 7), 0u);
    EXPECT_STREQ(buffer, "aabcd567");

    EXPECT_EQ(VxMemZero(buffer + 1, 2), buffer + 1);
    EXPECT_EQ(std::string(buffer, 5), std::string("a\0\0cd", 5));
    EXPECT_EQ(VxMemZero(buffer, -1), buffer);
    EXPECT_EQ(VxMemIsZero(buffer + 1, 2), 1);
    EXPECT_EQ(VxMemIsZero(buffer + 1, 3), 0);
    EXPECT_EQ(VxMemIsZero(buffer, -5), 1);

    double doubles[3] = {1, 2, 3};
    VxMemSetDouble(doubles, 0.5, 2);
    EXPECT_EQ(doubles[1], 0.5);
    EXPECT_EQ(doubles[2], 3);
    int32_t ints[3] = {1, 2, 3};
    VxMemSetInt(ints, -9, 2);
    VxMemSetInt(ints, 4, -1);
    EXPECT_EQ(ints[1], -9);
    EXPECT_EQ(ints[2], 3);
}

TEST_F(Memory, AnArrayIsMadeWholeOrNotAtAll)
{
    constexpr int32_t big = std::numeric_limits<int32_t>::max();
    const struct {
        int32_t elemSize, rows, columns;
    } cases[] = {{8, 2, 0}, {0, 2, 3}, {-4, 2, -3}, {8, -1, 3}, {8, -5, 3}, {8, 2, big}, {8, big, 1}};
    int local = 0;
    void *dummy = &local;
    for (const auto &c : cases) {
        void **array = &dummy;
        EXPECT_EQ(Vx2DArrAlloc(c.elemSize, c.rows, c.columns, &array), 1u);
        EXPECT_EQ(array, nullptr);
        EXPECT_EQ(filed().size(), 1u);
    }
    // What was made before a refusal is freed; a leak would be found by the address sanitizer.
    test::refusingEachAllocation([&] {
        void **array = &dummy;
        uint32_t result = Vx2DArrAlloc(8, 3, 5, &array);
        EXPECT_EQ(result, array ? 0u : 1u);
        for (int row = 0; array && row < 3; ++row)
            std::memset(array[row], row, 40);
        EXPECT_TRUE(!array || array[3] == nullptr);
        Vx2DArrFree(&array);
        EXPECT_EQ(array, nullptr);
    });
}

TEST_F(Memory, ThreadsThatRunOutTogetherGiveTheReserveBackOnce)
{
    static std::atomic<int> hooks{0};
    hooks = 0;
    VgEmergency = nullptr;
    VxMemInit();
    VgEmergency = [](int32_t) -> uint32_t {
        ++hooks;
        return 0;
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            for (int round = 0; round < 50; ++round) {
                void *block = nullptr;
                VxMemAlloc(64, &block);
                VxMemFree(&block);
                fault::refuse(fault::Kind::allocation, 1);
                VxMemAlloc(64, &block);
                fault::refuse(fault::Kind::allocation, 0);
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(hooks, 200);
    EXPECT_EQ(heap::state().reserve, nullptr);
}

TEST_F(Memory, ChunksGivenBackAreKeptUpToABoundAndUntilMemoryEnds)
{
    constexpr int32_t bound = 32;
    std::vector<void *> chunks;
    for (int32_t i = 0; i < bound + 8; ++i) {
        chunks.push_back(heap::takeSpareChunk());
        ASSERT_NE(chunks.back(), nullptr);
        std::memset(chunks.back(), 0xAA, heap::spareChunkBytes);
    }
    for (void *chunk : chunks)
        heap::giveBackSpareChunk(chunk);
    EXPECT_EQ(heap::state().spare.count, bound);

    fault::refuse(fault::Kind::allocation, 1);
    void *kept = heap::takeSpareChunk();
    EXPECT_EQ(fault::calls(fault::Kind::allocation), 0) << "a kept chunk needs no allocation";
    EXPECT_EQ(kept, chunks[bound - 1]);
    void *block = nullptr;
    EXPECT_EQ(VxMemAlloc(64, &block), 1u);
    fault::refuse(fault::Kind::allocation, 0);
    EXPECT_EQ(heap::state().spare.count, 0);
    heap::giveBackSpareChunk(kept);
    EXPECT_EQ(heap::state().spare.count, 1);
}

TEST_F(Memory, ThreadsShareChunks)
{
    std::vector<std::thread> threads;
    for (unsigned char mark = 1; mark <= 4; ++mark)
        threads.emplace_back([mark] {
            for (int round = 0; round < 200; ++round) {
                auto chunk = static_cast<unsigned char *>(heap::takeSpareChunk());
                std::memset(chunk, mark, heap::spareChunkBytes);
                if (round % 50 == 0)
                    heap::freeSpareChunks();
                EXPECT_EQ(chunk[0], mark);
                EXPECT_EQ(std::memcmp(chunk, chunk + 1, heap::spareChunkBytes - 1), 0) << "nobody else has it";
                heap::giveBackSpareChunk(chunk);
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_LE(heap::state().spare.count, 4);
}

}
