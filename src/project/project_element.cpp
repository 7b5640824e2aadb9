#include "project/project_element.h"

#include "project/tree_walk.h"

ProjectElement::ProjectElement(std::string_view tag, ProjectSystem *system, SystemMacros *macroTable)
    : XMLElement(tag), nodeKind(kindOfTag(tag)), projectSystem(system), macros(macroTable) {
    setClassMark(classMark);
}

ProjectElement::~ProjectElement() = default;

ProjectElement::NodeKind ProjectElement::kindOfTag(std::string_view tag) {
    if (tag == "configuration")
        return Configuration;
    if (tag == "project")
        return Project;
    if (tag == "folder")
        return Folder;
    if (tag == "file")
        return File;
    return Solution;
}

std::string ProjectElement::configurationKey(const ProjectElement *configuration) {
    if (const std::string *name = configuration->attribute("Name"); name && !name->empty())
        return *name;
    const std::string *fileName = configuration->attribute("file_name");
    if (!fileName) {
        if (!configuration->hasAttribute("file_name"))
            return "<NULL>";
        return {};
    }
    const size_t slash = fileName->rfind('/');
    return slash == std::string::npos ? *fileName : fileName->substr(slash + 1);
}

void ProjectElement::mapConfigurations(ProjectElement *root) {
    for (XMLNode *node = root; node; node = nextInSubtree(node, root, true)) {
        ProjectElement *element = from(node);
        if (!element || element->nodeKind != Configuration)
            continue;
        if (ProjectElement *owner = from(element->parent))
            owner->configurations.emplace(configurationKey(element), element);
    }
}
