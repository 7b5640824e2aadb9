#include "project/project_test_tree.h"
#include "project/property_value.h"
#include "support/text_split.h"

#include <gtest/gtest.h>

namespace {

PropertyClass textProperty(const std::string &name, PropertyClass::Type type,
                           std::optional<std::string> value = "def") {
    return PropertyClass(name, type, "", "", "", "", std::move(value));
}

// A list joins the stores from the furthest: "Common", the inherited names
// in reverse, then the configuration itself. Inheritance isn't transitive.
TEST(PropertyValues, InheritedConfigurationsComeBetweenTheOwnAndCommon) {
    TestProjectSystem system;
    system.load(R"(<solution Name="S"><configuration Name="ARM Flash Debug" inherited_configurations="ARM;;Flash" />
  <configuration Name="ARM" inherited_configurations="Base" />
  <project Name="P"><configuration Name="Common" x="common" /><configuration Name="Flash" x="flash" />
    <configuration Name="ARM" x="arm" /><configuration Name="Base" x="base" />
    <configuration Name="ARM Flash Debug" x="own" /><file file_name="a.c" /></project>
</solution>)");
    ProjectElement *file = system.file("a.c");
    PropertyClass list = textProperty("x", PropertyClass::StringList);
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
    system.load(R"(<solution Name="S"><project Name="P"><configuration Name="Common" l="A" empty=""
      raw="a;;b\;c;$(Configuration)/$(Empty:);say &quot;x&quot;;d\" />
    <file file_name="a.c"><configuration Name="Debug" l="B" /></file>
    <file file_name="b.c"><configuration Name="Debug" l="" /></file></project>
  <project Name="Q"><configuration Name="Common" l="" />
    <file file_name="c.c"><configuration Name="Debug" l="X" /></file></project>
</solution>)");
    // An empty value near the node is dropped; one further up leaves an empty item.
    PropertyClass list = textProperty("l", PropertyClass::StringList, std::nullopt);
    EXPECT_EQ(system.getPropertyValue(system.file("a.c"), &list, "Debug"), "A;B");
    EXPECT_EQ(system.getPropertyValue(system.file("b.c"), &list, "Debug"), "A");
    EXPECT_EQ(system.getPropertyValue(system.file("c.c"), &list, "Debug"), ";X");
    // No store and no default: a null value.
    EXPECT_EQ(system.getPropertyValue(system.solution, &list, "Debug"), std::nullopt);
    EXPECT_EQ(system.getPropertyValue(system.file("a.c"), nullptr, "Debug"), std::nullopt);

    // The toolchain's default comes before the class's, and isn't "set".
    PropertyClass hooked = textProperty("hooked", PropertyClass::String);
    PropertyTrace trace;
    EXPECT_EQ(system.getPropertyValue(nullptr, &hooked, "Debug", &trace), "none Debug");
    ASSERT_EQ(trace.size(), 1u);
    EXPECT_EQ(trace[0].value, "none Debug");
    EXPECT_EQ(trace[0].element, nullptr);
    EXPECT_EQ(system.getPropertyValue(system.file("b.c"), &hooked, "Debug"), "node Debug");
    std::optional<std::string> value;
    EXPECT_FALSE(system.isPropertySet(system.file("a.c"), &hooked, "Debug", value));
    EXPECT_EQ(value, "node Debug");

    // A value as a list of items: split at unescaped ';', optionally
    // expanded, quoted and prefixed; an empty value has no items, an item
    // that expands to nothing stays.
    ProjectElement *project = system.node("P");
    PropertyClass raw = textProperty("raw", PropertyClass::String, std::nullopt);
    EXPECT_EQ(system.getPropertyList("", project, &raw, "Debug", false, false, false),
              (Strings{"a", "b\\", "c", "$(Configuration)/$(Empty:)", "say \"x\"", "d\\"}));
    EXPECT_EQ(system.getPropertyList("-D", project, &raw, "Debug", true, true, true),
              (Strings{"-Da", "-Db;c", "-DDebug/", "-Dsay \\\"x\\\"", "-Dd\\"}));
    PropertyClass empty = textProperty("empty", PropertyClass::String, "x");
    EXPECT_EQ(system.getPropertyList("-D", project, &empty, "Debug", true, true, true), Strings{});
    PropertyClass only = textProperty("only", PropertyClass::String, "$(Nothing:);b");
    EXPECT_EQ(system.getPropertyList(">", project, &only, "Debug", true, false, false), (Strings{">", ">b"}));
}

// The value lines of a browser.
const char *const tree = R"(<solution Name="S"><configuration Name="Common" inherited_configurations="" />
  <configuration Name="Debug" /><configuration Name="Release" /><configuration Name="Secret" hidden="Yes" />
  <project Name="P"><configuration Name="Common" build_quietly="Yes" project_directory="app" />
    <folder Name="Src"><file file_name="main.c" /><file file_name="$(Gen)/gen.c" /></folder>
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

// The observer and the listeners hear of every change; a change of the
// project directory or the macros moves the files below.
TEST_F(PropertyValueLine, ChangesAreHeardAndMoveTheFilesBelow) {
    struct Observer : ProjectSystemObserver, PropertyChangeListener {
        void pathsChanged(ProjectElement *element) override { pathsChangedOn.push_back(element); }
        void propertyChanged(ProjectElement *element, const std::string &config, PropertyClass *property) override {
            heard.push_back(config + ":" + property->name() + ":" + element->tagName);
        }
        std::vector<ProjectElement *> pathsChangedOn;
        Strings heard;
    } observer;
    system.observer = &observer;
    system.propertyListeners.push_back(&observer);
    PropertyClass *quietly = system.nodeProperties.buildQuietly;
    system.setPropertyValue(project, quietly, "Test", "Yes");
    // Clearing what isn't there changes nothing.
    system.clearPropertyValue(project, quietly, "Release");
    EXPECT_EQ(observer.heard, (Strings{"Test:build_quietly:project", "Test:build_quietly:project"}));
    ASSERT_EQ(system.undoList.size(), 1u);
    EXPECT_EQ(system.undoList.front().oldValue, std::nullopt);
    system.propertyListeners.clear();

    // Changes made by a load aren't tracked; paths must move all the same.
    system.trackingChanges = false;
    ProjectElement *generated = system.file("$(Gen)/gen.c");
    EXPECT_EQ(system.absoluteFilePath(file, "Debug"), "/work/s/app/main.c");
    ProjectDirectoryProjectPropertyValue(project, system.property("project_directory"), "Debug", &system)
        .setValue("moved");
    EXPECT_EQ(system.absoluteFilePath(file, "Debug"), "/work/s/moved/main.c");
    EXPECT_EQ(system.absoluteFilePath(generated, "Debug"), "");
    ProjectMacrosProjectPropertyValue(project, system.property("macros"), "Debug", &system).setValue("Gen=out");
    EXPECT_EQ(system.absoluteFilePath(generated, "Debug"), "/work/s/moved/out/gen.c");
    EXPECT_EQ(observer.pathsChangedOn, (std::vector<ProjectElement *>{project, project}));
}

TEST_F(PropertyValueLine, DynamicFolderValuesAreTheFolderAttributes) {
    ProjectElement *folder = system.node("Dyn");
    DynamicFolderPropertyValue filter(folder, system.property("filter"), "Debug", &system);
    // The folder's attribute, not the store of "Common".
    EXPECT_EQ(filter.value(), "*.c");
    EXPECT_FALSE(filter.isInherited());
    filter.clone()->setValue("*.cpp");
    EXPECT_EQ(ProjectSystem::attribute(folder, "filter"), "*.cpp");
    EXPECT_EQ(*ProjectSystem::findConfiguration(folder, "Common")->attribute("filter"), "*.s");
    EXPECT_TRUE(folder->modified);
    EXPECT_TRUE(DynamicFolderPropertyValue(folder, system.property("exclude"), "Debug", &system).isInherited());
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
    // A simple line holds its own text, and counts as inherited.
    list.at(2)->setValue("c");
    EXPECT_TRUE(list.at(2)->isInherited() && list.at(2)->isReadOnly());
    Strings lines;
    for (const auto &value : list)
        lines.push_back(value->name() + "=" + value->value().value_or("(null)"));
    EXPECT_EQ(lines, (Strings{"full_path=a", "build_quietly=Yes", "full_path=c"}));
    EXPECT_EQ(list.find("build_quietly"), list.at(1));
    EXPECT_EQ(list.find("nothing"), nullptr);
}

} // namespace

// While the macro cache is on, a property that no store of the tree holds
// has its default without a search. The answers stay those of the search
// whichever node was asked before, and follow a value set later.
TEST(PropertyValues, ReadsWhileTheCacheIsOnKeepTheSearchsAnswers) {
    struct Hooked : TestProjectSystem {
        bool defaultPropertyValue(ProjectElement *, const std::string &, PropertyClass *property,
                                  std::string &value) override {
            if (property->name() != "hooked")
                return false;
            value = "Yes";
            return true;
        }
    } system;
    system.load(R"(<solution Name="S"><project Name="P"><configuration Name="Common" s="No" />
    <file file_name="a.c"><configuration Name="Debug" s="Yes" /></file><file file_name="b.c" /></project>
  <project Name="Q"><file file_name="c.c" /></project></solution>)");
    system.setMacroCacheEnabled(true);
    PropertyClass stored = textProperty("s", PropertyClass::Boolean, "No");
    PropertyClass yes = textProperty("y", PropertyClass::Boolean, "Yes");
    PropertyClass no = textProperty("n", PropertyClass::Boolean, "No");
    PropertyClass hooked = textProperty("hooked", PropertyClass::Boolean, "No");
    ProjectElement *a = system.file("a.c"), *b = system.file("b.c"), *c = system.file("c.c");
    const std::pair<ProjectElement *, const char *> asked[] = {
        {system.node("P"), "No"}, {a, "Yes"}, {system.node("P"), "No"}, {b, "No"}, {c, "No"}, {a, "Yes"}};
    for (const auto &[node, value] : asked) {
        EXPECT_EQ(system.getPropertyValue(node, &stored, "Debug"), value);
        EXPECT_EQ(system.isYes(node, &stored, "Debug"), std::string(value) == "Yes");
        EXPECT_TRUE(system.isYes(node, &yes, "Debug"));
        EXPECT_FALSE(system.isYes(node, &no, "Debug"));
        EXPECT_TRUE(system.isYes(node, &hooked, "Debug"));
    }
    system.setPropertyValue(c, &yes, "Debug", "No");
    system.setPropertyValue(b, &no, "Debug", "Yes");
    EXPECT_FALSE(system.isYes(c, &yes, "Debug"));
    EXPECT_TRUE(system.isYes(b, &no, "Debug"));
    EXPECT_FALSE(system.isYes(a, &no, "Debug"));
    // Classes may be shared between systems: what a class noted of another
    // system's tree doesn't answer for this one's, not even for the node
    // asked last.
    Hooked other;
    other.load(R"(<solution Name="T"><project Name="R"><file file_name="d.c" /></project></solution>)");
    other.setMacroCacheEnabled(true);
    EXPECT_FALSE(other.isYes(other.file("d.c"), &stored, "Debug"));
    EXPECT_TRUE(system.isYes(a, &stored, "Debug"));
}
