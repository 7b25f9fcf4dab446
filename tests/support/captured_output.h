#pragma once

#include <unistd.h>

#include <cstdio>
#include <string>

namespace vx::test {

/** Catches what the process writes to standard output or standard error while it lives. */
class CapturedOutput {
public:
    explicit CapturedOutput(std::FILE *stream = stdout) : stream_(stream)
    {
        std::fflush(stream_);
        dup2(fileno(file_), fileno(stream_));
    }

    ~CapturedOutput()
    {
        std::fflush(stream_);
        dup2(saved_, fileno(stream_));
        close(saved_);
        std::fclose(file_);
    }
    CapturedOutput(const CapturedOutput &) = delete;
    CapturedOutput &operator=(const CapturedOutput &) = delete;

    /** Everything caught so far. */
    std::string text()
    {
        std::fflush(stream_);
        std::string all(static_cast<size_t>(lseek(fileno(file_), 0, SEEK_END)), '\0');
        all.resize(static_cast<size_t>(pread(fileno(file_), all.data(), all.size(), 0)));
        return all;
    }

private:
    std::FILE *stream_, *file_ = std::tmpfile();
    int saved_ = dup(fileno(stream_));
};

}
