#include "environment/install_location.h"

#include "support/test_directory.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <unistd.h>

namespace {

std::string realPath(const std::string &path) {
    char resolved[PATH_MAX];
    return realpath(path.c_str(), resolved) ? resolved : "";
}

}  // namespace

TEST(InstallLocation, ExecutablePathIsTheRunningProgram) {
    const std::string path = executablePath("ignored");
    EXPECT_EQ(path, realPath("/proc/self/exe"));
    EXPECT_TRUE(path.ends_with("/environment_test"));
}

TEST(InstallLocation, CanonicalDirectoriesAboveTheExecutable) {
    TestDirectory scratch;
    scratch.write("inst/bin/prog");
    ASSERT_EQ(symlink((scratch / "inst").c_str(), (scratch / "link").c_str()), 0);
    const std::string root = realPath(scratch.path());

    setInstallDirectories(scratch / "link/bin/../bin//prog", 1);
    EXPECT_EQ(binDirectory(), root + "/inst/bin");
    EXPECT_EQ(installDirectory(), root + "/inst");

    setInstallDirectories(scratch / "inst/bin/prog", 2);
    EXPECT_EQ(installDirectory(), root);
    setInstallDirectories(scratch / "inst/bin/prog", 0);
    EXPECT_EQ(installDirectory(), root + "/inst/bin");
}

TEST(InstallLocation, ABareNameIsInTheCurrentDirectory) {
    TestDirectory scratch;
    scratch.write("bin/prog");
    const ChangeDirectory into(scratch / "bin");
    setInstallDirectories("prog", 1);
    EXPECT_EQ(binDirectory(), realPath(scratch / "bin"));
    EXPECT_EQ(installDirectory(), realPath(scratch.path()));
}
