#pragma once

#include "project/build_output_file_name_property_class.h"
#include "project/filter_property_class.h"
#include "project/macro_property_class.h"
#include "project/project_property_class.h"
#include "project/property_class.h"

#include <array>
#include <memory>
#include <string>
#include <vector>

class PropertyClassMap;

// The standard property table: the attribute names that every toolchain
// knows. It comes in two parts, each of which creates its classes, owns them
// and enters them in a project system's class map. Each member points to the
// class of the row of that name; the numbered families have one class per
// instance, the first with the plain name and the others with 1 to 3 behind.

// Node, folder and project properties, with the build macro descriptions.
struct NodeProperties {
    explicit NodeProperties(PropertyClassMap &map);
    NodeProperties(const NodeProperties &) = delete;
    NodeProperties &operator=(const NodeProperties &) = delete;

    // The project types of the toolchain; the help text lists them.
    void setProjectTypes(const std::vector<std::string> &types);
    // The file types of the toolchain, behind "Default".
    void setFileTypes(const std::vector<std::string> &types);

    // Node and file information
    PropertyClass *dateCreated = nullptr;
    PropertyClass *dateModified = nullptr;
    PropertyClass *platform = nullptr;
    PropertyClass *target = nullptr;
    PropertyClass *fullPath = nullptr;
    PropertyClass *relativePath = nullptr;
    PropertyClass *nodeName = nullptr;
    PropertyClass *hidden = nullptr;
    PropertyClass *fileName = nullptr;
    PropertyClass *fileCodec = nullptr;
    PropertyClass *fileOpenWith = nullptr;
    PropertyClass *fileType = nullptr;
    PropertyClass *fileFlag = nullptr;
    PropertyClass *projectFlag = nullptr;
    PropertyClass *solutionFlag = nullptr;
    PropertyClass *name = nullptr;
    // Folders
    PropertyClass *path = nullptr;
    PropertyClass *recurse = nullptr;
    PropertyClass *exclude = nullptr;
    PropertyClass *unityBuildFileName = nullptr;
    PropertyClass *unityBuildExcludeFilter = nullptr;
    // Projects and build
    PropertyClass *projectType = nullptr;
    PropertyClass *projectDirectory = nullptr;
    PropertyClass *fullProjectDirectory = nullptr;
    PropertyClass *projectDependencies = nullptr;
    PropertyClass *projectCanBuildInParallel = nullptr;
    PropertyClass *macros = nullptr;
    PropertyClass *packageDependencies = nullptr;
    PropertyClass *packageDirectory = nullptr;
    PropertyClass *batchBuildConfigurations = nullptr;
    PropertyClass *inheritedConfigurations = nullptr;
    PropertyClass *projectInhibitIndexing = nullptr;
    PropertyClass *sourceCodeControlDirectory = nullptr;
    PropertyClass *codeCompletionOptions = nullptr;
    PropertyClass *environmentVariables = nullptr;
    PropertyClass *compilationDatabaseFile = nullptr;
    PropertyClass *generateCompilationDatabaseFile = nullptr;
    PropertyClass *buildToolchainDirectory = nullptr;
    PropertyClass *buildTreatWarningsAsErrors = nullptr;
    PropertyClass *buildSuppressWarnings = nullptr;
    PropertyClass *buildIntermediateDirectory = nullptr;
    PropertyClass *buildOutputDirectory = nullptr;
    PropertyClass *buildRootOutputDirectory = nullptr;
    PropertyClass *buildObjectFileName = nullptr;
    PropertyClass *buildPreprocessOutputFileName = nullptr;
    PropertyClass *buildQuietly = nullptr;
    PropertyClass *buildDebugInformation = nullptr;
    PropertyClass *buildExcludeFromBuild = nullptr;
    PropertyClass *buildAlwaysRebuild = nullptr;
    PropertyClass *propertyGroupsFilePath = nullptr;
    ProjectPropertyClass *buildGenerateDependencyFile = nullptr;
    PropertyClass *buildDependencyFileName = nullptr;
    PropertyClass *buildGenericOptionsFileName = nullptr;
    PropertyClass *propertiesFilter = nullptr;
    PropertyClass *buildRemoveUnusedSymbols = nullptr;
    PropertyClass *inputsFile = nullptr;
    PropertyClass *inputsOrder = nullptr;
    PropertyClass *deleteIntermediateDirectory = nullptr;
    FilterPropertyClass *filter = nullptr;
    BuildOutputFileNamePropertyClass *buildOutputFileName = nullptr;

    // The macros that the builder sets for every node, such as
    // $(Configuration) and $(ProjectDir).
    std::vector<MacroPropertyClass *> buildMacros;

    // Every class of this part, in creation order.
    std::vector<std::unique_ptr<PropertyClass>> objects;
};

// The properties of the build tools and steps, with the descriptions of the
// macros that single commands see.
struct ToolProperties {
    explicit ToolProperties(PropertyClassMap &map);
    ToolProperties(const ToolProperties &) = delete;
    ToolProperties &operator=(const ToolProperties &) = delete;

    // Staging projects
    PropertyClass *stageOutputFilepath = nullptr;
    PropertyClass *stageCommand = nullptr;
    PropertyClass *stageCommandWd = nullptr;
    PropertyClass *stageSetReadonly = nullptr;
    PropertyClass *stagePostBuildCommand = nullptr;
    PropertyClass *stagePostBuildCommandWd = nullptr;
    PropertyClass *stageOutputFilepathReplace = nullptr;
    // Combining projects
    PropertyClass *combineOutputFilepath = nullptr;
    PropertyClass *combineCommand = nullptr;
    PropertyClass *combineCommandWd = nullptr;
    PropertyClass *combineSetReadonly = nullptr;
    // User build steps
    PropertyClass *preBuildCommand = nullptr;
    PropertyClass *preBuildCommandWd = nullptr;
    PropertyClass *preBuildCommandControl = nullptr;
    PropertyClass *postBuildCommand = nullptr;
    PropertyClass *postBuildCommandWd = nullptr;
    PropertyClass *postBuildCommandControl = nullptr;
    PropertyClass *compilePreBuildCommand = nullptr;
    PropertyClass *compilePreBuildCommandOutputFileName = nullptr;
    PropertyClass *compilePreBuildCommandWd = nullptr;
    PropertyClass *compilePostBuildCommand = nullptr;
    PropertyClass *compilePostBuildCommandWd = nullptr;
    PropertyClass *linkerPreBuildCommand = nullptr;
    PropertyClass *linkerPreBuildCommandOutputFileName = nullptr;
    PropertyClass *linkerPreBuildCommandWd = nullptr;
    PropertyClass *linkerPatchBuildCommand = nullptr;
    PropertyClass *linkerPatchBuildCommandWd = nullptr;
    PropertyClass *linkerPostBuildCommand = nullptr;
    PropertyClass *linkerPostBuildCommandWd = nullptr;
    PropertyClass *linkerPostBuildCommandOutputFile = nullptr;
    PropertyClass *archivePostBuildCommand = nullptr;
    PropertyClass *archivePostBuildCommandWd = nullptr;
    // Linking
    PropertyClass *linkIncludeStandardLibraries = nullptr;
    PropertyClass *linkStandardLibrariesDirectory = nullptr;
    PropertyClass *linkSymbolDefinitions = nullptr;
    PropertyClass *linkerKeepSymbols = nullptr;
    PropertyClass *linkerAdditionalFiles = nullptr;
    PropertyClass *linkerAdditionalOptions = nullptr;
    PropertyClass *linkerAdditionalOptionsFromFile = nullptr;
    PropertyClass *linkerMemoryMapFile = nullptr;
    PropertyClass *linkerMemoryMapMacros = nullptr;
    PropertyClass *linkerSectionPlacementFile = nullptr;
    PropertyClass *linkerSectionPlacementMacros = nullptr;
    PropertyClass *linkerSectionPlacementsSegments = nullptr;
    PropertyClass *linkUseLinkerScriptFile = nullptr;
    PropertyClass *linkLinkerScriptFile = nullptr;
    PropertyClass *linkDependentProjects = nullptr;
    PropertyClass *linkerOutputFormat = nullptr;
    PropertyClass *linkerMapFile = nullptr;
    PropertyClass *linkerMapFileName = nullptr;
    PropertyClass *linkerPrintfFmtLevel = nullptr;
    PropertyClass *linkerPrintfWidthPrecisionSupported = nullptr;
    PropertyClass *linkerPrintfFpEnabled = nullptr;
    PropertyClass *linkerPrintfWcharEnabled = nullptr;
    PropertyClass *linkerScanfFmtLevel = nullptr;
    PropertyClass *linkerScanfFpEnabled = nullptr;
    PropertyClass *linkerScanfCharacterGroupMatchingEnabled = nullptr;
    PropertyClass *linkAdditionalOptionsBackup = nullptr;
    // Compiling
    PropertyClass *cEnforceAnsiChecking = nullptr;
    PropertyClass *cUndefineAllPreprocessorDefinitions = nullptr;
    PropertyClass *cPreprocessorDefinitions = nullptr;
    PropertyClass *cPreprocessorUndefinitions = nullptr;
    PropertyClass *cUserIncludeDirectories = nullptr;
    PropertyClass *cIncludeFiles = nullptr;
    PropertyClass *cMacrosFiles = nullptr;
    PropertyClass *cIgnoreIncludes = nullptr;
    PropertyClass *cSystemIncludeDirectories = nullptr;
    PropertyClass *cAdditionalOptions = nullptr;
    PropertyClass *cAdditionalOptionsFromFile = nullptr;
    PropertyClass *cOnlyAdditionalOptions = nullptr;
    PropertyClass *cOnlyAdditionalOptionsFromFile = nullptr;
    PropertyClass *cppOnlyAdditionalOptions = nullptr;
    PropertyClass *cppOnlyAdditionalOptionsFromFile = nullptr;
    ProjectPropertyClass *cppEnableExceptions = nullptr;
    ProjectPropertyClass *cppEnableRtti = nullptr;
    PropertyClass *asmAdditionalOptions = nullptr;
    PropertyClass *asmAdditionalOptionsFromFile = nullptr;
    PropertyClass *asmGenerateListingFile = nullptr;
    PropertyClass *defaultCodeSection = nullptr;
    PropertyClass *defaultDataSection = nullptr;
    PropertyClass *defaultZeroedSection = nullptr;
    PropertyClass *defaultConstSection = nullptr;
    PropertyClass *defaultVectorSection = nullptr;
    PropertyClass *defaultIsrSection = nullptr;
    PropertyClass *asmAdditionalOptionsBackup = nullptr;
    PropertyClass *cAdditionalOptionsBackup = nullptr;
    PropertyClass *cOnlyAdditionalOptionsBackup = nullptr;
    PropertyClass *cppOnlyAdditionalOptionsBackup = nullptr;
    PropertyClass *cFilesAreCpp = nullptr;
    PropertyClass *isCppProject = nullptr;
    PropertyClass *addPropertyGroupIncludesDefines = nullptr;
    // Debugger and loader
    PropertyClass *debugCpuRegistersFile = nullptr;
    PropertyClass *debugRegisterDefinitionFile = nullptr;
    PropertyClass *debugRegisterDefinitionFileType = nullptr;
    PropertyClass *externalBuildFileName = nullptr;
    PropertyClass *externalStartAddress = nullptr;
    PropertyClass *externalLoadAddress = nullptr;
    PropertyClass *externalLoadFileType = nullptr;
    std::array<PropertyClass *, 4> externalDebugSymbolsFileName{};
    std::array<PropertyClass *, 4> externalDebugSymbolsLoadAddress{};
    PropertyClass *debugTargetConnection = nullptr;
    PropertyClass *debugTargetConnectionString = nullptr;
    PropertyClass *debugWorkingDirectory = nullptr;
    PropertyClass *debugCommandArguments = nullptr;
    std::array<PropertyClass *, 4> debugAdditionalLoadFile{};
    std::array<PropertyClass *, 4> debugAdditionalLoadFileAddress{};
    std::array<PropertyClass *, 4> debugAdditionalLoadFileType{};
    PropertyClass *debugStartFromEntryPointSymbol = nullptr;
    PropertyClass *debugEntryPointSymbol = nullptr;
    PropertyClass *debugStartupCompletionPoint = nullptr;
    PropertyClass *debugLoadAdditionalProjects = nullptr;
    PropertyClass *debugDependentProjects = nullptr;
    PropertyClass *debugAdditionalConfigurations = nullptr;
    PropertyClass *debugProjectName = nullptr;
    PropertyClass *debugInitialBreakpoint = nullptr;
    PropertyClass *debugInitialBreakpointSetOption = nullptr;
    PropertyClass *debugLeaveTargetRunning = nullptr;
    PropertyClass *debugThreadsScript = nullptr;
    PropertyClass *debugThreadsMax = nullptr;
    PropertyClass *debugHtmlWatch = nullptr;
    PropertyClass *debugTerminalLogFile = nullptr;
    // Externally built projects
    PropertyClass *externalBuildCommand = nullptr;
    PropertyClass *externalCleanCommand = nullptr;
    PropertyClass *externalCCompileCommand = nullptr;
    PropertyClass *externalCppCompileCommand = nullptr;
    PropertyClass *externalAssembleCommand = nullptr;
    PropertyClass *externalLinkCommand = nullptr;
    PropertyClass *externalCppLinkCommand = nullptr;
    PropertyClass *externalArchiveCommand = nullptr;
    PropertyClass *externalObjectsFileName = nullptr;
    // Code analysis
    PropertyClass *analyzeHeaders = nullptr;
    PropertyClass *analyzeAfterCompile = nullptr;
    PropertyClass *clangTidyChecksC = nullptr;
    PropertyClass *clangTidyChecksCpp = nullptr;
    PropertyClass *analyzeCommand = nullptr;
    PropertyClass *analyzeCommandCOptions = nullptr;
    PropertyClass *analyzeCommandCppOptions = nullptr;

    // The macros that the step running a command sets for it, such as
    // $(TargetPath) and $(Objects).
    std::vector<MacroPropertyClass *> commandMacros;

    // Every class of this part, in creation order.
    std::vector<std::unique_ptr<PropertyClass>> objects;
};
