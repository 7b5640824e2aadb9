#include "project/project_test_tree.h"
#include "project/property_value.h"
#include "support/text_split.h"

#include <gtest/gtest.h>

namespace {

PropertyClass textProperty(PropertyClass::Type type, std::optional<std::string> defaultValue = "def") {
    return PropertyClass("x", type, "", "", "", "", std::move(defaultValue));
}

// Every store of a file in a folder in a project in a solution holds x,
// named after where it stands; the group folder between has no store.
const char *const everyStore = R"(<solution Name="S">
  <configuration Name="Debug" x="sD" /><configuration Name="Common" x="sC" />
  <project Name="P"><configuration Name="Common" x="pC" /><configuration Name="Debug" x="pD" />
    <folder Name="F"><configuration Name="Debug" x="foD" /><configuration Name="Common" x="foC" />
      <folder Name="Group">
        <file file_name="a.c"><configuration Name="Debug" x="fD" /><configuration Name="Common" x="fC" /></file>
      </folder>
    </folder>
  </project>
</solution>)";

std::string traceText(TestProjectSystem &system, const PropertyTrace &trace) {
    Strings lines;
    for (const PropertyTraceRecord &record : trace)
        lines.push_back(record.value.value_or("(null)") + " " + record.configuration + " " +
                        (record.element ? system.elementName(record.element) : "-"));
    return spaced(lines);
}

TEST(PropertyValues, SearchOrderFromTheFileUpward) {
    TestProjectSystem system;
    system.load(everyStore);
    ProjectElement *file = system.file("a.c");
    PropertyClass list = textProperty(PropertyClass::StringList);
    PropertyTrace trace;
    // A list joins every store, the furthest first.
    EXPECT_EQ(system.getPropertyValue(file, &list, "Debug", &trace), "sC;sD;pC;pD;foC;foD;fC;fD");
    EXPECT_EQ(traceText(system, trace), "fD Debug a.c fC Common a.c foD Debug F foC Common F pD Debug P "
                                        "pC Common P sD Debug S sC Common S");
    // A plain value stops at the first store; without any, the default.
    PropertyClass text = textProperty(PropertyClass::String);
    EXPECT_EQ(system.getPropertyValue(file, &text, "Debug"), "fD");
    EXPECT_EQ(system.getPropertyValue(system.node("Group"), &text, "Release"), "foC");
    PropertyClass other("y", PropertyClass::String, "", "", "", "", "def");
    trace.clear();
    EXPECT_EQ(system.getPropertyValue(file, &other, "Debug", &trace), "def");
    EXPECT_EQ(traceText(system, trace), "def  -");

    ProjectElement *folder = system.node("F");

    // While a build's caches are on, a property that no store of the tree
    // holds is answered by its default without the walk; any write, through
    // the model or not, brings the walk back.
    PropertyClass z("z", PropertyClass::String, "", "", "", "", "none");
    system.setMacroCacheEnabled(true);
    EXPECT_EQ(system.getPropertyValue(file, &text, "Debug"), "fD");
    EXPECT_EQ(system.getPropertyValue(file, &other, "Debug"), "def");
    system.setPropertyValue(folder, &other, "Common", "set");
    EXPECT_EQ(system.getPropertyValue(file, &other, "Debug"), "set");
    EXPECT_EQ(system.getPropertyValue(file, &z, "Debug"), "none");
    system.setAttribute(ProjectElement::from(folder->firstChild), "z", "raw");
    EXPECT_EQ(system.getPropertyValue(file, &z, "Debug"), "raw");
    system.clearPropertyValue(folder, &other, "Common");
    EXPECT_EQ(system.getPropertyValue(file, &other, "Debug"), "def");
    system.setMacroCacheEnabled(false);
}

TEST(PropertyValues, InheritedConfigurationsComeBetweenTheOwnAndCommon) {
    TestProjectSystem system;
    system.load(R"(<solution Name="S"><configuration Name="Common" inherited_configurations="Flash" />
  <configuration Name="ARM Flash Debug" inherited_configurations="ARM;;Flash" />
  <configuration Name="ARM" inherited_configurations="Base" />
  <project Name="P"><configuration Name="Common" x="common" /><configuration Name="Flash" x="flash" />
    <configuration Name="ARM" x="arm" /><configuration Name="Base" x="base" /><file file_name="a.c" /></project>
</solution>)");
    ProjectElement *project = system.node("P");
    ProjectElement *file = system.file("a.c");
    PropertyClass text = textProperty(PropertyClass::String);
    EXPECT_EQ(system.inheritedConfigurations(file, "ARM Flash Debug"), (Strings{"ARM", "Flash"}));
    EXPECT_EQ(system.getPropertyValue(file, &text, "ARM Flash Debug"), "arm");
    // "Common" ignores inheritance.
    EXPECT_EQ(system.getPropertyValue(file, &text, "Common"), "common");
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

TEST(PropertyValues, ListsEmptyValuesTheDefaultHookAndItemLists) {
    struct Hooked : TestProjectSystem {
        bool defaultPropertyValue(ProjectElement *element, const std::string &configuration, PropertyClass *property,
                                  std::string &value) override {
            if (property->name() != "hooked")
                return false;
            value = (element ? "node " : "none ") + configuration;
            return true;
        }
    } system;
    system.load(R"(<solution Name="S"><configuration Name="Common" s="solution" />
  <project Name="P"><configuration Name="Common" l="A" s="" empty=""
      raw="a;;b\;c;$(Configuration)/$(Empty:);say &quot;x&quot;;d\" />
    <file file_name="a.c"><configuration Name="Debug" l="B" /></file>
    <file file_name="b.c"><configuration Name="Debug" l="" /></file></project>
  <project Name="Q"><configuration Name="Common" l="" />
    <file file_name="c.c"><configuration Name="Debug" l="X" /></file></project>
</solution>)");
    PropertyClass list("l", PropertyClass::StringList, "", "", "", "", std::nullopt);
    PropertyClass text("s", PropertyClass::String, "", "", "", "", "def");
    ProjectElement *a = system.file("a.c");
    EXPECT_EQ(system.getPropertyValue(a, &list, "Debug"), "A;B");
    EXPECT_EQ(system.getPropertyValue(system.file("b.c"), &list, "Debug"), "A");
    EXPECT_EQ(system.getPropertyValue(system.file("c.c"), &list, "Debug"), ";X");
    // An empty stored value hides the solution's and isn't null.
    std::optional<std::string> value;
    EXPECT_TRUE(system.isPropertySet(a, &text, "Debug", value));
    EXPECT_EQ(value, "");
    // No store and no default: a null value.
    EXPECT_EQ(system.getPropertyValue(system.solution, &list, "Debug"), std::nullopt);
    EXPECT_FALSE(system.isPropertySet(system.solution, &list, "Debug", value));
    EXPECT_EQ(value, std::nullopt);
    EXPECT_EQ(system.getPropertyValue(a, nullptr, "Debug"), std::nullopt);

    // The toolchain's default comes before the class's, and isn't "set".
    PropertyClass hooked("hooked", PropertyClass::String, "", "", "", "", "def");
    PropertyTrace trace;
    EXPECT_EQ(system.getPropertyValue(nullptr, &hooked, "Debug", &trace), "none Debug");
    EXPECT_EQ(traceText(system, trace), "none Debug  -");
    EXPECT_EQ(system.getPropertyValue(a, &hooked, "Debug"), "node Debug");
    EXPECT_FALSE(system.isPropertySet(nullptr, &hooked, "Debug", value));
    EXPECT_EQ(value, "none Debug");

    // A value as a list of items: split at unescaped ';', optionally
    // expanded, quoted and prefixed; an empty value has no items, an item
    // that expands to nothing stays.
    ProjectElement *project = system.node("P");
    PropertyClass raw("raw", PropertyClass::String, "", "", "", "", std::nullopt);
    EXPECT_EQ(system.getPropertyList("", project, &raw, "Debug", false, false, false),
              (Strings{"a", "b\\", "c", "$(Configuration)/$(Empty:)", "say \"x\"", "d\\"}));
    EXPECT_EQ(system.getPropertyList("-D", project, &raw, "Debug", true, true, true),
              (Strings{"-Da", "-Db;c", "-DDebug/", "-Dsay \\\"x\\\"", "-Dd\\"}));
    PropertyClass empty("empty", PropertyClass::String, "", "", "", "", "x");
    EXPECT_EQ(system.getPropertyList("-D", project, &empty, "Debug", true, true, true), Strings{});
    PropertyClass only("only", PropertyClass::String, "", "", "", "", "$(Nothing:);b");
    EXPECT_EQ(system.getPropertyList(">", project, &only, "Debug", true, false, false), (Strings{">", ">b"}));
}

// The value lines of a browser.
const char *const tree = R"(<solution Name="S"><configuration Name="Common" inherited_configurations="" />
  <configuration Name="Debug" /><configuration Name="Release" /><configuration Name="Secret" hidden="Yes" />
  <project Name="P"><configuration Name="Common" package_dependencies="A" build_quietly="Yes" project_directory="app" />
    <configuration Name="Debug" />
    <folder Name="Src"><file file_name="main.c"><configuration Name="Debug" package_dependencies="B" /></file>
      <file file_name="$(Gen)/gen.c" /></folder>
    <folder Name="Dyn" path="src" filter="*.c"><configuration Name="Common" filter="*.s" /></folder>
  </project>
</solution>)";

struct PropertyValueLine : ::testing::Test {
    void SetUp() override {
        system.load(tree);
        project = system.node("P");
        file = system.file("main.c");
    }
    TestProjectSystem system;
    ProjectElement *project = nullptr, *file = nullptr;
};

TEST_F(PropertyValueLine, ReadsTheLookUpAndWritesTheOwnStore) {
    PropertyClass *quietly = system.property("build_quietly");
    ProjectPropertyValue value(file, quietly, "Debug", &system);
    EXPECT_EQ(value.value(), "Yes");
    EXPECT_TRUE(value.isInherited());
    EXPECT_FALSE(value.isReadOnly());
    value.setValue("No");
    EXPECT_EQ(ProjectSystem::getOwnPropertyValue(file, quietly, "Debug"), "No");
    EXPECT_FALSE(value.isInherited());
    // Only the file's own store changed.
    EXPECT_EQ(system.getPropertyValue(project, quietly, "Debug"), "Yes");
    // An empty own value is a value of the node's own.
    ProjectPropertyValue onProject(project, quietly, "Release", &system);
    onProject.setValue("");
    EXPECT_FALSE(onProject.isInherited());
    EXPECT_EQ(onProject.value(), "");

    // A string list shows only the own store, not the merged list; without
    // a store of the configuration the text is null.
    PropertyClass *packages = system.property("package_dependencies");
    EXPECT_EQ(ProjectPropertyValue(file, packages, "Debug", &system).value(), "B");
    EXPECT_EQ(ProjectPropertyValue(file, packages, "Release", &system).value(), std::nullopt);

    // A property outside configurations lives in "Common"; the read-only
    // flag comes from the class.
    ProjectPropertyValue directory(project, system.property("project_directory"), "Debug", &system);
    EXPECT_EQ(directory.configuration, "Common");
    directory.setValue("other");
    EXPECT_EQ(ProjectSystem::getOwnPropertyValue(project, system.property("project_directory"), "Common"), "other");
    EXPECT_TRUE(ProjectPropertyValue(project, system.property("full_project_directory"), "Debug", &system)
                    .isReadOnly());

    // A simple line holds its own text.
    SimplePropertyValue simple(system.property("full_path"), "/a/b.c");
    EXPECT_TRUE(simple.isInherited() && simple.isReadOnly());
    simple.setValue("x");
    EXPECT_EQ(simple.value(), "x");
}

TEST_F(PropertyValueLine, DirectoryAndMacrosMoveTheFilesBelow) {
    struct Observer : ProjectSystemObserver {
        void pathsChanged(ProjectElement *element) override { pathsChangedOn.push_back(element); }
        void propertyChanged(ProjectElement *, const std::string &configuration, PropertyClass *property) override {
            changes.push_back(property->name() + "@" + configuration);
        }
        std::vector<ProjectElement *> pathsChangedOn;
        Strings changes;
    } observer;
    system.observer = &observer;
    // Changes made by a load aren't tracked; paths must move all the same.
    system.trackingChanges = false;
    ProjectElement *generated = system.file("$(Gen)/gen.c");
    EXPECT_EQ(system.absoluteFilePath(file, "Debug"), "/work/s/app/main.c");
    ProjectDirectoryProjectPropertyValue(project, system.property("project_directory"), "Debug", &system)
        .setValue("moved");
    EXPECT_EQ(system.absoluteFilePath(file, "Debug"), "/work/s/moved/main.c");
    EXPECT_EQ(observer.pathsChangedOn, std::vector<ProjectElement *>{project});
    EXPECT_EQ(observer.changes, Strings{"project_directory@Common"});

    EXPECT_EQ(system.absoluteFilePath(generated, "Debug"), "");
    ProjectMacrosProjectPropertyValue(project, system.property("macros"), "Debug", &system).setValue("Gen=out");
    EXPECT_EQ(system.absoluteFilePath(generated, "Debug"), "/work/s/moved/out/gen.c");
    EXPECT_EQ(observer.pathsChangedOn.size(), 2u);
}

TEST_F(PropertyValueLine, DynamicFolderValuesAreTheFolderAttributes) {
    ProjectElement *folder = system.node("Dyn");
    DynamicFolderPropertyValue filter(folder, system.property("filter"), "Debug", &system);
    // The folder's attribute, not the store of "Common".
    EXPECT_EQ(filter.value(), "*.c");
    EXPECT_FALSE(filter.isInherited());
    filter.setValue("*.cpp");
    EXPECT_EQ(ProjectSystem::attribute(folder, "filter"), "*.cpp");
    EXPECT_EQ(*ProjectSystem::findConfiguration(folder, "Common")->attribute("filter"), "*.s");
    EXPECT_TRUE(folder->modified);
    EXPECT_TRUE(DynamicFolderPropertyValue(folder, system.property("exclude"), "Debug", &system).isInherited());
    // A copy keeps its kind.
    std::unique_ptr<PropertyValue> copy = filter.clone();
    EXPECT_NE(dynamic_cast<DynamicFolderPropertyValue *>(copy.get()), nullptr);
}

TEST_F(PropertyValueLine, ConfigurationListsRewriteTheSolution) {
    ProjectElement *solution = system.solution;
    PropertyClass *property = system.property("inherited_configurations");
    PropertyClass *quietly = system.property("build_quietly");
    InheritedConfigurationsProjectPropertyValue inherited(solution, property, "Combined", &system);
    EXPECT_EQ(inherited.value(), "");
    system.setPropertyValue(project, quietly, "Release", "release");
    inherited.setValue("Debug;;Release");
    EXPECT_EQ(inherited.value(), "Debug;Release");
    EXPECT_EQ(system.inheritedConfigurations(project, "Combined"), (Strings{"Debug", "Release"}));
    EXPECT_EQ(system.getPropertyValue(project, quietly, "Combined"), "release");

    PublicConfigurationsProjectPropertyValue publicList(project, property, "Common", &system);
    PrivateConfigurationsProjectPropertyValue privateList(project, property, "Common", &system);
    EXPECT_EQ(spaced(sorted(splitAtAny(publicList.value().value(), ";"))), "Combined Debug Release");
    EXPECT_EQ(privateList.value(), "Secret");
    publicList.setValue("Release;Test");
    const auto publicNames = [&] {
        return spaced(sorted(system.configurationNames(solution, ProjectSystem::PublicConfigurations)));
    };
    EXPECT_EQ(publicNames(), "Release Test");
    EXPECT_EQ(ProjectSystem::findConfiguration(solution, "Debug"), nullptr);
    // Private configurations and "Common" stay.
    EXPECT_EQ(privateList.value(), "Secret");
    ASSERT_NE(ProjectSystem::findConfiguration(solution, "Common"), nullptr);
    privateList.setValue("Hidden");
    EXPECT_EQ(privateList.value(), "Hidden");
    EXPECT_EQ(ProjectSystem::attribute(ProjectSystem::findConfiguration(solution, "Hidden"), "hidden"), "Yes");
    EXPECT_EQ(ProjectSystem::findConfiguration(solution, "Secret"), nullptr);
    EXPECT_EQ(publicNames(), "Release Test");
    // No public configuration left: the list reads "Common", which writing
    // back leaves as it is.
    publicList.setValue("");
    EXPECT_EQ(publicList.value(), "Common");
    publicList.setValue("Common");
    EXPECT_EQ(publicList.value(), "Common");
    EXPECT_EQ(ProjectSystem::attribute(ProjectSystem::findConfiguration(solution, "Common"), "hidden"), std::nullopt);
}

TEST_F(PropertyValueLine, ListOwnsItsValuesInOrder) {
    PropertyValueList list;
    list.append(std::make_unique<SimplePropertyValue>(system.property("full_path"), "a"));
    list.append(std::make_unique<ProjectPropertyValue>(file, system.property("build_quietly"), "Debug", &system));
    PropertyValueList more;
    more.append(std::make_unique<SimplePropertyValue>(system.property("full_path"), "b"));
    list.append(std::move(more));
    EXPECT_TRUE(more.empty());
    Strings lines;
    for (const auto &value : list)
        lines.push_back(value->name() + "=" + value->value().value_or("(null)"));
    EXPECT_EQ(lines, (Strings{"full_path=a", "build_quietly=Yes", "full_path=b"}));
    EXPECT_EQ(list.find("build_quietly"), list.at(1));
    EXPECT_EQ(list.find("nothing"), nullptr);
}

TEST_F(PropertyValueLine, SettingValuesNotifiesInvalidatesAndRecordsUndo) {
    struct Listener : PropertyChangeListener, ProjectSystemObserver {
        void propertyChanged(ProjectElement *element, const std::string &config, PropertyClass *property) override {
            heard.push_back(config + ":" + property->name() + ":" + (element ? element->tagName : ""));
        }
        Strings heard;
    } listener;
    system.observer = &listener;
    system.propertyListeners.push_back(&listener);
    PropertyClass *quietly = system.nodeProperties.buildQuietly;
    system.absoluteFilePath(file, "Debug");
    // A public store is made; paths below are resolved again.
    system.setPropertyValue(project, quietly, "Test", "Yes");
    ProjectElement *store = ProjectSystem::findConfiguration(project, "Test");
    EXPECT_FALSE(store->hasAttribute("hidden"));
    EXPECT_TRUE(store->modified);
    EXPECT_FALSE(file->pathsValid);
    // Both the observer and the listener hear of it.
    EXPECT_EQ(listener.heard, (Strings{"Test:build_quietly:project", "Test:build_quietly:project"}));
    system.setPropertyValue(project, quietly, "Test", "No");
    ASSERT_EQ(system.undoList.size(), 2u);
    EXPECT_EQ(system.undoList.front().oldValue, "Yes");
    EXPECT_TRUE(system.undoList.front().oldModified);
    EXPECT_EQ(system.undoList.back().oldValue, std::nullopt);
    system.clearPropertyValue(project, quietly, "Test");
    EXPECT_FALSE(store->hasAttribute("build_quietly"));
    // Clearing what isn't there records nothing.
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
    system.propertyListeners.clear();
}

} // namespace
