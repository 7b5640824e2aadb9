// Property groups of a node: which group a name means, which entry is
// chosen, and what the chosen entries contribute to a build.

#include "project/project_system.h"
#include "project/property_group_files.h"
#include "project/property_value.h"

#include <algorithm>
#include <unordered_set>

namespace {

const std::string commonName = "Common";

// Calls visit(item) for each child of `entry` with the tag.
template <class Visit>
void forEachItem(const XMLElement &entry, std::string_view tag, Visit visit) {
    for (XMLNode *node = entry.firstChild; node; node = node->nextSibling) {
        const XMLElement *item = node->toElement();
        if (item && item->tagName == tag)
            visit(*item);
    }
}

} // namespace

std::string ProjectSystem::resolvePropertyName(ProjectElement *, const std::string &name) {
    return name;
}

PropertyValueGroupFile *ProjectSystem::findGroupFile(const std::string &fileName) {
    return groupFiles_->findGroupFile(fileName);
}

std::vector<PropertyValueGroupClass *> ProjectSystem::groupClasses(PropertyValueGroupFile *projectFile,
                                                                   bool includeAll) {
    return groupFiles_->groupClasses(projectFile, includeAll);
}

PropertyValueGroupClass *ProjectSystem::findGroup(PropertyValueGroupFile *projectFile,
                                                  const std::string &name, std::uint32_t target,
                                                  bool includeAll) {
    for (PropertyValueGroupClass *group : groupClasses(projectFile, includeAll))
        if (group->name() == name && group->appliesTo(target))
            return group;
    return nullptr;
}

PropertyValueGroupClass *ProjectSystem::findGroupForNode(ProjectElement *element,
                                                         const std::string &configuration,
                                                         const std::string &name, bool includeAll) {
    return findGroup(groupFileOf(element, configuration), name,
                     static_cast<std::uint32_t>(platformCode()), includeAll);
}

void ProjectSystem::setGroupValue(ProjectElement *element, const std::string &configuration,
                                  PropertyValueGroupClass *group, const std::string &value) {
    if (!element || !group)
        return;
    PropertyValueGroupValue(element, group, configuration, this).setValue(value);
}

XMLElement *ProjectSystem::groupEntry(const PropertyValueGroupClass *group,
                                      std::string_view entryName) {
    if (!group)
        return nullptr;
    for (XMLNode *node = group->groupElement()->firstChild; node; node = node->nextSibling) {
        XMLElement *entry = node->toElement();
        if (!entry || entry->tagName != "groupEntry")
            continue;
        const std::string *name = entry->attribute("name");
        if (name && *name == entryName)
            return entry;
    }
    return nullptr;
}

bool ProjectSystem::hasDefines(const PropertyValueGroupClass *group) {
    if (!group)
        return false;
    for (XMLNode *node = group->groupElement()->firstChild; node; node = node->nextSibling) {
        const XMLElement *entry = node->toElement();
        if (!entry || entry->tagName != "groupEntry")
            continue;
        bool found = false;
        forEachItem(*entry, "cdefine", [&](const XMLElement &) { found = true; });
        if (found)
            return true;
    }
    return false;
}

PropertyClass *ProjectSystem::groupItemProperty(ProjectElement *element, const std::string &name,
                                                PropertyValueGroupFile *file) {
    const std::string resolved = resolvePropertyName(element, name);
    if (PropertyClass *property = propertyClasses.propertyClass(resolved))
        return property;
    return findGroup(file, resolved, static_cast<std::uint32_t>(platformCode()), true);
}

bool ProjectSystem::groupItemApplies(ProjectElement *element, const std::string &configuration,
                                     const XMLElement &item, PropertyValueGroupFile *file,
                                     bool testConfiguration) {
    if (testConfiguration) {
        const std::string *wanted = item.attribute("configuration");
        if (wanted && *wanted != commonName && *wanted != configuration) {
            const StringList inherited = inheritedConfigurations(element, configuration);
            if (std::find(inherited.begin(), inherited.end(), *wanted) == inherited.end())
                return false;
        }
    }
    const std::string *name = item.attribute("property");
    if (!name)
        return true;
    std::optional<std::string> value;
    if (PropertyClass *property = groupItemProperty(element, *name, file)) {
        value = getPropertyValue(element, property, configuration);
    } else {
        // A name that no table knows may still be stored on the node.
        PropertyClass stored(resolvePropertyName(element, *name), PropertyClass::String, "", "",
                             "", "", std::nullopt);
        value = getPropertyValue(element, &stored, configuration);
    }
    const std::string *wantedValue = item.attribute("property_value");
    return value.value_or(std::string()) == (wantedValue ? *wantedValue : std::string());
}

namespace {

// The chosen entry of each group that applies to the node, the first group
// of each name only: a project's group hides a library's of the same name.
std::vector<const XMLElement *> chosenEntries(ProjectSystem &system, PropertyValueGroupFile *file,
                                              ProjectElement *element,
                                              const std::string &configuration, bool includeAll) {
    std::vector<const XMLElement *> entries;
    std::unordered_set<std::string_view> seen;
    const auto target = static_cast<std::uint32_t>(system.platformCode());
    for (PropertyValueGroupClass *group : system.groupClasses(file, includeAll)) {
        if (!group->appliesTo(target) || !seen.insert(group->name()).second)
            continue;
        const std::optional<std::string> value =
            system.getPropertyValue(element, group, configuration);
        if (!value)
            continue;
        if (const XMLElement *entry = ProjectSystem::groupEntry(group, *value))
            entries.push_back(entry);
    }
    return entries;
}

// Calls add(item) for each item with the tag of the node's chosen entries
// that applies to the node.
template <class Add>
void forEachContribution(ProjectSystem &system, ProjectElement *element,
                         const std::string &configuration, std::string_view tag, Add add) {
    PropertyValueGroupFile *file = system.groupFileOf(element, configuration);
    const bool includeAll = system.isCppProject(element, configuration);
    for (const XMLElement *entry : chosenEntries(system, file, element, configuration, includeAll)) {
        forEachItem(*entry, tag, [&](const XMLElement &item) {
            if (system.groupItemApplies(element, configuration, item, file))
                add(item);
        });
    }
}

} // namespace

// Macros stand for every file of the node alike, so no group is left out
// for a C project here: the libcxx groups' macros hold for all.
void ProjectSystem::addGroupMacros(PropertyValueGroupFile *file, ProjectElement *element,
                                   const std::string &configuration, MacroMap &map) {
    for (const XMLElement *entry : chosenEntries(*this, file, element, configuration, true)) {
        forEachItem(*entry, "macro", [&](const XMLElement &item) {
            const std::string *name = item.attribute("name");
            if (!name || !groupItemApplies(element, configuration, item, file))
                return;
            const std::string *value = item.attribute("value");
            map[*name] = value ? *value : std::string();
        });
    }
}

void ProjectSystem::groupIncludes(ProjectElement *element, const std::string &configuration,
                                  StringList &list) {
    forEachContribution(*this, element, configuration, "cinclude", [&](const XMLElement &item) {
        if (const std::string *value = item.attribute("value"))
            list.push_back("-I" + expandProjectMacros(element, *value, configuration));
    });
}

void ProjectSystem::groupDefines(ProjectElement *element, const std::string &configuration,
                                 StringList &list) {
    forEachContribution(*this, element, configuration, "cdefine", [&](const XMLElement &item) {
        const std::string *name = item.attribute("name");
        if (!name)
            return;
        const std::string *value = item.attribute("value");
        list.push_back("-D" + *name + (value && !value->empty() ? "=" + *value : std::string()));
    });
}

void ProjectSystem::groupLibraries(ProjectElement *element, const std::string &configuration,
                                   StringList &list) {
    forEachContribution(*this, element, configuration, "library", [&](const XMLElement &item) {
        if (const std::string *name = item.attribute("name"))
            list.push_back(*name);
    });
}

void ProjectSystem::groupPackages(ProjectElement *element, const std::string &configuration,
                                  StringList &list) {
    forEachContribution(*this, element, configuration, "package", [&](const XMLElement &item) {
        if (const std::string *name = item.attribute("name"))
            list.push_back(*name);
    });
}
