#include "support/exceptions.h"

#include <gtest/gtest.h>

TEST(HException, CountsLiveObjectsAndFormatsPosition) {
    const int before = HException::liveCount();
    {
        HException plain("cannot create x");
        HException placed("bad token", 3, 7);
        HException copy = placed;
        EXPECT_EQ(HException::liveCount(), before + 3);
        EXPECT_EQ(plain.message(), "cannot create x");
        EXPECT_EQ(copy.message(), "bad token line: 3 column: 7");
    }
    EXPECT_EQ(HException::liveCount(), before);
}
