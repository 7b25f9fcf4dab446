// The heap keeps what is freed: else most of the time would be the kernel's,
// which takes pages back and supplies them again, now for one and then for
// the other.

#include <cstdint>

#include <malloc.h>

namespace {

[[maybe_unused]] const int heapKeepsPages = mallopt(M_MMAP_MAX, 0) + mallopt(M_TRIM_THRESHOLD, INT32_MAX);

}
