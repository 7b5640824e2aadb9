// The preprocessor options of a compile through the driver.

#include "toolchain/gcc_project_system.h"

#include "support/normalise_path.h"
#include "toolchain/gcc_arguments.h"

StringList GCCProjectSystem::expandedList(ProjectElement *element, PropertyClass *property,
                                          const std::string &configuration, int step) {
    StringList list;
    auto append = [&](PropertyClass *from) {
        gcc_arguments::appendSplit(list, expandedValue(element, from, configuration));
    };
    if (!property)
        return list;
    append(property);
    const char *suffix = step == KindC ? "_c_only" : step == KindCpp ? "_cpp_only" : step == KindAssembly ? "_asm_only" : nullptr;
    if (suffix)
        if (PropertyClass *variant = propertyClasses.propertyClass(property->name() + suffix))
            append(variant);
    return list;
}

StringList GCCProjectSystem::preprocessorEntries(ProjectElement *element, PropertyClass *property,
                                                 const std::string &configuration, int step) {
    StringList list = expandedList(element, property, configuration, step);
    if (exportQuoting)
        for (std::string &entry : list)
            for (std::size_t at = entry.find('"'); at != std::string::npos; at = entry.find('"', at + 2))
                entry.insert(at, 1, '\\');
    return list;
}

void GCCProjectSystem::appendUserIncludeDirectories(ProjectElement *element, const std::string &configuration,
                                                    int step, StringList &list) {
    for (std::string directory :
         preprocessorEntries(element, toolProperties.cUserIncludeDirectories, configuration, step)) {
        if (!directory.empty() && directory[0] == '/')
            normalisePath(directory);
        // In a script the directory is quoted, blanks and all.
        list.push_back(exportQuoting ? "-I\"" + directory + "\"" : "-I" + directory);
    }
}

void GCCProjectSystem::appendDefinesAndForcedIncludes(ProjectElement *element, const std::string &configuration,
                                                      int step, StringList &list) {
    const ToolProperties &tools = toolProperties;
    for (const std::string &define : preprocessorEntries(element, tools.cPreprocessorDefinitions, configuration, step))
        list.push_back("-D" + define);
    for (const std::string &undefine :
         preprocessorEntries(element, tools.cPreprocessorUndefinitions, configuration, step))
        list.push_back("-U" + undefine);
    for (const std::string &file : preprocessorEntries(element, tools.cIncludeFiles, configuration, step)) {
        list.push_back("-include");
        list.push_back(file);
    }
    for (const std::string &file : preprocessorEntries(element, tools.cMacrosFiles, configuration, step)) {
        list.push_back("-imacros");
        list.push_back(file);
    }
}

void GCCProjectSystem::appendPreprocessorOptions(ProjectElement *element, const std::string &configuration,
                                                 int step, const std::string &output, StringList &list) {
    const ToolProperties &tools = toolProperties;
    if (getPropertyValue(element, tools.cIgnoreIncludes, configuration) == "No") {
        std::optional<std::string> own;
        if (hasOwnValue(element, tools.cSystemIncludeDirectories, configuration, own))
            for (const std::string &directory :
                 preprocessorEntries(element, tools.cSystemIncludeDirectories, configuration)) {
                list.push_back("-isystem");
                list.push_back(directory);
            }
        appendUserIncludeDirectories(element, configuration, step, list);
    }
    const bool groups = !isHostedToolchain() &&
                        getPropertyValue(element, tools.addPropertyGroupIncludesDefines, configuration) == "Yes";
    if (groups)
        groupIncludes(element, configuration, list);
    if (getPropertyValue(element, tools.cUndefineAllPreprocessorDefinitions, configuration) == "Yes")
        list.push_back("-undef");
    if (groups)
        groupDefines(element, configuration, list);
    appendDefinesAndForcedIncludes(element, configuration, step, list);
    const std::string dependencies =
        getPropertyValue(element, nodeProperties.buildGenerateDependencyFile, configuration).value_or("Yes");
    if (!output.empty() && dependencies != "No") {
        list.push_back(dependencies == "User Header Files Only" ? "-MMD" : "-MD");
        list.push_back("-MF");
        list.push_back(dependencyFilePath(element, configuration, output));
        list.push_back("-MQ");
        list.push_back(output);
    }
}
