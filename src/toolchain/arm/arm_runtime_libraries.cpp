#include "toolchain/arm/arm_runtime_libraries.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace arm {

namespace {

// The library name of each architecture, by number.
constexpr std::array<const char *, architectureCount> libraryArchitectures = {
    "",    "v4t", "v5te", "v6",  "v6t2",  "v6m",   "v7m",   "v7em",
    "v7r", "v7a", "v8a",  "v8r", "v8mbl", "v8mml", "v81mml"};

// What the libraries and macros call each FPU: the suffix of the library
// name and the FPU, FPU2 and FPU3 macros.
struct FpuNames {
    const char *type, *suffix, *fpu, *fpu2, *fpu3;
};
constexpr FpuNames fpus[] = {
    {"VFP", "_vfp", "vfpv2", "vfpv2", "vfp"},
    {"VFP9", "_vfp", "vfpv2", "vfpv2", "vfp"},
    {"VFPv3-D32", "_vfpv3_d32", "vfpv3", "vfpv3", "vfpv3"},
    {"VFPv3-D16", "_vfpv3_d16", "vfpv3_d16", "vfpv3-d16", "vfpv3-d16"},
    {"VFPv4-D32", "_vfpv4_d32", "vfpv4", "vfpv4", "vfpv4"},
    {"VFPv4-D16", "_vfpv4_d16", "vfpv4_d16", "vfpv4-d16", "vfpv4-d16"},
    {"FPv4-SP-D16", "_fpv4_sp_d16", "vfpv4_sp", "fpv4-sp", "fpv4-sp-d16"},
    {"FPv5-SP-D16", "_fpv5_sp_d16", "vfpv5_sp", "fpv5-sp", "fpv5-sp-d16"},
    {"FPv5-D16", "_fpv5_d16", "vfpv5_d16", "fpv5-d16", "fpv5-d16"},
    {"FP-ARMv8", "_fp_armv8", "fp_armv8", "fp-armv8", "fp-armv8"},
};

const FpuNames *fpuNames(const std::string &type) {
    for (const FpuNames &names : fpus)
        if (type == names.type)
            return &names;
    return nullptr;
}

std::string lowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    return text;
}

// The architecture of the libraries: arm_library_architecture unless that
// is "Default".
int libraryArchitecture(const Target &target) {
    if (target.libraryArchitecture == "Default")
        return target.architecture;
    return architectureNumber(target.libraryArchitecture);
}

bool fpAbiUsesFpu(const std::string &fpAbi) { return fpAbi == "SoftFP" || fpAbi == "Hard"; }

// The debug I/O mechanism of the linker symbol, empty for none.
std::string debugIoMechanism(const Target &target) {
    const std::string &type = target.linkDebugIoType;
    if (type == "Breakpoint")
        return "bkpt";
    if (type == "DCC")
        return "dcc";
    if (type == "Memory Poll")
        return "mempoll";
    if (type != "Default")
        return std::string();
    const int a = target.architecture;
    if ((a >= 1 && a <= 4) || (a >= 8 && a <= 11))
        return "dcc";
    if (a == 6 || a >= 12)
        return a <= 14 ? "mempoll" : "";
    if (a == 5 || a == 7)
        return target.core == cortexM7 ? "bkpt" : "mempoll";
    return std::string();
}

}  // namespace

std::string libArch(const Target &target) {
    if (target.isArm64())
        return "arm64";
    const int architecture = libraryArchitecture(target);
    return architecture > 0 && architecture < architectureCount ? libraryArchitectures[std::size_t(architecture)]
                                                                : "";
}

std::string libEndianExt(const Target &target) { return target.isBigEndian() ? "_be" : "_le"; }

std::string libExt(const Target &target) {
    if (target.isArm64()) {
        std::string ext = "_v8a_a64_le";
        if (target.arm64Abi == "ilp32")
            ext += "_ilp32";
        if (target.libraryOptimization == "Small")
            ext += "_small";
        return ext;
    }
    const int architecture = libraryArchitecture(target);
    const bool divide = target.v7HasDivideInstructions == "Yes";
    std::string ext = "_" + libArch(target);
    if ((architecture == 8 && divide && target.instructionSet != "ARM") || (architecture == 9 && divide))
        ext += "_idiv";
    else if (architecture == 13 && target.v8MHasDsp == "Yes")
        ext += "_dsp";
    const std::string fpAbi = target.effectiveFpAbi();
    if (fpAbiUsesFpu(fpAbi))
        if (const FpuNames *names = fpuNames(target.fpuType))
            ext += names->suffix;
    if (fpAbi == "Hard")
        ext += "_hard";
    const std::string &instructionSet =
        target.libraryInstructionSet == "Default" ? target.instructionSet : target.libraryInstructionSet;
    ext += isCortexMArchitecture(target.architecture) || instructionSet != "ARM" ? "_t" : "_a";
    ext += libEndianExt(target);
    ext += "_eabi";
    if (target.libraryOptimization == "Small")
        ext += "_small";
    if (target.wcharSize == "16-Bit")
        ext += "_swc";
    if (target.shortEnum == "Int Size")
        ext += "_ienum";
    return ext;
}

void targetMacros(const Target &target, bool executable,
                  const std::function<void(const std::string &, const std::string &)> &add) {
    if (!target.isArm64() && executable && target.core && target.architecture) {
        add("CoreType", lowerCase(coreName(target.core)));
        add("Arch", lowerCase(architectureName(target.architecture)));
        add("Arch2", lowerCase(marchName(target.architecture, target.v7HasDivideInstructions == "Yes")));
        const FpuNames *names = fpuNames(target.fpuType);
        add("FPU", names ? names->fpu : "softvfp");
        add("FPU2", names ? names->fpu2 : "none");
        add("FPU3", names ? names->fpu3 : "none");
        add("Endian", target.isBigEndian() ? "big" : "little");
        add("FPABI", lowerCase(target.effectiveFpAbi()));
    }
    add("LibArch", libArch(target));
    add("LibEndianExt", libEndianExt(target));
    add("LibExt", libExt(target));
}

void runtimeLibraries(const Target &target, const std::string &directory, StringList &libs) {
    const std::string ext = libExt(target);
    if (target.linkDebugIoType != "None")
        libs.push_back(directory + "/libprobeio" + ext + ".a");
    switch (target.architecture) {
    case 1: case 2: case 3: case 8: case 9: case 10: case 11:
        libs.push_back(directory + "/libarm" + ext + ".a");
        break;
    case 6: case 7: case 13: case 14:
        libs.push_back(directory + "/libcm" + ext + ".a");
        break;
    default:
        break;
    }
}

void linkerSymbolDefinitions(const Target &target, bool standardLibraries, StringList &list) {
    auto orZero = [](const std::string &value) { return value.empty() ? std::string("0") : value; };
    if (!target.linkerStackSize.empty())
        list.push_back("__STACKSIZE__=" + target.linkerStackSize);
    if (isCortexMArchitecture(target.architecture) && !target.isArm64()) {
        if (!target.linkerProcessStackSize.empty())
            list.push_back("__STACKSIZE_PROCESS__=" + target.linkerProcessStackSize);
        for (const char *mode : {"IRQ", "FIQ", "SVC", "ABT", "UND"})
            list.push_back(std::string("__STACKSIZE_") + mode + "__=0");
    } else if (!target.isArm64()) {
        const std::pair<const char *, const std::string *> modes[] = {
            {"IRQ", &target.linkerIrqStackSize}, {"FIQ", &target.linkerFiqStackSize},
            {"SVC", &target.linkerSvcStackSize}, {"ABT", &target.linkerAbtStackSize},
            {"UND", &target.linkerUndStackSize}};
        for (const auto &[mode, size] : modes)
            list.push_back(std::string("__STACKSIZE_") + mode + "__=" + orZero(*size));
    }
    if (!target.linkerHeapSize.empty())
        list.push_back("__HEAPSIZE__=" + target.linkerHeapSize);
    if (standardLibraries) {
        const std::string mechanism = debugIoMechanism(target);
        if (!mechanism.empty())
            list.push_back("__do_debug_operation=__do_debug_operation_" + mechanism);
    }
}

std::string printfSelection(const std::string &fpEnabled, const std::string &formatLevel,
                            const std::string &widthPrecisionSupported, const std::string &wcharEnabled) {
    const bool longLong = formatLevel == "long long";
    std::string name;
    if (fpEnabled == "Double" || fpEnabled == "Yes")
        name = longLong ? "float_long_long" : "float_long";
    else if (fpEnabled == "Float")
        name = longLong ? "short_float_long_long" : "short_float_long";
    else {
        name = longLong ? "long_long" : formatLevel;
        if (widthPrecisionSupported == "No")
            name += "_nwp";
    }
    if (wcharEnabled == "Yes")
        name += "_wchar";
    return name;
}

std::string scanfSelection(const std::string &fpEnabled, const std::string &formatLevel,
                           const std::string &characterGroupMatching) {
    const bool longLong = formatLevel == "long long";
    std::string name;
    if (fpEnabled == "Yes")
        name = longLong ? "float_long_long" : "float_long";
    else
        name = longLong ? "long_long" : formatLevel;
    if (characterGroupMatching == "Yes")
        name += "_cc";
    return name;
}

void filterLinkerInputs(const std::string &installDirectory, StringList &libs) {
    const std::string under = installDirectory + "/";
    const std::string small = "_small.a";
    for (std::string &lib : libs) {
        const bool light = lib.find("libqmx_light") != std::string::npos;
        const bool isSmall = lib.size() >= small.size() && lib.compare(lib.size() - small.size(), small.size(), small) == 0;
        const bool isArchive = lib.size() > 2 && lib.compare(lib.size() - 2, 2, ".a") == 0;
        if (light && !isSmall && isArchive && !installDirectory.empty() && lib.compare(0, under.size(), under) == 0)
            lib.replace(lib.size() - 2, 2, small);
    }
}

void migrateValue(std::string &value) {
    static const std::string replacement = "$(PackagesDir)/libraries/libtskq";
    for (const std::string old : {"$(StudioDir)/tskq", "$(PackagesDir)/tskq"})
        for (std::size_t at = value.find(old); at != std::string::npos;
             at = value.find(old, at + replacement.size()))
            value.replace(at, old.size(), replacement);
}

}  // namespace arm
