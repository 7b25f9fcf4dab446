// Extensions of file names.

#include <cstring>

#include "files/path_text.h"
#include "text/codepage.h"
#include "vx/file.h"
#include "vx/str.h"
#include "vx/tools.h"

namespace vx::files {

namespace {

constexpr size_t extensionSize = 16;

thread_local char extension[extensionSize];

/** The last point of a path's last component, or null; slashes separate too. */
const char *extensionPoint(const char *path) noexcept
{
    const text::CodePage &page = text::codePage();
    const char *point = nullptr;
    for (const char *p = path; *p; p += text::charBytes(page, p)) {
        if (isSeparator(*p))
            point = nullptr;
        else if (*p == '.')
            point = p;
    }
    return point;
}

/** Put the extension of a name into the shared buffer. */
const char *examine(const char *name) noexcept
{
    const char *point = name ? extensionPoint(name) : nullptr;
    VxStrCpy(extension, point ? point + 1 : "", sizeof extension);
    return extension;
}

bool isAnyOf(const char *text, std::initializer_list<const char *> known) noexcept
{
    for (const char *each : known)
        if (VxStrcasecmp(text, each) == 0)
            return true;
    return false;
}

void cutExtension(char *name) noexcept
{
    if (const char *point = extensionPoint(name))
        name[point - name] = '\0';
}

/** Put "." and `ext` behind the first `length` bytes of a name; false when that does not fit. */
bool putExtension(char *name, size_t length, int32_t size, const char *ext) noexcept
{
    size_t added = std::strlen(ext) + 1;
    if (size < 1 || length + added >= static_cast<size_t>(size))
        return false;
    name[length] = '.';
    std::memcpy(name + length + 1, ext, added);
    return true;
}

bool isNumber(const char *text) noexcept
{
    return *text && !text[std::strspn(text, "0123456789")];
}

}

}

using namespace vx;
using namespace vx::files;

const char *VxFileExt(const char *name)
{
    return examine(name);
}

int32_t VxFileValidExt(const char *name)
{
    return isAnyOf(examine(name), {VgViewerExt, VgHKExt, VgVXExt, VgHKPrtExt, VgHKDrwExt});
}

int32_t VxFileValidExt_Viewer(const char *name)
{
    return isAnyOf(examine(name), {VgViewerExt});
}

int32_t VxFileSetExt(char *name, int32_t size, const char *ext)
{
    if (!name || !ext || VxStrcasecmp(examine(name), ext) == 0)
        return 1;
    const char *point = extensionPoint(name);
    size_t length = point ? static_cast<size_t>(point - name) : std::strlen(name);
    return !putExtension(name, length, size, ext);
}

uint32_t VxFileSetExt2(char *name, int32_t size, const char *ext)
{
    if (!name || !ext)
        return 1;
    bool cut = VxFileValidExt(name);
    size_t length = cut ? static_cast<size_t>(extensionPoint(name) - name) : std::strlen(name);
    return !putExtension(name, length, size, ext);
}

uint32_t VxFileRmExt(char *name)
{
    if (!name)
        return 1;
    if (VxFileValidExt(name))
        cutExtension(name);
    return 0;
}

uint32_t VxFileRmExt2(char *name)
{
    if (!name)
        return 1;
    const char *point = extensionPoint(name);
    if (point && !isNumber(point + 1))
        cutExtension(name);
    return 0;
}
