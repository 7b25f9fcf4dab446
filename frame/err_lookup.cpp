// Registering alert files and looking errors up in them.

#include "vx/err.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "frame/alert_file.h"
#include "frame/err_lookup.h"
#include "frame/error_log.h"
#include "vx/path.h"
#include "vx/str.h"

namespace vx::frame {

namespace {

constexpr int32_t maxName = 255;
constexpr int32_t pathSize = 512;

/** The id of a full path, which is registered when it is new. */
int32_t idOf(const char *path)
{
    ErrorState &state = errorState();
    std::scoped_lock lock(state.mutex);
    auto &files = state.alertFiles;
    auto known = std::find(files.begin(), files.end(), path);
    auto id = static_cast<int32_t>(known - files.begin());
    if (known == files.end())
        files.emplace_back(path);
    return id;
}

}

const char *alertFilePath(int32_t id)
{
    ErrorState &state = errorState();
    std::scoped_lock lock(state.mutex);
    auto count = static_cast<int32_t>(state.alertFiles.size());
    if (id < 0 || id > count)
        return nullptr;
    // One past the last is let through; it names no file.
    return id == count ? "" : state.alertFiles[static_cast<size_t>(id)].c_str();
}

void printNoFile(const char *name)
{
    VxPrintf("Unable to access error file %s.\n", name);
}

}

using namespace vx::frame;

uint32_t VxErrLoadFile(const char *name, int32_t *id)
{
    if (!name || !id)
        return 1;
    if (std::strlen(name) > maxName) {
        VxPrintf("Error file name is longer than %d characters.", maxName);
        return 1;
    }
    char path[pathSize];
    std::strcpy(path, name);
    if (!VxPathFindIn(path, pathSize, "text", 1) || VxPathReal2(path, pathSize)) {
        VxPrintf("Unable to access error file %s.", name);
        return 1;
    }
    try {
        *id = idOf(path);
    } catch (const std::bad_alloc &) {
        return 1;
    }
    return 0;
}

uint32_t VxErrGet(int32_t id, int32_t number, int32_t *severity, char *text, int32_t size)
{
    if (!text || size < 1)
        return 1;
    const char *path = alertFilePath(id);
    if (!path) {
        VxPrintf("Invalid error file id (%d).\n", id);
        return 1;
    }
    AlertFile file(path);
    if (!file.isOpen()) {
        printNoFile(path);
        return 1;
    }
    AlertText found;
    if (!file.find(number, LanguageTag(), found))
        return 1;
    if (severity)
        *severity = found.severity;
    VxStrCpy(text, found.text, size);
    return 0;
}

char *VxErr(int32_t id, int32_t number, char *text, int32_t size)
{
    if (text && size > 0)
        text[0] = '\0';
    VxErrGet(id, number, nullptr, text, size);
    return text;
}
