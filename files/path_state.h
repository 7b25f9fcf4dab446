#pragma once

#include "vx/path.h"

namespace vx::files {

/** What the path registry knows. Built on the main thread at start-up and only read afterwards. */
struct PathState {
    char install[261]; ///< folder of the running program, no final separator
    char root[256];    ///< base of the languages tree, with its final separator; empty before VxPathInit
    VxPathNode *first; ///< the registered directories, in order of registration
};

extern PathState pathState;

}
