#include "platform/os/fault.h"

#ifdef VX_FAULTS

#include <cstring>

namespace vx::fault {

namespace {

struct Plan {
    int64_t nth = 0;
    bool andAfter = false;
    int64_t calls = 0;
    int64_t refusals = 0;
};

// A plan concerns the thread that made it: workers of a test go on undisturbed.
thread_local constinit Plan plans[2];
thread_local constinit const char *wantedVerb = nullptr;

Plan &planOf(Kind kind) noexcept
{
    return plans[static_cast<int>(kind)];
}

}

bool refused(Kind kind, const char *name) noexcept
{
    if (kind == Kind::verb && wantedVerb && std::strcmp(wantedVerb, name) != 0)
        return false;
    Plan &plan = planOf(kind);
    ++plan.calls;
    if (plan.nth == 0)
        return false;
    bool now = plan.andAfter ? plan.calls >= plan.nth : plan.calls == plan.nth;
    if (now)
        ++plan.refusals;
    return now;
}

void refuse(Kind kind, int64_t nth) noexcept
{
    planOf(kind) = Plan{nth, false, 0, 0};
}

void refuseFrom(Kind kind, int64_t nth) noexcept
{
    planOf(kind) = Plan{nth, true, 0, 0};
}

void onlyVerb(const char *name) noexcept
{
    wantedVerb = name;
}

int64_t calls(Kind kind) noexcept
{
    return planOf(kind).calls;
}

int64_t refusals(Kind kind) noexcept
{
    return planOf(kind).refusals;
}

}

#endif
