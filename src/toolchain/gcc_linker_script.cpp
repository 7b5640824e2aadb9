// The linker script of a link on a target: a hand-written one that the
// project names, or one that ldplan generates from the memory map or the
// memory segments and the section placement file.

#include "toolchain/gcc_project_system.h"

#include "build/builder.h"
#include "support/command_line.h"
#include "support/file_info.h"
#include "support/file_path.h"
#include "support/text_split.h"

bool GCCProjectSystem::hasLinkerScript(ProjectElement *element, const std::string &configuration,
                                       std::string &path, Builder *builder) {
    // A linker script among the project's files wins.
    std::vector<ProjectElement *> pending{projectOf(element)};
    while (!pending.empty()) {
        ProjectElement *node = pending.back();
        pending.pop_back();
        if (!node)
            continue;
        if (isFile(node) && fileTypeName(node, configuration) == "Linker Script" &&
            getPropertyValue(node, nodeProperties.buildExcludeFromBuild, configuration) != "Yes") {
            path = sourcePath(node, configuration);
            return true;
        }
        for (XMLNode *child = node->firstChild; child; child = child->nextSibling)
            if (ProjectElement *below = ProjectElement::from(child); below && (isFile(below) || isFolder(below)))
                pending.push_back(below);
    }
    const ToolProperties &tools = toolProperties;
    if (!usesBrenlowLinker(element, configuration) &&
        getPropertyValue(element, tools.linkUseLinkerScriptFile, configuration) != "Yes")
        return true;
    const std::string name = expandedValue(element, tools.linkLinkerScriptFile, configuration);
    StringList candidates;
    if (!name.empty() && name.front() == '/')
        candidates.push_back(name);
    else if (!name.empty()) {
        candidates.push_back(absolutePathFrom(projectDirectory(element, configuration), name));
        StringList directories;
        linkerLibraryDirectories(element, configuration, directories);
        for (const std::string &directory : directories)
            candidates.push_back(absolutePathFrom(directory, name));
    }
    for (const std::string &candidate : candidates) {
        if (FileInfo(candidate).isFile()) {
            path = candidate;
            return true;
        }
    }
    if (getPropertyValue(element, tools.linkLinkerScriptFile, configuration) == tools.linkLinkerScriptFile->defaultValue())
        return true;
    if (builder) {
        builder->beginStep(element, "Locating Linker Script File", configuration, 0);
        builder->reportError("Linker script file '" + name + "' does not exist.");
        builder->endStep(element, configuration);
    }
    return false;
}

bool GCCProjectSystem::generatesLinkerScript(ProjectElement *element, const std::string &configuration) {
    return !isHostedToolchain() &&
           getPropertyValue(element, gccProperties.generateLinkerScript, configuration) == "Yes";
}

bool GCCProjectSystem::linkerControlFiles(ProjectElement *element, const std::string &configuration,
                                          Builder *builder, std::string &linkerScript, std::string &memoryMap) {
    // The machine's own linker knows where a program goes.
    if (isHostedToolchain())
        return true;
    if (!hasLinkerScript(element, configuration, linkerScript, builder))
        return false;
    if (!linkerScript.empty() || !generatesLinkerScript(element, configuration))
        return true;
    std::string placement;
    return linkerScriptSources(element, configuration, builder, memoryMap, placement);
}

bool GCCProjectSystem::linkerScriptSources(ProjectElement *element, const std::string &configuration,
                                           Builder *builder, std::string &memoryMap, std::string &placement) {
    const std::string directory = projectDirectory(element, configuration);
    // A file that the property names and that isn't there has been
    // reported; one that no property names is simply not used.
    auto locate = [&](bool found, PropertyClass *property, std::string &path) {
        if (found) {
            path = absolutePathFrom(directory, path);
            return true;
        }
        path.clear();
        return getPropertyValue(element, property, configuration).value_or("").empty();
    };
    const bool mapFine = locate(locateMemoryMapFile(element, configuration, memoryMap, builder),
                                toolProperties.linkerMemoryMapFile, memoryMap);
    const bool placementFine =
        locate(locateSectionPlacementFile(element, configuration, placement, builder),
               toolProperties.linkerSectionPlacementFile, placement);
    return mapFine && placementFine;
}

std::string GCCProjectSystem::linkerScriptPath(ProjectElement *element, const std::string &configuration,
                                               Builder *builder, const std::string &output, BuildFlags flags) {
    const ToolProperties &tools = toolProperties;
    const GCCProperties &gcc = gccProperties;
    std::string memoryMap, placement;
    if (!linkerScriptSources(element, configuration, builder, memoryMap, placement))
        return {};
    const std::string segments = expandedValue(element, tools.linkerSectionPlacementsSegments, configuration);
    if (memoryMap.empty() && segments.empty()) {
        if (builder) {
            builder->beginStep(element, "Checking Linker Control Files", configuration, 0);
            builder->reportError("no linker script, memory map file or memory segments specified");
            builder->endStep(element, configuration);
        }
        return {};
    }
    const std::string script = intermediateFilePath(element, configuration, output, ".ld");
    if (!(flags & BuildAlways) && !linkerScriptIsStale(element, configuration, script, {memoryMap, placement}))
        return script;

    StringList list{expandProjectMacros(element, installDirectory + "/bin/ldplan$(HostEXE)", configuration)};
    if (memoryMap.empty())
        list.insert(list.end(), {"-memory-map-segments", segments});
    else
        list.insert(list.end(), {"-memory-map-file", memoryMap});
    if (!placement.empty())
        list.insert(list.end(), {"-section-placement-file", placement});
    if (getPropertyValue(element, gcc.checkMemorySegmentOverflow, configuration) == "Yes")
        list.push_back("-check-segment-overflow");
    if (getPropertyValue(element, gcc.checkMemorySectionOverflow, configuration) == "Yes")
        list.push_back("-check-section-overflow");
    StringList symbols;
    linkerSymbolDefinitions(element, configuration, symbols);
    if (!symbols.empty()) {
        std::string joined;
        for (const std::string &symbol : symbols)
            joined += (joined.empty() ? "" : ";") + symbol;
        list.insert(list.end(), {"-symbols", joined});
    }
    const std::pair<PropertyClass *, const char *> valued[] = {
        {tools.linkerMemoryMapMacros, "-memory-map-macros"},
        {tools.linkerSectionPlacementMacros, "-section-placement-macros"},
        {gcc.linkerScriptDefaultFillPattern, "-default-fill-pattern"}};
    for (const auto &[property, option] : valued) {
        const std::string value = expandedValue(element, property, configuration);
        if (!value.empty())
            list.insert(list.end(), {option, value});
    }
    list.push_back(script);
    for (std::string &argument : splitCommandLine(expandedValue(element, gcc.additionalLdplanOptions, configuration)))
        list.push_back(std::move(argument));
    if (builder) {
        builder->beginStep(element, concat("Generating linker script '", FilePath(script).fileName()) + "'",
                           configuration, 0);
        builder->addCommand(projectDirectory(element, configuration), list, script);
        builder->endStep(element, configuration);
    }
    return script;
}

bool GCCProjectSystem::linkerScriptIsStale(ProjectElement *element, const std::string &configuration,
                                           const std::string &script, const StringList &sources) {
    const FileInfo info(script);
    if (!info.exists())
        return true;
    const FileTime time = info.lastModified();
    for (const std::string &source : sources)
        if (!source.empty() && FileInfo(source).lastModified().laterInSecondsThan(time))
            return true;
    const ToolProperties &tools = toolProperties;
    const GCCProperties &gcc = gccProperties;
    return propertyChangedSince(element, configuration,
                                {tools.linkerMemoryMapFile, tools.linkerSectionPlacementsSegments,
                                 tools.linkerSectionPlacementFile, tools.linkerMemoryMapMacros,
                                 tools.linkerSectionPlacementMacros, gcc.checkMemorySegmentOverflow,
                                 gcc.checkMemorySectionOverflow, gcc.linkerScriptDefaultFillPattern,
                                 gcc.additionalLdplanOptions},
                                time) ||
           linkerScriptInputsChanged(element, configuration, time);
}
