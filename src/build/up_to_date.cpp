// Whether a step's target is up to date: file times at whole seconds,
// dependency files, forced include files, option files and the property
// changes of this run. Each decision explains itself to reportDetail unless
// the checks are quiet.

#include "build/builder.h"
#include "build/dependency_file.h"
#include "build/standard_project_system.h"
#include "support/file_info.h"

#include <algorithm>
#include <fstream>
#include <iterator>

bool StandardProjectSystem::checkTarget(const std::string &directory, const std::string &target,
                                        std::string &resolved, FileTime &targetTime,
                                        Builder *builder, bool quiet, bool emptyIsMissing) {
    resolved = absolutePathFrom(directory, target);
    const FileInfo info(resolved);
    if (!info.exists()) {
        if (!quiet && builder)
            builder->reportDetail(target + " does not exist.");
        return false;
    }
    if (emptyIsMissing && info.size() == 0) {
        if (!quiet && builder)
            builder->reportDetail(target + " is empty.");
        return false;
    }
    targetTime = info.lastModified();
    return true;
}

bool StandardProjectSystem::inputsAreOlder(const std::string &directory, const std::string &target,
                                           FileTime targetTime, const StringList &inputs,
                                           Builder *builder, bool quiet) {
    const bool explain = !quiet && builder;
    for (const std::string &input : inputs) {
        const FileInfo info(absolutePathFrom(directory, input));
        if (!info.exists()) {
            if (explain)
                builder->reportDetail(info.filePath() + " does not exist.");
            return false;
        }
        const FileTime time = info.lastModified();
        // A file from the future is only worth a word: its time still
        // decides below.
        if (explain && time > FileTime::now())
            builder->reportDetail("clock skew detected on " + input + ".");
        if (time.laterInSecondsThan(targetTime)) {
            if (explain)
                builder->reportDetail(input + " (" + time.toText() + ") is later than " + target +
                                      " (" + targetTime.toText() + ").");
            return false;
        }
    }
    return true;
}

bool StandardProjectSystem::propertiesChanged(ProjectElement *element,
                                              const std::string &configuration,
                                              FileTime targetTime, int kind, Builder *builder,
                                              bool quiet) {
    if (!undoList.empty()) {
        const std::vector<PropertyClass *> &applying = propertyClasses.toolProperties(kind);
        const StringList inherited = inheritedConfigurations(element, configuration);
        for (const PropertyUndoRecord &change : undoList) {
            if (!(change.time > targetTime))
                break;  // newest first: the rest are older still
            if (change.configuration != configuration && change.configuration != "Common" &&
                std::find(inherited.begin(), inherited.end(), change.configuration) ==
                    inherited.end())
                continue;
            if (std::find(applying.begin(), applying.end(), change.property) == applying.end())
                continue;
            bool concerns = false;
            for (ProjectElement *node = element; node && !concerns; node = parent(node))
                concerns = node == change.element;
            if (!concerns)
                continue;
            if (!quiet && builder)
                builder->reportMessage(change.property->shortText() + " property has changed.");
            return false;
        }
    }

    std::vector<PropertyClass *> optionFiles;
    if (kind == KindC || kind == KindCpp || kind == KindAssembly)
        optionFiles = {toolProperties.cAdditionalOptionsFromFile,
                       toolProperties.cOnlyAdditionalOptionsFromFile,
                       toolProperties.cppOnlyAdditionalOptionsFromFile,
                       toolProperties.asmAdditionalOptionsFromFile};
    else if (kind == KindLink)
        optionFiles = {toolProperties.linkerAdditionalOptionsFromFile};
    if (optionFiles.empty())
        return true;
    const std::string directory = projectDirectory(element, configuration);
    const std::string target = outputFilePath(kind, element, configuration);
    for (PropertyClass *property : optionFiles) {
        const std::string file = expandedValue(element, property, configuration);
        if (!file.empty() && !inputsAreOlder(directory, target, targetTime, {file}, builder, quiet))
            return false;
    }
    return true;
}

StringList StandardProjectSystem::fileDependencies(ProjectElement *element,
                                                   const std::string &configuration,
                                                   const std::string &output) {
    const auto key = std::make_pair(element, output);
    if (dependencyCache_.enabled) {
        const auto cached = dependencyCache_.entries.find(key);
        if (cached != dependencyCache_.entries.end())
            return cached->second;
    }

    StringList result;
    std::ifstream in(dependencyFilePath(element, configuration, output), std::ios::binary);
    if (in) {
        const std::string text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
        const std::string directory = projectDirectory(element, configuration);
        // Both sides are normalised absolute paths.
        const std::string outputPath = absolutePathFrom(directory, output);
        auto namesOutput = [&](const std::string &target) {
            return absolutePathFrom(directory, target) == outputPath;
        };
        for (DependencyRule &rule : parseDependencyRules(text)) {
            if (rule.targets.empty()) {
                if (result.empty())
                    result = std::move(rule.prerequisites);
            } else if (std::any_of(rule.targets.begin(), rule.targets.end(), namesOutput)) {
                result.insert(result.end(), rule.prerequisites.begin(), rule.prerequisites.end());
            }
        }
    }
    if (dependencyCache_.enabled)
        dependencyCache_.entries[key] = result;
    return result;
}

void StandardProjectSystem::forcedIncludeFiles(ProjectElement *element,
                                               const std::string &configuration, StringList &list) {
    const StringList files =
        getPropertyList("", element, toolProperties.cIncludeFiles, configuration, true, false, false);
    list.insert(list.end(), files.begin(), files.end());
}
