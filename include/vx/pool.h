#ifndef VX_POOL_H
#define VX_POOL_H

/**
 * @file
 * The heap storage manager: memory divided into areas that are filled block
 * by block and given up at once.
 *
 * Threads: none of this is for two threads at once.
 */

#include "vx/types.h"

VX_C_BEGIN

/** One free list of an area. Links are 32 bits: chunk number and offset. */
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
    /** Reference size, peak and current bytes asked for, gross bytes, allocations, frees. */
    int32_t statistics[6];
    int32_t index;
    /** What the area takes when it is full, in bytes: at its start and now. */
    int32_t chunkSize[2];
    uint8_t inUse;
    /** Every live block stands on one list; area 0 only. */
    uint8_t tracked;
} VxHsmArea;

/** The pool that hosts allocate from by default, or null. */
extern VX_API void *VgCurrentPool;

/** Entries of the area table. */
extern VX_API int32_t VgNAreas;

/** The area table: VgInitialAreas until more than two areas are in use. */
extern VX_API VxHsmArea *VgAreas;
extern VX_API VxHsmArea VgInitialAreas[2];

/** Bytes that a block of area 0 carries for the list of live blocks. */
extern VX_API int32_t VgTransientTrailerSize;

VX_C_END

#endif
