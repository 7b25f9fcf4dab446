#pragma once

#include <cstddef>

#include "platform/os/os.h"

// Functions on native names; -1 stands for failure, with errno and nothing changed.

namespace vx::os {

/** beginReplacement(), of a native name. */
int beginNative(const char *name, Replacement &out) noexcept;

/** commitReplacement(). */
int commitNative(Replacement &replacement, bool durable) noexcept;

/** Remove the new file of a replacement that was not committed; errno stays. */
void dropName(Replacement &replacement) noexcept;

/** Put `size` bytes in place of the file of this native name. */
int replaceNative(const char *name, const void *bytes, size_t size) noexcept;

/** linkFile(), of native names. */
int linkNative(const char *existing, const char *name) noexcept;

}
