#ifndef VX_THREAD_H
#define VX_THREAD_H

/**
 * @file
 * One work function on several threads at once, each call with a record of
 * its own from the caller's array: call i gets base + i * stride.
 *
 * HkRunMulTrd makes threads for one call and ends them. A pool keeps one
 * worker per processor: for short work, many times.
 *
 *     VxThreadPool *pool = NULL;
 *     if (HkAllocMulTrdPool(&pool))
 *         return 1;
 *     int32_t n = pool->workers > 0 ? pool->workers : 1;
 *     ...                               // n records
 *     failed = HkRunMulTrdPool(work, records, sizeof *records, pool);
 *     HkFreeMulTrdPool(&pool);
 *
 * Records      The caller's, valid until the call returns. What a function
 *              finds out it writes into its record. What the caller wrote
 *              before the call every worker sees, and the other way round
 *              after it.
 * Exceptions   One that leaves a work function ends neither its thread nor the
 *              process; the call returns 1 when all records are done.
 * Threads      A pool belongs to one thread at a time: its calls must not
 *              overlap, and it must not be freed or used by its own work
 *              functions. Different pools do not know each other.
 * Waiting      A few pauses, then giving way to other threads, then sleep: a
 *              pool that is not used costs no processor time after 50
 *              microseconds.
 * Refusals     Where the system has no thread left to give, the calling
 *              thread does that thread's work itself.
 */

#include "vx/types.h"

/** How the system calls the function that a thread begins with; 64-bit systems know only one way. */
#define VX_STDCALL

VX_C_BEGIN

/** 1 when the application wants work spread over threads. Hosts and modules ask it; the toolkit does not. */
extern VX_API int32_t TgMultiThreadEnabled;

/** What a thread of HkRunMulTrd runs; its result is ignored. */
typedef uint32_t(VX_STDCALL *VxThreadFn)(void *record);

/** What a worker of a pool runs; its result is ignored. */
typedef uint32_t (*VxWorkFn)(void *record);

struct VxThreadPool;

/** What a worker knows of itself. */
typedef struct VxPoolArg {
    struct VxThreadPool *pool;
    int32_t index;
} VxPoolArg;

/** A pool. Callers read `workers`; the rest is the workers' own. */
typedef struct VxThreadPool {
    void **threads; /**< one a worker; null where the system refused the thread */
    void **start;   /**< one a worker: there is work, or the end */
    void **done;    /**< one a worker: its record is done */
    int32_t *stop;  /**< one a worker: not 0 when it is to end */
    VxPoolArg *args; /**< one a worker */
    VxWorkFn work;  /**< of the current call, as the two below */
    char *base;
    int32_t stride;
    int32_t workers; /**< 0 on a machine with one processor */
} VxThreadPool;

/**
 * Run `fn` on base + i * stride for i = 0 to n - 1, each on a thread of its
 * own, and wait for all of them.
 *
 * @param stride  bytes from one record to the next
 * @param n       0 or less makes no thread
 * @return 0; 1 for no memory, when nothing was run, and when a call ended by an exception
 */
VX_API uint32_t HkRunMulTrd(VxThreadFn fn, void *base, int32_t stride, int32_t n);

/**
 * Make a pool of one worker per processor that the process may use, or of
 * none where that is one.
 *
 * @param pool  receives it; to be freed with HkFreeMulTrdPool
 * @return 0, or 1 for no memory; `*pool` is then null
 */
VX_API uint32_t HkAllocMulTrdPool(VxThreadPool **pool);

/**
 * Let every worker call `fn` once, worker w on base + w * stride, and wait for
 * all of them. Without workers `fn` is called on base by the calling thread.
 *
 * @param base  as many records as the pool has workers, at least one
 * @return 0, without workers the result of `fn`; 1 when a call ended by an exception
 */
VX_API uint32_t HkRunMulTrdPool(VxWorkFn fn, void *base, int32_t stride, VxThreadPool *pool);

/** End the workers, free the pool and clear the pointer: 0, or 1 for a null pointer or no pool. */
VX_API uint32_t HkFreeMulTrdPool(VxThreadPool **pool);

VX_C_END

#endif
