#pragma once

#include <cstddef>

namespace vx::files {

/** The longest full path that the toolkit works with, in bytes. */
constexpr size_t longestPath = 255;

/**
 * The full form of `path` by its text alone: a relative path is put behind
 * the current directory, "." and ".." are folded (not above the drive, root
 * or share), slashes become backslashes, a final separator stays. No link is
 * followed and nothing need exist.
 * @return false when the result has more than longestPath bytes, does not fit
 *         `size`, or the current directory cannot be read; `out` is then as it was
 */
bool fullPath(const char *path, char *out, size_t size) noexcept;

/** fullPath(), then the long form of what exists under a short name where the system has such. */
bool canonicalPath(const char *path, char *out, size_t size) noexcept;

}
