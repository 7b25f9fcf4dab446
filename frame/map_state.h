#pragma once

#include <cstddef>
#include <mutex>
#include <vector>

#include "platform/os/os.h"

namespace vx::frame {

/** The files that are mapped, in the order of mapping. */
struct MapState {
    static constexpr size_t limit = 1023;

    std::mutex mutex;
    std::vector<os::Mapping> open;
};

MapState &maps() noexcept;

}
