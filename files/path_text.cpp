// The path utilities that only look at the text.

#include "files/path_text.h"

#include <algorithm>
#include <cstring>

#include "platform/ascii.h"
#include "text/codepage.h"
#include "vx/err.h"
#include "vx/path.h"
#include "vx/str.h"
#include "vx/tools.h"

namespace vx::files {

const char *firstSeparator(const char *path) noexcept
{
    const text::CodePage &page = text::codePage();
    for (const char *p = path; *p; p += text::charBytes(page, p))
        if (*p == separator)
            return p;
    return nullptr;
}

const char *lastSeparator(const char *path) noexcept
{
    const text::CodePage &page = text::codePage();
    const char *last = nullptr;
    for (const char *p = path; *p; p += text::charBytes(page, p))
        if (*p == separator)
            last = p;
    return last;
}

const char *lastComponent(const char *path) noexcept
{
    const char *last = lastSeparator(path);
    return last ? last + 1 : path;
}

bool endsInSeparator(const char *path) noexcept
{
    const char *last = lastSeparator(path);
    return last && !last[1];
}

bool hasDrive(const char *path) noexcept
{
    return ascii::isLetter(path[0]) && path[1] == ':';
}

bool join(char *out, size_t size, std::initializer_list<std::string_view> parts) noexcept
{
    size_t length = 0;
    for (std::string_view part : parts) {
        if (part.size() >= size - length) {
            *out = '\0';
            return false;
        }
        part.copy(out + length, part.size());
        length += part.size();
    }
    out[length] = '\0';
    return true;
}

namespace {

constexpr int32_t composeSize = 1024;

void reportTooLong(const char *path, int32_t size)
{
    char shown[30];
    VxStrCpy(shown, path, sizeof shown);
    char text[sizeof shown + 4];
    join(text, sizeof text, {shown, " ..."});
    VxErrLogFmt(VxToolsErrID(), 55, "", 0, text, size - 1);
}

/** Copy a part of a path; one that does not fit is cut behind a whole character. */
void take(std::string_view part, char *out, size_t size, bool &cut)
{
    if (!out)
        return;
    size_t length = part.size();
    if (length >= size) {
        length = text::boundaryBefore(text::codePage(), part.data(), size - 1);
        cut = true;
    }
    part.copy(out, length);
    out[length] = '\0';
}

}

}

using namespace vx;
using namespace vx::files;

uint32_t VxPathCheck(char *path)
{
    if (!path)
        return 1;
    const text::CodePage &page = text::codePage();
    for (char *p = path; *p; p += text::charBytes(page, p))
        if (*p == '/')
            *p = separator;
    return 0;
}

uint32_t VxPathAddDelim(char *path)
{
    if (!path)
        return 1;
    size_t length = std::strlen(path);
    if (length > 0 && !endsInSeparator(path))
        std::memcpy(path + length, "\\", 2);
    return 0;
}

uint32_t VxPathErr(const char *path, int32_t size, int32_t report)
{
    if (!path)
        return 1;
    if (size > 0 && std::strlen(path) < static_cast<size_t>(size))
        return 0;
    if (report)
        reportTooLong(path, size);
    return 1;
}

uint32_t VxPathCompose(char *path, int32_t size, const char *name, int32_t report)
{
    if (!path || !name || size < 1)
        return 1;
    char composed[composeSize];
    const char *between = *path && !endsInSeparator(path) ? "\\" : "";
    if (!join(composed, sizeof composed, {path, between, name})) {
        if (report)
            reportTooLong(*path ? path : name, std::min(size, composeSize));
        return 1;
    }
    if (VxPathErr(composed, size, report))
        return 1;
    return VxStrCpy(path, composed, size);
}

uint32_t VxPathDir(const char *path, char *out, int32_t size)
{
    if (!path || !out || size < 1)
        return 1;
    const char *last = lastSeparator(path);
    std::string_view dir = last ? std::string_view(path, static_cast<size_t>(last - path)) : ".\\";
    if (dir.size() >= static_cast<size_t>(size)) {
        *out = '\0';
        return 1;
    }
    // `out` may be the path itself.
    std::memmove(out, dir.data(), dir.size());
    out[dir.size()] = '\0';
    return 0;
}

uint32_t VxPathName(const char *path, int32_t size, char *out)
{
    if (!path || !out || size < 1)
        return 1;
    std::string_view name = lastComponent(path);
    if (name.size() >= static_cast<size_t>(size)) {
        VxErrStr(56, path);
        *out = '\0';
        return 1;
    }
    std::memmove(out, name.data(), name.size() + 1);
    return *out == '\0' || std::strcmp(out, ".") == 0 || std::strcmp(out, "..") == 0;
}

uint32_t VxPathSplit(const char *path, char *drive, char *dir, char *name, char *ext)
{
    if (!path)
        return 1;
    bool cut = false;
    size_t driveLength = hasDrive(path) ? 2 : 0;
    take({path, driveLength}, drive, 3, cut);
    path += driveLength;

    const text::CodePage &page = text::codePage();
    const char *base = path;
    const char *dot = nullptr;
    const char *end = path;
    for (; *end; end += text::charBytes(page, end)) {
        if (isSeparator(*end)) {
            base = end + 1;
            dot = nullptr;
        } else if (*end == '.')
            dot = end;
    }
    if (!dot)
        dot = end;
    take({path, static_cast<size_t>(base - path)}, dir, 256, cut);
    take({base, static_cast<size_t>(dot - base)}, name, 256, cut);
    take({dot, static_cast<size_t>(end - dot)}, ext, 256, cut);
    return cut;
}
