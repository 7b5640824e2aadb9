#include "project/project_test_tree.h"

#include <gtest/gtest.h>

#include <string>

namespace {

const char *const pathsSolution = R"(<solution Name="S">
  <project Name="App">
    <configuration Name="Common" project_directory="app" />
    <folder Name="Src">
      <file file_name="src/main.c" />
      <file file_name="/work/other/x.c" />
      <file file_name="/work/s/app/sub/y.c" />
      <file file_name="../up.c" />
      <file file_name="$(Nothing)/a.c" />
      <file file_name="$(Configuration)/gen.c" />
      <file file_name="lib.tar.gz" />
    </folder>
    <folder Name="Generated" file_name="gen/out.c" />
  </project>
  <project Name="Abs"><configuration Name="Common" project_directory="/abs/dir" /></project>
  <project Name="Macro"><configuration Name="Common" project_directory="$(Base)/p" /></project>
  <file file_name="loose.c" />
</solution>)";

struct ProjectPaths : ::testing::Test {
    void SetUp() override { system.load(pathsSolution); }
    ProjectElement *file(const std::string &name) {
        ProjectElement *found = ProjectSystem::findFileByPath(system.solution, name);
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    TestProjectSystem system;
};

TEST_F(ProjectPaths, ProjectDirectories) {
    EXPECT_EQ(system.fullProjectDirectory(system.node("App")), "/work/s/app");
    EXPECT_EQ(system.fullProjectDirectory(system.node("Abs")), "/abs/dir");
    // The global macros apply, project macros don't.
    system.systemMacros.globalMacros()["Base"] = "/g";
    EXPECT_EQ(system.fullProjectDirectory(system.node("Macro")), "/g/p");
    EXPECT_EQ(system.fullProjectDirectory(file("src/main.c")), "");
    EXPECT_EQ(system.solutionDirectory(), "/work/s");
}

TEST_F(ProjectPaths, RelativeFileInsideItsProject) {
    ProjectElement *main = file("src/main.c");
    EXPECT_EQ(system.absoluteFilePath(main, "Debug"), "/work/s/app/src/main.c");
    EXPECT_TRUE(main->nameIsRelative);
    EXPECT_TRUE(main->insideBaseDirectory);
    EXPECT_EQ(main->baseDirectory, "/work/s/app");
    EXPECT_EQ(system.relativeFileName(main, "Debug"), "src/main.c");
    EXPECT_EQ(system.fileDirectory(main, "Debug"), "/work/s/app/src");
    EXPECT_EQ(system.fileNameOnly(main, "Debug"), "main.c");
    EXPECT_EQ(system.fileBaseName(main, "Debug"), "main");
    EXPECT_EQ(system.fileExtension(main, "Debug"), "c");
    EXPECT_EQ(system.elementDirectory(main), "/work/s/app");

    ProjectElement *archive = file("lib.tar.gz");
    EXPECT_EQ(system.fileBaseName(archive, "Debug"), "lib");
    EXPECT_EQ(system.fileBaseName(archive, "Debug", true), "lib.tar");
    EXPECT_EQ(system.fileExtension(archive, "Debug"), "gz");
    EXPECT_EQ(system.fileExtension(archive, "Debug", true), "tar.gz");
}

TEST_F(ProjectPaths, AbsoluteNames) {
    ProjectElement *outside = file("/work/other/x.c");
    EXPECT_EQ(system.absoluteFilePath(outside, "Debug"), "/work/other/x.c");
    EXPECT_FALSE(outside->nameIsRelative);
    EXPECT_FALSE(outside->insideBaseDirectory);
    EXPECT_EQ(system.relativeFileName(outside, "Debug"), "../../other/x.c");

    ProjectElement *inside = file("/work/s/app/sub/y.c");
    EXPECT_EQ(system.relativeFileName(inside, "Debug"), "sub/y.c");
    EXPECT_TRUE(inside->insideBaseDirectory);
    EXPECT_FALSE(inside->nameIsRelative);

    ProjectElement *up = file("../up.c");
    EXPECT_EQ(system.absoluteFilePath(up, "Debug"), "/work/s/up.c");
    EXPECT_FALSE(up->insideBaseDirectory);
    EXPECT_EQ(system.relativeFileName(up, "Debug"), "../up.c");
}

TEST_F(ProjectPaths, UnknownMacroLeavesNoPath) {
    ProjectElement *unknown = file("$(Nothing)/a.c");
    EXPECT_EQ(system.absoluteFilePath(unknown, "Debug"), "");
    EXPECT_FALSE(unknown->pathsValid);
    EXPECT_TRUE(unknown->nameHasMacros);
    EXPECT_EQ(system.fileNameOnly(unknown, "Debug"), "");
    EXPECT_EQ(system.elementName(unknown), "a.c");
}

TEST_F(ProjectPaths, MacroNamesAreResolvedPerConfiguration) {
    ProjectElement *generated = file("$(Configuration)/gen.c");
    EXPECT_EQ(system.absoluteFilePath(generated, "Debug"), "/work/s/app/Debug/gen.c");
    EXPECT_EQ(generated->pathsConfiguration, "Debug");
    EXPECT_EQ(system.absoluteFilePath(generated, "Release"), "/work/s/app/Release/gen.c");
    EXPECT_EQ(system.relativeFileName(generated, "Release"), "Release/gen.c");
    // A name without macros keeps its paths for every configuration.
    ProjectElement *main = file("src/main.c");
    system.resolvePaths(main, "Debug");
    EXPECT_EQ(main->pathsConfiguration, "");
}

TEST_F(ProjectPaths, ResolvedPathsAreKeptUntilTheirInputsChange) {
    ProjectElement *main = file("src/main.c");
    EXPECT_EQ(system.absoluteFilePath(main, "Debug"), "/work/s/app/src/main.c");
    // Changed behind the project system's back: the kept path stands.
    main->XMLElement::setAttribute("file_name", "other.c");
    EXPECT_EQ(system.absoluteFilePath(main, "Release"), "/work/s/app/src/main.c");
    system.setFileName(main, "renamed.c");
    EXPECT_EQ(system.absoluteFilePath(main, "Debug"), "/work/s/app/renamed.c");

    ProjectElement *app = system.node("App");
    system.setPropertyValue(app, system.nodeProperties.projectDirectory, "Common", "moved");
    EXPECT_EQ(system.absoluteFilePath(main, "Debug"), "/work/s/moved/renamed.c");
    EXPECT_EQ(system.fullProjectDirectory(app), "/work/s/moved");
}

TEST_F(ProjectPaths, FoldersAndOtherNodes) {
    ProjectElement *generated = system.node("Generated");
    EXPECT_EQ(system.absoluteFilePath(generated, "Debug"), "/work/s/app/gen/out.c");
    EXPECT_EQ(system.elementDirectory(generated), "/work/s/app");
    ProjectElement *src = system.node("Src");
    EXPECT_EQ(system.absoluteFilePath(src, "Debug"), "");
    EXPECT_TRUE(src->pathsValid);

    // A file without a project is taken against the solution's directory.
    ProjectElement *loose = file("loose.c");
    EXPECT_EQ(system.absoluteFilePath(loose, "Debug"), "/work/s/loose.c");
    EXPECT_EQ(system.elementDirectory(loose), "");

    EXPECT_EQ(system.absoluteFilePath(system.solution, "Debug"), "/work/s/s.tbp");
    EXPECT_EQ(system.elementDirectory(system.solution), "/work/s");
    EXPECT_EQ(system.elementDirectory(system.node("Abs")), "/abs/dir");
    EXPECT_EQ(system.elementDirectory(ProjectSystem::findConfiguration(system.node("Abs"), "Common")), "");
    EXPECT_EQ(system.absoluteFilePath(nullptr, "Debug"), "");
}

} // namespace
