// When the compile of main.c is up to date, and what a check says when not.

#include "build/node_build_test_fixture.h"

namespace {

class UpToDate : public NodeBuildTest {
protected:
    void SetUp() override {
        load(R"x(<project Name="App">
    <configuration Name="Common" project_type="Executable" build_output_file_name="out/app.elf" />
    <file file_name="main.c" /></project>
)x");
    }
    // The check's lines, then the compile's.
    static Lines rebuilt(const Lines &details) {
        Lines lines{"begin Checking 'main.c'"};
        lines.insert(lines.end(), details.begin(), details.end());
        lines.insert(lines.end(), {"end", "message step 2 obj/main.o @/obj/main.o <- @/main.c"});
        return lines;
    }
    static std::string later(const std::string &input, std::int64_t time, std::int64_t objectTime) {
        return "detail " + input + " (" + timeText(time) + ") is later than @/obj/main.o (" + timeText(objectTime) + ").";
    }
    const Lines upToDate{"begin Checking 'main.c'", "outcome 'main.c' is up to date", "end"};
};

TEST_F(UpToDate, TheSameSecondIsUpToDateAndOneSecondLaterRebuilds) {
    file("main.c", "int x;", baseTime, 900000000);
    file("obj/main.o", "o", baseTime, 100000000);
    EXPECT_EQ(build("main.c", 0), upToDate);
    EXPECT_FALSE(result);
    EXPECT_EQ(idler.steps, 1);
    // Quiet checks say nothing at all.
    EXPECT_EQ(build("main.c", BuildQuietChecks), Lines{});

    setTime(directory / "main.c", baseTime + 1);
    EXPECT_EQ(build("main.c", 0), rebuilt({later("@/main.c", baseTime + 1, baseTime)}));
    EXPECT_TRUE(result);
    EXPECT_EQ(build("main.c", BuildQuietChecks), (Lines{"message step 2 obj/main.o @/obj/main.o <- @/main.c"}));
}

TEST_F(UpToDate, AMissingOrEmptyObjectIsBuilt) {
    file("main.c", "int x;", baseTime);
    EXPECT_EQ(build("main.c", 0), rebuilt({"detail @/obj/main.o does not exist."}));
    file("obj/main.o", "", baseTime + 5);
    EXPECT_EQ(build("main.c", 0), rebuilt({"detail @/obj/main.o is empty."}));
}

TEST_F(UpToDate, AFileFromTheFutureIsNamedAndRebuildsEachTime) {
    const std::int64_t future = FileTime::now().seconds() + 3600;
    file("main.c", "int x;", future);
    file("obj/main.o", "o", future - 7200);
    const Lines expected = rebuilt({"detail clock skew detected on @/main.c.", later("@/main.c", future, future - 7200)});
    EXPECT_EQ(build("main.c", 0), expected);
    EXPECT_EQ(build("main.c", 0), expected);
}

TEST_F(UpToDate, DependencyFileListsTheInputs) {
    file("main.c", "int x;", baseTime);
    file("obj/main.o", "o", baseTime);
    file("inc/a.h", "", baseTime);
    file("inc/b c.h", "", baseTime);
    // A rule for another target contributes nothing; "other.h" would be newer.
    file("other.h", "", baseTime + 10);
    file("obj/main.d", "obj/main.o: main.c inc/a.h \\\n inc/b\\ c.h\nobj/other.o: other.h\n", baseTime);
    EXPECT_EQ(build("main.c", 0), upToDate);
    setTime(directory / "inc/b c.h", baseTime + 1);
    EXPECT_EQ(build("main.c", 0), rebuilt({later("inc/b c.h", baseTime + 1, baseTime)}));

    // A dependency that has gone is named and rebuilds.
    file("obj/main.d", "obj/main.o: main.c inc/gone.h\n", baseTime);
    EXPECT_EQ(build("main.c", 0), rebuilt({"detail @/inc/gone.h does not exist."}));
}

TEST_F(UpToDate, ForcedIncludesAndOptionFilesCountWithoutADependencyFile) {
    file("main.c", "int x;", baseTime);
    file("obj/main.o", "o", baseTime);
    file("force.h", "", baseTime + 2);
    file("opts.txt", "-O2", baseTime + 3);
    system.trackingChanges = false;  // only the files speak here
    system.setPropertyValue(node("main.c"), system.toolProperties.cIncludeFiles, "Debug", "force.h");
    EXPECT_EQ(build("main.c", 0), rebuilt({later("force.h", baseTime + 2, baseTime)}));
    system.clearPropertyValue(node("main.c"), system.toolProperties.cIncludeFiles, "Debug");
    system.setPropertyValue(node("main.c"), system.toolProperties.cOnlyAdditionalOptionsFromFile, "Debug", "opts.txt");
    EXPECT_EQ(build("main.c", 0), rebuilt({later("opts.txt", baseTime + 3, baseTime)}));
}

TEST_F(UpToDate, PropertyChangesOfThisRunThatApplyToTheStepRebuild) {
    file("main.c", "int x;", baseTime);
    file("obj/main.o", "o", baseTime);
    system.trackingChanges = true;
    // A link option, a change on another project's node and one of another
    // configuration leave the compile alone.
    system.setPropertyValue(node("App"), system.toolProperties.linkerAdditionalOptions, "Debug", "-x");
    system.setPropertyValue(node("App"), system.toolProperties.cPreprocessorDefinitions, "Release", "R");
    EXPECT_EQ(build("main.c", BuildQuietChecks), Lines{});
    system.setPropertyValue(node("App"), system.toolProperties.cPreprocessorDefinitions, "Common", "A");
    EXPECT_EQ(build("main.c", 0), rebuilt({"message Preprocessor Definitions property has changed."}));
}

TEST_F(UpToDate, FileDependenciesKeepTheLastAnswerWhileTheCacheIsOn) {
    const std::string output = directory / "obj/main.o";
    file("obj/main.d", "main.c a.h\n", baseTime);
    system.setDependencyCacheEnabled(true);
    EXPECT_EQ(system.fileDependencies(node("main.c"), "Debug", output), (StringList{"main.c", "a.h"}));
    file("obj/main.d", "obj/main.o: main.c b.h\nmain.c c.h\n", baseTime);
    EXPECT_EQ(system.fileDependencies(node("main.c"), "Debug", output), (StringList{"main.c", "a.h"}));
    // Off, each question reads the file; a line without a target counts only
    // when nothing came before.
    system.setDependencyCacheEnabled(false);
    EXPECT_EQ(system.fileDependencies(node("main.c"), "Debug", output), (StringList{"main.c", "b.h"}));
    EXPECT_EQ(system.fileDependencies(node("main.c"), "Debug", directory / "obj/none.o"), StringList{});
}

TEST_F(UpToDate, CheckTargetResolvesAgainstTheDirectory) {
    file("obj/t.o", "x", baseTime, 5);
    std::string resolved;
    FileTime time;
    EXPECT_TRUE(system.checkTarget(directory.path(), "obj/../obj/t.o", resolved, time, &recorder, false, true));
    EXPECT_EQ(resolved, directory / "obj/t.o");
    EXPECT_EQ(time, FileTime(baseTime, 5));
    EXPECT_FALSE(system.checkTarget(directory.path(), "none", resolved, time, nullptr, false, true));
    EXPECT_EQ(recorder.lines, Lines{});
}

}  // namespace
