// Programs without a shell, pauses, and processes that run.

#include <algorithm>
#include <chrono>
#include <cstring>
#include <new>
#include <string>
#include <thread>

#include "platform/command_line.h"
#include "platform/os/os.h"
#include "vx/str.h"
#include "vx/sys.h"

using namespace vx;

namespace {

// Longer than any process lives, and short enough for every clock.
constexpr double longestPause = 1e9;

bool start(const char *commandLine, os::Shown shown, os::Program &program) noexcept
{
    if (!commandLine)
        return false;
    try {
        auto words = platform::wordsOfCommandLine(commandLine);
        return os::startProgram(platform::addressesOf(words).data(), shown, program) == os::Error::none;
    } catch (const std::bad_alloc &) {
        return false;
    }
}

struct Search {
    const char *name;
    bool byPath;
    bool found;
    uint32_t id;
};

/** Whether to look on behind this process. */
bool compareProcess(void *context, uint32_t id, const char *program)
{
    auto search = static_cast<Search *>(context);
    const char *separator = VxStrrchrCONST(program, '\\');
    const char *compared = search->byPath || !separator ? program : separator + 1;
    try {
        std::string front(compared, strnlen(compared, std::strlen(search->name)));
        search->found = VxStrcasecmp(front.c_str(), search->name) == 0;
    } catch (const std::bad_alloc &) {
        return true;
    }
    search->id = id;
    return !search->found;
}

}

uint32_t VxRunApp(const char *commandLine, int32_t *exitCode)
{
    os::Program program;
    int32_t code = 0;
    if (!start(commandLine, os::Shown::yes, program))
        return 1;
    if (os::waitForProgram(program, code) != os::Error::none) {
        os::forget(program);
        return 1;
    }
    if (exitCode)
        *exitCode = code;
    return 0;
}

uint32_t VxRunApp2(const char *commandLine, int32_t show)
{
    os::Program program;
    if (!start(commandLine, show ? os::Shown::yes : os::Shown::no, program))
        return 1;
    os::forget(program);
    return 0;
}

void VxPause(double seconds)
{
    if (seconds > 0)
        std::this_thread::sleep_for(std::chrono::duration<double>(std::min(seconds, longestPause)));
}

int32_t VxProcessFind(const char *name, uint32_t *processId)
{
    if (!name || !*name)
        return 0;
    Search search{name, VxStrrchrCONST(name, '\\') != nullptr, false, 0};
    os::eachProcess(compareProcess, &search);
    if (search.found && processId)
        *processId = search.id;
    return search.found;
}
