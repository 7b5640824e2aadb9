#include "environment/system_macros.h"

#include "environment/user_environment.h"

#include <gtest/gtest.h>

TEST(StudioMacros, DirectoriesAndNames) {
    UserEnvironment user("/home/a", std::nullopt);
    SystemMacros macros;
    macros.globalMacros()["Old"] = "gone";
    addStudioMacros(macros, "/opt/studio/./x/..", {"A=1", "B=x=y", "C", "A=2"});
    const MacroMap &table = macros.systemMacros();
    const MacroMap computed{
        {"StudioDir", "/opt/studio"}, {"DocumentsDir", "/home/a/Documents"}, {"HomeDir", "/home/a"},
        {"DesktopDir", "/home/a/Desktop"}, {"StudioUserDir", "/home/a/.ostrand_instruments_limited/Veldane for ARM/v5"},
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
