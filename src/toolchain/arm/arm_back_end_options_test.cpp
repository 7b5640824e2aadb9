// The target arguments of the clang back end for ARM cores, architectures,
// FPUs and float ABIs.

#include "toolchain/arm/arm_target.h"

#include <gtest/gtest.h>

namespace {

using arm::StringList;
using arm::Target;

// Each feature behind its own "-target-feature".
StringList features(std::initializer_list<const char *> names) {
    StringList list;
    for (const char *name : names)
        list.insert(list.end(), {"-target-feature", name});
    return list;
}

StringList operator+(StringList list, const StringList &more) {
    list.insert(list.end(), more.begin(), more.end());
    return list;
}

const StringList softCompile = features({"+soft-float", "+soft-float-abi"}) +
                               StringList{"-msoft-float", "-target-abi", "aapcs", "-mfloat-abi", "soft"};
const StringList fullList = features({"-d32", "-fp-armv8", "-fp-armv8d16", "-fp-armv8d16sp", "-fp-armv8sp", "-fp16",
                                      "-fp64", "-neon", "-vfp2", "-vfp2sp", "-vfp3", "-vfp3d16", "-vfp3d16sp",
                                      "-vfp3sp", "-vfp4", "-vfp4d16", "-vfp4d16sp", "-vfp4sp", "-fpregs"});

StringList start(const char *triple, const char *cpu) { return {"-triple", triple, "-target-cpu", cpu}; }

TEST(ArmBackEndOptions, ByCoreArchitectureAndFpu) {
    // The target, whether for a compile, the expected list.
    const std::tuple<const char *, Target, bool, StringList> rows[] = {
        {"M0", {.core = arm::cortexM0, .architecture = 5, .fpAbi = "Hard"}, true,
         start("thumbv6m-none-eabi", "cortex-m0") + features({"+strict-align"}) + softCompile},
        {"big-endian R5 in ARM state", {.core = 26, .architecture = 8, .endian = "Big"}, false,
         start("armebv7r-none-eabi", "cortex-r5") +
             features({"+hwdiv", "-hwdiv-arm", "-strict-align", "-fp16", "-fp64", "-vfp2", "-vfp2sp", "-vfp3d16",
                       "-vfp3d16sp"})},
        {"R4F with 32 registers", {.core = 25, .architecture = 8, .fpuType = "VFPv3-D32", .fpAbi = "Hard"}, false,
         start("armv7r-none-eabi", "cortex-r4f") + features({"+hwdiv", "-hwdiv-arm", "-strict-align", "-neon"})},
        {"ARM64 ignores the 32-bit settings",
         {.core = 38, .architecture = 10, .instructionSet = "ARM64", .fpAbi = "Hard", .v8AHasCrc = "Yes",
          .tlsModel = "CP15", .arm64StrictAlign = "Yes"},
         true, start("aarch64-none-eabi", "cortex-a53") + features({"+strict-align"})},
        {"M4 hard float", {.core = arm::cortexM4, .architecture = 7, .fpuType = "FPv4-SP-D16", .fpAbi = "Hard"}, true,
         start("thumbv7em-none-eabi", "cortex-m4") + features({"-strict-align"}) +
             StringList{"-target-abi", "aapcs", "-mfloat-abi", "hard"}},
        {"M7 single precision",
         {.core = arm::cortexM7, .architecture = 7, .fpuType = "FPv5-SP-D16", .fpAbi = "SoftFP",
          .unalignedAccessSetting = "None"},
         true,
         start("thumbv7em-none-eabi", "cortex-m7") + features({"+soft-float-abi"}) +
             StringList{"-target-abi", "aapcs", "-mfloat-abi", "soft"} +
             features({"-fp-armv8d16", "-fp64", "-vfp2", "-vfp3d16", "-vfp4d16sp"})},
        {"M33 secure without DSP", {.core = arm::cortexM33, .architecture = 13, .v8MHasCmse = "Yes"}, true,
         start("thumbv8m.main-none-eabi", "cortex-m33") + features({"+8msecext"}) + StringList{"-mcmse"} +
             features({"-dsp", "-strict-align"}) + softCompile +
             features({"-fp-armv8d16sp", "-fp16", "-vfp2sp", "-vfp3d16sp", "-vfp4d16sp"})},
        {"M85 with MVE.FP",
         {.core = arm::cortexM85, .architecture = 14, .fpAbi = "Hard", .v81MMveType = "MVE.FP",
          .v81MHasPacbti = "Yes", .tlsModel = "CP15"},
         false, start("thumbv8.1m.main-none-eabi", "cortex-m85") +
                    features({"-8msecext", "+pacbti", "-strict-align", "+read-tp-tpidruro"})},
        {"M55 with integer MVE", {.core = arm::cortexM55, .architecture = 14, .v81MMveType = "MVE"}, false,
         start("thumbv8.1m.main-none-eabi", "cortex-m55") +
             features({"-8msecext", "+mve", "-mve.fp", "-strict-align", "-fp-armv8d16", "-fp-armv8d16sp", "-fp16",
                       "-fp64", "-vfp2", "-vfp2sp", "-vfp3d16", "-vfp3d16sp", "-vfp4d16", "-vfp4d16sp", "-mve.fp"})},
        {"v8.1-M without core", {.architecture = 14, .fpAbi = "Hard"}, false,
         start("thumbv8.1m.main-none-eabi", "generic") +
             features({"-8msecext", "-dsp", "-mve", "-mve.fp", "-strict-align", "-fp-armv8d16", "+fp-armv8d16sp",
                       "+fp16", "-fp64", "-vfp2", "+vfp2sp", "-vfp3d16", "+vfp3d16sp", "-vfp4d16", "+vfp4d16sp"})},
        {"v7EM FPv5-SP without core",
         {.architecture = 7, .instructionSet = "Thumb", .fpuType = "FPv5-SP-D16", .fpAbi = "Hard"}, false,
         start("thumbv7em-none-eabi", "generic") +
             features({"-strict-align", "+fp16", "+vfp2sp", "+vfp3d16sp", "+vfp4d16sp", "+fp-armv8d16sp"})},
        {"v7A with divide and VFPv4",
         {.architecture = 9, .fpuType = "VFPv4-D32", .advancedSimdType = "NEON", .fpAbi = "SoftFP",
          .v7HasDivideInstructions = "Yes"},
         false, start("armv7a-none-eabi", "generic") +
                    features({"+hwdiv", "+hwdiv-arm", "+virtualization", "+mp", "-strict-align", "+fp64", "+vfp2",
                              "+vfp2sp", "+vfp3d16", "+vfp3d16sp", "+d32", "+vfp4", "+vfp4d16", "+vfp4d16sp",
                              "+vfp4sp", "+fp16"})},
        {"A9 with 16 registers, no NEON",
         {.core = 33, .architecture = 9, .instructionSet = "Thumb", .fpuType = "VFPv3-D16", .fpAbi = "Hard"}, false,
         start("thumbv7a-none-eabi", "cortex-a9") +
             features({"-hwdiv", "-hwdiv-arm", "-strict-align", "-d32", "-neon"})},
        {"A9 soft float", {.core = 33, .architecture = 9, .unalignedAccessSetting = "None"}, false,
         start("armv7a-none-eabi", "cortex-a9") + features({"-hwdiv", "-hwdiv-arm", "-d32", "-fp16", "-fp64", "-neon",
                                                            "-vfp2", "-vfp2sp", "-vfp3", "-vfp3d16", "-vfp3d16sp",
                                                            "-vfp3sp"})},
        {"A53 v8.5 with CRC and FP16",
         {.core = 38, .architecture = 10, .v8AHasCrc = "Yes", .v8AArchitectureExtension = "Armv8.5",
          .v8AHasFp16 = "Yes", .unalignedAccessSetting = "None"},
         false, start("armv8.5a-none-eabi", "cortex-a53") + features({"+crc", "-crypto", "+fullfp16"}) + fullList},
        {"ARM926EJ-S with VFP", {.core = 8, .architecture = 2, .fpuType = "VFP", .fpAbi = "SoftFP"}, false,
         start("armv5te-none-eabi", "arm926ej-s") + features({"+strict-align", "+fp64", "+vfp2"})},
        {"v6T2 without core", {.architecture = 4, .instructionSet = "Thumb", .endian = "BE-8"}, false,
         start("thumbeb-none-eabi", "generic") + features({"-strict-align"})},
    };
    for (const auto &[name, target, forCompile, expected] : rows) {
        StringList list;
        arm::backEndTargetOptions(target, list, forCompile);
        EXPECT_EQ(list, expected) << name;
    }
}

}  // namespace
