// The resolved paths of nodes. They are worked out once and kept on the
// node until something they depend on changes.

#include "project/project_system.h"
#include "support/file_info.h"
#include "support/paths.h"

namespace {

// The directory of the file of the solution around element, else of the
// root solution; empty if neither was read from a file.
std::string solutionFileDirectory(ProjectElement *element, const ProjectElement *root) {
    const ProjectElement *s = ProjectSystem::solutionOf(element);
    if (!s || s->filePath.isEmpty())
        s = root;
    return s && !s->filePath.isEmpty() ? s->filePath.path(true) : std::string();
}

void clearPaths(ProjectElement *element) {
    element->filePath = FilePath();
    element->baseDirectory.clear();
    element->relativeName.clear();
    element->pathsConfiguration.clear();
    element->insideBaseDirectory = false;
    element->nameHasMacros = false;
    element->nameIsRelative = false;
}

} // namespace

void ProjectSystem::resolvePaths(ProjectElement *element, const std::string &configuration) {
    if (!element)
        return;
    if (element->pathsValid &&
        (!element->nameHasMacros || element->pathsConfiguration == configuration))
        return;

    if (isFile(element) || (isFolder(element) && element->hasAttribute("file_name"))) {
        ProjectElement *project = projectOf(element);
        element->baseDirectory =
            project ? fullProjectDirectory(project) : solutionFileDirectory(element, solution);
        const std::string &base = element->baseDirectory;

        std::string name;
        attribute(element, "file_name", name);
        element->nameHasMacros = name.find("$(") != std::string::npos;
        element->pathsConfiguration.clear();
        if (element->nameHasMacros) {
            ProjectElement *context = project ? project : solutionOf(element);
            std::string expanded = expandProjectMacros(context, name, configuration);
            // A name whose macros all stayed unknown is no name.
            name = expanded == name ? std::string() : std::move(expanded);
            element->pathsConfiguration = configuration;
        }
        element->relativeName = name;
        element->nameIsRelative = false;
        element->insideBaseDirectory = false;
        if (name.empty()) {
            element->pathsConfiguration.clear();
            element->filePath = FilePath();
            element->pathsValid = false;
            return;
        }

        std::string fullName;
        if (name.front() == '/') {
            fullName = name;
            std::string relative;
            if (!base.empty() && relativeFilePath(base, name, relative))
                element->relativeName = relative;
        } else {
            fullName = base.empty() ? name : base + "/" + name;
            element->nameIsRelative = true;
        }
        element->filePath = FilePath(fullName);

        // A relative name that never goes up stays inside the base; only
        // the others need the comparison of paths.
        const bool goesUp = name == ".." || name.starts_with("../") ||
                            name.find("/../") != std::string::npos || name.ends_with("/..");
        if (element->nameIsRelative && !goesUp) {
            element->insideBaseDirectory = !base.empty();
        } else {
            const std::string directory = element->filePath.path(true);
            std::string relative;
            element->insideBaseDirectory =
                !base.empty() &&
                (FilePath(directory) == FilePath(base) ||
                 (relativePath(base, directory, relative) && !relative.starts_with("..")));
        }
        element->pathsValid = true;
        return;
    }

    if (isProject(element)) {
        clearPaths(element);
        const std::string solutionDirectoryText = solutionFileDirectory(element, solution);
        std::string directory;
        if (const ProjectElement *common = findConfiguration(element, "Common"))
            attribute(common, "project_directory", directory);
        if (directory.empty()) {
            element->baseDirectory = solutionDirectoryText;
        } else {
            directory = expandGlobalMacros(directory);
            if (directory.front() != '/' && !solutionDirectoryText.empty())
                directory = solutionDirectoryText + "/" + directory;
            element->baseDirectory = FilePath(directory).text();
        }
        element->pathsValid = true;
        return;
    }

    // A solution's file path is set when it is read.
    if (isSolution(element))
        return;

    clearPaths(element);
    element->pathsValid = true;
}

std::string ProjectSystem::absoluteFilePath(ProjectElement *element, const std::string &configuration) {
    resolvePaths(element, configuration);
    if (!element || element->filePath.isEmpty())
        return {};
    return element->filePath.absoluteFilePath();
}

std::string ProjectSystem::fileDirectory(ProjectElement *element, const std::string &configuration,
                                         bool absolute) {
    resolvePaths(element, configuration);
    if (!element || element->filePath.isEmpty())
        return {};
    return element->filePath.path(absolute);
}

std::string ProjectSystem::fileBaseName(ProjectElement *element, const std::string &configuration,
                                        bool complete) {
    resolvePaths(element, configuration);
    return element ? element->filePath.baseName(complete) : std::string();
}

std::string ProjectSystem::fileExtension(ProjectElement *element, const std::string &configuration,
                                         bool complete) {
    resolvePaths(element, configuration);
    return element ? element->filePath.suffix(complete) : std::string();
}

std::string ProjectSystem::fileNameOnly(ProjectElement *element, const std::string &configuration) {
    resolvePaths(element, configuration);
    return element ? element->filePath.fileName() : std::string();
}

std::string ProjectSystem::relativeFileName(ProjectElement *element,
                                            const std::string &configuration) {
    resolvePaths(element, configuration);
    return element ? element->relativeName : std::string();
}

std::string ProjectSystem::fullProjectDirectory(ProjectElement *project) {
    if (!isProject(project))
        return {};
    resolvePaths(project, "Common");
    return project->baseDirectory;
}

std::string ProjectSystem::solutionDirectory() const {
    return solution && !solution->filePath.isEmpty() ? solution->filePath.path(true) : std::string();
}

std::string ProjectSystem::elementDirectory(ProjectElement *element) {
    if (isFile(element) || isFolder(element))
        return fullProjectDirectory(projectOf(element));
    if (isProject(element))
        return fullProjectDirectory(element);
    if (isSolution(element))
        return element->filePath.isEmpty() ? std::string() : element->filePath.path(true);
    return {};
}
