// Reading project templates: the files of a list, the built-in text, and the
// sorted lists of project and configuration definitions.

#include "project/project_templates.h"

#include "project/project_load_progress_interface.h"
#include "project/xml/xml_element.h"
#include "support/expand_wildcards.h"
#include "support/macro_expansion.h"
#include "support/text_split.h"

#include <algorithm>
#include <cstdlib>

const char *const builtInProjectTemplates =
    "<!DOCTYPE Project_Templates_File><projects>"
    "<project caption = \"(Other Projects)\" name = \"Combining\" description = \"A project for "
    "running a custom build when files have changed.\" type = \"Combining\" template_name = "
    "\"COMBINING\" template_target = \"0\">"
    "<configuration name=\"Common\"/><property name=\"combine_output_filepath\"/><property "
    "name=\"combine_command\"/><property name=\"combine_command_wd\"/><folder name=\"Source "
    "Files\"/></project>"
    "<project caption = \"(Other Projects)\" name = \"Staging\" description = \"A project for "
    "copying files to a target directory.\" type = \"Staging\" template_name = \"STAGING\" "
    "template_target = \"0\">"
    "<configuration name = \"Common\" /><property name = \"stage_output_filepath\" /><property "
    "name = \"stage_command\" /><property name = \"stage_command_wd\" /><folder name = \"Source "
    "Files\" /></project>"
    "</projects>";

namespace {

bool byName(const ProjectTemplateNode &a, const ProjectTemplateNode &b) { return a.name < b.name; }

// The definitions of a file's tree, in document order: projects with a
// template name, and configurations inside a <configurations> element.
void collect(XMLElement *root, ProjectTemplateNodeList &projects,
             ProjectTemplateNodeList &configurations) {
    std::vector<XMLNode *> pending{root};
    while (!pending.empty()) {
        XMLNode *node = pending.back();
        pending.pop_back();
        XMLElement *element = node->toElement();
        if (!element)
            continue;
        if (element->tagName == "project") {
            const std::string *name = element->attribute("template_name");
            if (name && !name->empty())
                projects.push_back({*name, element});
        } else if (element->tagName == "configuration" && element->parent) {
            const XMLElement *parent = element->parent->toElement();
            const std::string *name = element->attribute("name");
            if (parent && parent->tagName == "configurations" && name)
                configurations.push_back({*name, element});
        }
        // Children go on the stack last first, so that they come out in order.
        std::vector<XMLNode *> children;
        for (XMLNode *child = element->firstChild; child; child = child->nextSibling)
            children.push_back(child);
        pending.insert(pending.end(), children.rbegin(), children.rend());
    }
}

XMLElement *find(const ProjectTemplateNodeList &list, const std::string &name,
                 std::uint32_t target) {
    auto entry = std::lower_bound(list.begin(), list.end(), ProjectTemplateNode{name, nullptr}, byName);
    for (; entry != list.end() && entry->name == name; ++entry) {
        if (target == 0 || templateTarget(entry->element) == target)
            return entry->element;
    }
    return nullptr;
}

} // namespace

std::uint32_t templateTarget(const XMLElement *element) {
    const std::string *text = element ? element->attribute("template_target") : nullptr;
    return text ? static_cast<std::uint32_t>(std::strtoul(text->c_str(), nullptr, 0)) : 0;
}

ProjectTemplateFile::ProjectTemplateFile(const MacroTable *macroTable, const std::string &source,
                                         Source kind)
    : XMLPP2(macroTable) {
    if (kind == FromText)
        loadText(source, false);
    else
        load(source, std::string(), false);
}

ProjectTemplates::ProjectTemplates(const MacroTable &macros, const std::string &fileList) {
    for (const std::string &item : splitAtAny(expandMacros(macros, fileList), ";")) {
        std::vector<FilePath> paths;
        expandWildcards(item, paths);
        for (const FilePath &path : paths)
            files.push_back(std::make_unique<ProjectTemplateFile>(&macros, path.absoluteFilePath()));
    }
    files.push_back(std::make_unique<ProjectTemplateFile>(&macros, builtInProjectTemplates,
                                                          ProjectTemplateFile::FromText));
    for (const auto &file : files) {
        if (file->root)
            collect(file->root, projectTemplates, configurationTemplates);
    }
    // Of equal names the first read comes first: an installed template is
    // found before a built-in one.
    std::stable_sort(projectTemplates.begin(), projectTemplates.end(), byName);
    std::stable_sort(configurationTemplates.begin(), configurationTemplates.end(), byName);
}

ProjectTemplates::~ProjectTemplates() = default;

void ProjectTemplates::report(const std::string &) {}

XMLElement *ProjectTemplates::findTemplate(const std::string &name, std::uint32_t target) const {
    return find(projectTemplates, name, target);
}

XMLElement *ProjectTemplates::findConfiguration(const std::string &name, std::uint32_t target) const {
    return find(configurationTemplates, name, target);
}

void ProjectTemplates::checkDuplicates() {
    const auto check = [this](const ProjectTemplateNodeList &list, const char *what) {
        for (std::size_t i = 1; i < list.size(); ++i) {
            if (list[i].name == list[i - 1].name &&
                templateTarget(list[i].element) == templateTarget(list[i - 1].element))
                report(std::string("duplicate ") + what + " '" + list[i].name + "'");
        }
    };
    check(projectTemplates, "template_name");
    check(configurationTemplates, "configuration");
}

StringList ProjectTemplates::templateNames() const {
    StringList names;
    for (const ProjectTemplateNode &node : projectTemplates) {
        if (names.empty() || names.back() != node.name)
            names.push_back(node.name);
    }
    return names;
}

void MyProjectTemplates::report(const std::string &text) {
    if (progress_)
        progress_->warning(text);
}
