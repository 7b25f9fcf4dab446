// The watch for signals that end the process.

#include "vx/tools.h"

#include <atomic>
#include <cstdlib>

#include "platform/os/os.h"
#include "session/escape.h"
#include "vx/msg.h"
#include "vx/str.h"

namespace {

constexpr int32_t messageDisabled = 0;
constexpr int32_t messageFatal = 1;

struct FatalSignals {
    char text[600] = ""; ///< made beforehand: a handler may not look texts up
    std::atomic<bool> running{false};
};

constinit FatalSignals fatal;

/** Runs in a signal handler, on a process that may be broken: no locks, no memory, no streams. */
void onFatalSignal(vx::os::Signal)
{
    // A call-back that ends in another signal must not run a second time.
    if (fatal.running.exchange(true))
        return;
    vx::os::emergencyOutput(fatal.text);
    vx::session::runSignalCalls();
    fatal.running = false;
}

}

uint32_t VxSigInit(void)
{
    if (std::getenv("VX_SIG_DISABLE")) {
        VxPrintf("%s\n", VxMsg(VxToolsMsgID(), messageDisabled));
        return 0;
    }
    VxSprintf(fatal.text, sizeof fatal.text, "\n%s\n", VxMsg(VxToolsMsgID(), messageFatal));
    return vx::os::installFatalHandler(onFatalSignal) == vx::os::Error::none ? 0 : 1;
}
