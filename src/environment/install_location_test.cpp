#include "environment/install_location.h"

#include "support/qtx_process.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <sys/stat.h>
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

namespace {

using Arguments = std::vector<std::string>;

class ToolPath : public ::testing::Test {
protected:
    // The build tree is an installation with the tool links in its bin/.
    void SetUp() override { setInstallDirectories(std::string(QUILLMAKE_BUILD_BIN_DIR) + "/quillmake", 1); }
};

TEST_F(ToolPath, MapsTheInstallationsToolsOnly) {
    for (const char *name : {"cp", "treedup", "preamblegen", "chmod", "rm", "mv", "mkdir", "echo"})
        EXPECT_EQ(toolPath(name), installDirectory() + "/bin/" + name);
    EXPECT_EQ(toolPath("gcc"), "gcc");
    EXPECT_EQ(toolPath("/bin/cp"), "/bin/cp");
    EXPECT_EQ(toolPath("cpp"), "cpp");
    EXPECT_EQ(toolPath(""), "");
}

TEST_F(ToolPath, TheInstalledToolsRun) {
    TestDirectory dir;
    dir.write("a.txt", std::string("one\0two\n", 8));
    auto run = [&](Arguments arguments) {
        arguments[0] = toolPath(arguments[0]);
        std::vector<std::string> output, errors;
        const int status = runTool(arguments, true, dir.path(), &output, &errors);
        EXPECT_EQ(errors, Arguments{});
        return std::make_pair(status, output);
    };
    EXPECT_EQ(run({"mkdir", "-p", "sub/deeper"}).first, 0);
    EXPECT_EQ(run({"cp", "a.txt", "sub/deeper/b.txt"}).first, 0);
    EXPECT_EQ(TestDirectory::read(dir / "sub/deeper/b.txt"), std::string("one\0two\n", 8));
    EXPECT_EQ(run({"mv", "sub/deeper/b.txt", "c.txt"}).first, 0);
    EXPECT_EQ(TestDirectory::read(dir / "c.txt"), std::string("one\0two\n", 8));
    EXPECT_EQ(run({"chmod", "-w", "c.txt"}).first, 0);
    struct stat info;
    ASSERT_EQ(stat((dir / "c.txt").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0222, 0u);
    EXPECT_EQ(run({"rm", "-f", "c.txt"}).first, 0);
    EXPECT_NE(access((dir / "c.txt").c_str(), F_OK), 0);
    EXPECT_EQ(run({"echo", "hello", "world"}), std::make_pair(0, Arguments{"hello world"}));
}

}  // namespace
