// The user's two settings files: what a run reads from them, and what it
// writes back when it ends.

#include "harness.h"

#include <gtest/gtest.h>

using e2e::Sandbox;

namespace {

const std::string root = ".ostrand_instruments_limited/settings.xml";
const std::string version = ".ostrand_instruments_limited/Veldane for ARM/v5/settings.xml";

std::string settings(const std::string &entries) {
    return "<!DOCTYPE Veldane_Settings_File>\n<settings>\n" + entries + "</settings>\n";
}

std::string entry(const std::string &name, const std::string &value) {
    return "  <setting name=\"" + name + "\">" + value + "</setting>\n";
}

// An ARM library of one C file; a run shows its commands.
e2e::RunResult show(const Sandbox &box) {
    box.write("a.tbp", "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"a\"><configuration Name=\"Debug\"/>"
                       "<project Name=\"p\"><configuration Name=\"Common\" arm_core_type=\"Cortex-M3\" "
                       "build_intermediate_directory=\"o\" project_type=\"Library\"/><file file_name=\"c.c\"/>"
                       "</project></solution>\n");
    box.write("c.c", "int c;\n");
    return e2e::runQuillmake(box, {"-config", "Debug", "-threadnum", "1", "-show", "a.tbp"});
}

}  // namespace

TEST(UserSettings, TheVersionStoreIsReadAndWrittenBackWhole) {
    Sandbox box;
    const std::string mine = entry("ARM/Build/StudioDir Directory", box.at("tools")) +
                             entry("Environment/Macros/Global Macros", "A=1;B=x=y") +
                             entry("Environment/Package/Destination Directory", box.at("m/$(A)/$(B)")) +
                             entry("Text Editor/Opaque", "&lt;&amp;&quot;&middot;");
    box.write(version, settings(mine));
    // The root store holds none of these.
    const std::string rootStore = settings(entry("Environment/Package/Destination Directory", box.at("r")));
    box.write(root, rootStore);
    const auto shown = show(box);
    EXPECT_EQ(shown.out.substr(0, shown.out.find(' ')) + shown.err, box.at("tools/gcc/arm-none-eabi/bin/cc1"));
    EXPECT_TRUE(box.exists("m/1/x=y/targets/frequencies.xml") && !box.exists("r"));
    EXPECT_EQ(box.read(version) + box.read(root), settings(mine) + rootStore);
}
