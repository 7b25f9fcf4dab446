// Formatted output, and where standard error goes.

#include "vx/str.h"

#include <cstdarg>
#include <cstring>
#include <mutex>

#include "platform/os/os.h"
#include "text/codepage.h"
#include "text/str_scan.h"
#include "vx/path.h"

using namespace vx;

namespace {

struct Redirection {
    std::mutex mutex;
    bool active = false;
    os::SavedStream before; ///< standard error as it was, while active
} redirection;

uint32_t printed(int32_t length)
{
    return length <= 0;
}

/** The file for a caller who names none; false when it has no place in `size` bytes. */
bool defaultFile(char *out, int32_t size)
{
    if (VxStrCpy(out, VgPathTemp, size) != 0)
        return false;
    if (*out == '\0' && os::temporaryFolder(out, static_cast<size_t>(size)) != os::Error::none)
        return false;
    const char *last = VxStrEndChar(out);
    const bool delimited = last && *last == '\\';
    return VxStrsCat(out, size, delimited ? "" : "\\", "stderr.txt") == 0;
}

}

uint32_t VxSprintf(char *dst, int32_t size, const char *format, ...)
{
    if (!dst || size < 1)
        return 1;
    if (!format) {
        *dst = '\0';
        return 1;
    }
    va_list args;
    va_start(args, format);
    const int32_t length = os::formatArgs(dst, static_cast<size_t>(size), format, args);
    va_end(args);
    if (length < 0) {
        *dst = '\0';
    } else if (length >= size) {
        const size_t kept = static_cast<size_t>(size) - 1;
        dst[kept - text::unfinishedBytes(text::codePage(), dst, kept)] = '\0';
    }
    return printed(length);
}

uint32_t VxPrintf(const char *format, ...)
{
    if (!format)
        return 1;
    va_list args;
    va_start(args, format);
    const int32_t length = os::printArgs(stdout, format, args);
    va_end(args);
    return printed(length);
}

uint32_t VxFprintf(FILE *stream, const char *format, ...)
{
    if (!stream || !format)
        return 1;
    va_list args;
    va_start(args, format);
    const int32_t length = os::printArgs(stream, format, args);
    va_end(args);
    return printed(length);
}

uint32_t VxStdErrRedirect(const char *file)
{
    char composed[260 + 16];
    if (!file && !defaultFile(composed, sizeof composed))
        return 1;
    std::lock_guard lock(redirection.mutex);
    os::SavedStream before;
    if (os::redirectStandardError(file ? file : composed, before) != os::Error::none)
        return 1;
    if (redirection.active)
        os::forget(before);
    else
        redirection.before = before;
    redirection.active = true;
    return 0;
}

uint32_t VxStdErrRestore(void)
{
    std::lock_guard lock(redirection.mutex);
    if (!redirection.active || os::restoreStandardError(redirection.before) != os::Error::none)
        return 1;
    redirection.active = false;
    return 0;
}
