#pragma once

#include "tests/support/test.h"
#include "vx/err.h"
#include "vx/tools.h"

namespace vx::test {

/**
 * The toolkit with its texts, for tests that look at what is reported. Each
 * test has a time of its own, so that none is a repeat of the one before.
 */
struct StartedToolkit : testing::Test {
    void SetUp() override
    {
        static int64_t minutes = 30'000'000;
        os::setTestClock(++minutes * 60'000'000);
        ASSERT_EQ(VxToolsInit(nullptr, nullptr), 0u);
        VxErrClear();
    }

    void TearDown() override
    {
        VxErrClear();
        VxToolsExit();
        os::setTestClock(-1);
    }

    /** Whether exactly this toolkit error is pending; forgets it. */
    static bool reported(int32_t number)
    {
        bool only = VxErrCnt() == 1 && VxErrIsLogged(VxToolsErrID(), number);
        VxErrClear();
        return only;
    }

    Environment noSignalHandlers_{"VX_SIG_DISABLE", "1"};
};

}
