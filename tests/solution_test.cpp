// Runs on a loaded solution that stop before the build: choosing the
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

struct SolutionRun {
    Sandbox box;
    SolutionRun() { box.write("app.tbp", solutionText); }
    e2e::RunResult run(std::vector<std::string> arguments) {
        arguments.push_back("app.tbp");
        return runQuillmake(box, arguments);
    }
};

}  // namespace

TEST(Configurations, ShowconfigsListsThePublicConfigurationsOfThePlatformSorted) {
    SolutionRun s;
    expectResult(s.run({"-config", "Debug", "-showconfigs"}), "Common\nDebug\nFlash\n", "", 0);
    // Configurations that name no platform belong to every toolchain.
    expectResult(s.run({"-config", "Debug", "-showconfigs", "-host"}),
                 "Common\nDebug\nFlash\nRelease\n", "", 0);
}

TEST(Configurations, BatchListsWhatTheSelectedProjectAsksFor) {
    SolutionRun s;
    // Plain names match without case, patterns with it.
    expectResult(s.run({"-config", "Debug", "-project", "abc", "-showconfigs", "-batch"}),
                 "Debug\nFlash\n", "", 0);
    expectResult(s.run({"-config", "Debug", "-project", "abd", "-showconfigs", "-batch"}),
                 "Flash\n", "", 0);
    // Nothing asked for is an empty list, not a failure.
    expectResult(s.run({"-config", "Debug", "-project", "zed", "-showconfigs", "-batch"}), "", "",
                 0);
}

TEST(Configurations, AnUnknownConfigurationListsTheValidOnes) {
    SolutionRun s;
    const std::string valid = "Common\nDebug\nFlash\n";
    expectResult(s.run({"-config", "debug"}),
                 "can't find configuration 'debug' supported configurations:\n" + valid, "", 1);
    // Hidden and other-platform configurations can't be built.
    expectResult(s.run({"-config", "Private"}),
                 "can't find configuration 'Private' supported configurations:\n" + valid, "", 1);
    expectResult(s.run({"-config", "Release"}),
                 "can't find configuration 'Release' supported configurations:\n" + valid, "", 1);
    expectResult(s.run({"-config", "Common"}), "", "", 0);
    expectResult(s.run({"-config", "Release", "-host"}), "", "", 0);
}

TEST(Selection, ProjectByExactNameThenByTheFirstNameWithThePrefix) {
    SolutionRun s;
    // "ab" names no project: the first of "abc" and "abd" is chosen, and
    // its batch list shows which.
    expectResult(s.run({"-config", "Debug", "-project", "ab", "-showconfigs", "-batch"}),
                 "Debug\nFlash\n", "", 0);
    expectResult(s.run({"-config", "Debug", "-project", "abd", "-showconfigs", "-batch"}),
                 "Flash\n", "", 0);
    // A project of a nested solution is found from the root.
    expectResult(s.run({"-config", "Debug", "-project", "zed"}), "", "", 0);
    expectResult(s.run({"-config", "Debug", "-project", "x"}),
                 "can't find project 'x' supported projects:\nabc\nabd\nzed(Inner)\n", "", 1);
}

TEST(Selection, SolutionByName) {
    SolutionRun s;
    expectResult(s.run({"-config", "Debug", "-solution", "Inner", "-showconfigs", "-batch"}), "",
                 "", 0);
    expectResult(s.run({"-config", "Debug", "-solution", "Top", "-showconfigs"}),
                 "Common\nDebug\nFlash\n", "", 0);
    expectResult(s.run({"-config", "Debug", "-solution", "Nope"}),
                 "can't find solution 'Nope' supported solutions:\nInner\nTop\n", "", 1);
}

TEST(CommandLineProperties, ApplyBeforeTheConfigurationCheck) {
    SolutionRun s;
    // Moving the selected project's Debug to the hosted platform hides it.
    expectResult(s.run({"-config", "Debug", "-project", "abc", "-property", "Platform=LINUX"}),
                 "can't find configuration 'Debug' supported configurations:\nCommon\nFlash\n",
                 "", 1);
    // The value goes to the active configuration only.
    expectResult(s.run({"-config", "Flash", "-project", "abc", "-property", "Platform=LINUX",
                        "-showconfigs"}),
                 "can't find configuration 'Flash' supported configurations:\nCommon\nDebug\n",
                 "", 1);
    // Later entries win.
    expectResult(s.run({"-config", "Debug", "-property", "Platform=LINUX", "-property",
                        "Platform=ARM"}),
                 "", "", 0);
}

TEST(CommandLineProperties, SolutionPropertiesGoToTheRootInTheirOwnConfiguration) {
    SolutionRun s;
    expectResult(s.run({"-config", "Debug", "-sproperty", "Platform=LINUX", "-showconfigs"}),
                 "can't find configuration 'Debug' supported configurations:\nCommon\nFlash\n",
                 "", 1);
    expectResult(s.run({"-config", "Debug", "-sconfig", "Flash", "-sproperty", "Platform=LINUX",
                        "-showconfigs"}),
                 "Common\nDebug\n", "", 0);
    // A name that isn't a property is passed over.
    expectResult(s.run({"-config", "Debug", "-sproperty", "no_such_thing=1"}), "", "", 0);
}

TEST(Load, FailuresNameTheFile) {
    Sandbox box;
    const std::string missing = box.at("missing.tbp");
    // The message begins with its own blank.
    expectResult(runQuillmake(box, {"-config", "Debug", "missing.tbp"}), "",
                 "load error: " + missing + "  does not exist\n", 1);

    box.write("bad.tbp", "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"x\"></project>\n");
    expectResult(runQuillmake(box, {"-config", "Debug", "bad.tbp"}), "",
                 "load error: bad XML file - tagName mismatch\n", 1);

    box.write("other.tbp", "<!DOCTYPE Something_Else>\n<solution Name=\"x\"/>\n");
    expectResult(runQuillmake(box, {"-config", "Debug", "other.tbp"}), "",
                 "load error: " + box.at("other.tbp") + "  not a solution file\n", 1);

    box.write("cmd.tbp", "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"x\" "
                         "load_command=\"sh -c &quot;exit 3&quot;\"/>\n");
    expectResult(runQuillmake(box, {"-config", "Debug", "cmd.tbp"}), "",
                 "load error: " + box.at("cmd.tbp") + " solution load command failed (3) \n", 1);

    box.write("templated.tbp", "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"x\">"
                               "<project Name=\"Q\" template_name=\"\"/></solution>\n");
    expectResult(runQuillmake(box, {"-config", "Debug", "templated.tbp"}), "",
                 "load error: no template for project  Q\n", 1);

    box.write("empty.tbp", "<!DOCTYPE Tarnbench_Project_File>\n");
    expectResult(runQuillmake(box, {"-config", "Debug", "empty.tbp"}), "",
                 "load error: " + box.at("empty.tbp") + "  is a malformed solution file (bad XML)\n",
                 1);
}

TEST(Load, TheSolutionsTargetMustBeTheToolchains) {
    Sandbox box;
    box.write("arm.tbp", "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"A\" target=\"8\">"
                         "<configuration Name=\"Debug\"/></solution>\n");
    expectResult(runQuillmake(box, {"-config", "Debug", "-showconfigs", "arm.tbp"}), "Common\nDebug\n", "", 0);
    expectResult(runQuillmake(box, {"-config", "Debug", "-showconfigs", "-host", "arm.tbp"}), "",
                 "load error: " + box.at("arm.tbp") + " invalid solution target (ARM)\n", 1);
}

TEST(Load, TimeIsPrintedInWholeSeconds) {
    SolutionRun s;
    expectResult(s.run({"-config", "Debug", "-time", "-showconfigs"}),
                 "solution load time 0 seconds\nCommon\nDebug\nFlash\n", "", 0);
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
