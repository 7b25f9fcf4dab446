// Files whose names match a pattern.

#include <memory>

#include "files/folder.h"
#include "vx/file.h"
#include "vx/path.h"
#include "vx/posix.hpp"
#include "vx/str.h"

namespace vx::files {

namespace {

constexpr int32_t ignoringCase = 0x10;

struct DeleteList {
    void operator()(VxList *list) const noexcept { VxListDel(&list); }
};

/** The matches that VxFileFindFirst found and VxFileNext goes through. */
struct Matches {
    std::unique_ptr<VxList, DeleteList> names;
    int32_t next = 0;
};

thread_local Matches matches;

int32_t keepFile(const char *dir, const char *name, void *)
{
    return !VxPathIsDir(inFolder(dir, name).c_str());
}

}

}

using namespace vx::files;

uint32_t VxFileGlob(const char *dir, const char *pattern, VxFileGlobFn filter, void *context, VxList **names)
{
    if (!names)
        return 1;
    *names = nullptr;
    if (!dir || !pattern)
        return 1;
    return withMemory(1u, [&]() -> uint32_t {
        std::vector<Entry> entries;
        if (!readFolder(dir, entries))
            return 1;
        std::vector<std::string> kept;
        for (const Entry &entry : entries)
            if (VX::fnmatch(pattern, entry.name.c_str(), ignoringCase) == 0 &&
                (!filter || filter(dir, entry.name.c_str(), context)))
                kept.push_back(entry.name);
        return !makeNameList(kept, names);
    });
}

uint32_t VxFileList(const char *dir, const char *pattern, VxList **names)
{
    return VxFileGlob(dir, pattern, keepFile, nullptr, names);
}

int32_t VxFileFindFirst(const char *dir, const char *pattern, char *out, int32_t size)
{
    VxList *names = nullptr;
    VxFileGlob(dir, pattern, nullptr, nullptr, &names);
    matches.names.reset(names);
    matches.next = 0;
    return VxFileNext(out, size);
}

int32_t VxFileNext(char *out, int32_t size)
{
    if (!out || size < 1)
        return 0;
    while (matches.names && matches.next < matches.names->count) {
        void *name = nullptr;
        VxListGetPtr(matches.names.get(), matches.next++, &name);
        if (VxStrCpy(out, static_cast<const char *>(name), size) == 0)
            return 1;
    }
    matches.names.reset();
    *out = '\0';
    return 0;
}
