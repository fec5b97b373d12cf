#include <gtest/gtest.h>

#include "math/random.h"
#include "math/trig.h"
#include "platform/tests/testplatform.h"

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    InitTrigTables();
    SRand(1);
    SetPlatform(&TestPlatform());
    return RUN_ALL_TESTS();
}
