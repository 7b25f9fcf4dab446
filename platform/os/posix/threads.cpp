#include "platform/os/os.h"

#include <pthread.h>
#include <sched.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

#include "platform/os/fault.h"
#include "platform/os/posix/error.h"
#include "platform/os/test_values.h"

namespace vx::os {

namespace {

#ifdef VX_FAULTS
std::atomic<int32_t> testProcessorCount{0};
#endif

static_assert(sizeof(pthread_t) == sizeof(uintptr_t));

void *runMain(void *thread)
{
    auto self = static_cast<Thread *>(thread);
    self->main(self->argument);
    return nullptr;
}

}

int32_t processorCount() noexcept
{
#ifdef VX_FAULTS
    if (int32_t set = testProcessorCount; set > 0)
        return set;
#endif
    cpu_set_t usable;
    if (sched_getaffinity(0, sizeof usable, &usable) == 0)
        return CPU_COUNT(&usable);
    // More processors than fit the set: then the machine's.
    long online = sysconf(_SC_NPROCESSORS_ONLN);
    return online > 0 ? static_cast<int32_t>(online) : 1;
}

int32_t currentProcessor() noexcept
{
    return sched_getcpu();
}

Error leaveProcessors(const ProcessorSet &taken) noexcept
{
    VX_OS_VERB("leaveProcessors");
    static_assert(ProcessorSet::size == CPU_SETSIZE);
    cpu_set_t usable;
    if (sched_getaffinity(0, sizeof usable, &usable) != 0)
        return errorOf(errno);
    cpu_set_t free = usable;
    for (int32_t i = 0; i < ProcessorSet::size; ++i)
        if (taken.has(i))
            CPU_CLR(static_cast<size_t>(i), &free);
    if (CPU_COUNT(&free) == 0)
        return Error::none;
    int moved = sched_setaffinity(0, sizeof free, &free);
    return moved == 0 && sched_setaffinity(0, sizeof usable, &usable) == 0 ? Error::none : errorOf(errno);
}

void relaxProcessor() noexcept
{
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#elif defined(__aarch64__)
    __asm__ __volatile__("yield");
#endif
}

Error startThread(Thread &thread) noexcept
{
    VX_OS_VERB("startThread");
    // Set before the thread can see it.
    thread.runs = true;
    pthread_t made;
    if (int code = pthread_create(&made, nullptr, runMain, &thread); code != 0) {
        thread.runs = false;
        errno = code;
        return errorOf(code);
    }
    thread.handle = static_cast<uintptr_t>(made);
    return Error::none;
}

void joinThread(Thread &thread) noexcept
{
    pthread_join(static_cast<pthread_t>(thread.handle), nullptr);
    thread.runs = false;
}

#ifdef VX_FAULTS
void setTestProcessorCount(int32_t count) noexcept
{
    testProcessorCount = count;
}
#endif

}
