// Streams that are remembered until they are closed.

#include "files/open_files.h"

#include <algorithm>
#include <cinttypes>
#include <new>

#include "platform/os/os.h"
#include "vx/openfile.h"
#include "vx/path.h"
#include "vx/str.h"

namespace vx::files {

constinit OpenFiles openFiles{};

namespace {

constexpr size_t growthStep = 8;

/** Room for one more record; false when there is no memory, and then the list is as it was. */
bool makeRoom()
{
    try {
        if (!openFiles.list) {
            std::vector<OpenFile> list;
            list.reserve(growthStep);
            openFiles.list = std::move(list);
        }
        std::vector<OpenFile> &list = *openFiles.list;
        if (list.size() == list.capacity())
            list.reserve(list.capacity() + growthStep);
        return true;
    } catch (const std::bad_alloc &) {
        return false;
    }
}

}

}

using namespace vx;
using namespace vx::files;

FILE *f_open(const char *name, const char *mode)
{
    FILE *stream = nullptr;
    if (os::openFile(name, mode, stream) != os::Error::none)
        return nullptr;
    if (!makeRoom())
        return stream;
    OpenFile record{{}, stream};
    VxStrCpy(record.path, name, sizeof record.path);
    VxPathReal2(record.path, sizeof record.path);
    openFiles.list->push_back(record);
    return stream;
}

int32_t f_close(FILE *stream)
{
    if (!stream)
        return 0;
    if (openFiles.list) {
        std::vector<OpenFile> &list = *openFiles.list;
        auto record = std::find_if(list.begin(), list.end(),
                                   [stream](const OpenFile &file) { return file.stream == stream; });
        if (record != list.end())
            list.erase(record);
    }
    return std::fclose(stream);
}

int32_t f_report(void)
{
    if (!openFiles.list)
        return 0;
    VxPrintf("----- open files -----\n");
    for (const OpenFile &file : *openFiles.list)
        VxPrintf("%" PRIxPTR " = %s\n", reinterpret_cast<uintptr_t>(file.stream), file.path);
    return 0;
}

int32_t f_free(void)
{
    openFiles.list.reset();
    return 0;
}
