#pragma once

#include <cstddef>

namespace vx::os {

/** Put `size` bytes in place of the file of this native name: 0, or -1 with errno and nothing changed. */
int replaceNative(const char *name, const void *bytes, size_t size) noexcept;

}
