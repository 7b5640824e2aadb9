#include "project/project_macro_source.h"

#include "project/project_test_tree.h"
#include "support/macro_expansion.h"
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

// Expanding through the source gives what expanding with the whole table
// gives.
void expectSameAsTable(ToolProjectSystem &system, ProjectElement *file, const MacroMap &table,
                       const char *text) {
    ProjectMacroSource source(system, file, "Debug");
    EXPECT_EQ(expandMacrosWith(system.systemMacros, source, text, true, true),
              expandMacrosWith(system.systemMacros, table, text, true, true))
        << text;
}

const char *const tree = R"x(<solution Name="S"><project Name="App">
  <configuration Name="Common" macros="IntDir=user-int;RootRelativeOutDir=no-relative;User=u;Loop=$(Pool);Pool=$(Loop)"
     build_intermediate_directory="$(IntDir)/$(OutDir)/obj" build_output_directory="out/$(Configuration)"
     build_toolchain_directory="/tools/$(OBJ)" />
  <folder Name="Src"><file file_name="src/main.c" /></folder>
</project></solution>)x";

// For every kind of name: built-in, user, tool, derived and missing.
TEST(ProjectMacroSource, ExpandsAsTheWholeTable) {
    ToolProjectSystem system;
    system.load(tree);
    ProjectElement *file = system.file("src/main.c");
    const MacroMap table = system.projectMacros(file, "Debug");
    for (const char *text : {"$(IntDir)", "$(OutDir)", "$(RootRelativeOutDir)", "$(ToolChainDir)",
                             "$(CC) -o $(IntDir)/$(InputName)$(OBJ)", "$(User)|$(Loop)|$(Pool)",
                             "$(FolderPath)/$(RelInputPath)", "$(Missing)|$(Missing:dflt)"})
        expectSameAsTable(system, file, table, text);
    // The derived names see only what comes before them: IntDir the user's
    // IntDir and no OutDir; the toolchain directory the tool's OBJ.
    // Without a root output directory there is no relative one: the user's
    // value stands.
    EXPECT_EQ(table.at("IntDir") + " " + table.at("ToolChainDir") + " " + table.at("CC") + " " +
                  table.at("User") + " " + table.at("RootRelativeOutDir"),
              "user-int/$(OutDir)/obj /tools/.obj $(ToolChainDir)/cc tool u no-relative");
}

// The tool macros are asked for only when a name that may be one is
// expanded; the cache holds one node until the tree changes.
TEST(ProjectMacroSource, ComputesOnlyWhatIsAskedForAndCachesOneNode) {
    ToolProjectSystem system;
    system.load(tree);
    ProjectElement *file = system.file("src/main.c");
    EXPECT_EQ(system.expandProjectMacros(file, "$(InputName).$(Configuration)", "Debug"), "main.Debug");
    EXPECT_EQ(system.toolCalls, 0);
    EXPECT_EQ(system.expandProjectMacros(file, "$(InputName)$(OBJ)", "Debug"), "main.obj");
    EXPECT_EQ(system.toolCalls, 1);

    system.setMacroCacheEnabled(true);
    EXPECT_EQ(system.expandProjectMacros(file, "$(CC)", "Debug"), "/tools/.obj/cc");
    EXPECT_EQ(system.expandProjectMacros(file, "$(OBJ)", "Debug"), ".obj");
    EXPECT_EQ(system.toolCalls, 2);
    EXPECT_EQ(system.expandProjectMacros(file, "$(CC)", "Release"), "/tools/.obj/cc");
    EXPECT_EQ(system.toolCalls, 3);
    system.setPropertyValue(system.node("App"), system.nodeProperties.buildToolchainDirectory, "Common", "/t");
    EXPECT_EQ(system.expandProjectMacros(file, "$(CC)", "Release"), "/t/cc");
    EXPECT_EQ(system.toolCalls, 4);
}

// The built-in macros of a file and of a project; built-in names beat the
// user's, and the directories are worked out in order.
TEST(ProjectMacroSource, BuiltInMacrosOfANode) {
    TestProjectSystem system;
    system.load(R"x(<solution Name="S"><project Name="App">
  <configuration Name="Common" project_directory="app" build_intermediate_directory="" build_output_directory="" />
  <folder Name="Outer"><folder Name="Inner"><file file_name="src/main.c" /></folder></folder></project>
  <project Name="Out"><configuration Name="Common" macros="Configuration=mine;Sub=out\;x;Mine=$(Configuration)"
     build_root_output_directory="/o" build_output_directory="/o/$(Configuration)/bin"
     build_intermediate_directory="$(OutDir)/obj" /></project></solution>)x");
    ProjectElement *file = system.file("src/main.c");
    PropertyClass text("t", PropertyClass::String, "", "", "", "",
                       "$(ProjectName)|$(FolderName)|$(FolderPath)|$(InputName)|$(RelInputDir)");
    EXPECT_EQ(system.getExpandedPropertyValue(file, &text, "Debug"), "App|Inner|Outer/Inner|main|src");
    EXPECT_EQ(system.expandProjectMacros(file, "plain text", "Debug"), "plain text");
    const auto macros = [&](ProjectElement *node, const std::string &configuration, Strings names) {
        const MacroMap map = system.projectMacros(node, configuration);
        std::string values;
        for (const std::string &name : names)
            values += name + "=" + (map.count(name) ? map.at(name) : "(none)") + " ";
        return values;
    };
    // Empty directories are the project directory.
    EXPECT_EQ(macros(file, "Debug", {"ProjectNodeName", "ProjectDir", "SolutionDir", "SolutionName", "SolutionFileName",
                                     "SolutionPath", "SolutionExt", "InputDir", "InputFileName", "InputExt",
                                     "InputPath", "RelInputPath", "Configuration", "OBJ", "LIB", "PackageExt",
                                     "IntDir", "OutDir"}),
              "ProjectNodeName=main.c ProjectDir=/work/s/app SolutionDir=/work/s SolutionName=s "
              "SolutionFileName=s.tbp SolutionPath=/work/s/s.tbp SolutionExt=tbp InputDir=/work/s/app/src "
              "InputFileName=main.c InputExt=c InputPath=/work/s/app/src/main.c RelInputPath=src/main.c "
              "Configuration=Debug OBJ=.o LIB=.a PackageExt=tbq IntDir=. OutDir=. ");
    EXPECT_EQ(system.projectMacros(file, "Debug").at("InputPathHash"), macroHashText("/work/s/app/src/main.c"));
    EXPECT_EQ(system.projectMacros(file, "Debug").at("ConfigurationHash"), macroHashText("Debug"));
    EXPECT_EQ(macros(system.node("App"), "Debug", {"InputPath", "FolderName", "RelInputDir"}),
              "InputPath=(none) FolderName=(none) RelInputDir=. ");
    // IntDir is worked out before OutDir exists.
    ProjectElement *out = system.node("Out");
    EXPECT_EQ(macros(out, "Release", {"Configuration", "Sub", "Mine", "OutDir", "RootRelativeOutDir", "IntDir"}),
              "Configuration=Release Sub=out;x Mine=$(Configuration) OutDir=/o/Release/bin "
              "RootRelativeOutDir=Release/bin IntDir=$(OutDir)/obj ");
    system.setMacroCacheEnabled(true);
    EXPECT_EQ(system.projectMacros(out, "Release").at("OutDir"), "/o/Release/bin");
    system.setPropertyValue(out, system.nodeProperties.buildOutputDirectory, "Common", "/p");
    EXPECT_EQ(system.projectMacros(out, "Release").at("OutDir"), "/p");
    EXPECT_EQ(system.projectMacros(out, "Debug").at("Configuration"), "Debug");
}

// Group macros stand between the built-ins and StudioDir: they replace user
// macros and built-ins, and StudioDir, tool macros and the derived names
// replace them.
TEST(ProjectMacroSource, GroupMacrosHaveTheirOwnLayer) {
    TestDirectory dir;
    dir.write("groups.xml", R"x(<g><group name="G" default="e"><groupEntry name="e">
  <macro name="InputName" value="group-input" /><macro name="User" value="group-user" />
  <macro name="CC" value="group-cc" /><macro name="IntDir" value="group-int" />
  <macro name="StudioDir" value="group-studio" />
  <macro name="GroupOnly" value="$(InputName)+$(StudioDir)+$(CC)" />
</groupEntry></group></g>)x");
    ToolProjectSystem system;
    system.installDirectory = "/studio";
    system.load(R"x(<solution Name="S"><project Name="App">
  <configuration Name="Common" macros="User=u;IntDir=user-int" property_groups_file_path="$(ProjectDir)/groups.xml"
     build_intermediate_directory="$(IntDir)/obj" build_toolchain_directory="/tools" /><file file_name="main.c" />
</project></solution>)x", dir / "s.tbp");
    ProjectElement *file = system.file("main.c");
    const MacroMap table = system.projectMacros(file, "Debug");
    EXPECT_EQ(table.at("InputName") + " " + table.at("User") + " " + table.at("CC") + " " + table.at("IntDir") + " " +
                  table.at("StudioDir"),
              "group-input tool group-user $(ToolChainDir)/cc group-int/obj /studio");
    for (const char *text : {"$(InputName)", "$(User)", "$(CC)", "$(IntDir)", "$(StudioDir)", "$(GroupOnly)",
                             "$(InputFileName)|$(Missing)"})
        expectSameAsTable(system, file, table, text);
    EXPECT_EQ(system.expandProjectMacros(file, "$(GroupOnly)", "Debug"), "group-input+/studio+/tools/cc");

    // Without an install directory the group's StudioDir stands.
    system.installDirectory.clear();
    EXPECT_EQ(system.expandProjectMacros(file, "$(StudioDir)", "Debug"), "group-studio");
    EXPECT_EQ(system.projectMacros(file, "Debug").at("StudioDir"), "group-studio");
}

// Resolving a file's path inside an expansion expands its name on the
// project, which takes over the cache; the expansion keeps its own source.
TEST(ProjectMacroSource, ANestedExpansionMayReplaceTheCachedSource) {
    ToolProjectSystem system;
    system.load(R"(<solution Name="S"><project Name="App"><configuration Name="Common" macros="Sub=src" />
  <file file_name="$(Sub)/main.c" /></project></solution>)");
    ProjectElement *file = system.file("$(Sub)/main.c");
    ProjectSystem::invalidatePaths(system.solution);
    system.setMacroCacheEnabled(true);
    EXPECT_EQ(system.expandProjectMacros(file, "$(InputFileName) $(Configuration)", "Debug"), "main.c Debug");
}

}  // namespace
