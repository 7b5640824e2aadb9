#include "environment/system_macros.h"

#include "environment/user_environment.h"
#include "support/exceptions.h"
#include "support/file_path.h"
#include "support/macro_expansion.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <utility>
#include <vector>

namespace {

using Described = std::vector<std::pair<std::string, std::string>>;

// The described macros from the `from`th on: name and description.
Described descriptions(const SystemMacros &macros, size_t from = 0) {
    Described result;
    const auto &all = macros.macroDescriptions();
    for (size_t i = from; i < all.size(); ++i)
        result.emplace_back(all[i].name, all[i].description);
    return result;
}

const std::string frequencies =
    "<envelope>\n"
    "  <include filename=\"$(StudioDir)/targets/frequencies.xml\" />\n"
    "</envelope>\n";

}  // namespace

TEST(SystemMacros, StageOneTable) {
    SystemMacros macros;
    EXPECT_EQ(macros.macroCharacter(), '$');
    EXPECT_EQ(descriptions(macros),
              (Described{
                  {"Date", "Day Month Year e.g. 21 June 2011."},
                  {"DateYear", "Year e.g. 2011."},
                  {"DateMonth", "Month e.g. 01 to 12."},
                  {"DateDay", "Day e.g. 21."},
                  {"Time", "Hour:Minutes:Seconds e.g. 15:34:03."},
                  {"TimeHour", "Hour e.g. 15."},
                  {"TimeMinute", "Minute e.g. 34."},
                  {"TimeSecond", "Seconds e.g. 03."},
                  {"UnixTime", "Seconds since 00:00, Jan 1 1970 UTC"},
                  {"HostArch", "The CPU architecture that Tarnbench is running on e.g. x86."},
                  {"HostArchClass", "The class of CPU architecture that Tarnbench is running on e.g. intel, arm."},
                  {"HostOS", "The name of the operating system that Tarnbench is running on e.g. win."},
                  {"Micro", "The Tarnbench target e.g. ARM."},
                  {"TargetID", "ID number representing the Tarnbench target."},
                  {"HostEXE", "The file extension for executables on the CPU that Tarnbench is running on e.g. .exe."},
                  {"HostDLLExt", "The file extension for dynamic link libraries used by the operating system that "
                                 "Tarnbench is running on e.g. .dll, .so, .dylib."},
                  {"HostDLL", "The file extension for dynamic link libraries on the CPU that Tarnbench is running "
                              "on e.g. .dll."},
              }));

    const MacroMap &table = macros.systemMacros();
    EXPECT_EQ(table.size(), 17u);
    for (const char *clock : {"Date", "DateYear", "DateMonth", "DateDay", "Time", "TimeHour", "TimeMinute",
                              "TimeSecond", "UnixTime"})
        EXPECT_EQ(table.at(clock), "") << clock;
    EXPECT_EQ(table.at("HostOS"), "linux");
    EXPECT_EQ(table.at("Micro"), "ARM");
    EXPECT_EQ(table.at("TargetID"), "8");
    EXPECT_EQ(table.at("HostEXE"), "");
    EXPECT_EQ(table.at("HostDLLExt"), ".so");
    EXPECT_EQ(table.at("HostDLL"), ".so_" + table.at("HostArch"));
#if defined(__x86_64__)
    EXPECT_EQ(table.at("HostArch"), "x64");
    EXPECT_EQ(table.at("HostArchClass"), "intel");
#elif defined(__aarch64__)
    EXPECT_EQ(table.at("HostArch"), "arm64");
    EXPECT_EQ(table.at("HostArchClass"), "arm");
#endif
    EXPECT_TRUE(macros.globalMacros().empty());
}

TEST(SystemMacros, AddingReplacesTheValueAndDescribesAgain) {
    SystemMacros macros;
    const size_t before = macros.macroDescriptions().size();
    macros.addSystemMacro("Tool", "1", "A tool.");
    macros.addSystemMacro("Tool", "2", "The tool.");
    macros.addSystemMacro("Quiet", "q", "");
    EXPECT_EQ(macros.systemMacros().at("Tool"), "2");
    EXPECT_EQ(macros.systemMacros().at("Quiet"), "q");
    EXPECT_EQ(descriptions(macros, before), (Described{{"Tool", "A tool."}, {"Tool", "The tool."}}));
    macros.addPathSystemMacro("Dir", FilePath("/a/./b//c/"), "");
    EXPECT_EQ(macros.systemMacros().at("Dir"), "/a/b/c");
}

TEST(StudioMacros, StageTwoTable) {
    UserEnvironment user("/home/a", std::nullopt);
    SystemMacros macros;
    const size_t before = macros.macroDescriptions().size();
    addStudioMacros(macros, "/opt/studio/./x/..", {});
    const MacroMap &table = macros.systemMacros();
    const MacroMap expected{
        {"StudioMajorVersion", "5"},
        {"StudioMinorVersion", "4"},
        {"StudioRevision", "1"},
        {"StudioName", "Tarnbench for ARM"},
        {"StudioNameShort", "Tarnbench"},
        {"Platform", "arm"},
        {"ProductName", "Veldane for ARM"},
        {"ProductNameShort", "Veldane"},
        {"StudioDir", "/opt/studio"},
        {"StudioUserDir", "/home/a/.ostrand_instruments_limited/Veldane for ARM/v5"},
        {"HomeDir", "/home/a"},
        {"DesktopDir", "/home/a/Desktop"},
        {"DocumentsDir", "/home/a/Documents"},
        {"StudioExeName", "tarnbench"},
        {"StudioBuildToolExeName", "quillmake"},
        {"StudioBuildToolName", "Quillmake"},
        {"StudioScriptToolExeName", "quillscript"},
        {"StudioScriptToolName", "Quillscript"},
        {"StudioSimulatorExeName", "quillsim"},
        {"StudioSimulatorName", "Quillsim"},
        {"StudioArchiveFileExt", "tbr"},
        {"StudioPackageFileExt", "tbq"},
        {"StudioProjectFileExt", "tbp"},
        {"StudioSessionFileExt", "tbs"},
    };
    for (const auto &[name, value] : expected)
        EXPECT_EQ(table.at(name), value) << name;
    EXPECT_EQ(table.size(), 17u + expected.size());

    EXPECT_EQ(descriptions(macros, before),
              (Described{
                  {"StudioMajorVersion", "The major release version of software."},
                  {"StudioMinorVersion", "The minor release version of software."},
                  {"StudioRevision", "The release revision of software."},
                  {"StudioName", "The full name of studio."},
                  {"StudioNameShort", "The short name of studio."},
                  {"Platform", "The target platform."},
                  {"ProductNameShort", "The product name."},
                  {"StudioDir", "The install directory of the product."},
                  {"StudioUserDir", "The directory containing the user data."},
                  {"HomeDir", "Path to users home directory."},
                  {"DesktopDir", "Path to users desktop directory."},
                  {"DocumentsDir", "Path to users documents directory."},
                  {"StudioExeName", "The filename of the studio executable."},
                  {"StudioBuildToolExeName", "The filename of the build tool executable."},
                  {"StudioBuildToolName", "The name of the build tool executable."},
                  {"StudioScriptToolExeName", "The filename of the script tool executable."},
                  {"StudioScriptToolName", "The name of the script tool executable."},
                  {"StudioSimulatorExeName", "The filename of the simulator executable."},
                  {"StudioSimulatorName", "The name of the simulator executable."},
                  {"StudioArchiveFileExt", "The filename extension of a studio archive file."},
                  {"StudioPackageFileExt", "The filename extension of a studio package file."},
                  {"StudioProjectFileExt", "The filename extension of a studio project file."},
                  {"StudioSessionFileExt", "The filename extension of a studio session file."},
              }));
    // Known, though no listing shows it.
    EXPECT_EQ(expandMacros(macros, "$(ProductName)"), "Veldane for ARM");
}

TEST(StudioMacros, WithoutHome) {
    UserEnvironment user(std::nullopt, std::nullopt);
    SystemMacros macros;
    addStudioMacros(macros, "", {});
    EXPECT_EQ(macros.systemMacros().at("HomeDir"), "");
    EXPECT_EQ(macros.systemMacros().at("DesktopDir"), "/Desktop");
    EXPECT_EQ(macros.systemMacros().at("StudioUserDir"), "/.ostrand_instruments_limited/Veldane for ARM/v5");
}

TEST(StudioMacros, GlobalMacrosAreReplacedByTheSettingsList) {
    UserEnvironment user("/home/a", std::nullopt);
    SystemMacros macros;
    macros.globalMacros()["Old"] = "gone";
    addStudioMacros(macros, "/opt/studio", {"A=1", "B=x=y", "C", "A=2"});
    EXPECT_EQ(macros.globalMacros(), (MacroMap{{"A", "2"}, {"B", "x=y"}, {"C", ""}}));
}

struct PackagesDirectory : ::testing::Test {
    TestDirectory scratch;
    UserEnvironment user{scratch / "home", std::nullopt};
    SystemMacros macros;

    PackagesDirectory() { addStudioMacros(macros, "/opt/studio", {}); }
    const std::string &macro(const std::string &name) { return macros.systemMacros().at(name); }
};

TEST_F(PackagesDirectory, DefaultUnderTheStudioUserDirectory) {
    const size_t before = macros.macroDescriptions().size();
    setPackagesDirectory(macros, "$(StudioUserDir)/packages");
    const std::string packages = scratch / "home/.ostrand_instruments_limited/Veldane for ARM/v5/packages";
    EXPECT_EQ(macro("PackagesDir"), packages);
    EXPECT_EQ(macro("TargetsDir"), packages + "/targets");
    EXPECT_EQ(macro("SamplesDir"), packages + "/samples");
    EXPECT_EQ(TestDirectory::read(packages + "/targets/frequencies.xml"), frequencies);
    EXPECT_FALSE(FilePath(packages + "/samples").exists());
    EXPECT_EQ(descriptions(macros, before),
              (Described{
                  {"PackagesDir", "Path to the users packages directory."},
                  {"TargetsDir", "Path to the targets subdirectory of the packages directory."},
                  {"SamplesDir", "Path to the samples subdirectory of the packages directory."},
              }));
}

TEST_F(PackagesDirectory, ExpandedWithGlobalAndSystemMacrosOnly) {
    macros.globalMacros()["Where"] = "global-place";
    setPackagesDirectory(macros, scratch.path() + "/$(Where)/./$(HostOS)//$(Unknown:x)/");
    EXPECT_EQ(macro("PackagesDir"), scratch / "global-place/linux/x");
    EXPECT_TRUE(FilePath(scratch / "global-place/linux/x/targets/frequencies.xml").exists());
}

TEST_F(PackagesDirectory, SecondCallMovesTheMacrosAndLeavesTheFirst) {
    setPackagesDirectory(macros, scratch / "one");
    const std::string first = scratch / "one/targets/frequencies.xml";
    scratch.write("one/targets/frequencies.xml", "edited");
    setPackagesDirectory(macros, scratch / "two");
    EXPECT_EQ(macro("PackagesDir"), scratch / "two");
    EXPECT_EQ(macro("TargetsDir"), scratch / "two/targets");
    EXPECT_EQ(TestDirectory::read(scratch / "two/targets/frequencies.xml"), frequencies);
    EXPECT_EQ(TestDirectory::read(first), "edited");
}

TEST_F(PackagesDirectory, AnExistingFileIsLeftAlone) {
    scratch.write("p/targets/frequencies.xml", "<mine/>");
    setPackagesDirectory(macros, scratch / "p");
    EXPECT_EQ(TestDirectory::read(scratch / "p/targets/frequencies.xml"), "<mine/>");
}

TEST_F(PackagesDirectory, FailureToCreateTheFile) {
    scratch.write("file", "not a directory");
    try {
        setPackagesDirectory(macros, scratch / "file/p");
        FAIL() << "no exception";
    } catch (const HException &e) {
        EXPECT_EQ(e.message(), "cannot create " + scratch / "file/p/targets/frequencies.xml");
    }
    // The macros point there all the same.
    EXPECT_EQ(macro("PackagesDir"), scratch / "file/p");

    scratch.write("q/targets/frequencies.xml/inside", "");
    EXPECT_NO_THROW(setPackagesDirectory(macros, scratch / "q"));
}
