#include "toolchain/gcc_project_system.h"

#include "project/property_table_maker.h"

namespace {

const char *const driverToolMacros[] = {"GCC", "GPLUSPLUS", "AR", "OBJCOPY", "OBJDUMP", "RANLIB", "STRIP"};

}  // namespace

GCCProjectSystem::GCCProjectSystem(SystemMacros *macroTable, const std::string &toolDirectory,
                                   const std::string &genericOptionsFile,
                                   std::string executableExtension)
    : StandardProjectSystem(macroTable), executableExtension_(std::move(executableExtension)) {
    PropertyTableMaker m(propertyClasses, ownProperties_);
    m.section("General", "Build Options");
    gccPrefix = m.text("gcc_prefix", PropertyClass::String, "GCC Prefix",
                       "The prefix of the names of the GNU tools, such as arm-none-eabi-.",
                       "$(GCCPREFIX:)");
    gccTarget = m.text("gcc_target", PropertyClass::String, "GCC Target",
                       "The target triple of the GNU tools.", std::nullopt);
    gccVersion = m.text("gcc_version", PropertyClass::String, "GCC Version",
                        "The version of the GNU tools.", std::nullopt);
    useClangNotGcc = m.boolean("use_clang_not_gcc", "Use Clang",
                               "Compile and link with clang and clang++ instead of gcc and g++.", false);
    nodeProperties.buildToolchainDirectory->setDefaultValue(toolDirectory);
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
    std::string directory = expandedValue(element, nodeProperties.buildToolchainDirectory, configuration);
    if (!directory.empty())
        directory += '/';
    const std::string prefix = directory + expandedValue(element, gccPrefix, configuration);
    const bool clang = getPropertyValue(element, useClangNotGcc, configuration) == "Yes";
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

bool GCCProjectSystem::mayBeToolMacro(std::string_view name) const {
    for (const char *tool : driverToolMacros)
        if (name == tool)
            return true;
    return StandardProjectSystem::mayBeToolMacro(name);
}

bool GCCProjectSystem::canCheckSyntax(ProjectElement *element, const std::string &configuration) {
    const std::string type = fileTypeName(element, configuration);
    return isFile(element) && (type == "C" || type == "C++");
}
