#include "toolchain/arm/arm_target.h"

#include <initializer_list>

namespace arm {

namespace {

using Features = std::initializer_list<const char *>;

constexpr Features fullList = {"-d32", "-fp-armv8", "-fp-armv8d16", "-fp-armv8d16sp", "-fp-armv8sp", "-fp16", "-fp64",
                               "-neon", "-vfp2", "-vfp2sp", "-vfp3", "-vfp3d16", "-vfp3d16sp", "-vfp3sp", "-vfp4",
                               "-vfp4d16", "-vfp4d16sp", "-vfp4sp", "-fpregs"};
constexpr Features fullListWithoutNeon = {"-d32", "-fp-armv8", "-fp-armv8d16", "-fp-armv8d16sp", "-fp-armv8sp",
                                          "-fp16", "-fp64", "-vfp2", "-vfp2sp", "-vfp3", "-vfp3d16", "-vfp3d16sp",
                                          "-vfp3sp", "-vfp4", "-vfp4d16", "-vfp4d16sp", "-vfp4sp", "-fpregs"};
constexpr Features v6Soft = {"-d32", "-fp64", "-neon", "-vfp2", "-vfp2sp", "-vfp3", "-vfp3d16", "-vfp3d16sp",
                             "-vfp3sp"};
constexpr Features vfp2 = {"+fp64", "+vfp2"};
constexpr Features arm11Soft = {"-fp64", "-vfp2", "-vfp2sp"};
constexpr Features cortexM33Soft = {"-fp-armv8d16sp", "-fp16", "-vfp2sp", "-vfp3d16sp", "-vfp4d16sp"};
constexpr Features cortexM4Soft = {"-fp16", "-vfp2sp", "-vfp3d16sp", "-vfp4d16sp"};
constexpr Features cortexM55Soft = {"-fp-armv8d16", "-fp-armv8d16sp", "-fp16", "-fp64", "-vfp2", "-vfp2sp",
                                    "-vfp3d16", "-vfp3d16sp", "-vfp4d16", "-vfp4d16sp", "-mve.fp"};
constexpr Features cortexM7Soft = {"-fp-armv8d16", "-fp-armv8d16sp", "-fp16", "-fp64", "-vfp2", "-vfp2sp",
                                   "-vfp3d16", "-vfp3d16sp", "-vfp4d16", "-vfp4d16sp"};
constexpr Features cortexM7SinglePrecision = {"-fp-armv8d16", "-fp64", "-vfp2", "-vfp3d16", "-vfp4d16sp"};
constexpr Features cortexRSoft = {"-fp16", "-fp64", "-vfp2", "-vfp2sp", "-vfp3d16", "-vfp3d16sp"};
constexpr Features cortexA8Soft = {"-d32", "-fp16", "-fp64", "-neon", "-vfp2", "-vfp2sp", "-vfp3", "-vfp3d16",
                                   "-vfp3d16sp", "-vfp3sp"};
constexpr Features vfp4Soft = {"-vfp4", "-vfp4d16", "-vfp4d16sp", "-vfp4sp"};
constexpr Features fpv4SinglePrecision = {"+fp16", "+vfp2sp", "+vfp3d16sp", "+vfp4d16sp"};
constexpr Features fpv5SinglePrecision = {"+fp-armv8d16sp"};
constexpr Features fpv5 = {"+fp-armv8d16", "+fp-armv8d16sp", "+fp16", "+fp64", "+vfp2", "+vfp2sp", "+vfp3d16",
                           "+vfp3d16sp", "+vfp4d16", "+vfp4d16sp"};
constexpr Features vfp3 = {"+fp64", "+vfp2", "+vfp2sp", "+vfp3d16", "+vfp3d16sp"};
constexpr Features vfp4 = {"+vfp4", "+vfp4d16", "+vfp4d16sp", "+vfp4sp"};
constexpr Features v8MSinglePrecision = {"-fp-armv8d16", "+fp-armv8d16sp", "+fp16", "-fp64", "-vfp2", "+vfp2sp",
                                         "-vfp3d16", "+vfp3d16sp", "-vfp4d16", "+vfp4d16sp"};

constexpr int cortexR4F = 25, cortexR8 = 28, cortexR52 = 29, cortexA5 = 30, cortexA8 = 32, cortexA9 = 33,
              cortexA17 = 35, cortexA32 = 36, cortexA75 = 43, arm926ejs = 8, arm1136jfs = 10, arm1176jzfs = 12;

void add(StringList &list, const char *feature) { list.insert(list.end(), {"-target-feature", feature}); }

void add(StringList &list, Features features) {
    for (const char *feature : features)
        add(list, feature);
}

void addFlag(StringList &list, const std::string &value, const char *on, const char *off) {
    add(list, value == "Yes" ? on : off);
}

// The FPU features of a core that no core name implies.
void addUnknownCoreFpuFeatures(const Target &target, bool soft, StringList &list) {
    const int architecture = target.architecture;
    const std::string &fpu = target.fpuType;
    if (soft) {
        if (architecture == 3)
            add(list, v6Soft);
        else if (architecture == 13 || architecture == 14)
            add(list, fullListWithoutNeon);
        else if (architecture == 10 || architecture == 11)
            add(list, fullList);
    } else if (architecture == 3) {
        add(list, vfp2);
    } else if (architecture == 7) {
        if (fpu == "FPv4-SP-D16" || fpu == "FPv5-SP-D16")
            add(list, fpv4SinglePrecision);
        if (fpu == "FPv5-SP-D16")
            add(list, fpv5SinglePrecision);
        if (fpu == "FPv5-D16")
            add(list, fpv5);
    } else if (architecture == 8 || architecture == 9) {
        const bool v3 = fpu == "VFPv3-D16" || fpu == "VFPv3-D32", v4 = fpu == "VFPv4-D16" || fpu == "VFPv4-D32";
        if (v3 || v4)
            add(list, vfp3);
        if (fpu == "VFPv3-D32" || fpu == "VFPv4-D32")
            add(list, "+d32");
        if (v4)
            add(list, vfp4);
        add(list, target.advancedSimdType == "None" ? "-neon" : "+fp16");
    } else if (architecture == 13 || architecture == 14) {
        add(list, v8MSinglePrecision);
    }
}

void addFpuFeatures(const Target &target, StringList &list) {
    const bool soft = target.effectiveFpAbi() == "Soft";
    const int core = target.core;
    const std::string &fpu = target.fpuType;
    if (core <= 0 || core >= coreCount) {
        addUnknownCoreFpuFeatures(target, soft, list);
        return;
    }
    if (soft) {
        if (core == arm1136jfs || core == arm1176jzfs)
            add(list, arm11Soft);
        else if (core == cortexM33)
            add(list, cortexM33Soft);
        else if (core == cortexM4)
            add(list, cortexM4Soft);
        else if (core == cortexM52 || core == cortexM55 || core == cortexM85)
            add(list, cortexM55Soft);
        else if (core == cortexM7)
            add(list, cortexM7Soft);
        else if (core >= cortexR4F && core <= cortexR8)
            add(list, cortexRSoft);
        else if (core >= cortexA5 && core <= cortexA17) {
            add(list, cortexA8Soft);
            if (core != cortexA8 && core != cortexA9)
                add(list, vfp4Soft);
        } else if (core == cortexR52 || (core >= cortexA32 && core <= cortexA75))
            add(list, fullList);
        return;
    }
    if (core == arm926ejs)
        add(list, vfp2);
    else if (core == cortexM7 && fpu == "FPv5-SP-D16")
        add(list, cortexM7SinglePrecision);
    // These cores imply 32 double registers; a 16-register FPU takes them away.
    else if (core >= cortexR4F && core <= cortexR8 && fpu != "VFPv3-D32")
        add(list, "-d32");
    else if (core >= cortexA5 && core <= cortexA17 && (fpu == "VFPv3-D16" || fpu == "VFPv4-D16"))
        add(list, "-d32");
    if (core >= cortexR4F && core <= cortexA75 && target.advancedSimdType == "None")
        add(list, "-neon");
}

}  // namespace

std::string triple(const Target &target) {
    static const char *const architectures[architectureCount] = {
        "", "v4t", "v5te", "v6", "", "v6m", "v7m", "v7em", "v7r", "v7a", "v8a", "v8r", "v8m.base", "v8m.main",
        "v8.1m.main"};
    const int architecture = target.architecture;
    std::string text = isCortexMArchitecture(architecture) || target.instructionSet == "Thumb" ? "thumb" : "arm";
    if (target.isBigEndian())
        text += "eb";
    if (architecture == 10 && target.v8AArchitectureExtension == "Armv8.5")
        text += "v8.5a";
    else if (architecture > 0 && architecture < architectureCount)
        text += architectures[architecture];
    return text + "-none-eabi";
}

void backEndTargetOptions(const Target &target, StringList &list, bool forCompile) {
    const bool knownCore = target.core > 0 && target.core < coreCount;
    list.insert(list.end(), {"-triple", target.isArm64() ? "aarch64-none-eabi" : triple(target), "-target-cpu",
                             knownCore ? cpuName(target.core) : "generic"});
    if (target.isArm64()) {
        if (target.arm64StrictAlign == "No" || target.arm64StrictAlign == "Yes")
            addFlag(list, target.arm64StrictAlign, "+strict-align", "-strict-align");
        return;
    }
    const int architecture = target.architecture;
    const bool divide = target.v7HasDivideInstructions == "Yes";
    if (architecture == 8) {
        add(list, {"+hwdiv", divide ? "+hwdiv-arm" : "-hwdiv-arm"});
    } else if (architecture == 9) {
        add(list, divide ? Features{"+hwdiv", "+hwdiv-arm", "+virtualization", "+mp"}
                         : Features{"-hwdiv", "-hwdiv-arm"});
    } else if (architecture == 10) {
        addFlag(list, target.v8AHasCrc, "+crc", "-crc");
        addFlag(list, target.v8AHasCrypto, "+crypto", "-crypto");
        for (const auto &[value, feature] : {std::pair{&target.v8AHasFp16, "+fullfp16"},
                                             {&target.v8AHasFp16fml, "+fp16fml"},
                                             {&target.v8AHasBf16, "+bf16"},
                                             {&target.v8AHasI8mm, "+i8mm"}})
            if (*value == "Yes")
                add(list, feature);
    } else if (architecture >= 12 && architecture <= 14) {
        addFlag(list, target.v8MHasCmse, "+8msecext", "-8msecext");
        if (forCompile && target.v8MHasCmse == "Yes")
            list.push_back("-mcmse");
        const std::string &mve = target.v81MMveType;
        if (architecture != 12 && target.v8MHasDsp == "Yes")
            add(list, "+dsp");
        else if (architecture != 12 && target.core != cortexM85 && mve == "None")
            add(list, "-dsp");
        if (architecture == 14) {
            if (mve == "MVE")
                add(list, {"+mve", "-mve.fp"});
            else if (mve == "MVE.FP" && target.core != cortexM85)
                add(list, "+mve.fp");
            else if (mve == "None")
                add(list, {"-mve", "-mve.fp"});
            if (target.v81MHasPacbti == "Yes")
                add(list, "+pacbti");
        }
    }
    if (bool allowed; target.unalignedAccess(allowed))
        add(list, allowed ? "-strict-align" : "+strict-align");
    if (target.tlsModel == "CP15")
        add(list, "+read-tp-tpidruro");
    if (forCompile) {
        const std::string fpAbi = target.effectiveFpAbi();
        if (fpAbi == "Soft") {
            add(list, {"+soft-float", "+soft-float-abi"});
            list.push_back("-msoft-float");
        } else if (fpAbi == "SoftFP") {
            add(list, "+soft-float-abi");
        }
        if (target.abi == "AAPCS")
            list.insert(list.end(), {"-target-abi", "aapcs"});
        list.insert(list.end(), {"-mfloat-abi", fpAbi == "Hard" ? "hard" : "soft"});
    }
    addFpuFeatures(target, list);
}

}  // namespace arm
