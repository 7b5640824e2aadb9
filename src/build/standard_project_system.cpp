// The toolchain operations in the form that every toolchain starts from, and
// the small helpers of the build logic.

#include "build/standard_project_system.h"

#include "build/builder.h"
#include "support/file_info.h"
#include "support/file_path.h"
#include "support/macro_expansion.h"

namespace {

constexpr std::string_view standardToolMacros[] = {"CLANGTIDY", "CC", "CCPP"};

}  // namespace

StandardProjectSystem::StandardProjectSystem(SystemMacros *macroTable)
    : ProjectSystem(macroTable), toolProperties(propertyClasses) {
    addToolMacroNames(standardToolMacros);
}

// ---- Tools.

void StandardProjectSystem::addToolMacros(ProjectElement *, const std::string &, MacroMap &map) {
    const std::string install = installDirectory;
    const std::string defaults[] = {install + "/llvm/bin/clang-tidy$(HostEXE)",
                                    install + "/bin/cc$(HostEXE)", install + "/bin/cc++$(HostEXE)"};
    for (std::size_t i = 0; i < std::size(standardToolMacros); ++i) {
        const std::string name(standardToolMacros[i]);
        if (map.count(name) || (macros && macros->globalMacros().count(name)))
            continue;
        map[name] = defaults[i];
    }
}

void StandardProjectSystem::selectPlatform(ProjectElement *, const std::string &) {}

void StandardProjectSystem::buildStep(ProjectElement *element, const std::string &configuration, int step,
                                      const std::string &, const std::string &, const StringList &,
                                      Builder *builder, BuildFlags) {
    unavailableStep(element, configuration, step, builder,
                    "error: compiling, assembling, linking and archiving with the " + platformName() +
                        " toolchain are not available yet");
}

void StandardProjectSystem::unavailableStep(ProjectElement *element, const std::string &configuration, int step,
                                            Builder *builder, const std::string &message) {
    if (!builder)
        return;
    const char *verb = step == KindLink      ? "Linking '"
                       : step == KindArchive ? "Archiving '"
                       : step == KindAssembly ? "Assembling '"
                                              : "Compiling '";
    builder->beginStep(element, verb + displayName(element) + "'", configuration, 0);
    builder->reportError(message);
    builder->endStep(element, configuration);
}

// ---- Paths of outputs.

std::string StandardProjectSystem::expandWith(ProjectElement *element, const std::string &text,
                                              const std::string &configuration,
                                              const MacroMap &extra) {
    return expandProjectMacros(element, text, configuration, extra);
}

std::string StandardProjectSystem::expandedValue(ProjectElement *element, PropertyClass *property,
                                                 const std::string &configuration) {
    return getExpandedPropertyValue(element, property, configuration).value_or(std::string());
}

std::string StandardProjectSystem::expandedValue(ProjectElement *element, PropertyClass *property,
                                                 const std::string &configuration,
                                                 const MacroMap &extra) {
    const std::optional<std::string> value = getPropertyValue(element, property, configuration);
    return value ? expandProjectMacros(element, *value, configuration, extra) : std::string();
}

std::string StandardProjectSystem::projectDirectory(ProjectElement *project, const std::string &) {
    return fullProjectDirectory(projectOf(project));
}

std::string StandardProjectSystem::sourcePath(ProjectElement *element,
                                              const std::string &configuration) {
    return absoluteFilePath(element, configuration);
}

std::string StandardProjectSystem::outputFilePath(int step, ProjectElement *element,
                                                  const std::string &configuration) {
    PropertyClass *property = nullptr;
    switch (step) {
    case KindC:
    case KindCpp:
    case KindAssembly:
        property = fileTypeName(element, configuration) == "Preprocess"
                       ? nodeProperties.buildPreprocessOutputFileName
                       : nodeProperties.buildObjectFileName;
        break;
    case KindInput:
        property = toolProperties.externalBuildFileName;
        break;
    case KindLink:
    case KindArchive:
        property = nodeProperties.buildOutputFileName;
        break;
    case KindStage:
        property = toolProperties.stageOutputFilepath;
        break;
    case KindCombine:
        property = toolProperties.combineOutputFilepath;
        break;
    default:
        return {};
    }
    std::optional<std::string> own;
    if (step == KindArchive && !isPropertySet(element, property, configuration, own)) {
        // The property's default follows the mode it was last shown in; a
        // library that names no file of its own is a library all the same.
        return absolutePathFrom(projectDirectory(element, configuration),
                                expandProjectMacros(element, "$(OutDir)/$(ProjectName)$(LIB)", configuration));
    }
    return absolutePathFrom(projectDirectory(element, configuration),
                            expandedValue(element, property, configuration));
}

std::string StandardProjectSystem::objectFilePath(ProjectElement *element,
                                                  const std::string &configuration) {
    return outputFilePath(buildKind(element, configuration, 0), element, configuration);
}

std::string StandardProjectSystem::intermediateFilePath(ProjectElement *element,
                                                        const std::string &configuration,
                                                        const std::string &input,
                                                        const std::string &suffix) {
    const std::string projectDir = projectDirectory(element, configuration);
    std::string directory =
        expandedValue(element, nodeProperties.buildIntermediateDirectory, configuration);
    if (directory.empty())
        directory = directoryOf(absolutePathFrom(projectDir, input));
    const FilePath file(input);
    return absolutePathFrom(projectDir, directory) + "/" + file.baseName(true) + suffix;
}

std::string StandardProjectSystem::dependencyFilePath(ProjectElement *element,
                                                      const std::string &configuration,
                                                      const std::string &output) {
    const std::string named =
        expandedValue(element, nodeProperties.buildDependencyFileName, configuration);
    if (!named.empty())
        return absolutePathFrom(projectDirectory(element, configuration), named);
    return intermediateFilePath(element, configuration, output, ".d");
}

void StandardProjectSystem::appendIntermediateFiles(ProjectElement *, const std::string &, int,
                                                    const std::string &, StringList &) {}

void StandardProjectSystem::linkerInputFiles(ProjectElement *element,
                                             const std::string &configuration, StringList &list) {
    const StringList files = getPropertyList("", element, toolProperties.linkerAdditionalFiles,
                                             configuration, true, false, false);
    const std::string directory = projectDirectory(element, configuration);
    for (const std::string &file : files)
        list.push_back(absolutePathFrom(directory, file));
}

std::string StandardProjectSystem::secondaryLinkOutput(ProjectElement *, const std::string &) {
    return {};
}

void StandardProjectSystem::linkerSymbolFiles(ProjectElement *, const std::string &, StringList &) {}

void StandardProjectSystem::linkerLibraryDirectories(ProjectElement *, const std::string &,
                                                     StringList &) {}

bool StandardProjectSystem::mapFilePath(ProjectElement *element, const std::string &configuration,
                                        const std::string &linkOutput, std::string &path) {
    if (getPropertyValue(element, toolProperties.linkerMapFile, configuration) != "Yes")
        return false;
    const FilePath output(absolutePathFrom(projectDirectory(element, configuration), linkOutput));
    path = output.path() + "/" + output.baseName(true) + ".map";
    return true;
}

bool StandardProjectSystem::linkerScriptInputsChanged(ProjectElement *, const std::string &,
                                                      FileTime) {
    return false;
}

int StandardProjectSystem::precompiledHeaderStep(ProjectElement *, const std::string &) { return 0; }

bool StandardProjectSystem::scanModuleDependencies(ProjectElement *, const std::string &) {
    return false;
}

std::string StandardProjectSystem::moduleNameOf(ProjectElement *element,
                                                const std::string &configuration) {
    return fileNameOnly(element, configuration);
}

std::vector<ProjectElement *> StandardProjectSystem::filePrerequisites(ProjectElement *,
                                                                       const std::string &) {
    return {};
}

bool StandardProjectSystem::isUnityFolder(ProjectElement *element, const std::string &configuration,
                                          bool noUnity) {
    if (noUnity || !isFolder(element))
        return false;
    const std::optional<std::string> name =
        getPropertyValue(element, nodeProperties.unityBuildFileName, configuration);
    return name && !name->empty();
}

void StandardProjectSystem::setDependencyCacheEnabled(bool enabled) {
    dependencyCache_.enabled = enabled;
    dependencyCache_.element = nullptr;
    nodeAnswers_.enabled = enabled;
    forgetNodeAnswers();
}

bool StandardProjectSystem::canCheckSyntax(ProjectElement *, const std::string &) { return false; }

std::string StandardProjectSystem::moduleInterfaceFilePath(ProjectElement *element,
                                                           const std::string &configuration) {
    std::string path = objectFilePath(element, configuration);
    const std::string object = objectFileExtension();
    if (path.size() >= object.size() && path.compare(path.size() - object.size(), object.size(), object) == 0)
        path.resize(path.size() - object.size());
    return path + ".gcm";
}

bool StandardProjectSystem::supportsModuleScan(ProjectElement *, const std::string &) { return false; }
bool StandardProjectSystem::usesRanlib(ProjectElement *, const std::string &) { return false; }
bool StandardProjectSystem::usesModuleMapper(ProjectElement *, const std::string &) { return false; }
bool StandardProjectSystem::usesBrenlowLinker(ProjectElement *, const std::string &) { return false; }

bool StandardProjectSystem::hasOwnValue(ProjectElement *element, PropertyClass *property,
                                        const std::string &configuration,
                                        std::optional<std::string> &value) {
    return isPropertySet(element, property, configuration, value);
}

void StandardProjectSystem::migrateValue(std::string &) {}

void StandardProjectSystem::writeCompilationDatabaseEntry(ProjectElement *, const std::string &,
                                                          std::string &) {}

void StandardProjectSystem::preprocessFile(ProjectElement *element, const std::string &configuration,
                                           Builder *builder, bool, const StringList &, std::string *) {
    if (!builder)
        return;
    builder->beginStep(element, "Preprocessing '" + displayName(element) + "'", configuration, 0);
    builder->reportError("error: preprocessing with the " + platformName() +
                         " toolchain is not available yet");
    builder->endStep(element, configuration);
}

void StandardProjectSystem::preprocessorArguments(ProjectElement *, const std::string &, StringList &) {}

void StandardProjectSystem::checkSyntax(ProjectElement *element, const std::string &configuration,
                                        Builder *builder) {
    if (!builder)
        return;
    builder->beginStep(element, "Checking Syntax '" + displayName(element) + "'", configuration, 0);
    builder->reportError("error: checking syntax with the " + platformName() +
                         " toolchain is not available yet");
    builder->endStep(element, configuration);
}

void StandardProjectSystem::importLinkerOption(ProjectElement *, const std::string &, StringList &) {}

void StandardProjectSystem::appendPreprocessorOptions(ProjectElement *, const std::string &, int,
                                                      const std::string &, StringList &) {}

bool StandardProjectSystem::appendDriverOptions(ProjectElement *, const std::string &, int,
                                                const std::string &, StringList &) {
    return true;
}

void StandardProjectSystem::linkerSymbolDefinitions(ProjectElement *, const std::string &,
                                                    StringList &) {}
