// Preprocessing one file through the driver, and the compile commands of a
// project with a precompiled header.

#include "toolchain/gcc_host_project_system.h"
#include "toolchain/toolchain_test_fixture.h"

#include <gtest/gtest.h>

namespace {

using Host = Toolchain<GCCHostProjectSystem>;

TEST(HostPreprocess, IntoAFileBesideTheObjects) {
    Host host("c_preprocessor_definitions=\"A=1\" c_user_include_directories=\"inc\" cpp_enable_rtti=\"No\" "
              "gcc_optimization_level=\"Level 1\" build_debug_information=\"No\" gcc_function_sections=\"No\" "
              "gcc_data_sections=\"No\"");
    CommandBuilder builder;
    std::string result;
    host.system.preprocessFile(host.source, "Debug", &builder, false, {"-C;-H", "-P"}, &result);
    const std::string dir = host.directory.path();
    EXPECT_EQ(result, dir + "/obj/m_PP.cpp");
    EXPECT_EQ(builder.lines, (std::vector<std::string>{
                                 "begin Preprocessing m.cpp",
                                 "g++ -c -fno-rtti -E -Iinc -DA=1 -O1 -fno-rtti -C -H -P " + dir + "/m.cpp -o " + dir +
                                     "/obj/m_PP.cpp => " + dir + "/obj/m_PP.cpp",
                                 "end",
                             }));
}

TEST(HostPreprocess, MacrosToTheOutputWithoutAFile) {
    Host host("build_debug_information=\"No\" gcc_function_sections=\"No\" gcc_data_sections=\"No\" "
              "cpp_enable_rtti=\"None\" cpp_enable_exceptions=\"None\"");
    CommandBuilder builder;
    host.system.preprocessFile(host.source, "Debug", &builder, true, {}, nullptr);
    const std::string dir = host.directory.path();
    // No dependency options: there is no output to name.
    EXPECT_EQ(builder.lines[1], "g++ -c -E -dM " + dir + "/m.cpp => ");
}

TEST(HostPrecompiledHeader, TheHeaderComesFirstAndEveryOtherCompileIncludesIt) {
    Host host("gcc_enable_precompiled_header=\"Yes\" is_cpp_project=\"Yes\" build_debug_information=\"No\" gcc_function_sections=\"No\" "
              "gcc_data_sections=\"No\" build_generate_dependency_file=\"No\"");
    GCCHostProjectSystem &system = host.system;
    const std::string dir = host.directory.path();
    // Marked on the header only when the project enables it.
    EXPECT_EQ(system.precompiledHeaderOf(host.source, "Debug"), nullptr);
    system.setPropertyValue(host.header, system.gccProperties.precompiledHeader, "Common", "Yes");
    EXPECT_EQ(system.precompiledHeaderOf(host.source, "Debug"), host.header);
    EXPECT_EQ(system.precompiledHeaderStep(host.header, "Debug"), 3);
    EXPECT_EQ(system.precompiledHeaderStep(host.source, "Debug"), 0);
    EXPECT_TRUE(system.scanModuleDependencies(host.project, "Debug"));
    EXPECT_EQ(system.filePrerequisites(host.source, "Debug"), (std::vector<ProjectElement *>{host.header}));
    EXPECT_TRUE(system.filePrerequisites(host.header, "Debug").empty());
    EXPECT_EQ(system.outputFilePath(3, host.header, "Debug"), dir + "/h.h.gch");
    StringList forced;
    system.forcedIncludeFiles(host.source, "Debug", forced);
    EXPECT_EQ(forced, (StringList{dir + "/h.h"}));

    CommandBuilder builder;
    system.buildStep(host.header, "Debug", 3, "h.h.gch", dir + "/h.h.gch", {dir + "/h.h"}, &builder, 0);
    system.buildStep(host.source, "Debug", 3, "obj/m.o", dir + "/obj/m.o", {dir + "/m.cpp"}, &builder, 0);
    EXPECT_EQ(builder.lines, (std::vector<std::string>{
                                 "begin Compiling 'h.h'",
                                 "g++ -xc++ -c -fmessage-length=0 -x c++-header " + dir + "/h.h => " + dir + "/h.h.gch",
                                 "end",
                                 "begin Compiling 'm.cpp'",
                                 "g++ -xc++ -c -fmessage-length=0 -include " + dir + "/h.h -Winvalid-pch " + dir +
                                     "/m.cpp -o obj/m.o => " + dir + "/obj/m.o",
                                 "end",
                             }));

    // Disabled on the project: the header is a header again.
    system.setPropertyValue(host.project, system.gccProperties.enablePrecompiledHeader, "Common", "No");
    EXPECT_EQ(system.precompiledHeaderStep(host.header, "Debug"), 0);
    EXPECT_FALSE(system.scanModuleDependencies(host.project, "Debug"));
}

}  // namespace
