#pragma once

// The one place where a path text becomes a native name and back.
//
// Toolkit spelling: backslashes, the process code page. A drive letter that
// the drive map (VX_DRIVE_MAP="D=/mnt/d;P=/srv/p") knows stands for its
// folder; one that it does not know names nothing. Native names take the
// longest mapped prefix, else the form without a drive: /home/u is \home\u.

#include <cstddef>

#include "platform/os/os.h"

namespace vx::os {

/** A native name, UTF-8, on the stack. */
class NativePath {
public:
    explicit NativePath(const char *path) noexcept;

    /** none; notFound for a drive that is not mapped; nameTooLong; invalid for a null text. */
    Error error() const noexcept { return error_; }
    const char *c_str() const noexcept { return text_; }

private:
    char text_[4096 + 1];
    Error error_;
};

/** A native name in the toolkit's spelling; characters that the code page lacks become '?'. */
Error fromNative(const char *native, char *out, size_t size) noexcept;

}
