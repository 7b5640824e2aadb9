#include "environment/user_directories.h"

#include "environment/user_environment.h"

#include <gtest/gtest.h>

TEST(UserDirectories, DerivedFromHome) {
    UserEnvironment user("/home/a", std::nullopt);
    EXPECT_EQ(userDataDirectory(), "/home/a/.local/share");
    EXPECT_EQ(rootUserDirectory(), "/home/a/.ostrand_instruments_limited");
    EXPECT_EQ(crashDumpDirectory(), "/home/a/.ostrand_instruments_limited/Veldane for ARM/v5/dumps");
    // A computed value is kept.
    ScopedVariable later("HOME", "/home/b");
    EXPECT_EQ(rootUserDirectory(), "/home/a/.ostrand_instruments_limited");
}
