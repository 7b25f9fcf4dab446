// Attributes: read-only is a file without write permission for its owner;
// hidden and archive stand in the extended attribute in which file servers
// and compatibility layers keep them, as a hexadecimal text ("0x22").

#include "platform/os/os.h"

#include <sys/stat.h>
#include <sys/xattr.h>

#include <cerrno>
#include <charconv>
#include <cstring>

#include "platform/os/fault.h"
#include "platform/os/posix/native_call.h"

namespace vx::os {

namespace {

constexpr const char *attributeName = "user.DOSATTRIB";
constexpr uint32_t storedBits = hiddenAttribute | archiveAttribute;

/** The stored bits; none where nothing is stored. */
uint32_t stored(const char *name) noexcept
{
    // Some writers put further data behind the text.
    char text[256];
    ssize_t length = getxattr(name, attributeName, text, sizeof text);
    uint32_t bits = 0;
    if (length > 2 && text[0] == '0' && text[1] == 'x')
        std::from_chars(text + 2, text + length, bits, 16);
    return bits & storedBits;
}

int store(const char *name, uint32_t bits) noexcept
{
    if (bits == stored(name))
        return 0;
    if (bits == 0)
        return removexattr(name, attributeName);
    char text[16] = "0x";
    char *end = std::to_chars(text + 2, text + sizeof text, bits, 16).ptr;
    return setxattr(name, attributeName, text, static_cast<size_t>(end - text), 0);
}

int setAttributes(const char *name, uint32_t attributes) noexcept
{
    struct stat status;
    if (stat(name, &status) != 0)
        return -1;
    mode_t before = status.st_mode & 07777;
    // Only who may write a file may store anything with it.
    mode_t writable = before | S_IWUSR;
    bool readOnly = (attributes & readOnlyAttribute) && !S_ISDIR(status.st_mode);
    mode_t after = readOnly ? before & ~static_cast<mode_t>(S_IWUSR | S_IWGRP | S_IWOTH) : writable;
    if (writable != before && chmod(name, writable) != 0)
        return -1;
    int result = store(name, attributes & storedBits);
    int code = errno;
    bool failed = result != 0 && code != ENOTSUP;
    mode_t wanted = failed ? before : after;
    if (wanted != writable && chmod(name, wanted) != 0)
        return -1;
    errno = code;
    return result;
}

}

Error fileAttributes(const char *path, uint32_t &attributes) noexcept
{
    VX_OS_VERB("fileAttributes");
    return withNative(path, [&](const char *name) {
        struct stat status;
        if (stat(name, &status) != 0)
            return -1;
        bool folder = S_ISDIR(status.st_mode);
        bool readOnly = !folder && !(status.st_mode & S_IWUSR);
        attributes = stored(name) | (folder ? directoryAttribute : 0u) | (readOnly ? readOnlyAttribute : 0u);
        return 0;
    });
}

Error setFileAttributes(const char *path, uint32_t attributes) noexcept
{
    VX_OS_VERB("setFileAttributes");
    return withNative(path, [&](const char *name) { return setAttributes(name, attributes); });
}

}
