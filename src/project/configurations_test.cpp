#include "project/project_test_tree.h"

#include <gtest/gtest.h>

namespace {

using PS = ProjectSystem;

const char *const configurations = R"(<solution Name="S">
  <configuration Name="Common" /><configuration Name="Debug" /><configuration Name="Release" hidden="No" />
  <configuration Name="Private" hidden="Yes" />
  <configuration Name="Linux" Platform="LINUX" /><configuration Name="Arm" Platform="ARM" />
  <solution Name="N">
    <configuration Name="Debug" hidden="Yes" /><configuration Name="Nested" /><project Name="Inner" />
  </solution>
  <project Name="P">
    <configuration Name="Common" /><configuration Name="Flash" />
    <configuration Name="Loader" hidden="Yes" loader_option="1" />
    <configuration Name="Mixed" loader_option="1" other="2" />
  </project>
</solution>)";

TEST(Configurations, NamesByFlagsAndPlatform) {
    TestProjectSystem system;
    system.load(configurations);
    ProjectElement *project = system.node("P");
    // The platform of a node is ARM here: Linux doesn't count. Without a
    // node no platform is looked up.
    const auto names = [&](ProjectElement *node, int flags) {
        return spaced(sorted(system.configurationNames(node, flags)));
    };
    EXPECT_EQ(names(project, PS::PublicConfigurations), "Arm Debug Release");
    EXPECT_EQ(names(nullptr, PS::PublicConfigurations | PS::IncludeCommon), "Arm Common Debug Linux Release");
    EXPECT_EQ(names(project, PS::PrivateConfigurations), "Private");
    EXPECT_EQ(names(project, PS::PrivateConfigurations | PS::PublicConfigurations), "Arm Debug Private Release");
    // The nearest solution first; a name that wasn't taken there may still
    // come from further up.
    ProjectElement *inner = system.node("Inner");
    EXPECT_EQ(names(inner, PS::PublicConfigurations), "Arm Debug Nested Release");
    EXPECT_EQ(names(inner, PS::PrivateConfigurations), "Debug Private");

    EXPECT_EQ(system.platformOf(nullptr, "Linux"), "ARM");
    EXPECT_EQ(system.platformOf(project, "Linux"), "LINUX");
    EXPECT_EQ(system.platformOf(project, "Debug"), "ARM");

    // "Common" counts as public only when nothing else does.
    system.load(R"(<solution Name="S"><configuration Name="Common" />
  <configuration Name="Other" Platform="LINUX" /><configuration Name="Hidden" hidden="Yes" /></solution>)");
    EXPECT_EQ(names(system.solution, PS::PublicConfigurations), "Common");
    EXPECT_EQ(names(system.solution, PS::PrivateConfigurations), "Hidden");
    EXPECT_EQ(names(system.solution, PS::PrivateConfigurations | PS::IncludeCommon), "Common Hidden");
}

// A loader configuration holds nothing but loader properties.
TEST(Configurations, LoaderConfigurations) {
    struct Loader : TestProjectSystem {
        std::vector<PropertyClass *> loaderProperties() const override { return {loaderOption.get()}; }
        std::unique_ptr<PropertyClass> loaderOption = std::make_unique<PropertyClass>(
            "loader_option", PropertyClass::String, "", "", "", "", std::nullopt);
    } system;
    system.load(configurations);
    EXPECT_EQ(system.configurationNames(system.node("P"), PS::LoaderConfigurations), (Strings{"Flash", "Loader"}));
    EXPECT_EQ(system.configurationNames(system.solution, PS::LoaderConfigurations), Strings{});

    TestProjectSystem plain;
    plain.load(configurations);
    EXPECT_EQ(plain.configurationNames(plain.node("P"), PS::LoaderConfigurations), Strings{"Flash"});
}

TEST(Configurations, BatchBuild) {
    TestProjectSystem system;
    system.load(R"(<solution Name="S">
  <configuration Name="ARM Debug" /><configuration Name="ARM Release" /><configuration Name="RISCV Release" />
  <configuration Name="Secret Release" hidden="Yes" />
  <project Name="P">
    <configuration Name="Debug" batch_build_configurations="arm debug;*Release;Secret Release;ARM Debug" />
    <configuration Name="Case" batch_build_configurations="*release;;ARM*" />
    <configuration Name="Only" batch_build_configurations="Common" />
  </project>
</solution>)");
    ProjectElement *project = system.node("P");
    // Wildcards and names match without regard to case, over the public
    // configurations only, each once.
    EXPECT_EQ(system.batchBuildConfigurations(project, "Debug"),
              (Strings{"ARM Debug", "ARM Release", "RISCV Release"}));
    EXPECT_EQ(system.batchBuildConfigurations(project, "Case"), (Strings{"ARM Debug", "ARM Release"}));
    EXPECT_EQ(system.batchBuildConfigurations(project, "Only"), (Strings{"Common"}));
    EXPECT_EQ(system.batchBuildConfigurations(system.solution, "Debug"), Strings{});
}

TEST(Configurations, SettingInheritedConfigurations) {
    struct Observer : ProjectSystemObserver {
        void propertyChanged(ProjectElement *, const std::string &configuration, PropertyClass *property) override {
            heard.push_back(configuration + ":" + property->name());
        }
        Strings heard;
    } observer;
    TestProjectSystem system;
    system.load(R"(<solution Name="S"><configuration Name="ARM Flash" inherited_configurations="ARM;Flash" />
  <project Name="P" /></solution>)");
    system.observer = &observer;
    ProjectElement *project = system.node("P");
    // The same list again changes nothing.
    system.setInheritedConfigurations(project, "ARM Flash", {"ARM", "Flash"});
    EXPECT_FALSE(ProjectSystem::isModified(system.solution, true));
    EXPECT_TRUE(observer.heard.empty());

    system.setInheritedConfigurations(project, "ARM Flash", {"Flash"});
    EXPECT_EQ(system.inheritedConfigurations(project, "ARM Flash"), (Strings{"Flash"}));
    EXPECT_EQ(observer.heard, (Strings{"ARM Flash:inherited_configurations"}));

    // A new name is made a public configuration of the solution.
    system.setInheritedConfigurations(project, "New", {"A", "B"});
    ProjectElement *created = ProjectSystem::findConfiguration(system.solution, "New");
    ASSERT_NE(created, nullptr);
    EXPECT_EQ(*created->attribute("inherited_configurations"), "A;B");
    EXPECT_FALSE(created->hasAttribute("hidden"));
    EXPECT_EQ(system.inheritedConfigurations(nullptr, "New"), Strings{});
}

} // namespace
