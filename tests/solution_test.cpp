// Runs that stop before the build: loading the solution, choosing the
// element, command-line property values, and the configuration check.

#include "harness.h"

#include <gtest/gtest.h>

#include <algorithm>

using e2e::expectResult;
using e2e::runQuillmake;
using e2e::Sandbox;

namespace {

// Two nested solutions and three projects. "Release" belongs to the hosted
// tools only, "Private" is hidden, and each project asks for a batch. The
// projects stage nothing, so a run that gets past the checks builds nothing
// and succeeds quietly.
const std::string solutionText = R"(<!DOCTYPE Tarnbench_Project_File>
<solution Name="Top" version="2">
  <configuration Name="Debug" />
  <configuration Name="Release" Platform="LINUX" />
  <configuration Name="Private" hidden="Yes" />
  <configuration Name="Flash" />
  <configuration Name="Common" project_type="Staging" />
  <project Name="abc">
    <configuration Name="Common" batch_build_configurations="Debug;flash" />
  </project>
  <project Name="abd">
    <configuration Name="Common" batch_build_configurations="*a*" />
  </project>
  <solution Name="Inner">
    <project Name="zed" />
  </solution>
</solution>
)";

// Property groups for -property: each entry's items apply when it is chosen.
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

struct Case {
    std::vector<std::string> arguments;
    std::string out;
    int status;
};

}  // namespace

TEST(Solution, ChoosingTheElementAndTheConfigurationAndSettingProperties) {
    Sandbox box;
    box.write("app.tbp", solutionText);
    const std::string valid = "Common\nDebug\nFlash\n";
    const std::vector<Case> cases{
        {{"-config", "Debug", "-showconfigs"}, valid, 0},
        {{"-config", "Debug", "-time", "-showconfigs"}, "solution load time 0 seconds\n" + valid, 0},
        // Configurations that name no platform belong to every toolchain.
        {{"-config", "Debug", "-showconfigs", "-host"}, valid + "Release\n", 0},
        // Plain names match without case, patterns with it.
        {{"-config", "Debug", "-project", "abc", "-showconfigs", "-batch"}, "Debug\nFlash\n", 0},
        {{"-config", "Debug", "-project", "abd", "-showconfigs", "-batch"}, "Flash\n", 0},
        // Nothing asked for is an empty list, not a failure.
        {{"-config", "Debug", "-project", "zed", "-showconfigs", "-batch"}, "", 0},
        // Hidden and other-platform configurations can't be built.
        {{"-config", "debug"}, "can't find configuration 'debug' supported configurations:\n" + valid, 1},
        {{"-config", "Private"}, "can't find configuration 'Private' supported configurations:\n" + valid, 1},
        {{"-config", "Release"}, "can't find configuration 'Release' supported configurations:\n" + valid, 1},
        {{"-config", "Common"}, "", 0},
        {{"-config", "Release", "-host"}, "", 0},

        // "ab" names no project: the first of "abc" and "abd" is chosen, and
        // its batch list shows which.
        {{"-config", "Debug", "-project", "ab", "-showconfigs", "-batch"}, "Debug\nFlash\n", 0},
        // A project of a nested solution is found from the root.
        {{"-config", "Debug", "-project", "zed"}, "", 0},
        {{"-config", "Debug", "-project", "x"}, "can't find project 'x' supported projects:\nabc\nabd\nzed(Inner)\n", 1},
        {{"-config", "Debug", "-solution", "Inner", "-showconfigs", "-batch"}, "", 0},
        {{"-config", "Debug", "-solution", "Top", "-showconfigs"}, valid, 0},
        {{"-config", "Debug", "-solution", "Nope"}, "can't find solution 'Nope' supported solutions:\nInner\nTop\n", 1},

        // Properties apply before the configuration check: moving the
        // selected project's Debug to the hosted platform hides it.
        {{"-config", "Debug", "-project", "abc", "-property", "Platform=LINUX"},
         "can't find configuration 'Debug' supported configurations:\nCommon\nFlash\n", 1},
        // The value goes to the active configuration only.
        {{"-config", "Flash", "-project", "abc", "-property", "Platform=LINUX", "-showconfigs"},
         "can't find configuration 'Flash' supported configurations:\nCommon\nDebug\n", 1},
        // Later entries win.
        {{"-config", "Debug", "-property", "Platform=LINUX", "-property", "Platform=ARM"}, "", 0},
        // Solution properties go to the root, in their own configuration.
        {{"-config", "Debug", "-sproperty", "Platform=LINUX", "-showconfigs"},
         "can't find configuration 'Debug' supported configurations:\nCommon\nFlash\n", 1},
        {{"-config", "Debug", "-sconfig", "Flash", "-sproperty", "Platform=LINUX", "-showconfigs"},
         "Common\nDebug\n", 0},
        // A name that isn't a property is passed over.
        {{"-config", "Debug", "-sproperty", "no_such_thing=1"}, "", 0},
    };
    for (Case c : cases) {
        c.arguments.push_back("app.tbp");
        expectResult(runQuillmake(box, c.arguments), c.out, "", c.status);
    }
}

TEST(Solution, ChoosingAnEntryOfAPropertyGroup) {
    Sandbox box;
    box.write("app.tbp", R"(<!DOCTYPE Tarnbench_Project_File>
<solution Name="Top">
  <configuration Name="Debug" />
  <configuration Name="Flash" />
  <project Name="App">
    <configuration Name="Common" project_type="Executable" property_groups_file_path="groups.xml" />
  </project>
</solution>
)");
    box.write("groups.xml", groupsText);
    box.write("packages/libraries/lib1/propertyGroups.xml",
              "<g><group name=\"LibBoard\"><groupEntry name=\"On\">"
              "<property name=\"batch_build_configurations\" value=\"Flash\"/></groupEntry></group></g>");
    const std::vector<Case> cases{
        {{}, "", 0},
        {{"-property", "Board=Beta"}, "Flash\n", 0},
        // Without a value, or with one that no entry has, the default
        // entry's items apply.
        {{"-property", "Board"}, "Debug\nFlash\n", 0},
        {{"-property", "Board=Omega"}, "Debug\nFlash\n", 0},
        // Later entries win.
        {{"-property", "Board=Alpha", "-property", "Board=Beta"}, "Flash\n", 0},
        // A group of another target is no property.
        {{"-host", "-property", "HostBoard=x"}, "Debug\n", 0},
        {{"-property", "HostBoard=x"}, "can't find property 'HostBoard' supported properties:\n", 1},
        // The package libraries' groups count where the packages are.
        {{"-packagesdir", box.at("packages"), "-property", "LibBoard=On"}, "Flash\n", 0},
        {{"-property", "LibBoard=On"}, "can't find property 'LibBoard' supported properties:\n", 1},
    };
    for (Case c : cases) {
        c.arguments.insert(c.arguments.end(), {"-config", "Debug", "-project", "App", "-showconfigs", "-batch", "app.tbp"});
        const auto r = runQuillmake(box, c.arguments);
        // A failure lists every property of the project after its first line.
        EXPECT_EQ(c.status == 0 ? r.out : r.out.substr(0, c.out.size()), c.out);
        EXPECT_EQ(c.status != 0, r.out.find("\nproperty_groups_file_path=groups.xml\n") != std::string::npos) << r.out;
        EXPECT_EQ(r.err, "");
        EXPECT_EQ(r.status, c.status);
    }
}

TEST(Load, FailuresNameTheFile) {
    Sandbox box;
    const std::string doctype = "<!DOCTYPE Tarnbench_Project_File>\n";
    struct Load {
        std::string file, content, err;  // the file isn't written if `content` is empty
    };
    const std::vector<Load> cases{
        // The message begins with its own blank.
        {"missing.tbp", "", "load error: <box>/missing.tbp  does not exist\n"},
        {"bad.tbp", doctype + "<solution Name=\"x\"></project>\n", "load error: bad XML file - tagName mismatch\n"},
        {"other.tbp", "<!DOCTYPE Something_Else>\n<solution Name=\"x\"/>\n",
         "load error: <box>/other.tbp  not a solution file\n"},
        {"cmd.tbp", doctype + "<solution Name=\"x\" load_command=\"sh -c &quot;exit 3&quot;\"/>\n",
         "load error: <box>/cmd.tbp solution load command failed (3) \n"},
        {"templated.tbp", doctype + "<solution Name=\"x\"><project Name=\"Q\" template_name=\"\"/></solution>\n",
         "load error: no template for project  Q\n"},
        {"empty.tbp", doctype, "load error: <box>/empty.tbp  is a malformed solution file (bad XML)\n"},
    };
    for (const Load &c : cases) {
        if (!c.content.empty())
            box.write(c.file, c.content);
        expectResult(runQuillmake(box, {"-config", "Debug", c.file}), "", box.expand(c.err), 1);
    }
    // The solution's target must be the toolchain's.
    box.write("arm.tbp", doctype + "<solution Name=\"A\" target=\"8\"><configuration Name=\"Debug\"/></solution>\n");
    expectResult(runQuillmake(box, {"-config", "Debug", "-showconfigs", "arm.tbp"}), "Common\nDebug\n", "", 0);
    expectResult(runQuillmake(box, {"-config", "Debug", "-showconfigs", "-host", "arm.tbp"}), "",
                 box.expand("load error: <box>/arm.tbp invalid solution target (ARM)\n"), 1);
}

TEST(Load, TenThousandConfigurationsAndAHugeValue) {
    Sandbox box;
    std::string text = "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"Big\">\n";
    std::vector<std::string> names{"Common"};
    for (int i = 0; i < 10000; ++i) {
        names.push_back(std::string(1, 'C') += std::to_string(i));
        text += "  <configuration Name=\"" + names.back() + "\" />\n";
    }
    // A 10 MB value on the solution, and a configuration without a name,
    // which is filed as "<NULL>".
    text += "  <configuration Name=\"C0\" c_preprocessor_definitions=\"" +
            std::string(10 << 20, 'x') + "\" />\n  <configuration Platform=\"ARM\" />\n";
    text += "</solution>\n";
    names.push_back("<NULL>");
    box.write("big.tbp", text);
    std::sort(names.begin(), names.end());
    std::string listing;
    for (const std::string &name : names)
        listing += name + "\n";
    const auto r = runQuillmake(box, {"-config", "C9999", "-showconfigs", "big.tbp"});
    EXPECT_TRUE(r.out == listing) << "listing differs";
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(r.status, 0);
}

TEST(CommandLineProperties, AnUnknownNameListsWhatTheElementTakes) {
    Sandbox box;
    box.write("stage.tbp", "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"x\">"
                           "<configuration Name=\"Debug\"/><project Name=\"P\"><configuration "
                           "Name=\"Common\" project_type=\"Staging\" stage_set_readonly=\"Yes\"/>"
                           "</project></solution>\n");
    expectResult(runQuillmake(box, {"-config", "Debug", "-project", "P", "-property", "nope=1", "stage.tbp"}),
                 "can't find property 'nope' supported properties:\n"
                 "build_always_rebuild=No\n"
                 "build_exclude_from_build=No\n"
                 "build_output_directory=$(ProjectName) $(Configuration)\n"
                 "file_codec=Default\n"
                 "stage_command=cp \"$(RelInputPath)\" \"$(StageOutputFilePath)\"\n"
                 "stage_command_wd=$(ProjectDir)\n"
                 "stage_output_filepath=$(OutDir)/$(RelInputPath)\n"
                 "stage_output_filepath_replace=\n"
                 "stage_post_build_command=\n"
                 "stage_post_build_command_wd=$(ProjectDir)\n"
                 "stage_set_readonly=Yes\n",
                 "", 1);
}
