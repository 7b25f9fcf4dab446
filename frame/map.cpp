// Whole files mapped into memory.

#include "vx/msg.h"

#include <algorithm>
#include <new>

#include "frame/map_state.h"

namespace vx::frame {

namespace {

constinit MapState mapState;

bool toMode(int32_t mode, os::MapMode &out) noexcept
{
    switch (mode) {
    case 0: out = os::MapMode::read; return true;
    case 1: out = os::MapMode::write; return true;
    case 2: out = os::MapMode::readWrite; return true;
    default: return false;
    }
}

}

MapState &maps() noexcept
{
    return mapState;
}

}

using namespace vx;
using namespace vx::frame;

void *VxMap(const char *fileName, int32_t mode, int64_t *size)
{
    os::MapMode osMode;
    if (!fileName || !size || !toMode(mode, osMode))
        return nullptr;
    std::scoped_lock lock(maps().mutex);
    auto &open = maps().open;
    if (open.size() >= MapState::limit)
        return nullptr;
    try {
        open.emplace_back();
    } catch (const std::bad_alloc &) {
        return nullptr;
    }
    if (os::mapFile(fileName, osMode, open.back()) != os::Error::none) {
        open.pop_back();
        return nullptr;
    }
    *size = open.back().size;
    return open.back().view;
}

uint32_t VxUnMap(void *view)
{
    std::scoped_lock lock(maps().mutex);
    auto &open = maps().open;
    auto entry = std::find_if(open.begin(), open.end(), [view](const auto &map) { return map.view == view; });
    if (entry == open.end())
        return 1;
    os::Error error = os::unmapFile(*entry);
    open.erase(entry);
    return error != os::Error::none;
}
