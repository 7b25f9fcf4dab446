#ifndef VX_POOL_H
#define VX_POOL_H

/**
 * @file
 * The heap storage manager: memory divided into areas that are filled block
 * by block, and pools, which are areas of a host's own that are given up as
 * a whole. An object family that dies together (all of an open document, say)
 * is quick to make and at once gone.
 *
 *     void *pool;
 *     VxCreHpMemPool(64, "document", 0, "all of one document", &pool);
 *     struct Face *face = VxAlocHpMemPool(pool, 1, sizeof *face);
 *     ...
 *     VxFreeHpMemPool(pool);     every block of it is gone
 *
 * Blocks       are zero-filled and aligned to 8 bytes. A block costs 8 bytes
 *              and is a multiple of 8 and at least 16 bytes with them.
 * Areas        have indices that never change. Area 0 is the manager's own;
 *              area 1, the persistent area, holds what belongs to no pool;
 *              the others are pools. An area takes memory from the general
 *              allocator (vx/mem.h) in chunks of whole mebibytes, merges
 *              neighbouring free blocks, and gives a wholly free chunk back.
 * Starting     The functions that allocate start the manager when needed.
 * Failure      Error 84 is filed (vx/err.h), error 1 when an area's chunk
 *              cannot be had; nothing has changed then.
 * Misuse       A block handed back twice, a foreign pointer and a block whose
 *              tags are overwritten are ignored, never followed. Debug builds
 *              tell the debugger's output of them, with the area's name.
 * Many blocks  An area with more than 256 blocks in use keeps small ones (256
 *              bytes at most) that are given back for the next requests of
 *              their size. They merge with their neighbours when nothing else
 *              fits and an eighth as many are kept as are in use, before a
 *              chunk is refused, when three quarters of the blocks are gone,
 *              and before VxHpAreaUsage and VxHpStatistics look.
 * Limits       The environment variable BHSM_PSEUDO_VM_LIMIT, a number of
 *              bytes (decimal, 0x..., 0...) read at the start, caps what all
 *              areas hold together; 0 or unset is no cap. All areas together
 *              hold at most 32,767 MiB less one for each entry of the area
 *              table, a block at most 2 GiB.
 * Threads      none of this is for two threads at once.
 */

#include <stdbool.h>

#include "vx/types.h"

VX_C_BEGIN

/** What a host holds of a pool; a block of the pool's own area. */
typedef struct VxHpPool {
    int32_t area;
    char *name;        /**< a copy; empty when none was given */
    int32_t kilobytes; /**< of a chunk, as asked for */
    int32_t flags;     /**< the caller's */
    char *description; /**< a copy; empty when none was given */
} VxHpPool;

/** One free list of an area. Links are 32 bits on every system. */
typedef struct VxHsmHead {
    uint32_t first;
    uint32_t spare;
} VxHsmHead;

/** One area of the table; 316 bytes on every system. */
typedef struct VxHsmArea {
    /** Lists 0 to 32 hold free blocks of 8 times their number in bytes; 33 the larger ones. */
    VxHsmHead heads[34];
    /** Names the area's chunks in the layer below. */
    uint32_t storage;
    /** With statistics: reference size, peak and current bytes asked for, gross bytes, requests, frees. */
    int32_t statistics[6];
    int32_t index;
    /** What the area takes when it is full, in bytes: at its start and now. */
    int32_t chunkSize[2];
    uint8_t inUse;
    /** Every live block stands on one list; area 0 only. */
    uint8_t tracked;
} VxHsmArea;

/** Where an area's memory went. Counts begin when statistics are switched on. */
typedef struct VxHsmUsage {
    char name[64];
    int64_t requests, frees;
    int64_t bytes, peakBytes; /**< asked for, now and at most */
    int64_t grossBytes;       /**< of the blocks in use, tags and rounding included */
    int64_t chunks, chunkBytes;
} VxHsmUsage;

/** The pool that hosts allocate from by default, or null. */
extern VX_API void *VgCurrentPool;

/** Entries of the area table. */
extern VX_API int32_t VgNAreas;

/** The area table: VgInitialAreas until more than two areas are in use. */
extern VX_API VxHsmArea *VgAreas;
extern VX_API VxHsmArea VgInitialAreas[2];

/** Bytes that a block of area 0 carries for the list of live blocks. */
extern VX_API int32_t VgTransientTrailerSize;

/* ---------------------------------------------------------------- the manager */

/** Start the manager. @return true; false when it runs already or cannot start */
VX_API bool VxInitHeapStMgr(void);

/** Whether the manager runs. */
VX_API bool AskHeapStMgrStatus(void);

/** Give every chunk back and stop; every pool and block is gone. It may be started again. @return 0 */
VX_API uint32_t VxExitHeapStMgr(void);

/* ---------------------------------------------------------------- areas */

/**
 * Make an area.
 *
 * @param name       for people; copied, cut at 63 bytes
 * @param chunkSize  bytes; rounded up to whole pages
 * @param index      receives the area's index, -1 on failure
 * @return 0, or -1 with error 1 filed
 */
VX_API int32_t CreateHSMArea(const char *name, int32_t chunkSize, int32_t *index);

/** The next area in use after `index`; -2 begins with area 0. @return its index, or -2 when there is none */
VX_API int32_t FindNextHSMArea(int32_t index);

/** The area of a block in use. @return its index; -2 for null; -1 for anything else */
VX_API int32_t AskHeapSMemArea(const void *block);

/* ---------------------------------------------------------------- pools */

/**
 * Make a pool.
 *
 * @param kilobytes    of a chunk; below 8 means 8
 * @param name         its area is called "VX:" and this; null is none
 * @param flags        the caller's, kept in the record
 * @param description  kept in the record; null is none
 * @param pool         always written: the record (a VxHpPool), which lives in
 *                     the pool; null when none could be made
 * @return 0, else a code, with error 84 filed; a record stored all the same is
 *         to be freed
 */
VX_API int32_t VxCreHpMemPool(int32_t kilobytes, const char *name, int32_t flags, const char *description,
                              void **pool);

/** Free a pool and every block in it. If it is current, no pool is then. @return 1 for what is no pool */
VX_API uint32_t VxFreeHpMemPool(void *pool);

/** Make a pool the current one; null for none. @return 1 for what is no pool, and nothing changes */
VX_API uint32_t VxSetHpMemPool(void *pool);

/** The current pool, or null. */
VX_API void *VxPoolGetCrnt(void);

/* ---------------------------------------------------------------- blocks */

/**
 * A block of `count` times `size` zero bytes from a pool, or from the
 * persistent area when `pool` is null.
 * @return the block, or null: not a pool, a product below 1 or beyond 2 GiB, no memory
 */
VX_API void *VxAlocHpMemPool(void *pool, int32_t count, int32_t size);

/** The same from the persistent area. @param block receives the block, or null */
VX_API uint32_t VxAlocPersHpMem(int32_t count, int32_t size, void **block);

/** The same from the area of `neighbour`, a block in use; null is the persistent area. */
VX_API uint32_t VxAlocSameMPool(const void *neighbour, int32_t count, int32_t size, void **block);

/** Give a block back to its area. Null and what is no block in use are ignored. */
VX_API void VxDeleteMemObj(void *block);

/* ---------------------------------------------------------------- where memory went */

/** Count requests from now on (1) or no longer (0). */
VX_API void VxHpStatistics(int32_t on);

/** What an area in use holds; walk them with FindNextHSMArea. @return 1 for an index of no area */
VX_API uint32_t VxHpAreaUsage(int32_t index, VxHsmUsage *usage);

VX_C_END

#endif
