// Copying, moving and rewriting files. Whatever fails on the way, each name
// leads to its old content or to all of the new.

#include "files/file_copy.h"

#include "files/file_handle.h"
#include "files/path_text.h"
#include "vx/err.h"
#include "vx/file.h"
#include "vx/path.h"
#include "vx/str.h"

namespace vx::files {

namespace {

constexpr int32_t errorCreate = 22;
constexpr int32_t errorClean = 23;
constexpr int32_t errorReplace = 69;
constexpr int32_t errorNoWriteAccess = 61;

constexpr int32_t composeSize = 512;
constexpr size_t step = 8 * 1024 * 1024;

/** Copy from the start of a file to a place in another, to its end. */
bool copyAll(os::Handle from, os::Handle to, int64_t position) noexcept
{
    int64_t done = 0;
    for (;;) {
        size_t copied = 0;
        if (os::copyBytes(from, done, to, position + done, step, copied) != os::Error::none)
            return false;
        if (copied == 0)
            return true;
        done += static_cast<int64_t>(copied);
    }
}

/** Append to an open file; a failure cuts it back to what it was. */
bool append(os::Handle from, FileHandle &to) noexcept
{
    os::FileStatus status;
    if (os::handleStatus(to.get(), status) != os::Error::none)
        return false;
    bool done = copyAll(from, to.get(), status.size);
    if (!done)
        os::resizeHandle(to.get(), status.size);
    return to.close() == os::Error::none && done;
}

/** A file that can be given away or replaced: its device. */
bool writableDevice(const char *name, uint64_t &device)
{
    os::FileStatus status;
    if (VxFileWrite(name) == 0 || os::fileStatus(name, status) != os::Error::none) {
        reportFile(errorNoWriteAccess, name);
        return false;
    }
    device = status.device;
    return true;
}

/** The device on which a file that is not there would be made. */
bool deviceOfNew(const char *name, uint64_t &device)
{
    FILE *probe = nullptr;
    os::FileStatus status;
    // "x": another process may make the file meanwhile, and then it stays.
    bool made = os::openFile(name, "wbx", probe) == os::Error::none;
    if (made)
        std::fclose(probe);
    bool told = made && os::fileStatus(name, status) == os::Error::none;
    bool gone = made && os::removeFile(name) == os::Error::none;
    if (!told || !gone) {
        reportFile(errorCreate, name);
        return false;
    }
    device = status.device;
    return true;
}

bool moveAcross(const char *from, const char *to) noexcept
{
    return copyFile(from, to, Durable::yes) && os::removeFile(from) == os::Error::none;
}

/** Have `backup` lead to the content that `name` leads to, by a second name or a copy. */
bool keepAs(const char *name, os::Handle content, const char *backup) noexcept
{
    os::Error error = os::linkFile(name, backup);
    bool withoutLinks = error == os::Error::unsupported || error == os::Error::accessDenied ||
                        error == os::Error::otherDevice;
    if (!withoutLinks)
        return error == os::Error::none;
    Successor copy;
    return copy.begin(backup) && copy.fillFrom(content) && copy.commit(true);
}

}

bool Successor::fillFrom(os::Handle source) noexcept
{
    // Before there is anything in it, too: who may not read the file may not read its copy meanwhile.
    os::copyTimesAndPermissions(source, replacement_.file);
    if (!copyAll(source, replacement_.file, 0))
        return false;
    os::Error error = os::copyTimesAndPermissions(source, replacement_.file);
    // Some file systems have neither to give.
    return error == os::Error::none || error == os::Error::unsupported || error == os::Error::accessDenied;
}

bool copyFile(const char *from, const char *to, Durable durable) noexcept
{
    FileHandle source;
    Successor copy;
    return source.openToRead(from) && copy.begin(to) && copy.fillFrom(source.get()) &&
           copy.commit(durable == Durable::yes || copy.old().isOpen());
}

}

using namespace vx;
using namespace vx::files;

uint32_t VxFileCpy(const char *from, const char *to)
{
    return !copyFile(from, to, Durable::no);
}

uint32_t VxFileCpy2(const char *name, const char *fromDir, const char *toDir)
{
    char from[composeSize];
    char to[composeSize];
    if (VxStrCpy(from, fromDir, sizeof from) || VxPathCompose(from, sizeof from, name, 1) ||
        VxStrCpy(to, toDir, sizeof to) || VxPathCompose(to, sizeof to, name, 1))
        return 1;
    return VxFileCpy(from, to);
}

uint32_t VxFileConcat(const char *from, const char *to)
{
    FileHandle source;
    FileHandle target;
    if (!source.openToRead(from))
        return 1;
    os::FileStatus status;
    os::Error error = os::fileStatus(to, status);
    bool made = error == os::Error::notFound;
    if (!made && (error != os::Error::none || !isFile(status)))
        return 1;
    uint32_t mode = os::writeAccess | os::shareRead | (made ? os::createNew : 0u);
    if (target.open(to, mode) != os::Error::none)
        return 1;
    if (append(source.get(), target))
        return 0;
    if (made)
        os::removeFile(to);
    return 1;
}

uint32_t VxFileRename(const char *from, const char *to)
{
    return os::renameFile(from, to) != os::Error::none;
}

uint32_t VxFileMv(const char *from, const char *to)
{
    if (!from || !to)
        return 1;
    uint64_t source = 0;
    uint64_t target = 0;
    if (!writableDevice(from, source))
        return 1;
    if (!(VxFileExists(to) ? writableDevice(to, target) : deviceOfNew(to, target)))
        return 1;
    if (source != target)
        return !moveAcross(from, to);
    os::Error error = os::renameFile(from, to);
    // One device can be mounted in two places, between which nothing is renamed.
    return error == os::Error::otherDevice ? !moveAcross(from, to) : error != os::Error::none;
}

uint32_t VxFileClean(const char *name)
{
    char backup[composeSize];
    if (!name)
        return 1;
    Successor cleaned;
    if (!join(backup, sizeof backup, {name, ".bak"}) || !cleaned.begin(name) || !cleaned.old().isOpen() ||
        !cleaned.fillFrom(cleaned.old())) {
        reportFile(errorClean, name);
        return 1;
    }
    if (keepAs(name, cleaned.old(), backup) && cleaned.commit(true))
        return 0;
    reportFile(errorReplace, name);
    return 1;
}
