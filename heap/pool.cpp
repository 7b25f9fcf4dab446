// The heap storage manager: start and end, areas, pools and their blocks.

#include "vx/pool.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>
#include <string>

#include "heap/pool.h"
#include "heap/pool_area.h"
#include "heap/pool_chunks.h"
#include "platform/os/os.h"
#include "vx/err.h"
#include "vx/mem.h"
#include "vx/pool.hpp"
#include "vx/str.h"
#include "vx/tools.h"

void *VgCurrentPool = nullptr;
int32_t VgNAreas = 2;
VxHsmArea VgInitialAreas[2] = {};
VxHsmArea *VgAreas = VgInitialAreas;
int32_t VgTransientTrailerSize = 8;

namespace vx::heap {

namespace {

constexpr int32_t transientArea = 0;
constexpr int32_t persistentArea = 1;
constexpr int32_t initialAreas = 2;
constexpr int32_t noArea = -2;
constexpr int32_t notFound = -1;

constexpr int32_t errorAllocate = 1;
constexpr int32_t errorPool = 84;

constexpr int32_t minPoolKilobytes = 8;
constexpr int32_t defaultPoolSize = -757; ///< a request for the smallest chunks, like any below 8

/** Chunk sizes are whole pages; a size that no 32 bits hold is the largest that they do. */
int32_t wholePages(int32_t bytes)
{
    int64_t page = manager().pageBytes;
    int64_t pages = (std::max<int64_t>(bytes, 0) + page - 1) / page * page;
    return static_cast<int32_t>(std::min<int64_t>(pages, INT32_MAX / page * page));
}

/** Twice the table, in whole pages. */
void growAreaTable()
{
    int64_t page = manager().pageBytes;
    int64_t bytes =
        (2 * int64_t{VgNAreas} * static_cast<int64_t>(sizeof(VxHsmArea)) - 1 + page) / page * page;
    auto count = static_cast<int32_t>(bytes / static_cast<int64_t>(sizeof(VxHsmArea)));
    needStates(count);
    void *table = nullptr;
    if (!reserveHeadPages(count) || VxMemAllocNoEmer(static_cast<int32_t>(bytes), &table))
        throw VX::VxException(__LINE__, "src\\heap\\CreateHSMArea");
    std::memset(table, 0, static_cast<size_t>(bytes));
    std::memcpy(table, VgAreas, static_cast<size_t>(VgNAreas) * sizeof(VxHsmArea));
    void *old = VgAreas;
    if (VgAreas != VgInitialAreas)
        VxMemFree(&old);
    VgAreas = static_cast<VxHsmArea *>(table);
    VgNAreas = count;
    placeAreas(); // free blocks name list heads by area and list, so none has to be told
}

int32_t unusedArea()
{
    for (int32_t i = initialAreas; i < VgNAreas; ++i)
        if (!VgAreas[i].inUse)
            return i;
    int32_t first = VgNAreas;
    growAreaTable();
    return first;
}

char *copyInto(int32_t area, const char *text)
{
    size_t bytes = std::strlen(text) + 1;
    Payload copy = bytes <= INT32_MAX ? allocate(area, static_cast<int64_t>(bytes)) : nullptr;
    if (copy)
        std::memcpy(copy, text, bytes);
    return reinterpret_cast<char *>(copy);
}

/** The record, its name and its description, all of the pool's own area. */
VxHpPool *makeRecord(int32_t area, int32_t kilobytes, const char *name, int32_t flags,
                     const char *description, void **pool)
{
    auto record = reinterpret_cast<VxHpPool *>(allocate(area, sizeof(VxHpPool)));
    *record = {area, nullptr, kilobytes, flags, nullptr};
    *pool = record;
    record->name = copyInto(area, name ? name : "");
    record->description = copyInto(area, description ? description : "");
    return record;
}

bool alignmentIsMet()
{
    auto needed = static_cast<int32_t>(alignof(double));
    if (manager().maxAlignment % needed == 0)
        return true;
    std::fprintf(stderr, "ERROR: Heap Storage Manager compiled with max alignment %d needs %d\n",
                 manager().maxAlignment, needed);
    return false;
}

}

uint32_t refuse(const char *where)
{
    VxErrLogNum(VxToolsErrID(), errorPool, where, 0);
    return 1;
}

bool startManager()
{
    return manager().started || VxInitHeapStMgr();
}

void resetStorageManager()
{
    StorageManager &all = manager();
    for (int32_t i = 0; i < VgNAreas; ++i)
        if (isArea(i))
            closeArea(i);
    endChunks();
    void *table = VgAreas;
    if (VgAreas != VgInitialAreas)
        VxMemFree(&table);
    VgCurrentPool = nullptr;
    VgNAreas = initialAreas;
    VgAreas = VgInitialAreas;
    std::fill(std::begin(VgInitialAreas), std::end(VgInitialAreas), VxHsmArea{});
    VgTransientTrailerSize = 8;
    bool statistics = all.statistics;
    bool checking = all.checking;
    all = StorageManager{};
    all.statistics = statistics;
    all.checking = checking;
}

}

using namespace vx::heap;

bool VxInitHeapStMgr(void)
{
    StorageManager &all = manager();
    if (all.started || !alignmentIsMet())
        return false;
    all.pageBytes = static_cast<int32_t>(vx::os::pageSize());
    bool opened = guarded(false, [&] {
        startChunks();
        needStates(VgNAreas);
        placeAreas();
        return reserveHeadPages(VgNAreas);
    });
    if (!opened) {
        all.failed = true;
        refuse("VxInitHeapStMgr");
        return false;
    }
    openArea(transientArea, "HSM system transient area", all.pageBytes, true);
    openArea(persistentArea, "HSM persistent area", all.pageBytes, false);
    all.started = true;
    return true;
}

bool AskHeapStMgrStatus(void)
{
    return manager().started;
}

uint32_t VxExitHeapStMgr(void)
{
    resetStorageManager();
    return 0;
}

int32_t CreateHSMArea(const char *name, int32_t chunkSize, int32_t *index)
{
    if (!index)
        return notFound;
    *index = startManager() ? guarded(notFound, unusedArea) : notFound;
    if (*index == notFound) {
        VxErrInt(errorAllocate, chunkSize);
        return notFound;
    }
    openArea(*index, name ? name : "", wholePages(chunkSize), false);
    return 0;
}

int32_t FindNextHSMArea(int32_t index)
{
    for (int64_t next = index == noArea ? 0 : int64_t{index} + 1; next < VgNAreas; ++next)
        if (isArea(next))
            return static_cast<int32_t>(next);
    return noArea;
}

int32_t VxCreHpMemPool(int32_t kilobytes, const char *name, int32_t flags, const char *description,
                       void **pool)
{
    if (!pool)
        return static_cast<int32_t>(refuse("VxCreHpMemPool"));
    *pool = nullptr;
    if (kilobytes < minPoolKilobytes || kilobytes == defaultPoolSize)
        kilobytes = minPoolKilobytes;
    auto bytes = static_cast<int32_t>(std::min<int64_t>(int64_t{kilobytes} * 1024, INT32_MAX));
    int32_t area = notFound;
    bool made = guarded(false, [&] {
        std::string areaName = std::string("VX:") + (name ? name : "");
        if (CreateHSMArea(areaName.c_str(), bytes, &area) != 0)
            return false;
        VxHpPool *record = makeRecord(area, kilobytes, name, flags, description, pool);
        return record->name && record->description;
    });
    if (made)
        return 0;
    if (area != notFound && !*pool)
        closeArea(area); // nobody could free it
    return static_cast<int32_t>(refuse("VxCreHpMemPool"));
}

uint32_t VxFreeHpMemPool(void *pool)
{
    if (pool && pool == VgCurrentPool)
        VgCurrentPool = nullptr;
    const AreaState *area = areaOfPool(pool);
    if (!area)
        return 1;
    closeArea(area->index);
    return 0;
}

uint32_t VxSetHpMemPool(void *pool)
{
    if (pool && pool != VgCurrentPool && !areaOfPool(pool))
        return 1;
    VgCurrentPool = pool;
    return 0;
}

void *VxPoolGetCrnt(void)
{
    return VgCurrentPool;
}

uint32_t VxHpAreaUsage(int32_t index, VxHsmUsage *usage)
{
    if (!usage || !isArea(index))
        return 1;
    settleWaiting();
    AreaState &area = stateOf(index);
    if (keepsAny(area))
        mergeFree(area);
    *usage = {"", area.requests, area.frees, area.bytes, area.peakBytes, area.grossBytes, 0, 0};
    VxStrCpy(usage->name, area.name, sizeof usage->name);
    for (uint32_t number = area.chunks; number; number = chunkAt(number).next) {
        ++usage->chunks;
        usage->chunkBytes += chunkAt(number).size();
    }
    return 0;
}

void VxHpStatistics(int32_t on)
{
    settleWaiting();
    mergeEverything();
    StorageManager &all = manager();
    all.statistics = on != 0;
    all.lastPool = noBlock();
    for (auto &area : all.areas)
        setMergeBelow(*area, mergeBelowFor(*area));
}

namespace VX {

VxExceptionBase::VxExceptionBase(int32_t line, const char *file)
    : Line(line), File(file ? file : ""), place_(File + ":" + std::to_string(line))
{
}

VxExceptionBase::~VxExceptionBase() = default;

const char *VxExceptionBase::what() const noexcept
{
    return place_.c_str();
}

VxException::~VxException() = default;

}
