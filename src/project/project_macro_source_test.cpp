#include "project/project_macro_source.h"

#include "project/project_test_tree.h"
#include "support/macro_expansion.h"

#include <gtest/gtest.h>

namespace {

// A toolchain whose tool macros name a compiler after the output directory
// and take over a built-in and a user name.
class ToolProjectSystem : public TestProjectSystem {
public:
    void addToolMacros(ProjectElement *, const std::string &, MacroMap &map) override {
        map["CC"] = "$(ToolChainDir)/cc";
        map["OBJ"] = ".obj";
        map["User"] = "tool " + map["User"];
    }
    ToolProjectSystem() { addToolMacroNames(names); }
    static constexpr std::string_view names[] = {"CC", "OBJ", "User"};
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
    ProjectElement *file = system.file("src/main.c");
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
    // Without a root output directory there is no relative one: the user's
    // value stands.
    EXPECT_EQ(table.at("IntDir") + " " + table.at("ToolChainDir") + " " + table.at("CC") + " " +
                  table.at("User") + " " + table.at("RootRelativeOutDir"),
              "user-int/$(OutDir)/obj /tools/.obj $(ToolChainDir)/cc tool u no-relative");
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
    const auto macros = [&](ProjectElement *node, const std::string &configuration, Strings names) {
        const MacroMap map = system.projectMacros(node, configuration);
        std::string values;
        for (const std::string &name : names)
            values += name + "=" + (map.count(name) ? map.at(name) : "(none)") + " ";
        return values;
    };
    // Empty directories are the project directory.
    EXPECT_EQ(macros(file, "Debug", {"ProjectNodeName", "ProjectDir", "SolutionDir", "InputDir", "RelInputPath",
                                     "IntDir", "OutDir"}),
              "ProjectNodeName=main.c ProjectDir=/work/s/app SolutionDir=/work/s InputDir=/work/s/app/src "
              "RelInputPath=src/main.c IntDir=. OutDir=. ");
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

// Resolving a file's path inside an expansion expands its name on the
// project, which takes over the cache; the expansion keeps its own source.
TEST(ProjectMacroSource, ANestedExpansionMayReplaceTheCachedSource) {
    ToolProjectSystem system;
    system.load(R"(<solution Name="S"><project Name="App"><configuration Name="Common" macros="Sub=src" />
  <file file_name="$(Sub)/main.c" /></project></solution>)");
    ProjectSystem::invalidatePaths(system.solution);
    system.setMacroCacheEnabled(true);
    EXPECT_EQ(system.expandProjectMacros(system.file("$(Sub)/main.c"), "$(InputFileName) $(Configuration)", "Debug"),
              "main.c Debug");
}

}  // namespace
