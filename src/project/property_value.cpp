#include "project/property_value.h"

#include "project/project_system.h"
#include "project/property_group_files.h"
#include "project/tree_walk.h"
#include "support/text_split.h"

#include <set>

namespace {

const std::string commonName = "Common";

bool isHidden(const ProjectElement *configuration) {
    const std::string *hidden = configuration->attribute("hidden");
    return hidden && *hidden == "Yes";
}

// Makes the public or the private configurations of the solution around
// element exactly the names of text; "Common" is never made nor deleted.
void setConfigurations(ProjectSystem &system, ProjectElement *element, const std::string &text,
                       bool hidden) {
    ProjectElement *owner = ProjectSystem::solutionOf(element);
    if (!owner)
        return;
    const StringList wanted = splitAtAny(text, ";");
    const std::set<std::string> named(wanted.begin(), wanted.end());

    std::vector<ProjectElement *> unnamed;
    for (ProjectElement *child = ProjectSystem::firstChild(owner); child;
         child = ProjectSystem::nextSibling(child)) {
        if (!ProjectSystem::isConfiguration(child) || isHidden(child) != hidden)
            continue;
        const std::string name = system.elementName(child);
        if (name != commonName && !named.count(name))
            unnamed.push_back(child);
    }
    for (ProjectElement *child : unnamed) {
        system.removeChild(owner, child);
        delete child;
    }
    for (const std::string &name : wanted) {
        if (name != commonName && !ProjectSystem::findConfiguration(owner, name))
            system.addConfiguration(owner, name,
                                    hidden ? ProjectSystem::PrivateConfigurations
                                           : ProjectSystem::PublicConfigurations);
    }
    if (system.observer)
        system.observer->propertiesChanged(owner);
}

} // namespace

// ---- PropertyValue

PropertyValue::PropertyValue(PropertyClass *property)
    : readOnly(property->readOnly()), propertyClass(property) {}

std::string PropertyValue::longText() const { return propertyClass->longText(); }

const std::string &PropertyValue::name() const { return propertyClass->name(); }

// ---- SimplePropertyValue

SimplePropertyValue::SimplePropertyValue(PropertyClass *property, std::optional<std::string> text)
    : PropertyValue(property), text_(std::move(text)) {}

std::unique_ptr<PropertyValue> SimplePropertyValue::clone() const {
    return std::make_unique<SimplePropertyValue>(*this);
}

// ---- ProjectPropertyValue

ProjectPropertyValue::ProjectPropertyValue(ProjectElement *node, PropertyClass *property,
                                           const std::string &configurationName,
                                           ProjectSystem *system)
    : PropertyValue(property), element(node),
      configuration(property->perConfiguration() ? configurationName : commonName),
      projectSystem(system) {}

std::unique_ptr<PropertyValue> ProjectPropertyValue::clone() const {
    return std::make_unique<ProjectPropertyValue>(*this);
}

bool ProjectPropertyValue::isInherited() const {
    return !ProjectSystem::getOwnPropertyValue(element, propertyClass, configuration);
}

void ProjectPropertyValue::setValue(const std::string &text) {
    projectSystem->setPropertyValue(element, propertyClass, configuration, text);
}

std::optional<std::string> ProjectPropertyValue::value() const {
    if (propertyClass->type() == PropertyClass::StringList)
        return ProjectSystem::getOwnPropertyValue(element, propertyClass, configuration);
    return projectSystem->getPropertyValue(element, propertyClass, configuration);
}

// ---- Values whose change moves files

std::unique_ptr<PropertyValue> ProjectDirectoryProjectPropertyValue::clone() const {
    return std::make_unique<ProjectDirectoryProjectPropertyValue>(*this);
}

// The resolved paths at and below the node depend on the value, also when
// no change is being tracked.
void ProjectDirectoryProjectPropertyValue::setValue(const std::string &text) {
    ProjectPropertyValue::setValue(text);
    ProjectSystem::invalidatePaths(element);
    if (projectSystem->observer)
        projectSystem->observer->pathsChanged(element);
}

std::unique_ptr<PropertyValue> ProjectMacrosProjectPropertyValue::clone() const {
    return std::make_unique<ProjectMacrosProjectPropertyValue>(*this);
}

void ProjectMacrosProjectPropertyValue::setValue(const std::string &text) {
    ProjectPropertyValue::setValue(text);
    ProjectSystem::invalidatePaths(element);
    if (projectSystem->observer)
        projectSystem->observer->pathsChanged(element);
}

// ---- DynamicFolderPropertyValue

std::unique_ptr<PropertyValue> DynamicFolderPropertyValue::clone() const {
    return std::make_unique<DynamicFolderPropertyValue>(*this);
}

bool DynamicFolderPropertyValue::isInherited() const {
    return !ProjectSystem::hasAttribute(element, propertyClass->name());
}

void DynamicFolderPropertyValue::setValue(const std::string &text) {
    projectSystem->setAttribute(element, propertyClass->name(), text);
    if (projectSystem->observer)
        projectSystem->observer->propertyChanged(element, configuration, propertyClass);
}

std::optional<std::string> DynamicFolderPropertyValue::value() const {
    return ProjectSystem::attribute(element, propertyClass->name());
}

// ---- Configuration lists

std::unique_ptr<PropertyValue> InheritedConfigurationsProjectPropertyValue::clone() const {
    return std::make_unique<InheritedConfigurationsProjectPropertyValue>(*this);
}

void InheritedConfigurationsProjectPropertyValue::setValue(const std::string &text) {
    projectSystem->setInheritedConfigurations(element, configuration, splitAtAny(text, ";"));
}

std::optional<std::string> InheritedConfigurationsProjectPropertyValue::value() const {
    return joinItems(projectSystem->inheritedConfigurations(element, configuration), ";");
}

std::unique_ptr<PropertyValue> PublicConfigurationsProjectPropertyValue::clone() const {
    return std::make_unique<PublicConfigurationsProjectPropertyValue>(*this);
}

void PublicConfigurationsProjectPropertyValue::setValue(const std::string &text) {
    setConfigurations(*projectSystem, element, text, false);
}

std::optional<std::string> PublicConfigurationsProjectPropertyValue::value() const {
    return joinItems(projectSystem->configurationNames(ProjectSystem::solutionOf(element),
                                                       ProjectSystem::PublicConfigurations),
                     ";");
}

std::unique_ptr<PropertyValue> PrivateConfigurationsProjectPropertyValue::clone() const {
    return std::make_unique<PrivateConfigurationsProjectPropertyValue>(*this);
}

void PrivateConfigurationsProjectPropertyValue::setValue(const std::string &text) {
    setConfigurations(*projectSystem, element, text, true);
}

std::optional<std::string> PrivateConfigurationsProjectPropertyValue::value() const {
    return joinItems(projectSystem->configurationNames(ProjectSystem::solutionOf(element),
                                                       ProjectSystem::PrivateConfigurations),
                     ";");
}

// ---- PropertyValueGroupValue

PropertyValueGroupValue::PropertyValueGroupValue(ProjectElement *node, PropertyValueGroupClass *group,
                                                 const std::string &configurationName,
                                                 ProjectSystem *system)
    : ProjectPropertyValue(node, group, configurationName, system) {}

std::unique_ptr<PropertyValue> PropertyValueGroupValue::clone() const {
    return std::make_unique<PropertyValueGroupValue>(*this);
}

PropertyValueGroupClass *PropertyValueGroupValue::groupClass() const {
    return static_cast<PropertyValueGroupClass *>(propertyClass);
}

void PropertyValueGroupValue::setValue(const std::string &text) {
    const PropertyValueGroupClass *group = groupClass();
    const XMLElement *entry = ProjectSystem::groupEntry(group, text);
    if (!entry && group->defaultValue())
        entry = ProjectSystem::groupEntry(group, *group->defaultValue());
    if (entry) {
        PropertyValueGroupFile *file = projectSystem->groupFileOf(element, configuration);
        for (XMLNode *node = entry->firstChild; node; node = node->nextSibling) {
            const XMLElement *item = node->toElement();
            if (!item)
                continue;
            // A property item's `configuration` names where the value goes,
            // so it doesn't select.
            if (item->tagName == "property" &&
                projectSystem->groupItemApplies(element, configuration, *item, file, false))
                applyProperty(*item, file);
            else if (item->tagName == "file" &&
                     projectSystem->groupItemApplies(element, configuration, *item, file))
                applyFile(*item);
        }
    }
    ProjectPropertyValue::setValue(text);
}

void PropertyValueGroupValue::applyProperty(const XMLElement &item, PropertyValueGroupFile *file) {
    const std::string *name = item.attribute("name");
    if (!name)
        return;
    const std::string *valueText = item.attribute("value");
    const std::string value = valueText ? *valueText : std::string();
    const std::string *itemConfiguration = item.attribute("configuration");
    const std::string &where =
        itemConfiguration && !itemConfiguration->empty() ? *itemConfiguration : configuration;

    ProjectSystem &system = *projectSystem;
    if (PropertyClass *property = system.groupItemProperty(element, *name, file)) {
        if (value.empty())
            system.clearPropertyValue(element, property, where);
        else
            system.setPropertyValue(element, property, where, value);
        return;
    }
    // A name that no table knows is stored as it stands.
    const std::string attribute = system.resolvePropertyName(element, *name);
    ProjectElement *store = ProjectSystem::findConfiguration(element, where);
    if (value.empty()) {
        if (store)
            system.removeAttribute(store, attribute);
    } else {
        if (!store)
            store = system.addConfiguration(element, where, ProjectSystem::PublicConfigurations);
        system.setAttribute(store, attribute, value);
    }
    system.dropMacroCache();
}

namespace {

// The folder of that name in the project, the project itself for no name.
ProjectElement *findFolder(ProjectSystem &system, ProjectElement *project, const std::string &name) {
    if (name.empty())
        return project;
    for (XMLNode *node = project; node;) {
        ProjectElement *below = ProjectElement::from(node);
        const bool folder = ProjectSystem::isFolder(below);
        if (folder && system.elementName(below) == name)
            return below;
        node = nextInSubtree(node, project, node == project || folder);
    }
    return nullptr;
}

} // namespace

void PropertyValueGroupValue::applyFile(const XMLElement &item) {
    ProjectSystem &system = *projectSystem;
    ProjectElement *project = ProjectSystem::projectOf(element);
    const std::string *name = item.attribute("name");
    const std::string *fileName = item.attribute("file_name");
    if (!project || !name || !fileName)
        return;
    const std::string *folderName = item.attribute("folder");
    ProjectElement *folder = findFolder(system, project, folderName ? *folderName : std::string());
    if (!folder)
        return;
    // The file may be in a folder below: adding to a project files it by
    // the folders' filters.
    for (XMLNode *node = folder; node;) {
        ProjectElement *below = ProjectElement::from(node);
        if (ProjectSystem::isFile(below) && system.elementName(below) == *name) {
            if (ProjectSystem::attribute(below, "file_name") != *fileName)
                system.setFileName(below, *fileName);
            return;
        }
        node = nextInSubtree(node, folder, node == folder || ProjectSystem::isFolder(below));
    }
    ProjectElement *added = system.addFile(folder, *fileName);
    system.setName(added, *name);
}

// ---- PropertyValueList

void PropertyValueList::append(PropertyValueList &&other) {
    for (auto &value : other.items_)
        items_.push_back(std::move(value));
    other.items_.clear();
}

PropertyValue *PropertyValueList::find(std::string_view name) const {
    for (const auto &value : items_)
        if (value->name() == name)
            return value.get();
    return nullptr;
}
