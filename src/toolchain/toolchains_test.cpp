// The toolchains' names, tool macros and what their tools can do, the GCC
// rows and their defaults, and the options of the driver's compile.

#include "project/project_property_class.h"
#include "toolchain/arm/arm_project_system.h"
#include "toolchain/gcc_host_project_system.h"
#include "toolchain/toolchain_test_fixture.h"

#include <map>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

using Host = Toolchain<GCCHostProjectSystem>;
using Arm = Toolchain<ARMProjectSystem>;

template <class System>
std::string expanded(const std::string &configuration, const std::map<std::string, std::string> &globals,
                     const std::string &text) {
    Toolchain<System> toolchain(configuration);
    for (const auto &[name, value] : globals)
        toolchain.macros.globalMacros()[name] = value;
    return toolchain.expand(text);
}

TEST(Toolchains, ToolMacros) {
    const struct {
        bool arm;
        const char *configuration;
        std::map<std::string, std::string> globals;
        const char *text, *expected;
    } cases[] = {
        // The hosted tools are found on the search path unless told.
        {false, "", {}, "$(GCC)|$(GPLUSPLUS)|$(AR)|$(OBJCOPY)|$(OBJDUMP)|$(RANLIB)|$(STRIP)",
         "gcc|g++|ar|objcopy|objdump|ranlib|strip"},
        {false, "", {}, "$(CC)|$(CCPP)", "/studio/bin/cc|/studio/bin/cc++"},
        {false, "gcc_prefix=\"arm-none-eabi-\"", {}, "$(GCC) $(AR)", "arm-none-eabi-gcc arm-none-eabi-ar"},
        {false, "", {{"GCCDIR", "/opt/gnu/bin"}}, "$(GCC)", "/opt/gnu/bin/gcc"},
        // Clang's names stay macros until expanded.
        {false, "use_clang_not_gcc=\"Yes\"", {{"CLANG_NAME", "clang-14"}}, "$(GCC)", "clang-14"},
        // A global macro wins at every level.
        {false, "build_toolchain_directory=\"/tools\"", {{"AR", "/my/ar"}}, "$(AR) $(GCC)", "/my/ar /tools/gcc"},
        {true, "", {{"AR", "/my/ar"}}, "$(AR)", "/my/ar"},
        // The target toolchain uses the installation's tools unless an
        // external gcc is asked.
        {true, "build_toolchain_directory=\"/cross/bin\"", {}, "$(GCC)|$(GPLUSPLUS)|$(CC1)|$(AS)|$(LD)|$(AR)|$(CLANG)",
         "/studio/bin/cc|/studio/bin/cc++|/cross/bin/cc1|/cross/bin/as|/cross/bin/ld|/cross/bin/ar|"
         "/studio/llvm/bin/clang"},
        {true, "use_external_gcc=\"Yes\" gcc_prefix=\"arm-none-eabi-\" build_toolchain_directory=\"\"", {},
         "$(GCC) $(AR)", "arm-none-eabi-gcc arm-none-eabi-ar"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(c.arm ? expanded<ARMProjectSystem>(c.configuration, c.globals, c.text)
                        : expanded<GCCHostProjectSystem>(c.configuration, c.globals, c.text),
                  c.expected)
            << c.configuration << " " << c.text;
}

// What a toolchain is and what its tools can do, in one line.
template <class System>
std::string traits(const std::string &configuration = "") {
    Toolchain<System> toolchain(configuration);
    System &s = toolchain.system;
    ProjectElement *project = toolchain.project, *source = toolchain.source;
    std::optional<std::string> prefix;
    return s.platformName() + " " + std::to_string(s.platformCode()) + " '" +
           s.executableFileExtension(project, "Debug") + "'" + (s.isHostedToolchain() ? " hosted" : "") +
           (s.supportsModuleScan(source, "Debug") ? " module-scan" : "") +
           (s.usesRanlib(project, "Debug") ? " ranlib" : "") +
           (s.usesModuleMapper(source, "Debug") ? " module-mapper" : "") +
           (s.usesBrenlowLinker(project, "Debug") ? " brenlow" : "") +
           (s.hasOwnValue(project, s.gccProperties.gccPrefix, "Debug", prefix) ? " prefix=" + *prefix : "");
}

TEST(Toolchains, WhatTheToolsCanDo) {
    EXPECT_EQ(traits<GCCHostProjectSystem>(), "LINUX 15 '' hosted module-scan ranlib module-mapper");
    // Without an external gcc every property counts as set, at its value.
    EXPECT_EQ(traits<ARMProjectSystem>(), "ARM 8 '.elf' prefix=$(GCCPREFIX:)");
    EXPECT_EQ(traits<ARMProjectSystem>("use_external_gcc=\"Yes\""), "ARM 8 '.axf' module-scan ranlib module-mapper");

    Host host;
    auto &h = host.system;
    EXPECT_TRUE(h.canCheckSyntax(host.source, "Debug"));
    EXPECT_FALSE(h.canCheckSyntax(host.header, "Debug"));
    EXPECT_EQ(h.moduleInterfaceFilePath(host.source, "Debug"), host.directory / "obj/m.gcm");
    std::optional<std::string> value;
    EXPECT_TRUE(h.hasOwnValue(host.project, h.nodeProperties.buildIntermediateDirectory, "Debug", value));
    EXPECT_EQ(value, "obj");
    Arm arm;
    EXPECT_TRUE(arm.system.clangSupported());
    EXPECT_EQ(arm.system.clangUnsupportedMessage(), "Clang is not supported on this OS version");

    // Steps without a compiler toolchain say so.
    h.checkSyntax(host.source, "Debug", &host.recorder);
    EXPECT_EQ(host.recorder.lines,
              (Lines{"begin Checking Syntax 'm.cpp'",
                     "error error: checking syntax with the LINUX toolchain is not available yet", "end"}));
    StringList options;
    EXPECT_TRUE(h.appendDriverOptions(host.source, "Debug", 3, "m.o", options));
    EXPECT_TRUE(options.empty());
}

// Each option a row stands for is the one that the compile command passes
// for that value.
TEST(GccTable, EachOptionPairIsWhatTheCompilePasses) {
    Host host("is_cpp_project=\"Yes\" gcc_debugging_level=\"None\"");
    GCCHostProjectSystem &system = host.system;
    const GCCProperties &gcc = system.gccProperties;
    std::size_t checked = 0;
    for (PropertyClass *row :
         {static_cast<PropertyClass *>(gcc.optimizationLevel), gcc.omitFramePointer, gcc.noCommon, gcc.wcharSize,
          gcc.shortEnum, gcc.signedChar, gcc.useBuiltins, gcc.mathErrno, gcc.strictAliasing, gcc.tlsModel,
          gcc.fastMath, gcc.diagnosticsShowCaret, gcc.colorDiagnostics, gcc.cplusplusLanguageStandard}) {
        const auto *project = dynamic_cast<ProjectPropertyClass *>(row);
        ASSERT_NE(project, nullptr) << row->name();
        EXPECT_FALSE(project->options().empty()) << row->name();
        EXPECT_EQ(project->optionFor("no such value"), "") << row->name();
        for (const auto &[option, value] : project->options()) {
            EXPECT_EQ(project->optionFor(value), option) << row->name();
            system.setPropertyValue(host.source, row, "Common", value);
            const Lines lines = host.step(host.source, 3, "obj/m.o", {host.directory / "m.cpp"});
            ASSERT_EQ(lines.size(), 3u);
            EXPECT_NE(lines[1].find(" " + option + " "), std::string::npos) << row->name() << "=" << value << ": " << lines[1];
            ++checked;
        }
        system.clearPropertyValue(host.source, row, "Common");
    }
    EXPECT_GT(checked, 40u);
}

TEST(HostToolchain, PreprocessorOptionsInTheirOrder) {
    Host host("c_user_include_directories=\"inc;/abs/./x/../y;$(ProjectDir)/gen\" "
              "c_preprocessor_definitions=\"A;B=2;;\" c_preprocessor_undefinitions=\"U\" "
              "c_include_files=\"force.h\" c_macros_files=\"m.h\"");
    auto &system = host.system;
    const auto options = [&](int step) {
        StringList list;
        system.appendPreprocessorOptions(host.source, "Debug", step, "obj/m.o", list);
        return list;
    };
    const std::string dir = host.directory.path();
    EXPECT_EQ(options(2), (StringList{"-Iinc", "-I/abs/y", "-I" + dir + "/gen", "-DA", "-DB=2", "-UU", "-include",
                                      "force.h", "-imacros", "m.h", "-MD", "-MF", dir + "/obj/m.d", "-MQ", "obj/m.o"}));

    // System directories only when the tree sets them; "-undef" after the
    // directories; the dependency options follow the property.
    system.setPropertyValue(host.project, system.toolProperties.cSystemIncludeDirectories, "Common", "/sys;/usr/x");
    system.setPropertyValue(host.project, system.toolProperties.cUndefineAllPreprocessorDefinitions, "Common", "Yes");
    system.setPropertyValue(host.project, system.nodeProperties.buildGenerateDependencyFile, "Common",
                            "User Header Files Only");
    EXPECT_EQ(options(3), (StringList{"-isystem", "/sys", "-isystem", "/usr/x", "-Iinc", "-I/abs/y", "-I" + dir + "/gen",
                                      "-undef", "-DA", "-DB=2", "-UU", "-include", "force.h", "-imacros", "m.h", "-MMD",
                                      "-MF", dir + "/obj/m.d", "-MQ", "obj/m.o"}));

    system.setPropertyValue(host.project, system.nodeProperties.buildGenerateDependencyFile, "Common", "No");
    system.setPropertyValue(host.project, system.toolProperties.cIgnoreIncludes, "Common", "Yes");
    EXPECT_EQ(options(2), (StringList{"-undef", "-DA", "-DB=2", "-UU", "-include", "force.h", "-imacros", "m.h"}));
}

TEST(HostToolchain, DriverCompileArgumentsInTheirOrder) {
    Host host("c_preprocessor_definitions=\"D\" gcc_optimization_level=\"Optimize For More Size\" "
              "gcc_cplusplus_language_standard=\"c++20\" cpp_enable_exceptions=\"No\" "
              "gcc_enable_all_warnings=\"Yes\" gcc_cpp_only_all_warnings_command_line_options=\"-Wold-style-cast\" "
              "gcc_omit_frame_pointer=\"Yes\" gcc_signed_char=\"No\" build_treat_warnings_as_errors=\"Yes\" "
              "c_additional_options=\"-DQ=&quot;a b&quot; -pipe\" cpp_only_additional_options_from_file=\"opts.txt\" "
              "gcc_disable_function_inlining=\"Yes\" build_generate_dependency_file=\"No\"");
    host.directory.write("opts.txt", "-fno-plt /* a comment\nthat goes on */ -fpic\n\n/* only a comment */\n-Wshadow\n");
    EXPECT_EQ(host.step(host.source, 3, "obj/m.o", {host.directory / "m.cpp"}),
              (Lines{"begin Compiling 'm.cpp'",
                     "command @ | g++ -xc++ -c -fmessage-length=0 -DD -fno-exceptions -Wall -Wextra -Wold-style-cast "
                     "-std=c++20 -fomit-frame-pointer -ffunction-sections -fdata-sections -Werror -DQ=a b -pipe "
                     // Each line of the file is one argument, blanks and all:
                     // "-fno-plt " and " -fpic".
                     "-fno-plt   -fpic -Wshadow -g -fno-signed-char -Oz -fno-inline-functions @/m.cpp -o obj/m.o | "
                     "@/obj/m.o",
                     "end"}));

    // A missing options file ends the step with its words, and no command.
    ::unlink((host.directory / "opts.txt").c_str());
    EXPECT_EQ(host.step(host.source, 3, "obj/m.o", {host.directory / "m.cpp"}),
              (Lines{"begin Locating Additional Options File", "error Additional options file 'opts.txt' does not exist.",
                     "end"}));
}

}  // namespace
