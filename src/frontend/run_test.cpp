#include "frontend/run.h"

#include "environment/system_macros.h"
#include "frontend/program_log.h"
#include "frontend/quillmake_arg_parse.h"
#include "support/lock_file.h"
#include "support/scoped_variable.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

TEST(BuildFlagsOfCommandLine, BaseValuesAndAddedBits) {
    const std::pair<std::vector<std::string>, unsigned> cases[] = {
        {{}, 0x8u}, {{"-verbose"}, 0x0u}, {{"-rebuild"}, 0xAu}, {{"-verbose", "-rebuild"}, 0xAu}, {{"-clean"}, 0xFu},
        {{"-rebuild", "-clean", "-verbose"}, 0xFu}, {{"-keepgoing"}, 0x88u}, {{"-nounity"}, 0x408u}, {{"-order"}, 0xCu},
        {{"-order", "-verbose"}, 0x4u}, {{"-batch"}, 0x1008u},
        // -fp turns batch off again.
        {{"-batch", "-fp"}, 0x8u}, {{"-fp"}, 0x8u}, {{"-clean", "-keepgoing", "-nounity", "-order", "-batch"}, 0x148Fu},
    };
    std::ostringstream errors;
    ProgramLog log("qm", errors);
    SystemMacros macros;
    for (const auto &[options, flags] : cases) {
        QuillmakeArgParse args(&log, macros);
        args.parse(options, 1);
        EXPECT_EQ(fixBuildFlags(args), flags) << ::testing::PrintToString(options);
    }
    EXPECT_EQ(errors.str(), "");
}

TEST(TemplatesFile, OptionOrTheInstalledFiles) {
    EXPECT_EQ(templatesFileText(std::string("t.xml"), true), "t.xml");
    // An empty option counts as none.
    EXPECT_EQ(templatesFileText(std::string(), true), "$(StudioDir)/targets/host_project_templates.xml");
}

TEST(ThreadCount, OptionThenEnvironmentThenProcessors) {
    EXPECT_EQ(chooseThreadCount(3, "5", 8), 3u);
    EXPECT_EQ(chooseThreadCount(0, "5", 8), 5u);
    // Junk in the environment counts as unset.
    for (const char *junk : {(const char *)nullptr, "abc", "0", "", "-2"})
        EXPECT_EQ(chooseThreadCount(0, junk, 8), 8u) << (junk ? junk : "null");
    EXPECT_EQ(chooseThreadCount(0, nullptr, -1), 1u);

    const unsigned processors = static_cast<unsigned>(sysconf(_SC_NPROCESSORS_ONLN));
    ScopedVariable variable("QUILLMAKE_THREADNUM", "abc");
    EXPECT_EQ(threadCount(0), processors);
    ScopedVariable set("QUILLMAKE_THREADNUM", "17");
    EXPECT_EQ(threadCount(0), 17u);
    EXPECT_EQ(threadCount(2), 2u);
}

TEST(LockClaim, FailsWhileAnotherProcessHoldsIt) {
    TestDirectory dir;
    const std::string path = dir / "build.lock";
    // The child takes the lock, says so, and holds it until `done` is closed.
    int held[2], done[2];
    ASSERT_EQ(pipe(held) | pipe(done), 0);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        close(done[1]);
        QTx::LockFile lock(path);
        const char ok = lock.tryLock() ? 'y' : 'n';
        char c;
        _exit(write(held[1], &ok, 1) == 1 && read(done[0], &c, 1) == 0 ? 0 : 2);
    }
    close(done[0]);
    char ok = 0;
    ASSERT_EQ(read(held[0], &ok, 1), 1);
    ASSERT_EQ(ok, 'y');
    std::ostringstream err;
    EXPECT_EQ(claimLockFile(path, 30, err), nullptr);
    EXPECT_EQ(err.str(), "Failed to claim lock file: " + path + "\n");
    close(done[1]);
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    close(held[0]);
    close(held[1]);

    err.str("");
    const auto lock = claimLockFile(path, 30, err);
    ASSERT_NE(lock, nullptr);
    EXPECT_TRUE(lock->isLocked());
    EXPECT_EQ(err.str(), "");
    lock->release();
    EXPECT_NE(access(path.c_str(), F_OK), 0);
}
