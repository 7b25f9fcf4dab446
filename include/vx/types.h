#ifndef VX_TYPES_H
#define VX_TYPES_H

/**
 * @file
 * What every header of the toolkit shares: linkage, integer types, call-back
 * types, and the rules that hold wherever a function does not say otherwise.
 *
 * Results      0 is success, 1 failure; a few functions give 2 for a second
 *              kind of failure. Predicates give 1 or 0, finders non-zero when
 *              found, iterators -1 at the end. The reason for a failure is
 *              never in the result: it is filed in the error log (vx/err.h).
 * Texts        zero-terminated bytes in the process code page (vx/lang.h).
 *              A size is always that of the buffer in bytes, terminator
 *              included; a cut never splits a character.
 * Ownership    The caller owns what it allocates and what comes back through
 *              an out-pointer, and frees such a block with VxMemFree. Delete
 *              functions take the address of the pointer and clear it.
 * Threads      The toolkit runs on the host's main thread. A header says
 *              where a family may be called from others.
 * Null         A null pointer gives the function's failure value; nothing
 *              is written.
 */

#include <stddef.h>
#include <stdint.h>

#include "vx/export.h"

#ifdef __cplusplus
#define VX_C_BEGIN extern "C" {
#define VX_C_END }
/** A default argument for C++ callers; C callers pass every argument. */
#define VX_DEFAULT(value) = value
#else
#define VX_C_BEGIN
#define VX_C_END
#define VX_DEFAULT(value)
#endif

VX_C_BEGIN

/** Compares two records: negative, zero or positive. */
typedef int32_t (*VxCmpFn)(const void *a, const void *b);

/** Compares a key with a record; c1 and c2 are the caller's. */
typedef int32_t (*VxCmp4Fn)(void *c1, void *c2, const void *key, const void *record);

/** Told of a record just before it is removed; c1 and c2 are the caller's. */
typedef void (*VxDelFn)(void *c1, void *c2, void *record);

/** A call-back without arguments. */
typedef void (*VxCallFn)(void);

VX_C_END

#endif
