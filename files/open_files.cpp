// Streams that are remembered until they are closed.

#include "files/open_files.h"

#include <cinttypes>

#include "platform/os/os.h"
#include "vx/openfile.h"
#include "vx/path.h"
#include "vx/str.h"

namespace vx::files {

constinit OpenFiles openFiles{};

namespace {

constexpr int32_t arrayLayout = 2;
constexpr int32_t growthStep = 8;

void remember(const char *name, FILE *stream)
{
    if (!openFiles.list &&
        VxListMk(arrayLayout, sizeof(OpenFile), growthStep, growthStep, nullptr, &openFiles.list))
        return;
    OpenFile record{{}, stream};
    VxStrCpy(record.path, name, sizeof record.path);
    VxPathReal2(record.path, sizeof record.path);
    VxListSet(openFiles.list, openFiles.list->count, &record);
}

int32_t recordCount()
{
    return openFiles.list ? openFiles.list->count : 0;
}

/** A record of the list; null, with the list's own error, when it is none of ours. */
const OpenFile *recordAt(int32_t index)
{
    if (openFiles.list->elemSize != sizeof(OpenFile)) {
        VxListSizeError();
        return nullptr;
    }
    void *record = nullptr;
    VxListGetPtr(openFiles.list, index, &record);
    return static_cast<const OpenFile *>(record);
}

void forget(FILE *stream)
{
    for (int32_t i = 0; i < recordCount(); ++i) {
        const OpenFile *record = recordAt(i);
        if (record && record->stream == stream) {
            VxListDelElem(openFiles.list, i, i);
            return;
        }
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
    remember(name, stream);
    return stream;
}

int32_t f_close(FILE *stream)
{
    if (!stream)
        return 0;
    forget(stream);
    return std::fclose(stream);
}

int32_t f_report(void)
{
    if (!openFiles.list)
        return 0;
    VxPrintf("----- open files -----\n");
    for (int32_t i = 0; i < recordCount(); ++i)
        if (const OpenFile *record = recordAt(i))
            VxPrintf("%" PRIxPTR " = %s\n", reinterpret_cast<uintptr_t>(record->stream), record->path);
    return 0;
}

int32_t f_free(void)
{
    VxListDel(&openFiles.list);
    return 0;
}
