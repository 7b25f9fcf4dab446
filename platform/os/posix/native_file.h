#pragma once

// What verbs share that keep a file of their own among the user's.

#include <cerrno>
#include <new>
#include <string>

#include "platform/os/os.h"
#include "platform/os/posix/error.h"

namespace vx::os {

/** The whole file; an absent one is empty. */
Error readWhole(const std::string &name, std::string &text);

/** Make the folders above `name` that are missing. */
Error makeFolders(const std::string &name);

/** The Error for an errno value, which is set. */
inline Error fail(int code) noexcept
{
    errno = code;
    return errorOf(code);
}

/** Run a body that may need memory. */
template <typename Body> Error guarded(Body body) noexcept
{
    try {
        return body();
    } catch (const std::bad_alloc &) {
        return fail(ENOMEM);
    }
}

}
