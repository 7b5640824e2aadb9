#include "project/project_macro_source.h"

#include "project/project_system.h"
#include "project/property_group_files.h"
#include "support/file_info.h"
#include "support/normalise_path.h"
#include "support/paths.h"

#include <vector>

const std::array<std::string_view, ProjectMacroSource::builtInCount> ProjectMacroSource::builtInNames = {
    "ProjectNodeName", "FolderName",    "FolderPath",       "ProjectDir",    "ProjectName",
    "SolutionDir",     "SolutionName",  "SolutionFileName", "SolutionPath",  "SolutionExt",
    "InputDir",        "InputName",     "InputFileName",    "InputExt",      "InputPath",
    "InputPathHash",   "RelInputPath",  "RelInputDir",      "Configuration", "ConfigurationHash",
    "OBJ",             "EXE",           "LIB",              "PackageExt",    "StudioDir",
};

namespace {

enum BuiltIn : std::size_t {
    ProjectNodeName, FolderName, FolderPath, ProjectDir, ProjectName,
    SolutionDir, SolutionName, SolutionFileName, SolutionPath, SolutionExt,
    InputDir, InputName, InputFileName, InputExt, InputPath,
    InputPathHash, RelInputPath, RelInputDir, Configuration, ConfigurationHash,
    OBJ, EXE, LIB, PackageExt, StudioDir,
};

constexpr std::array<std::string_view, ProjectMacroSource::Derived::Count> derivedNames = {
    "IntDir", "RootOutDir", "OutDir", "RootRelativeOutDir", "ToolChainDir"};

const std::string *lookUp(const MacroMap &map, std::string_view name) {
    const auto found = map.find(name);
    return found == map.end() ? nullptr : &found->second;
}

}  // namespace

ProjectMacroSource::ProjectMacroSource(ProjectSystem &system, ProjectElement *element,
                                       std::string configuration)
    : system_(system), element_(element), configuration_(std::move(configuration)) {}

const std::string *ProjectMacroSource::findBelow(std::string_view name, int limit) {
    if (limit != beforeGroups) {
        for (int which = limit - 1; which >= 0; --which) {
            if (name == derivedNames[std::size_t(which)]) {
                if (const std::string *value = derived(which))
                    return value;
                break;
            }
        }
        if (system_.mayBeToolMacro(name))
            return lookUp(toolMacros(), name);
        if (name == builtInNames[StudioDir]) {
            if (const std::string *value = builtIn(StudioDir))
                return value;
        }
        if (const std::string *value = groupMacro(name))
            return value;
    }
    for (std::size_t which = 0; which < StudioDir; ++which) {
        if (name == builtInNames[which]) {
            if (const std::string *value = builtIn(which))
                return value;
            break;
        }
    }
    return lookUp(userMacros(), name);
}

const MacroMap &ProjectMacroSource::userMacros() {
    if (!userMacros_) {
        std::string text = system_.getPropertyValue(element_, system_.nodeProperties.macros, configuration_)
                               .value_or(std::string());
        if (system_.macros)
            text = expandMacros(*system_.macros, text);
        userMacros_ = parseMacroList(splitEscaped(text, false));
    }
    return *userMacros_;
}

// The toolchain fills a map that holds everything before it. Filling it
// expands properties whose text may name tool macros again: such an inner
// expansion finds none rather than recursing.
const MacroMap &ProjectMacroSource::toolMacros() {
    static const MacroMap none;
    if (!toolMacros_) {
        if (system_.fillingToolMacros)
            return none;
        MacroMap map = userMacros();
        for (std::size_t which = 0; which < StudioDir; ++which) {
            if (const std::string *value = builtIn(which))
                map[std::string(builtInNames[which])] = *value;
        }
        if (system_.propertyGroupFiles().hasMacros(groupFile())) {
            for (const auto &[name, value] : groupMacros())
                map[name] = value;
        }
        if (const std::string *value = builtIn(StudioDir))
            map[std::string(builtInNames[StudioDir])] = *value;
        system_.fillingToolMacros = true;
        try {
            system_.addToolMacros(element_, configuration_, map);
        } catch (...) {
            system_.fillingToolMacros = false;
            throw;
        }
        system_.fillingToolMacros = false;
        toolMacros_ = std::move(map);
    }
    return *toolMacros_;
}

PropertyValueGroupFile *ProjectMacroSource::groupFile() {
    if (groupFileKnown_)
        return groupFile_;
    groupFileKnown_ = true;
    std::string name =
        system_.getPropertyValue(element_, system_.nodeProperties.propertyGroupsFilePath, configuration_)
            .value_or(std::string());
    if (system_.macros) {
        Limited before(*this, beforeGroups);
        name = expandMacrosWith(*system_.macros, before, name, true, true);
    }
    // A relative name is the project's file, as a command there would take it.
    if (!name.empty() && name != "None" && name.front() != '/') {
        std::string base = system_.elementDirectory(element_);
        if (base.empty())
            base = system_.solutionDirectory();
        if (!base.empty())
            name = base + "/" + name;
    }
    normalisePath(name);
    groupFile_ = system_.findGroupFile(name);
    return groupFile_;
}

const std::string *ProjectMacroSource::groupMacro(std::string_view name) {
    if (!system_.propertyGroupFiles().mayBeGroupMacro(groupFile(), name))
        return nullptr;
    return lookUp(groupMacros(), name);
}

// Choosing the entries reads properties, whose toolchain defaults might
// expand this node's macros again: such an inner expansion sees no group
// macros rather than recursing.
const MacroMap &ProjectMacroSource::groupMacros() {
    static const MacroMap none;
    if (!groupMacros_) {
        if (computingGroupMacros_)
            return none;
        computingGroupMacros_ = true;
        MacroMap map;
        system_.addGroupMacros(groupFile(), element_, configuration_, map);
        groupMacros_ = std::move(map);
        computingGroupMacros_ = false;
    }
    return *groupMacros_;
}

MacroMap ProjectMacroSource::materialize() {
    MacroMap map = toolMacros();
    for (int which = 0; which < Derived::Count; ++which) {
        if (const std::string *value = derived(which))
            map[std::string(derivedNames[std::size_t(which)])] = *value;
    }
    return map;
}

const std::string *ProjectMacroSource::builtIn(std::size_t which) {
    Slot &slot = builtIns_[which];
    if (!slot.done) {
        slot.value = computeBuiltIn(which);
        slot.done = true;
    }
    return slot.value ? &*slot.value : nullptr;
}

std::optional<std::string> ProjectMacroSource::computeBuiltIn(std::size_t which) {
    ProjectElement *element = element_;
    const bool node = element != nullptr;
    const bool fileOrFolder = ProjectSystem::isFile(element) || ProjectSystem::isFolder(element);
    switch (which) {
    case ProjectNodeName:
        return node ? std::optional(system_.elementName(element)) : std::nullopt;
    case FolderName: {
        ProjectElement *above = ProjectSystem::parent(element);
        if (!node || !ProjectSystem::isFolder(above))
            return std::nullopt;
        return system_.elementName(above);
    }
    case FolderPath: {
        if (!node)
            return std::nullopt;
        std::vector<std::string> names;
        for (ProjectElement *above = ProjectSystem::parent(element); above;
             above = ProjectSystem::parent(above)) {
            if (ProjectSystem::isFolder(above))
                names.push_back(system_.elementName(above));
        }
        std::string path;
        for (auto name = names.rbegin(); name != names.rend(); ++name) {
            if (!path.empty())
                path += '/';
            path += *name;
        }
        return path;
    }
    case ProjectDir:
    case ProjectName: {
        ProjectElement *project = ProjectSystem::projectOf(element);
        if (!project)
            return std::nullopt;
        return which == ProjectDir ? system_.fullProjectDirectory(project) : system_.elementName(project);
    }
    case SolutionDir:
    case SolutionName:
    case SolutionFileName:
    case SolutionPath:
    case SolutionExt: {
        const ProjectElement *owner = ProjectSystem::solutionOf(element);
        if (!owner)
            return std::nullopt;
        const FilePath &file = owner->filePath;
        switch (which) {
        case SolutionDir:
            return file.isEmpty() ? std::string() : file.path(true);
        case SolutionName:
            return file.baseName();
        case SolutionFileName:
            return file.fileName();
        case SolutionPath:
            return file.isEmpty() ? std::string() : file.absoluteFilePath();
        default:
            return file.suffix(true);
        }
    }
    case InputDir:
    case InputName:
    case InputFileName:
    case InputExt:
    case InputPath:
    case InputPathHash: {
        if (!fileOrFolder)
            return std::nullopt;
        const std::string path = system_.absoluteFilePath(element, configuration_);
        if (which == InputPath)
            return path;
        if (which == InputPathHash)
            return macroHashText(path);
        const FileInfo input(path);
        if (which == InputDir)
            return path.empty() ? std::string() : input.path();
        if (which == InputName)
            return input.completeBaseName();
        if (which == InputFileName)
            return input.fileName();
        return input.suffix();
    }
    case RelInputPath:
    case RelInputDir: {
        if (!fileOrFolder && !ProjectSystem::isProject(element))
            return std::nullopt;
        const std::string relative = system_.relativeFileName(element, configuration_);
        if (which == RelInputPath)
            return relative;
        return element->nameIsRelative ? directoryOf(relative) : std::string(".");
    }
    case Configuration:
        return configuration_;
    case ConfigurationHash:
        return macroHashText(configuration_);
    case OBJ:
        return system_.objectFileExtension();
    case EXE:
        return system_.executableFileExtension(element, configuration_);
    case LIB:
        return system_.libraryFileExtension();
    case PackageExt:
        return std::string("tbq");
    case StudioDir:
        // Without an install directory the system table's $(StudioDir) stands.
        if (system_.installDirectory.empty())
            return std::nullopt;
        return system_.macros ? expandMacros(*system_.macros, system_.installDirectory)
                              : system_.installDirectory;
    }
    return std::nullopt;
}

const std::string *ProjectMacroSource::derived(int which) {
    Slot &slot = derived_[std::size_t(which)];
    if (slot.done)
        return slot.value ? &*slot.value : nullptr;
    slot.done = true;

    if (which == RootRelativeOutDir) {
        const std::string *rootOutDir = derived(RootOutDir);
        derived(OutDir);
        std::string relative;
        if (rootOutDir && !rootOutDir->empty() && !rawOutDir_.empty() &&
            relativePath(*rootOutDir, rawOutDir_, relative))
            slot.value = std::move(relative);
        return slot.value ? &*slot.value : nullptr;
    }

    const NodeProperties &properties = system_.nodeProperties;
    PropertyClass *property = which == IntDir       ? properties.buildIntermediateDirectory
                              : which == RootOutDir ? properties.buildRootOutputDirectory
                              : which == OutDir     ? properties.buildOutputDirectory
                                                    : properties.buildToolchainDirectory;
    std::string value = system_.getPropertyValue(element_, property, configuration_).value_or(std::string());
    if (system_.macros) {
        Limited before(*this, which);
        value = expandMacrosWith(*system_.macros, before, value, true, true);
    }
    if (which == OutDir)
        rawOutDir_ = value;
    // An empty directory is the project's own.
    const bool directory = which == IntDir || which == OutDir;
    slot.value = directory && value.empty() ? std::string(".") : std::move(value);
    return &*slot.value;
}
