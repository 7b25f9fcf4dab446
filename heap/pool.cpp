// The exported state of the heap storage manager.

#include "vx/pool.h"

#include "heap/pool.h"

namespace {

constexpr int32_t initialAreas = 2;
constexpr int32_t initialTrailer = 8;

}

void *VgCurrentPool = nullptr;
VxHsmArea VgInitialAreas[initialAreas] = {};
VxHsmArea *VgAreas = VgInitialAreas;
int32_t VgNAreas = initialAreas;
int32_t VgTransientTrailerSize = initialTrailer;

namespace vx::heap {

StorageManager &storageManager()
{
    static constinit StorageManager manager;
    return manager;
}

void resetStorageManager()
{
    VgCurrentPool = nullptr;
    VgNAreas = initialAreas;
    VgAreas = VgInitialAreas;
    VgTransientTrailerSize = initialTrailer;
    storageManager() = {};
}

}
