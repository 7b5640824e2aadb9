#include "environment/install_location.h"

#include "support/qtx_process.h"
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

} // namespace

TEST(InstallLocation, CanonicalDirectoriesAboveTheExecutable) {
    const std::string running = executablePath("ignored");
    EXPECT_EQ(running, realPath("/proc/self/exe"));

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

    // The build commands run mkdir, chmod and rm; the others run here.
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
    run({"cp", "a.txt", "b.txt"});
    run({"mv", "b.txt", "c.txt"});
    EXPECT_EQ(TestDirectory::read(dir / "c.txt"), bytes);
    EXPECT_EQ(run({"echo", "hello", "world"}), std::vector<std::string>{"hello world"});
}
