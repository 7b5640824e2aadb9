// What a node is built as, and how many steps that takes; and what a build
// keeps of these answers per node.

#include "build/standard_project_system.h"

#include "support/command_line.h"

#include <algorithm>

namespace {

bool startsWith(const std::string &text, std::string_view prefix) {
    return text.compare(0, prefix.size(), prefix) == 0;
}

}  // namespace

int StandardProjectSystem::buildKind(ProjectElement *element, const std::string &configuration,
                                     BuildFlags flags) {
    const bool analyse = flags & BuildAnalyse;
    NodeAnswers *answers = nodeAnswers(element, configuration);
    if (!answers)
        return findBuildKind(element, configuration, analyse);
    if (answers->kind[analyse] < 0)
        answers->kind[analyse] = findBuildKind(element, configuration, analyse);
    return answers->kind[analyse];
}

std::string StandardProjectSystem::compiledFilePath(int kind, ProjectElement *element,
                                                    const std::string &configuration) {
    NodeAnswers *answers = nodeAnswers(element, configuration);
    if (!answers)
        return outputFilePath(kind, element, configuration);
    if (answers->compiledKind != kind) {
        answers->compiledFile = outputFilePath(kind, element, configuration);
        answers->compiledKind = kind;
    }
    return answers->compiledFile;
}

StandardProjectSystem::NodeAnswers *StandardProjectSystem::nodeAnswers(
    ProjectElement *element, const std::string &configuration) {
    NodeAnswerCache &cache = nodeAnswers_;
    if (!cache.enabled)
        return nullptr;
    if (cache.last && cache.lastElement == element && *cache.lastConfiguration == configuration)
        return cache.last;
    auto entry = std::find_if(cache.entries.begin(), cache.entries.end(),
                              [&](const auto &e) { return e.first == configuration; });
    if (entry == cache.entries.end()) {
        cache.entries.emplace_back(configuration, std::unordered_map<ProjectElement *, NodeAnswers>());
        entry = cache.entries.end() - 1;
    }
    cache.lastElement = element;
    cache.lastConfiguration = &entry->first;
    cache.last = &entry->second[element];
    return cache.last;
}

void StandardProjectSystem::forgetNodeAnswers() {
    nodeAnswers_.entries.clear();
    nodeAnswers_.last = nullptr;
}

int StandardProjectSystem::findBuildKind(ProjectElement *element, const std::string &configuration,
                                         bool analyse) {
    if (isProject(element)) {
        const std::string type =
            getPropertyValue(element, nodeProperties.projectType, configuration).value_or("");
        if (type == "Executable")
            return KindLink;
        if (type == "Library")
            return KindArchive;
        if (type == "Staging")
            return KindStage;
        if (type == "Combining")
            return KindCombine;
        if (type == "Externally Built Executable") {
            const bool linkCommand =
                !expandedValue(element, toolProperties.externalLinkCommand, configuration).empty() ||
                (isCppProject(element, configuration) &&
                 !expandedValue(element, toolProperties.externalCppLinkCommand, configuration).empty());
            const bool buildFile =
                !expandedValue(element, toolProperties.externalBuildFileName, configuration).empty();
            return linkCommand && !buildFile ? KindLink : KindInput;
        }
        if (type == "Externally Built Library")
            return expandedValue(element, toolProperties.externalArchiveCommand, configuration).empty()
                       ? KindInput
                       : KindArchive;
        return KindNone;
    }

    // A dynamic folder with a path counts as a file for the exclude test; a
    // unity folder, once its file_name names the unity file, is that file.
    const bool unityFile = isFolder(element) && hasAttribute(element, "file_name");
    const bool dynamicFolder =
        isFolder(element) && !attribute(element, "path").value_or("").empty();
    if (!isFile(element) && !dynamicFolder && !unityFile)
        return KindNone;
    if (getPropertyValue(element, nodeProperties.buildExcludeFromBuild, configuration) == "Yes")
        return KindExcluded;
    if (!isFile(element) && !unityFile)
        return KindNone;

    ProjectElement *project = projectOf(element);
    const std::string projectType =
        getPropertyValue(project, nodeProperties.projectType, configuration).value_or("");
    if (projectType == "Staging")
        return KindStage;
    if (projectType == "Combining")
        return KindNone;

    const std::string type = fileTypeName(element, configuration);
    const bool external = startsWith(projectType, "Externally Built");
    auto compiled = [&](int kind, PropertyClass *externalCommand) {
        if (!external)
            return kind;
        return expandedValue(element, externalCommand, configuration).empty() ? int(KindNone) : kind;
    };
    if (type == "C")
        return compiled(KindC, toolProperties.externalCCompileCommand);
    if (type == "C++")
        return compiled(KindCpp, toolProperties.externalCppCompileCommand);
    if (type == "Assembly")
        return compiled(KindAssembly, toolProperties.externalAssembleCommand);
    if (type == "Object file" || type == "Executable" || type == "Library")
        return KindInput;
    if (type == "Header") {
        if (analyse)
            return isCppProject(project, configuration) ? KindCpp : KindC;
        return precompiledHeaderStep(element, configuration);
    }
    return KindNone;
}

int StandardProjectSystem::stepCount(ProjectElement *element, const std::string &configuration,
                                     BuildFlags flags) {
    // Iterative over the subtree: a node's count is its own step plus, unless
    // files are jobs of their own, those of the nodes below it.
    auto own = [&](ProjectElement *node) {
        const int kind = buildKind(node, configuration, flags);
        if (kind == KindExcluded || kind == KindInput)
            return -1;  // no step, and nothing below counts
        return kind == KindNone ? 0 : 1;
    };
    // A unity folder takes one step for the unity file and one for each file
    // that a filter keeps out of it.
    const bool noUnity = flags & BuildNoUnity;
    auto unitySteps = [&](ProjectElement *folder) {
        std::vector<ProjectElement *> unityFiles, excludedFiles;
        partitionUnityFiles(
            firstChild(folder), configuration,
            splitCommandChain(
                expandedValue(folder, nodeProperties.unityBuildExcludeFilter, configuration), ";"),
            unityFiles, excludedFiles);
        int count = 1;
        for (ProjectElement *file : excludedFiles)
            count += std::max(own(file), 0);
        return count;
    };

    auto unityFolder = [&](ProjectElement *node) {
        return isUnityFolder(node, configuration, noUnity) &&
               getPropertyValue(node, nodeProperties.buildExcludeFromBuild, configuration)
                       .value_or("No") == "No";
    };

    if (unityFolder(element))
        return (flags & BuildFilesAreJobs) ? 1 : unitySteps(element);
    const int top = own(element);
    if (top < 0)
        return 0;
    int count = top;
    if (flags & BuildFilesAreJobs)
        return count;
    ProjectElement *node = firstChild(element);
    while (node && node != element) {
        bool descend = false;
        if (unityFolder(node)) {
            count += unitySteps(node);
        } else {
            const int step = own(node);
            count += std::max(step, 0);
            descend = step >= 0 && firstChild(node);
        }
        if (descend) {
            node = firstChild(node);
            continue;
        }
        while (node && node != element && !nextSibling(node))
            node = parent(node);
        if (node && node != element)
            node = nextSibling(node);
    }
    return count;
}

bool StandardProjectSystem::hasOwnJob(ProjectElement *file, const std::string &configuration,
                                      BuildFlags flags) {
    const int kind = buildKind(file, configuration, flags);
    return (kind >= KindExcluded && kind <= KindAssembly) || kind == KindStage;
}
