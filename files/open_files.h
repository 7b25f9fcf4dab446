#pragma once

#include <cstdio>
#include <optional>
#include <vector>

namespace vx::files {

struct OpenFile {
    char path[512]; ///< canonical
    FILE *stream;
};

/** The files that f_open() opened and f_close() did not close yet; absent until the first of them. */
struct OpenFiles {
    std::optional<std::vector<OpenFile>> list;
};

extern OpenFiles openFiles;

}
