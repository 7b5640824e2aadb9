#include "toolchain/ostrand_gcc_project_system.h"

#include "build/builder.h"
#include "support/file_path.h"
#include "toolchain/arm/arm_runtime_libraries.h"

#include <cstdio>
#include <cstdlib>


namespace {

constexpr std::string_view installedToolMacros[] = {"AR",   "AS",      "CC1",     "CC1PLUS", "CLANG",
                                           "LIBLTO", "LD",    "LTO1",    "OBJCOPY", "OBJDUMP",
                                           "STRIP", "GCC",    "GPLUSPLUS"};

// What the platform's addTargetMacros may add.
constexpr std::string_view targetMacros[] = {"GCCTarget", "GCCVersion", "GCCPrefix", "LibExt", "LibArch", "LibEndianExt",
                                    "CoreType",  "Arch",       "Arch2",     "FPU",    "FPU2",    "FPU3",
                                    "Endian",    "FPABI",      "DeviceName"};

}  // namespace

OstrandGCCProjectSystem::OstrandGCCProjectSystem(SystemMacros *macroTable)
    : GCCProjectSystem(macroTable, "$(StudioDir)/gcc/$(GCCTarget)/bin", std::string(), ".elf",
                       GCCTableFlags{true, true, false, true, true}),
      ostProperties(propertyClasses) {
    addToolMacroNames(installedToolMacros);
    addToolMacroNames(targetMacros);
}

void OstrandGCCProjectSystem::addToolMacros(ProjectElement *element, const std::string &configuration,
                                            MacroMap &map) {
    // The target macros come first, so that the toolchain directory can name
    // $(GCCTarget).
    if (getPropertyValue(element, ostProperties.useExternalGcc, configuration) == "Yes") {
        platform()->addTargetMacros(element, configuration, map);
        GCCProjectSystem::addToolMacros(element, configuration, map);
        return;
    }
    StandardProjectSystem::addToolMacros(element, configuration, map);
    platform()->addTargetMacros(element, configuration, map);
    const auto global = [&](const char *name) {
        if (!macros)
            return std::string();
        const auto found = macros->systemMacros().find(name);
        return found == macros->systemMacros().end() ? std::string() : found->second;
    };
    const std::string exe = global("HostEXE");
    const std::string dll = global("HostDLLExt");
    const std::string directory =
        expandedValue(element, nodeProperties.buildToolchainDirectory, configuration, map);
    const std::string install = installDirectory;
    addToolMacro(map, "AR", directory + "/ar" + exe);
    addToolMacro(map, "AS", directory + "/as" + exe);
    addToolMacro(map, "CC1", directory + "/cc1" + exe);
    addToolMacro(map, "CC1PLUS", directory + "/cc1plus" + exe);
    addToolMacro(map, "CLANG", install + "/llvm/bin/clang" + exe);
    addToolMacro(map, "LIBLTO", install + "/llvm/bin/libLTO" + dll);
    addToolMacro(map, "LD", directory + "/ld" + exe);
    addToolMacro(map, "LTO1", directory + "/lto1" + exe);
    addToolMacro(map, "OBJCOPY", directory + "/objcopy" + exe);
    addToolMacro(map, "OBJDUMP", directory + "/objdump" + exe);
    addToolMacro(map, "STRIP", directory + "/strip" + exe);
    addToolMacro(map, "GCC", install + "/bin/cc" + exe);
    addToolMacro(map, "GPLUSPLUS", install + "/bin/cc++" + exe);
}

bool OstrandGCCProjectSystem::externalGcc(ProjectElement *element, const std::string &configuration) {
    return getPropertyValue(element, ostProperties.useExternalGcc, configuration) == "Yes";
}

bool OstrandGCCProjectSystem::directForm(ProjectElement *element, const std::string &configuration) {
    return !externalGcc(element, configuration) &&
           getPropertyValue(element, ostProperties.useCompilerDriver, configuration) != "Yes";
}

std::string OstrandGCCProjectSystem::moduleInterfaceFilePath(ProjectElement *element,
                                                             const std::string &configuration) {
    std::string path = GCCProjectSystem::moduleInterfaceFilePath(element, configuration);
    if (getPropertyValue(element, ostProperties.compilerVariant, configuration) != "gcc")
        path.replace(path.size() - 4, 4, ".pcm");
    return path;
}

bool OstrandGCCProjectSystem::supportsModuleScan(ProjectElement *element, const std::string &configuration) {
    return externalGcc(element, configuration) ||
           getPropertyValue(element, ostProperties.compilerVariant, configuration) == "gcc";
}

bool OstrandGCCProjectSystem::usesRanlib(ProjectElement *element, const std::string &configuration) {
    return externalGcc(element, configuration);
}

bool OstrandGCCProjectSystem::usesModuleMapper(ProjectElement *element, const std::string &configuration) {
    return externalGcc(element, configuration);
}

bool OstrandGCCProjectSystem::usesBrenlowLinker(ProjectElement *element, const std::string &configuration) {
    return getPropertyValue(element, ostProperties.linkerVariant, configuration) == "Brenlow";
}

bool OstrandGCCProjectSystem::hasOwnValue(ProjectElement *element, PropertyClass *property,
                                          const std::string &configuration,
                                          std::optional<std::string> &value) {
    if (externalGcc(element, configuration))
        return GCCProjectSystem::hasOwnValue(element, property, configuration, value);
    value = getPropertyValue(element, property, configuration);
    return true;
}

// ---- Build steps.

void OstrandGCCProjectSystem::buildStep(ProjectElement *element, const std::string &configuration, int step,
                                        const std::string &outputRelative, const std::string &outputFile,
                                        const StringList &inputs, Builder *builder, BuildFlags flags) {
    if (externalGcc(element, configuration) || (step != KindC && step != KindCpp && step != KindAssembly &&
                                                step != KindLink && step != KindArchive)) {
        GCCProjectSystem::buildStep(element, configuration, step, outputRelative, outputFile, inputs, builder,
                                    flags);
        return;
    }
    if (!directForm(element, configuration)) {
        unavailableStep(element, configuration, step, builder,
                        "error: building with the installation's compiler driver (use_compiler_driver) is not "
                        "available yet; set use_external_gcc to \"Yes\" to build with an external GNU toolchain");
        return;
    }
    switch (step) {
    case KindC:
    case KindCpp:
        compileStep(element, configuration, step, outputRelative, outputFile, inputs, builder);
        break;
    case KindAssembly:
        assembleStep(element, configuration, outputRelative, outputFile, inputs, builder);
        break;
    case KindArchive:
        archiveStep(element, configuration, outputRelative, outputFile, inputs, builder);
        break;
    default:
        linkStepDirect(element, configuration, outputRelative, outputFile, inputs, builder, flags);
    }
}

bool OstrandGCCProjectSystem::appendDriverOptions(ProjectElement *element, const std::string &configuration,
                                                  int step, const std::string &output, StringList &list) {
    auto value = [&](PropertyClass *property) { return getPropertyValue(element, property, configuration); };
    const OstProperties &ost = ostProperties;
    if (value(ost.useCompilerDriver) != "Yes") {
        // An external driver is told the target as any cross gcc is;
        // without it the driver would build for its default core.
        return !externalGcc(element, configuration) ||
               platform()->appendDriverTargetOptions(element, configuration, step, list);
    }
    const GCCProperties &gcc = gccProperties;
    if (step == KindC || step == KindCpp) {
        if (value(ost.compilerVariant) == "clang")
            list.push_back("-clang");
        if (value(ost.generateStackSizes) == "Yes")
            list.push_back("-stack-sizes");
        if (value(gcc.unwindTables) == "Yes")
            list.push_back("-unwindtables");
        if (value(gcc.diagnosticsShowCaret) == "No")
            list.push_back("-fno-diagnostics-show-caret");
        if (value(gcc.colorDiagnostics) == "Yes")
            list.push_back("-fdiagnostics-color=always");
        const std::pair<PropertyClass *, const char *> sections[] = {
            {toolProperties.defaultCodeSection, "-Rc,"},
            {toolProperties.defaultDataSection, "-Rd,"},
            {toolProperties.defaultZeroedSection, "-Rz,"},
            {toolProperties.defaultConstSection, "-Rk,"}};
        for (const auto &[property, option] : sections) {
            std::optional<std::string> own;
            if (isPropertySet(element, property, configuration, own))
                list.push_back(option + own.value_or(""));
        }
    } else if (step == KindAssembly) {
        if (value(ost.assemblerVariant) == "clang")
            list.push_back("-clang");
    } else if (step == KindLink) {
        const std::optional<std::string> variant = value(ost.compilerVariant);
        if (variant == "clang")
            list.push_back("-clang");
        else if (variant == "Brenlow")
            list.push_back("-brenlow");
        if (value(ost.linkKeepLtoFiles) == "Yes")
            list.push_back("-klto");
        const std::string fill = expandedValue(element, ost.additionalOutputFileGapFill, configuration);
        const long gap = std::strtol(fill.c_str(), nullptr, 0);
        if (gap > 0) {
            char hex[32];
            std::snprintf(hex, sizeof hex, "-fill=0x%02lx", gap);
            list.push_back(hex);
        }
    }
    (void)output;
    return platform()->appendDriverTargetOptions(element, configuration, step, list);
}

// ---- Links.

void OstrandGCCProjectSystem::linkerInputFiles(ProjectElement *element, const std::string &configuration,
                                               StringList &list) {
    GCCProjectSystem::linkerInputFiles(element, configuration, list);
    platform()->filterLinkerInputs(element, configuration, list);
}

std::string OstrandGCCProjectSystem::secondaryLinkOutput(ProjectElement *element, const std::string &configuration) {
    return platform()->secondaryLinkOutput(element, configuration);
}

bool OstrandGCCProjectSystem::linkerLogFilePath(ProjectElement *element, const std::string &configuration,
                                                std::string &path) {
    if (!usesBrenlowLinker(element, configuration) ||
        getPropertyValue(element, ostProperties.linkerLogFile, configuration) != "Yes")
        return false;
    const FilePath output(outputFilePath(KindLink, element, configuration));
    path = output.path() + "/" + output.baseName(true) + ".log";
    return true;
}


void OstrandGCCProjectSystem::linkerSymbolDefinitions(ProjectElement *element, const std::string &configuration,
                                                      StringList &list) {
    auto value = [&](PropertyClass *property) {
        return getPropertyValue(element, property, configuration).value_or("");
    };
    const ToolProperties &tools = toolProperties;
    if (value(ostProperties.supplyLibraryLinkerSymbols) != "No")
        platform()->appendLinkerSymbolDefinitions(element, configuration, list);
    if (externalGcc(element, configuration) || value(tools.linkIncludeStandardLibraries) == "No")
        return;
    list.push_back("__vfprintf=__vfprintf_" +
                   arm::printfSelection(value(tools.linkerPrintfFpEnabled), value(tools.linkerPrintfFmtLevel),
                                        value(tools.linkerPrintfWidthPrecisionSupported),
                                        value(tools.linkerPrintfWcharEnabled)));
    list.push_back("__vfscanf=__vfscanf_" +
                   arm::scanfSelection(value(tools.linkerScanfFpEnabled), value(tools.linkerScanfFmtLevel),
                                       value(tools.linkerScanfCharacterGroupMatchingEnabled)));
    const std::string dsoHandle = expandedValue(element, ostProperties.dsoHandleValue, configuration);
    if (isCppProject(element, configuration) && !dsoHandle.empty())
        list.push_back("__dso_handle=" + dsoHandle);
}

void OstrandGCCProjectSystem::migrateElement(ProjectElement *root) {
    GCCProjectSystem::migrateElement(root);
    platform()->migrateElement(root);
}

void OstrandGCCProjectSystem::migrateValue(std::string &value) { platform()->migrateValue(value); }
