#ifndef VX_COMPRESS_H
#define VX_COMPRESS_H

/**
 * @file
 * Compression of whole memory blocks with zlib, and three queries to the host.
 *
 * Format   zlib's (RFC 1950), level 9. VxMemCompress (vx/mem.h) adds a marker
 *          byte and finds out the expanded size.
 * Results  `*result` must be null on entry, else the call fails and nothing
 *          is allocated. On success it receives a block that the caller frees
 *          with VxMemFree; on failure neither it nor the length is written.
 * Threads  From any thread, if VgProgressCb may be called there.
 */

#include "vx/types.h"

VX_C_BEGIN

/**
 * Compress a block. Meanwhile VxProgress is told 81 to 100: 80, and of 20 the
 * part of the source that is done; a short source skips values.
 *
 * @param length        bytes of the source, 1 to 1073741824
 * @param resultLength  receives the compressed size
 * @return 0, or 1 for arguments as above and when memory is short
 */
VX_API uint32_t VxLibDeflate(const void *source, int32_t length, void **result, int32_t *resultLength);

/**
 * Expand a block that VxLibDeflate made.
 *
 * A result that does not fit its room is cut there, and a source that breaks
 * off gives what came out of it: both succeed. So pass the expanded size when
 * it is known, and compare it with what comes back. The checksum at the end of
 * the source is tested only when there is more room than result.
 *
 * @param length        bytes of the source, at least 1
 * @param resultLength  on entry the room for the result when positive, else
 *                      8 times `length` is given, at most 2147483647 bytes;
 *                      on success receives the expanded size
 * @return 0, or 1 for a damaged source, one from which nothing comes, and when memory is short
 */
VX_API uint32_t VxLibInflate(const void *source, int32_t length, void **result, int32_t *resultLength);

/* ---------------------------------------------------------------- queries
 *
 * Forwarded to what the host has registered (talm/base.h); 0 where it has not.
 */

/** Show the build stamp (GetVerNum): the result of host function 71, int32_t(const char *text). */
VX_API int32_t VerNum(void);

/** Ask host function 232, which takes four words, how versions compare; the words mean what it says. */
VX_API int32_t HkVersionLessThan(intptr_t a0 VX_DEFAULT(0), intptr_t a1 VX_DEFAULT(0),
                                 intptr_t a2 VX_DEFAULT(0), intptr_t a3 VX_DEFAULT(0));

/** Host variable 14: non-zero while an automated test drives the application. */
VX_API int32_t HkQaTestIsActive(void);

VX_C_END

#endif
