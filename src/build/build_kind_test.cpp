// What a build keeps of a node's kind and object file while its caches are
// on, and when it must forget them.

#include "build/node_build_test_fixture.h"

namespace {

const char *const app = R"x(  <project Name="App">
    <configuration Name="Common" project_type="Executable" build_output_file_name="out/app.elf" linker_map_file="No" />
    <file file_name="main.c" />
    <folder Name="all">
      <configuration Name="Common" unity_build_file_name="gen/unity.c" />
      <file file_name="x.c" /><file file_name="y.c" />
    </folder>
  </project>
)x";

class BuildKindCache : public NodeBuildTest {
protected:
    void SetUp() override { load(app); }
    // As a build turns its caches on and off.
    void setCaches(bool enabled) {
        system.setDependencyCacheEnabled(enabled);
        system.fileStatusCache().setEnabled(enabled);
    }
};

TEST_F(BuildKindCache, ABuildKeepsTheAnswersItHasGivenUntilItEnds) {
    setCaches(true);
    ProjectElement *main = node("main.c");
    EXPECT_EQ(system.buildKind(main, "Debug", 0), StandardProjectSystem::KindC);
    EXPECT_EQ(system.compiledFilePath(StandardProjectSystem::KindC, main, "Debug"), directory / "obj/main.o");
    // A header is compiled in an analysis, and kept apart.
    EXPECT_EQ(system.buildKind(main, "Debug", BuildAnalyse), StandardProjectSystem::KindC);

    // Nothing changes properties during a build; if something did, the
    // answers of this build would stand.
    system.setPropertyValue(main, system.nodeProperties.buildExcludeFromBuild, "Common", "Yes");
    system.setPropertyValue(main, system.nodeProperties.buildObjectFileName, "Common", "other.o");
    EXPECT_EQ(system.buildKind(main, "Debug", 0), StandardProjectSystem::KindC);
    EXPECT_EQ(system.compiledFilePath(StandardProjectSystem::KindC, main, "Debug"), directory / "obj/main.o");
    // Each configuration has answers of its own.
    EXPECT_EQ(system.buildKind(main, "Release", 0), StandardProjectSystem::KindExcluded);

    // The next build asks again.
    setCaches(false);
    EXPECT_EQ(system.buildKind(main, "Debug", 0), StandardProjectSystem::KindExcluded);
    EXPECT_EQ(system.compiledFilePath(StandardProjectSystem::KindC, main, "Debug"), directory / "other.o");
}

TEST_F(BuildKindCache, AUnityFolderBuildsAsItsUnityFileOnceTheBuildPointsItThere) {
    for (const char *name : {"main.c", "x.c", "y.c"})
        file(name, "x", baseTime);
    // Asked before the build points it at its unity file, the folder is
    // nothing of its own.
    setCaches(true);
    EXPECT_EQ(system.stepCount(node("App"), "Debug", 0), 3);
    EXPECT_EQ(system.buildKind(node("all"), "Debug", 0), StandardProjectSystem::KindNone);
    EXPECT_EQ(build("App", BuildQuietChecks),
              (Lines{"message step 2 obj/main.o @/obj/main.o <- @/main.c",
                     "message step 2 obj/unity.o @/obj/unity.o <- @/gen/unity.c",
                     "message step 7 out/app.elf @/out/app.elf <- @/obj/main.o @/obj/unity.o",
                     "accept @/out/app.elf"}));
    setCaches(false);
}

}  // namespace
