#include "harness.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

using e2e::quillmakePath;
using e2e::RunOptions;
using e2e::runQuillmake;
using e2e::Sandbox;

namespace {

const std::string frequencies =
    "<envelope>\n"
    "  <include filename=\"$(StudioDir)/targets/frequencies.xml\" />\n"
    "</envelope>\n";

// A solution for runs that get past the macros: they list its
// configurations and end well.
const std::string solution =
    "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"a\"><configuration Name=\"Debug\"/></solution>\n";

void expectListed(const e2e::RunResult &r) {
    EXPECT_EQ(r.out, "Common\nDebug\n");
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(r.status, 0);
}

const std::string versionDirectory = "Veldane for ARM/v5";
const std::string defaultPackages = ".ostrand_instruments_limited/" + versionDirectory + "/packages";

// Runs quillmake on a solution, so that the run gets past the macros.
e2e::RunResult build(const Sandbox &box, std::vector<std::string> options, const RunOptions &run = {}) {
    std::ofstream(run.workingDirectory.empty() ? box.at("a.tbp") : run.workingDirectory + "/a.tbp") << solution;
    options.insert(options.end(), {"-config", "Debug", "-showconfigs", "a.tbp"});
    return runQuillmake(box, options, run);
}

void expectFrequencies(const Sandbox &box, const std::string &packages) {
    EXPECT_EQ(box.read(packages + "/targets/frequencies.xml"), frequencies) << packages;
}

// An installation of its own in the sandbox: a copy of the program in
// inst/bin beside the given config.xml.
struct Installation {
    const Sandbox &box;
    std::string program;

    Installation(const Sandbox &sandbox, const std::string &configuration)
        : box(sandbox), program(sandbox.at("inst/bin/quillmake")) {
        std::filesystem::create_directories(box.at("inst/bin"));
        std::filesystem::copy_file(quillmakePath(), program);
        box.write("inst/bin/config.xml", configuration);
    }

    e2e::RunResult build(std::vector<std::string> options,
                         std::map<std::string, std::optional<std::string>> environment = {}) const {
        std::vector<std::string> arguments{program};
        arguments.insert(arguments.end(), options.begin(), options.end());
        box.write("a.tbp", solution);
        arguments.insert(arguments.end(), {"-config", "Debug", "-showconfigs", "a.tbp"});
        environment.emplace("HOME", box.path());
        environment.emplace("VELDANE_ROOT_USER_DIR", std::nullopt);
        return e2e::runProgram(arguments, box.path(), environment);
    }
};

std::string configuration(const std::string &body) {
    return "<?xml version=\"1.0\"?>\n<configuration>\n" + body + "</configuration>\n";
}

}  // namespace

TEST(PackagesDirectory, DefaultUnderTheHomeDirectory) {
    Sandbox box;
    const auto r = build(box, {});
    expectListed(r);
    expectFrequencies(box, defaultPackages);
    EXPECT_FALSE(box.exists(defaultPackages + "/samples"));
}

TEST(PackagesDirectory, AnExistingFileIsLeftAlone) {
    Sandbox box;
    box.write(defaultPackages + "/targets/frequencies.xml", "<mine/>\n");
    expectListed(build(box, {}));
    EXPECT_EQ(box.read(defaultPackages + "/targets/frequencies.xml"), "<mine/>\n");
}

TEST(PackagesDirectory, Option) {
    Sandbox box;
    const auto r = build(box, {"-packagesdir", box.at("elsewhere")});
    expectListed(r);
    expectFrequencies(box, "elsewhere");
    EXPECT_FALSE(box.exists(".ostrand_instruments_limited"));
}

TEST(PackagesDirectory, OptionWithMacros) {
    Sandbox box;
    const auto r = build(box, {"-packagesdir", "$(HomeDir)/$(ProductNameShort)/$(Missing:fallback)//"});
    expectListed(r);
    expectFrequencies(box, "Veldane/fallback");
}

TEST(PackagesDirectory, RelativeToTheWorkingDirectory) {
    Sandbox box;
    box.write("work/.keep", "");
    RunOptions in;
    in.workingDirectory = box.at("work");
    expectListed(build(box, {"-packagesdir", "pk"}, in));
    expectFrequencies(box, "work/pk");
}

TEST(PackagesDirectory, TheCommandLineMacrosComeAfterIt) {
    Sandbox box;
    expectListed(build(box, {"-D", "Where=here", "-packagesdir", "$(HomeDir)/$(Where:not-yet)"}));
    expectFrequencies(box, "not-yet");
}

TEST(PackagesDirectory, CannotCreateTheFile) {
    Sandbox box;
    box.write("plain", "a file, not a directory\n");
    const auto r = build(box, {"-packagesdir", box.at("plain/pk")});
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err, "error: cannot create " + box.at("plain/pk/targets/frequencies.xml") + "\n");
    EXPECT_EQ(r.status, 1);
}

TEST(PackagesDirectory, CannotCreateTheDefault) {
    Sandbox box;
    box.write(".ostrand_instruments_limited", "a file\n");
    const auto r = build(box, {});
    EXPECT_EQ(r.err, "error: cannot create " + box.at(defaultPackages) + "/targets/frequencies.xml\n");
    EXPECT_EQ(r.status, 1);
}

TEST(PackagesDirectory, NotTouchedByHelpOrParseErrors) {
    Sandbox box;
    EXPECT_EQ(runQuillmake(box, {"-help"}).status, 0);
    EXPECT_EQ(runQuillmake(box, {"-config", "Debug"}).status, 1);
    EXPECT_EQ(runQuillmake(box, {"-bogus", "a.tbp"}).status, 1);
    EXPECT_FALSE(box.exists(".ostrand_instruments_limited"));
}

TEST(RootUserDirectory, Option) {
    Sandbox box;
    expectListed(build(box, {"-rootuserdir", box.at("root")}));
    expectFrequencies(box, "root/" + versionDirectory + "/packages");
    EXPECT_FALSE(box.exists(".ostrand_instruments_limited"));
}

TEST(RootUserDirectory, EnvironmentVariable) {
    Sandbox box;
    RunOptions run;
    run.environment["VELDANE_ROOT_USER_DIR"] = box.at("from-env");
    expectListed(build(box, {}, run));
    expectFrequencies(box, "from-env/" + versionDirectory + "/packages");

    expectListed(build(box, {"-rootuserdir", box.at("from-option")}, run));
    expectFrequencies(box, "from-option/" + versionDirectory + "/packages");
}

TEST(RootUserDirectory, EmptyOptionCountsAsNotGiven) {
    Sandbox box;
    expectListed(build(box, {"-rootuserdir", ""}));
    expectFrequencies(box, defaultPackages);
    EXPECT_FALSE(box.exists("inst/bad"));
}

TEST(Installation, BuildTreeHasItsConfiguration) {
    // The build tree's own bin/config.xml lies beside the program and leaves
    // the default in place.
    const std::filesystem::path program(quillmakePath());
    EXPECT_TRUE(std::filesystem::is_regular_file(program.parent_path() / "config.xml"));
}

TEST(Installation, RootUserDirectorySetting) {
    Sandbox box;
    const Installation inst(box,
                            configuration("<setting name=\"root-user-dir\" value=\"$(UserHomeDir)/cfg\"/>\n"));
    auto r = inst.build({}, {{"VELDANE_ROOT_USER_DIR", box.at("from-env")}});
    expectListed(r);
    expectFrequencies(box, "cfg/" + versionDirectory + "/packages");
    EXPECT_FALSE(box.exists("from-env"));

    r = inst.build({"-rootuserdir", box.at("opt")});
    expectListed(r);
    expectFrequencies(box, "opt/" + versionDirectory + "/packages");
}

TEST(Installation, EnvironmentVariable) {
    Sandbox box;
    const Installation inst(box, configuration("<environment-variable name=\"VELDANE_ROOT_USER_DIR\" "
                                               "value=\"$(StudioDir)/users\"/>\n"));
    expectListed(inst.build({}));
    expectFrequencies(box, "inst/users/" + versionDirectory + "/packages");
}

TEST(Installation, SystemMacro) {
    Sandbox box;
    const Installation inst(
        box, configuration("<system-macro name=\"SharedPackages\" value=\"$(StudioDir)/shared\"/>\n"));
    expectListed(inst.build({"-packagesdir", "$(SharedPackages)"}));
    expectFrequencies(box, "inst/shared");
}

TEST(Installation, StudioDirectory) {
    Sandbox box;
    const Installation inst(box,
                            configuration("<setting name=\"root-user-dir\" value=\"$(StudioDir)/users\"/>\n"));
    expectListed(inst.build({"-packagesdir", "$(StudioDir)/pk"}));
    expectFrequencies(box, "inst/pk");

    // -studiodir moves $(StudioDir), not the installation whose config.xml is read.
    expectListed(inst.build({"-studiodir", box.at("other"), "-packagesdir", "$(StudioDir)/pk"}));
    expectFrequencies(box, "other/pk");
    expectListed(inst.build({"-StudioDir", box.at("third")}));
    expectFrequencies(box, "inst/users/" + versionDirectory + "/packages");
}

TEST(Installation, BadConfigurationIsPassedOver) {
    Sandbox box;
    const Installation inst(
        box, "<configuration>\n<setting name=\"root-user-dir\" value=\"$(StudioDir)/bad\">\n</configuration>\n");
    const auto r = inst.build({});
    expectListed(r);
    expectFrequencies(box, defaultPackages);
    EXPECT_FALSE(box.exists("inst/bad"));
}
