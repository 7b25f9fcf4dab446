#pragma once

// What every fuzz target begins with.

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

/** Ends the run when something does not hold that must for any bytes. */
inline void require(bool holds)
{
    if (!holds)
        std::abort();
}

/** The input itself from a byte on, so that the sanitizer sees what is read behind it. */
inline std::string_view textFrom(size_t first, const uint8_t *data, size_t size)
{
    return {reinterpret_cast<const char *>(data) + first, size - first};
}
