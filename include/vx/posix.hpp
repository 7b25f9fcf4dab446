#ifndef VX_POSIX_HPP
#define VX_POSIX_HPP

/**
 * @file
 * Familiar POSIX names over the toolkit's paths (vx/path.h). They live in a
 * namespace and have C++ linkage, so that they never stand in for the C
 * library's own. All of them may be called from any thread.
 */

#include <cstdint>

#include "vx/posix.h"

/** A time, since 1970-01-01 00:00 UTC. */
struct VxTimeVal {
    int64_t sec;
    int32_t usec; ///< whole milliseconds
};

/** What a system is called. */
struct VxUtsName {
    char sysname[257];
    char nodename[257]; ///< this machine
    char release[257];
    char version[257];
    char machine[257]; ///< the processor
};

namespace VX {

/** Compares the names of two records, given the addresses of pointers to them, by their bytes: -1, 0 or 1. */
VX_API int alphasort(const void *a, const void *b);

/**
 * The full form of a path, by its text: a relative path starts in the current
 * directory ("D:a" there only when that lies on D:), "." and ".." are folded
 * but not above the drive, root or network share, slashes become backslashes,
 * a final separator stays. Nothing need exist, and links are not followed.
 *
 * @param resolved  receives it; may be `path`. When the full form has more
 *                  than 255 bytes, does not fit, or the current directory
 *                  cannot be read, it receives `path` as it is, cut to `size`;
 *                  VxPathReal() tells such a failure
 * @return resolved
 */
VX_API char *realpath(const char *path, char *resolved, int32_t size);

/** Cut one final backslash off a path; what stands behind the last backslash then, or the whole path. */
VX_API char *basename(char *path);

/** Cut one final backslash off a path, and then what stands from its last backslash on; `path`. */
VX_API char *dirname(char *path);

/**
 * Match a name against a pattern, by characters of the process code page.
 *
 *   *      any run of characters, also an empty one
 *   ?      one character
 *   [a-d]  one of the characters and ranges; with "!" or "^" in front one
 *          that is none of them. A "]" at the front is one of them; a "["
 *          without its "]" is an ordinary character
 *   \c     the character c, also between brackets
 *
 * @param flags  0x1   the backslash separates: "*", "?" and brackets do not
 *                     match it. It remains the escape, so that a pattern
 *                     spells a separator "\\" unless 0x2 is set
 *               0x2   the backslash does not escape
 *               0x4   a point at the start, with 0x1 also behind a separator,
 *                     is only matched by a point
 *               0x10  letters match ignoring case
 * @return 0 for a match, else 1. The time is never more than that of
 *         comparing the pattern with the name at each of its positions
 */
VX_API int32_t fnmatch(const char *pattern, const char *name, int32_t flags);

/**
 * The time.
 * @param command  null, or the address of an int32_t: 1 has the system's clock
 *                 step by a millisecond from now on, 2 no longer so, behind
 *                 this reading. Where it always does, neither changes anything
 * @return 0; -1 for a null `tv`
 */
VX_API int32_t gettimeofday(VxTimeVal *tv, void *command);

/** The system, as it names itself: 1, or -1 when it does not. */
VX_API int32_t uname(VxUtsName *info);

}

#endif
