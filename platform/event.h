#pragma once

#include <atomic>
#include <cstdint>

namespace vx::platform {

/**
 * Set by one thread, waited for by one other, clear again when that goes on.
 *
 * The waiting thread looks again after a few pauses, since the answer may be
 * a memory access away; then it gives way to others, which may be those it
 * waits for; then it sleeps. Setting an event costs a call of the system only
 * when the other sleeps.
 */
class alignas(64) Event {
public:
    void set() noexcept
    {
        if (state_.exchange(State::set, std::memory_order_acq_rel) == State::asleep)
            state_.notify_one();
    }

    /** Wait until it is set, and clear it. */
    void wait() noexcept;

private:
    enum class State : int32_t { clear, set, asleep };

    bool isSet() const noexcept { return state_.load(std::memory_order_acquire) == State::set; }
    bool comesSoon() const noexcept;

    std::atomic<State> state_{State::clear};
};

}
