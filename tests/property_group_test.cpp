// -property with the name of a property group: the choice applies the
// entry's property items, which -showconfigs -batch then shows.

#include "harness.h"

#include <gtest/gtest.h>

using e2e::runQuillmake;
using e2e::Sandbox;

namespace {

const std::string solutionText = R"(<!DOCTYPE Tarnbench_Project_File>
<solution Name="Top">
  <configuration Name="Debug" />
  <configuration Name="Flash" />
  <project Name="App">
    <configuration Name="Common" project_type="Executable" property_groups_file_path="groups.xml" />
  </project>
</solution>
)";

const std::string groupsText = R"(<propertyGroups>
  <group name="Board" default="Alpha">
    <groupEntry name="Alpha"><property name="batch_build_configurations" value="Debug;Flash"/></groupEntry>
    <groupEntry name="Beta"><property name="batch_build_configurations" value="Flash"/></groupEntry>
  </group>
  <group name="HostBoard" target="15">
    <groupEntry name="x"><property name="batch_build_configurations" value="Debug"/></groupEntry>
  </group>
</propertyGroups>
)";

struct GroupRun {
    Sandbox box;
    GroupRun() {
        box.write("app.tbp", solutionText);
        box.write("groups.xml", groupsText);
    }
    e2e::RunResult run(std::vector<std::string> arguments) {
        for (const char *argument : {"-config", "Debug", "-project", "App", "-showconfigs", "-batch"})
            arguments.push_back(argument);
        arguments.push_back("app.tbp");
        return runQuillmake(box, arguments);
    }
};

void expectResult(const e2e::RunResult &r, const std::string &out, int status) {
    EXPECT_EQ(r.out, out);
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(r.status, status);
}

}  // namespace

TEST(PropertyGroupOption, ChoosingAnEntryAppliesItsProperties) {
    GroupRun g;
    expectResult(g.run({}), "", 0);
    expectResult(g.run({"-property", "Board=Beta"}), "Flash\n", 0);
    // Without a value, or with one that no entry has, the default entry's
    // items apply.
    expectResult(g.run({"-property", "Board"}), "Debug\nFlash\n", 0);
    expectResult(g.run({"-property", "Board=Omega"}), "Debug\nFlash\n", 0);
    // Later entries win.
    expectResult(g.run({"-property", "Board=Alpha", "-property", "Board=Beta"}), "Flash\n", 0);
}

TEST(PropertyGroupOption, AGroupOfAnotherTargetIsNoProperty) {
    GroupRun g;
    expectResult(g.run({"-host", "-property", "HostBoard=x"}), "Debug\n", 0);
    const e2e::RunResult r = g.run({"-property", "HostBoard=x"});
    EXPECT_TRUE(r.out.starts_with("can't find property 'HostBoard' supported properties:\n"))
        << r.out;
    EXPECT_NE(r.out.find("\nproperty_groups_file_path=groups.xml\n"), std::string::npos) << r.out;
    EXPECT_EQ(r.status, 1);
}

TEST(PropertyGroupOption, GroupsOfThePackageLibraries) {
    GroupRun g;
    g.box.write("packages/libraries/lib1/propertyGroups.xml",
                "<g><group name=\"LibBoard\"><groupEntry name=\"On\">"
                "<property name=\"batch_build_configurations\" value=\"Flash\"/>"
                "</groupEntry></group></g>");
    expectResult(g.run({"-packagesdir", g.box.at("packages"), "-property", "LibBoard=On"}),
                 "Flash\n", 0);
    const e2e::RunResult r = g.run({"-property", "LibBoard=On"});
    EXPECT_TRUE(r.out.starts_with("can't find property 'LibBoard' supported properties:\n"))
        << r.out;
    EXPECT_EQ(r.status, 1);
}
