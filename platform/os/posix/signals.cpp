#include "platform/os/os.h"

#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "platform/os/fault.h"
#include "platform/os/posix/error.h"

namespace vx::os {

namespace {

struct Watched {
    int number;
    Signal name;
};

constexpr Watched watched[] = {
    {SIGINT, Signal::interrupt},       {SIGILL, Signal::illegalInstruction},
    {SIGABRT, Signal::abort},          {SIGFPE, Signal::floatingPoint},
    {SIGSEGV, Signal::segmentation},   {SIGTERM, Signal::terminate},
};
constexpr int watchedCount = sizeof watched / sizeof *watched;

std::atomic<void (*)(Signal)> fatalHandler{nullptr};
struct sigaction before[watchedCount];
bool installed = false;

// A handler for a stack overflow cannot run on the stack that overflowed.
alignas(16) char alternateStack[64 * 1024];

void onSignal(int number)
{
    for (int i = 0; i < watchedCount; ++i) {
        if (watched[i].number != number)
            continue;
        // A fault in a call-back must end the process, not come here again.
        struct sigaction standard = {};
        standard.sa_handler = SIG_DFL;
        sigaction(number, &standard, nullptr);
        if (auto handler = fatalHandler.load())
            handler(watched[i].name);
        sigaction(number, &before[i], nullptr);
    }
    raise(number);
}

}

Error installFatalHandler(void (*handler)(Signal)) noexcept
{
    VX_OS_VERB("installFatalHandler");
    fatalHandler = handler;
    if (installed)
        return Error::none;
    stack_t stack = {};
    stack.ss_sp = alternateStack;
    stack.ss_size = sizeof alternateStack;
    stack_t current = {};
    if (sigaltstack(nullptr, &current) == 0 && (current.ss_flags & SS_DISABLE))
        sigaltstack(&stack, nullptr);
    struct sigaction ours = {};
    ours.sa_handler = onSignal;
    ours.sa_flags = SA_ONSTACK;
    sigemptyset(&ours.sa_mask);
    Error first = Error::none;
    for (int i = 0; i < watchedCount; ++i)
        if (sigaction(watched[i].number, &ours, &before[i]) != 0 && first == Error::none)
            first = errorOf(errno);
    installed = true;
    return first;
}

void removeFatalHandler() noexcept
{
    if (!installed)
        return;
    for (int i = 0; i < watchedCount; ++i)
        sigaction(watched[i].number, &before[i], nullptr);
    installed = false;
    fatalHandler = nullptr;
}

void emergencyOutput(const char *text) noexcept
{
    [[maybe_unused]] ssize_t written = write(STDERR_FILENO, text, std::strlen(text));
}

void securityFailure(const char *message) noexcept
{
    struct sigaction standard = {};
    standard.sa_handler = SIG_DFL;
    sigaction(SIGABRT, &standard, nullptr);
    emergencyOutput(message);
    std::abort();
}

}
