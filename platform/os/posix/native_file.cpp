#include "platform/os/posix/native_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/os/posix/descriptor.h"

namespace vx::os {

Error readWhole(const std::string &name, std::string &text)
{
    Descriptor file(open(name.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.get() < 0)
        return errno == ENOENT || errno == ENOTDIR ? Error::none : errorOf(errno);
    char piece[4096];
    for (;;) {
        ssize_t n = read(file.get(), piece, sizeof piece);
        if (n == 0)
            return Error::none;
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            return errorOf(errno);
        text.append(piece, static_cast<size_t>(n));
    }
}

Error makeFolders(const std::string &name)
{
    for (size_t slash = name.find('/', 1); slash != name.npos; slash = name.find('/', slash + 1))
        if (mkdir(name.substr(0, slash).c_str(), 0777) != 0 && errno != EEXIST)
            return errorOf(errno);
    return Error::none;
}

}
