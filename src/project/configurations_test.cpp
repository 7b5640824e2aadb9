#include "project/project_test_tree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using Strings = std::vector<std::string>;

Strings sorted(Strings names) {
    std::sort(names.begin(), names.end());
    return names;
}

const char *const configurations = R"(<solution Name="S">
  <configuration Name="Common" />
  <configuration Name="Debug" />
  <configuration Name="Release" hidden="No" />
  <configuration Name="Private" hidden="Yes" />
  <configuration Name="Linux" Platform="LINUX" />
  <configuration Name="Arm" Platform="ARM" />
  <solution Name="N">
    <configuration Name="Debug" hidden="Yes" />
    <configuration Name="Nested" />
    <project Name="Inner" />
  </solution>
  <project Name="P">
    <configuration Name="Common" />
    <configuration Name="Flash" />
    <configuration Name="Loader" hidden="Yes" loader_option="1" />
    <configuration Name="Mixed" loader_option="1" other="2" />
  </project>
</solution>)";

TEST(Configurations, NamesByFlags) {
    TestProjectSystem system;
    system.load(configurations);
    ProjectElement *project = system.node("P");
    using PS = ProjectSystem;
    EXPECT_EQ(sorted(system.configurationNames(project, PS::PublicConfigurations)),
              (Strings{"Arm", "Debug", "Release"}));
    // Without a node no platform is looked up: every public configuration
    // counts.
    EXPECT_EQ(sorted(system.configurationNames(nullptr, PS::PublicConfigurations | PS::IncludeCommon)),
              (Strings{"Arm", "Common", "Debug", "Linux", "Release"}));
    EXPECT_EQ(system.configurationNames(project, PS::PrivateConfigurations), (Strings{"Private"}));
    EXPECT_EQ(sorted(system.configurationNames(project, PS::PrivateConfigurations |
                                                            PS::PublicConfigurations)),
              (Strings{"Arm", "Debug", "Private", "Release"}));

    // The nearest solution first; a name that wasn't taken there may still
    // come from further up.
    ProjectElement *inner = system.node("Inner");
    EXPECT_EQ(sorted(system.configurationNames(inner, PS::PublicConfigurations)),
              (Strings{"Arm", "Debug", "Nested", "Release"}));
    EXPECT_EQ(sorted(system.configurationNames(inner, PS::PrivateConfigurations)),
              (Strings{"Debug", "Private"}));
}

TEST(Configurations, CommonOnlyWhenAskedOrNothingElse) {
    TestProjectSystem system;
    system.load(R"(<solution Name="S">
  <configuration Name="Common" />
  <configuration Name="Other" Platform="LINUX" />
  <configuration Name="Hidden" hidden="Yes" />
</solution>)");
    EXPECT_EQ(system.configurationNames(system.solution, ProjectSystem::PublicConfigurations),
              (Strings{"Common"}));
    EXPECT_EQ(system.configurationNames(system.solution, ProjectSystem::PrivateConfigurations),
              (Strings{"Hidden"}));
    EXPECT_EQ(sorted(system.configurationNames(system.solution, ProjectSystem::PrivateConfigurations |
                                                                    ProjectSystem::IncludeCommon)),
              (Strings{"Common", "Hidden"}));
}

TEST(Configurations, LoaderConfigurations) {
    struct Loader : TestProjectSystem {
        std::vector<PropertyClass *> loaderProperties() const override { return {loaderOption.get()}; }
        std::unique_ptr<PropertyClass> loaderOption = std::make_unique<PropertyClass>(
            "loader_option", PropertyClass::String, "", "", "", "", std::nullopt);
    } system;
    system.load(configurations);
    ProjectElement *project = system.node("P");
    EXPECT_EQ(system.configurationNames(project, ProjectSystem::LoaderConfigurations),
              (Strings{"Flash", "Loader"}));
    EXPECT_EQ(system.configurationNames(system.solution, ProjectSystem::LoaderConfigurations),
              Strings{});

    TestProjectSystem plain;
    plain.load(configurations);
    EXPECT_EQ(plain.configurationNames(plain.node("P"), ProjectSystem::LoaderConfigurations),
              (Strings{"Flash"}));
}

TEST(Configurations, PlatformOf) {
    TestProjectSystem system;
    system.load(configurations);
    EXPECT_EQ(system.platformOf(nullptr, "Linux"), "ARM");
    EXPECT_EQ(system.platformOf(system.node("P"), "Linux"), "LINUX");
    EXPECT_EQ(system.platformOf(system.node("P"), "Debug"), "ARM");
}

TEST(Configurations, BatchBuild) {
    TestProjectSystem system;
    system.load(R"(<solution Name="S">
  <configuration Name="ARM Debug" />
  <configuration Name="ARM Release" />
  <configuration Name="RISCV Release" />
  <configuration Name="Secret Release" hidden="Yes" />
  <project Name="P">
    <configuration Name="Debug" batch_build_configurations="arm debug;*Release;Secret Release;ARM Debug" />
    <configuration Name="Case" batch_build_configurations="*release;;ARM*" />
    <configuration Name="Only" batch_build_configurations="Common" />
  </project>
</solution>)");
    ProjectElement *project = system.node("P");
    EXPECT_EQ(system.batchBuildConfigurations(project, "Debug"),
              (Strings{"ARM Debug", "ARM Release", "RISCV Release"}));
    EXPECT_EQ(system.batchBuildConfigurations(project, "Case"),
              (Strings{"ARM Debug", "ARM Release"}));
    EXPECT_EQ(system.batchBuildConfigurations(project, "Only"), (Strings{"Common"}));
    EXPECT_EQ(system.batchBuildConfigurations(system.solution, "Debug"), Strings{});
}

TEST(Configurations, SettingInheritedConfigurations) {
    struct Observer : ProjectSystemObserver {
        void propertyChanged(ProjectElement *, const std::string &configuration,
                             PropertyClass *property) override {
            heard.push_back(configuration + ":" + property->name());
        }
        Strings heard;
    } observer;
    TestProjectSystem system;
    system.load(R"(<solution Name="S">
  <configuration Name="ARM Flash" inherited_configurations="ARM;Flash" />
  <project Name="P" />
</solution>)");
    system.observer = &observer;
    ProjectElement *project = system.node("P");
    system.setInheritedConfigurations(project, "ARM Flash", {"ARM", "Flash"});
    EXPECT_FALSE(ProjectSystem::isModified(system.solution, true));
    EXPECT_TRUE(observer.heard.empty());

    system.setInheritedConfigurations(project, "ARM Flash", {"Flash"});
    EXPECT_EQ(system.inheritedConfigurations(project, "ARM Flash"), (Strings{"Flash"}));
    EXPECT_EQ(observer.heard, (Strings{"ARM Flash:inherited_configurations"}));

    system.setInheritedConfigurations(project, "New", {"A", "B"});
    ProjectElement *created = ProjectSystem::findConfiguration(system.solution, "New");
    ASSERT_NE(created, nullptr);
    EXPECT_EQ(*created->attribute("inherited_configurations"), "A;B");
    EXPECT_FALSE(created->hasAttribute("hidden"));
    EXPECT_EQ(system.inheritedConfigurations(project, "New"), (Strings{"A", "B"}));
    EXPECT_EQ(system.inheritedConfigurations(project, "Missing"), Strings{});
    EXPECT_EQ(system.inheritedConfigurations(nullptr, "New"), Strings{});
}

} // namespace
