#include "project/project_test_tree.h"

#include <gtest/gtest.h>

namespace {

struct ProjectPaths : ::testing::Test {
    void SetUp() override {
        system.load(R"(<solution Name="S">
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
</solution>)");
    }
    TestProjectSystem system;
};

TEST_F(ProjectPaths, FilePathsAgainstTheProjectDirectory) {
    struct Row {
        const char *name, *absolute, *relative;
        bool nameIsRelative, inside;
    };
    const Row rows[] = {
        {"src/main.c", "/work/s/app/src/main.c", "src/main.c", true, true},
        {"/work/other/x.c", "/work/other/x.c", "../../other/x.c", false, false},
        {"/work/s/app/sub/y.c", "/work/s/app/sub/y.c", "sub/y.c", false, true},
        {"../up.c", "/work/s/up.c", "../up.c", true, false},
        // A file without a project is taken against the solution's directory.
        {"loose.c", "/work/s/loose.c", "loose.c", true, true},
    };
    for (const Row &row : rows) {
        ProjectElement *file = system.file(row.name);
        EXPECT_EQ(system.absoluteFilePath(file, "Debug"), row.absolute) << row.name;
        EXPECT_EQ(system.relativeFileName(file, "Debug"), row.relative) << row.name;
        EXPECT_EQ(file->nameIsRelative, row.nameIsRelative) << row.name;
        EXPECT_EQ(file->insideBaseDirectory, row.inside) << row.name;
    }
    ProjectElement *main = system.file("src/main.c");
    EXPECT_EQ(main->baseDirectory, "/work/s/app");
    EXPECT_EQ(system.fileDirectory(main, "Debug") + "|" + system.fileNameOnly(main, "Debug"), "/work/s/app/src|main.c");
    ProjectElement *archive = system.file("lib.tar.gz");
    EXPECT_EQ(system.fileBaseName(archive, "Debug") + "|" + system.fileBaseName(archive, "Debug", true) + "|" +
                  system.fileExtension(archive, "Debug") + "|" + system.fileExtension(archive, "Debug", true),
              "lib|lib.tar|gz|tar.gz");

    // A name with macros is resolved again for another configuration; an
    // unknown macro leaves no path.
    ProjectElement *generated = system.file("$(Configuration)/gen.c");
    EXPECT_EQ(system.absoluteFilePath(generated, "Debug"), "/work/s/app/Debug/gen.c");
    EXPECT_EQ(system.relativeFileName(generated, "Release"), "Release/gen.c");
    EXPECT_EQ(system.absoluteFilePath(generated, "Release"), "/work/s/app/Release/gen.c");
    ProjectElement *unknown = system.file("$(Nothing)/a.c");
    EXPECT_EQ(system.absoluteFilePath(unknown, "Debug"), "");
    EXPECT_FALSE(unknown->pathsValid);
    EXPECT_EQ(system.fileNameOnly(unknown, "Debug"), "");
    EXPECT_EQ(system.elementName(unknown), "a.c");
}

TEST_F(ProjectPaths, DirectoriesOfProjectsFoldersAndOtherNodes) {
    EXPECT_EQ(system.fullProjectDirectory(system.node("Abs")), "/abs/dir");
    // The global macros apply, project macros don't.
    system.systemMacros.globalMacros()["Base"] = "/g";
    EXPECT_EQ(system.fullProjectDirectory(system.node("Macro")), "/g/p");
    EXPECT_EQ(system.fullProjectDirectory(system.file("src/main.c")), "");
    EXPECT_EQ(system.solutionDirectory(), "/work/s");

    ProjectElement *generated = system.node("Generated");
    EXPECT_EQ(system.absoluteFilePath(generated, "Debug"), "/work/s/app/gen/out.c");
    EXPECT_EQ(system.elementDirectory(generated), "/work/s/app");
    EXPECT_EQ(system.elementDirectory(system.file("src/main.c")), "/work/s/app");
    ProjectElement *src = system.node("Src");
    EXPECT_EQ(system.absoluteFilePath(src, "Debug"), "");
    EXPECT_TRUE(src->pathsValid);
    EXPECT_EQ(system.elementDirectory(system.file("loose.c")), "");
    EXPECT_EQ(system.absoluteFilePath(system.solution, "Debug"), "/work/s/s.tbp");
    EXPECT_EQ(system.elementDirectory(system.solution), "/work/s");
    EXPECT_EQ(system.elementDirectory(system.node("Abs")), "/abs/dir");
    EXPECT_EQ(system.elementDirectory(ProjectSystem::findConfiguration(system.node("Abs"), "Common")), "");
    EXPECT_EQ(system.absoluteFilePath(nullptr, "Debug"), "");
}

} // namespace
