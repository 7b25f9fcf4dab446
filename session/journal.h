#pragma once

#include "vx/path.h"

namespace vx::session {

struct Journal {
    char path[256] = "";         ///< canonical; empty while journaling is off
    int32_t firstWrite = 1;      ///< the journal at `path` was not written in this session yet
    VxPathNode *files = nullptr; ///< the journals written in this session, newest first
    int32_t fileCount = 0;
};

extern Journal journal;

}
