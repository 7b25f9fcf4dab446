// The familiar POSIX names over the toolkit's paths.

#include "vx/posix.hpp"

#include "files/full_path.h"
#include "vx/str.h"

namespace VX {

char *realpath(const char *path, char *resolved, int32_t size)
{
    if (!path || !resolved || size < 1)
        return resolved;
    if (!vx::files::canonicalPath(path, resolved, static_cast<size_t>(size)))
        VxStrCpy(resolved, path, size);
    return resolved;
}

}
