#pragma once

#include <cstdint>

namespace vx::frame {

/** The registered path of an id, for good; "" for the id one past the last, null for any other. */
const char *alertFilePath(int32_t id);

void printNoFile(const char *name);

}
