#include "project/project_test_tree.h"
#include "support/macro_expansion.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace {

using Strings = std::vector<std::string>;

PropertyClass textProperty(PropertyClass::Type type, std::optional<std::string> defaultValue = "def") {
    return PropertyClass("x", type, "", "", "", "", std::move(defaultValue));
}

// Every store of a file in a folder in a project in a solution holds x,
// named after where it stands; the group folder between has no store.
const char *const everyStore = R"(<solution Name="S">
  <configuration Name="Debug" x="sD" />
  <configuration Name="Common" x="sC" />
  <project Name="P">
    <configuration Name="Common" x="pC" />
    <configuration Name="Debug" x="pD" />
    <folder Name="F">
      <configuration Name="Debug" x="foD" />
      <configuration Name="Common" x="foC" />
      <folder Name="Group">
        <file file_name="a.c">
          <configuration Name="Debug" x="fD" />
          <configuration Name="Common" x="fC" />
        </file>
      </folder>
    </folder>
  </project>
</solution>)";

Strings traceText(TestProjectSystem &system, const PropertyTrace &trace) {
    Strings lines;
    for (const PropertyTraceRecord &record : trace)
        lines.push_back(record.value.value_or("(null)") + " " + record.configuration + " " +
                        (record.element ? system.elementName(record.element) : "-"));
    return lines;
}

TEST(PropertyValues, SearchOrderFromTheFileUpward) {
    TestProjectSystem system;
    system.load(everyStore);
    ProjectElement *file = ProjectSystem::findFileByPath(system.solution, "a.c");
    PropertyClass list = textProperty(PropertyClass::StringList);
    PropertyTrace trace;
    EXPECT_EQ(system.getPropertyValue(file, &list, "Debug", &trace), "sC;sD;pC;pD;foC;foD;fC;fD");
    EXPECT_EQ(traceText(system, trace),
              (Strings{"fD Debug a.c", "fC Common a.c", "foD Debug F", "foC Common F", "pD Debug P",
                       "pC Common P", "sD Debug S", "sC Common S"}));

    // A plain value stops at the first store, in the same order.
    PropertyClass text = textProperty(PropertyClass::String);
    const Strings expected = {"fD", "fC", "foD", "foC", "pD", "pC", "sD", "sC"};
    for (const std::string &value : expected) {
        EXPECT_EQ(system.getPropertyValue(file, &text, "Debug"), value);
        ProjectElement *store = nullptr;
        for (ProjectElement *e = file; e && !store; e = ProjectSystem::parent(e))
            for (const auto &entry : e->configurations)
                if (const std::string *x = entry.second->attribute("x"); x && *x == value)
                    store = entry.second;
        ASSERT_NE(store, nullptr);
        store->removeAttribute("x");
    }
    trace.clear();
    EXPECT_EQ(system.getPropertyValue(file, &text, "Debug", &trace), "def");
    EXPECT_EQ(traceText(system, trace), (Strings{"def  -"}));
}

TEST(PropertyValues, CommonIgnoresOtherConfigurationsAndInheritance) {
    TestProjectSystem system;
    system.load(R"(<solution Name="S">
  <configuration Name="Common" inherited_configurations="Debug" />
  <project Name="P">
    <configuration Name="Debug" x="debug" />
    <file file_name="a.c"><configuration Name="Debug" x="file" /></file>
  </project>
</solution>)");
    ProjectElement *file = ProjectSystem::findFileByPath(system.solution, "a.c");
    PropertyClass text = textProperty(PropertyClass::String);
    EXPECT_EQ(system.getPropertyValue(file, &text, "Common"), "def");
    EXPECT_EQ(system.getPropertyValue(file, &text, "Debug"), "file");
}

TEST(PropertyValues, InheritedConfigurationsComeBetweenTheOwnAndCommon) {
    TestProjectSystem system;
    system.load(R"(<solution Name="S">
  <configuration Name="ARM Flash Debug" inherited_configurations="ARM;;Flash" />
  <configuration Name="ARM" inherited_configurations="Base" />
  <project Name="P">
    <configuration Name="Common" x="common" />
    <configuration Name="Flash" x="flash" />
    <configuration Name="ARM" x="arm" />
    <configuration Name="Base" x="base" />
    <file file_name="a.c" />
  </project>
</solution>)");
    ProjectElement *project = system.node("P");
    ProjectElement *file = ProjectSystem::findFileByPath(project, "a.c");
    PropertyClass text = textProperty(PropertyClass::String);
    EXPECT_EQ(system.inheritedConfigurations(file, "ARM Flash Debug"), (Strings{"ARM", "Flash"}));
    EXPECT_EQ(system.getPropertyValue(file, &text, "ARM Flash Debug"), "arm");
    ProjectSystem::findConfiguration(project, "ARM")->removeAttribute("x");
    EXPECT_EQ(system.getPropertyValue(file, &text, "ARM Flash Debug"), "flash");
    ProjectSystem::findConfiguration(project, "Flash")->removeAttribute("x");
    // Inheritance isn't transitive: ARM's own list plays no part.
    EXPECT_EQ(system.getPropertyValue(file, &text, "ARM Flash Debug"), "common");
    EXPECT_EQ(system.getPropertyValue(file, &text, "ARM"), "base");

    PropertyClass list = textProperty(PropertyClass::StringList);
    ProjectSystem::findConfiguration(project, "ARM")->XMLElement::setAttribute("x", "arm");
    ProjectSystem::findConfiguration(project, "Flash")->XMLElement::setAttribute("x", "flash");
    system.addConfiguration(project, "ARM Flash Debug", ProjectSystem::PublicConfigurations)
        ->XMLElement::setAttribute("x", "own");
    // Common, the inherited names in reverse, then the configuration itself.
    EXPECT_EQ(system.getPropertyValue(file, &list, "ARM Flash Debug"), "common;flash;arm;own");
}

TEST(PropertyValues, ListsAndEmptyValues) {
    TestProjectSystem system;
    system.load(R"(<solution Name="S">
  <configuration Name="Common" s="solution" />
  <project Name="P">
    <configuration Name="Common" l="A" s="" />
    <file file_name="a.c"><configuration Name="Debug" l="B" /></file>
    <file file_name="b.c"><configuration Name="Debug" l="" /></file>
  </project>
  <project Name="Q">
    <configuration Name="Common" l="" />
    <file file_name="c.c"><configuration Name="Debug" l="X" /></file>
  </project>
</solution>)");
    PropertyClass list("l", PropertyClass::StringList, "", "", "", "", std::nullopt);
    PropertyClass text("s", PropertyClass::String, "", "", "", "", "def");
    ProjectElement *a = ProjectSystem::findFileByPath(system.solution, "a.c");
    ProjectElement *b = ProjectSystem::findFileByPath(system.solution, "b.c");
    ProjectElement *c = ProjectSystem::findFileByPath(system.solution, "c.c");
    EXPECT_EQ(system.getPropertyValue(a, &list, "Debug"), "A;B");
    EXPECT_EQ(system.getPropertyValue(b, &list, "Debug"), "A");
    EXPECT_EQ(system.getPropertyValue(c, &list, "Debug"), ";X");
    // An empty stored value hides the solution's and isn't null.
    EXPECT_EQ(system.getPropertyValue(a, &text, "Debug"), std::optional<std::string>(""));
    std::optional<std::string> value;
    EXPECT_TRUE(system.isPropertySet(a, &text, "Debug", value));
    EXPECT_EQ(value, "");
    // No store and no default: a null value.
    EXPECT_EQ(system.getPropertyValue(system.solution, &list, "Debug"), std::nullopt);
    EXPECT_FALSE(system.isPropertySet(system.solution, &list, "Debug", value));
    EXPECT_EQ(value, std::nullopt);
    EXPECT_EQ(system.getPropertyValue(a, nullptr, "Debug"), std::nullopt);
}

TEST(PropertyValues, DefaultHookComesBeforeTheClassDefault) {
    struct Hooked : TestProjectSystem {
        bool defaultPropertyValue(ProjectElement *element, const std::string &configuration,
                                  PropertyClass *property, std::string &value) override {
            if (property->name() != "hooked")
                return false;
            value = (element ? "node " : "none ") + configuration;
            return true;
        }
    } system;
    PropertyClass hooked("hooked", PropertyClass::String, "", "", "", "", "def");
    PropertyClass plain = textProperty(PropertyClass::String);
    PropertyTrace trace;
    EXPECT_EQ(system.getPropertyValue(nullptr, &hooked, "Debug", &trace), "none Debug");
    EXPECT_EQ(traceText(system, trace), (Strings{"none Debug  -"}));
    EXPECT_EQ(system.getPropertyValue(nullptr, &plain, "Debug"), "def");
    std::optional<std::string> value;
    EXPECT_FALSE(system.isPropertySet(nullptr, &hooked, "Debug", value));
    EXPECT_EQ(value, "none Debug");
}

TEST(PropertyValues, OwnValues) {
    TestProjectSystem system;
    system.load(everyStore);
    ProjectElement *folder = system.node("F");
    PropertyClass text = textProperty(PropertyClass::String);
    EXPECT_EQ(ProjectSystem::getOwnPropertyValue(folder, &text, "Debug"), "foD");
    EXPECT_EQ(ProjectSystem::getOwnPropertyValue(system.node("Group"), &text, "Debug"), std::nullopt);
    EXPECT_EQ(ProjectSystem::getOwnPropertyValue(folder, &text, "Release"), std::nullopt);
}

TEST(PropertyValues, PropertyLists) {
    TestProjectSystem system;
    system.load(R"(<solution Name="S"><project Name="App">
  <configuration Name="Common" raw="a;;b\;c;$(Configuration)/$(Empty:);say &quot;x&quot;;d\" />
  <configuration Name="Debug" empty="" />
</project></solution>)");
    ProjectElement *project = system.node("App");
    PropertyClass raw("raw", PropertyClass::String, "", "", "", "", std::nullopt);
    PropertyClass empty("empty", PropertyClass::String, "", "", "", "", "x");
    EXPECT_EQ(system.getPropertyList("", project, &raw, "Debug", false, false, false),
              (Strings{"a", "b\\", "c", "$(Configuration)/$(Empty:)", "say \"x\"", "d\\"}));
    EXPECT_EQ(system.getPropertyList("-D", project, &raw, "Debug", true, true, true),
              (Strings{"-Da", "-Db;c", "-DDebug/", "-Dsay \\\"x\\\"", "-Dd\\"}));
    EXPECT_EQ(system.getPropertyList("-D", project, &empty, "Debug", true, true, true), Strings{});

    PropertyClass only("only", PropertyClass::String, "", "", "", "", "$(Nothing:);b");
    // An item that expands to nothing stays as an empty item.
    EXPECT_EQ(system.getPropertyList(">", project, &only, "Debug", true, false, false),
              (Strings{">", ">b"}));
}

TEST(PropertyValues, ExpandedValuesSeeTheProjectMacros) {
    TestProjectSystem system;
    system.load(R"(<solution Name="S"><project Name="App">
  <configuration Name="Common" project_directory="app" build_intermediate_directory=""
     build_output_directory="" />
  <folder Name="Outer"><folder Name="Inner"><file file_name="src/main.c" /></folder></folder>
</project></solution>)");
    ProjectElement *file = ProjectSystem::findFileByPath(system.solution, "src/main.c");
    PropertyClass text("t", PropertyClass::String, "", "", "", "",
                       "$(ProjectName)|$(FolderName)|$(FolderPath)|$(InputName)|$(RelInputDir)");
    EXPECT_EQ(system.getExpandedPropertyValue(file, &text, "Debug"), "App|Inner|Outer/Inner|main|src");
    EXPECT_EQ(system.expandProjectMacros(file, "plain text", "Debug"), "plain text");

    const MacroMap map = system.projectMacros(file, "Debug");
    EXPECT_EQ(map.at("ProjectNodeName"), "main.c");
    EXPECT_EQ(map.at("ProjectDir"), "/work/s/app");
    EXPECT_EQ(map.at("SolutionDir"), "/work/s");
    EXPECT_EQ(map.at("SolutionName"), "s");
    EXPECT_EQ(map.at("SolutionFileName"), "s.tbp");
    EXPECT_EQ(map.at("SolutionPath"), "/work/s/s.tbp");
    EXPECT_EQ(map.at("SolutionExt"), "tbp");
    EXPECT_EQ(map.at("InputDir"), "/work/s/app/src");
    EXPECT_EQ(map.at("InputFileName"), "main.c");
    EXPECT_EQ(map.at("InputExt"), "c");
    EXPECT_EQ(map.at("InputPath"), "/work/s/app/src/main.c");
    EXPECT_EQ(map.at("InputPathHash"), macroHashText("/work/s/app/src/main.c"));
    EXPECT_EQ(map.at("RelInputPath"), "src/main.c");
    EXPECT_EQ(map.at("Configuration"), "Debug");
    EXPECT_EQ(map.at("ConfigurationHash"), macroHashText("Debug"));
    EXPECT_EQ(map.at("OBJ"), ".o");
    EXPECT_EQ(map.at("LIB"), ".a");
    EXPECT_EQ(map.at("PackageExt"), "tbq");
    // Empty directories are the project directory.
    EXPECT_EQ(map.at("IntDir"), ".");
    EXPECT_EQ(map.at("OutDir"), ".");

    ProjectElement *project = system.node("App");
    const MacroMap projectMap = system.projectMacros(project, "Debug");
    EXPECT_EQ(projectMap.count("InputPath"), 0u);
    EXPECT_EQ(projectMap.at("RelInputDir"), ".");
    EXPECT_EQ(projectMap.count("FolderName"), 0u);
}

TEST(PropertyValues, ProjectMacroOrderAndCache) {
    TestProjectSystem system;
    system.load(R"x(<solution Name="S"><project Name="App">
  <configuration Name="Common" macros="Configuration=mine;Sub=out\;x;Mine=$(Configuration)"
     build_root_output_directory="/o" build_output_directory="/o/$(Configuration)/bin"
     build_intermediate_directory="$(OutDir)/obj" />
</project></solution>)x");
    ProjectElement *project = system.node("App");
    MacroMap map = system.projectMacros(project, "Release");
    // Built-in names beat the user's.
    EXPECT_EQ(map.at("Configuration"), "Release");
    EXPECT_EQ(map.at("Sub"), "out;x");
    EXPECT_EQ(map.at("Mine"), "$(Configuration)");
    EXPECT_EQ(map.at("OutDir"), "/o/Release/bin");
    EXPECT_EQ(map.at("RootRelativeOutDir"), "Release/bin");
    // IntDir is worked out before OutDir exists.
    EXPECT_EQ(map.at("IntDir"), "$(OutDir)/obj");

    system.setMacroCacheEnabled(true);
    EXPECT_EQ(system.projectMacros(project, "Release").at("OutDir"), "/o/Release/bin");
    system.setPropertyValue(project, system.nodeProperties.buildOutputDirectory, "Common", "/p");
    EXPECT_EQ(system.projectMacros(project, "Release").at("OutDir"), "/p");
    EXPECT_EQ(system.projectMacros(project, "Debug").at("Configuration"), "Debug");
}

TEST(PropertyValues, SettingValues) {
    struct Listener : PropertyChangeListener, ProjectSystemObserver {
        void propertyChanged(ProjectElement *element, const std::string &configuration,
                             PropertyClass *property) override {
            heard.push_back(configuration + ":" + property->name() + ":" +
                            (element ? element->tagName : ""));
        }
        Strings heard;
    } listener;
    TestProjectSystem system;
    system.load(R"(<solution Name="S"><project Name="App"><file file_name="a.c" /></project></solution>)");
    system.observer = &listener;
    system.propertyListeners.push_back(&listener);
    ProjectElement *project = system.node("App");
    ProjectElement *file = ProjectSystem::findFileByPath(project, "a.c");
    PropertyClass *quietly = system.nodeProperties.buildQuietly;

    system.absoluteFilePath(file, "Debug");
    ASSERT_TRUE(file->pathsValid);
    system.setPropertyValue(project, quietly, "Debug", "Yes");
    ProjectElement *store = ProjectSystem::findConfiguration(project, "Debug");
    ASSERT_NE(store, nullptr);
    EXPECT_FALSE(store->hasAttribute("hidden"));
    EXPECT_EQ(*store->attribute("build_quietly"), "Yes");
    EXPECT_TRUE(store->modified);
    EXPECT_FALSE(file->pathsValid);
    EXPECT_EQ(listener.heard, (Strings{"Debug:build_quietly:project", "Debug:build_quietly:project"}));
    ASSERT_EQ(system.undoList.size(), 1u);
    EXPECT_EQ(system.undoList.front().oldValue, std::nullopt);
    EXPECT_FALSE(system.undoList.front().oldModified);

    system.setPropertyValue(project, quietly, "Debug", "No");
    ASSERT_EQ(system.undoList.size(), 2u);
    EXPECT_EQ(system.undoList.front().oldValue, "Yes");
    EXPECT_TRUE(system.undoList.front().oldModified);

    system.clearPropertyValue(project, quietly, "Debug");
    EXPECT_FALSE(store->hasAttribute("build_quietly"));
    EXPECT_EQ(system.undoList.size(), 3u);
    system.clearPropertyValue(project, quietly, "Release");
    EXPECT_EQ(system.undoList.size(), 3u);

    // While a load runs nothing is tracked.
    system.trackingChanges = false;
    ProjectSystem::clearModified(system.solution, true);
    system.absoluteFilePath(file, "Debug");
    system.setPropertyValue(file, quietly, "Release", "Yes");
    EXPECT_FALSE(ProjectSystem::findConfiguration(file, "Release")->modified);
    EXPECT_TRUE(file->pathsValid);
    EXPECT_EQ(system.undoList.size(), 3u);
}

// While a build's caches are on, a property that no store of the tree holds
// is answered by its default without the walk; any write brings the walk
// back.
TEST(PropertyValues, ABuildSeesValuesStoredAnywhereAndWrittenDuringIt) {
    TestProjectSystem system;
    system.load(everyStore);
    ProjectElement *file = ProjectSystem::findFileByPath(system.solution, "a.c");
    ProjectElement *folder = ProjectSystem::parent(ProjectSystem::parent(file));
    PropertyClass stored = textProperty(PropertyClass::String);
    PropertyClass y("y", PropertyClass::String, "", "", "", "", "none");
    PropertyClass z("z", PropertyClass::String, "", "", "", "", "none");
    system.setMacroCacheEnabled(true);
    EXPECT_EQ(system.getPropertyValue(file, &stored, "Debug"), "fD");
    EXPECT_EQ(system.getPropertyValue(folder, &stored, "Release"), "foC");
    EXPECT_EQ(system.getPropertyValue(file, &y, "Debug"), "none");

    system.setPropertyValue(folder, &y, "Common", "set");
    EXPECT_EQ(system.getPropertyValue(file, &y, "Debug"), "set");
    EXPECT_EQ(system.getPropertyValue(file, &z, "Debug"), "none");
    system.setAttribute(ProjectElement::from(folder->firstChild), "z", "raw");
    EXPECT_EQ(system.getPropertyValue(file, &z, "Debug"), "raw");
    system.clearPropertyValue(folder, &y, "Common");
    EXPECT_EQ(system.getPropertyValue(file, &y, "Debug"), "none");
    system.setMacroCacheEnabled(false);
}

} // namespace
