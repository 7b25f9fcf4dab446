// Copies, appends and cuts into the caller's buffers.

#include "vx/str.h"

#include <cstring>
#include <limits>

#include "text/codepage.h"
#include "text/str_scan.h"
#include "vx/mem.h"

using namespace vx;

namespace {

constexpr size_t longestChar = 4;

/** End a text at a character. It may fill its buffer without a terminator: nothing behind it is looked at. */
void cutWithin(char *s, size_t position, size_t size)
{
    if (size - position >= longestChar || std::memchr(s + position, '\0', size - position)) {
        text::cutAt(s, position);
        return;
    }
    const text::CodePage &page = text::codePage();
    const bool mayContinue = page.has(s[position], text::CodePage::trailByte);
    const size_t torn = mayContinue ? text::unfinishedBytes(page, s, position) : 0;
    std::memset(s + position - torn, 0, torn + 1);
}

}

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
    const size_t length = std::strlen(src);
    if (length >= room) {
        text::copyCut(dst, room, src);
        return 1;
    }
    std::memmove(dst, src, length + 1);
    return 0;
}

uint32_t VxStrCat(char *dst, const char *src, int32_t size)
{
    if (!dst || !src || size < 1)
        return 1;
    const size_t room = static_cast<size_t>(size);
    char *end = static_cast<char *>(std::memchr(dst, '\0', room));
    const size_t added = std::strlen(src);
    if (!end || added >= room - static_cast<size_t>(end - dst))
        return 1;
    std::memmove(end, src, added + 1);
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
    const bool inside = position >= 0 && position < size;
    cutWithin(s, static_cast<size_t>(inside ? position : size - 1), static_cast<size_t>(size));
    return !inside;
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
