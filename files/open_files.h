#pragma once

#include <cstdio>

#include "vx/list.h"

namespace vx::files {

struct OpenFile {
    char path[512]; ///< canonical
    FILE *stream;
};

/** The files that f_open() opened and f_close() did not close yet. */
struct OpenFiles {
    VxList *list; ///< of OpenFile, in order of opening; null until the first of them
};

extern OpenFiles openFiles;

}
