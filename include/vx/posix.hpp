#ifndef VX_POSIX_HPP
#define VX_POSIX_HPP

/**
 * @file
 * Familiar POSIX names over the toolkit's paths (vx/path.h). They live in a
 * namespace and have C++ linkage, so that they never stand in for the C
 * library's own.
 */

#include <cstdint>

#include "vx/types.h"

namespace VX {

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

}

#endif
