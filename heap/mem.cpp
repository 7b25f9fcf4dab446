// The general allocator: the run-time heap with one result convention, a
// report of what failed, and a reserve that is given back when memory ends.

#include "vx/mem.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>

#include "heap/allocate.h"
#include "heap/spare_chunks.h"
#include "heap/heap_state.h"
#include "platform/os/fault.h"
#include "platform/os/os.h"
#include "vx/err.h"
#include "vx/tools.h"

uint32_t (*VgEmergency)(int32_t) = nullptr;
int64_t VgMemUsed = 0;

namespace vx::heap {

namespace {

constexpr int32_t reserveBytes = 8'000'000;

constexpr int32_t errorAllocate = 1;
constexpr int32_t errorResize = 2;
constexpr int32_t errorOutOfMemory = 57;

constinit HeapState heapState;

/**
 * Count what was asked for. What is given back is not counted down: that would
 * need the block's size, whose query costs a third of an allocation.
 */
void count(int64_t bytes) noexcept
{
    std::atomic_ref<int64_t> used(VgMemUsed);
    used.store(used.load(std::memory_order_relaxed) + bytes, std::memory_order_relaxed);
}

void *request(int64_t size) noexcept
{
    if (fault::refused(fault::Kind::allocation))
        return nullptr;
    count(size);
    return std::malloc(static_cast<size_t>(size));
}

void *resize(void *block, int32_t size) noexcept
{
    if (fault::refused(fault::Kind::allocation))
        return nullptr;
    count(size);
    return std::realloc(block, static_cast<size_t>(size));
}

/** What every report of a refused request begins with: memory comes back, and the host is told. */
void makeRoom(int32_t size)
{
    if (VgMemLeak)
        VxMemTracerLastMallocFailed(size);
    VxMemEmerFree();
}

uint32_t outOfMemory(int32_t size)
{
    makeRoom(size);
    VxErrTempEnable(1);
    VxErrInt(errorAllocate, size);
    VxErrLogNum(VxToolsErrID(), errorOutOfMemory, "", 0);
    VxErrTempEnable(0);
    return 1;
}

uint32_t refusedResize(int32_t size)
{
    makeRoom(size);
    VxErrInt(errorResize, size);
    VxErrLogNum(VxToolsErrID(), errorOutOfMemory, "", 0);
    return 1;
}

}

HeapState &state() noexcept
{
    return heapState;
}

uint32_t allocate(int64_t bytes, void **block)
{
    constexpr int64_t largest = std::numeric_limits<int32_t>::max();
    if (bytes <= largest)
        return VxMemAlloc(static_cast<int32_t>(std::max(bytes, int64_t{0})), block);
    *block = request(bytes);
    return *block ? 0 : outOfMemory(static_cast<int32_t>(largest));
}

}

using namespace vx;

uint32_t VxMemInit(void)
{
    if (heap::state().reserve.load())
        return 0;
    void *reserve = nullptr;
    if (VxMemAlloc(heap::reserveBytes, &reserve)) {
        VxErrInt(heap::errorAllocate, heap::reserveBytes);
        return 1;
    }
    std::free(heap::state().reserve.exchange(reserve));
    return 0;
}

uint32_t VxMemExit(void)
{
    return VxMemEmerFree();
}

uint32_t VxMemEmerFree(void)
{
    heap::freeSpareChunks();
    std::free(heap::state().reserve.exchange(nullptr));
    return VgEmergency ? VgEmergency(0) : 0;
}

uint32_t VxMemAlloc(int32_t size, void **block)
{
    if (!block)
        return 1;
    if (size < 1) {
        VxErrInt(heap::errorAllocate, size);
        return 1;
    }
    *block = heap::request(size);
    return *block ? 0 : heap::outOfMemory(size);
}

uint32_t VxMemAllocZero(int32_t size, void **block)
{
    if (VxMemAlloc(size, block))
        return 1;
    std::memset(*block, 0, static_cast<size_t>(size));
    return 0;
}

uint32_t VxMemAllocAlt(int32_t size, void **block)
{
    if (!block)
        return 1;
    if (size >= 1) {
        *block = heap::request(size);
        if (*block)
            return 0;
        heap::makeRoom(size);
    }
    VxErrInt(heap::errorAllocate, size);
    return 1;
}

uint32_t VxMemAllocNoEmer(int32_t size, void **block)
{
    if (!block)
        return 1;
    *block = size < 1 ? nullptr : heap::request(size);
    return *block ? 0 : 1;
}

uint32_t VxMemResize(int32_t size, void **block)
{
    if (!block)
        return 1;
    if (size < 1) {
        VxErrInt(heap::errorResize, size);
        return 1;
    }
    void *resized = heap::resize(*block, size);
    if (!resized)
        return heap::refusedResize(size);
    *block = resized;
    return 0;
}

uint32_t VxMemResizeNoEmer(int32_t size, void **block)
{
    if (!block || size < 1)
        return 1;
    void *resized = heap::resize(*block, size);
    if (!resized)
        return 1;
    *block = resized;
    return 0;
}

uint32_t VxMemSmrtResize(int32_t size, void **block)
{
    if (!block || size == 0)
        return 1;
    return *block ? VxMemResize(size, block) : VxMemAlloc(size, block);
}

uint32_t VxMemFree(void **block)
{
    if (block)
        std::free(std::exchange(*block, nullptr));
    return 0;
}

void VxMemTracerLastMallocFailed(int32_t size)
{
    char line[64];
    char *end = std::to_chars(line, line + 16, size).ptr;
    std::strcpy(end, " bytes of memory were refused\n");
    os::debuggerOutput(line);
}
