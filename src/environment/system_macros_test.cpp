#include "environment/system_macros.h"

#include "environment/user_environment.h"
#include "support/exceptions.h"
#include "support/file_path.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

namespace {

// The described macros from the `from`th on: "name: description" lines.
std::string descriptions(const SystemMacros &macros, size_t from) {
    std::string result;
    for (size_t i = from; i < macros.macroDescriptions().size(); ++i)
        result += macros.macroDescriptions()[i].name + ": " + macros.macroDescriptions()[i].description + "\n";
    return result;
}

} // namespace

TEST(SystemMacros, HostAndClockMacrosAndAdding) {
    SystemMacros macros;
    const MacroMap &table = macros.systemMacros();
    // The clock macros are only known here; expansion gives their values.
    for (const char *clock : {"Date", "DateYear", "DateMonth", "DateDay", "Time", "TimeHour", "TimeMinute",
                              "TimeSecond", "UnixTime"})
        EXPECT_EQ(table.at(clock), "") << clock;
    EXPECT_EQ(table.at("HostDLL"), ".so_" + table.at("HostArch"));
    EXPECT_EQ(table.size(), 17u);
    EXPECT_TRUE(macros.globalMacros().empty());

    // Adding replaces the value and describes it again.
    macros.addSystemMacro("Tool", "1", "A tool.");
    macros.addSystemMacro("Tool", "2", "The tool.");
    macros.addSystemMacro("Quiet", "q", "");
    macros.addPathSystemMacro("Dir", FilePath("/a/./b//c/"), "");
    EXPECT_EQ(table.at("Tool") + " " + table.at("Quiet") + " " + table.at("Dir"), "2 q /a/b/c");
    EXPECT_EQ(descriptions(macros, 17), "Tool: A tool.\nTool: The tool.\n");
}

TEST(StudioMacros, DirectoriesAndNames) {
    UserEnvironment user("/home/a", std::nullopt);
    SystemMacros macros;
    macros.globalMacros()["Old"] = "gone";
    addStudioMacros(macros, "/opt/studio/./x/..", {"A=1", "B=x=y", "C", "A=2"});
    const MacroMap &table = macros.systemMacros();
    const MacroMap computed{
        {"Platform", "arm"},          {"StudioDir", "/opt/studio"},         {"DocumentsDir", "/home/a/Documents"},
        {"HomeDir", "/home/a"},       {"DesktopDir", "/home/a/Desktop"},
        {"StudioUserDir", "/home/a/.ostrand_instruments_limited/Veldane for ARM/v5"},
    };
    for (const auto &[name, value] : computed)
        EXPECT_EQ(table.at(name), value) << name;
    EXPECT_EQ(table.size(), 17u + 24u);
    // All but ProductName are described, which is known all the same.
    EXPECT_EQ(expandMacros(macros, "$(ProductName)"), "Veldane for ARM");
    EXPECT_EQ(macros.macroDescriptions().size(), 17u + 23u);
    // The global macros are replaced by the list: a later name wins.
    EXPECT_EQ(macros.globalMacros(), (MacroMap{{"A", "2"}, {"B", "x=y"}, {"C", ""}}));

    UserEnvironment noHome(std::nullopt, std::nullopt);
    addStudioMacros(macros, "", {});
    EXPECT_EQ(table.at("HomeDir"), "");
    EXPECT_EQ(table.at("DesktopDir"), "/Desktop");
    EXPECT_EQ(table.at("StudioUserDir"), "/.ostrand_instruments_limited/Veldane for ARM/v5");
}

TEST(PackagesDirectory, MacrosAndTheFrequenciesFile) {
    TestDirectory scratch;
    UserEnvironment user{scratch / "home", std::nullopt};
    SystemMacros macros;
    addStudioMacros(macros, "/opt/studio", {});
    const auto macro = [&](const char *name) { return macros.systemMacros().at(name); };
    const std::string frequencies = "<envelope>\n"
                                    "  <include filename=\"$(StudioDir)/targets/frequencies.xml\" />\n"
                                    "</envelope>\n";

    const size_t before = macros.macroDescriptions().size();
    setPackagesDirectory(macros, "$(StudioUserDir)/packages");
    const std::string packages = scratch / "home/.ostrand_instruments_limited/Veldane for ARM/v5/packages";
    EXPECT_EQ(macro("PackagesDir"), packages);
    EXPECT_EQ(macro("TargetsDir"), packages + "/targets");
    EXPECT_EQ(macro("SamplesDir"), packages + "/samples");
    EXPECT_EQ(TestDirectory::read(packages + "/targets/frequencies.xml"), frequencies);
    EXPECT_FALSE(FilePath(packages + "/samples").exists());
    EXPECT_EQ(descriptions(macros, before),
              "PackagesDir: Path to the users packages directory.\n"
              "TargetsDir: Path to the targets subdirectory of the packages directory.\n"
              "SamplesDir: Path to the samples subdirectory of the packages directory.\n");

    // Expanded with the global and system macros only.
    macros.globalMacros()["Where"] = "global-place";
    setPackagesDirectory(macros, scratch.path() + "/$(Where)/./$(HostOS)//$(Unknown:x)/");
    EXPECT_EQ(macro("PackagesDir"), scratch / "global-place/linux/x");
    EXPECT_EQ(TestDirectory::read(scratch / "global-place/linux/x/targets/frequencies.xml"), frequencies);

    // A second call moves the macros and leaves the first directory; an
    // existing file is left alone.
    scratch.write("global-place/linux/x/targets/frequencies.xml", "edited");
    setPackagesDirectory(macros, scratch / "global-place/linux/x");
    EXPECT_EQ(TestDirectory::read(scratch / "global-place/linux/x/targets/frequencies.xml"), "edited");
    setPackagesDirectory(macros, scratch / "two");
    EXPECT_EQ(macro("TargetsDir"), scratch / "two/targets");
    EXPECT_EQ(TestDirectory::read(scratch / "two/targets/frequencies.xml"), frequencies);

    scratch.write("file", "not a directory");
    try {
        setPackagesDirectory(macros, scratch / "file/p");
        FAIL() << "no exception";
    } catch (const HException &e) {
        EXPECT_EQ(e.message(), "cannot create " + scratch / "file/p/targets/frequencies.xml");
    }
    // The macros point there all the same.
    EXPECT_EQ(macro("PackagesDir"), scratch / "file/p");
    // A directory in the file's place counts as the file.
    scratch.write("q/targets/frequencies.xml/inside", "");
    EXPECT_NO_THROW(setPackagesDirectory(macros, scratch / "q"));
}
