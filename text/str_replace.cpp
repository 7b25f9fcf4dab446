// Replaces characters and texts in the caller's buffer.

#include "vx/str.h"

#include <algorithm>
#include <cstring>

#include "text/codepage.h"
#include "text/str_scan.h"

using namespace vx;

namespace {

/** The result of a substitution while it is built. */
class WorkBuffer {
public:
    bool fits(size_t bytes) const { return bytes < text::workSize - used_; }

    void append(const char *bytes, size_t length)
    {
        std::memcpy(text_ + used_, bytes, length);
        used_ += length;
    }

    /** As much of a text as fits in whole characters; false when that is not all of it. */
    bool appendRest(const char *rest)
    {
        size_t length = std::strlen(rest);
        bool whole = text::copyPiece(text_ + used_, text::workSize - used_, rest, length);
        used_ = whole ? used_ + length : used_ + std::strlen(text_ + used_);
        return whole;
    }

    bool copyTo(char *out, size_t size) const { return text::copyPiece(out, size, text_, used_); }

private:
    char text_[text::workSize];
    size_t used_ = 0;
};

}

uint32_t VxStrReplace(char *s, int32_t from, int32_t to)
{
    const uint32_t wanted = text::asCharValue(from);
    const uint32_t instead = text::asCharValue(to);
    if (!s || wanted > 0xFF || instead > 0xFF)
        return 1;
    const text::CodePage &page = text::codePage();
    const char *p = s;
    while ((p = text::findChar(page, p, wanted))) {
        s[p - s] = static_cast<char>(instead);
        if (instead == 0)
            break;
        ++p;
    }
    return 0;
}

uint32_t VxStrReplaceTabs(char *s, int32_t size, int32_t spaces)
{
    if (!s || size < 1 || spaces < 0)
        return 1;
    if (spaces == 0) {
        *std::remove(s, s + std::strlen(s), '\t') = '\0';
        return 0;
    }
    const size_t room = static_cast<size_t>(size) - 1;
    const size_t width = static_cast<size_t>(spaces);
    auto widened = [width](char c) { return c == '\t' ? width : 1; };

    size_t kept = 0;
    size_t length = 0;
    while (s[kept] && widened(s[kept]) <= room - length)
        length += widened(s[kept++]);
    bool whole = s[kept] == '\0';
    size_t partOfTab = s[kept] == '\t' ? room - length : 0;
    if (!whole && partOfTab == 0) {
        size_t boundary = text::boundaryBefore(text::codePage(), s, kept);
        length -= kept - boundary;
        kept = boundary;
    }
    // From the back, so that nothing is overwritten before it was moved.
    s[length + partOfTab] = '\0';
    std::memset(s + length, ' ', partOfTab);
    while (kept > 0) {
        char c = s[--kept];
        length -= widened(c);
        std::memset(s + length, c == '\t' ? ' ' : c, widened(c));
    }
    return !whole;
}

uint32_t VxStrReplaceSub(char *s, int32_t size, const char *pattern, const char *replacement)
{
    if (!s || !pattern || !replacement || size < 1)
        return 1;
    const size_t patternLength = std::strlen(pattern);
    if (patternLength == 0)
        return 0;
    const text::CodePage &page = text::codePage();
    const size_t insertedLength = std::strlen(replacement);
    WorkBuffer work;
    const char *from = s;
    bool whole = true;
    while (const char *hit = text::findText(page, from, pattern, patternLength)) {
        const size_t before = static_cast<size_t>(hit - from);
        if (!work.fits(before + insertedLength)) {
            whole = false;
            break;
        }
        work.append(from, before);
        work.append(replacement, insertedLength);
        from = hit + patternLength;
    }
    if (from == s)
        return !whole;
    whole &= work.appendRest(from);
    whole &= work.copyTo(s, static_cast<size_t>(size));
    return !whole;
}

uint32_t VxStrReplaceSub2(char *s, int32_t size, int32_t position, int32_t length, const char *replacement)
{
    if (!s || !replacement || size < 1 || position < 0 || length < 0)
        return 1;
    const text::CodePage &page = text::codePage();
    const size_t total = std::strlen(s);
    const size_t first = static_cast<size_t>(position);
    const size_t end = first + static_cast<size_t>(length);
    if (end > total || text::boundaryBefore(page, s, first) != first ||
        text::boundaryBefore(page, s, end) != end)
        return 1;
    const size_t room = static_cast<size_t>(size) - 1;
    const size_t inserted = std::strlen(replacement);
    if (inserted > room - std::min(first, room)) {
        text::copyPiece(s + first, room + 1 - first, replacement, inserted);
        return 1;
    }
    size_t tail = total - end;
    const size_t tailRoom = room - first - inserted;
    bool whole = tail <= tailRoom;
    if (!whole)
        tail = text::boundaryBefore(page, s + end, tailRoom);
    std::memmove(s + first + inserted, s + end, tail);
    s[first + inserted + tail] = '\0';
    std::memcpy(s + first, replacement, inserted);
    return !whole;
}
