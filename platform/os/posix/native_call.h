#pragma once

// System calls on paths in the toolkit's spelling.

#include <cerrno>

#include "platform/os/native_path.h"
#include "platform/os/posix/error.h"

namespace vx::os {

constexpr size_t nativeSize = 4096 + 1;

/** Run `call` on the native form of `path`; it answers as system calls do. */
template <typename Call> Error withNative(const char *path, Call call) noexcept
{
    NativePath native(path);
    if (native.error() != Error::none)
        return refusePath(native.error());
    return call(native.c_str()) < 0 ? errorOf(errno) : Error::none;
}

/** The same for a call on two paths. */
template <typename Call> Error withNatives(const char *first, const char *second, Call call) noexcept
{
    return withNative(first, [&](const char *a) {
        NativePath b(second);
        if (b.error() == Error::none)
            return call(a, b.c_str());
        refusePath(b.error());
        return -1;
    });
}

}
