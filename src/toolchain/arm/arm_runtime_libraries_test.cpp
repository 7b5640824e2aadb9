// The runtime library variants of ARM targets: their names and macros, the
// libraries and linker symbols of a link, and the rewrites of old paths.

#include "toolchain/arm/arm_runtime_libraries.h"

#include <gtest/gtest.h>

namespace {

using arm::StringList;
using arm::Target;

const Target cortexM4Hard{
    .core = arm::cortexM4, .architecture = 7, .fpuType = "FPv4-SP-D16", .fpAbi = "Hard"};
const Target arm7{.core = 1, .architecture = 1, .linkerIrqStackSize = "", .linkerFiqStackSize = "64"};

// Every macro of a target, in one line.
std::string macros(const Target &target, bool executable) {
    std::string text;
    arm::targetMacros(target, executable, [&](const std::string &name, const std::string &value) {
        text += name + "=" + value + " ";
    });
    return text;
}

TEST(ArmRuntimeLibraries, VariantNamesAndMacros) {
    const std::pair<Target, const char *> rows[] = {
        {cortexM4Hard, "CoreType=cortex-m4 Arch=v7em Arch2=armv7e-m FPU=vfpv4_sp FPU2=fpv4-sp FPU3=fpv4-sp-d16 "
                       "Endian=little FPABI=hard LibArch=v7em LibEndianExt=_le "
                       "LibExt=_v7em_fpv4_sp_d16_hard_t_le_eabi "},
        // v6-M has no floating point; the small libraries.
        {{.core = arm::cortexM0, .architecture = 5, .fpuType = "VFP", .fpAbi = "Hard", .libraryOptimization = "Small"},
         "CoreType=cortex-m0 Arch=v6m Arch2=armv6-m FPU=vfpv2 FPU2=vfpv2 FPU3=vfp Endian=little FPABI=soft "
         "LibArch=v6m LibEndianExt=_le LibExt=_v6m_t_le_eabi_small "},
        // A big-endian v7-A in ARM state with divide instructions, libraries
        // for another architecture in Thumb, 16-bit wchar_t and int enums.
        {{.architecture = 9, .fpuType = "VFPv3-D16", .fpAbi = "SoftFP", .endian = "BE-8",
          .v7HasDivideInstructions = "Yes", .libraryInstructionSet = "Thumb", .libraryArchitecture = "v7A",
          .wcharSize = "16-Bit", .shortEnum = "Int Size"},
         "LibArch=v7a LibEndianExt=_be LibExt=_v7a_idiv_vfpv3_d16_t_be_eabi_swc_ienum "},
        // v7-R divides in Thumb state only; v8-M Mainline with DSP.
        {{.architecture = 8, .v7HasDivideInstructions = "Yes"}, "LibArch=v7r LibEndianExt=_le LibExt=_v7r_a_le_eabi "},
        {{.core = arm::cortexM33, .architecture = 13, .fpuType = "None", .fpAbi = "SoftFP", .v8MHasDsp = "Yes"},
         "CoreType=cortex-m33 Arch=v8m_mainline Arch2=armv8-m.main FPU=softvfp FPU2=none FPU3=none Endian=little "
         "FPABI=softfp LibArch=v8mml LibEndianExt=_le LibExt=_v8mml_dsp_t_le_eabi "},
        {{.instructionSet = "ARM64", .arm64Abi = "ilp32", .libraryOptimization = "Small"},
         "LibArch=arm64 LibEndianExt=_le LibExt=_v8a_a64_le_ilp32_small "},
    };
    for (const auto &[target, expected] : rows)
        EXPECT_EQ(macros(target, target.core != 0), expected);
    // A library project names no core macros.
    EXPECT_EQ(macros(cortexM4Hard, false), "LibArch=v7em LibEndianExt=_le LibExt=_v7em_fpv4_sp_d16_hard_t_le_eabi ");
}

TEST(ArmRuntimeLibraries, LibrariesAndSymbolsOfALink) {
    StringList libs;
    arm::runtimeLibraries(cortexM4Hard, "/lib", libs);
    arm::runtimeLibraries({.architecture = 5, .linkDebugIoType = "None"}, "/lib", libs);
    arm::runtimeLibraries(arm7, "/lib", libs);
    EXPECT_EQ(libs, (StringList{"/lib/libprobeio_v7em_fpv4_sp_d16_hard_t_le_eabi.a",
                                "/lib/libcm_v7em_fpv4_sp_d16_hard_t_le_eabi.a", "/lib/libprobeio_v4t_a_le_eabi.a",
                                "/lib/libarm_v4t_a_le_eabi.a"}));

    const std::tuple<Target, bool, StringList> rows[] = {
        {cortexM4Hard, true,
         {"__STACKSIZE__=1024", "__STACKSIZE_PROCESS__=0", "__STACKSIZE_IRQ__=0", "__STACKSIZE_FIQ__=0",
          "__STACKSIZE_SVC__=0", "__STACKSIZE_ABT__=0", "__STACKSIZE_UND__=0", "__HEAPSIZE__=1024",
          "__do_debug_operation=__do_debug_operation_mempoll"}},
        // An empty size on an ARM7 reads as 0; no standard libraries, no
        // debug I/O symbol.
        {arm7, false,
         {"__STACKSIZE__=1024", "__STACKSIZE_IRQ__=0", "__STACKSIZE_FIQ__=64", "__STACKSIZE_SVC__=0",
          "__STACKSIZE_ABT__=0", "__STACKSIZE_UND__=0", "__HEAPSIZE__=1024"}},
        {arm7, true,
         {"__STACKSIZE__=1024", "__STACKSIZE_IRQ__=0", "__STACKSIZE_FIQ__=64", "__STACKSIZE_SVC__=0",
          "__STACKSIZE_ABT__=0", "__STACKSIZE_UND__=0", "__HEAPSIZE__=1024",
          "__do_debug_operation=__do_debug_operation_dcc"}},
        {{.core = arm::cortexM7, .architecture = 7, .linkerHeapSize = "", .linkerStackSize = "",
          .linkerProcessStackSize = ""},
         true,
         {"__STACKSIZE_IRQ__=0", "__STACKSIZE_FIQ__=0", "__STACKSIZE_SVC__=0", "__STACKSIZE_ABT__=0",
          "__STACKSIZE_UND__=0", "__do_debug_operation=__do_debug_operation_bkpt"}},
        {{.instructionSet = "ARM64", .linkDebugIoType = "None", .linkerHeapSize = "4096"}, true,
         {"__STACKSIZE__=1024", "__HEAPSIZE__=4096"}},
    };
    for (const auto &[target, standardLibraries, expected] : rows) {
        StringList list;
        arm::linkerSymbolDefinitions(target, standardLibraries, list);
        EXPECT_EQ(list, expected);
    }
}

TEST(ArmRuntimeLibraries, PrintfAndScanfSelections) {
    const std::tuple<const char *, const char *, const char *, const char *, const char *> printfRows[] = {
        {"No", "int", "Yes", "No", "int"},
        {"No", "long long", "No", "Yes", "long_long_nwp_wchar"},
        {"Double", "long long", "No", "No", "float_long_long"},
        {"Yes", "int", "Yes", "No", "float_long"},
        {"Float", "long long", "Yes", "Yes", "short_float_long_long_wchar"},
        {"Float", "long", "No", "No", "short_float_long"},
    };
    for (const auto &[fp, level, widthPrecision, wchar, expected] : printfRows)
        EXPECT_EQ(arm::printfSelection(fp, level, widthPrecision, wchar), expected);
    EXPECT_EQ(arm::scanfSelection("No", "long", "No"), "long");
    EXPECT_EQ(arm::scanfSelection("No", "long long", "Yes"), "long_long_cc");
    EXPECT_EQ(arm::scanfSelection("Yes", "int", "No"), "float_long");
    EXPECT_EQ(arm::scanfSelection("Yes", "long long", "Yes"), "float_long_long_cc");
}

TEST(ArmRuntimeLibraries, OldPathsAndLightLibraries) {
    StringList libs{"/studio/lib/libqmx_light_v6m_t_le_eabi.a", "/studio/lib/libqmx_light_v6m_t_le_eabi_small.a",
                    "/elsewhere/libqmx_light_v6m_t_le_eabi.a", "/studio/lib/libc_v6m_t_le_eabi.a"};
    arm::filterLinkerInputs("/studio", libs);
    EXPECT_EQ(libs, (StringList{"/studio/lib/libqmx_light_v6m_t_le_eabi_small.a",
                                "/studio/lib/libqmx_light_v6m_t_le_eabi_small.a",
                                "/elsewhere/libqmx_light_v6m_t_le_eabi.a", "/studio/lib/libc_v6m_t_le_eabi.a"}));
    std::string value = "$(StudioDir)/tskq/include;$(PackagesDir)/tskq/lib;$(PackagesDir)/libraries/libtskq";
    arm::migrateValue(value);
    EXPECT_EQ(value, "$(PackagesDir)/libraries/libtskq/include;$(PackagesDir)/libraries/libtskq/lib;"
                     "$(PackagesDir)/libraries/libtskq");
}

}  // namespace
