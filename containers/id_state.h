#pragma once

// The process-wide state of identifiers and labels, for tests too.

#include <cstdint>
#include <set>
#include <string>

namespace vx::containers {

struct IdGenerator {
    int32_t a = 0;
    int32_t b = 0;
    bool seeded = false;
    int32_t made = 0; ///< identifiers since the last seeding
};

IdGenerator &idGenerator() noexcept;

struct LabelLog {
    std::set<std::string, std::less<>> labels; ///< whole records, byte for byte
};

LabelLog &labelLog() noexcept;

}
