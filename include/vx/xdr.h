#ifndef VX_XDR_H
#define VX_XDR_H

/**
 * @file
 * External data representation, the standard's own interface: numbers, texts,
 * arrays and records in a form that every machine reads alike.
 *
 * A routine per type encodes, decodes and frees, by the direction of the
 * stream that it is given, and answers 1 or, when the stream ends or a limit
 * is passed, 0:
 *
 *     bool_t transferPoint(XDR *stream, Point *point)
 *     {
 *         return xdr_double(stream, &point->x) && xdr_double(stream, &point->y);
 *     }
 *
 * Streams      xdrmem_create, xdrstdio_create and xdrrec_create make one over
 *              memory, a FILE or a pair of call-backs; xdr_destroy ends it.
 * Limits       xdr_string, xdr_bytes and xdr_array take the most that may be
 *              read. Keep it small: what a stream promises is allocated before
 *              it is read.
 * Ownership    Decoding into a null pointer allocates with malloc. xdr_free,
 *              with the same routine, frees it, also after decoding failed.
 * Integers     Prefer the types of fixed width (xdr_int32_t, xdr_int64_t).
 *              "long" has 32 bits in a stream whatever it has in memory.
 * Threads      A stream belongs to one thread at a time.
 *
 * examples/parameter_table shows a table written to a file and read back.
 *
 * The routines are those of the system's XDR library, which is linked with
 * the toolkit. They do not allocate through vx/mem.h and file no errors.
 */

#include <stdio.h>
#include <netinet/in.h>
#include <rpc/types.h>

/* Not all of the library's declarations say themselves that they are C. */
#ifdef __cplusplus
extern "C" {
#endif
#include <rpc/xdr.h>
#ifdef __cplusplus
}
#endif

#endif
