// Links and archives: their inputs, checks, user commands and the external
// link and archive commands.

#include "build/node_build.h"
#include "build/sibling_walk.h"
#include "support/command_line.h"
#include "support/file_info.h"
#include "support/file_path.h"
#include "support/file_utils.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <set>

// ---- Inputs.

bool StandardProjectSystem::collectInputs(ProjectElement *project, const std::string &configuration,
                                          Builder *builder, BuildFlags flags, StringList &list) {
    const StringList order =
        getPropertyList("", project, nodeProperties.inputsOrder, configuration, true, false, false);
    if (!order.empty()) {
        for (const std::string &name : order) {
            if (ProjectElement *found = findElementByName(project, name)) {
                const std::string object = objectFilePath(found, configuration);
                if (!object.empty())
                    list.push_back(object);
            }
        }
        return true;
    }
    const std::string inputsFile = expandedValue(project, nodeProperties.inputsFile, configuration);
    if (inputsFile.empty()) {
        collectObjects(firstChild(project), configuration, list, flags & BuildNoUnity);
        return true;
    }
    const std::string directory = projectDirectory(project, configuration);
    const std::string path = absolutePathFrom(directory, inputsFile);
    std::ifstream in(path);
    if (!in) {
        if (builder) {
            builder->beginStep(project, "Opening Input File", configuration, 0);
            builder->reportError("Failed to open the inputs file " + path);
            builder->endStep(project, configuration);
        }
        return false;
    }
    std::string line;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (!line.empty())
            list.push_back(absolutePathFrom(directory, line));
    }
    return true;
}

void StandardProjectSystem::collectObjects(ProjectElement *first, const std::string &configuration,
                                           StringList &list, bool noUnity) {
    auto addFile = [&](ProjectElement *file) {
        const int kind = buildKind(file, configuration, 0);
        if (kind == KindInput) {
            list.push_back(sourcePath(file, configuration));
        } else if ((kind == KindC || kind == KindCpp || kind == KindAssembly) &&
                   fileTypeName(file, configuration) != "Header") {
            const std::string object = compiledFilePath(kind, file, configuration);
            if (!object.empty())
                list.push_back(object);
        }
    };
    walkFromSibling(first, [&](ProjectElement *node) {
        if (isFile(node)) {
            addFile(node);
            return false;
        }
        if (!isFolder(node))
            return false;
        const bool excluded =
            getPropertyValue(node, nodeProperties.buildExcludeFromBuild, configuration).value_or("No") != "No";
        if (excluded || !isUnityFolder(node, configuration, noUnity))
            return true;
        pointFolderAtUnityFile(*this, node, unityFilePath(*this, node, configuration));
        const int kind = buildKind(node, configuration, 0);
        const std::string object = outputFilePath(kind, node, configuration);
        if (!object.empty())
            list.push_back(object);
        std::vector<ProjectElement *> unityFiles, excludedFiles;
        partitionUnityFiles(
            firstChild(node), configuration,
            splitCommandChain(expandedValue(node, nodeProperties.unityBuildExcludeFilter, configuration), ";"),
            unityFiles, excludedFiles);
        for (ProjectElement *file : excludedFiles)
            addFile(file);
        return false;
    });
}

// ---- Toolchain operations whose base form finds nothing.

bool StandardProjectSystem::linkerLogFilePath(ProjectElement *, const std::string &, std::string &) {
    return false;
}

bool StandardProjectSystem::linkerControlFiles(ProjectElement *, const std::string &, Builder *,
                                               std::string &, std::string &) {
    return true;
}

std::string StandardProjectSystem::memorySegmentsText(ProjectElement *element,
                                                      const std::string &configuration) {
    std::string text = expandedValue(element, toolProperties.linkerSectionPlacementsSegments, configuration);
    if (!text.empty())
        return text;
    // A project with a memory map: its segments in the property's own form.
    std::vector<MemoryRegion> regions;
    memorySegments(element, configuration, false, regions);
    const auto hex = [](std::uint64_t value) {
        char digits[24];
        std::snprintf(digits, sizeof digits, "0x%08llx", static_cast<unsigned long long>(value));
        return std::string(digits);
    };
    for (const MemoryRegion &region : regions)
        text += (text.empty() ? "" : ";") + region.name + (region.access == 1 ? " RX " : " RWX ") +
                hex(region.start) + " " + hex(region.end - region.start + 1);
    return text;
}

// ---- Kind 7: link.

bool NodeBuild::link() {
    StandardProjectSystem &s = system;
    const ToolProperties &tools = s.toolProperties;
    stepDone();
    const std::string target = s.outputFilePath(StandardProjectSystem::KindLink, element, configuration);

    StringList objects;
    if (!s.collectInputs(element, configuration, builder, flags, objects))
        return false;
    {
        StringList sorted = objects;
        std::sort(sorted.begin(), sorted.end());
        const auto twice = std::adjacent_find(sorted.begin(), sorted.end());
        if (twice != sorted.end()) {
            beginStep("Checking For Duplicate Object Files");
            builder->reportError("The object file " + *twice + " has been supplied more than once");
            endStep();
            return false;
        }
    }

    StringList libraries;
    if (s.getPropertyValue(element, tools.linkDependentProjects, configuration) != "No") {
        for (ProjectElement *dependency : s.allDependencies(element, configuration)) {
            if (s.getPropertyValue(dependency, s.nodeProperties.buildExcludeFromBuild, configuration)
                    .value_or("No") != "No")
                continue;
            const std::string type =
                s.getPropertyValue(dependency, s.nodeProperties.projectType, configuration)
                    .value_or("");
            if (type == "Library")
                libraries.push_back(
                    s.outputFilePath(StandardProjectSystem::KindArchive, dependency, configuration));
            else if (type == "Object file" || type == "Externally Built Object file")
                s.collectObjects(s.firstChild(dependency), configuration, libraries,
                                 flags & BuildNoUnity);
            else if (type == "Externally Built Library")
                libraries.push_back(s.objectFilePath(dependency, configuration));
        }
    }

    if (s.getPropertyValue(element, s.nodeProperties.projectType, configuration) == "Executable") {
        StringList additional;
        s.linkerInputFiles(element, configuration, additional);
        const bool checking = !(flags & (BuildClean | BuildCheckOnly));
        std::set<std::string> known(objects.begin(), objects.end());
        if (checking && !additional.empty())
            beginStep("Checking Additional Linker Inputs '" + name + "'");
        for (const std::string &input : additional) {
            if (checking && !FileInfo(input).exists())
                builder->reportError(input + " does not exist.");
            if (!known.insert(input).second) {
                if (checking)
                    builder->reportWarning(input + " supplied more than once");
                continue;
            }
            objects.push_back(input);
        }
        if (checking && !additional.empty())
            endStep();
    }

    beginCheck();
    std::string resolved;
    FileTime targetTime;
    const bool exists =
        s.checkTarget(projectDirectory, target, resolved, targetTime, builder, quiet, true);
    bool run = force || !exists;
    std::string linkerScript, memoryMap;
    if (!s.linkerControlFiles(element, configuration, builder, linkerScript, memoryMap)) {
        endCheck();
        return false;
    }
    if (!run) {
        StringList inputs = objects;
        inputs.insert(inputs.end(), libraries.begin(), libraries.end());
        for (const std::string *file : {&linkerScript, &memoryMap})
            if (!file->empty())
                inputs.push_back(*file);
        s.linkerSymbolFiles(element, configuration, inputs);
        run = s.linkerScriptInputsChanged(element, configuration, targetTime) ||
              !s.inputsAreOlder(projectDirectory, target, targetTime, inputs, builder, quiet) ||
              !s.propertiesChanged(element, configuration, targetTime,
                                   StandardProjectSystem::KindLink, builder, quiet);
    }
    if (!run) {
        StringList outputs{s.secondaryLinkOutput(element, configuration)};
        std::string mapFile;
        if (s.mapFilePath(element, configuration, resolved, mapFile))
            outputs.push_back(mapFile);
        for (const std::string &output : outputs) {
            if (output.empty() || FileInfo(absolutePathFrom(projectDirectory, output)).exists())
                continue;
            if (!quiet)
                builder->reportWarning(output + " does not exist.");
            run = true;
            break;
        }
    }
    if (!run)
        return upToDate("' is up to date");
    endCheck();

    if ((flags & BuildClean) && exists)
        cleanOutputs(StandardProjectSystem::KindLink, resolved);
    if (checkOnly())
        return true;

    const std::string preLink = expanded(
        tools.linkerPreBuildCommand,
        {{"MemorySegments", s.memorySegmentsText(element, configuration)},
         {"PostLinkOutputFilePath", expanded(tools.linkerPreBuildCommandOutputFileName)}});
    if (!preLink.empty()) {
        const std::string directory = workingDirectory(tools.linkerPreBuildCommandWd);
        makeDirectories(directory);
        beginStep("Pre-link command ");
        addCommands(splitCommandChain(preLink), directory, {});
        endStep();
    }

    std::string externalCommand;
    if (s.isCppProject(element, configuration))
        externalCommand = s.getPropertyValue(element, tools.externalCppLinkCommand, configuration)
                              .value_or("");
    if (externalCommand.empty())
        externalCommand =
            s.getPropertyValue(element, tools.externalLinkCommand, configuration).value_or("");
    if (!externalCommand.empty()) {
        externalLink(objects, libraries, resolved, externalCommand, linkerScript);
    } else {
        StringList inputs = objects;
        inputs.insert(inputs.end(), libraries.begin(), libraries.end());
        s.buildStep(element, configuration, StandardProjectSystem::KindLink, relative(resolved),
                    resolved, inputs, builder, flags);
    }

    if (!builder->acceptOutputFile(resolved)) {
        cleanOutputs(StandardProjectSystem::KindLink, resolved);
        return true;
    }

    const std::string postLink = expanded(
        tools.linkerPostBuildCommand,
        {{"TargetPath", resolved},
         {"RelTargetPath", relative(resolved)},
         {"MemorySegments", s.memorySegmentsText(element, configuration)},
         {"PostLinkOutputFilePath", expanded(tools.linkerPostBuildCommandOutputFile)}});
    if (!postLink.empty()) {
        const std::string directory = workingDirectory(tools.linkerPostBuildCommandWd);
        makeDirectories(directory);
        beginStep("Post-link command ");
        addCommands(splitCommandChain(postLink), directory, {});
        endStep();
    }
    deleteIntermediateDirectory();
    return true;
}

void NodeBuild::externalLink(const StringList &objects, const StringList &libraries,
                             const std::string &target, const std::string &command,
                             const std::string &linkerScript) {
    StandardProjectSystem &s = system;
    MacroMap macros{{"Objects", quotedList(objects)},
                    {"TargetPath", target},
                    {"RelTargetPath", relative(target)}};
    const std::string objectsFile = expanded(s.toolProperties.externalObjectsFileName);
    if (!objectsFile.empty()) {
        const std::string path = absolutePathFrom(projectDirectory, objectsFile);
        StringList lines;
        for (const std::string &object : objects)
            lines.push_back("\"" + object + "\"");
        builder->writeLines(path, lines);
        macros["ObjectsFilePath"] = path;
        macros["RelObjectsFilePath"] = relative(path);
    }
    std::string mapFile;
    if (s.mapFilePath(element, configuration, target, mapFile)) {
        macros["MapPath"] = mapFile;
        macros["RelMapPath"] = relative(mapFile);
    }
    macros["LinkOptions"] = joinedList(s.getPropertyList(
        "", element, s.toolProperties.linkerAdditionalOptions, configuration, true, false, false));
    StringList directories;
    s.linkerLibraryDirectories(element, configuration, directories);
    std::string linkLibraries;
    for (const std::string &directory : directories) {
        linkLibraries += linkLibraries.empty() ? "-L" : " -L";
        linkLibraries += directory;
    }
    if (!libraries.empty()) {
        if (!linkLibraries.empty())
            linkLibraries += ' ';
        linkLibraries += quotedList(libraries);
    }
    macros["LinkLibraries"] = linkLibraries;
    if (!linkerScript.empty()) {
        macros["LinkerScriptPath"] = linkerScript;
        macros["RelLinkerScriptPath"] = relative(linkerScript);
    }
    const StringList arguments =
        splitCommandLine(s.expandWith(element, command, configuration, macros));
    if (arguments.empty())
        return;
    beginStep("Linking '" + FilePath(target).fileName() + "'");
    builder->addCommand(projectDirectory, arguments, target);
    endStep();
}

void NodeBuild::deleteIntermediateDirectory() {
    if (system.getPropertyValue(element, system.nodeProperties.deleteIntermediateDirectory,
                                configuration) != "Yes")
        return;
    const std::string directory = expanded(system.nodeProperties.buildIntermediateDirectory);
    if (directory.empty())
        return;
    beginStep("Deleting Intermediate Directory ");
    builder->addCommand(projectDirectory, {"rm", "-fr", directory}, {});
    endStep();
}

// ---- Kind 8: archive.

bool NodeBuild::archive() {
    StandardProjectSystem &s = system;
    const ToolProperties &tools = s.toolProperties;
    stepDone();
    const std::string target =
        s.outputFilePath(StandardProjectSystem::KindArchive, element, configuration);
    StringList objects;
    if (!s.collectInputs(element, configuration, builder, flags, objects))
        return false;
    if (objects.empty()) {
        if (!quiet)
            builder->reportDetail("Nothing to archive for '" + name + "'");
        return false;
    }

    beginCheck();
    std::string resolved;
    FileTime targetTime;
    const bool exists =
        s.checkTarget(projectDirectory, target, resolved, targetTime, builder, quiet, true);
    const bool run =
        force || !exists ||
        !s.inputsAreOlder(projectDirectory, target, targetTime, objects, builder, quiet);
    if (!run)
        return upToDate("' is up to date");
    endCheck();

    if ((flags & BuildClean) && exists)
        cleanOutputs(StandardProjectSystem::KindArchive, resolved);
    if (checkOnly())
        return true;

    const MacroMap targetMacros{{"TargetPath", resolved}, {"RelTargetPath", relative(resolved)}};
    const std::string externalCommand =
        s.getPropertyValue(element, tools.externalArchiveCommand, configuration).value_or("");
    if (!externalCommand.empty()) {
        MacroMap macros = targetMacros;
        macros["Objects"] = quotedList(objects);
        const StringList parts =
            splitCommandChain(s.expandWith(element, externalCommand, configuration, macros), "&&");
        beginStep("Archiving '" + FilePath(resolved).fileName() + "'");
        for (std::size_t i = 0; i < parts.size(); ++i)
            addCommands({parts[i]}, projectDirectory, i + 1 == parts.size() ? resolved : "");
        endStep();
    } else {
        s.buildStep(element, configuration, StandardProjectSystem::KindArchive, relative(resolved),
                    resolved, objects, builder, flags);
    }

    const StringList postParts =
        splitCommandChain(expanded(tools.archivePostBuildCommand, targetMacros), "&&");
    if (!postParts.empty()) {
        beginStep("Post-archive command ");
        addCommands(postParts, workingDirectory(tools.archivePostBuildCommandWd), {});
        endStep();
    }
    deleteIntermediateDirectory();
    return true;
}
