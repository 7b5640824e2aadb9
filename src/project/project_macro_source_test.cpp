#include "project/project_macro_source.h"

#include "project/project_test_tree.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

namespace {

// A toolchain whose tool macros name a compiler after the output directory
// and take over a built-in and a user name.
class ToolProjectSystem : public TestProjectSystem {
public:
    void addToolMacros(ProjectElement *, const std::string &, MacroMap &map) override {
        ++toolCalls;
        map["CC"] = "$(ToolChainDir)/cc";
        map["OBJ"] = ".obj";
        map["User"] = "tool " + map["User"];
    }
    bool mayBeToolMacro(std::string_view name) const override {
        return name == "CC" || name == "OBJ" || name == "User";
    }
    int toolCalls = 0;
};

const char *const tree = R"x(<solution Name="S"><project Name="App">
  <configuration Name="Common" macros="IntDir=user-int;RootRelativeOutDir=no-relative;User=u;Loop=$(Pool);Pool=$(Loop)"
     build_intermediate_directory="$(IntDir)/$(OutDir)/obj" build_output_directory="out/$(Configuration)"
     build_toolchain_directory="/tools/$(OBJ)" />
  <folder Name="Src"><file file_name="src/main.c" /></folder>
</project></solution>)x";

// Expanding through the source gives what expanding with the whole table
// gives, for every kind of name: built-in, user, tool, derived and missing.
TEST(ProjectMacroSource, ExpandsAsTheWholeTable) {
    ToolProjectSystem system;
    system.load(tree);
    ProjectElement *file = ProjectSystem::findFileByPath(system.solution, "src/main.c");
    const MacroMap table = system.projectMacros(file, "Debug");
    for (const char *text : {"$(IntDir)", "$(OutDir)", "$(RootRelativeOutDir)", "$(ToolChainDir)",
                             "$(CC) -o $(IntDir)/$(InputName)$(OBJ)", "$(User)|$(Loop)|$(Pool)",
                             "$(FolderPath)/$(RelInputPath)", "$(Missing)|$(Missing:dflt)"}) {
        ProjectMacroSource source(system, file, "Debug");
        EXPECT_EQ(expandMacrosWith(system.systemMacros, source, text, true, true),
                  expandMacrosWith(system.systemMacros, table, text, true, true))
            << text;
    }
    // The derived names see only what comes before them: IntDir the user's
    // IntDir and no OutDir; the toolchain directory the tool's OBJ.
    EXPECT_EQ(table.at("IntDir"), "user-int/$(OutDir)/obj");
    EXPECT_EQ(table.at("ToolChainDir"), "/tools/.obj");
    EXPECT_EQ(table.at("CC"), "$(ToolChainDir)/cc");
    EXPECT_EQ(table.at("User"), "tool u");
    // Without a root output directory there is no relative one: the user's
    // value stands.
    EXPECT_EQ(table.at("RootRelativeOutDir"), "no-relative");
}

TEST(ProjectMacroSource, ComputesOnlyWhatIsAskedFor) {
    ToolProjectSystem system;
    system.load(tree);
    ProjectElement *file = ProjectSystem::findFileByPath(system.solution, "src/main.c");
    EXPECT_EQ(system.expandProjectMacros(file, "$(InputName).$(Configuration)", "Debug"), "main.Debug");
    EXPECT_EQ(system.toolCalls, 0);
    EXPECT_EQ(system.expandProjectMacros(file, "$(InputName)$(OBJ)", "Debug"), "main.obj");
    EXPECT_EQ(system.toolCalls, 1);
}

TEST(ProjectMacroSource, CacheHoldsOneNodeUntilTheTreeChanges) {
    ToolProjectSystem system;
    system.load(tree);
    ProjectElement *file = ProjectSystem::findFileByPath(system.solution, "src/main.c");
    ProjectElement *project = system.node("App");
    system.setMacroCacheEnabled(true);
    EXPECT_EQ(system.expandProjectMacros(file, "$(CC)", "Debug"), "/tools/.obj/cc");
    EXPECT_EQ(system.expandProjectMacros(file, "$(OBJ)", "Debug"), ".obj");
    EXPECT_EQ(system.toolCalls, 1);
    EXPECT_EQ(system.expandProjectMacros(file, "$(CC)", "Release"), "/tools/.obj/cc");
    EXPECT_EQ(system.toolCalls, 2);
    system.setPropertyValue(project, system.nodeProperties.buildToolchainDirectory, "Common", "/t");
    EXPECT_EQ(system.expandProjectMacros(file, "$(CC)", "Release"), "/t/cc");
    EXPECT_EQ(system.toolCalls, 3);
}

// Group macros stand between the built-ins and StudioDir: they replace user
// macros and built-ins, and StudioDir, tool macros and the derived names
// replace them.
TEST(ProjectMacroSource, GroupMacrosHaveTheirOwnLayer) {
    TestDirectory dir;
    dir.write("groups.xml", R"x(<g><group name="G" default="e"><groupEntry name="e">
  <macro name="InputName" value="group-input" />
  <macro name="User" value="group-user" />
  <macro name="CC" value="group-cc" />
  <macro name="IntDir" value="group-int" />
  <macro name="StudioDir" value="group-studio" />
  <macro name="GroupOnly" value="$(InputName)+$(StudioDir)+$(CC)" />
</groupEntry></group></g>)x");
    ToolProjectSystem system;
    system.installDirectory = "/studio";
    system.load(R"x(<solution Name="S"><project Name="App">
  <configuration Name="Common" macros="User=u;IntDir=user-int" property_groups_file_path="$(ProjectDir)/groups.xml"
     build_intermediate_directory="$(IntDir)/obj" build_toolchain_directory="/tools" />
  <file file_name="main.c" />
</project></solution>)x",
                dir / "s.tbp");
    ProjectElement *file = ProjectSystem::findFileByPath(system.solution, "main.c");
    const MacroMap table = system.projectMacros(file, "Debug");
    EXPECT_EQ(table.at("InputName"), "group-input");
    EXPECT_EQ(table.at("User"), "tool group-user");
    EXPECT_EQ(table.at("CC"), "$(ToolChainDir)/cc");
    EXPECT_EQ(table.at("IntDir"), "group-int/obj");
    EXPECT_EQ(table.at("StudioDir"), "/studio");
    for (const char *text : {"$(InputName)", "$(User)", "$(CC)", "$(IntDir)", "$(StudioDir)",
                             "$(GroupOnly)", "$(InputFileName)|$(Missing)"}) {
        ProjectMacroSource source(system, file, "Debug");
        EXPECT_EQ(expandMacrosWith(system.systemMacros, source, text, true, true),
                  expandMacrosWith(system.systemMacros, table, text, true, true))
            << text;
    }
    EXPECT_EQ(system.expandProjectMacros(file, "$(GroupOnly)", "Debug"),
              "group-input+/studio+/tools/cc");

    // Without an install directory the group's StudioDir stands.
    system.installDirectory.clear();
    EXPECT_EQ(system.expandProjectMacros(file, "$(StudioDir)", "Debug"), "group-studio");
    EXPECT_EQ(system.projectMacros(file, "Debug").at("StudioDir"), "group-studio");
}

// Resolving a file's path inside an expansion expands its name on the
// project, which takes over the cache; the expansion keeps its own source.
TEST(ProjectMacroSource, ANestedExpansionMayReplaceTheCachedSource) {
    ToolProjectSystem system;
    system.load(R"(<solution Name="S"><project Name="App">
  <configuration Name="Common" macros="Sub=src" />
  <file file_name="$(Sub)/main.c" />
</project></solution>)");
    ProjectElement *file = ProjectSystem::findFileByPath(system.solution, "$(Sub)/main.c");
    ASSERT_NE(file, nullptr);
    ProjectSystem::invalidatePaths(system.solution);
    system.setMacroCacheEnabled(true);
    EXPECT_EQ(system.expandProjectMacros(file, "$(InputFileName) $(Configuration)", "Debug"),
              "main.c Debug");
}

}  // namespace
