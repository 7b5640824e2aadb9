#include "environment/user_directories.h"

#include "environment/user_environment.h"

#include <gtest/gtest.h>

TEST(UserDirectories, DerivedFromHome) {
    UserEnvironment user("/home/a", std::nullopt);
    EXPECT_EQ(userHomeDirectory(), "/home/a");
    EXPECT_EQ(userDataDirectory(), "/home/a/.local/share");
    EXPECT_EQ(rootUserDirectory(), "/home/a/.ostrand_instruments_limited");
    EXPECT_EQ(studioUserDirectory(), "/home/a/.ostrand_instruments_limited/Veldane for ARM/v5");
    EXPECT_EQ(crashDumpDirectory(), "/home/a/.ostrand_instruments_limited/Veldane for ARM/v5/dumps");
}

TEST(UserDirectories, HomeUnsetCountsAsEmpty) {
    UserEnvironment user(std::nullopt, std::nullopt);
    EXPECT_EQ(userHomeDirectory(), "");
    EXPECT_EQ(userDataDirectory(), "/.local/share");
    EXPECT_EQ(rootUserDirectory(), "/.ostrand_instruments_limited");
}

TEST(RootUserDirectory, StoredValueFirst) {
    UserEnvironment user("/home/a", "/env/root");
    setRootUserDirectory("/set/root");
    EXPECT_EQ(rootUserDirectory(), "/set/root");
    EXPECT_EQ(studioUserDirectory(), "/set/root/Veldane for ARM/v5");
}

TEST(RootUserDirectory, ThenTheEnvironmentVariable) {
    UserEnvironment user("/home/a", "/env/root");
    setRootUserDirectory("");
    EXPECT_EQ(rootUserDirectory(), "/env/root");
}

TEST(RootUserDirectory, AComputedValueIsKept) {
    UserEnvironment user("/home/a", std::nullopt);
    EXPECT_EQ(rootUserDirectory(), "/home/a/.ostrand_instruments_limited");
    ScopedVariable later("HOME", "/home/b");
    EXPECT_EQ(rootUserDirectory(), "/home/a/.ostrand_instruments_limited");
}

TEST(RootUserDirectory, AnEmptyVariableCountsAndIsAskedAgain) {
    UserEnvironment user("/home/a", "");
    EXPECT_EQ(rootUserDirectory(), "");
    EXPECT_EQ(studioUserDirectory(), "/Veldane for ARM/v5");
    ScopedVariable later("VELDANE_ROOT_USER_DIR", "/now/set");
    EXPECT_EQ(rootUserDirectory(), "/now/set");
}

TEST(RootUserDirectory, StoredAsItIs) {
    UserEnvironment user("/home/a", std::nullopt);
    setRootUserDirectory("relative//dir/");
    EXPECT_EQ(rootUserDirectory(), "relative//dir/");
}
