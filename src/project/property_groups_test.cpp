#include "project/property_group_files.h"

#include "project/project_test_tree.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

namespace {

// A toolchain with the standard table, a target code of its own, and one
// property name of its own that stands for a standard one.
class GroupSystem : public StandardTestSystem {
public:
    std::optional<std::string> value(ProjectElement *element, const std::string &name, const std::string &config) {
        return getPropertyValue(element, propertyClasses.propertyClass(name), config);
    }
    int platformCode() const override { return code; }
    std::string resolvePropertyName(ProjectElement *, const std::string &name) override {
        return name == "quiet" ? "build_quietly" : name;
    }

    int code = 8;
};

const char *const groupsFile = R"x(<propertyGroups>
  <group name="Board" default="Alpha" short="Board">
    <groupEntry name="Alpha" family="Alpha Board">
      <cdefine name="BOARD_ALPHA"/><cdefine name="CLOCK" value="8000000"/><cdefine name="EMPTY_VALUE" value=""/>
      <cinclude value="$(ProjectDir)/alpha/include"/><cinclude value="debug/$(Configuration)" configuration="Debug"/>
      <cinclude value="everywhere" configuration="Common"/>
      <cdefine name="FAST" property="fast_mode" property_value="Yes"/>
      <cdefine name="QUIET" property="quiet" property_value="No"/>
      <cdefine name="SLOW_CLOCK" property="Clock" property_value="Slow"/>
      <library name="alpha_bsp"/><package name="AlphaPkg"/>
      <macro name="BoardDir" value="$(ProjectDir)/alpha"/><macro name="BoardName" value="alpha"/>
      <macro name="BoardName" value="alpha-debug" configuration="Debug"/>
    </groupEntry>
    <groupEntry name="Beta">
      <cdefine name="BOARD_BETA"/><property name="quiet" value="No"/>
      <property name="build_intermediate_directory" value=""/>
      <property name="vendor_setting" value="v" configuration="Release"/><property name="vendor_cleared" value=""/>
      <property name="build_output_directory" value="fast-out" property="fast_mode" property_value="Yes"/>
      <file name="startup" file_name="beta_startup.s" folder="System"/>
      <file name="vectors" file_name="beta_vectors.s" folder="System"/>
      <file name="linker" file_name="beta.ld"/><file name="lost" file_name="lost.c" folder="NoSuchFolder"/>
      <file name="debug_only" file_name="debug.c" folder="System" configuration="Debug"/>
      <macro name="BoardName" value="beta"/>
    </groupEntry>
  </group>
  <group name="Clock" default="Fast"><groupEntry name="Fast"/><groupEntry name="Slow"/></group>
  <group name="ArmOnly" target="8" default="On"><groupEntry name="On"><cdefine name="ARM_ONLY"/></groupEntry></group>
  <group name="HostOnly" target="15" default="On"><groupEntry name="On"><cdefine name="HOST_ONLY"/></groupEntry></group>
  <group name="NoDefines"><groupEntry name="x"><library name="x"/></groupEntry></group>
</propertyGroups>)x";

const char *const solutionText = R"(<solution Name="S"><configuration Name="Debug" /><configuration Name="Release" />
  <configuration Name="ARM Debug" inherited_configurations="ARM;Debug" />
  <project Name="App">
    <configuration Name="Common" project_type="Executable" is_cpp_project="No"
                   property_groups_file_path="$(ProjectDir)/groups.xml" build_intermediate_directory="int" />
    <folder Name="Src"><folder Name="System" filter="s"><file file_name="vectors.s" Name="vectors" /></folder>
      <file file_name="main.c" /></folder>
  </project>
  <project Name="Fast"><configuration Name="Common" project_type="Executable" property_groups_file_path="groups.xml"
                   fast_mode="Yes" build_quietly="No" Clock="Slow" /></project>
  <project Name="Stage">
    <configuration Name="Common" project_type="Staging" property_groups_file_path="groups.xml" /></project>
  <project Name="Plain"><configuration Name="Common" project_type="Executable" /></project>
</solution>)";

struct PropertyGroups : ::testing::Test {
    void SetUp() override {
        dir.write("groups.xml", groupsFile);
        system.load(solutionText, dir / "s.tbp");
        app = system.node("App");
        board = system.findGroupForNode(app, "Debug", "Board", false);
        ASSERT_NE(board, nullptr);
    }
    // What the groups of a node contribute to a compile, as one line.
    std::string contributions(const std::string &name, const std::string &configuration = "Release") {
        Strings list;
        system.groupIncludes(system.node(name), configuration, list);
        system.groupDefines(system.node(name), configuration, list);
        return spaced(list);
    }
    TestDirectory dir;
    GroupSystem system;
    ProjectElement *app = nullptr;
    PropertyValueGroupClass *board = nullptr;
};

TEST_F(PropertyGroups, IncludesAndDefinesOfTheSelectedEntries) {
    const std::string alpha = "-I" + dir.path() + "/alpha/include ";
    // Without a selection the default entry contributes.
    EXPECT_EQ(contributions("App"), alpha + "-Ieverywhere -DBOARD_ALPHA -DCLOCK=8000000 -DEMPTY_VALUE -DARM_ONLY");
    Strings libraries, packages;
    system.groupLibraries(app, "Release", libraries);
    system.groupPackages(app, "Release", packages);
    EXPECT_EQ(libraries, (Strings{"alpha_bsp"}));
    EXPECT_EQ(packages, (Strings{"AlphaPkg"}));
    // "ARM Debug" inherits "Debug".
    EXPECT_EQ(contributions("App", "ARM Debug"),
              alpha + "-Idebug/ARM Debug -Ieverywhere -DBOARD_ALPHA -DCLOCK=8000000 -DEMPTY_VALUE -DARM_ONLY");
    // A property that no table knows is read as stored; a name the toolchain
    // resolves is its property's; a group's value is its selection.
    EXPECT_EQ(contributions("Fast"),
              alpha + "-Ieverywhere -DBOARD_ALPHA -DCLOCK=8000000 -DEMPTY_VALUE -DFAST -DQUIET -DSLOW_CLOCK "
                      "-DARM_ONLY");
    // The stored selection decides; one that no entry has contributes
    // nothing, not the default.
    system.setPropertyValue(app, board, "Release", "Beta");
    EXPECT_EQ(contributions("App"), "-DBOARD_BETA -DARM_ONLY");
    system.setPropertyValue(app, board, "Release", "Omega");
    EXPECT_EQ(contributions("App"), "-DARM_ONLY");

    // "None" names no file, which is the default too; a relative name is
    // the project's.
    EXPECT_EQ(system.groupFileOf(system.node("Fast"), "Debug")->fileName, dir / "groups.xml");
    EXPECT_EQ(system.groupFileOf(system.node("Plain"), "Debug"), nullptr);
    EXPECT_EQ(contributions("Plain"), "");
    system.setPropertyValue(app, system.nodeProperties.propertyGroupsFilePath, "Common", "None");
    EXPECT_EQ(system.findGroupForNode(app, "Debug", "Board", false), nullptr);
    EXPECT_EQ(contributions("App"), "");
}

TEST_F(PropertyGroups, EntriesAndDefines) {
    EXPECT_EQ(*ProjectSystem::groupEntry(board, "Beta")->attribute("name"), "Beta");
    EXPECT_EQ(ProjectSystem::groupEntry(board, "beta"), nullptr);
    EXPECT_EQ(ProjectSystem::groupEntry(nullptr, "Beta"), nullptr);
    EXPECT_TRUE(ProjectSystem::hasDefines(board));
    EXPECT_FALSE(ProjectSystem::hasDefines(system.findGroupForNode(app, "Debug", "NoDefines", false)));
}

TEST_F(PropertyGroups, ChoosingAnEntrySetsItsPropertiesAndAddsItsFiles) {
    system.setPropertyValue(app, system.property("build_quietly"), "Debug", "Yes");
    system.setPropertyValue(app, system.property("build_intermediate_directory"), "Debug", "x");
    system.setAttribute(ProjectSystem::findConfiguration(app, "Debug"), "vendor_cleared", "old");

    system.setGroupValue(app, "Debug", board, "Beta");
    EXPECT_EQ(ProjectSystem::getOwnPropertyValue(app, board, "Debug"), "Beta");
    // "quiet" is the toolchain's name for build_quietly.
    EXPECT_EQ(ProjectSystem::getOwnPropertyValue(app, system.property("build_quietly"), "Debug"), "No");
    // An empty value removes the stored one, and the Common value shows.
    EXPECT_EQ(system.value(app, "build_intermediate_directory", "Debug"), "int");
    // Unknown names go straight to the configuration element named.
    EXPECT_EQ(ProjectSystem::attribute(ProjectSystem::findConfiguration(app, "Release"), "vendor_setting"), "v");
    EXPECT_FALSE(ProjectSystem::hasAttribute(ProjectSystem::findConfiguration(app, "Debug"), "vendor_cleared"));
    // A property item that doesn't apply is passed over.
    EXPECT_EQ(system.value(app, "build_output_directory", "Debug"), "$(ProjectName) $(Configuration)");

    // A new file goes into its folder with its name; a file of that name
    // elsewhere is pointed to the entry's file; no folder means the project,
    // which files it by the folders' filters.
    const auto files = [&](ProjectElement *project) {
        std::string text;
        for (const char *name : {"startup", "vectors", "linker", "lost", "debug_only"}) {
            ProjectElement *file = system.findElementByName(project, name);
            text += file ? system.elementName(ProjectSystem::parent(file)) + ":" + *file->attribute("file_name") + " "
                         : "none ";
        }
        return text;
    };
    EXPECT_EQ(files(app), "System:beta_startup.s System:beta_vectors.s App:beta.ld none System:debug.c ");
    // Choosing again adds nothing twice.
    const int count = ProjectSystem::countFiles(app);
    system.setGroupValue(app, "Debug", board, "Beta");
    EXPECT_EQ(ProjectSystem::countFiles(app), count);

    // File items select by configuration, property items by property; a
    // project without the folder "System" gets only the folderless file.
    ProjectElement *fast = system.node("Fast");
    system.setGroupValue(fast, "Release", system.findGroupForNode(fast, "Debug", "Board", false), "Beta");
    EXPECT_EQ(files(fast), "none none Fast:beta.ld none none ");
    EXPECT_EQ(system.value(fast, "build_output_directory", "Release"), "fast-out");
}

// An unknown choice applies the default entry and stores the text.
TEST_F(PropertyGroups, AValueLineChoosesThroughTheGroup) {
    PropertyValueGroupValue line(app, board, "Debug", &system);
    EXPECT_EQ(line.value(), "Alpha");
    EXPECT_TRUE(line.isInherited());
    board->setDefaultValue("Beta");
    line.clone()->setValue("Omega");
    EXPECT_EQ(line.value(), "Omega");
    EXPECT_FALSE(line.isInherited());
    EXPECT_NE(system.findElementByName(app, "startup"), nullptr);
    // Without any default entry only the value is stored.
    board->setDefaultValue(std::nullopt);
    system.setGroupValue(app, "Release", board, "");
    EXPECT_EQ(ProjectSystem::getOwnPropertyValue(app, board, "Release"), "");
}

TEST_F(PropertyGroups, MacrosOfTheChosenEntries) {
    ProjectElement *main = system.file("main.c");
    // The values go in as they stand, and are expanded where they are used.
    MacroMap map{{"BoardName", "user"}};
    system.addGroupMacros(system.groupFileOf(main, "Release"), main, "Release", map);
    EXPECT_EQ(map, (MacroMap{{"BoardDir", "$(ProjectDir)/alpha"}, {"BoardName", "alpha"}}));
    EXPECT_EQ(system.expandProjectMacros(main, "$(BoardDir)/$(BoardName)", "Release"), dir / "alpha/alpha");
    // A later item replaces an earlier one.
    EXPECT_EQ(system.expandProjectMacros(main, "$(BoardName)", "Debug"), "alpha-debug");
    system.setPropertyValue(app, board, "Common", "Beta");
    EXPECT_EQ(system.expandProjectMacros(main, "$(BoardName):$(BoardDir)", "Debug"), "beta:$(BoardDir)");
    EXPECT_EQ(system.projectMacros(main, "Debug").at("BoardName"), "beta");
}

TEST_F(PropertyGroups, ProjectsListTheirGroups) {
    TestDirectory install;
    install.write("studio/targets/t/propertyGroups.xml",
                  R"(<g><group name="Library"><groupEntry name="x"/></group>
                        <group name="Board"><groupEntry name="library's"/></group></g>)");
    system.systemMacros.addSystemMacro("StudioDir", install / "studio", "");
    system.propertyGroupFiles().targetLibraries.scanned = false;
    const auto groupLines = [&](const std::string &project) {
        Strings names;
        for (const auto &line : system.getPropertyValues(system.node(project), "Debug"))
            if (dynamic_cast<PropertyValueGroupValue *>(line.get()))
                names.push_back(line->name() + "=" + line->value().value_or("(null)"));
        return spaced(names);
    };
    // One line per name, the winner's; none for another target.
    EXPECT_EQ(groupLines("App"), "Board=Alpha Clock=Fast ArmOnly=On NoDefines=(null) Library=(null)");
    // A Staging project doesn't take the libraries' groups.
    EXPECT_EQ(groupLines("Stage"), "Board=Alpha Clock=Fast ArmOnly=On NoDefines=(null)");
    EXPECT_EQ(groupLines("Plain"), "Library=(null) Board=(null)");
    system.code = 15;
    EXPECT_EQ(groupLines("Stage"), "Board=Alpha Clock=Fast HostOnly=On NoDefines=(null)");
}

TEST_F(PropertyGroups, TheGenericOptionFilesGroupsAreToolLinesOfCompilingProjects) {
    system.genericOptionsFileName = dir.write(
        "options.xml", R"(<options><group name="Runtime" default="Small"><groupEntry name="Small"/>
                          <groupEntry name="Full"/></group></options>)");
    const auto runtimeLine = [&](ProjectElement *node) {
        const PropertyValueList list = system.toolPropertyValues(node, "Debug");
        const PropertyValue *line = list.find("Runtime");
        return line && dynamic_cast<const PropertyValueGroupValue *>(line) ? line->value().value_or("(null)")
                                                                            : std::string("none");
    };
    EXPECT_EQ(runtimeLine(app), "Small");
    EXPECT_EQ(runtimeLine(system.node("Stage")), "none");
    EXPECT_EQ(runtimeLine(system.file("main.c")), "none");
}

} // namespace
