#ifndef VX_TIMING_H
#define VX_TIMING_H

/**
 * @file
 * Stopwatches, and the time of day as text.
 *
 * Durations    in seconds.
 * Times        seconds since 1970-01-01 00:00 UTC. Texts are in the local time
 *              zone. A time before 1970 or after the year 3000 (UTC) cannot be
 *              written as text.
 * Texts        The pointers lead to a buffer of the function's own in the
 *              calling thread; its next call there overwrites it.
 * Threads      There is one stopwatch of each kind in the process: for one
 *              thread. Everything else may be called from any thread.
 */

#include "vx/types.h"

VX_C_BEGIN

/* ---------------------------------------------------------------- elapsed time */

/** Start the stopwatch, and its split time. */
VX_API void VxTimeWallBeg(void);

/** Time since the start, which stays. */
VX_API double VxTimeWallEnd(void);

/** Time since the last split, or the start before the first; begins the next split. */
VX_API double VxTimeWallDel(void);

/** Seconds since 1970, with a resolution of a microsecond. */
VX_API double VxTimingGetWall(void);

/* ---------------------------------------------------------------- processor time of the process */

/** The same four, for the processor time that all threads of the process have used. */
VX_API void VxTimeTstBeg(void);
VX_API double VxTimeTstEnd(void);
VX_API double VxTimeTstDel(void);
VX_API double VxTimingGetTime(void);

/* ---------------------------------------------------------------- the calendar */

/** Now. */
VX_API int64_t VxTime(void);

/** Now as "Sat Nov 21 13:52:01 2026", in English whatever the locale is. */
VX_API char *VxTimeAsc(void);

/** A time in the same form; message 166 of the toolkit for one that cannot be written. */
VX_API char *VxTimeToAsc(int64_t t);

/**
 * A time as year, month, day, hour and minute without leading zeros, for names
 * of files: "26.11.21_13:52". The year has no century; 2005 is "5". A time that
 * cannot be written leaves the text of the call before.
 */
VX_API char *VxTimeToAsc2(int64_t t);

/**
 * A time as the user's locale writes it.
 *
 * @param what  1 the date, 2 the time of day, 3 both with a blank between
 * @return 0, with the text of VxTimeToAsc where the locale has none; 1 for
 *         another `what` or a text that does not fit, which is then empty
 */
VX_API uint32_t VxTimeToFmt(int64_t t, int32_t what, char *buf, int32_t size);

VX_C_END

#endif
