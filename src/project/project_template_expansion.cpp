// Expanding a project template on a project: the type and target, then the
// template's children applied to the tree.

#include "project/build_output_file_name_property_class.h"
#include "project/project_load_progress_interface.h"
#include "project/project_system.h"
#include "project/project_templates.h"
#include "project/property_group_files.h"
#include "project/xml/xml_element.h"
#include "support/text_split.h"

#include <algorithm>
#include <cctype>
#include <set>

namespace {

const std::string configurationMacro = "$(Configuration)";

// Folders, files and choices inside each other deeper than this are passed
// over, so that a pathological template can't exhaust the stack.
constexpr int maximumNesting = 200;

std::string textOf(const XMLElement &element, std::string_view name) {
    const std::string *value = element.attribute(name);
    return value ? *value : std::string();
}

std::string lowerCase(std::string text) {
    for (char &c : text)
        c = char(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

std::string replaced(std::string text, const std::string &from, const std::string &to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

template <class Visit>
void forEachChildElement(const XMLElement &parent, Visit visit) {
    for (XMLNode *node = parent.firstChild; node; node = node->nextSibling) {
        if (const XMLElement *child = node->toElement())
            visit(*child);
    }
}

class TemplateExpander {
public:
    TemplateExpander(ProjectTemplates &templates, ProjectSystem &system, const XMLElement &definition,
                     ProjectLoadProgressInterface *progress)
        : templates_(templates), system_(system), definition_(definition), progress_(progress) {}

    // Applies the children of `source` to `node`. `configurations` may be
    // filled on the way, and the later children see it so.
    void applyChildren(ProjectElement *node, const XMLElement &source, StringList &configurations,
                       const StringList &choices, int nesting);

private:
    void property(ProjectElement *node, const XMLElement &child, StringList &configurations);
    void configuration(const XMLElement &child, StringList &configurations);
    bool applyConfiguration(const std::string &name);
    void folder(ProjectElement *node, const XMLElement &child, int nesting);
    void file(ProjectElement *node, const XMLElement &child, int nesting);
    void choose(ProjectElement *node, const XMLElement &child, const StringList &configurations,
                const StringList &choices, int nesting);

    // The project definition's own list, if the caller gave none.
    void fillConfigurations(StringList &configurations) const {
        if (configurations.empty())
            configurations = splitAtAny(textOf(definition_, "configurations"), ";");
    }
    ProjectElement *solutionConfiguration(const std::string &name) {
        ProjectElement *solution = templates_.solution;
        ProjectElement *found = ProjectSystem::findConfiguration(solution, name);
        return found ? found : system_.addConfiguration(solution, name, ProjectSystem::PublicConfigurations);
    }
    void warning(const std::string &text) {
        if (progress_)
            progress_->warning(text);
    }

    ProjectTemplates &templates_;
    ProjectSystem &system_;
    const XMLElement &definition_;
    ProjectLoadProgressInterface *progress_;
    // How deep applyConfiguration is, and the definitions it has applied
    // since it was last entered from outside.
    int applying_ = 0;
    std::set<std::string> applied_;
};

void TemplateExpander::applyChildren(ProjectElement *node, const XMLElement &source,
                                     StringList &configurations, const StringList &choices,
                                     int nesting) {
    if (nesting > maximumNesting) {
        warning("project template nested more than " + std::to_string(maximumNesting) + " levels deep");
        return;
    }
    forEachChildElement(source, [&](const XMLElement &child) {
        const std::string &tag = child.tagName;
        if (tag == "property" || tag == "solutionproperty" || tag == "propertygroup")
            property(node, child, configurations);
        else if (tag == "configuration")
            configuration(child, configurations);
        else if (tag == "folder")
            folder(node, child, nesting);
        else if (tag == "file")
            file(node, child, nesting);
        else if (tag == "import")
            system_.importSolution(templates_.solution, textOf(child, "name"), nullptr, nullptr);
        else if (tag == "choose")
            choose(node, child, configurations, choices, nesting);
    });
}

void TemplateExpander::property(ProjectElement *node, const XMLElement &child, StringList &configurations) {
    const std::string *name = child.attribute("name");
    if (!name || (!child.hasAttribute("value") && !child.hasAttribute("value_win32")))
        return;
    fillConfigurations(configurations);
    if (configurations.empty())
        configurations.push_back("Common");
    const bool isGroup = child.tagName == "propertygroup";
    ProjectElement *target = child.tagName == "solutionproperty" ? templates_.solution : node;
    const std::string configurationText = textOf(child, "configuration");
    const bool perConfiguration = configurationText.find(configurationMacro) != std::string::npos;

    for (const std::string &c : configurations) {
        std::string cfg = replaced(configurationText, configurationMacro, c);
        if (cfg.empty())
            cfg = "Common";
        system_.loadGenericOptions(target, cfg);

        PropertyClass *found = nullptr;
        if (!isGroup) {
            if (*name == "build_output_file_name") {
                const std::string type =
                    system_.getPropertyValue(node, system_.nodeProperties.projectType, "Common").value_or("");
                BuildOutputFileNamePropertyClass *output = system_.nodeProperties.buildOutputFileName;
                if (type == "Executable" || type == "Externally Built Executable") {
                    output->setExecutableMode();
                    found = output;
                } else if (type == "Library" || type == "Externally Built Library") {
                    output->setLibraryMode();
                    found = output;
                }
            } else {
                found = system_.propertyClasses.propertyClass(*name);
            }
        }
        PropertyValueGroupClass *group = nullptr;
        if (!found) {
            group = system_.findGroupForNode(target, cfg, *name, true);
            found = group;
        }
        if (!found) {
            if (*name == "hidden") {
                const std::string value = textOf(child, "value");
                ProjectElement *store = ProjectSystem::findConfiguration(target, cfg);
                if (!store)
                    store = system_.addConfiguration(target, cfg,
                                                     value == "Yes" ? ProjectSystem::PrivateConfigurations
                                                                    : ProjectSystem::PublicConfigurations);
                system_.setAttribute(store, "hidden", value);
            } else {
                warning("Can't find property for attribute '" + *name + "' in " + ProjectSystem::kindTitle(target) +
                        " '" + system_.elementName(target) + "' Configuration '" + cfg + "'");
            }
        } else {
            const ProjectElement *store = ProjectSystem::findConfiguration(target, cfg);
            const std::string *stored = store ? store->attribute(found->name()) : nullptr;
            if (!(stored && !isGroup)) {
                std::string value = stored ? *stored : textOf(child, "value");
                if (lowerCase(textOf(child, "expand")) == "yes")
                    value = system_.expandProjectMacros(target, value, "Common");
                if (group)
                    system_.setGroupValue(target, cfg, group, value);
                else
                    system_.setPropertyValue(target, found, cfg, value);
            }
        }
        if (!perConfiguration)
            break;
    }
}

void TemplateExpander::configuration(const XMLElement &child, StringList &configurations) {
    fillConfigurations(configurations);
    const std::string name = textOf(child, "name");
    const std::string *inherited = child.attribute("inherited_configurations");
    const std::size_t passes = std::max<std::size_t>(configurations.size(), 1);
    for (std::size_t pass = 0; pass < passes; ++pass) {
        const bool listed = pass < configurations.size();
        const std::string c = listed ? configurations[pass] : std::string();
        const std::string configurationName =
            listed ? replaced(name, configurationMacro, c) : replaced(name, configurationMacro + " ", "");
        if (applyConfiguration(configurationName))
            continue;
        if (!inherited) {
            if (!configurations.empty() && !ProjectSystem::findConfiguration(templates_.solution, configurationName))
                system_.addConfiguration(templates_.solution, configurationName, ProjectSystem::PublicConfigurations);
            continue;
        }
        ProjectElement *store = solutionConfiguration(configurationName);
        const std::string value = replaced(*inherited, configurationMacro, c);
        system_.setAttribute(store, "inherited_configurations", value);
        for (const std::string &base : splitAtAny(value, ";"))
            applyConfiguration(base);
    }
}

bool TemplateExpander::applyConfiguration(const std::string &name) {
    const XMLElement *definition =
        templates_.findConfiguration(name, static_cast<std::uint32_t>(system_.platformCode()));
    if (!definition)
        definition = templates_.findConfiguration(name, 0);
    if (!definition)
        return false;
    // Each definition is applied once for a configuration of the template,
    // so that cycles and repeated bases of inheritance end.
    if (applying_ == 0)
        applied_.clear();
    if (!applied_.insert(name).second)
        return true;
    if (applying_ >= maximumNesting) {
        warning("configuration templates inherit more than " + std::to_string(maximumNesting) + " levels deep");
        return true;
    }
    ++applying_;
    ProjectElement *store = solutionConfiguration(name);
    forEachChildElement(*definition, [&](const XMLElement &item) {
        const std::string attributeName = textOf(item, "name");
        const std::string value = textOf(item, "value");
        if (attributeName.empty() || value.empty())
            return;
        if (attributeName == "inherited_configurations") {
            system_.setAttribute(store, attributeName, value);
            for (const std::string &base : splitAtAny(value, ";"))
                applyConfiguration(base);
            return;
        }
        const std::string *current = store->attribute(attributeName);
        if (!current) {
            system_.setAttribute(store, attributeName, value);
        } else if (*current != value) {
            ProjectElement *project = templates_.project;
            ProjectElement *own = ProjectSystem::findConfiguration(project, name);
            if (!own)
                own = system_.addConfiguration(project, name, ProjectSystem::PublicConfigurations);
            system_.setAttribute(own, attributeName, value);
        }
    });
    --applying_;
    return true;
}

void TemplateExpander::folder(ProjectElement *node, const XMLElement &child, int nesting) {
    const std::string name = textOf(child, "name");
    ProjectElement *folder = nullptr;
    for (ProjectElement *e = ProjectSystem::firstChild(node); e && !folder; e = ProjectSystem::nextSibling(e)) {
        if (ProjectSystem::isFolder(e) && system_.elementName(e) == name)
            folder = e;
    }
    if (!folder && child.hasAttribute("path") && !child.hasAttribute("choose")) {
        folder = system_.addFolder(node, name, "");
        system_.setAttribute(folder, "path", textOf(child, "path"));
        system_.setAttribute(folder, "filter", textOf(child, "filter"));
        system_.setAttribute(folder, "recurse", textOf(child, "recurse") == "Yes" ? "Yes" : "No");
        system_.setAttribute(folder, "exclude", textOf(child, "exclude"));
        // Filled from its directories when the tree is finished.
        system_.dynamicFolders.push_back(folder);
    } else if (!folder) {
        folder = system_.addFolder(node, name, textOf(child, "filter"));
    } else {
        const ProjectElement *common = ProjectSystem::findConfiguration(folder, "Common");
        if (!common || !common->hasAttribute("filter"))
            system_.setPropertyValue(folder, system_.nodeProperties.filter, "Common", "");
    }
    StringList none;
    applyChildren(folder, child, none, {}, nesting + 1);
}

void TemplateExpander::file(ProjectElement *node, const XMLElement &child, int nesting) {
    std::string name = textOf(child, "name");
    if (lowerCase(textOf(child, "expand")) != "no")
        name = system_.expandProjectMacros(node, name, "Common");
    const std::string *source = child.attribute("source");
    ProjectElement *file = nullptr;
    if (!source || *source == "EMPTY") {
        if (name.empty())
            return;
        file = ProjectSystem::findFileByPath(node, name);
        if (!file)
            file = system_.addFile(node, name);
    } else {
        if (lowerCase(textOf(definition_, "with_source")) != "yes")
            return;
        file = ProjectSystem::findFileByPath(node, *source);
        if (!file)
            file = system_.addFile(node, *source);
        system_.setName(file, name);
    }
    StringList none;
    applyChildren(file, child, none, {}, nesting + 1);
}

void TemplateExpander::choose(ProjectElement *node, const XMLElement &child, const StringList &configurations,
                              const StringList &choices, int nesting) {
    const std::string chooseName = textOf(child, "name");
    std::string selected = textOf(child, "default");
    for (const std::string &choice : choices) {
        const std::size_t equals = choice.find('=');
        if (choice.substr(0, equals) == chooseName) {
            selected = equals == std::string::npos ? std::string() : choice.substr(equals + 1);
            break;
        }
    }
    const XMLElement *chosen = nullptr;
    forEachChildElement(child, [&](const XMLElement &option) {
        if (!chosen && option.tagName == "choice" && textOf(option, "name") == selected)
            chosen = &option;
    });
    if (!chosen)
        return;
    StringList copy = configurations;
    applyChildren(node, *chosen, copy, {}, nesting + 1);
}

} // namespace

void expandProject(ProjectTemplates &templates, ProjectSystem &system, ProjectElement *solution,
                   ProjectElement *project, XMLElement *templateElement,
                   const StringList &configurations, const StringList &choices,
                   ProjectLoadProgressInterface *progress) {
    if (!project || !templateElement)
        return;
    templates.solution = solution;
    templates.project = project;
    if (const std::string *type = templateElement->attribute("type")) {
        const std::optional<std::string> old =
            ProjectSystem::getOwnPropertyValue(project, system.nodeProperties.projectType, "Common");
        // newProject stores an empty type when it is given none.
        if (old && !old->empty() && *old != *type && progress)
            progress->warning("overriding project type in configuration Common from '" + *old + "' to '" +
                              *type + "'");
        system.setPropertyValue(project, system.nodeProperties.projectType, "Common", *type);
    }
    if (const std::uint32_t target = templateTarget(templateElement))
        system.setProjectTarget(project, target);
    StringList list = configurations;
    TemplateExpander(templates, system, *templateElement, progress).applyChildren(project, *templateElement, list,
                                                                                   choices, 0);
}
