#include "build/node_build_test_fixture.h"

namespace {

const char *const app = R"x(  <project Name="App">
    <configuration Name="Common" project_type="Executable" build_output_file_name="out/app.elf" />
    <file file_name="main.c" />
  </project>
)x";

class UpToDate : public NodeBuildTest {
protected:
    void SetUp() override { load(app); }
};

TEST_F(UpToDate, TheSameSecondIsUpToDateAndOneSecondLaterRebuilds) {
    file("main.c", "int x;", baseTime, 900000000);
    file("obj/main.o", "o", baseTime, 100000000);
    EXPECT_EQ(build("main.c", 0), (Lines{"begin Checking 'main.c'", "outcome 'main.c' is up to date", "end"}));
    EXPECT_FALSE(result);
    EXPECT_EQ(idler.steps, 1);
    // Quiet checks say nothing at all.
    EXPECT_EQ(build("main.c", BuildQuietChecks), Lines{});

    setTime(directory / "main.c", baseTime + 1);
    EXPECT_EQ(build("main.c", 0),
              (Lines{"begin Checking 'main.c'",
                     "detail @/main.c (" + timeText(baseTime + 1) + ") is later than @/obj/main.o (" +
                         timeText(baseTime) + ").",
                     "end", "message step 2 obj/main.o @/obj/main.o <- @/main.c"}));
    EXPECT_TRUE(result);
    EXPECT_EQ(build("main.c", BuildQuietChecks), (Lines{"message step 2 obj/main.o @/obj/main.o <- @/main.c"}));
}

TEST_F(UpToDate, AMissingOrEmptyObjectIsBuilt) {
    file("main.c", "int x;", baseTime);
    EXPECT_EQ(build("main.c", 0), (Lines{"begin Checking 'main.c'", "detail @/obj/main.o does not exist.", "end",
                                         "message step 2 obj/main.o @/obj/main.o <- @/main.c"}));
    file("obj/main.o", "", baseTime + 5);
    EXPECT_EQ(build("main.c", 0), (Lines{"begin Checking 'main.c'", "detail @/obj/main.o is empty.", "end",
                                         "message step 2 obj/main.o @/obj/main.o <- @/main.c"}));
}

TEST_F(UpToDate, AFileFromTheFutureIsNamedAndRebuildsEachTime) {
    const std::int64_t future = FileTime::now().seconds() + 3600;
    file("main.c", "int x;", future);
    file("obj/main.o", "o", future - 7200);
    const Lines expected{"begin Checking 'main.c'", "detail clock skew detected on @/main.c.",
                         "detail @/main.c (" + timeText(future) + ") is later than @/obj/main.o (" +
                             timeText(future - 7200) + ").",
                         "end", "message step 2 obj/main.o @/obj/main.o <- @/main.c"};
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
    EXPECT_EQ(build("main.c", 0), (Lines{"begin Checking 'main.c'", "outcome 'main.c' is up to date", "end"}));

    setTime(directory / "inc/b c.h", baseTime + 1);
    EXPECT_EQ(build("main.c", BuildQuietChecks).size(), 1u);  // the compile

    // A dependency that has gone is named and rebuilds.
    file("obj/main.d", "obj/main.o: main.c inc/gone.h\n", baseTime);
    EXPECT_EQ(build("main.c", 0), (Lines{"begin Checking 'main.c'", "detail @/inc/gone.h does not exist.", "end",
                                         "message step 2 obj/main.o @/obj/main.o <- @/main.c"}));
}

TEST_F(UpToDate, ForcedIncludeFilesCountWithoutADependencyFile) {
    load(R"x(  <project Name="Lib">
    <configuration Name="Common" project_type="Library" c_include_files="force.h" />
    <file file_name="lib.c" />
  </project>
)x");
    file("lib.c", "int x;", baseTime);
    file("obj/lib.o", "o", baseTime);
    file("force.h", "", baseTime + 2);
    EXPECT_EQ(build("lib.c", 0), (Lines{"begin Checking 'lib.c'",
                                        "detail force.h (" + timeText(baseTime + 2) + ") is later than @/obj/lib.o (" +
                                            timeText(baseTime) + ").",
                                        "end", "message step 2 obj/lib.o @/obj/lib.o <- @/lib.c"}));
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
    EXPECT_EQ(build("main.c", 0), (Lines{"begin Checking 'main.c'",
                                         "message Preprocessor Definitions property has changed.", "end",
                                         "message step 2 obj/main.o @/obj/main.o <- @/main.c"}));
}

TEST_F(UpToDate, AnOptionFileNewerThanTheObjectRebuilds) {
    file("main.c", "int x;", baseTime);
    file("obj/main.o", "o", baseTime);
    file("opts.txt", "-O2", baseTime + 3);
    system.trackingChanges = false;  // only the file speaks here
    system.setPropertyValue(node("main.c"), system.toolProperties.cOnlyAdditionalOptionsFromFile, "Debug", "opts.txt");
    EXPECT_EQ(build("main.c", 0), (Lines{"begin Checking 'main.c'",
                                         "detail opts.txt (" + timeText(baseTime + 3) + ") is later than @/obj/main.o (" +
                                             timeText(baseTime) + ").",
                                         "end", "message step 2 obj/main.o @/obj/main.o <- @/main.c"}));
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
