#include "project/project_system_process.h"

#include "project/project_test_tree.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>

namespace {

TEST(ProjectSystemProcess, RunsTheCommandWithItsOutputAsMessages) {
    TestDirectory dir;
    RecordingProgress progress;
    ProjectSystemProcess process(&progress, {"/bin/sh", "-c", "printf 'o\\n'; pwd -P >&2; exit 3"}, dir.path(), {});
    char resolved[PATH_MAX];
    ASSERT_TRUE(realpath(dir.path().c_str(), resolved));
    EXPECT_EQ(process.exitStatus(), 3);
    EXPECT_EQ(progress.events, (Strings{"begin 1 /bin/sh -c printf 'o\\n'; pwd -P >&2; exit 3", "message o",
                                        std::string("message ") + resolved, "end"}));
    // Output may be redirected to a file.
    EXPECT_EQ(ProjectSystemProcess(nullptr, {"printf", "a\\nb", ">", "out.txt"}, dir.path(), {}).exitStatus(), 0);
    EXPECT_EQ(TestDirectory::read(dir / "out.txt"), "a\nb");
}

TEST(ProjectSystemProcess, AProgramThatCantBeStartedIsMinusOne) {
    RecordingProgress progress;
    EXPECT_EQ(ProjectSystemProcess(&progress, {"quillmake-no-such-program", "a"}, "", {}).exitStatus(), -1);
    EXPECT_EQ(progress.events, (Strings{"begin 1 quillmake-no-such-program a", "end"}));
    EXPECT_EQ(ProjectSystemProcess(nullptr, {}, "", {}).exitStatus(), -1);
    // A program that exits with 255 itself is not "not found".
    EXPECT_EQ(ProjectSystemProcess(nullptr, {"/bin/sh", "-c", "exit 255"}, "", {}).exitStatus(), 255);
}

TEST(ProjectSystemProcess, SetsTheEnvironmentForThisAndLaterChildren) {
    RecordingProgress progress;
    const std::string script = "printf '%s|%s|%s\\n' \"$QM_PSP_A\" \"$QM_PSP_B\" \"${QM_PSP_C-unset}\"";
    ProjectSystemProcess process(&progress, {"/bin/sh", "-c", script}, "", {"QM_PSP_A=x=y", "QM_PSP_B", "QM_PSP_C="});
    EXPECT_EQ(process.exitStatus(), 0);
    ASSERT_EQ(progress.events.size(), 3u);
    EXPECT_EQ(progress.events[1], "message x=y||");
    EXPECT_STREQ(getenv("QM_PSP_A"), "x=y");
    for (const char *name : {"QM_PSP_A", "QM_PSP_B", "QM_PSP_C"})
        unsetenv(name);
}

}  // namespace
