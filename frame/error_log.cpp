#include "frame/error_log.h"

namespace vx::frame {

ImmortalErrorState immortalErrorState;

thread_local constinit Suppression suppression;
thread_local constinit LatestError latestError{};

void resetErrorLog()
{
    ErrorState &state = errorState();
    std::scoped_lock lock(state.mutex);
    state.alertFiles.clear();
    state.pending.clear();
    state.counters.clear();
    ++state.restarts;
    state.spare.clear();
    state.repeats.clear();
    state.displayHook = nullptr;
    suppression = {};
}

}
