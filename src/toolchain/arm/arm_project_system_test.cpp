// The ARM toolchain as a project system: what setting a core does, imported
// link options, the linker symbols and driver options of a link, and the
// rewrite of old library paths after a load.

#include "toolchain/arm/arm_project_system.h"
#include "toolchain/toolchain_test_fixture.h"

#include <gtest/gtest.h>

namespace {

using Arm = Toolchain<ARMProjectSystem>;

TEST(ArmProjectSystem, ACoreFixesTheArchitectureAndAnUnsetInstructionSet) {
    Arm arm("arm_instruction_set=\"None\"");
    ARMProjectSystem &s = arm.system;
    const ARMProperties &a = s.armProperties;
    auto value = [&](PropertyClass *property) { return s.getPropertyValue(arm.project, property, "Debug"); };
    s.setPropertyValue(arm.project, a.coreType, "Common", "Cortex-M33");
    EXPECT_EQ(value(a.architecture), "v8M_Mainline");
    EXPECT_EQ(value(a.instructionSet), "Thumb");
    // An instruction set that is set stays; an unknown core changes nothing.
    s.setPropertyValue(arm.project, a.instructionSet, "Common", "ARM");
    s.setPropertyValue(arm.project, a.coreType, "Common", "Cortex-A9");
    s.setPropertyValue(arm.project, a.coreType, "Common", "Cortex-Q1");
    EXPECT_EQ(value(a.architecture), "v7A");
    EXPECT_EQ(value(a.instructionSet), "ARM");
    EXPECT_EQ(s.target(arm.project, "Debug").architecture, 9);

    StringList options{"-Wl,--cmse-implib", "-Xlinker", "--out-implib=veneers.o", "-Wl,--in-implib=old.o", "-lm"};
    s.importLinkerOption(arm.project, "Debug", options);
    EXPECT_EQ(options, StringList{"-lm"});
    EXPECT_EQ(value(a.v8MHasCmse), "Yes");
    EXPECT_EQ(value(a.cmseImportLibraryFileName), "veneers.o");
    EXPECT_EQ(value(a.checkCmseImportLibraryFileName), "old.o");
    // The import library is made beside the program on a v8-M core only.
    EXPECT_EQ(s.secondaryLinkOutput(arm.project, "Debug"), "");
    s.setPropertyValue(arm.project, a.coreType, "Common", "Cortex-M23");
    EXPECT_EQ(s.secondaryLinkOutput(arm.project, "Debug"), arm.directory / "veneers.o");
}

TEST(ArmProjectSystem, TheLinkerSymbolsAndDriverOptionsOfALink) {
    const char *m3 = "arm_core_type=\"Cortex-M3\" is_cpp_project=\"Yes\" linker_printf_fp_enabled=\"Float\" ";
    const std::pair<std::string, StringList> rows[] = {
        {m3,
         {"__STACKSIZE__=1024", "__STACKSIZE_PROCESS__=0", "__STACKSIZE_IRQ__=0", "__STACKSIZE_FIQ__=0",
          "__STACKSIZE_SVC__=0", "__STACKSIZE_ABT__=0", "__STACKSIZE_UND__=0", "__HEAPSIZE__=1024",
          "__do_debug_operation=__do_debug_operation_mempoll", "__vfprintf=__vfprintf_short_float_long_long",
          "__vfscanf=__vfscanf_long_long", "__dso_handle=0"}},
        {std::string(m3) + "link_supply_library_linker_symbols=\"No\" link_dso_handle_value=\"\"",
         {"__vfprintf=__vfprintf_short_float_long_long", "__vfscanf=__vfscanf_long_long"}},
        {std::string(m3) + "use_external_gcc=\"Yes\" arm_linker_heap_size=\"\"",
         {"__STACKSIZE__=1024", "__STACKSIZE_PROCESS__=0", "__STACKSIZE_IRQ__=0", "__STACKSIZE_FIQ__=0",
          "__STACKSIZE_SVC__=0", "__STACKSIZE_ABT__=0", "__STACKSIZE_UND__=0"}},
    };
    for (const auto &[configuration, expected] : rows) {
        Arm arm(configuration);
        StringList list;
        arm.system.linkerSymbolDefinitions(arm.project, "Debug", list);
        EXPECT_EQ(list, expected) << configuration;
    }

    Arm driver(std::string(m3) + "use_compiler_driver=\"Yes\" arm_compiler_variant=\"clang\" link_keep_lto_files=\"Yes\" "
                                 "arm_linker_additional_output_file_gap_fill=\"0xA\" arm_library_optimization=\"Small\"");
    StringList list;
    EXPECT_TRUE(driver.system.appendDriverOptions(driver.project, "Debug", 7, "app.elf", list));
    EXPECT_EQ(list, (StringList{"-clang", "-klto", "-fill=0x0a", "-march=armv7-m", "-mlittle-endian",
                                "-mfloat-abi=soft", "-mthumb", "-munaligned-access", "-Oz"}));
    list.clear();
    EXPECT_TRUE(driver.system.appendDriverOptions(driver.source, "Debug", 3, "m.o", list));
    EXPECT_EQ(list, (StringList{"-clang", "-march=armv7-m", "-mlittle-endian", "-mfloat-abi=soft", "-mthumb",
                                "-munaligned-access", "-D__HEAP_SIZE__=1024"}));
}

TEST(ArmProjectSystem, OldLibraryPathsAreRewrittenWhenASolutionLoads) {
    // The shortest value that changes is the old folder itself.
    Arm arm("c_user_include_directories=\"$(StudioDir)/tskq/include\" c_preprocessor_definitions=\"$(StudioDir)/tskq\" "
            "build_toolchain_directory=\"$(StudioDir)/tskq\"");
    auto value = [&](const char *name) {
        return arm.system.getPropertyValue(arm.source, arm.system.propertyClasses.propertyClass(name), "Debug");
    };
    EXPECT_EQ(value("c_user_include_directories"), "$(PackagesDir)/libraries/libtskq/include");
    EXPECT_EQ(value("build_toolchain_directory"), "$(PackagesDir)/libraries/libtskq");
    EXPECT_EQ(value("c_preprocessor_definitions"), "$(StudioDir)/tskq");
}

}  // namespace
