// Unity builds: a folder's files compiled as one translation unit, through a
// generated file that includes each of them.

#include "build/node_build.h"
#include "build/sibling_walk.h"
#include "support/command_line.h"
#include "support/file_info.h"
#include "support/file_utils.h"

#include <cstdio>
#include <fnmatch.h>

void StandardProjectSystem::partitionUnityFiles(ProjectElement *first,
                                                const std::string &configuration,
                                                const StringList &filters,
                                                std::vector<ProjectElement *> &unityFiles,
                                                std::vector<ProjectElement *> &excludedFiles) {
    // The patterns are searched anywhere in a path.
    StringList patterns;
    for (const std::string &filter : filters)
        patterns.push_back("*" + filter + "*");
    walkFromSibling(first, [&](ProjectElement *node) {
        const bool built =
            isFile(node) &&
            getPropertyValue(node, nodeProperties.buildExcludeFromBuild, configuration).value_or("No") == "No";
        if (!built)
            return !isConfiguration(node);
        const std::string path = relativeFileName(node, configuration);
        bool matched = false;
        for (const std::string &pattern : patterns)
            matched = matched || fnmatch(pattern.c_str(), path.c_str(), 0) == 0;
        (matched ? excludedFiles : unityFiles).push_back(node);
        return false;
    });
}

std::string unityFilePath(StandardProjectSystem &system, ProjectElement *folder,
                          const std::string &configuration) {
    return absolutePathFrom(system.projectDirectory(folder, configuration),
                            system.expandedValue(folder, system.nodeProperties.unityBuildFileName,
                                                 configuration));
}

void pointFolderAtUnityFile(StandardProjectSystem &system, ProjectElement *folder,
                            const std::string &path) {
    // The build's own change: the tree isn't marked as modified.
    if (const std::string *current = folder->attribute("file_name"); current && *current == path)
        return;
    folder->setAttribute("file_name", path);
    ProjectSystem::invalidatePaths(folder);
    system.dropMacroCache();
    // The folder now builds as its unity file.
    system.forgetNodeAnswers();
}

namespace {

// Writes the unity file now, unless it is there and newer than the solution
// file; true if it was written. A file that can't be written is passed over:
// the compile reports it.
bool writeUnityFile(ProjectElement *folder, const std::string &path, const StringList &lines,
                    bool force) {
    if (!force) {
        const FileInfo unity(path);
        ProjectElement *solution = ProjectSystem::solutionOf(folder);
        if (solution && solution->filePath.isEmpty())
            solution = folder->projectSystem->rootOf();
        const FileTime solutionTime = solution ? solution->filePath.lastModified() : FileTime();
        if (unity.exists() && !solutionTime.laterInSecondsThan(unity.lastModified()))
            return false;
    }
    makeDirectories(directoryOf(path));
    FILE *file = std::fopen(path.c_str(), "w");
    if (!file)
        return false;
    for (const std::string &line : lines) {
        std::fwrite(line.data(), 1, line.size(), file);
        std::fputc('\n', file);
    }
    std::fclose(file);
    return true;
}

}  // namespace

std::optional<bool> buildUnityFolder(StandardProjectSystem &system, ProjectElement *folder,
                                     const std::string &configuration, Builder *builder,
                                     Idler *idler, BuildFlags flags, bool &force) {
    const StringList filters = splitCommandChain(
        system.expandedValue(folder, system.nodeProperties.unityBuildExcludeFilter, configuration),
        ";");
    std::vector<ProjectElement *> unityFiles, excludedFiles;
    system.partitionUnityFiles(StandardProjectSystem::firstChild(folder), configuration, filters,
                               unityFiles, excludedFiles);
    const std::string path = unityFilePath(system, folder, configuration);

    if (flags & BuildClean) {
        // The unity file and its object; the folder's files weren't built
        // singly in this configuration.
        pointFolderAtUnityFile(system, folder, path);
        if (builder) {
            builder->beginStep(folder, "Cleaning '" + system.displayName(folder) + "'",
                               configuration, 0);
            builder->deleteFile(path, true);
            const std::string object = system.objectFilePath(folder, configuration);
            if (!object.empty())
                builder->deleteFile(object, true);
            builder->endStep(folder, configuration);
        }
        return true;
    }

    if (!(flags & BuildCheckOnly)) {
        StringList lines;
        for (ProjectElement *file : unityFiles)
            lines.push_back("#include \"" + system.sourcePath(file, configuration) + "\"");
        if (flags & BuildExport) {
            if (builder)
                builder->writeLines(path, lines);
        } else if (writeUnityFile(folder, path, lines, force)) {
            system.fileStatusCache().clear();
        }
    }
    pointFolderAtUnityFile(system, folder, path);

    for (ProjectElement *file : excludedFiles)
        if (system.buildElement(file, configuration, builder, idler, flags))
            force = true;
    return std::nullopt;
}
