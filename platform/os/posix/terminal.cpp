#include "platform/os/terminal.h"

#include <unistd.h>

namespace vx::os {

bool isTerminal(std::FILE *stream) noexcept
{
    return isatty(fileno(stream)) == 1;
}

}
