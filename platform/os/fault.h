#pragma once

// Refusals for tests. Every verb of os.h and every allocation asks here first
// whether it is to fail. In the shipped library the answer is a constant and
// costs nothing; in the objects that tests link, the n-th call of a kind can
// be told to fail.

#include <cstdint>

namespace vx::fault {

enum class Kind { allocation, verb };

#ifdef VX_FAULTS

/** Counts one call of `kind`; true when this one is to fail. `name` is the verb's, for `onlyVerb`. */
bool refused(Kind kind, const char *name = "") noexcept;

/** The n-th call of `kind` from now on this thread fails (1 is the next); 0 refuses none. */
void refuse(Kind kind, int64_t nth) noexcept;

/** As refuse(), and all calls after the n-th fail too. */
void refuseFrom(Kind kind, int64_t nth) noexcept;

/** Count and refuse only verbs of this name ("openFile"); null for all. Keeps the pointer. */
void onlyVerb(const char *name) noexcept;

/** Calls counted on this thread since the last refuse(). */
int64_t calls(Kind kind) noexcept;

/** Calls refused on this thread since the last refuse(). */
int64_t refusals(Kind kind) noexcept;

#else

constexpr bool refused(Kind, const char * = "") noexcept
{
    return false;
}

#endif

}
