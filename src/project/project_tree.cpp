// Changes to the tree, look-ups over it, and the maps of projects and
// solutions.

#include "project/project_load_progress_interface.h"
#include "project/project_system.h"
#include "project/tree_walk.h"
#include "support/file_info.h"
#include "support/file_utils.h"
#include "support/paths.h"
#include "support/text_split.h"

#include <algorithm>
#include <cctype>

namespace {

// Preorder over the ProjectElements of a subtree; `descend` false passes over
// the children of the current node.
ProjectElement *nextElement(ProjectElement *element, const ProjectElement *root, bool descend = true) {
    XMLNode *node = nextInSubtree(element, root, descend);
    while (node && !ProjectElement::from(node))
        node = nextInSubtree(node, root, true);
    return ProjectElement::from(node);
}

bool subtreeHasProjectsOrSolutions(ProjectElement *root) {
    for (ProjectElement *e = root; e; e = nextElement(e, root))
        if (e->nodeKind == ProjectElement::Project || e->nodeKind == ProjectElement::Solution)
            return true;
    return false;
}

} // namespace

// ---- Tree changes.

ProjectElement *ProjectSystem::createElement(std::string_view tag) {
    return new ProjectElement(tag, this, macros);
}

void ProjectSystem::addChild(ProjectElement *parentElement, ProjectElement *child) {
    if (!parentElement || !child)
        return;
    parentElement->appendChild(child);
    if (isConfiguration(child))
        parentElement->configurations.emplace(elementName(child), child);
    markModified(parentElement);
}

void ProjectSystem::removeChild(ProjectElement *parentElement, ProjectElement *child) {
    if (!parentElement || !child)
        return;
    parentElement->removeChild(child);
    if (isConfiguration(child)) {
        const std::string key = elementName(child);
        auto entry = parentElement->configurations.find(key);
        if (entry != parentElement->configurations.end() && entry->second == child) {
            parentElement->configurations.erase(entry);
            // A second configuration of the name now comes first.
            for (ProjectElement *e = firstChild(parentElement); e; e = nextSibling(e)) {
                if (isConfiguration(e) && elementName(e) == key) {
                    parentElement->configurations.emplace(key, e);
                    break;
                }
            }
        }
        if (isSolution(parentElement))
            rebuildInherited(parentElement);
    }
    markModified(parentElement);
    dropMacroCache();
    // The maps must not keep pointers into a tree that is no longer ours.
    if (subtreeHasProjectsOrSolutions(child))
        mapProjects();
}

ProjectElement *ProjectSystem::findConfiguration(ProjectElement *element, const std::string &name,
                                                 bool searchParents) {
    for (; element; element = searchParents ? parent(element) : nullptr) {
        auto entry = element->configurations.find(name);
        if (entry != element->configurations.end())
            return entry->second;
    }
    return nullptr;
}

ProjectElement *ProjectSystem::addConfiguration(ProjectElement *element, const std::string &name,
                                                int mode) {
    if (!element)
        return nullptr;
    ProjectElement *configuration = createElement("configuration");
    configuration->XMLElement::setAttribute("Name", name);
    if (mode == PrivateConfigurations)
        configuration->XMLElement::setAttribute("hidden", "Yes");
    addChild(element, configuration);
    if (mode == LoaderConfigurations)
        initialiseNewConfiguration(configuration);
    return configuration;
}

ProjectElement *ProjectSystem::addFolder(ProjectElement *parentElement, const std::string &name,
                                         const std::string &filter) {
    if (!parentElement)
        return nullptr;
    ProjectElement *folder = createElement("folder");
    folder->XMLElement::setAttribute("Name", name);
    if (!filter.empty())
        folder->XMLElement::setAttribute("filter", filter);
    addChild(parentElement, folder);
    return folder;
}

ProjectElement *ProjectSystem::addFile(ProjectElement *parentElement, const std::string &path) {
    if (!parentElement)
        return nullptr;
    ProjectElement *target = parentElement;
    if (isProject(parentElement)) {
        std::string extension = FileInfo(path).suffix();
        std::transform(extension.begin(), extension.end(), extension.begin(),
                       [](unsigned char c) { return char(std::tolower(c)); });
        for (ProjectElement *e = firstChild(parentElement); e; e = nextSibling(e)) {
            if (!isFolder(e))
                continue;
            std::optional<std::string> filter = attribute(e, "filter");
            if (!filter)
                filter = getPropertyValue(e, nodeProperties.filter, "Common");
            const StringList patterns = splitAtAny(filter.value_or(""), ",;");
            if (std::find(patterns.begin(), patterns.end(), extension) != patterns.end()) {
                target = e;
                break;
            }
        }
    }
    ProjectElement *file = createElement("file");
    file->XMLElement::setAttribute("file_name", path);
    addChild(target, file);
    return file;
}

ProjectElement *ProjectSystem::newSolution(const std::string &name, const std::string &directory,
                                           int target) {
    close();
    trackingChanges = true;
    solution = createElement("solution");
    solution->XMLElement::setAttribute("Name", name);
    solution->XMLElement::setAttribute("version", "2");
    if (target != 0)
        solution->XMLElement::setAttribute("target", std::to_string(target));
    solution->filePath = FilePath(absolutePathOf(directory + "/" + name + ".tbp"));
    if (solution->filePath.exists())
        solution->fileTime = solution->filePath.lastModified();
    makeDirectories(solution->filePath.path());
    mapProjects();
    return solution;
}

ProjectElement *ProjectSystem::newProject(ProjectElement *solutionElement, const std::string &name,
                                          const std::string &directory, const std::string &type) {
    if (!solutionElement)
        return nullptr;
    ProjectElement *project = createElement("project");
    project->XMLElement::setAttribute("Name", name);
    addChild(solutionElement, project);
    addConfiguration(project, "Common", PublicConfigurations);
    std::string projectDirectory = directory;
    const ProjectElement *owner = solutionOf(solutionElement);
    if (!directory.empty() && owner && !owner->filePath.isEmpty()) {
        std::string relative;
        if (relativePath(owner->filePath.path(true), directory, relative))
            projectDirectory = relative;
    }
    if (!projectDirectory.empty())
        setPropertyValue(project, nodeProperties.projectDirectory, "Common", projectDirectory);
    setPropertyValue(project, nodeProperties.projectType, "Common", type);
    mapProjects();
    return project;
}

// ---- Look-ups.

ProjectElement *ProjectSystem::findProject(ProjectElement *element, const std::string &name) {
    for (ProjectElement *s = solutionOf(element); s; s = solutionOf(parent(s))) {
        auto entry = s->projects.find(name);
        if (entry != s->projects.end())
            return entry->second;
    }
    return nullptr;
}

ProjectElement *ProjectSystem::findSolution(const std::string &name) {
    for (ProjectElement *s : allSolutions)
        if (elementName(s) == name)
            return s;
    return nullptr;
}

ProjectElement *ProjectSystem::findElementByName(ProjectElement *element, const std::string &name) {
    for (ProjectElement *e = element; e; e = nextElement(e, element))
        if (elementName(e) == name)
            return e;
    return nullptr;
}

ProjectElement *ProjectSystem::findFileByPath(ProjectElement *element, const std::string &path) {
    for (ProjectElement *e = element; e; e = nextElement(e, element)) {
        if (!isFile(e))
            continue;
        if (const std::string *fileName = e->attribute("file_name"); fileName && *fileName == path)
            return e;
    }
    return nullptr;
}

ProjectElement *ProjectSystem::findFileOfType(ProjectElement *element,
                                              const std::string &configuration,
                                              const std::string &type) {
    for (ProjectElement *e = element; e; e = nextElement(e, element)) {
        if (isFile(e) && fileTypeName(e, configuration) == type &&
            getPropertyValue(e, nodeProperties.buildExcludeFromBuild, configuration) == "No")
            return e;
    }
    return nullptr;
}

std::vector<ProjectElement *> ProjectSystem::filesOf(ProjectElement *element) {
    std::vector<ProjectElement *> files;
    for (ProjectElement *e = element; e; e = nextElement(e, element))
        if (isFile(e))
            files.push_back(e);
    return files;
}

int ProjectSystem::countProjects(ProjectElement *element) {
    int count = 0;
    for (ProjectElement *e = element; e; e = nextElement(e, element))
        count += isProject(e);
    return count;
}

int ProjectSystem::countFiles(ProjectElement *element) {
    int count = 0;
    for (ProjectElement *e = element; e; e = nextElement(e, element, e == element || isFolder(e)))
        count += isFile(e);
    return count;
}

bool ProjectSystem::isModified(ProjectElement *element, bool acrossSolutions) {
    for (ProjectElement *e = element; e;) {
        const bool nested = e != element && isSolution(e);
        if (nested && !acrossSolutions) {
            e = nextElement(e, element, false);
            continue;
        }
        if (e->modified)
            return true;
        e = nextElement(e, element);
    }
    return false;
}

void ProjectSystem::clearModified(ProjectElement *element, bool acrossSolutions) {
    for (ProjectElement *e = element; e;) {
        const bool nested = e != element && isSolution(e);
        if (nested && !acrossSolutions) {
            e = nextElement(e, element, false);
            continue;
        }
        e->modified = false;
        e = nextElement(e, element);
    }
}

void ProjectSystem::invalidatePaths(ProjectElement *element) {
    for (ProjectElement *e = element; e; e = nextElement(e, element))
        e->pathsValid = false;
}

// ---- Maps of projects and solutions.

void ProjectSystem::mapProjects(ProjectLoadProgressInterface *progress) {
    allSolutions.clear();
    projectNames.clear();
    solutionNames.clear();
    if (!solution)
        return;
    const int total = progress ? countProjects(solution) : 0;
    int done = 0;
    for (ProjectElement *e = solution; e; e = nextElement(e, solution))
        if (isSolution(e))
            e->projects.clear();
    for (ProjectElement *e = solution; e; e = nextElement(e, solution)) {
        if (isSolution(e) && e != solution) {
            allSolutions.push_back(e);
            rebuildInherited(e);
            continue;
        }
        if (!isProject(e))
            continue;
        const std::string name = elementName(e);
        if (progress) {
            progress->beginTask("Mapping project " + name, 0);
            progress->setProgress(++done, total);
            progress->endTask();
        }
        std::string chain;
        for (ProjectElement *above = parent(e); above; above = parent(above)) {
            if (!isSolution(above))
                continue;
            above->projects.emplace(chain.empty() ? name : name + "(" + chain + ")", e);
            const std::string solutionName = elementName(above);
            chain = chain.empty() ? solutionName : solutionName + "," + chain;
        }
    }
    allSolutions.push_back(solution);
    rebuildInherited(solution);
    for (const auto &entry : solution->projects)
        projectNames.push_back(entry.first);
    for (ProjectElement *s : allSolutions)
        solutionNames.push_back(elementName(s));
    std::sort(solutionNames.begin(), solutionNames.end());
}

void ProjectSystem::rebuildInherited(ProjectElement *solutionElement) {
    if (!solutionElement)
        return;
    solutionElement->inherited.clear();
    for (const auto &[name, configuration] : solutionElement->configurations) {
        const std::string *list = configuration->attribute("inherited_configurations");
        if (configuration->hasAttribute("inherited_configurations"))
            solutionElement->inherited[name] = splitAtAny(list ? *list : std::string(), ";");
    }
}
