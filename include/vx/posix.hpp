#ifndef VX_POSIX_HPP
#define VX_POSIX_HPP

/**
 * @file
 * Familiar POSIX names over the toolkit's paths. They live in a namespace and
 * have C++ linkage, so that they never stand in for the C library's own.
 */

#include <cstdint>

#include "vx/types.h"

namespace VX {

VX_API char *realpath(const char *path, char *resolved, int32_t size);

}

#endif
