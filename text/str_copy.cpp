// Copies, appends and cuts into the caller's buffers.

#include "vx/str.h"

#include <cstring>
#include <limits>

#include "text/codepage.h"
#include "text/str_scan.h"
#include "vx/mem.h"

using namespace vx;

uint32_t VxStrCpy(char *dst, const char *src, int32_t size)
{
    if (!dst)
        return 1;
    if (dst == src)
        return 0;
    if (size < 1)
        return 1;
    if (!src) {
        *dst = '\0';
        return 1;
    }
    const size_t room = static_cast<size_t>(size);
    if (const void *end = std::memchr(src, '\0', room)) {
        std::memmove(dst, src, static_cast<size_t>(static_cast<const char *>(end) - src) + 1);
        return 0;
    }
    text::copyPiece(dst, room, src, room);
    return 1;
}

uint32_t VxStrCat(char *dst, const char *src, int32_t size)
{
    if (!dst || !src || size < 1)
        return 1;
    const size_t room = static_cast<size_t>(size);
    char *end = static_cast<char *>(std::memchr(dst, '\0', room));
    if (!end)
        return 1;
    const void *srcEnd = std::memchr(src, '\0', room - static_cast<size_t>(end - dst));
    if (!srcEnd)
        return 1;
    std::memmove(end, src, static_cast<size_t>(static_cast<const char *>(srcEnd) - src) + 1);
    return 0;
}

const char *VxStrCpyTo(char *dst, const char *src, int32_t stop, int32_t size)
{
    if (!dst || size < 1)
        return nullptr;
    if (!src) {
        *dst = '\0';
        return nullptr;
    }
    const uint32_t wanted = text::asCharValue(stop);
    const char *found = text::findChar(text::codePage(), src, wanted);
    size_t length = found ? static_cast<size_t>(found - src) : std::strlen(src);
    if (!text::copyPiece(dst, static_cast<size_t>(size), src, length) || !found)
        return nullptr;
    return found + text::valueBytes(wanted);
}

uint32_t VxStrDup(const char *src, char **copy)
{
    if (!copy)
        return 1;
    *copy = nullptr;
    if (!src)
        return 1;
    size_t size = std::strlen(src) + 1;
    void *block = nullptr;
    if (size > std::numeric_limits<int32_t>::max() || VxMemAlloc(static_cast<int32_t>(size), &block) != 0)
        return 1;
    std::memcpy(block, src, size);
    *copy = static_cast<char *>(block);
    return 0;
}

uint32_t VxStrsCat(char *dst, int32_t size, const char *s1, const char *s2, const char *s3, const char *s4,
                   const char *s5, const char *s6)
{
    if (!s1)
        return 1;
    for (const char *piece : {s1, s2, s3, s4, s5, s6}) {
        if (!piece)
            break;
        if (VxStrCat(dst, piece, size) != 0)
            return 1;
    }
    return 0;
}

uint32_t VxStrTermAt(char *s, int32_t position, int32_t size)
{
    if (!s || size < 1)
        return 1;
    if (position < 0 || position >= size) {
        VxStrTruncAt(s, size - 1);
        return 1;
    }
    text::cutAt(s, static_cast<size_t>(position));
    return 0;
}

uint32_t VxStrTruncAt(char *s, int32_t position)
{
    if (!s || position < 0)
        return 1;
    const size_t at = static_cast<size_t>(position);
    if (!std::memchr(s, '\0', at))
        text::cutAt(s, at);
    return 0;
}

int32_t VxStrSizeOkay(const char *s, int32_t size)
{
    return s && *s && size > 0 && std::memchr(s, '\0', static_cast<size_t>(size) + 1) != nullptr;
}
