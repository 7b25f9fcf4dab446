#pragma once

#include <cstdio>
#include <string>

namespace vx::test {

/** Catches what the process writes to standard output or standard error while it lives. */
class CapturedOutput {
public:
    explicit CapturedOutput(std::FILE *stream = stdout);
    ~CapturedOutput();
    CapturedOutput(const CapturedOutput &) = delete;
    CapturedOutput &operator=(const CapturedOutput &) = delete;

    /** Everything caught so far. */
    std::string text();

private:
    std::FILE *stream_;
    std::FILE *file_;
    int saved_;
};

}
