#include "toolchain/gcc_project_system.h"

#include "project/project_property_class.h"

namespace {

constexpr std::string_view driverToolMacros[] = {"GCC", "GPLUSPLUS", "AR", "OBJCOPY", "OBJDUMP", "RANLIB", "STRIP"};

}  // namespace

GCCProjectSystem::GCCProjectSystem(SystemMacros *macroTable, const std::string &toolDirectory,
                                   const std::string &genericOptionsFile,
                                   std::string executableExtension, const GCCTableFlags &flags)
    : StandardProjectSystem(macroTable),
      gccProperties(propertyClasses, flags),
      executableExtension_(std::move(executableExtension)) {
    addToolMacroNames(driverToolMacros);
    nodeProperties.buildToolchainDirectory->setDefaultValue(toolDirectory);
    if (flags.removeUnusedSymbols)
        nodeProperties.buildRemoveUnusedSymbols->setDefaultValue("Yes");
    toolProperties.linkerMapFile->setDefaultValue(flags.mapFile ? "Yes" : "No");
    // The options that stand for the values of three standard rows.
    auto options = [](PropertyClass *property,
                      std::initializer_list<std::pair<const char *, const char *>> pairs) {
        if (auto *project = dynamic_cast<ProjectPropertyClass *>(property))
            for (const auto &[option, value] : pairs)
                project->addOption(option, value);
    };
    options(toolProperties.cppEnableExceptions, {{"-fexceptions", "Yes"}, {"-fno-exceptions", "No"}});
    options(toolProperties.cppEnableRtti, {{"-frtti", "Yes"}, {"-fno-rtti", "No"}});
    options(nodeProperties.buildGenerateDependencyFile, {{"-MD", "Yes"}, {"-MMD", "User Header Files Only"}});
    genericOptionsFileName = genericOptionsFile;
}

void GCCProjectSystem::addToolMacro(MacroMap &map, const std::string &name,
                                    const std::string &value) const {
    if (map.count(name) || (macros && macros->globalMacros().count(name)))
        return;
    map[name] = value;
}

void GCCProjectSystem::addDriverToolMacros(ProjectElement *element, const std::string &configuration,
                                           MacroMap &map) {
    std::string directory = expandedValue(element, nodeProperties.buildToolchainDirectory, configuration, map);
    if (!directory.empty())
        directory += '/';
    const std::string prefix = directory + expandedValue(element, gccProperties.gccPrefix, configuration, map);
    const bool clang = getPropertyValue(element, gccProperties.useClangNotGcc, configuration) == "Yes";
    addToolMacro(map, "GCC", prefix + (clang ? "$(CLANG_NAME:clang)" : "gcc"));
    addToolMacro(map, "GPLUSPLUS", prefix + (clang ? "$(CLANGPP_NAME:clang++)" : "g++"));
    addToolMacro(map, "AR", prefix + "ar");
    addToolMacro(map, "OBJCOPY", prefix + "objcopy");
    addToolMacro(map, "OBJDUMP", prefix + "objdump");
    addToolMacro(map, "RANLIB", prefix + "ranlib");
    addToolMacro(map, "STRIP", prefix + "strip");
}

void GCCProjectSystem::addToolMacros(ProjectElement *element, const std::string &configuration,
                                     MacroMap &map) {
    StandardProjectSystem::addToolMacros(element, configuration, map);
    addDriverToolMacros(element, configuration, map);
}

bool GCCProjectSystem::canCheckSyntax(ProjectElement *element, const std::string &configuration) {
    const std::string type = fileTypeName(element, configuration);
    return isFile(element) && (type == "C" || type == "C++");
}
