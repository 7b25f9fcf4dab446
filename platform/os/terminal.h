#pragma once

// What a program of the console asks about its streams. Apart from os.h:
// the toolkit itself never does.

#include <cstdio>

namespace vx::os {

/** True when a person sits at the stream. */
bool isTerminal(std::FILE *stream) noexcept;

}
