#include "toolchain/arm/arm_target.h"

#include <algorithm>
#include <cctype>

namespace arm {

namespace {

std::string lowerCase(std::string text) {
    for (char &c : text)
        c = char(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

std::string upperCase(std::string text) {
    for (char &c : text)
        c = char(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

void remove(StringList &list, const std::string &option) {
    list.erase(std::remove(list.begin(), list.end(), option), list.end());
}

bool knownCore(int core) { return core > 0 && core < coreCount; }

bool contains(const StringList &list, const std::string &option) {
    return std::find(list.begin(), list.end(), option) != list.end();
}

// The -march value for an architecture; v7R in ARM state takes neither
// divide form.
std::string marchFor(const Target &target, int architecture) {
    if (architecture == 8 && target.instructionSet == "ARM")
        return "armv7-r";
    return marchName(architecture, target.v7HasDivideInstructions == "Yes");
}

struct FpuOption {
    const char *fpuType;
    const char *withNeon;  // when arm_advanced_SIMD_type is "NEON"
    const char *option;
};

constexpr FpuOption fpuOptions[] = {
    {"VFP", nullptr, "-mfpu=vfp"},
    {"VFP9", nullptr, "-mfpu=vfp"},
    {"VFPv3-D32", "-mfpu=neon", "-mfpu=vfpv3"},
    {"VFPv3-D16", nullptr, "-mfpu=vfpv3-d16"},
    {"VFPv4-D32", "-mfpu=neon-vfpv4", "-mfpu=vfpv4"},
    {"VFPv4-D16", nullptr, "-mfpu=vfpv4-d16"},
    {"FPv4-SP-D16", nullptr, "-mfpu=fpv4-sp-d16"},
    {"FPv5-SP-D16", nullptr, "-mfpu=fpv5-sp-d16"},
    {"FPv5-D16", nullptr, "-mfpu=fpv5-d16"},
    {"FP-ARMv8", "-mfpu=neon-fp-armv8", "-mfpu=fp-armv8"},
};

void appendFpuOption(const Target &target, StringList &list) {
    const bool neon = target.advancedSimdType == "NEON";
    if (target.fpuType == "FP-ARMv8" && neon && target.v8AHasCrypto == "Yes") {
        list.push_back("-mfpu=crypto-neon-fp-armv8");
        return;
    }
    for (const FpuOption &row : fpuOptions)
        if (target.fpuType == row.fpuType) {
            list.push_back(neon && row.withNeon ? row.withNeon : row.option);
            return;
        }
}

// Each suffix is added when its property reads "Yes".
void addSuffixes(std::string &option, std::initializer_list<std::pair<const std::string *, const char *>> suffixes) {
    for (const auto &[value, suffix] : suffixes)
        if (*value == "Yes")
            option += suffix;
}

// The core or architecture option as gcc wants it for the features that
// the plain names don't carry.
void adjustArchitectureOption(const Target &target, std::string &option) {
    const std::string &dsp = target.v8MHasDsp, &mve = target.v81MMveType;
    const std::string mveSuffix = mve == "MVE" ? "+mve" : mve == "MVE.FP" ? "+mve.fp" : "";
    if (option == "-march=armv8-a") {
        if (target.v8AArchitectureExtension != "None")
            option = "-march=" + lowerCase(target.v8AArchitectureExtension) + "-a";
        addSuffixes(option, {{&target.v8AHasCrc, "+crc"}, {&target.v8AHasCrypto, "+crypto"},
                             {&target.v8AHasFp16, "+fp16"}, {&target.v8AHasFp16fml, "+fp16fml"},
                             {&target.v8AHasBf16, "+bf16"}, {&target.v8AHasI8mm, "+i8mm"}});
    } else if (option == "-march=armv8-m.main") {
        addSuffixes(option, {{&dsp, "+dsp"}});
    } else if (option == "-march=armv8.1-m.main") {
        option += mveSuffix;
        addSuffixes(option, {{&dsp, "+dsp"}, {&target.v81MHasPacbti, "+pacbti"}});
    } else if (option == "-mcpu=cortex-m85") {
        option = "-march=armv8.1-m.main+dsp" + mveSuffix;
        addSuffixes(option, {{&target.v81MHasPacbti, "+pacbti"}});
    } else if (option == "-mcpu=cortex-m0" || option == "-mcpu=cortex-m0plus" || option == "-mcpu=cortex-m1") {
        addSuffixes(option, {{&target.cm0HasSmallMultiplier, ".small-multiply"}});
    } else if (option == "-mcpu=cortex-m33") {
        if (dsp != "Yes")
            option += "+nodsp";
    } else if (option == "-mcpu=cortex-m55") {
        if (target.v8MHasDspSet && dsp == "No")
            option += "+nodsp";
        if (target.v81MMveTypeSet)
            option += mve == "None" ? "+nomve" : mve == "MVE" ? "+nomve.fp" : "";
    }
}

}  // namespace

void basicTargetOptions(const Target &target, StringList &list, bool withCore) {
    if (withCore && knownCore(target.core))
        list.push_back("-mcpu=" + cpuName(target.core));
    else if (architectureName(target.architecture)[0])
        list.push_back("-march=" + marchFor(target, target.architecture));
    if (target.endian == "Little")
        list.push_back("-mlittle-endian");
    else if (target.isBigEndian())
        list.push_back("-mbig-endian");
    if (target.fpAbi == "Soft" || target.fpAbi == "SoftFP" || target.fpAbi == "Hard")
        list.push_back("-mfloat-abi=" + lowerCase(target.fpAbi));
    if (withCore && target.abi == "AAPCS")
        list.push_back("-mabi=aapcs");
    if (target.fpAbi == "SoftFP" || target.fpAbi == "Hard")
        appendFpuOption(target, list);
}

void gccTargetOptions(const Target &target, StringList &list, bool full) {
    if (target.isArm64()) {
        if (target.arm64Abi != "None")
            list.push_back("-mabi=" + target.arm64Abi);
        if (!full)
            return;
        if (knownCore(target.core))
            list.push_back("-mcpu=" + cpuName(target.core));
        if (target.arm64CodeModel != "None")
            list.push_back("-mcmodel=" + target.arm64CodeModel);
        if (target.arm64OutlineAtomics == "No" || target.arm64OutlineAtomics == "Yes")
            list.push_back(target.arm64OutlineAtomics == "Yes" ? "-moutline-atomics" : "-mno-outline-atomics");
        if (target.arm64StrictAlign == "No" || target.arm64StrictAlign == "Yes")
            list.push_back(target.arm64StrictAlign == "Yes" ? "-mstrict-align" : "-mno-strict-align");
        return;
    }
    const size_t first = list.size();
    basicTargetOptions(target, list, full);
    if (isCortexMCore(target.core) || isCortexMArchitecture(target.architecture) ||
        upperCase(target.instructionSet) == "THUMB")
        list.push_back("-mthumb");
    if (first < list.size() && (list[first].starts_with("-mcpu=") || list[first].starts_with("-march=")))
        adjustArchitectureOption(target, list[first]);
    if (bool allowed; target.unalignedAccess(allowed))
        list.push_back(allowed ? "-munaligned-access" : "-mno-unaligned-access");
    if (!full)
        return;
    if (target.tlsModel != "None")
        list.push_back("-mtp=" + lowerCase(target.tlsModel));
    if (target.fp16Format == "IEEE")
        list.push_back("-mfp16-format=ieee");
    if (target.v8MHasCmse == "Yes" && target.architecture >= 12 && target.architecture <= 14)
        list.push_back("-mcmse");
    if (target.longCalls == "Yes")
        list.push_back("-mlong-calls");
    if (target.advancedSimdType == "NEON" && target.advancedSimdAutoVectorize == "Yes")
        list.push_back("-ftree-vectorize");
}

void compilerTargetOptions(const Target &target, bool forGcc, StringList &list) {
    if (forGcc) {
        gccTargetOptions(target, list, true);
        return;
    }
    backEndTargetOptions(target, list, true);
    // The 32-bit settings mean nothing to an aarch64 back end.
    if (!target.isArm64()) {
        if (target.longCalls == "Yes")
            list.insert(list.end(), {"-target-feature", "+long-calls"});
        if (target.advancedSimdType == "NEON" && target.advancedSimdAutoVectorize == "Yes")
            list.push_back("-vectorize-loops");
    }
    // The back end's char is signed unless told otherwise; an explicit
    // "No" comes with the code generation options.
    if (target.signedChar != "Yes" && target.signedChar != "No")
        list.push_back("-fno-signed-char");
    if (!target.isArm64() && target.fp16Format == "IEEE")
        list.insert(list.end(), {"-fnative-half-type", "-fnative-half-arguments-and-returns"});
    if (target.clangMergeGlobals == "No")
        list.insert(list.end(), {"-mllvm", "-arm-global-merge=false"});
}

void assemblerTargetOptions(const Target &target, bool forGcc, StringList &list) {
    if (!forGcc) {
        backEndTargetOptions(target, list, false);
        list.insert(list.end(), {"-mllvm", "-arm-add-build-attributes"});
        return;
    }
    StringList options;
    gccTargetOptions(target, options, false);
    remove(options, "-mno-unaligned-access");
    remove(options, "-munaligned-access");
    list.insert(list.end(), options.begin(), options.end());
}

void preprocessTargetOptions(const Target &target, bool forGcc, StringList &list) {
    if (forGcc)
        gccTargetOptions(target, list, false);
    else
        backEndTargetOptions(target, list, true);
}

bool driverTargetOptions(const Target &target, int step, StringList &list) {
    const bool driver = target.useCompilerDriver == "Yes";
    if (step >= 2 && step <= 4) {
        gccTargetOptions(target, list, false);
        if (driver) {
            if (target.isArm64())
                list.push_back("-arm64");
            if (target.linkerHeapSize != "None")
                list.push_back("-D__HEAP_SIZE__=" + (target.linkerHeapSize.empty() ? "0" : target.linkerHeapSize));
        } else if (target.useClangNotGcc == "Yes") {
            compilerTargetOptions(target, true, list);
            remove(list, "-mfp16-format=ieee");
        }
        return true;
    }
    if (step != 7)
        return false;
    if (!driver) {
        basicTargetOptions(target, list, false);
        return true;
    }
    StringList options;
    if (target.isArm64())
        options.push_back("-arm64");
    else
        gccTargetOptions(target, options, false);
    if (target.endian == "BE-8") {
        remove(options, "-be");
        options.push_back("-be8");
    }
    if (!target.cmseImportLibraryFileName.empty())
        options.push_back("-cmselib=" + target.cmseImportLibraryFileName);
    const std::string &optimization = target.libraryOptimization;
    if (optimization == "Small" || optimization == "Balanced" || optimization == "Fast")
        options.push_back(optimization == "Small" ? "-Oz" : optimization == "Balanced" ? "-Os" : "-O2");
    if (target.libraryInstructionSet == "ARM") {
        remove(options, "-mthumb");
        options.push_back("-marm");
    } else if (target.libraryInstructionSet == "Thumb" && !contains(options, "-mthumb")) {
        options.push_back("-mthumb");
    }
    if (const int architecture = architectureNumber(target.libraryArchitecture))
        for (std::string &option : options)
            if (option.starts_with("-march="))
                option = "-march=" + marchFor(target, architecture);
    list.insert(list.end(), options.begin(), options.end());
    return true;
}

void linkerOptions(const Target &target, StringList &list) {
    if (target.linkerNoEnumSizeWarning == "Yes")
        list.push_back("--no-enum-size-warning");
    if (target.linkerNoWcharSizeWarning == "Yes")
        list.push_back("--no-wchar-size-warning");
    if (target.endian == "Little")
        list.push_back("-EL");
    else if (target.endian == "Big")
        list.push_back("-EB");
    else if (target.endian == "BE-8")
        list.insert(list.end(), {"-EB", "--be8"});
    if (!target.cmseImportLibraryFileName.empty()) {
        list.insert(list.end(), {"--out-implib=" + target.cmseImportLibraryFileName, "--cmse-implib"});
        if (!target.checkCmseImportLibraryFileName.empty())
            list.push_back("--in-implib=" + target.checkCmseImportLibraryFileName);
    }
    if (target.linkerVariant == "Brenlow") {
        static const char *const shortNames[architectureCount] = {
            "unknown", "v4T", "v5TE", "unknown", "unknown", "6-M", "7-M", "7E-M",
            "unknown", "7-A", "unknown", "unknown", "8-M.base", "8-M.main", "8.1-M.main"};
        const int architecture = target.architecture;
        list.push_back(std::string("-mcpu=") +
                       (architecture > 0 && architecture < architectureCount ? shortNames[architecture] : "unknown"));
    }
    if (target.isArm64() && (target.unwindTables == "Yes" || target.cppEnableExceptions == "Yes"))
        list.push_back("--eh-frame-hdr");
}

void targetDefines(const Target &target, const std::string &packagesInclude, StringList &list) {
    static const char *const architectureDefines[architectureCount] = {
        nullptr, "-D__ARM_ARCH_4T__", "-D__ARM_ARCH_5TE__", "-D__ARM_ARCH_6__", nullptr,
        "-D__ARM_ARCH_6M__", "-D__ARM_ARCH_7M__", "-D__ARM_ARCH_7EM__", "-D__ARM_ARCH_7R__",
        "-D__ARM_ARCH_7A__", "-D__ARM_ARCH_8A__", "-D__ARM_ARCH_8R__", "-D__ARM_ARCH_8M_BASELINE__",
        "-D__ARM_ARCH_8M_MAINLINE__", "-D__ARM_ARCH_81M_MAINLINE__"};
    static const std::pair<const char *, const char *> fpuDefines[] = {
        {"VFP", "-D__ARM_ARCH_VFP__"},
        {"VFP9", "-D__ARM_ARCH_VFP__"},
        {"VFPv3-D32", "-D__ARM_ARCH_VFP3_D32__"},
        {"VFPv3-D16", "-D__ARM_ARCH_VFP3_D16__"},
        {"VFPv4-D32", "-D__ARM_ARCH_VFP4_D32__"},
        {"VFPv4-D16", "-D__ARM_ARCH_VFP4_D16__"},
        {"FPv4-SP-D16", "-D__ARM_ARCH_FPV4_SP_D16__"},
        {"FPv5-SP-D16", "-D__ARM_ARCH_FPV5_SP_D16__"},
        {"FPv5-D16", "-D__ARM_ARCH_FPV5_D16__"},
        {"FP-ARMv8", "-D__ARM_ARCH_FP_ARMv8__"},
    };
    const int architecture = target.architecture;
    if (architecture > 0 && architecture < architectureCount && architectureDefines[architecture])
        list.push_back(architectureDefines[architecture]);
    list.push_back("-D__VELDANE_ARM");
    if (const std::string fpAbi = target.effectiveFpAbi(); fpAbi == "SoftFP" || fpAbi == "Hard")
        for (const auto &[fpuType, define] : fpuDefines)
            if (target.fpuType == fpuType)
                list.push_back(define);
    if (target.linkerHeapSize != "None")
        list.push_back("-D__HEAP_SIZE__=" + target.linkerHeapSize);
    const int core = target.core;
    if (core == 0 || core == 1 || core == 2 || core == 6 || core == xscale)
        list.push_back(packagesInclude);
}

}  // namespace arm
