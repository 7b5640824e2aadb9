// Where a run puts the packages directory: the defaults under the home
// directory, the options, the environment, and an installation's config.xml.
// Every run that gets past the macros writes targets/frequencies.xml there.

#include "harness.h"

#include <gtest/gtest.h>

#include <filesystem>

using e2e::expectResult;
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
const std::string listed = "Common\nDebug\n";

const std::string version = "/Veldane for ARM/v5/packages";
const std::string defaultPackages = ".ostrand_instruments_limited" + version;

// Writes a.tbp into the sandbox and lists the configurations of a.tbp in
// the working directory, which is the sandbox unless `options` say otherwise.
e2e::RunResult list(const Sandbox &box, std::vector<std::string> arguments, const RunOptions &options = {}) {
    box.write("a.tbp", solution);
    arguments.insert(arguments.end(), {"-config", "Debug", "-showconfigs", "a.tbp"});
    return runQuillmake(box, arguments, options);
}

std::string configuration(const std::string &body) {
    return "<?xml version=\"1.0\"?>\n<configuration>\n" + body + "</configuration>\n";
}

struct Case {
    // An installation of its own, a copy of the program in inst/bin beside
    // this config.xml; if empty, the program of the build tree, whose
    // config.xml leaves the defaults in place.
    std::string installation;
    std::vector<std::string> arguments;
    std::string rootUserDirVariable;  // unset if empty
    std::string packages;             // relative to the sandbox
};

}  // namespace

TEST(PackagesDirectory, EachPlaceAndWhatWinsOverIt) {
    ASSERT_TRUE(std::filesystem::is_regular_file(std::filesystem::path(quillmakePath()).parent_path() / "config.xml"));
    const std::string cfg = configuration("<setting name=\"root-user-dir\" value=\"$(UserHomeDir)/cfg\"/>\n");
    const std::string users = configuration("<setting name=\"root-user-dir\" value=\"$(StudioDir)/users\"/>\n");
    const std::vector<Case> cases{
        {"", {}, "", defaultPackages},
        {"", {"-packagesdir", "<box>/elsewhere"}, "", "elsewhere"},
        {"", {"-packagesdir", "$(HomeDir)/$(ProductNameShort)/$(Missing:fallback)//"}, "", "Veldane/fallback"},
        // The command line's macros are defined after it.
        {"", {"-D", "Where=here", "-packagesdir", "$(HomeDir)/$(Where:not-yet)"}, "", "not-yet"},
        {"", {"-rootuserdir", "<box>/root"}, "", "root" + version},
        {"", {}, "<box>/from-env", "from-env" + version},
        {"", {"-rootuserdir", "<box>/from-option"}, "<box>/from-env", "from-option" + version},
        // An empty option counts as not given.
        {"", {"-rootuserdir", ""}, "", defaultPackages},

        // The installation's setting wins over the variable, the option over both.
        {cfg, {}, "<box>/from-env", "cfg" + version},
        {cfg, {"-rootuserdir", "<box>/opt"}, "", "opt" + version},
        {configuration("<environment-variable name=\"VELDANE_ROOT_USER_DIR\" value=\"$(StudioDir)/users\"/>\n"),
         {}, "", "inst/users" + version},
        {configuration("<system-macro name=\"SharedPackages\" value=\"$(StudioDir)/shared\"/>\n"),
         {"-packagesdir", "$(SharedPackages)"}, "", "inst/shared"},
        {users, {"-packagesdir", "$(StudioDir)/pk"}, "", "inst/pk"},
        // -studiodir moves $(StudioDir), not the installation whose config.xml is read.
        {users, {"-studiodir", "<box>/other", "-packagesdir", "$(StudioDir)/pk"}, "", "other/pk"},
        {users, {"-StudioDir", "<box>/third"}, "", "inst/users" + version},
        // A configuration that isn't well formed is passed over.
        {"<configuration>\n<setting name=\"root-user-dir\" value=\"$(StudioDir)/bad\">\n</configuration>\n",
         {}, "", defaultPackages},
    };
    for (const Case &c : cases) {
        Sandbox box;
        RunOptions options;
        if (!c.installation.empty()) {
            options.program = box.at("inst/bin/quillmake");
            box.write("inst/bin/config.xml", c.installation);
            std::filesystem::copy_file(quillmakePath(), options.program);
        }
        if (!c.rootUserDirVariable.empty())
            options.environment["VELDANE_ROOT_USER_DIR"] = box.expand(c.rootUserDirVariable);
        std::vector<std::string> arguments;
        for (const std::string &argument : c.arguments)
            arguments.push_back(box.expand(argument));
        expectResult(list(box, arguments, options), listed, "", 0);
        EXPECT_EQ(box.read(c.packages + "/targets/frequencies.xml"), frequencies) << c.packages;
        EXPECT_FALSE(box.exists(c.packages + "/samples"));
        // Nothing is made in the places that lost.
        for (const std::string loser : {".ostrand_instruments_limited", "from-env", "inst/bad"})
            EXPECT_EQ(box.exists(loser), c.packages.starts_with(loser)) << c.packages;
    }
}

TEST(PackagesDirectory, AnExistingFileRelativePathsAndFailures) {
    Sandbox box;
    box.write(defaultPackages + "/targets/frequencies.xml", "<mine/>\n");
    expectResult(list(box, {}), listed, "", 0);
    EXPECT_EQ(box.read(defaultPackages + "/targets/frequencies.xml"), "<mine/>\n");

    RunOptions inWork;
    inWork.workingDirectory = box.at("work");
    box.write("work/a.tbp", solution);
    expectResult(list(box, {"-packagesdir", "pk"}, inWork), listed, "", 0);
    EXPECT_EQ(box.read("work/pk/targets/frequencies.xml"), frequencies);

    box.write("plain", "a file, not a directory\n");
    expectResult(list(box, {"-packagesdir", box.at("plain/pk")}), "",
                 "error: cannot create " + box.at("plain/pk/targets/frequencies.xml") + "\n", 1);
}

TEST(PackagesDirectory, NotMadeByHelpOrParseErrorsAndTheDefaultThatCantBe) {
    Sandbox box;
    EXPECT_EQ(runQuillmake(box, {"-help"}).status, 0);
    EXPECT_EQ(runQuillmake(box, {"-config", "Debug"}).status, 1);
    EXPECT_EQ(runQuillmake(box, {"-bogus", "a.tbp"}).status, 1);
    EXPECT_FALSE(box.exists(".ostrand_instruments_limited"));

    box.write(".ostrand_instruments_limited", "a file\n");
    expectResult(list(box, {}), "", "error: cannot create " + box.at(defaultPackages) + "/targets/frequencies.xml\n",
                 1);
}
