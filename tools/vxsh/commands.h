#pragma once

// What the commands do, the toolkit being started.

#include "tools/vxsh/options.h"

namespace vxsh {

/** Exit codes of the program. */
inline constexpr int done = 0;
inline constexpr int failed = 1;
inline constexpr int wrongUsage = 2;

/** Run any command save the console. */
int runCommand(const Options &options);

/** `run`: a file of parameters. */
int runFile(const Options &options);

/** The console, with line editing when a person sits at it. */
int runConsole(const Options &options);

}
