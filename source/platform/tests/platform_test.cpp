#include <gtest/gtest.h>

#include "platform/tests/testplatform.h"
#include "platform/timer.h"

using TimerTest = PlatformTest;

TEST_F(TimerTest, UnarmedElapsedAndStrictlyAfterInterval)
{
    TIMER t;
    EXPECT_TRUE(t.Elapsed()); // a new timer is not armed
    P().Now = 5000;
    t.Set(40);
    P().Now = 5040;
    EXPECT_FALSE(t.Elapsed()); // exactly 40 ms is not yet past
    P().Now = 5041;
    EXPECT_TRUE(t.Elapsed());
    P().Now = 9000;
    EXPECT_TRUE(t.Elapsed()); // stays elapsed until the next Set
}

TEST_F(TimerTest, WrapsWithUnsignedArithmetic)
{
    TIMER t;
    P().Now = 0xFFFFFFF0u;
    t.Set(0x20); // Start + Interval wraps to 0x10
    P().Now = 0xFFFFFFF8u;
    EXPECT_TRUE(t.Elapsed()); // the designed unsigned comparison answers true here
    P().Now = 0x05;
    EXPECT_FALSE(t.Elapsed());
    P().Now = 0x11;
    EXPECT_TRUE(t.Elapsed());
}

TEST_F(PlatformTest, FatalMessageShowsThenEnds)
{
    try {
        FatalMessage("SaveLevel: not enough mem.");
        FAIL() << "FatalMessage returned";
    } catch (const FATALEXIT& e) {
        EXPECT_EQ(e.Status, FATAL_STATUS);
    }
    ASSERT_EQ(P().Messages.size(), 1u);
    EXPECT_EQ(P().Messages[0].Text, "SaveLevel: not enough mem.");
    EXPECT_EQ(P().Messages[0].Caption, "FATAL!");
}
