// Preprocessing one file through the driver, and the compile commands of a
// project with a precompiled header.

#include "toolchain/gcc_host_project_system.h"
#include "toolchain/toolchain_test_fixture.h"

#include <gtest/gtest.h>

namespace {

using Host = Toolchain<GCCHostProjectSystem>;

TEST(HostPreprocess, IntoAFileBesideTheObjectsOrMacrosToTheOutput) {
    Host host("c_preprocessor_definitions=\"A=1\" c_user_include_directories=\"inc\" cpp_enable_rtti=\"No\" "
              "gcc_optimization_level=\"Level 1\" build_debug_information=\"No\" gcc_function_sections=\"No\" "
              "gcc_data_sections=\"No\"");
    std::string result;
    host.system.preprocessFile(host.source, "Debug", &host.recorder, false, {"-C;-H", "-P"}, &result);
    EXPECT_EQ(result, host.directory / "obj/m_PP.cpp");
    EXPECT_EQ(host.recorder.lines,
              (Lines{"begin Preprocessing m.cpp",
                     "command @ | g++ -c -fno-rtti -E -Iinc -DA=1 -O1 -fno-rtti -C -H -P @/m.cpp -o @/obj/m_PP.cpp | "
                     "@/obj/m_PP.cpp",
                     "end"}));

    Host macros("build_debug_information=\"No\" gcc_function_sections=\"No\" gcc_data_sections=\"No\" "
                "cpp_enable_rtti=\"None\" cpp_enable_exceptions=\"None\"");
    macros.system.preprocessFile(macros.source, "Debug", &macros.recorder, true, {}, nullptr);
    // No dependency options: there is no output to name.
    EXPECT_EQ(macros.recorder.lines[1], "command @ | g++ -c -E -dM @/m.cpp | ");
}

TEST(HostPrecompiledHeader, TheHeaderComesFirstAndEveryOtherCompileIncludesIt) {
    Host host("gcc_enable_precompiled_header=\"Yes\" is_cpp_project=\"Yes\" build_debug_information=\"No\" "
              "gcc_function_sections=\"No\" gcc_data_sections=\"No\" build_generate_dependency_file=\"No\"");
    GCCHostProjectSystem &system = host.system;
    // Marked on the header only when the project enables it.
    EXPECT_EQ(system.precompiledHeaderOf(host.source, "Debug"), nullptr);
    system.setPropertyValue(host.header, system.gccProperties.precompiledHeader, "Common", "Yes");
    EXPECT_EQ(system.precompiledHeaderOf(host.source, "Debug"), host.header);
    EXPECT_EQ(system.precompiledHeaderStep(host.header, "Debug"), 3);
    EXPECT_EQ(system.precompiledHeaderStep(host.source, "Debug"), 0);
    EXPECT_TRUE(system.scanModuleDependencies(host.project, "Debug"));
    EXPECT_EQ(system.filePrerequisites(host.source, "Debug"), (std::vector<ProjectElement *>{host.header}));
    EXPECT_TRUE(system.filePrerequisites(host.header, "Debug").empty());
    EXPECT_EQ(system.outputFilePath(3, host.header, "Debug"), host.directory / "h.h.gch");
    StringList forced;
    system.forcedIncludeFiles(host.source, "Debug", forced);
    EXPECT_EQ(forced, (StringList{host.directory / "h.h"}));

    EXPECT_EQ(host.step(host.header, 3, "h.h.gch", {host.directory / "h.h"}),
              (Lines{"begin Compiling 'h.h'", "command @ | g++ -xc++ -c -fmessage-length=0 -x c++-header @/h.h | @/h.h.gch",
                     "end"}));
    EXPECT_EQ(host.step(host.source, 3, "obj/m.o", {host.directory / "m.cpp"}),
              (Lines{"begin Compiling 'm.cpp'",
                     "command @ | g++ -xc++ -c -fmessage-length=0 -include @/h.h -Winvalid-pch @/m.cpp -o obj/m.o | "
                     "@/obj/m.o",
                     "end"}));

    // Disabled on the project: the header is a header again.
    system.setPropertyValue(host.project, system.gccProperties.enablePrecompiledHeader, "Common", "No");
    EXPECT_EQ(system.precompiledHeaderStep(host.header, "Debug"), 0);
    EXPECT_FALSE(system.scanModuleDependencies(host.project, "Debug"));
}

}  // namespace
