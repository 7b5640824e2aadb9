// The toolchains' names, tool macros and what their tools can do, and the
// commands of the driver's compile, preprocessing and precompiled headers.

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

TEST(Toolchains, ToolMacros) {
    const struct {
        bool arm;
        const char *configuration;
        std::map<std::string, std::string> globals;
        const char *text, *expected;
    } cases[] = {
        // The installation's own drivers.
        {false, "", {}, "$(CC)|$(CCPP)", "/studio/bin/cc|/studio/bin/cc++"},
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
        // The tool directory names the target, which the core decides.
        {true, "", {}, "$(CC1)|$(LD)", "/studio/gcc/arm-none-eabi/bin/cc1|/studio/gcc/arm-none-eabi/bin/ld"},
        {true, "arm_instruction_set=\"ARM64\"", {}, "$(AS)", "/studio/gcc/aarch64-none-elf/bin/as"},
        {true, "use_external_gcc=\"Yes\" build_toolchain_directory=\"/x/$(GCCTarget)\" gcc_target=\"armeb-none-eabi\"",
         {}, "$(GCC)", "/x/armeb-none-eabi/gcc"},
        {true, "arm_core_type=\"Cortex-M4\" arm_fp_abi=\"Hard\" arm_fpu_type=\"FPv4-SP-D16\"", {},
         "$(CoreType) $(Arch) $(LibExt)", "cortex-m4 v7em _v7em_fpv4_sp_d16_hard_t_le_eabi"},
    };
    for (const auto &c : cases) {
        Host host(c.configuration);
        Arm arm(c.configuration);
        for (const auto &[name, value] : c.globals)
            host.macros.globalMacros()[name] = arm.macros.globalMacros()[name] = value;
        EXPECT_EQ(c.arm ? arm.expand(c.text) : host.expand(c.text), c.expected) << c.configuration << " " << c.text;
    }
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
    EXPECT_EQ(traits<ARMProjectSystem>(), "ARM 8 '.elf' module-scan prefix=$(GCCPREFIX:)");
    EXPECT_EQ(traits<ARMProjectSystem>("use_external_gcc=\"Yes\""), "ARM 8 '.axf' module-scan ranlib module-mapper");

    Host host;
    auto &h = host.system;
    EXPECT_TRUE(h.canCheckSyntax(host.source, "Debug"));
    EXPECT_FALSE(h.canCheckSyntax(host.header, "Debug"));
    EXPECT_EQ(h.moduleInterfaceFilePath(host.source, "Debug"), host.directory / "obj/m.gcm");
    Arm arm;
    EXPECT_TRUE(arm.system.clangSupported());
    EXPECT_EQ(arm.system.clangUnsupportedMessage(), "Clang is not supported on this OS version");
    // The hosted tools leave out the rows of a target.
    const Names target = {"gcc_short_enum", "gcc_enable_modules"};
    ProjectSystem::PropertyClassList onHost, onArm;
    h.appendCppProperties(host.source, "Debug", onHost);
    arm.system.appendCppProperties(arm.source, "Debug", onArm);
    EXPECT_EQ(among(onHost, target), Names{});
    EXPECT_EQ(among(onArm, target), target);

    // The syntax check is a driver compile with -fsyntax-only, of the file
    // as the project names it.
    h.checkSyntax(host.source, "Debug", &host.recorder);
    EXPECT_EQ(host.recorder.lines,
              (Lines{"begin Checking Syntax m.cpp", "command @ | g++ -c -fsyntax-only m.cpp | ", "end"}));
}

// Each option a row stands for is the one that the compile command passes
// for that value.
TEST(GccTable, EachOptionPairIsWhatTheCompilePasses) {
    Host host("is_cpp_project=\"Yes\" gcc_debugging_level=\"None\"");
    GCCHostProjectSystem &system = host.system;
    const GCCProperties &gcc = system.gccProperties;
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
        }
        system.clearPropertyValue(host.source, row, "Common");
    }
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
    // None until the header is marked; then every other compile waits for it.
    EXPECT_EQ(system.precompiledHeaderOf(host.source, "Debug"), nullptr);
    system.setPropertyValue(host.header, system.gccProperties.precompiledHeader, "Common", "Yes");
    EXPECT_EQ(system.filePrerequisites(host.source, "Debug"), (std::vector<ProjectElement *>{host.header}));
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

    // The header lists its row beside the analysis switch.
    const Names rows = {"gcc_precompiled_header", "analyze_headers", "gcc_optimization_level"};
    EXPECT_EQ(among(system.toolPropertyValues(host.header, "Debug"), rows),
              (Names{"gcc_precompiled_header", "analyze_headers"}));
}

}  // namespace
