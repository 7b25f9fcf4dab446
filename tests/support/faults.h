#pragma once

// Runs a body again and again, each time with the next allocation or verb of
// the system refused, until a run meets no refusal.

#include <cstdint>
#include <utility>

#include <gtest/gtest.h>

#include "platform/os/fault.h"

namespace vx::test {

namespace detail {

template <typename Body> int64_t refuseEach(fault::Kind kind, Body &&body)
{
    constexpr int64_t runaway = 100000;
    for (int64_t nth = 1; nth < runaway; ++nth) {
        SCOPED_TRACE(testing::Message() << "refused: number " << nth);
        fault::refuse(kind, nth);
        body();
        bool met = fault::refusals(kind) > 0;
        fault::refuse(kind, 0);
        if (!met)
            return nth - 1;
        if (testing::Test::HasFatalFailure())
            break;
    }
    ADD_FAILURE() << "the body never ran through";
    return 0;
}

}

/**
 * Run `body` with its 1st, 2nd, ... allocation refused, and a last time with
 * none. An allocation of the test's own counts too, so expectations inside
 * the body stand behind what may be refused.
 * @return how many allocations a full run makes
 */
template <typename Body> int64_t refusingEachAllocation(Body &&body)
{
    int64_t n = detail::refuseEach(fault::Kind::allocation, std::forward<Body>(body));
    EXPECT_GT(n, 0) << "nothing was refused";
    return n;
}

/** As refusingEachAllocation(), for the verbs of the system; `verb` narrows it to one of them. */
template <typename Body> int64_t refusingEachVerb(Body &&body, const char *verb = nullptr)
{
    fault::onlyVerb(verb);
    int64_t n = detail::refuseEach(fault::Kind::verb, std::forward<Body>(body));
    fault::onlyVerb(nullptr);
    EXPECT_GT(n, 0) << "nothing was refused";
    return n;
}

}
