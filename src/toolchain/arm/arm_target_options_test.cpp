// The gcc-style target options of the ARM toolchain, the options by tool and
// driver step, the linker options and the target defines.

#include "toolchain/arm/arm_target.h"

#include <gtest/gtest.h>

namespace {

using arm::StringList;
using arm::Target;

const Target cortexM4Hard{
    .core = arm::cortexM4, .architecture = 7, .instructionSet = "Thumb", .fpuType = "FPv4-SP-D16", .fpAbi = "Hard"};

TEST(ArmTargetOptions, GccList) {
    const std::tuple<const char *, Target, bool, StringList> rows[] = {
        {"M4 hard float", cortexM4Hard, true,
         {"-mcpu=cortex-m4", "-mlittle-endian", "-mfloat-abi=hard", "-mabi=aapcs", "-mfpu=fpv4-sp-d16", "-mthumb",
          "-munaligned-access", "-mtp=soft", "-mfp16-format=ieee"}},
        {"M85 becomes -march",
         {.core = arm::cortexM85, .architecture = 14, .v81MMveType = "MVE.FP", .v81MHasPacbti = "Yes",
          .unalignedAccessSetting = "No", .tlsModel = "None", .fp16Format = "None"}, true,
         {"-march=armv8.1-m.main+dsp+mve.fp+pacbti", "-mlittle-endian", "-mfloat-abi=soft", "-mabi=aapcs", "-mthumb",
          "-mno-unaligned-access"}},
        {"M52 keeps its name",
         {.core = arm::cortexM52, .architecture = 14, .abi = "None", .v8MHasDsp = "No", .v8MHasDspSet = true,
          .v81MMveType = "MVE", .v81MMveTypeSet = true, .unalignedAccessSetting = "None"}, true,
         {"-mcpu=cortex-m52", "-mlittle-endian", "-mfloat-abi=soft", "-mthumb", "-mtp=soft", "-mfp16-format=ieee"}},
        {"M55 without DSP and MVE.FP",
         {.core = arm::cortexM55, .architecture = 14, .fpAbi = "None", .endian = "None", .v8MHasDsp = "No",
          .v8MHasDspSet = true, .v81MMveType = "MVE", .v81MMveTypeSet = true, .unalignedAccessSetting = "None",
          .tlsModel = "None", .fp16Format = "None"}, true,
         {"-mcpu=cortex-m55+nodsp+nomve.fp", "-mabi=aapcs", "-mthumb"}},
        {"M33 secure without DSP",
         {.core = arm::cortexM33, .architecture = 13, .v8MHasCmse = "Yes", .tlsModel = "CP15", .fp16Format = "None"},
         true,
         {"-mcpu=cortex-m33+nodsp", "-mlittle-endian", "-mfloat-abi=soft", "-mabi=aapcs", "-mthumb",
          "-munaligned-access", "-mtp=cp15", "-mcmse"}},
        {"M0+ small multiplier", {.core = 14, .architecture = 5, .cm0HasSmallMultiplier = "Yes", .tlsModel = "None"},
         true,
         {"-mcpu=cortex-m0plus.small-multiply", "-mlittle-endian", "-mfloat-abi=soft", "-mabi=aapcs", "-mthumb",
          "-mno-unaligned-access", "-mfp16-format=ieee"}},
        {"no core, no architecture", {.fpAbi = "None", .unalignedAccessSetting = "Yes"}, true,
         {"-mlittle-endian", "-mabi=aapcs", "-munaligned-access", "-mtp=soft", "-mfp16-format=ieee"}},
        {"v7R in ARM state", {.architecture = 8, .v7HasDivideInstructions = "Yes"}, false,
         {"-march=armv7-r", "-mlittle-endian", "-mfloat-abi=soft", "-munaligned-access"}},
        {"v7A Thumb with divide", {.architecture = 9, .instructionSet = "thumb", .v7HasDivideInstructions = "Yes"},
         false, {"-march=armv7ve", "-mlittle-endian", "-mfloat-abi=soft", "-mthumb", "-munaligned-access"}},
        {"big-endian A9 with NEON",
         {.core = 33, .architecture = 9, .fpuType = "VFPv3-D32", .advancedSimdType = "NEON",
          .advancedSimdAutoVectorize = "Yes", .fpAbi = "SoftFP", .endian = "BE-8", .tlsModel = "None",
          .fp16Format = "None", .longCalls = "Yes"}, true,
         {"-mcpu=cortex-a9", "-mbig-endian", "-mfloat-abi=softfp", "-mabi=aapcs", "-mfpu=neon", "-munaligned-access",
          "-mlong-calls", "-ftree-vectorize"}},
        {"v8-A extension and features",
         {.core = 38, .architecture = 10, .fpuType = "FP-ARMv8", .advancedSimdType = "NEON", .fpAbi = "Hard",
          .endian = "Big", .v8AArchitectureExtension = "Armv8.2", .v8AHasCrypto = "Yes", .v8AHasFp16 = "Yes",
          .v8AHasI8mm = "Yes"}, false,
         {"-march=armv8.2-a+crypto+fp16+i8mm", "-mbig-endian", "-mfloat-abi=hard", "-mfpu=crypto-neon-fp-armv8",
          "-munaligned-access"}},
        {"ARM64 ignores the 32-bit settings",
         {.core = 38, .architecture = 10, .instructionSet = "ARM64", .fpuType = "FP-ARMv8", .fpAbi = "Hard",
          .v8AHasCrc = "Yes", .arm64Abi = "lp64", .arm64CodeModel = "small", .arm64StrictAlign = "Yes",
          .longCalls = "Yes"}, true,
         {"-mabi=lp64", "-mcpu=cortex-a53", "-mcmodel=small", "-mno-outline-atomics", "-mstrict-align"}},
    };
    for (const auto &[name, target, full, expected] : rows) {
        StringList list;
        arm::gccTargetOptions(target, list, full);
        EXPECT_EQ(list, expected) << name;
    }
}

TEST(ArmTargetOptions, ByTool) {
    const Target m3{.core = 17, .architecture = 6, .instructionSet = "Thumb", .advancedSimdType = "NEON",
                    .advancedSimdAutoVectorize = "Yes", .longCalls = "Yes"};
    StringList assembler, backEnd, clang, preprocess, clangAssembler;
    arm::assemblerTargetOptions(cortexM4Hard, true, assembler);
    EXPECT_EQ(assembler, (StringList{"-march=armv7e-m", "-mlittle-endian", "-mfloat-abi=hard", "-mfpu=fpv4-sp-d16",
                                     "-mthumb"}));
    arm::backEndTargetOptions(m3, backEnd, true);
    arm::compilerTargetOptions(m3, false, clang);
    backEnd.insert(backEnd.end(), {"-target-feature", "+long-calls", "-vectorize-loops", "-fno-signed-char",
                                   "-fnative-half-type", "-fnative-half-arguments-and-returns", "-mllvm",
                                   "-arm-global-merge=false"});
    EXPECT_EQ(clang, backEnd);
    arm::preprocessTargetOptions(m3, false, preprocess);
    EXPECT_EQ(preprocess, StringList(backEnd.begin(), backEnd.end() - 8));
    arm::assemblerTargetOptions(m3, false, clangAssembler);
    EXPECT_EQ(clangAssembler, (StringList{"-triple", "thumbv7m-none-eabi", "-target-cpu", "cortex-m3",
                                          "-target-feature", "-strict-align", "-mllvm", "-arm-add-build-attributes"}));
}

TEST(ArmTargetOptions, DriverSteps) {
    const Target v7m{.core = 17, .architecture = 6, .instructionSet = "Thumb", .unalignedAccessSetting = "None"};
    Target big = v7m, arm64 = v7m, clang = v7m;
    big.endian = "BE-8", big.useCompilerDriver = "Yes", big.cmseImportLibraryFileName = "s.o";
    big.libraryOptimization = "Small", big.libraryInstructionSet = "ARM", big.libraryArchitecture = "v7EM";
    arm64.instructionSet = "ARM64", arm64.arm64Abi = "ilp32", arm64.useCompilerDriver = "Yes";
    arm64.linkerHeapSize = "", clang.useClangNotGcc = "Yes";
    const std::tuple<const char *, Target, int, StringList> rows[] = {
        {"driver link", big, 7,
         {"-march=armv7e-m", "-mbig-endian", "-mfloat-abi=soft", "-be8", "-cmselib=s.o", "-Oz", "-marm"}},
        {"plain link", v7m, 7, {"-march=armv7-m", "-mlittle-endian", "-mfloat-abi=soft"}},
        {"ARM64 driver compile", arm64, 3, {"-mabi=ilp32", "-arm64", "-D__HEAP_SIZE__=0"}},
        {"ARM64 driver link", arm64, 7, {"-arm64", "-O2"}},
        {"clang compile", clang, 2,
         {"-march=armv7-m", "-mlittle-endian", "-mfloat-abi=soft", "-mthumb", "-mcpu=cortex-m3", "-mlittle-endian",
          "-mfloat-abi=soft", "-mabi=aapcs", "-mthumb", "-mtp=soft"}},
    };
    for (const auto &[name, target, step, expected] : rows) {
        StringList list;
        EXPECT_TRUE(arm::driverTargetOptions(target, step, list)) << name;
        EXPECT_EQ(list, expected) << name;
    }
    StringList list;
    EXPECT_FALSE(arm::driverTargetOptions(v7m, 8, list));
    EXPECT_TRUE(list.empty());
}

TEST(ArmTargetOptions, LinkerOptionsAndDefines) {
    Target secure{.core = arm::cortexM33, .architecture = 13, .endian = "BE-8"}, arm64{.instructionSet = "ARM64"};
    secure.cmseImportLibraryFileName = "veneers.o", secure.checkCmseImportLibraryFileName = "old.o";
    secure.linkerNoEnumSizeWarning = "Yes", secure.linkerVariant = arm64.linkerVariant = "Brenlow";
    arm64.endian = "Big", arm64.cppEnableExceptions = "Yes";
    const std::tuple<Target, StringList> linker[] = {
        {secure, {"--no-enum-size-warning", "-EB", "--be8", "--out-implib=veneers.o", "--cmse-implib",
                  "--in-implib=old.o", "-mcpu=8-M.main"}},
        {arm64, {"-EB", "-mcpu=unknown", "--eh-frame-hdr"}},
        {cortexM4Hard, {"-EL"}},
    };
    for (const auto &[target, expected] : linker) {
        StringList list;
        arm::linkerOptions(target, list);
        EXPECT_EQ(list, expected) << target.core;
    }
    const std::tuple<Target, StringList> defines[] = {
        {cortexM4Hard, {"-D__ARM_ARCH_7EM__", "-D__VELDANE_ARM", "-D__ARM_ARCH_FPV4_SP_D16__", "-D__HEAP_SIZE__=1024"}},
        {{.core = 4, .architecture = 1, .fpuType = "VFP", .fpAbi = "Hard", .linkerHeapSize = "None"},
         {"-D__ARM_ARCH_4T__", "-D__VELDANE_ARM"}},
        {{}, {"-D__VELDANE_ARM", "-D__HEAP_SIZE__=1024", "-isystem/p"}},
        {{.core = 33, .architecture = 9, .fpuType = "VFPv3-D16", .fpAbi = "SoftFP"},
         {"-D__ARM_ARCH_7A__", "-D__VELDANE_ARM", "-D__ARM_ARCH_VFP3_D16__", "-D__HEAP_SIZE__=1024"}},
    };
    for (const auto &[target, expected] : defines) {
        StringList list;
        arm::targetDefines(target, "-isystem/p", list);
        EXPECT_EQ(list, expected) << target.core;
    }
}

}  // namespace
