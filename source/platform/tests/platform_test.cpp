#include <gtest/gtest.h>

#include "platform/tests/testplatform.h"
#include "platform/timer.h"

#include <vector>

using TimerTest = PlatformTest;

// Elapsed means strictly after the interval, in unsigned arithmetic; a new
// timer is not armed, and one stays elapsed until the next Set.
TEST_F(TimerTest, UnarmedElapsedAndStrictlyAfterIntervalWrapping)
{
    TIMER t;
    EXPECT_TRUE(t.Elapsed());
    for (auto [start, interval] : {std::pair{5000u, 40u}, {0xFFFFFFF0u, 0x20u}})
    {
        P().Now = start;
        t.Set(interval);
        std::vector<bool> got;
        for (uint32_t after : {interval, interval + 1, interval + 4000})
            P().Now = start + after, got.push_back(t.Elapsed());
        EXPECT_EQ(got, (std::vector<bool>{false, true, true})) << start;
    }
    // Start + Interval wraps to 0x10: the unsigned comparison answers true
    // before the wrap.
    P().Now = 0xFFFFFFF8u;
    EXPECT_TRUE(t.Elapsed());
    P().Now = 0x05;
    EXPECT_FALSE(t.Elapsed());
}
