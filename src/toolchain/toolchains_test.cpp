// The toolchains' names, extensions, tool macros and what their tools can do.

#include "support/test_directory.h"
#include "toolchain/arm/arm_project_system.h"
#include "toolchain/gcc_host_project_system.h"
#include "toolchain/toolchain_test_fixture.h"

#include "build/builder.h"
#include "project/project_property_class.h"

#include <algorithm>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

TEST(HostToolchain, FindsTheToolsOnTheSearchPathUnlessTold) {
    Toolchain<GCCHostProjectSystem> plain;
    EXPECT_EQ(plain.expand("$(GCC)|$(GPLUSPLUS)|$(AR)|$(OBJCOPY)|$(OBJDUMP)|$(RANLIB)|$(STRIP)"),
              "gcc|g++|ar|objcopy|objdump|ranlib|strip");
    EXPECT_EQ(plain.expand("$(CC)|$(CCPP)"), "/studio/bin/cc|/studio/bin/cc++");

    Toolchain<GCCHostProjectSystem> prefixed("gcc_prefix=\"arm-none-eabi-\"");
    EXPECT_EQ(prefixed.expand("$(GCC) $(AR)"), "arm-none-eabi-gcc arm-none-eabi-ar");

    Toolchain<GCCHostProjectSystem> directory;
    directory.macros.globalMacros()["GCCDIR"] = "/opt/gnu/bin";
    EXPECT_EQ(directory.expand("$(GCC)"), "/opt/gnu/bin/gcc");
}

TEST(HostToolchain, ClangNamesStayMacrosUntilExpanded) {
    Toolchain<GCCHostProjectSystem> clang("use_clang_not_gcc=\"Yes\"");
    MacroMap map;
    clang.system.addToolMacros(clang.project, "Debug", map);
    EXPECT_EQ(map["GCC"], "$(CLANG_NAME:clang)");
    EXPECT_EQ(clang.expand("$(GCC) $(GPLUSPLUS)"), "clang clang++");
    clang.macros.globalMacros()["CLANG_NAME"] = "clang-14";
    EXPECT_EQ(clang.expand("$(GCC)"), "clang-14");
}

TEST(Toolchains, AGlobalMacroWinsAtEveryLevel) {
    Toolchain<GCCHostProjectSystem> host("build_toolchain_directory=\"/tools\"");
    host.macros.globalMacros()["AR"] = "/my/ar";
    EXPECT_EQ(host.expand("$(AR) $(GCC)"), "/my/ar /tools/gcc");
    Toolchain<ARMProjectSystem> arm;
    arm.macros.globalMacros()["AR"] = "/my/ar";
    EXPECT_EQ(arm.expand("$(AR)"), "/my/ar");
}

TEST(ArmToolchain, UsesTheInstallationsToolsUnlessAnExternalGccIsAsked) {
    Toolchain<ARMProjectSystem> arm("build_toolchain_directory=\"/cross/bin\"");
    EXPECT_EQ(arm.expand("$(GCC)|$(GPLUSPLUS)|$(CC1)|$(AS)|$(LD)|$(AR)|$(CLANG)"),
              "/studio/bin/cc|/studio/bin/cc++|/cross/bin/cc1|/cross/bin/as|/cross/bin/ld|/cross/bin/ar|"
              "/studio/llvm/bin/clang");
    Toolchain<ARMProjectSystem> external("use_external_gcc=\"Yes\" gcc_prefix=\"arm-none-eabi-\" "
                                         "build_toolchain_directory=\"\"");
    EXPECT_EQ(external.expand("$(GCC) $(AR)"), "arm-none-eabi-gcc arm-none-eabi-ar");
}

TEST(Toolchains, NamesCodesAndExtensions) {
    Toolchain<GCCHostProjectSystem> host;
    EXPECT_EQ(host.system.platformName(), "LINUX");
    EXPECT_EQ(host.system.platformCode(), 15);
    EXPECT_TRUE(host.system.isHostedToolchain());
    EXPECT_EQ(host.system.executableFileExtension(host.project, "Debug"), "");
    EXPECT_EQ(host.system.genericOptionsFileName, "$(StudioDir)/bin/gcc_warning_options.xml");

    Toolchain<ARMProjectSystem> arm;
    EXPECT_EQ(arm.system.platformName(), "ARM");
    EXPECT_EQ(arm.system.platformCode(), 8);
    EXPECT_FALSE(arm.system.isHostedToolchain());
    EXPECT_EQ(arm.system.executableFileExtension(arm.project, "Debug"), ".elf");
    EXPECT_TRUE(arm.system.clangSupported());
    EXPECT_EQ(arm.system.clangUnsupportedMessage(), "Clang is not supported on this OS version");
    Toolchain<ARMProjectSystem> external("use_external_gcc=\"Yes\"");
    EXPECT_EQ(external.system.executableFileExtension(external.project, "Debug"), ".axf");
}

TEST(Toolchains, WhatTheToolsCanDo) {
    Toolchain<GCCHostProjectSystem> host;
    auto &h = host.system;
    EXPECT_TRUE(h.canCheckSyntax(host.source, "Debug"));
    EXPECT_FALSE(h.canCheckSyntax(host.header, "Debug"));
    EXPECT_EQ(h.moduleInterfaceFilePath(host.source, "Debug"), host.directory / "obj/m.gcm");
    EXPECT_TRUE(h.supportsModuleScan(host.source, "Debug"));
    EXPECT_TRUE(h.usesRanlib(host.project, "Debug"));
    EXPECT_TRUE(h.usesModuleMapper(host.source, "Debug"));
    EXPECT_FALSE(h.usesBrenlowLinker(host.project, "Debug"));
    std::optional<std::string> value;
    EXPECT_FALSE(h.hasOwnValue(host.project, h.gccProperties.gccPrefix, "Debug", value));
    EXPECT_TRUE(h.hasOwnValue(host.project, h.nodeProperties.buildIntermediateDirectory, "Debug", value));
    EXPECT_EQ(value, "obj");

    Toolchain<ARMProjectSystem> arm;
    auto &a = arm.system;
    EXPECT_FALSE(a.supportsModuleScan(arm.source, "Debug"));
    EXPECT_FALSE(a.usesRanlib(arm.project, "Debug"));
    EXPECT_FALSE(a.usesModuleMapper(arm.source, "Debug"));
    // Without an external gcc every property counts as set, at its value.
    value.reset();
    EXPECT_TRUE(a.hasOwnValue(arm.project, a.gccProperties.gccPrefix, "Debug", value));
    EXPECT_EQ(value, "$(GCCPREFIX:)");

    Toolchain<ARMProjectSystem> external("use_external_gcc=\"Yes\"");
    auto &e = external.system;
    EXPECT_TRUE(e.supportsModuleScan(external.source, "Debug"));
    EXPECT_TRUE(e.usesRanlib(external.project, "Debug"));
    EXPECT_TRUE(e.usesModuleMapper(external.source, "Debug"));
    EXPECT_FALSE(e.hasOwnValue(external.project, e.gccProperties.gccPrefix, "Debug", value));
}

TEST(GccTable, RowsAndTheDefaultsEachToolchainGives) {
    Toolchain<GCCHostProjectSystem> host;
    Toolchain<ARMProjectSystem> arm;
    const GCCProperties &table = host.system.gccProperties;
    std::size_t rows = 0;
    for (const auto &object : table.objects)
        rows += dynamic_cast<const MacroPropertyClass *>(object.get()) == nullptr;
    EXPECT_EQ(rows, 78u);
    EXPECT_EQ(table.macros.size(), 10u);

    auto value = [](auto &toolchain, const char *name) {
        return toolchain.system
            .getPropertyValue(toolchain.project, toolchain.system.propertyClasses.propertyClass(name), "Debug")
            .value_or("<null>");
    };
    for (const char *name : {"linker_use_indirect_files", "gcc_debugging_level", "gcc_prefix",
                             "gcc_all_warnings_command_line_options", "arm_unwind_tables", "gcc_target"}) {
        EXPECT_EQ(value(host, name), value(arm, name)) << name;
    }
    EXPECT_EQ(value(host, "linker_use_indirect_files"), "Auto");
    EXPECT_EQ(value(host, "gcc_debugging_level"), "Level 2");
    EXPECT_EQ(value(host, "gcc_all_warnings_command_line_options"), "-Wall;-Wextra");
    EXPECT_EQ(value(host, "gcc_target"), "<null>");
    // The hosted tools make breakpad symbols and no map file, and keep
    // unused symbols unless told.
    EXPECT_EQ(value(host, "linker_generate_breakpad_symbols"), "Yes");
    EXPECT_EQ(value(arm, "linker_generate_breakpad_symbols"), "No");
    EXPECT_EQ(value(host, "linker_map_file"), "No");
    EXPECT_EQ(value(arm, "linker_map_file"), "Yes");
    EXPECT_EQ(value(host, "build_remove_unused_symbols"), "None");
    EXPECT_EQ(value(arm, "build_remove_unused_symbols"), "Yes");
    EXPECT_EQ(value(host, "build_toolchain_directory"), "$(GCCDIR:)");
    EXPECT_EQ(value(arm, "build_toolchain_directory"), "$(StudioDir)/gcc/$(GCCTarget)/bin");

    EXPECT_EQ(host.system.toolProperties.cppEnableExceptions->optionFor("No"), "-fno-exceptions");
    EXPECT_EQ(host.system.nodeProperties.buildGenerateDependencyFile->optionFor("User Header Files Only"),
              "-MMD");
    const auto &compile = host.system.propertyClasses.toolProperties(3);
    const auto &link = host.system.propertyClasses.toolProperties(7);
    EXPECT_NE(std::find(compile.begin(), compile.end(), table.optimizationLevel), compile.end());
    EXPECT_EQ(std::find(compile.begin(), compile.end(), table.entryPoint), compile.end());
    EXPECT_NE(std::find(link.begin(), link.end(), table.entryPoint), link.end());
}

TEST(HostToolchain, ListsItsDebuggerPropertiesAfterTheBaseList) {
    Toolchain<GCCHostProjectSystem> host;
    ProjectSystem::PropertyClassList list;
    host.system.appendDebugProperties(host.project, "Debug", list);
    std::vector<std::string> names;
    for (PropertyClass *property : list)
        names.push_back(property->name());
    EXPECT_EQ(names, (std::vector<std::string>{
                         "gdb_executable", "gdb_additional_options", "debug_run_in_terminal", "load_gdbinit",
                         "gdb_console_output", "gdb_debug_output", "gdb_pretty_printing", "remote_protocol",
                         "remote_target", "remote_ssh_additional_options", "remote_ssh_executable",
                         "remote_gdbserver_executable", "remote_executable", "remote_sysroot",
                         "local_sysroot"}));
    PropertyClass *remote = host.system.propertyClasses.propertyClass("remote_executable");
    EXPECT_EQ(host.system.getPropertyValue(host.project, remote, "Debug"), "$(TargetPath)");
    EXPECT_EQ(host.system.propertyClasses.propertyClass("remote_sysroot")->defaultValue(), "");
}

TEST(HostToolchain, PreprocessorOptionsInTheirOrder) {
    Toolchain<GCCHostProjectSystem> host(
        "c_user_include_directories=\"inc;/abs/./x/../y;$(ProjectDir)/gen\" "
        "c_preprocessor_definitions=\"A;B=2;;\" c_preprocessor_undefinitions=\"U\" "
        "c_include_files=\"force.h\" c_macros_files=\"m.h\"");
    auto &system = host.system;
    const std::string dir = host.directory.path();
    StringList list;
    system.appendPreprocessorOptions(host.source, "Debug", 2, "obj/m.o", list);
    EXPECT_EQ(list, (StringList{"-Iinc", "-I/abs/y", "-I" + dir + "/gen", "-DA", "-DB=2", "-UU", "-include",
                                "force.h", "-imacros", "m.h", "-MD", "-MF", dir + "/obj/m.d", "-MQ", "obj/m.o"}));

    // System directories only when the tree sets them; "-undef" after the
    // directories; the dependency options follow the property.
    system.setPropertyValue(host.project, system.toolProperties.cSystemIncludeDirectories, "Common", "/sys;/usr/x");
    system.setPropertyValue(host.project, system.toolProperties.cUndefineAllPreprocessorDefinitions, "Common", "Yes");
    system.setPropertyValue(host.project, system.nodeProperties.buildGenerateDependencyFile, "Common",
                            "User Header Files Only");
    list.clear();
    system.appendPreprocessorOptions(host.source, "Debug", 3, "obj/m.o", list);
    EXPECT_EQ(list, (StringList{"-isystem", "/sys", "-isystem", "/usr/x", "-Iinc", "-I/abs/y", "-I" + dir + "/gen",
                                "-undef", "-DA", "-DB=2", "-UU", "-include", "force.h", "-imacros", "m.h", "-MMD",
                                "-MF", dir + "/obj/m.d", "-MQ", "obj/m.o"}));

    system.setPropertyValue(host.project, system.nodeProperties.buildGenerateDependencyFile, "Common", "No");
    system.setPropertyValue(host.project, system.toolProperties.cIgnoreIncludes, "Common", "Yes");
    list.clear();
    system.appendPreprocessorOptions(host.source, "Debug", 2, "obj/m.o", list);
    EXPECT_EQ(list, (StringList{"-undef", "-DA", "-DB=2", "-UU", "-include", "force.h", "-imacros", "m.h"}));
}

TEST(HostToolchain, DriverCompileArgumentsInTheirOrder) {
    Toolchain<GCCHostProjectSystem> host(
        "c_preprocessor_definitions=\"D\" gcc_optimization_level=\"Optimize For More Size\" "
        "gcc_cplusplus_language_standard=\"c++20\" cpp_enable_exceptions=\"No\" "
        "gcc_enable_all_warnings=\"Yes\" gcc_cpp_only_all_warnings_command_line_options=\"-Wold-style-cast\" "
        "gcc_omit_frame_pointer=\"Yes\" gcc_signed_char=\"No\" build_treat_warnings_as_errors=\"Yes\" "
        "c_additional_options=\"-DQ=&quot;a b&quot; -pipe\" cpp_only_additional_options_from_file=\"opts.txt\" "
        "gcc_disable_function_inlining=\"Yes\" build_generate_dependency_file=\"No\"");
    host.directory.write("opts.txt", "-fno-plt /* a comment\nthat goes on */ -fpic\n\n/* only a comment */\n-Wshadow\n");
    CommandBuilder builder;
    const std::string dir = host.directory.path();
    host.system.buildStep(host.source, "Debug", 3, "obj/m.o", dir + "/obj/m.o", {dir + "/m.cpp"}, &builder, 0);
    EXPECT_EQ(builder.lines,
              (std::vector<std::string>{
                  "begin Compiling 'm.cpp'",
                  "g++ -xc++ -c -fmessage-length=0 -DD -fno-exceptions -Wall -Wextra -Wold-style-cast -std=c++20 "
                  "-fomit-frame-pointer -ffunction-sections -fdata-sections -Werror -DQ=a b -pipe "
                  // Each line of the file is one argument, blanks and all:
                  // "-fno-plt " and " -fpic".
                  "-fno-plt   -fpic -Wshadow -g -fno-signed-char -Oz -fno-inline-functions " +
                      dir + "/m.cpp -o obj/m.o => " + dir + "/obj/m.o",
                  "end",
              }));

    // A missing options file ends the step with its words, and no command.
    host.directory.write("opts.txt", "");
    ::unlink((dir + "/opts.txt").c_str());
    builder.lines.clear();
    host.system.buildStep(host.source, "Debug", 3, "obj/m.o", dir + "/obj/m.o", {dir + "/m.cpp"}, &builder, 0);
    EXPECT_EQ(builder.lines, (std::vector<std::string>{"begin Locating Additional Options File",
                                                       "error Additional options file 'opts.txt' does not exist.",
                                                       "end"}));
}

// Keeps the titles and errors it is given.
class WordsBuilder : public Builder {
public:
    void beginStep(ProjectElement *, const std::string &title, const std::string &, int) override {
        words.push_back(title);
    }
    void endStep(ProjectElement *, const std::string &) override {}
    void addCommand(const std::string &, const std::vector<std::string> &, const std::string &) override {}
    void reportError(const std::string &text) override { words.push_back(text); }
    std::vector<std::string> words;
};

TEST(Toolchains, StepsWithoutACompilerToolchainSaySo) {
    Toolchain<GCCHostProjectSystem> host;
    WordsBuilder builder;
    host.system.checkSyntax(host.source, "Debug", &builder);
    EXPECT_EQ(builder.words,
              (std::vector<std::string>{
                  "Checking Syntax 'm.cpp'",
                  "error: checking syntax with the LINUX toolchain is not available yet",
              }));
    StringList options;
    EXPECT_TRUE(host.system.appendDriverOptions(host.source, "Debug", 3, "m.o", options));
    EXPECT_TRUE(options.empty());
}

}  // namespace
