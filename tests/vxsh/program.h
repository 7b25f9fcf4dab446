#pragma once

// Runs the built vxsh and keeps what it says.

#include "tests/support/test.h"

namespace vx::test {

struct Outcome {
    int status = -1; ///< exit code; above 128, or -1, when a signal ended it
    std::string out, err;
};

inline std::ostream &operator<<(std::ostream &stream, const Outcome &run)
{
    return stream << "status " << run.status << "\n" << run.out << "errors:\n" << run.err;
}

/** Run vxsh with these arguments and this standard input, in `folder` when one is given. */
Outcome vxsh(const Texts &arguments, const std::string &input = {}, const std::string &folder = {});

}
