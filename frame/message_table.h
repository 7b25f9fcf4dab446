#pragma once

// The loaded catalogues. Loaded and freed on the main thread; other threads
// read them without a lock, so entries never move and the count is raised last.

#include <array>
#include <atomic>
#include <cstdint>
#include <string>

#include "frame/catalogue.h"

namespace vx::frame {

struct MessageTable {
    static constexpr int32_t limit = 130;

    struct Entry {
        std::string name; ///< as given to the loader
        Catalogue catalogue;
    };

    std::array<Entry, limit> entries;
    std::atomic<int32_t> count{0};
};

MessageTable &messages() noexcept;

}
