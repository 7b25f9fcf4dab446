#pragma once

// State of the heap storage manager behind vx/pool.h.

#include <cstdint>

namespace vx::heap {

struct StorageManager {
    bool started = false;
    bool failed = false;
    int32_t maximumAlignment = 8;
    int32_t sizeLimit = 16 * 1024 * 1024;
    int64_t usage[3] = {};
};

StorageManager &storageManager();

/** Put the manager and its exported variables back into the state before its start. */
void resetStorageManager();

}
