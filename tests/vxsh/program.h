#pragma once

// Runs the built vxsh and keeps what it says.

#include <string>
#include <vector>

namespace vx::test {

struct Outcome {
    int status = -1; ///< exit code; above 128, or -1, when a signal ended it
    std::string out, err;
};

/** Run vxsh with these arguments and this standard input, in `folder` when one is given. */
Outcome vxsh(const std::vector<std::string> &arguments, const std::string &input = {}, const std::string &folder = {});

}
