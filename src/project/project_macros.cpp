// The macros of a node: what $(ProjectDir), $(InputPath), $(OutDir) and
// their kin stand for when a property of that node is expanded.

#include "project/macro_expansion.h"
#include "project/project_system.h"
#include "support/file_info.h"
#include "support/paths.h"

std::string ProjectSystem::expandGlobalMacros(const std::string &text) const {
    return macros ? expandMacros(*macros, text) : text;
}

void ProjectSystem::setMacroCacheEnabled(bool enabled) {
    macroCache_.enabled = enabled;
    dropMacroCache();
}

std::string ProjectSystem::expandProjectMacros(ProjectElement *element, const std::string &text,
                                               const std::string &configuration) {
    if (!macros || text.find(macros->macroCharacter()) == std::string::npos)
        return text;
    return expandMacrosWith(*macros, projectMacros(element, configuration), text, true, true);
}

MacroMap ProjectSystem::projectMacros(ProjectElement *element, const std::string &configuration) {
    if (macroCache_.enabled && element && macroCache_.element == element &&
        macroCache_.configuration == configuration)
        return macroCache_.map;

    const std::string userMacros =
        expandGlobalMacros(getPropertyValue(element, nodeProperties.macros, configuration)
                               .value_or(std::string()));
    MacroMap map = parseMacroList(splitEscaped(userMacros, false));

    if (element) {
        map["ProjectNodeName"] = elementName(element);
        ProjectElement *above = parent(element);
        if (isFolder(above))
            map["FolderName"] = elementName(above);
        std::string folderPath;
        for (; above; above = parent(above))
            if (isFolder(above))
                folderPath = folderPath.empty() ? elementName(above)
                                                : elementName(above) + "/" + folderPath;
        map["FolderPath"] = folderPath;
        if (ProjectElement *project = projectOf(element)) {
            map["ProjectDir"] = fullProjectDirectory(project);
            map["ProjectName"] = elementName(project);
        }
        if (const ProjectElement *owner = solutionOf(element)) {
            const FilePath &file = owner->filePath;
            map["SolutionDir"] = file.isEmpty() ? std::string() : file.path(true);
            map["SolutionName"] = file.baseName();
            map["SolutionFileName"] = file.fileName();
            map["SolutionPath"] = file.isEmpty() ? std::string() : file.absoluteFilePath();
            map["SolutionExt"] = file.suffix(true);
        }
    }

    if (isFile(element) || isFolder(element)) {
        const std::string path = absoluteFilePath(element, configuration);
        const FileInfo input(path);
        map["InputDir"] = path.empty() ? std::string() : input.path();
        map["InputName"] = input.completeBaseName();
        map["InputFileName"] = input.fileName();
        map["InputExt"] = input.suffix();
        map["InputPath"] = path;
        map["InputPathHash"] = macroHashText(path);
    }

    if (isFile(element) || isFolder(element) || isProject(element)) {
        const std::string relative = relativeFileName(element, configuration);
        map["RelInputPath"] = relative;
        map["RelInputDir"] = element->nameIsRelative ? directoryOf(relative) : std::string(".");
    }

    map["Configuration"] = configuration;
    map["ConfigurationHash"] = macroHashText(configuration);
    map["OBJ"] = objectFileExtension();
    map["EXE"] = executableFileExtension(element, configuration);
    map["LIB"] = libraryFileExtension();
    map["PackageExt"] = "tbq";

    // Without an install directory the system table's $(StudioDir) stands.
    if (!installDirectory.empty())
        map["StudioDir"] = expandGlobalMacros(installDirectory);

    addToolMacros(element, configuration, map);

    const auto expandedProperty = [&](PropertyClass *property) {
        const std::string value =
            getPropertyValue(element, property, configuration).value_or(std::string());
        return macros ? expandMacrosWith(*macros, map, value, true, true) : value;
    };
    const std::string intDir = expandedProperty(nodeProperties.buildIntermediateDirectory);
    map["IntDir"] = intDir.empty() ? "." : intDir;
    const std::string rootOutDir = expandedProperty(nodeProperties.buildRootOutputDirectory);
    map["RootOutDir"] = rootOutDir;
    const std::string outDir = expandedProperty(nodeProperties.buildOutputDirectory);
    map["OutDir"] = outDir.empty() ? "." : outDir;
    std::string rootRelative;
    if (!rootOutDir.empty() && !outDir.empty() && relativePath(rootOutDir, outDir, rootRelative))
        map["RootRelativeOutDir"] = rootRelative;
    map["ToolChainDir"] = expandedProperty(nodeProperties.buildToolchainDirectory);

    if (macroCache_.enabled && element) {
        macroCache_.element = element;
        macroCache_.configuration = configuration;
        macroCache_.map = map;
    }
    return map;
}
