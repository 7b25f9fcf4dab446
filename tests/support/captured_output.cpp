#include "tests/support/captured_output.h"

#include <unistd.h>

namespace vx::test {

CapturedOutput::CapturedOutput(std::FILE *stream) : stream_(stream), file_(std::tmpfile())
{
    std::fflush(stream_);
    saved_ = dup(fileno(stream_));
    dup2(fileno(file_), fileno(stream_));
}

CapturedOutput::~CapturedOutput()
{
    std::fflush(stream_);
    dup2(saved_, fileno(stream_));
    close(saved_);
    std::fclose(file_);
}

std::string CapturedOutput::text()
{
    std::fflush(stream_);
    std::string all;
    char piece[4096];
    off_t position = 0;
    for (ssize_t n; (n = pread(fileno(file_), piece, sizeof piece, position)) > 0; position += n)
        all.append(piece, static_cast<size_t>(n));
    return all;
}

}
