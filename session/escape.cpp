// Escapes: the flag that interrupts long computations, the call-backs it
// runs, and those of the fatal-signal handler.
//
// The flag and the counters are plain exported integers, which the
// application's monitoring thread writes while a computation polls. The
// toolkit touches them through atomic references; no order is needed, since
// nothing but the values themselves is handed over.

#include "vx/escape.h"
#include "vx/escape.hpp"

#include <array>
#include <atomic>
#include <limits>

#include "session/escape.h"
#include "vx/err.h"
#include "vx/tools.h"

int32_t VgEscapeFlag = 0;
int32_t VgEscapeDisable = 0;
int32_t VgEscNumChk = 0;
int32_t VgEscMaxChk = 0;
int32_t VgEscDlgFlag = 0;
int32_t VgEcsDlgIsPop = 0;
int32_t VgEscMoniThread = 0;
int32_t VgEscapeErrorTime = 0;
int32_t VgInLowLevelEscape = 0;
int32_t VgSkipPushEscaper = 0;
int32_t VgEchoEscaped = 0;

namespace {

constexpr int32_t tooManyEscapeCalls = 29;
constexpr int32_t tooManySignalCalls = 30;

int32_t sameInterval(int32_t n)
{
    return n;
}

int32_t zero()
{
    return 0;
}

void nothing() {}

int32_t read(int32_t &shared) noexcept
{
    return std::atomic_ref(shared).load(std::memory_order_relaxed);
}

void write(int32_t &shared, int32_t value) noexcept
{
    std::atomic_ref(shared).store(value, std::memory_order_relaxed);
}

/** A fixed table of call-backs; an empty slot is null. Readable from a signal handler. */
template <size_t Slots> class CallTable {
public:
    /** Into the first empty slot; false when all are taken. */
    bool add(VxCallFn fn) noexcept
    {
        for (auto &slot : slots_) {
            VxCallFn empty = nullptr;
            if (slot.compare_exchange_strong(empty, fn))
                return true;
        }
        return false;
    }

    /** Clears the first slot that holds `fn`, if any. */
    void remove(VxCallFn fn) noexcept
    {
        for (auto &slot : slots_) {
            VxCallFn held = fn;
            if (slot.compare_exchange_strong(held, nullptr))
                return;
        }
    }

    void clear() noexcept
    {
        for (auto &slot : slots_)
            slot = nullptr;
    }

    void run() const
    {
        for (auto &slot : slots_)
            if (VxCallFn call = slot)
                call();
    }

private:
    std::array<std::atomic<VxCallFn>, Slots> slots_{};
    static_assert(std::atomic<VxCallFn>::is_always_lock_free, "a signal handler reads the slots");
};

struct Calls {
    CallTable<4> escape;
    CallTable<32> signal;
};

constinit Calls calls;

template <size_t Slots>
uint32_t add(CallTable<Slots> &table, VxCallFn fn, int32_t errorWhenFull, const char *where)
{
    if (!fn)
        return 1;
    if (table.add(fn))
        return 0;
    VxErrLogNum(VxToolsErrID(), errorWhenFull, where, 0);
    return 1;
}

}

int32_t (*VxEscStart)(int32_t) = sameInterval;
int32_t (*VxEscCheck)(void) = zero;
int32_t (*VxEscCnt)(void) = zero;
void (*VxEscEnd)(void) = nothing;
void (*VxEscRecover)(void) = nothing;
void (*VxEscDlgPopStart)(void) = nothing;
void (*VxEscDlgPopEnd)(void) = nothing;
void (*VxEscaperPush)(void) = nullptr;
void (*VxEscaperPop)(void) = nullptr;

namespace vx::session {

bool interrupted()
{
    // Wraps around rather than overflow: between operations nothing resets the count.
    uint32_t steps = static_cast<uint32_t>(read(VgEscNumChk)) + 1;
    write(VgEscNumChk, static_cast<int32_t>(steps));
    if (static_cast<int32_t>(steps) > read(VgEscMaxChk) && VxEscCheck && VxEscCheck() != 0)
        return true;
    return read(VgEscapeDisable) == 0 && read(VgEscapeFlag) != 0;
}

void runSignalCalls() noexcept
{
    calls.signal.run();
}

}

int32_t VxEscFnStart(int32_t n)
{
    write(VgEscNumChk, 0);
    write(VgEscMaxChk, n);
    write(VgEscapeFlag, 0);
    return n;
}

int32_t VxEscFnCheck(void)
{
    write(VgEscNumChk, 0);
    return read(VgEscapeFlag) != 0;
}

void VxEscFnEnd(void)
{
    write(VgEscapeFlag, 0);
    write(VgEscMaxChk, std::numeric_limits<int32_t>::max());
}

uint32_t VxEscHandler(void)
{
    // In one step, so that of two threads that escape at once one runs the call-backs.
    int32_t lowered = 0;
    if (std::atomic_ref(VgEscapeFlag).compare_exchange_strong(lowered, 1))
        calls.escape.run();
    return 0;
}

uint32_t VxEscReset(void)
{
    write(VgEscapeFlag, 0);
    return 0;
}

uint32_t VxEscInit(void)
{
    return VxEscDelAllCalls();
}

uint32_t VxEscAddCall(VxCallFn fn)
{
    return add(calls.escape, fn, tooManyEscapeCalls, "VxEscAddCall");
}

uint32_t VxEscDelCall(VxCallFn fn)
{
    calls.escape.remove(fn);
    return 0;
}

uint32_t VxEscDelAllCalls(void)
{
    calls.escape.clear();
    return 0;
}

uint32_t VxSigAddCall(VxCallFn fn)
{
    return add(calls.signal, fn, tooManySignalCalls, "VxSigAddCall");
}

uint32_t VxSigDelCall(VxCallFn fn)
{
    calls.signal.remove(fn);
    return 0;
}

uint32_t VxSigDelAllCalls(void)
{
    calls.signal.clear();
    return 0;
}

int32_t VxProgress(intptr_t a0, intptr_t a1, intptr_t a2, intptr_t a3)
{
    return VgProgressCb ? VgProgressCb(a0, a1, a2, a3) : 0;
}

namespace VX {

int32_t CommandRecover::gsInCmdStack = 0;

CommandRecover::CommandRecover()
{
    ++gsInCmdStack;
}

CommandRecover::CommandRecover(const CommandRecover &)
{
    ++gsInCmdStack;
}

CommandRecover &CommandRecover::operator=(const CommandRecover &) = default;

CommandRecover::~CommandRecover() noexcept
{
    if (--gsInCmdStack != 0)
        return;
    write(VgEscapeFlag, 0);
    write(VgEscapeDisable, 0);
    try {
        if (VxEscRecover)
            VxEscRecover();
    } catch (...) {
        // The command is over; whatever the hook met must not end the process.
    }
}

}
