#include "frontend/run.h"

#include "environment/system_macros.h"
#include "frontend/program_log.h"
#include "frontend/quillmake_arg_parse.h"
#include "support/lock_file.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace {

BuildFlags flagsOf(const std::vector<std::string> &options) {
    std::ostringstream errors;
    ProgramLog log("qm", errors);
    SystemMacros macros;
    QuillmakeArgParse args(&log, macros);
    args.parse(options, 1);
    EXPECT_EQ(errors.str(), "");
    return fixBuildFlags(args);
}

}  // namespace

TEST(BuildFlagsOfCommandLine, BaseValues) {
    EXPECT_EQ(flagsOf({}), 0x8u);
    EXPECT_EQ(flagsOf({"-verbose"}), 0x0u);
    EXPECT_EQ(flagsOf({"-rebuild"}), 0xAu);
    EXPECT_EQ(flagsOf({"-clean"}), 0xFu);
    EXPECT_EQ(flagsOf({"-clean", "-rebuild"}), 0xFu);
    EXPECT_EQ(flagsOf({"-rebuild", "-clean", "-verbose"}), 0xFu);
    EXPECT_EQ(flagsOf({"-verbose", "-rebuild"}), 0xAu);
}

TEST(BuildFlagsOfCommandLine, AddedBits) {
    EXPECT_EQ(flagsOf({"-keepgoing"}), 0x88u);
    EXPECT_EQ(flagsOf({"-nounity"}), 0x408u);
    EXPECT_EQ(flagsOf({"-order"}), 0xCu);
    EXPECT_EQ(flagsOf({"-order", "-verbose"}), 0x4u);
    EXPECT_EQ(flagsOf({"-batch"}), 0x1008u);
    EXPECT_EQ(flagsOf({"-batch", "-fp"}), 0x8u);
    EXPECT_EQ(flagsOf({"-fp"}), 0x8u);
    EXPECT_EQ(flagsOf({"-clean", "-keepgoing", "-nounity", "-order", "-batch"}), 0x148Fu);
}

TEST(BuildFlagsOfCommandLine, ShowTurnsEchoOn) {
    std::ostringstream errors;
    ProgramLog log("qm", errors);
    SystemMacros macros;
    QuillmakeArgParse args(&log, macros);
    fixBuildFlags(args);
    EXPECT_FALSE(args.echo);
    args.parse({"-show"}, 1);
    fixBuildFlags(args);
    EXPECT_TRUE(args.echo);
}

TEST(TemplatesFile, OptionOrTheInstalledFiles) {
    EXPECT_EQ(templatesFileText(std::string("t.xml"), true), "t.xml");
    EXPECT_EQ(templatesFileText(std::string(), true),
              "$(StudioDir)/targets/host_project_templates.xml");
    EXPECT_EQ(templatesFileText(std::nullopt, false),
              "$(StudioDir)/targets/$(PROJECT_TEMPLATE_FILE:project_templates).xml;"
              "$(TargetsDir)/*/project_templates*.xml;$(TargetsDir)/*/*/project_templates*.xml");
}

TEST(ThreadCount, OptionThenEnvironmentThenProcessors) {
    EXPECT_EQ(chooseThreadCount(3, "5", 8), 3u);
    EXPECT_EQ(chooseThreadCount(0, "5", 8), 5u);
    EXPECT_EQ(chooseThreadCount(0, nullptr, 8), 8u);
    EXPECT_EQ(chooseThreadCount(0, "abc", 8), 8u);
    EXPECT_EQ(chooseThreadCount(0, "0", 8), 8u);
    EXPECT_EQ(chooseThreadCount(0, "", 8), 8u);
    EXPECT_EQ(chooseThreadCount(0, "-2", 8), 8u);
    EXPECT_EQ(chooseThreadCount(0, nullptr, -1), 1u);
}

TEST(ThreadCount, JunkInTheEnvironmentIsUnset) {
    const unsigned processors = static_cast<unsigned>(sysconf(_SC_NPROCESSORS_ONLN));
    ASSERT_EQ(setenv("QUILLMAKE_THREADNUM", "abc", 1), 0);
    EXPECT_EQ(threadCount(0), processors);
    ASSERT_EQ(setenv("QUILLMAKE_THREADNUM", "17", 1), 0);
    EXPECT_EQ(threadCount(0), 17u);
    EXPECT_EQ(threadCount(2), 2u);
    unsetenv("QUILLMAKE_THREADNUM");
    EXPECT_EQ(threadCount(0), processors);
}

TEST(LockClaim, FailsWhileAnotherProcessHoldsIt) {
    char dir[] = "/tmp/quillmake-lock.XXXXXX";
    ASSERT_NE(mkdtemp(dir), nullptr);
    const std::string path = std::string(dir) + "/build.lock";

    int held[2], done[2];
    ASSERT_EQ(pipe(held), 0);
    ASSERT_EQ(pipe(done), 0);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        QTx::LockFile lock(path);
        const char ok = lock.tryLock() ? 'y' : 'n';
        if (write(held[1], &ok, 1) != 1)
            _exit(2);
        char c;
        const ssize_t n = read(done[0], &c, 1);
        _exit(n == 1 ? 0 : 3);
    }
    char ok = 0;
    ASSERT_EQ(read(held[0], &ok, 1), 1);
    ASSERT_EQ(ok, 'y');

    std::ostringstream err;
    EXPECT_EQ(claimLockFile(path, 30, err), nullptr);
    EXPECT_EQ(err.str(), "Failed to claim lock file: " + path + "\n");

    const char go = 'g';
    ASSERT_EQ(write(done[1], &go, 1), 1);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);

    err.str("");
    auto lock = claimLockFile(path, 30, err);
    ASSERT_NE(lock, nullptr);
    EXPECT_TRUE(lock->isLocked());
    EXPECT_EQ(err.str(), "");
    lock->release();
    EXPECT_NE(access(path.c_str(), F_OK), 0);

    for (int fd : {held[0], held[1], done[0], done[1]})
        close(fd);
    rmdir(dir);
}
