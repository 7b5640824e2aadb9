#include "toolchain/ostrand_gcc_project_system.h"

#include "project/property_table_maker.h"

namespace {

const char *const installedToolMacros[] = {"AR",   "AS",      "CC1",     "CC1PLUS", "CLANG",
                                           "LIBLTO", "LD",    "LTO1",    "OBJCOPY", "OBJDUMP",
                                           "STRIP", "GCC",    "GPLUSPLUS"};

}  // namespace

OstrandGCCProjectSystem::OstrandGCCProjectSystem(SystemMacros *macroTable)
    : GCCProjectSystem(macroTable, "$(StudioDir)/gcc/$(GCCTarget)/bin", std::string(), ".elf",
                       GCCTableFlags{true, true, false, true, true}) {
    PropertyTableMaker m(propertyClasses, ownProperties_);
    m.section("General", "Build Options");
    useExternalGcc = m.boolean("use_external_gcc", "Use External GCC",
                               "Build with an external GNU toolchain through its compiler driver.",
                               false);
}

void OstrandGCCProjectSystem::addToolMacros(ProjectElement *element, const std::string &configuration,
                                            MacroMap &map) {
    if (getPropertyValue(element, useExternalGcc, configuration) == "Yes") {
        GCCProjectSystem::addToolMacros(element, configuration, map);
        return;
    }
    StandardProjectSystem::addToolMacros(element, configuration, map);
    const auto global = [&](const char *name) {
        if (!macros)
            return std::string();
        const auto found = macros->systemMacros().find(name);
        return found == macros->systemMacros().end() ? std::string() : found->second;
    };
    const std::string exe = global("HostEXE");
    const std::string dll = global("HostDLLExt");
    const std::string directory =
        expandedValue(element, nodeProperties.buildToolchainDirectory, configuration);
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

bool OstrandGCCProjectSystem::mayBeToolMacro(std::string_view name) const {
    for (const char *tool : installedToolMacros)
        if (name == tool)
            return true;
    return GCCProjectSystem::mayBeToolMacro(name);
}

bool OstrandGCCProjectSystem::externalGcc(ProjectElement *element, const std::string &configuration) {
    return getPropertyValue(element, useExternalGcc, configuration) == "Yes";
}

std::optional<std::string> OstrandGCCProjectSystem::namedValue(ProjectElement *element, const char *name,
                                                               const std::string &configuration) {
    PropertyClass *property = propertyClasses.propertyClass(name);
    return property ? getPropertyValue(element, property, configuration) : std::nullopt;
}

std::string OstrandGCCProjectSystem::moduleInterfaceFilePath(ProjectElement *element,
                                                             const std::string &configuration) {
    std::string path = GCCProjectSystem::moduleInterfaceFilePath(element, configuration);
    const std::optional<std::string> variant = namedValue(element, "arm_compiler_variant", configuration);
    if (variant && *variant != "gcc")
        path.replace(path.size() - 4, 4, ".pcm");
    return path;
}

bool OstrandGCCProjectSystem::supportsModuleScan(ProjectElement *element, const std::string &configuration) {
    return externalGcc(element, configuration) ||
           namedValue(element, "arm_compiler_variant", configuration) == "gcc";
}

bool OstrandGCCProjectSystem::usesRanlib(ProjectElement *element, const std::string &configuration) {
    return externalGcc(element, configuration);
}

bool OstrandGCCProjectSystem::usesModuleMapper(ProjectElement *element, const std::string &configuration) {
    return externalGcc(element, configuration);
}

bool OstrandGCCProjectSystem::usesBrenlowLinker(ProjectElement *element, const std::string &configuration) {
    return namedValue(element, "arm_linker_variant", configuration) == "Brenlow";
}

bool OstrandGCCProjectSystem::hasOwnValue(ProjectElement *element, PropertyClass *property,
                                          const std::string &configuration,
                                          std::optional<std::string> &value) {
    if (externalGcc(element, configuration))
        return GCCProjectSystem::hasOwnValue(element, property, configuration, value);
    value = getPropertyValue(element, property, configuration);
    return true;
}
