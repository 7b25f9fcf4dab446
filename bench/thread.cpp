// Dispatches of short work to two workers: the pool beside a pool of the usual
// kind, one mutex and condition variable per worker, and beside a parallel
// region of OpenMP.

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>

#include "vx/thread.h"

namespace {

constexpr int workers = 2;

struct alignas(64) Record {
    std::chrono::nanoseconds duration{0};
    uint64_t rounds = 0;
};

uint32_t work(void *record)
{
    auto self = static_cast<Record *>(record);
    if (self->duration.count() > 0) {
        auto end = std::chrono::steady_clock::now() + self->duration;
        while (std::chrono::steady_clock::now() < end)
            ++self->rounds;
    }
    return 0;
}

/** The usual pool: each worker sleeps on a condition variable of its own. */
class ConditionPool {
public:
    ConditionPool()
    {
        for (auto &worker : workers_)
            worker.thread = std::thread([this, &worker] { serve(worker); });
    }

    ~ConditionPool()
    {
        for (auto &worker : workers_) {
            tell(worker, State::stop);
            worker.thread.join();
        }
    }

    void run(Record *records)
    {
        records_ = records;
        for (auto &worker : workers_)
            tell(worker, State::work);
        for (auto &worker : workers_) {
            std::unique_lock lock(worker.mutex);
            worker.changed.wait(lock, [&] { return worker.state == State::idle; });
        }
    }

private:
    enum class State { idle, work, stop };

    struct Worker {
        std::mutex mutex;
        std::condition_variable changed;
        State state = State::idle;
        std::thread thread;
    };

    static void tell(Worker &worker, State state)
    {
        {
            std::lock_guard lock(worker.mutex);
            worker.state = state;
        }
        worker.changed.notify_all();
    }

    void serve(Worker &worker)
    {
        for (;;) {
            {
                std::unique_lock lock(worker.mutex);
                worker.changed.wait(lock, [&] { return worker.state != State::idle; });
                if (worker.state == State::stop)
                    return;
            }
            work(records_ + (&worker - workers_));
            tell(worker, State::idle);
        }
    }

    Worker workers_[workers];
    Record *records_ = nullptr;
};

std::vector<Record> recordsOf(int64_t microseconds)
{
    std::vector<Record> records(workers);
    for (Record &record : records)
        record.duration = std::chrono::microseconds(microseconds);
    return records;
}

void dispatchVx(benchmark::State &state, int64_t microseconds)
{
    auto records = recordsOf(microseconds);
    VxThreadPool *pool = nullptr;
    if (HkAllocMulTrdPool(&pool) != 0 || pool->workers != workers) {
        state.SkipWithError("the pool has not two workers");
        HkFreeMulTrdPool(&pool);
        return;
    }
    for (auto _ : state)
        HkRunMulTrdPool(work, records.data(), sizeof(Record), pool);
    HkFreeMulTrdPool(&pool);
}

void dispatchCondition(benchmark::State &state, int64_t microseconds)
{
    auto records = recordsOf(microseconds);
    ConditionPool pool;
    for (auto _ : state)
        pool.run(records.data());
}

void dispatchOpenMp(benchmark::State &state, int64_t microseconds)
{
    auto records = recordsOf(microseconds);
    for (auto _ : state) {
#pragma omp parallel for num_threads(workers) schedule(static, 1)
        for (int i = 0; i < workers; ++i)
            work(&records[static_cast<size_t>(i)]);
    }
}

BENCHMARK_CAPTURE(dispatchVx, empty, 0)->Name("dispatch empty work/vx")->UseRealTime();
BENCHMARK_CAPTURE(dispatchCondition, empty, 0)->Name("dispatch empty work/mutex+condition")->UseRealTime();
BENCHMARK_CAPTURE(dispatchOpenMp, empty, 0)->Name("dispatch empty work/OpenMP")->UseRealTime();
BENCHMARK_CAPTURE(dispatchVx, 10, 10)->Name("dispatch 10 us of work/vx")->UseRealTime();
BENCHMARK_CAPTURE(dispatchOpenMp, 10, 10)->Name("dispatch 10 us of work/OpenMP")->UseRealTime();
BENCHMARK_CAPTURE(dispatchVx, 100, 100)->Name("dispatch 100 us of work/vx")->UseRealTime();
BENCHMARK_CAPTURE(dispatchOpenMp, 100, 100)->Name("dispatch 100 us of work/OpenMP")->UseRealTime();

}
