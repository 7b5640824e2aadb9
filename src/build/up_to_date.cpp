// Whether a step's target is up to date: file times at whole seconds,
// dependency files, forced include files, option files and the property
// changes of this run. Each decision explains itself to reportDetail unless
// the checks are quiet.

#include "build/builder.h"
#include "build/dependency_file.h"
#include "build/standard_project_system.h"
#include "support/file_info.h"
#include "support/file_status_cache.h"
#include "support/file_utils.h"
#include "support/normalise_path.h"

#include <algorithm>
#include <string_view>

bool StandardProjectSystem::checkTarget(const std::string &directory, const std::string &target,
                                        std::string &resolved, FileTime &targetTime,
                                        Builder *builder, bool quiet, bool emptyIsMissing) {
    resolved = absolutePathFrom(directory, target);
    const FileStatus info = fileStatus_.status(resolved);
    if (!info.exists) {
        if (!quiet && builder)
            builder->reportDetail(target + " does not exist.");
        return false;
    }
    if (emptyIsMissing && info.size == 0) {
        if (!quiet && builder)
            builder->reportDetail(target + " is empty.");
        return false;
    }
    targetTime = info.lastModified;
    return true;
}

bool StandardProjectSystem::inputsAreOlder(const std::string &directory, const std::string &target,
                                           FileTime targetTime, const StringList &inputs,
                                           Builder *builder, bool quiet) {
    const bool explain = !quiet && builder;
    const FileTime now = explain ? FileTime::now() : FileTime();
    for (std::size_t position = 0; position < inputs.size(); ++position) {
        const std::string &input = inputs[position];
        // Dependency files mostly name absolute paths that need no work,
        // and the same headers again and again: a path that was read as it
        // stands is normalised already.
        const bool absolute = !isRelativePath(input);
        const FileStatus *known = absolute ? fileStatus_.knownInList(position, input) : nullptr;
        std::string resolved;
        const std::string &path = known || (absolute && isPlainPath(input))
                                      ? input
                                      : (resolved = absolutePathFrom(directory, input));
        const FileStatus info = known ? *known : fileStatus_.statusInList(position, path);
        if (!info.exists) {
            if (explain)
                builder->reportDetail(path + " does not exist.");
            return false;
        }
        const FileTime time = info.lastModified;
        // A file from the future is only worth a word: its time still
        // decides below.
        if (explain && time > now)
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

const PropertyUndoRecord *StandardProjectSystem::changeSince(ProjectElement *element,
                                                             const std::string &configuration,
                                                             const std::vector<PropertyClass *> &properties,
                                                             FileTime time) {
    if (undoList.empty())
        return nullptr;
    const StringList inherited = inheritedConfigurations(element, configuration);
    for (const PropertyUndoRecord &change : undoList) {
        if (!(change.time > time))
            break;  // newest first: the rest are older still
        if (change.configuration != configuration && change.configuration != "Common" &&
            std::find(inherited.begin(), inherited.end(), change.configuration) == inherited.end())
            continue;
        if (std::find(properties.begin(), properties.end(), change.property) == properties.end())
            continue;
        for (ProjectElement *node = element; node; node = parent(node))
            if (node == change.element)
                return &change;
    }
    return nullptr;
}

bool StandardProjectSystem::propertyChangedSince(ProjectElement *element, const std::string &configuration,
                                                 const std::vector<PropertyClass *> &properties, FileTime time) {
    return changeSince(element, configuration, properties, time) != nullptr;
}

bool StandardProjectSystem::propertiesChanged(ProjectElement *element,
                                              const std::string &configuration,
                                              FileTime targetTime, int kind, Builder *builder,
                                              bool quiet) {
    if (const PropertyUndoRecord *change =
            changeSince(element, configuration, propertyClasses.toolProperties(kind), targetTime)) {
        if (!quiet && builder)
            builder->reportMessage(std::string(change->property->shortText()) + " property has changed.");
        return false;
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
    std::string directory, target;  // found for the first option file that is set
    for (PropertyClass *property : optionFiles) {
        const std::string file = expandedValue(element, property, configuration);
        if (file.empty())
            continue;
        if (target.empty()) {
            directory = projectDirectory(element, configuration);
            target = outputFilePath(kind, element, configuration);
        }
        if (!inputsAreOlder(directory, target, targetTime, {file}, builder, quiet))
            return false;
    }
    return true;
}

const StringList &StandardProjectSystem::fileDependencies(ProjectElement *element,
                                                          const std::string &configuration,
                                                          const std::string &output) {
    // The cache is the last answer: a build asks once per output, and a
    // question asked again straight after needs no read. Keeping every
    // answer of a large build would cost more memory than the reads save.
    DependencyCache &cache = dependencyCache_;
    if (cache.enabled && cache.element == element && cache.output == output)
        return cache.answer;
    cache.element = nullptr;
    std::string &text = cache.text;  // its room is used again from file to file
    fileStatus_.readFile(dependencyFilePath(element, configuration, output), text);

    // The answer's strings are assigned, not made anew, so that their room is
    // used again from one file to the next.
    StringList &result = dependencyCache_.answer;
    std::size_t count = 0;
    auto add = [&](const std::vector<std::string_view> &names) {
        for (const std::string_view name : names) {
            if (count < result.size())
                result[count].assign(name);
            else
                result.emplace_back(name);
            ++count;
        }
    };
    if (!text.empty()) {
        const std::string directory = projectDirectory(element, configuration);
        // Both sides are normalised absolute paths.
        const std::string outputPath = absolutePathFrom(directory, output);
        auto namesOutput = [&](std::string_view target) {
            return absolutePathFrom(directory, std::string(target)) == outputPath;
        };
        DependencyRuleReader rules(text);
        while (rules.next()) {
            if (rules.targets().empty()) {
                if (count == 0)
                    add(rules.prerequisites());
            } else if (std::any_of(rules.targets().begin(), rules.targets().end(), namesOutput)) {
                add(rules.prerequisites());
            }
        }
    }
    result.resize(count);
    if (cache.enabled) {
        cache.element = element;
        cache.output = output;
    }
    return result;
}

void StandardProjectSystem::forcedIncludeFiles(ProjectElement *element,
                                               const std::string &configuration, StringList &list) {
    const StringList files =
        getPropertyList("", element, toolProperties.cIncludeFiles, configuration, true, false, false);
    list.insert(list.end(), files.begin(), files.end());
}
