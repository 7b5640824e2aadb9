// The configurations of a solution: which exist for a build, what they
// inherit, and which a batch build takes.

#include "project/project_system.h"
#include "support/text_split.h"

#include <algorithm>
#include <cctype>
#include <fnmatch.h>
#include <unordered_set>

namespace {

std::string upperCase(std::string text) {
    for (char &c : text)
        c = char(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

} // namespace

StringList ProjectSystem::inheritedConfigurations(ProjectElement *element,
                                                  const std::string &configuration) {
    const ProjectElement *owner = solutionOf(element);
    if (!owner)
        return {};
    auto list = owner->inherited.find(configuration);
    return list == owner->inherited.end() ? StringList() : list->second;
}

void ProjectSystem::setInheritedConfigurations(ProjectElement *element,
                                               const std::string &configuration,
                                               const StringList &list) {
    ProjectElement *owner = solutionOf(element);
    if (!owner || list == inheritedConfigurations(element, configuration))
        return;
    ProjectElement *store = findConfiguration(owner, configuration);
    if (!store)
        store = addConfiguration(owner, configuration, PublicConfigurations);
    setAttribute(store, "inherited_configurations", joinItems(list, ";"));
    rebuildInherited(owner);
    dropMacroCache();
    if (trackingChanges)
        invalidatePaths(owner);
    if (observer)
        observer->propertyChanged(owner, configuration, nodeProperties.inheritedConfigurations);
}

StringList ProjectSystem::configurationNames(ProjectElement *element, int flags) {
    StringList names;
    std::unordered_set<std::string> seen;
    const auto add = [&names, &seen](const std::string &name) {
        if (seen.insert(name).second)
            names.push_back(name);
    };

    if (flags & LoaderConfigurations) {
        if (isProject(element)) {
            for (ProjectElement *child = firstChild(element); child; child = nextSibling(child)) {
                if (!isConfiguration(child))
                    continue;
                const std::string name = elementName(child);
                if (name != "Common" && isLoaderConfiguration(child))
                    add(name);
            }
        }
        return names;
    }

    const std::string platform = platformName();
    for (ProjectElement *e = element ? solutionOf(element) : solution; e; e = parent(e)) {
        for (const auto &[name, configuration] : e->configurations) {
            if (seen.count(name))
                continue;
            const std::string *hidden = configuration->attribute("hidden");
            if (hidden && *hidden == "Yes") {
                if (flags & PrivateConfigurations)
                    add(name);
            } else if ((flags & PublicConfigurations) && name != "Common" &&
                       platformOf(element, name) == platform) {
                add(name);
            }
        }
    }
    if ((flags & IncludeCommon) || names.empty())
        add("Common");
    return names;
}

StringList ProjectSystem::batchBuildConfigurations(ProjectElement *element,
                                                   const std::string &configuration) {
    const StringList items = splitAtAny(
        getPropertyValue(element, nodeProperties.batchBuildConfigurations, configuration)
            .value_or(std::string()),
        ";");
    const bool commonOnly = items.size() == 1 && items.front() == "Common";
    StringList candidates =
        configurationNames(element, commonOnly ? PublicConfigurations | IncludeCommon
                                               : PublicConfigurations);
    std::sort(candidates.begin(), candidates.end());

    StringList chosen;
    std::unordered_set<std::string> seen;
    for (const std::string &item : items) {
        const bool wildcard = item.find('*') != std::string::npos;
        const std::string upperItem = upperCase(item);
        for (const std::string &candidate : candidates) {
            const bool matches = wildcard ? fnmatch(item.c_str(), candidate.c_str(), 0) == 0
                                          : upperCase(candidate) == upperItem;
            if (matches && seen.insert(candidate).second)
                chosen.push_back(candidate);
        }
    }
    return chosen;
}
