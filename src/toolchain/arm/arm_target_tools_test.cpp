// The target option lists given to the real compilers and assembler: the
// object files must carry the build attributes of the chosen core and FPU.

#include "support/qtx_process.h"
#include "support/test_directory.h"
#include "toolchain/arm/arm_target.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace {

using arm::StringList;

StringList operator+(StringList list, const StringList &more) {
    list.insert(list.end(), more.begin(), more.end());
    return list;
}

// Runs a tool in the directory and gives its output lines without their
// indentation; a failure shows what the tool said.
StringList run(const std::string &directory, const StringList &arguments) {
    StringList output, errors;
    EXPECT_EQ(runTool(arguments, true, directory, &output, &errors), 0)
        << arguments[0] << ":\n" << testing::PrintToString(errors);
    for (std::string &line : output)
        line.erase(0, line.find_first_not_of(' '));
    return output;
}

TEST(ArmTargetTools, ObjectsCarryTheTargetAttributes) {
    const StringList cc1 = run("", {"arm-none-eabi-gcc", "-print-prog-name=cc1"});
    ASSERT_EQ(cc1.size(), 1u);
    const StringList m = {"Tag_CPU_arch_profile: Microcontroller"}, thumb2 = {"Tag_THUMB_ISA_use: Thumb-2"};
    // The target, whether the clang back end is tried too, the attributes.
    const std::tuple<const char *, arm::Target, bool, StringList> rows[] = {
        {"Cortex-M0", {.core = arm::cortexM0, .architecture = 5}, false,
         m + StringList{"Tag_CPU_arch: v6S-M", "Tag_THUMB_ISA_use: Thumb-1"}},
        {"Cortex-M3", {.core = 17, .architecture = 6}, true, m + thumb2 + StringList{"Tag_CPU_arch: v7"}},
        {"Cortex-M4 hard float",
         {.core = arm::cortexM4, .architecture = 7, .fpuType = "FPv4-SP-D16", .fpAbi = "Hard"}, true,
         m + thumb2 + StringList{"Tag_CPU_arch: v7E-M", "Tag_FP_arch: VFPv4-D16", "Tag_ABI_HardFP_use: SP only",
                                 "Tag_ABI_VFP_args: VFP registers"}},
        {"Cortex-M7 hard float", {.core = arm::cortexM7, .architecture = 7, .fpuType = "FPv5-D16", .fpAbi = "Hard"},
         false,
         m + thumb2 + StringList{"Tag_CPU_arch: v7E-M", "Tag_FP_arch: FPv5/FP-D16 for ARMv8",
                                 "Tag_ABI_VFP_args: VFP registers"}},
        {"Cortex-M33 with CMSE", {.core = arm::cortexM33, .architecture = 13, .v8MHasCmse = "Yes"}, true,
         m + StringList{"Tag_CPU_arch: v8-M.mainline", "Tag_THUMB_ISA_use: Yes"}},
        {"Cortex-A9 with NEON",
         {.core = 33, .architecture = 9, .fpuType = "VFPv3-D32", .advancedSimdType = "NEON", .fpAbi = "SoftFP"},
         true,
         thumb2 + StringList{"Tag_CPU_arch: v7", "Tag_CPU_arch_profile: Application", "Tag_FP_arch: VFPv3",
                             "Tag_Advanced_SIMD_arch: NEONv1"}},
    };
    TestDirectory directory;
    const std::string &in = directory.path();
    directory.write("x.c", "float scale(float x, int n) { return x * n; }\n"
                           "int quotient(int a, int b) { return a / b; }\n");
    for (const auto &[name, target, withClang, attributes] : rows) {
        SCOPED_TRACE(name);
        StringList compile{cc1[0], "-quiet"}, assemble{"arm-none-eabi-as"}, clang{"clang", "-cc1"};
        arm::gccTargetOptions(target, compile, true);
        arm::assemblerTargetOptions(target, true, assemble);
        run(in, compile + StringList{"-nostdinc", "x.c", "-o", "x.s"});
        run(in, assemble + StringList{"x.s", "-o", "x.o"});
        std::vector<std::pair<const char *, StringList>> objects{
            {"gcc", run(in, {"arm-none-eabi-readelf", "-A", "x.o"})}};
        if (withClang) {
            arm::compilerTargetOptions(target, false, clang);
            run(in, clang + StringList{"-nostdsysteminc", "-nobuiltininc", "-emit-obj", "-o", "y.o", "x.c"});
            objects.emplace_back("clang", run(in, {"arm-none-eabi-readelf", "-A", "y.o"}));
        }
        for (const auto &[compiler, lines] : objects)
            for (const std::string &attribute : attributes)
                EXPECT_TRUE(std::find(lines.begin(), lines.end(), attribute) != lines.end())
                    << compiler << ": " << attribute;
    }
}

}  // namespace
