#include "platform/event.h"

#include <chrono>
#include <thread>

#include "platform/os/os.h"

namespace vx::platform {

namespace {

constexpr int pauses = 4;
// A worker that is not needed is to sleep within 50 microseconds.
constexpr std::chrono::microseconds awake{30};

}

bool Event::comesSoon() const noexcept
{
    for (int i = 0; i < pauses; ++i) {
        if (isSet())
            return true;
        os::relaxProcessor();
    }
    auto begin = std::chrono::steady_clock::now();
    do {
        if (isSet())
            return true;
        std::this_thread::yield();
    } while (std::chrono::steady_clock::now() - begin < awake);
    return isSet();
}

void Event::wait() noexcept
{
    State was = State::clear;
    if (!comesSoon() && state_.compare_exchange_strong(was, State::asleep, std::memory_order_acq_rel))
        while (!isSet())
            state_.wait(State::asleep, std::memory_order_acquire);
    state_.store(State::clear, std::memory_order_relaxed);
}

}
