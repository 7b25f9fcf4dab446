#pragma once

// Files in the hands of the copying and reading functions.

#include "platform/os/os.h"

namespace vx::files {

/** File Tools error `number` about a path, in the toolkit's spelling. */
void reportFile(int32_t number, const char *path);

/** Whether a status is that of a file, not of a folder or device. */
bool isFile(const os::FileStatus &status) noexcept;

/** An open file that is closed at the end of its scope. */
class FileHandle {
public:
    FileHandle() = default;
    ~FileHandle() { os::dropHandle(handle_); }
    FileHandle(const FileHandle &) = delete;
    FileHandle &operator=(const FileHandle &) = delete;

    os::Error open(const char *path, uint32_t mode) noexcept { return os::openHandle(path, mode, handle_); }

    /** Open a file to read it, beside other readers. Devices, which may never end, are refused. */
    bool openToRead(const char *path) noexcept;

    os::Error close() noexcept { return os::closeHandle(handle_); }
    os::Handle get() const noexcept { return handle_; }

private:
    os::Handle handle_;
};

}
