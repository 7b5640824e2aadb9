// The generic option file of a node: which one applies, reading it once, and
// switching the active set.

#include "project/project_system.h"
#include "project/xml/xmlpp2.h"
#include "support/macro_expansion.h"
#include "support/normalise_path.h"

namespace {

// The file goes through the pre-processor without macros. Null if it can't
// be read or has no root element.
std::unique_ptr<GenericOptionSet> readGenericOptionSet(SystemMacros *macros,
                                                       const std::string &fileName) {
    XMLPP2 document(macros);
    if (!document.load(fileName, std::string(), false) || !document.root)
        return nullptr;
    return std::make_unique<GenericOptionSet>(*document.root);
}

} // namespace

void ProjectSystem::loadGenericOptions(ProjectElement *element, const std::string &configuration) {
    GenericOptions &options = genericOptions_;
    std::string name;
    std::optional<std::string> value;
    if (isPropertySet(element, nodeProperties.buildGenericOptionsFileName, configuration, value)) {
        name = expandProjectMacros(element, value.value_or(std::string()), configuration);
    } else {
        // The standard file names no node, so only $(StudioDir) and the
        // global macros apply; it is expanded again only if it changes.
        if (options.standardText != genericOptionsFileName) {
            options.standardText = genericOptionsFileName;
            MacroMap studio;
            if (!installDirectory.empty())
                studio["StudioDir"] = expandGlobalMacros(installDirectory);
            options.standardName =
                macros ? expandMacrosWith(*macros, studio, genericOptionsFileName, true, true)
                       : genericOptionsFileName;
        }
        name = options.standardName;
    }
    // A relative name is taken from the node's directory, as a command
    // running there would take it.
    if (!name.empty() && name.front() != '/') {
        std::string base = elementDirectory(element);
        if (base.empty())
            base = solutionDirectory();
        if (!base.empty())
            name = base + "/" + name;
    }
    normalisePath(name);

    if (name == options.activeName)
        return;
    if (options.active)
        options.active->deactivate(propertyClasses);
    options.active = nullptr;
    options.activeName = name;
    if (name.empty())
        return;
    auto [entry, isNew] = options.sets.try_emplace(name);
    if (isNew)
        entry->second = readGenericOptionSet(macros, name);
    options.active = entry->second.get();
    if (options.active)
        options.active->activate(propertyClasses);
}
