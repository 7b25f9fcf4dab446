// Expanding and canonicalising.

#include <algorithm>
#include <cstdlib>
#include <new>
#include <string>

#include "files/full_path.h"
#include "files/path_text.h"
#include "text/codepage.h"
#include "vx/err.h"
#include "vx/path.h"
#include "vx/str.h"

namespace vx::files {

namespace {

constexpr int32_t realSize = 512;

struct Expansion {
    std::string text;
    bool resolved = true;

    /** What `variable` stands for, else `literal` as it is written. */
    void put(const std::string &variable, const std::string &literal)
    {
        const char *value = variable.empty() ? nullptr : std::getenv(variable.c_str());
        text += value ? value : literal;
        resolved &= value != nullptr;
    }
};

std::string takeWord(const text::CodePage &page, const char *&p)
{
    const char *start = p;
    while (*p && !isSeparator(*p))
        p += text::charBytes(page, p);
    return {start, p};
}

Expansion expand(const char *path)
{
    Expansion out;
    if (!*path) {
        out.text = ".";
        return out;
    }
    const text::CodePage &page = text::codePage();
    const char *p = path;
    if (*p == '~') {
        std::string word = takeWord(page, p);
        out.put(word == "~" ? "HOME" : "USERPROFILE", word);
    }
    while (*p) {
        if (*p == '$') {
            std::string word = takeWord(page, p);
            out.put(word.substr(1), word);
        } else {
            int bytes = text::charBytes(page, p);
            out.text.append(*p == '/' ? "\\" : p, static_cast<size_t>(bytes));
            p += bytes;
        }
    }
    return out;
}

}

}

using namespace vx;
using namespace vx::files;

int32_t VxPathExpand(const char *src, char *dst, int32_t size)
{
    if (!src || !dst || size < 1)
        return 0;
    try {
        Expansion expansion = expand(src);
        bool whole = VxStrCpy(dst, expansion.text.c_str(), size) == 0;
        return whole && expansion.resolved;
    } catch (const std::bad_alloc &) {
        return 0;
    }
}

uint32_t VxPathReal(int32_t report, const char *src, char *dst, int32_t size)
{
    if (!src || !dst || size < 1)
        return 1;
    char given[realSize]; // `dst` may be `src`
    VxStrCpy(given, src, sizeof given);
    if (VxPathExpand(src, dst, size) && canonicalPath(dst, dst, static_cast<size_t>(size)))
        return 0;
    if (report)
        VxErrStr(44, given);
    return 1;
}

uint32_t VxPathReal2(char *path, int32_t size)
{
    if (!path || size < 1)
        return 1;
    char real[realSize];
    uint32_t result = VxPathReal(1, path, real, std::min(size, realSize));
    VxStrCpy(path, real, size);
    return result;
}
