#pragma once

// Steps that run again and again, each time with the next allocation or verb of
// the system refused, until a run meets no refusal.

#include <cstdint>

#include <gtest/gtest.h>

#include "platform/os/fault.h"

namespace vx::test {

/**
 * Run `act` with its 1st, 2nd, ... call of `kind` refused, until a run meets
 * no refusal; after each, `check(refused)`, which may allocate and look at
 * files itself. `verb` narrows it to one verb.
 * @return how many calls a full run makes
 */
template <typename Act, typename Check>
int64_t eachRefusal(fault::Kind kind, const char *verb, Act &&act, Check &&check)
{
    constexpr int64_t runaway = 100000;
    bool refused = true;
    int64_t nth = 0;
    while (refused && ++nth < runaway && !testing::Test::HasFatalFailure()) {
        SCOPED_TRACE(testing::Message() << "refused: number " << nth);
        fault::onlyVerb(verb);
        fault::refuse(kind, nth);
        act();
        refused = fault::refusals(kind) > 0;
        fault::refuse(kind, 0);
        fault::onlyVerb(nullptr);
        check(refused);
    }
    EXPECT_GT(nth, 1) << "nothing was refused";
    EXPECT_LT(nth, runaway) << "the step never ran through";
    return nth - 1;
}

/** The same for allocations and then for verbs. */
template <typename Act, typename Check> void eachRefusal(Act &&act, Check &&check)
{
    for (fault::Kind kind : {fault::Kind::allocation, fault::Kind::verb})
        eachRefusal(kind, nullptr, act, check);
}

}
