#include "frontend/selection.h"

#include "project/project_system.h"
#include "project/property_group_files.h"
#include "project/property_value.h"

#include <algorithm>
#include <optional>
#include <ostream>

namespace {

void printList(std::ostream &out, const std::vector<std::string> &names) {
    for (const std::string &name : names)
        out << name << '\n';
}

struct PropertyEntry {
    std::string name;
    std::optional<std::string> value;
};

// "name=value" splits at the first "="; without one it is all name and the
// value is null.
PropertyEntry splitEntry(const std::string &entry) {
    const std::size_t equals = entry.find('=');
    if (equals == std::string::npos)
        return {entry, std::nullopt};
    return {entry.substr(0, equals), entry.substr(equals + 1)};
}

}  // namespace

ProjectElement *selectProject(ProjectSystem &system, ProjectElement *root, const std::string &name,
                              std::ostream &out) {
    if (ProjectElement *project = system.findProject(root, name))
        return project;
    for (const std::string &projectName : system.projectNames) {
        if (projectName.starts_with(name))
            return system.findProject(root, projectName);
    }
    out << "can't find project '" << name << "' supported projects:\n";
    printList(out, system.projectNames);
    return nullptr;
}

ProjectElement *selectSolution(ProjectSystem &system, const std::string &name, std::ostream &out) {
    if (ProjectElement *solution = system.findSolution(name))
        return solution;
    out << "can't find solution '" << name << "' supported solutions:\n";
    printList(out, system.solutionNames);
    return nullptr;
}

bool setCommandLineProperty(ProjectSystem &system, ProjectElement *element,
                            const std::string &configuration, const std::string &entry,
                            std::ostream &out) {
    const PropertyEntry property = splitEntry(entry);
    // The options of the node's generic option file are known once it is read.
    system.loadGenericOptions(element, configuration);
    if (PropertyClass *propertyClass = system.propertyClasses.propertyClass(property.name)) {
        system.setPropertyValue(element, propertyClass, configuration, property.value.value_or(""));
        return true;
    }
    if (PropertyValueGroupClass *group = system.findGroupForNode(
            element, configuration, property.name, system.isCppProject(element, configuration))) {
        system.setGroupValue(element, configuration, group, property.value.value_or(""));
        return true;
    }
    out << "can't find property '" << property.name << "' supported properties:\n";
    for (const auto &value : system.toolPropertyValues(element, configuration))
        out << value->name() << '=' << value->value().value_or("") << '\n';
    return false;
}

void setSolutionProperty(ProjectSystem &system, const std::string &configuration,
                         const std::string &entry) {
    const PropertyEntry property = splitEntry(entry);
    if (PropertyClass *propertyClass = system.propertyClasses.propertyClass(property.name))
        system.setPropertyValue(system.rootOf(), propertyClass, configuration,
                                property.value.value_or(""));
}

bool checkConfiguration(ProjectSystem &system, ProjectElement *element,
                        const std::string &configuration, std::ostream &out) {
    std::vector<std::string> names = system.configurationNames(
        element, ProjectSystem::IncludeCommon | ProjectSystem::PublicConfigurations);
    if (std::find(names.begin(), names.end(), configuration) != names.end())
        return true;
    std::sort(names.begin(), names.end());
    out << "can't find configuration '" << configuration << "' supported configurations:\n";
    printList(out, names);
    return false;
}

void showConfigurations(ProjectSystem &system, ProjectElement *element,
                        const std::string &configuration, bool batch, std::ostream &out) {
    std::vector<std::string> names =
        batch ? system.batchBuildConfigurations(element, configuration)
              : system.configurationNames(element, ProjectSystem::IncludeCommon |
                                                       ProjectSystem::PublicConfigurations);
    std::sort(names.begin(), names.end());
    printList(out, names);
}
