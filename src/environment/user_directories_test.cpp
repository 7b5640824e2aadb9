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

    // HOME unset counts as empty.
    UserEnvironment noHome(std::nullopt, std::nullopt);
    EXPECT_EQ(userHomeDirectory(), "");
    EXPECT_EQ(userDataDirectory(), "/.local/share");
    EXPECT_EQ(rootUserDirectory(), "/.ostrand_instruments_limited");
}

TEST(UserDirectories, RootFromTheStoredValueThenTheVariable) {
    UserEnvironment user("/home/a", "/env/root");
    setRootUserDirectory("relative//dir/");
    EXPECT_EQ(rootUserDirectory(), "relative//dir/");
    EXPECT_EQ(studioUserDirectory(), "relative//dir//Veldane for ARM/v5");
    setRootUserDirectory("");
    EXPECT_EQ(rootUserDirectory(), "/env/root");

    // An empty variable counts, and is asked for again.
    UserEnvironment empty("/home/a", "");
    EXPECT_EQ(studioUserDirectory(), "/Veldane for ARM/v5");
    ScopedVariable later("VELDANE_ROOT_USER_DIR", "/now/set");
    EXPECT_EQ(rootUserDirectory(), "/now/set");
}
