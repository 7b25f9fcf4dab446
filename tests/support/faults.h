#pragma once

// As each_refusal.h, for bodies that look at their outcome themselves.

#include "tests/support/each_refusal.h"

namespace vx::test {

/**
 * Run `body` with its 1st, 2nd, ... allocation refused, and a last time with
 * none. An allocation of the test's own counts too, so expectations inside
 * the body stand behind what may be refused.
 * @return how many allocations a full run makes
 */
template <typename Body> int64_t refusingEachAllocation(Body &&body)
{
    return eachRefusal(fault::Kind::allocation, nullptr, body, [](bool) {});
}

/** As refusingEachAllocation(), for the verbs of the system; `verb` narrows it to one of them. */
template <typename Body> int64_t refusingEachVerb(Body &&body, const char *verb = nullptr)
{
    return eachRefusal(fault::Kind::verb, verb, body, [](bool) {});
}

/** `call` gives 1 exactly when one of its calls of `kind` is refused; `check(refused)` sees what it left. */
template <typename Call, typename Check = void (*)(bool)>
void failsWhenRefused(fault::Kind kind, Call &&call, Check &&check = [](bool) {})
{
    uint32_t failed = 0;
    eachRefusal(kind, nullptr, [&] { failed = call(); }, [&](bool refused) {
        EXPECT_EQ(failed, refused ? 1u : 0u);
        check(refused);
    });
}

}
