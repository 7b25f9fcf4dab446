#pragma once

#include "platform/os/os.h"

namespace vx::os {

/** The Error for errno value `code`. */
Error errorOf(int code) noexcept;

/** Sets errno for a path that has no native name, and gives the error on. */
Error refusePath(Error error) noexcept;

}

/** First line of a verb: fail here when a test refuses it. `result` is what the verb returns then. */
#define VX_OS_VERB(name)                                                                                     \
    do {                                                                                                     \
        if (vx::fault::refused(vx::fault::Kind::verb, name)) {                                               \
            errno = EIO;                                                                                     \
            return vx::os::Error::other;                                                                     \
        }                                                                                                    \
    } while (false)
