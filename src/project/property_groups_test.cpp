#include "project/property_group_files.h"

#include "project/project_system_xml.h"
#include "project/project_test_tree.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

namespace {

using Strings = std::vector<std::string>;

// A toolchain with the standard table, a target code of its own, and one
// property name of its own that stands for a standard one.
class GroupSystem : public StandardTestSystem {
public:
    std::optional<std::string> value(ProjectElement *element, const std::string &name,
                                      const std::string &configuration) {
        return getPropertyValue(element, propertyClasses.propertyClass(name), configuration);
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
      <cdefine name="BOARD_ALPHA"/>
      <cdefine name="CLOCK" value="8000000"/>
      <cdefine name="EMPTY_VALUE" value=""/>
      <cinclude value="$(ProjectDir)/alpha/include"/>
      <cinclude value="debug/$(Configuration)" configuration="Debug"/>
      <cinclude value="everywhere" configuration="Common"/>
      <cdefine name="FAST" property="fast_mode" property_value="Yes"/>
      <cdefine name="QUIET" property="quiet" property_value="No"/>
      <cdefine name="SLOW_CLOCK" property="Clock" property_value="Slow"/>
      <library name="alpha_bsp"/>
      <package name="AlphaPkg"/>
      <macro name="BoardDir" value="$(ProjectDir)/alpha"/>
      <macro name="BoardName" value="alpha"/>
      <macro name="BoardName" value="alpha-debug" configuration="Debug"/>
    </groupEntry>
    <groupEntry name="Beta">
      <cdefine name="BOARD_BETA"/>
      <property name="quiet" value="No"/>
      <property name="build_intermediate_directory" value=""/>
      <property name="vendor_setting" value="v" configuration="Release"/>
      <property name="vendor_cleared" value=""/>
      <property name="build_output_directory" value="fast-out" property="fast_mode" property_value="Yes"/>
      <file name="startup" file_name="beta_startup.s" folder="System"/>
      <file name="vectors" file_name="beta_vectors.s" folder="System"/>
      <file name="linker" file_name="beta.ld"/>
      <file name="lost" file_name="lost.c" folder="NoSuchFolder"/>
      <file name="debug_only" file_name="debug.c" folder="System" configuration="Debug"/>
      <macro name="BoardName" value="beta"/>
    </groupEntry>
  </group>
  <group name="Clock" default="Fast"><groupEntry name="Fast"/><groupEntry name="Slow"/></group>
  <group name="ArmOnly" target="8" default="On"><groupEntry name="On"><cdefine name="ARM_ONLY"/></groupEntry></group>
  <group name="HostOnly" target="15" default="On"><groupEntry name="On"><cdefine name="HOST_ONLY"/></groupEntry></group>
  <group name="NoDefines"><groupEntry name="x"><library name="x"/></groupEntry></group>
</propertyGroups>)x";

const char *const solutionText = R"(<solution Name="S">
  <configuration Name="Debug" />
  <configuration Name="Release" />
  <configuration Name="ARM Debug" inherited_configurations="ARM;Debug" />
  <project Name="App">
    <configuration Name="Common" project_type="Executable" is_cpp_project="No"
                   property_groups_file_path="$(ProjectDir)/groups.xml" build_intermediate_directory="int" />
    <folder Name="Src">
      <folder Name="System" filter="s">
        <file file_name="vectors.s" Name="vectors" />
      </folder>
      <file file_name="main.c" />
    </folder>
  </project>
  <project Name="Fast">
    <configuration Name="Common" project_type="Executable" property_groups_file_path="groups.xml"
                   fast_mode="Yes" build_quietly="No" Clock="Slow" />
  </project>
  <project Name="Stage">
    <configuration Name="Common" project_type="Staging" property_groups_file_path="groups.xml" />
  </project>
  <project Name="Plain">
    <configuration Name="Common" project_type="Executable" />
  </project>
</solution>)";

struct Fixture {
    TestDirectory dir;
    GroupSystem system;
    Fixture() {
        dir.write("groups.xml", groupsFile);
        system.load(solutionText, dir / "s.tbp");
    }
    Strings includes(const std::string &name, const std::string &configuration = "Release") {
        Strings list{"first"};
        system.groupIncludes(system.node(name), configuration, list);
        return list;
    }
    Strings defines(const std::string &name, const std::string &configuration = "Release") {
        Strings list;
        system.groupDefines(system.node(name), configuration, list);
        return list;
    }
    PropertyValueGroupClass *board(const std::string &project = "App") {
        return system.findGroupForNode(system.node(project), "Debug", "Board", false);
    }
};

TEST(PropertyGroups, TheDefaultEntryContributesWithoutASelection) {
    Fixture f;
    EXPECT_EQ(f.includes("App"), (Strings{"first", "-I" + f.dir.path() + "/alpha/include", "-Ieverywhere"}));
    EXPECT_EQ(f.defines("App"),
              (Strings{"-DBOARD_ALPHA", "-DCLOCK=8000000", "-DEMPTY_VALUE", "-DARM_ONLY"}));
    Strings libraries, packages;
    f.system.groupLibraries(f.system.node("App"), "Release", libraries);
    f.system.groupPackages(f.system.node("App"), "Release", packages);
    EXPECT_EQ(libraries, (Strings{"alpha_bsp"}));
    EXPECT_EQ(packages, (Strings{"AlphaPkg"}));
    // A node without a group file has nothing to contribute.
    EXPECT_TRUE(f.defines("Plain").empty());
}

TEST(PropertyGroups, ItemsSelectByConfigurationAndProperty) {
    Fixture f;
    const std::string alpha = "-I" + f.dir.path() + "/alpha/include";
    // "ARM Debug" inherits "Debug".
    EXPECT_EQ(f.includes("App", "Debug"), (Strings{"first", alpha, "-Idebug/Debug", "-Ieverywhere"}));
    EXPECT_EQ(f.includes("App", "ARM Debug"),
              (Strings{"first", alpha, "-Idebug/ARM Debug", "-Ieverywhere"}));
    // A property that no table knows is read as stored; a name the toolchain
    // resolves is its property's; a group's value is its selection.
    EXPECT_EQ(f.defines("Fast"), (Strings{"-DBOARD_ALPHA", "-DCLOCK=8000000", "-DEMPTY_VALUE",
                                          "-DFAST", "-DQUIET", "-DSLOW_CLOCK", "-DARM_ONLY"}));
}

TEST(PropertyGroups, TheStoredSelectionDecides) {
    Fixture f;
    ProjectElement *app = f.system.node("App");
    f.system.setPropertyValue(app, f.board(), "Release", "Beta");
    EXPECT_EQ(f.defines("App"), (Strings{"-DBOARD_BETA", "-DARM_ONLY"}));
    EXPECT_EQ(f.includes("App"), (Strings{"first"}));
    // A selection that no entry has contributes nothing, not the default.
    f.system.setPropertyValue(app, f.board(), "Release", "Omega");
    EXPECT_EQ(f.defines("App"), (Strings{"-DARM_ONLY"}));
}

TEST(PropertyGroups, GroupsOfAnotherTargetAreNotSeen) {
    Fixture f;
    f.system.code = 15;
    EXPECT_EQ(f.defines("App"),
              (Strings{"-DBOARD_ALPHA", "-DCLOCK=8000000", "-DEMPTY_VALUE", "-DHOST_ONLY"}));
    EXPECT_EQ(f.system.findGroupForNode(f.system.node("App"), "Debug", "ArmOnly", true), nullptr);
    EXPECT_NE(f.system.findGroupForNode(f.system.node("App"), "Debug", "HostOnly", true), nullptr);
}

TEST(PropertyGroups, NoneNamesNoFileAndARelativeNameIsTheProjects) {
    Fixture f;
    ProjectElement *app = f.system.node("App");
    PropertyClass *path = f.system.nodeProperties.propertyGroupsFilePath;
    EXPECT_EQ(f.system.groupFileOf(app, "Debug")->fileName, f.dir / "groups.xml");
    EXPECT_EQ(f.system.groupFileOf(f.system.node("Fast"), "Debug")->fileName, f.dir / "groups.xml");
    f.system.setPropertyValue(app, path, "Common", "None");
    EXPECT_EQ(f.system.groupFileOf(app, "Debug"), nullptr);
    EXPECT_EQ(f.board(), nullptr);
    EXPECT_TRUE(f.defines("App").empty());
    // The default is "None" too.
    EXPECT_EQ(f.system.groupFileOf(f.system.node("Plain"), "Debug"), nullptr);
}

TEST(PropertyGroups, EntriesAndDefines) {
    Fixture f;
    PropertyValueGroupClass *board = f.board();
    ASSERT_NE(board, nullptr);
    EXPECT_EQ(*ProjectSystem::groupEntry(board, "Beta")->attribute("name"), "Beta");
    EXPECT_EQ(ProjectSystem::groupEntry(board, "beta"), nullptr);
    EXPECT_EQ(ProjectSystem::groupEntry(nullptr, "Beta"), nullptr);
    EXPECT_TRUE(ProjectSystem::hasDefines(board));
    EXPECT_FALSE(ProjectSystem::hasDefines(
        f.system.findGroupForNode(f.system.node("App"), "Debug", "NoDefines", false)));
}

TEST(PropertyGroups, ChoosingAnEntrySetsItsPropertiesAndAddsItsFiles) {
    Fixture f;
    GroupSystem &system = f.system;
    ProjectElement *app = system.node("App");
    ProjectElement *common = ProjectSystem::findConfiguration(app, "Common");
    system.setPropertyValue(app, system.property("build_quietly"), "Debug", "Yes");
    system.setPropertyValue(app, system.property("build_intermediate_directory"), "Debug", "x");
    system.setAttribute(ProjectSystem::findConfiguration(app, "Debug"), "vendor_cleared", "old");

    system.setGroupValue(app, "Debug", f.board(), "Beta");
    EXPECT_EQ(system.value(app, "Board", "Debug"), std::nullopt);  // not a class of the map
    EXPECT_EQ(ProjectSystem::getOwnPropertyValue(app, f.board(), "Debug"), "Beta");
    // "quiet" is the toolchain's name for build_quietly.
    EXPECT_EQ(ProjectSystem::getOwnPropertyValue(app, system.property("build_quietly"), "Debug"), "No");
    // An empty value removes the stored one, and the Common value shows.
    EXPECT_EQ(ProjectSystem::getOwnPropertyValue(app, system.property("build_intermediate_directory"), "Debug"),
              std::nullopt);
    EXPECT_EQ(system.value(app, "build_intermediate_directory", "Debug"), "int");
    // Unknown names go straight to the configuration element named.
    EXPECT_EQ(ProjectSystem::attribute(ProjectSystem::findConfiguration(app, "Release"), "vendor_setting"), "v");
    EXPECT_FALSE(ProjectSystem::hasAttribute(ProjectSystem::findConfiguration(app, "Debug"), "vendor_cleared"));
    // A property item that doesn't apply is passed over.
    EXPECT_EQ(system.value(app, "build_output_directory", "Debug"), "$(ProjectName) $(Configuration)");
    EXPECT_FALSE(common->hasAttribute("vendor_setting"));

    // A new file goes into its folder with its name; a file of that name
    // elsewhere is pointed to the entry's file; no folder means the project,
    // which files it by the folders' filters.
    ProjectElement *system_ = system.node("System");
    ProjectElement *startup = system.findElementByName(app, "startup");
    ASSERT_NE(startup, nullptr);
    EXPECT_EQ(ProjectSystem::parent(startup), system_);
    EXPECT_EQ(ProjectSystem::attribute(startup, "file_name"), "beta_startup.s");
    ProjectElement *vectors = system.findElementByName(app, "vectors");
    EXPECT_EQ(ProjectSystem::attribute(vectors, "file_name"), "beta_vectors.s");
    ProjectElement *linker = system.findElementByName(app, "linker");
    ASSERT_NE(linker, nullptr);
    EXPECT_EQ(ProjectSystem::parent(linker), app);
    EXPECT_EQ(system.findElementByName(app, "lost"), nullptr);
    EXPECT_NE(system.findElementByName(app, "debug_only"), nullptr);

    // Choosing again adds nothing twice.
    const int files = ProjectSystem::countFiles(app);
    system.setGroupValue(app, "Debug", f.board(), "Beta");
    EXPECT_EQ(ProjectSystem::countFiles(app), files);
}

TEST(PropertyGroups, FileItemsSelectByConfigurationAndPropertyItemsByProperty) {
    Fixture f;
    GroupSystem &system = f.system;
    ProjectElement *fast = system.node("Fast");
    system.setGroupValue(fast, "Release", f.board("Fast"), "Beta");
    // The project has no folder "System": only the folderless file is added.
    EXPECT_NE(system.findElementByName(fast, "linker"), nullptr);
    EXPECT_EQ(system.findElementByName(fast, "startup"), nullptr);
    EXPECT_EQ(system.value(fast, "build_output_directory", "Release"), "fast-out");

    ProjectElement *app = system.node("App");
    system.setGroupValue(app, "Release", f.board(), "Beta");
    EXPECT_EQ(system.findElementByName(app, "debug_only"), nullptr);
    EXPECT_NE(system.findElementByName(app, "startup"), nullptr);
}

TEST(PropertyGroups, AnUnknownChoiceAppliesTheDefaultEntryAndStoresTheText) {
    Fixture f;
    GroupSystem &system = f.system;
    ProjectElement *app = system.node("App");
    PropertyValueGroupClass *board = f.board();
    // The default entry has no property or file items, so nothing but the
    // value changes; with a default of Beta its items apply.
    const int files = ProjectSystem::countFiles(app);
    system.setGroupValue(app, "Debug", board, "Omega");
    EXPECT_EQ(ProjectSystem::getOwnPropertyValue(app, board, "Debug"), "Omega");
    EXPECT_EQ(ProjectSystem::countFiles(app), files);
    board->setDefaultValue("Beta");
    system.setGroupValue(app, "Debug", board, "Omega");
    EXPECT_NE(system.findElementByName(app, "startup"), nullptr);
    // Without any default entry only the value is stored.
    board->setDefaultValue(std::nullopt);
    system.setGroupValue(app, "Release", board, "");
    EXPECT_EQ(ProjectSystem::getOwnPropertyValue(app, board, "Release"), "");
}

TEST(PropertyGroups, AValueLineChoosesThroughTheGroup) {
    Fixture f;
    ProjectElement *app = f.system.node("App");
    PropertyValueGroupValue line(app, f.board(), "Debug", &f.system);
    EXPECT_EQ(line.value(), "Alpha");
    EXPECT_TRUE(line.isInherited());
    std::unique_ptr<PropertyValue> copy = line.clone();
    copy->setValue("Beta");
    EXPECT_EQ(line.value(), "Beta");
    EXPECT_FALSE(line.isInherited());
    EXPECT_NE(f.system.findElementByName(app, "startup"), nullptr);
}

TEST(PropertyGroups, MacrosOfTheChosenEntries) {
    Fixture f;
    GroupSystem &system = f.system;
    ProjectElement *main = ProjectSystem::findFileByPath(system.solution, "main.c");
    ASSERT_NE(main, nullptr);
    // The values go in as they stand, and are expanded where they are used.
    MacroMap map{{"BoardName", "user"}};
    system.addGroupMacros(system.groupFileOf(main, "Release"), main, "Release", map);
    EXPECT_EQ(map, (MacroMap{{"BoardDir", "$(ProjectDir)/alpha"}, {"BoardName", "alpha"}}));
    EXPECT_EQ(system.expandProjectMacros(main, "$(BoardDir)/$(BoardName)", "Release"),
              f.dir.path() + "/alpha/alpha");
    // A later item replaces an earlier one.
    EXPECT_EQ(system.expandProjectMacros(main, "$(BoardName)", "Debug"), "alpha-debug");
    system.setPropertyValue(system.node("App"), f.board(), "Common", "Beta");
    EXPECT_EQ(system.expandProjectMacros(main, "$(BoardName):$(BoardDir)", "Debug"),
              "beta:$(BoardDir)");
    EXPECT_EQ(system.projectMacros(main, "Debug").at("BoardName"), "beta");
}

TEST(PropertyGroups, ProjectsListTheirGroups) {
    TestDirectory install;
    install.write("studio/targets/t/propertyGroups.xml",
                  R"(<g><group name="Library"><groupEntry name="x"/></group>
                        <group name="Board"><groupEntry name="library's"/></group></g>)");
    Fixture f;
    f.system.systemMacros.addSystemMacro("StudioDir", install / "studio", "");
    f.system.propertyGroupFiles().targetLibraries.scanned = false;
    const auto groupLines = [&](const std::string &project) {
        Strings names;
        for (const auto &line : f.system.getPropertyValues(f.system.node(project), "Debug"))
            if (dynamic_cast<PropertyValueGroupValue *>(line.get()))
                names.push_back(line->name() + "=" + line->value().value_or("(null)"));
        return names;
    };
    // One line per name, the winner's; none for another target.
    EXPECT_EQ(groupLines("App"), (Strings{"Board=Alpha", "Clock=Fast", "ArmOnly=On",
                                          "NoDefines=(null)", "Library=(null)"}));
    // A Staging project doesn't take the libraries' groups.
    EXPECT_EQ(groupLines("Stage"),
              (Strings{"Board=Alpha", "Clock=Fast", "ArmOnly=On", "NoDefines=(null)"}));
    EXPECT_EQ(groupLines("Plain"), (Strings{"Library=(null)", "Board=(null)"}));
    f.system.code = 15;
    EXPECT_EQ(groupLines("Stage"),
              (Strings{"Board=Alpha", "Clock=Fast", "HostOnly=On", "NoDefines=(null)"}));
}

TEST(PropertyGroups, TheGenericOptionFilesGroupsAreToolLinesOfCompilingProjects) {
    Fixture f;
    f.system.genericOptionsFileName = f.dir.write(
        "options.xml", R"(<options><group name="Runtime" default="Small"><groupEntry name="Small"/>
                          <groupEntry name="Full"/></group></options>)");
    const auto runtimeLine = [&](const std::string &name) {
        const PropertyValueList list = f.system.toolPropertyValues(f.system.node(name), "Debug");
        const PropertyValue *line = list.find("Runtime");
        return line && dynamic_cast<const PropertyValueGroupValue *>(line)
                   ? line->value().value_or("(null)")
                   : std::string("none");
    };
    EXPECT_EQ(runtimeLine("App"), "Small");
    EXPECT_EQ(runtimeLine("Stage"), "none");
    EXPECT_EQ(runtimeLine("main.c"), "none");
}

} // namespace
