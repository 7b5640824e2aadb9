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

} // namespace

TEST(InstallLocation, CanonicalDirectoriesAboveTheExecutable) {
    const std::string running = executablePath("ignored");
    EXPECT_EQ(running, realPath("/proc/self/exe"));
    EXPECT_TRUE(running.ends_with("/environment_test"));

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

    // A bare name is in the current directory.
    const ChangeDirectory into(scratch / "inst/bin");
    setInstallDirectories("prog", 1);
    EXPECT_EQ(binDirectory(), root + "/inst/bin");
    EXPECT_EQ(installDirectory(), root + "/inst");
}

TEST(ToolPath, TheInstallationsToolsRun) {
    // The build tree is an installation with the tool links in its bin/.
    setInstallDirectories(std::string(QUILLMAKE_BUILD_BIN_DIR) + "/quillmake", 1);
    for (const char *name : {"cp", "treedup", "preamblegen", "chmod", "rm", "mv", "mkdir", "echo"})
        EXPECT_EQ(toolPath(name), installDirectory() + "/bin/" + name);
    for (const char *name : {"gcc", "/bin/cp", "cpp", ""})
        EXPECT_EQ(toolPath(name), name);

    TestDirectory dir;
    const std::string bytes("one\0two\n", 8);
    dir.write("a.txt", bytes);
    const auto run = [&](std::vector<std::string> arguments) {
        arguments[0] = toolPath(arguments[0]);
        std::vector<std::string> output, errors;
        EXPECT_EQ(runTool(arguments, true, dir.path(), &output, &errors), 0) << arguments[0];
        EXPECT_EQ(errors, std::vector<std::string>{});
        return output;
    };
    run({"mkdir", "-p", "sub/deeper"});
    run({"cp", "a.txt", "sub/deeper/b.txt"});
    EXPECT_EQ(TestDirectory::read(dir / "sub/deeper/b.txt"), bytes);
    run({"mv", "sub/deeper/b.txt", "c.txt"});
    EXPECT_EQ(TestDirectory::read(dir / "c.txt"), bytes);
    run({"chmod", "-w", "c.txt"});
    struct stat info;
    ASSERT_EQ(stat((dir / "c.txt").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0222, 0u);
    run({"rm", "-f", "c.txt"});
    EXPECT_NE(access((dir / "c.txt").c_str(), F_OK), 0);
    EXPECT_EQ(run({"echo", "hello", "world"}), std::vector<std::string>{"hello world"});
}
