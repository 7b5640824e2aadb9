#include "project/project_test_tree.h"
#include "project/property_value.h"
#include "support/text_split.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace {

using Strings = std::vector<std::string>;

Strings sorted(Strings names) {
    std::sort(names.begin(), names.end());
    return names;
}

// Records what the project system tells its observer.
struct RecordingObserver : ProjectSystemObserver {
    void pathsChanged(ProjectElement *element) override { pathsChangedOn.push_back(element); }
    void propertiesChanged(ProjectElement *element) override { propertiesChangedOn.push_back(element); }
    void propertyChanged(ProjectElement *, const std::string &configuration,
                         PropertyClass *property) override {
        changes.push_back(property->name() + "@" + configuration);
    }
    std::vector<ProjectElement *> pathsChangedOn;
    std::vector<ProjectElement *> propertiesChangedOn;
    Strings changes;
};

const char *const tree = R"(<solution Name="S">
  <configuration Name="Common" inherited_configurations="" />
  <configuration Name="Debug" />
  <configuration Name="Release" />
  <configuration Name="Secret" hidden="Yes" />
  <project Name="P">
    <configuration Name="Common" package_dependencies="A" build_quietly="Yes"
                   project_directory="app" />
    <configuration Name="Debug" />
    <folder Name="Src">
      <file file_name="main.c">
        <configuration Name="Debug" package_dependencies="B" />
      </file>
      <file file_name="$(Gen)/gen.c" />
    </folder>
    <folder Name="Dyn" path="src" filter="*.c">
      <configuration Name="Common" filter="*.s" />
    </folder>
  </project>
</solution>)";

struct Fixture {
    Fixture() {
        system.load(tree);
        project = system.node("P");
        file = ProjectSystem::findFileByPath(project, "main.c");
    }
    TestProjectSystem system;
    ProjectElement *project;
    ProjectElement *file;
};

TEST(PropertyValue, ProjectValueReadsTheLookUpAndWritesTheOwnStore) {
    Fixture f;
    PropertyClass *quietly = f.system.property("build_quietly");
    ProjectPropertyValue value(f.file, quietly, "Debug", &f.system);
    EXPECT_EQ(value.name(), "build_quietly");
    EXPECT_EQ(value.configuration, "Debug");
    EXPECT_EQ(value.value(), "Yes");
    EXPECT_TRUE(value.isInherited());
    EXPECT_FALSE(value.isReadOnly());
    EXPECT_EQ(value.longText(), quietly->longText());

    value.setValue("No");
    EXPECT_EQ(ProjectSystem::getOwnPropertyValue(f.file, quietly, "Debug"), "No");
    EXPECT_EQ(value.value(), "No");
    EXPECT_FALSE(value.isInherited());
    // Only the file's own store changed.
    EXPECT_EQ(f.system.getPropertyValue(f.project, quietly, "Debug"), "Yes");

    // An empty own value is a value of the node's own.
    ProjectPropertyValue onProject(f.project, quietly, "Release", &f.system);
    EXPECT_TRUE(onProject.isInherited());
    onProject.setValue("");
    EXPECT_FALSE(onProject.isInherited());
    EXPECT_EQ(onProject.value(), "");
}

TEST(PropertyValue, StringListShowsOnlyTheOwnStore) {
    Fixture f;
    PropertyClass *defines = f.system.property("package_dependencies");
    ASSERT_EQ(defines->type(), PropertyClass::StringList);
    EXPECT_EQ(f.system.getPropertyValue(f.file, defines, "Debug"), "A;B");

    ProjectPropertyValue onFile(f.file, defines, "Debug", &f.system);
    EXPECT_EQ(onFile.value(), "B");
    EXPECT_FALSE(onFile.isInherited());
    // No store of the configuration on the node: a null text, not the
    // merged list.
    ProjectPropertyValue onFileRelease(f.file, defines, "Release", &f.system);
    EXPECT_EQ(onFileRelease.value(), std::nullopt);
    EXPECT_TRUE(onFileRelease.isInherited());
    ProjectPropertyValue onProject(f.project, defines, "Common", &f.system);
    EXPECT_EQ(onProject.value(), "A");
}

TEST(PropertyValue, PropertyOutsideConfigurationsLivesInCommon) {
    Fixture f;
    PropertyClass *directory = f.system.property("project_directory");
    ASSERT_FALSE(directory->perConfiguration());
    ProjectPropertyValue value(f.project, directory, "Debug", &f.system);
    EXPECT_EQ(value.configuration, "Common");
    EXPECT_FALSE(value.isInherited());
    value.setValue("other");
    EXPECT_EQ(ProjectSystem::getOwnPropertyValue(f.project, directory, "Common"), "other");
    EXPECT_EQ(ProjectSystem::getOwnPropertyValue(f.project, directory, "Debug"), std::nullopt);

    // The read-only flag comes from the class.
    ProjectPropertyValue full(f.project, f.system.property("full_project_directory"), "Debug",
                              &f.system);
    EXPECT_TRUE(full.isReadOnly());
    EXPECT_EQ(full.configuration, "Common");
}

TEST(PropertyValue, SimpleValueHoldsItsText) {
    Fixture f;
    PropertyClass *fullPath = f.system.property("full_path");
    SimplePropertyValue value(fullPath, "/a/b.c");
    EXPECT_EQ(value.value(), "/a/b.c");
    EXPECT_TRUE(value.isInherited());
    EXPECT_TRUE(value.isReadOnly());
    value.setValue("x");
    EXPECT_EQ(value.value(), "x");
    EXPECT_EQ(SimplePropertyValue(fullPath, std::nullopt).value(), std::nullopt);
}

TEST(PropertyValue, DirectoryAndMacrosMoveTheFilesBelow) {
    Fixture f;
    RecordingObserver observer;
    f.system.observer = &observer;
    // Changes made by a load aren't tracked; paths must move all the same.
    f.system.trackingChanges = false;
    ProjectElement *generated = ProjectSystem::findFileByPath(f.project, "$(Gen)/gen.c");
    ASSERT_NE(generated, nullptr);
    EXPECT_EQ(f.system.absoluteFilePath(f.file, "Debug"), "/work/s/app/main.c");

    ProjectDirectoryProjectPropertyValue directory(f.project, f.system.property("project_directory"),
                                                   "Debug", &f.system);
    directory.setValue("moved");
    EXPECT_EQ(f.system.absoluteFilePath(f.file, "Debug"), "/work/s/moved/main.c");
    EXPECT_EQ(observer.pathsChangedOn, std::vector<ProjectElement *>{f.project});
    EXPECT_EQ(observer.changes, Strings{"project_directory@Common"});

    EXPECT_EQ(f.system.absoluteFilePath(generated, "Debug"), "");
    ProjectMacrosProjectPropertyValue macros(f.project, f.system.property("macros"), "Debug",
                                             &f.system);
    macros.setValue("Gen=out");
    EXPECT_EQ(f.system.absoluteFilePath(generated, "Debug"), "/work/s/moved/out/gen.c");
    EXPECT_EQ(observer.pathsChangedOn.size(), 2u);
    f.system.observer = nullptr;
}

TEST(PropertyValue, DynamicFolderValuesAreTheFolderAttributes) {
    Fixture f;
    ProjectElement *folder = f.system.node("Dyn");
    DynamicFolderPropertyValue filter(folder, f.system.property("filter"), "Debug", &f.system);
    // The folder's attribute, not the store of "Common".
    EXPECT_EQ(filter.value(), "*.c");
    EXPECT_FALSE(filter.isInherited());
    filter.setValue("*.cpp");
    EXPECT_EQ(ProjectSystem::attribute(folder, "filter"), "*.cpp");
    EXPECT_EQ(*ProjectSystem::findConfiguration(folder, "Common")->attribute("filter"), "*.s");
    EXPECT_TRUE(folder->modified);

    DynamicFolderPropertyValue exclude(folder, f.system.property("exclude"), "Debug", &f.system);
    EXPECT_EQ(exclude.value(), std::nullopt);
    EXPECT_TRUE(exclude.isInherited());

    // A copy keeps its kind.
    std::unique_ptr<PropertyValue> copy = filter.clone();
    ASSERT_NE(dynamic_cast<DynamicFolderPropertyValue *>(copy.get()), nullptr);
    EXPECT_EQ(copy->value(), "*.cpp");
}

TEST(PropertyValue, InheritedConfigurationsAreTheSolutionsList) {
    Fixture f;
    PropertyClass *inherited = f.system.property("inherited_configurations");
    PropertyClass *quietly = f.system.property("build_quietly");
    InheritedConfigurationsProjectPropertyValue value(f.system.solution, inherited, "Combined",
                                                      &f.system);
    EXPECT_EQ(value.value(), "");
    f.system.setPropertyValue(f.project, quietly, "Release", "release");
    EXPECT_EQ(f.system.getPropertyValue(f.project, quietly, "Combined"), "Yes");

    value.setValue("Debug;;Release");
    EXPECT_EQ(value.value(), "Debug;Release");
    EXPECT_EQ(f.system.inheritedConfigurations(f.project, "Combined"), (Strings{"Debug", "Release"}));
    EXPECT_EQ(f.system.getPropertyValue(f.project, quietly, "Combined"), "release");
    EXPECT_EQ(ProjectSystem::attribute(ProjectSystem::findConfiguration(f.system.solution, "Combined"),
                                       "inherited_configurations"),
              "Debug;Release");
}

TEST(PropertyValue, PublicAndPrivateConfigurationListsRewriteTheSolution) {
    Fixture f;
    ProjectElement *solution = f.system.solution;
    PropertyClass *property = f.system.property("inherited_configurations");
    PublicConfigurationsProjectPropertyValue publicList(f.project, property, "Common", &f.system);
    PrivateConfigurationsProjectPropertyValue privateList(f.project, property, "Common", &f.system);
    EXPECT_EQ(sorted(splitAtAny(publicList.value().value(), ";")), (Strings{"Debug", "Release"}));
    EXPECT_EQ(privateList.value(), "Secret");

    publicList.setValue("Release;Test");
    EXPECT_EQ(sorted(f.system.configurationNames(solution, ProjectSystem::PublicConfigurations)),
              (Strings{"Release", "Test"}));
    EXPECT_EQ(ProjectSystem::findConfiguration(solution, "Debug"), nullptr);
    // Private configurations and "Common" stay.
    EXPECT_EQ(privateList.value(), "Secret");
    ASSERT_NE(ProjectSystem::findConfiguration(solution, "Common"), nullptr);

    privateList.setValue("Hidden");
    EXPECT_EQ(privateList.value(), "Hidden");
    EXPECT_EQ(ProjectSystem::attribute(ProjectSystem::findConfiguration(solution, "Hidden"), "hidden"),
              "Yes");
    EXPECT_EQ(ProjectSystem::findConfiguration(solution, "Secret"), nullptr);
    EXPECT_EQ(sorted(f.system.configurationNames(solution, ProjectSystem::PublicConfigurations)),
              (Strings{"Release", "Test"}));

    // No public configuration left: the list reads "Common", which writing
    // back leaves as it is.
    publicList.setValue("");
    EXPECT_EQ(publicList.value(), "Common");
    publicList.setValue("Common");
    EXPECT_EQ(publicList.value(), "Common");
    EXPECT_EQ(ProjectSystem::attribute(ProjectSystem::findConfiguration(solution, "Common"), "hidden"),
              std::nullopt);
}

TEST(PropertyValueList, OwnsItsValuesInOrder) {
    Fixture f;
    PropertyValueList list;
    list.append(std::make_unique<SimplePropertyValue>(f.system.property("full_path"), "a"));
    list.append(std::make_unique<ProjectPropertyValue>(f.file, f.system.property("build_quietly"),
                                                       "Debug", &f.system));
    PropertyValueList more;
    more.append(std::make_unique<SimplePropertyValue>(f.system.property("full_path"), "b"));
    list.append(std::move(more));
    EXPECT_TRUE(more.empty());
    ASSERT_EQ(list.size(), 3u);
    Strings names;
    for (const auto &value : list)
        names.push_back(value->name() + "=" + value->value().value_or("(null)"));
    EXPECT_EQ(names, (Strings{"full_path=a", "build_quietly=Yes", "full_path=b"}));
    EXPECT_EQ(list.find("full_path"), list.at(0));
    EXPECT_EQ(list.find("build_quietly"), list.at(1));
    EXPECT_EQ(list.find("nothing"), nullptr);
}

} // namespace
