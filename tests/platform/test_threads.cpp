#include <atomic>
#include <set>
#include <thread>
#include <vector>

#include "platform/os/test_values.h"
#include "tests/support/faults.h"
#include "vx/thread.h"

using namespace vx;
using namespace vx::test;

namespace {

struct Record {
    std::atomic<int> calls{0};
    std::thread::id thread;
    uint32_t result = 0;
    bool throws = false;
};

uint32_t work(void *record)
{
    auto self = static_cast<Record *>(record);
    ++self->calls;
    self->thread = std::this_thread::get_id();
    if (self->throws)
        throw "thrown by the work";
    return self->result;
}

using Records = std::vector<Record>;

/** How many records were done by other threads than this one; each exactly `calls` times. */
size_t doneElsewhere(const Records &records, int calls)
{
    std::set<std::thread::id> threads;
    for (const Record &record : records) {
        EXPECT_EQ(record.calls, calls) << &record - records.data();
        if (record.thread != std::this_thread::get_id())
            threads.insert(record.thread);
    }
    return threads.size();
}

constexpr int32_t stride = sizeof(Record);

/** A pool on a machine of so many processors. */
class PoolOf {
public:
    explicit PoolOf(int32_t processors)
    {
        os::setTestProcessorCount(processors);
        EXPECT_EQ(HkAllocMulTrdPool(&pool), 0u);
        os::setTestProcessorCount(0);
    }
    ~PoolOf() { EXPECT_TRUE(HkFreeMulTrdPool(&pool) == 0 && !pool); }
    PoolOf(const PoolOf &) = delete;
    PoolOf &operator=(const PoolOf &) = delete;

    uint32_t run(Records &records) { return HkRunMulTrdPool(work, records.data(), stride, pool); }

    VxThreadPool *pool = nullptr;
};

TEST(Threads, OfOneCallEachDoOneRecord)
{
    for (int32_t n : {0, 1, 2, 200}) {
        Records records(static_cast<size_t>(n));
        EXPECT_EQ(HkRunMulTrd(work, records.data(), stride, n), 0u);
        // Their numbers may be used again once they have ended.
        EXPECT_GE(doneElsewhere(records, 1), n > 0 ? 1u : 0u) << n;
    }
}

TEST(Threads, RunAtTheSameTime)
{
    // Each waits until the other has begun.
    static std::atomic<int> begun;
    auto meet = +[](void *) {
        for (++begun; begun < 2;)
            std::this_thread::yield();
        return 0u;
    };
    int records[2];
    begun = 0;
    EXPECT_EQ(HkRunMulTrd(meet, records, sizeof *records, 2), 0u);
    PoolOf two(2);
    begun = 0;
    EXPECT_EQ(HkRunMulTrdPool(meet, records, sizeof *records, two.pool), 0u);
}

TEST(ThreadPool, OnOneProcessorTheCallerWorksAndGetsTheResult)
{
    PoolOf single(1);
    Records records(2);
    records[0].result = 42;
    EXPECT_EQ(single.run(records), 42u);
    EXPECT_TRUE(records[0].thread == std::this_thread::get_id() && records[1].calls == 0);
    EXPECT_EQ(single.pool->workers, 0);
    records[0].throws = true;
    EXPECT_EQ(single.run(records), 1u);
}

TEST(ThreadPool, IsMadeAndFreedAThousandTimes)
{
    for (int round = 0; round < 1000; ++round) {
        PoolOf some(round ? 2 + round % 3 : 200);
        Records records(static_cast<size_t>(some.pool->workers));
        for (int dispatch = 1; dispatch <= (round + 2) % 3; ++dispatch) {
            for (Record &record : records)
                record.result = 7; // the record's affair
            ASSERT_EQ(some.run(records), 0u);
            ASSERT_EQ(doneElsewhere(records, dispatch), records.size());
        }
    }
}

TEST(ThreadPool, AHundredThousandDispatchesLoseNone)
{
    PoolOf two(2);
    // Plain words: the pool alone orders the caller's and the workers' accesses.
    struct Sum {
        int64_t added, total;
    } sums[2] = {};
    auto add = +[](void *record) {
        auto sum = static_cast<Sum *>(record);
        sum->total += sum->added;
        return 0u;
    };
    for (int64_t dispatch = 1; dispatch <= 100000; ++dispatch) {
        sums[0].added = dispatch;
        sums[1].added = -dispatch;
        ASSERT_EQ(HkRunMulTrdPool(add, sums, sizeof *sums, two.pool), 0u);
        const int64_t total = dispatch * (dispatch + 1) / 2;
        ASSERT_EQ(std::pair(sums[0].total, sums[1].total), std::pair(total, -total));
        if (dispatch % 10000 == 0) // long enough for the workers to fall asleep
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

TEST(ThreadPool, AnExceptionFailsTheDispatchAndNothingElse)
{
    PoolOf three(3);
    Records records(3);
    for (int run : {1, 2}) { // every worker lives on
        records[1].throws = run == 1;
        EXPECT_EQ(three.run(records), records[1].throws);
        EXPECT_EQ(doneElsewhere(records, run), 3u);
    }
    records[2].throws = true;
    EXPECT_EQ(HkRunMulTrd(work, records.data(), stride, 3), 1u);
    doneElsewhere(records, 3);
}

TEST(ThreadPool, WorkOfAThreadThatTheSystemRefusesIsDoneByTheCaller)
{
    auto work3 = [] {
        Records records(3), pooled(3);
        EXPECT_EQ(HkRunMulTrd(work, records.data(), stride, 3), 0u);
        PoolOf three(3);
        EXPECT_EQ(three.run(pooled), 0u);
        return doneElsewhere(records, 1) + doneElsewhere(pooled, 1);
    };
    refusingEachVerb(work3, "startThread");
    fault::onlyVerb("startThread");
    fault::refuseFrom(fault::Kind::verb, 1);
    EXPECT_EQ(work3(), 0u) << "no thread at all";
    fault::refuse(fault::Kind::verb, 0);
    fault::onlyVerb(nullptr);
}

TEST(ThreadPool, WithoutMemoryNothingIsMadeOrRun)
{
    VxThreadPool *pool = nullptr;
    Records records(3);
    int completed = 0;
    refusingEachAllocation([&] {
        uint32_t failed = HkAllocMulTrdPool(&pool);
        EXPECT_EQ(failed != 0, pool == nullptr);
        HkFreeMulTrdPool(&pool);
    });
    refusingEachAllocation([&] { completed += HkRunMulTrd(work, records.data(), stride, 3) == 0; });
    doneElsewhere(records, completed);
}

}
