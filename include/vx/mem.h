#ifndef VX_MEM_H
#define VX_MEM_H

/**
 * @file
 * The general allocator with its emergency reserve.
 *
 * A thin layer over the run-time heap: blocks come back through an
 * out-pointer, and what fails is filed in the error log. A block of malloc's
 * may be freed with VxMemFree, and one of these with free.
 *
 * Sizes       bytes, 1 to INT32_MAX. Products of sizes above that fail with
 *             toolkit error 1, as a request that is refused.
 * Reserve     8,000,000 bytes, taken by VxMemInit. The first refused request
 *             gives it back to the heap, so that the host has memory to save
 *             the user's work in; it is not taken again before the next
 *             VxMemInit. The refused request itself is not tried again.
 * Kept        of what lists give back up to 2 MB is kept for the next ones; a
 *             refused request and VxMemExit free it with the reserve.
 * Refusal     when the heap refuses a request of a function that reports:
 *             VxMemTracerLastMallocFailed if VgMemLeak is set, the reserve is
 *             given back if still there, VgEmergency(0) is called if set, and
 *             toolkit errors are filed: 1 (allocation) or 2 (resize) with the
 *             size, and 57.
 * Threads     every function may be called from any thread. VgEmergency runs
 *             on the thread whose request was refused, perhaps on several at
 *             once; one of them gives the reserve back.
 */

#include "vx/types.h"

VX_C_BEGIN

/* ---------------------------------------------------------------- reserve */

/** The host's: called with 0 whenever memory runs out, after the reserve was given back. Null at start. */
extern VX_API uint32_t (*VgEmergency)(int32_t);

/**
 * Bytes asked for since the start; what was given back is not taken off. A
 * rough measure: two threads that allocate at once may count only one.
 */
extern VX_API int64_t VgMemUsed;

/** Take the reserve, if it is not there: 0, or 1 with toolkit error 1. After VxToolsInit. */
VX_API uint32_t VxMemInit(void);

/** Give the reserve back and call VgEmergency(0): its result, or 0 when it is not set. */
VX_API uint32_t VxMemExit(void);

/** The same, for a host that wants the memory early. */
VX_API uint32_t VxMemEmerFree(void);

/** Tell the tracer of a refused request: a line on the debugger's output. */
VX_API void VxMemTracerLastMallocFailed(int32_t size);

/* ---------------------------------------------------------------- blocks */

/**
 * A new block. A refusal is filed even where the thread's errors are
 * suppressed.
 *
 * @param block  receives the block, or null when the heap refuses it; left
 *               alone for a size below 1, which is toolkit error 1
 */
VX_API uint32_t VxMemAlloc(int32_t size, void **block);

/** VxMemAlloc, filled with zeros. */
VX_API uint32_t VxMemAllocZero(int32_t size, void **block);

/** VxMemAlloc, whose refusal files only error 1, and not where errors are suppressed. */
VX_API uint32_t VxMemAllocAlt(int32_t size, void **block);

/** Without reserve, hook and report, for callers below the error log; null for a size below 1. */
VX_API uint32_t VxMemAllocNoEmer(int32_t size, void **block);

/**
 * Give a block another size; it may move. A null block is allocated.
 *
 * @return 0; 1 with toolkit error 2 for a size below 1 or a refusal: the
 *         block and the pointer are then as they were
 */
VX_API uint32_t VxMemResize(int32_t size, void **block);

/** VxMemResize without reserve, hook and report. */
VX_API uint32_t VxMemResizeNoEmer(int32_t size, void **block);

/** VxMemAlloc for a null block, else VxMemResize; a size of 0 gives 1 without a report. */
VX_API uint32_t VxMemSmrtResize(int32_t size, void **block);

/** Free a block, if there is one, and clear the pointer. Always 0. */
VX_API uint32_t VxMemFree(void **block);

/** A new block with a copy of `size` bytes; null for a null source, a size below 1, or want of memory. */
VX_API uint32_t VxMemDup(int32_t size, const void *source, void **copy);

/* ---------------------------------------------------------------- bytes and numbers */

/** Copy `count` bytes, which may overlap: 0; 1 when they do not fit or a size is out of range. */
VX_API uint32_t VxMemCpy(void *dst, int32_t dstSize, const void *src, int32_t count);

/** 1 when all bytes are 0, or when there are none. */
VX_API int32_t VxMemIsZero(const void *bytes, int32_t count);

/** Fill with zeros: `bytes`. */
VX_API void *VxMemZero(void *bytes, int32_t count);

/** Store a value `count` times: `p`. */
VX_API double *VxMemSetDouble(double *p, double value, int32_t count);
VX_API int32_t *VxMemSetInt(int32_t *p, int32_t value, int32_t count);

/* ---------------------------------------------------------------- two-dimensional arrays
 *
 * A block of pointers to the rows, with a null pointer behind the last one,
 * and a block for each row. The elements are not set.
 */

/**
 * A new array.
 *
 * @param elemSize  bytes of an element
 * @param rows      0 or more; none leaves the null pointer alone
 * @param columns   1 or more
 * @param array     receives the block of row pointers; null after a failure,
 *                  which leaves nothing allocated
 */
VX_API uint32_t Vx2DArrAlloc(int32_t elemSize, int32_t rows, int32_t columns, void ***array);

/** Free an array, if there is one, and clear the pointer. Always 0. */
VX_API uint32_t Vx2DArrFree(void ***array);

/** Vx2DArrAlloc with the array as its result, or null. */
VX_API void **VxMemAllocA2(int32_t rows, int32_t columns, int32_t elemSize);
VX_API int32_t **VxMemAllocA2Int(int32_t rows, int32_t columns);

/** Free such an array; null is accepted. Always 0. */
VX_API uint32_t VxMemFreeA2(void **array);
VX_API uint32_t VxMemFreeA2Int(int32_t **array);

/* ---------------------------------------------------------------- growable array */

/**
 * A new list of the array layout whose elements, filled with zeros, stand in
 * one block whatever its size (vx/list.h).
 *
 * @param kind       2; others fail
 * @param elemSize   bytes of an element, 1 or more; else toolkit error 3
 * @param capacity   elements; below 1 it is 1
 * @param increment  elements added when the list grows; below 1 it is 1
 * @param ignored    anything
 * @param array      receives the list, a VxList, to be deleted with VxListDel;
 *                   null after a failure
 */
VX_API uint32_t VxMkArr(int32_t kind, int32_t elemSize, int32_t capacity, int32_t increment, void *ignored,
                        void **array);

/* ---------------------------------------------------------------- compression */

/**
 * Compress a block, or expand one, with zlib (vx/compress.h).
 *
 * @param direction   0 expands, else compresses
 * @param marker      not 0: a byte put in front of what is compressed; what
 *                    is expanded must begin with it, else toolkit error 73
 * @param count       bytes, 1 or more
 * @param result      receives a new block, the caller's
 * @param resultSize  receives its size in bytes
 */
VX_API uint32_t VxMemCompress(int32_t direction, int32_t marker, const void *bytes, int32_t count,
                              void **result, int32_t *resultSize);

VX_C_END

#endif
