#include <gtest/gtest.h>
#include "platform/tests/testplatform.h"

TESTPLATFORM& TestPlatform()
{
    static TESTPLATFORM platform;
    return platform;
}
