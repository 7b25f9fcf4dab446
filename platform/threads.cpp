// Work spread over threads: made for one call, or kept in a pool.

#include "vx/thread.h"

#include <atomic>
#include <memory>
#include <new>
#include <vector>

#include "platform/event.h"
#include "platform/os/os.h"

using namespace vx;

extern "C" {
int32_t TgMultiThreadEnabled = 1;
}

namespace {

char *recordAt(void *base, int32_t stride, int32_t i) noexcept
{
    return static_cast<char *>(base) + static_cast<ptrdiff_t>(i) * stride;
}

/** Call a work function; false when an exception came out of it. */
template <typename Function> bool completes(Function function, void *record, uint32_t &result) noexcept
{
    try {
        result = function(record);
        return true;
    } catch (...) {
        return false;
    }
}

template <typename Function> bool completes(Function function, void *record) noexcept
{
    uint32_t ignored = 0;
    return completes(function, record, ignored);
}

// ---------------------------------------------------------------- threads of one call

struct Call {
    VxThreadFn function = nullptr;
    void *record = nullptr;
    bool completed = false;
    os::Thread thread;

    void run() noexcept { completed = completes(function, record); }
};

void runCall(void *call) noexcept
{
    static_cast<Call *>(call)->run();
}

uint32_t runCalls(std::vector<Call> &calls) noexcept
{
    for (Call &call : calls) {
        call.thread.main = runCall;
        call.thread.argument = &call;
        os::startThread(call.thread);
    }
    for (Call &call : calls)
        if (!call.thread.runs)
            call.run();
    uint32_t failed = 0;
    for (Call &call : calls) {
        if (call.thread.runs)
            os::joinThread(call.thread);
        failed |= !call.completed;
    }
    return failed;
}

// ---------------------------------------------------------------- the pool

struct Worker {
    platform::Event start, done;
    os::Thread thread;
    /** Where it did its latest record; -1 at first. */
    std::atomic<int32_t> processor{-1};
};

/** The record that callers see, and what its words point to. */
struct Pool : VxThreadPool {
    explicit Pool(size_t n)
        : VxThreadPool{}, crew(n), threadWords(n), startWords(n), doneWords(n), stopWords(n), argWords(n)
    {
        for (size_t w = 0; w < n; ++w) {
            startWords[w] = &crew[w].start;
            doneWords[w] = &crew[w].done;
            argWords[w] = {this, static_cast<int32_t>(w)};
        }
        threads = threadWords.data();
        start = startWords.data();
        done = doneWords.data();
        stop = stopWords.data();
        args = argWords.data();
        workers = static_cast<int32_t>(n);
    }

    ~Pool() { stopWorkers(); }
    Pool(const Pool &) = delete;
    Pool &operator=(const Pool &) = delete;

    void startWorkers() noexcept;
    void stopWorkers() noexcept;
    uint32_t dispatch() noexcept;
    void serve(size_t w) noexcept;
    void doRecord(size_t w) noexcept;
    void keepApart(size_t w) noexcept;

    std::vector<Worker> crew;
    std::vector<void *> threadWords, startWords, doneWords;
    std::vector<int32_t> stopWords;
    std::vector<VxPoolArg> argWords;
    /** A record of the current dispatch ended by an exception. */
    std::atomic<bool> thrown{false};
};

void runWorker(void *argument) noexcept
{
    auto self = static_cast<VxPoolArg *>(argument);
    static_cast<Pool *>(self->pool)->serve(static_cast<size_t>(self->index));
}

void Pool::startWorkers() noexcept
{
    for (size_t w = 0; w < crew.size(); ++w) {
        os::Thread &thread = crew[w].thread;
        thread.main = runWorker;
        thread.argument = &argWords[w];
        if (os::startThread(thread) == os::Error::none)
            threadWords[w] = &thread;
    }
}

void Pool::stopWorkers() noexcept
{
    for (size_t w = 0; w < crew.size(); ++w) {
        std::atomic_ref(stopWords[w]).fetch_add(1);
        crew[w].start.set();
    }
    for (Worker &worker : crew)
        if (worker.thread.runs)
            os::joinThread(worker.thread);
}

void Pool::serve(size_t w) noexcept
{
    Worker &self = crew[w];
    self.start.wait();
    while (std::atomic_ref(stopWords[w]).load() == 0) {
        self.processor.store(os::currentProcessor(), std::memory_order_relaxed);
        doRecord(w);
        self.done.set();
        keepApart(w);
        self.start.wait();
    }
}

void Pool::doRecord(size_t w) noexcept
{
    if (!completes(work, recordAt(base, stride, static_cast<int32_t>(w))))
        thrown.store(true, std::memory_order_relaxed);
}

/**
 * Two workers on one processor do their records one after the other, and the
 * system leaves them there as long as the calling thread keeps another
 * processor from being idle. So one of them moves, after its work.
 */
void Pool::keepApart(size_t w) noexcept
{
    int32_t mine = crew[w].processor.load(std::memory_order_relaxed);
    if (mine < 0)
        return;
    for (size_t other = 0; other < w; ++other) {
        if (crew[other].processor.load(std::memory_order_relaxed) != mine)
            continue;
        os::ProcessorSet taken;
        for (size_t i = 0; i < crew.size(); ++i)
            taken.add(crew[i].processor.load(std::memory_order_relaxed));
        os::leaveProcessors(taken);
        return;
    }
}

uint32_t Pool::dispatch() noexcept
{
    thrown.store(false, std::memory_order_relaxed);
    for (Worker &worker : crew)
        if (worker.thread.runs)
            worker.start.set();
    for (size_t w = 0; w < crew.size(); ++w)
        if (!crew[w].thread.runs)
            doRecord(w);
    for (Worker &worker : crew)
        if (worker.thread.runs)
            worker.done.wait();
    return thrown.load(std::memory_order_relaxed);
}

}

uint32_t HkRunMulTrd(VxThreadFn fn, void *base, int32_t stride, int32_t n)
{
    if (!fn)
        return 1;
    if (n <= 0)
        return 0;
    try {
        std::vector<Call> calls(static_cast<size_t>(n));
        for (int32_t i = 0; i < n; ++i) {
            calls[static_cast<size_t>(i)].function = fn;
            calls[static_cast<size_t>(i)].record = recordAt(base, stride, i);
        }
        return runCalls(calls);
    } catch (const std::bad_alloc &) {
        return 1;
    }
}

uint32_t HkAllocMulTrdPool(VxThreadPool **pool)
{
    if (!pool)
        return 1;
    *pool = nullptr;
    int32_t processors = os::processorCount();
    try {
        auto made = std::make_unique<Pool>(processors > 1 ? static_cast<size_t>(processors) : 0);
        made->startWorkers();
        *pool = made.release();
        return 0;
    } catch (const std::bad_alloc &) {
        return 1;
    }
}

uint32_t HkRunMulTrdPool(VxWorkFn fn, void *base, int32_t stride, VxThreadPool *pool)
{
    if (!fn || !pool)
        return 1;
    if (pool->workers == 0) {
        uint32_t result = 0;
        return completes(fn, base, result) ? result : 1;
    }
    pool->work = fn;
    pool->base = static_cast<char *>(base);
    pool->stride = stride;
    return static_cast<Pool *>(pool)->dispatch();
}

uint32_t HkFreeMulTrdPool(VxThreadPool **pool)
{
    if (!pool || !*pool)
        return 1;
    delete static_cast<Pool *>(*pool);
    *pool = nullptr;
    return 0;
}
