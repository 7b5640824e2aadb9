#pragma once

#include "build/build_flags.h"
#include "project/project_system.h"
#include "project/standard_property_table.h"
#include "support/file_status_cache.h"
#include "support/file_time.h"

#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

class Builder;
class Idler;

// The project system of every toolchain: the tool part of the standard
// property table, and the build logic that all toolchains share. It decides
// what a node needs (build kinds, up-to-date checks, the order and wording of
// each step) and asks the toolchain operations below for the command lines.
// Everything it does to the outside world goes through a Builder.
class StandardProjectSystem : public ProjectSystem {
public:
    // Build kinds, also the step kinds of the toolchain operations.
    enum BuildKind : int {
        KindNone = 0,      // nothing of its own, only children
        KindExcluded = 1,  // build_exclude_from_build is "Yes"
        KindC = 2,
        KindCpp = 3,
        KindAssembly = 4,
        KindInput = 5,     // an input of the link; for a project, the external commands
        KindLink = 7,
        KindArchive = 8,
        KindStage = 9,
        KindCombine = 10,
    };

    explicit StandardProjectSystem(SystemMacros *macroTable);

    ToolProperties toolProperties;
    // True while the commands of a build are written into a shell script:
    // the toolchains then quote the include and define entries so that
    // they pass through the shell as they are.
    bool exportQuoting = false;

    // ---- Toolchain operations. The toolchains replace them; the forms here
    // are those that every toolchain starts from.

    // CLANGTIDY, CC and CCPP under the installation, unless the map or the
    // global macros already name them.
    void addToolMacros(ProjectElement *element, const std::string &configuration,
                       MacroMap &map) override;
    // Called first for every node that is built.
    virtual void selectPlatform(ProjectElement *element, const std::string &configuration);
    // Runs one compile, assemble, link or archive step. No compiler toolchain
    // is built into this class: it reports that as an error.
    virtual void buildStep(ProjectElement *element, const std::string &configuration, int step,
                           const std::string &outputRelative, const std::string &outputFile,
                           const StringList &inputs, Builder *builder, BuildFlags flags);
    // The heading of a build step that can't run, and the error that says
    // why.
    void unavailableStep(ProjectElement *element, const std::string &configuration, int step, Builder *builder,
                         const std::string &message);
    // The absolute path of the file that a step makes; empty for none:
    // build_object_file_name for steps 2 to 4 (build_preprocess_output_file_name
    // for a "Preprocess" file), build_output_file_name for 7 and 8,
    // external_build_file_name for 5, stage_output_filepath for 9 and
    // combine_output_filepath for 10.
    virtual std::string outputFilePath(int step, ProjectElement *element,
                                       const std::string &configuration);
    // The dependency file of an output: build_dependency_file_name, else
    // <intermediate directory>/<output's complete base name>.d.
    virtual std::string dependencyFilePath(ProjectElement *element, const std::string &configuration,
                                           const std::string &output);
    // <intermediate directory, else the input's directory>/<input's complete
    // base name><suffix>, absolute.
    std::string intermediateFilePath(ProjectElement *element, const std::string &configuration,
                                     const std::string &input, const std::string &suffix);
    // By-products of a step that a clean removes; none here.
    virtual void appendIntermediateFiles(ProjectElement *element, const std::string &configuration,
                                         int step, const std::string &output, StringList &list);
    // The prerequisites of an output, from its dependency file. While the
    // dependency cache is on, the same question asked again is answered
    // without a read. The list stays valid until the next call.
    virtual const StringList &fileDependencies(ProjectElement *element,
                                               const std::string &configuration,
                                               const std::string &output);
    // c_include_files and the variant of the node's language.
    virtual void forcedIncludeFiles(ProjectElement *element, const std::string &configuration,
                                    StringList &list);
    // Extra inputs of a link (linker_additional_files).
    virtual void linkerInputFiles(ProjectElement *element, const std::string &configuration,
                                  StringList &list);
    virtual std::string secondaryLinkOutput(ProjectElement *element, const std::string &configuration);
    virtual void linkerSymbolFiles(ProjectElement *element, const std::string &configuration,
                                   StringList &list);
    virtual void linkerLibraryDirectories(ProjectElement *element, const std::string &configuration,
                                          StringList &list);
    // The map file of a link; false if the link makes none.
    virtual bool mapFilePath(ProjectElement *element, const std::string &configuration,
                             const std::string &linkOutput, std::string &path);
    // True if a property that the linker script is made from is newer than time.
    virtual bool linkerScriptInputsChanged(ProjectElement *element, const std::string &configuration,
                                           FileTime time);
    // 0 for a header that isn't a precompiled header, else its compile kind.
    virtual int precompiledHeaderStep(ProjectElement *element, const std::string &configuration);
    // True if the file jobs of the project need ordering.
    virtual bool scanModuleDependencies(ProjectElement *project, const std::string &configuration);
    virtual std::string moduleNameOf(ProjectElement *element, const std::string &configuration);
    // The nodes whose jobs must come before this node's.
    virtual std::vector<ProjectElement *> filePrerequisites(ProjectElement *element,
                                                            const std::string &configuration);
    // A folder with a unity_build_file_name while unity building is on.
    virtual bool isUnityFolder(ProjectElement *element, const std::string &configuration, bool noUnity);
    // The linker's log file; false if the link writes none.
    virtual bool linkerLogFilePath(ProjectElement *element, const std::string &configuration,
                                   std::string &path);
    // The linker script and memory map file that a link reads, empty for
    // none; false after a missing one has been reported, which ends the link.
    virtual bool linkerControlFiles(ProjectElement *element, const std::string &configuration,
                                    Builder *builder, std::string &linkerScript,
                                    std::string &memoryMap);
    // $(MemorySegments) of the pre-link and post-link commands.
    virtual std::string memorySegmentsText(ProjectElement *element, const std::string &configuration);

    // A memory region of the target: first and last address (inclusive),
    // access code (0 read and write, 1 read only, 2 write only, 3 none) and
    // name.
    struct MemoryRegion {
        std::uint64_t start = 0;
        std::uint64_t end = 0;
        int access = 0;
        std::string name;
    };
    // Adds the project's memory regions to regions, which stays sorted by
    // start: the segments of its memory map, else those of
    // linker_section_placements_segments; with merge, overlapping and
    // touching regions of the same access become one. False if the project
    // has neither.
    virtual bool memorySegments(ProjectElement *element, const std::string &configuration, bool merge,
                                std::vector<MemoryRegion> &regions);
    // The project's memory map and section placement files: a project file
    // of type "Memory Map" / "Section Placement", else linker_memory_map_file
    // / linker_section_placement_file, as it is or under the project
    // directory. False if there is none; a named file that is missing is
    // reported through builder when there is one.
    bool locateMemoryMapFile(ProjectElement *element, const std::string &configuration, std::string &path,
                             Builder *builder);
    bool locateSectionPlacementFile(ProjectElement *element, const std::string &configuration,
                                    std::string &path, Builder *builder);
    // $(Defines), $(Includes), $(COptions) and the other option macros of an
    // external compile command of the kind.
    virtual void externalCompileMacros(ProjectElement *element, const std::string &configuration,
                                       int kind, MacroMap &map);
    // True for C and C++ files, and for headers with analyze_headers "Yes".
    virtual bool canAnalyze(ProjectElement *element, const std::string &configuration);
    // One analysis step of the file: clang-tidy with the project's checks
    // and the code model arguments, or the user's analyze_command with
    // $(DEFINES) and $(INCLUDES).
    virtual void analyzeFile(ProjectElement *element, const std::string &configuration,
                             Builder *builder);
    // True for a node whose syntax the toolchain can check on its own.
    virtual bool canCheckSyntax(ProjectElement *element, const std::string &configuration);
    // The compiled module interface of a C++ module's object: its path with
    // the extension ".gcm" (gcc) or ".pcm" (clang) for ".o".
    virtual std::string moduleInterfaceFilePath(ProjectElement *element,
                                                const std::string &configuration);
    // What the toolchain's tools can do for a node.
    virtual bool supportsModuleScan(ProjectElement *element, const std::string &configuration);
    virtual bool usesRanlib(ProjectElement *element, const std::string &configuration);
    virtual bool usesModuleMapper(ProjectElement *element, const std::string &configuration);
    virtual bool usesBrenlowLinker(ProjectElement *element, const std::string &configuration);
    // True if the property has a value of its own on the node or above it,
    // which goes into value.
    virtual bool hasOwnValue(ProjectElement *element, PropertyClass *property,
                             const std::string &configuration, std::optional<std::string> &value);
    // Rewrites old property text of one value after a load.
    virtual void migrateValue(std::string &value);

    // The command lines of the compile family. Their bodies belong to the
    // toolchains; the forms here add nothing, and the steps that would run a
    // tool report that the toolchain can't yet.

    // The entries of the compilation database for the node and everything
    // below it, appended to text, each behind a "," unless text ends in "[".
    virtual void writeCompilationDatabaseEntry(ProjectElement *element,
                                               const std::string &configuration, std::string &text);
    // Writes compilation_database_file of the project: "[", the entries, "]".
    // A file that can't be written is left as it is.
    void writeCompilationDatabase(ProjectElement *project, const std::string &configuration);
    // Writes the database that the module scanner reads to path: for each
    // file of the project with a job of its own, its code model arguments
    // behind "clang" and its object as the output. False if the file can't
    // be written.
    bool writeScanDatabase(const std::string &path, ProjectElement *project, const std::string &configuration);
    // Preprocesses one file, into a file whose path resultFile gets when it
    // isn't null, else to the command's output.
    virtual void preprocessFile(ProjectElement *element, const std::string &configuration,
                                Builder *builder, bool dumpMacros, const StringList &extraOptions,
                                std::string *resultFile);
    // The include, define and dependency options of the file.
    virtual void preprocessorArguments(ProjectElement *element, const std::string &configuration,
                                       StringList &list);
    // The options that an external code model needs for the file: its
    // language, its preprocessor arguments, code_completion_options.
    virtual void codeModelArguments(ProjectElement *element, const std::string &configuration,
                                    StringList &list);
    // One syntax check step of the file.
    virtual void checkSyntax(ProjectElement *element, const std::string &configuration,
                             Builder *builder);
    // Reads one linker option of an imported project into properties.
    virtual void importLinkerOption(ProjectElement *element, const std::string &configuration,
                                    StringList &options);
    virtual void appendPreprocessorOptions(ProjectElement *element, const std::string &configuration,
                                           int step, const std::string &output, StringList &list);
    // The options of a compile through the driver; false if the step can't
    // be made.
    virtual bool appendDriverOptions(ProjectElement *element, const std::string &configuration,
                                     int step, const std::string &output, StringList &list);
    // The symbols that the link defines (stack and heap sizes and the like).
    virtual void linkerSymbolDefinitions(ProjectElement *element, const std::string &configuration,
                                         StringList &list);

    // ---- Build logic common to all toolchains.

    // What a node is built as; see BuildKind. Kept for each node while the
    // dependency cache is on, since a build asks several times per file.
    int buildKind(ProjectElement *element, const std::string &configuration, BuildFlags flags);
    // outputFilePath of a compile step (kinds 2 to 4), kept in the same way:
    // the compile's check and the archive or link that collects the objects
    // both ask.
    std::string compiledFilePath(int kind, ProjectElement *element, const std::string &configuration);
    // Forgets what was kept of the nodes, after the build changed one.
    void forgetNodeAnswers();
    // The number of steps a node will take.
    int stepCount(ProjectElement *element, const std::string &configuration, BuildFlags flags);
    // True for a file whose kind is 1 to 4 or 9.
    bool hasOwnJob(ProjectElement *file, const std::string &configuration, BuildFlags flags);
    // Does what the node needs, children first; true if it was or would be built.
    virtual bool buildElement(ProjectElement *element, const std::string &configuration,
                              Builder *builder, Idler *idler, BuildFlags flags);
    bool preBuildStep(ProjectElement *element, const std::string &configuration, Builder *builder,
                      BuildFlags flags);
    void postBuildStep(ProjectElement *element, const std::string &configuration, Builder *builder,
                       bool built);
    void directoryStep(ProjectElement *element, const std::string &configuration, Builder *builder);
    // The files that go into a link or an archive; false if they can't be known.
    bool collectInputs(ProjectElement *project, const std::string &configuration, Builder *builder,
                       BuildFlags flags, StringList &list);
    void collectObjects(ProjectElement *first, const std::string &configuration, StringList &list,
                        bool noUnity);
    // The files below first (and its siblings) that go into a unity file,
    // and those that a filter keeps out of it; excluded files go into neither.
    void partitionUnityFiles(ProjectElement *first, const std::string &configuration,
                             const StringList &filters, std::vector<ProjectElement *> &unityFiles,
                             std::vector<ProjectElement *> &excludedFiles);
    // outputFilePath of the node's own kind.
    std::string objectFilePath(ProjectElement *element, const std::string &configuration);
    // The expanded path of a file, against the project directory.
    std::string sourcePath(ProjectElement *element, const std::string &configuration);
    // The expanded project_directory, against the solution's directory.
    std::string projectDirectory(ProjectElement *project, const std::string &configuration);
    std::string displayName(ProjectElement *element) { return elementName(element); }

    // ---- Up-to-date decisions.

    // True if the target exists (and, with emptyIsMissing, isn't empty);
    // resolved and targetTime are set.
    bool checkTarget(const std::string &directory, const std::string &target, std::string &resolved,
                     FileTime &targetTime, Builder *builder, bool quiet, bool emptyIsMissing);
    // True if no input is newer than the target, at whole seconds.
    bool inputsAreOlder(const std::string &directory, const std::string &target, FileTime targetTime,
                        const StringList &inputs, Builder *builder, bool quiet);
    // True if no property change of this run or option file speaks against
    // the target.
    bool propertiesChanged(ProjectElement *element, const std::string &configuration,
                           FileTime targetTime, int kind, Builder *builder, bool quiet);
    // True if this run changed one of properties on the node or above it,
    // in the configuration or one it inherits, after time.
    bool propertyChangedSince(ProjectElement *element, const std::string &configuration,
                              const std::vector<PropertyClass *> &properties, FileTime time);
    // The dependency cache of fileDependencies, and the answers that
    // buildKind and compiledFilePath keep: on for the time of a build.
    virtual void setDependencyCacheEnabled(bool enabled);
    // The status of the files that the checks ask about, on for the time of a
    // build and cleared whenever a job may have written files.
    FileStatusCache &fileStatusCache() { return fileStatus_; }

    // ---- Order of a build.

    // project_dependencies split at ";", wildcards expanded against the
    // projects of the same solution.
    StringList projectDependencyNames(ProjectElement *project, const std::string &configuration);
    // True if the project's solution tree declares the configuration, or it
    // is "Common".
    bool configurationApplies(ProjectElement *project, const std::string &configuration);
    // Every project that the project depends on, directly or not.
    std::vector<ProjectElement *> allDependencies(ProjectElement *project,
                                                  const std::string &configuration);
    bool canBuildInParallel(ProjectElement *project, const std::string &configuration);
    // The title of a job; empty with BuildNoTitle.
    std::string stepTitle(ProjectElement *element, const std::string &configuration, BuildFlags flags);

    // The type name of a file; a header being described to a code model
    // reads as a source file of the project's language.
    std::string fileTypeName(ProjectElement *element, const std::string &configuration) override;

    // Expansion of a node's value with extra macros that win over the node's.
    std::string expandWith(ProjectElement *element, const std::string &text,
                           const std::string &configuration, const MacroMap &extra);
    // The expanded value of a property, empty if it has none.
    std::string expandedValue(ProjectElement *element, PropertyClass *property,
                              const std::string &configuration);
    std::string expandedValue(ProjectElement *element, PropertyClass *property,
                              const std::string &configuration, const MacroMap &extra);

private:
    // The newest change of this run that propertyChangedSince looks for.
    const PropertyUndoRecord *changeSince(ProjectElement *element, const std::string &configuration,
                                          const std::vector<PropertyClass *> &properties, FileTime time);
    int findBuildKind(ProjectElement *element, const std::string &configuration, bool analyse);

    FileStatusCache fileStatus_;
    // The node whose type name reads as typeNameOverride_ for a while.
    ProjectElement *typeNameElement_ = nullptr;
    std::string typeNameOverride_;
    // What a build asks about a node more than once, in one configuration.
    struct NodeAnswers {
        int kind[2] = {-1, -1};  // buildKind without and with BuildAnalyse
        int compiledKind = -1;   // the kind that compiledFile is for
        std::string compiledFile;
        bool typeKnown = false;  // fileTypeName, asked several times a node
        std::string typeName;
    };
    struct NodeAnswerCache {
        bool enabled = false;
        // Per configuration; a build has one or a few.
        std::vector<std::pair<std::string, std::unordered_map<ProjectElement *, NodeAnswers>>> entries;
        // The answers asked last: a node's are asked several times in a row.
        ProjectElement *lastElement = nullptr;
        const std::string *lastConfiguration = nullptr;  // the key in entries
        NodeAnswers *last = nullptr;
    };
    // The kept answers of the node, or null while the cache is off.
    NodeAnswers *nodeAnswers(ProjectElement *element, const std::string &configuration);
    NodeAnswerCache nodeAnswers_;
    struct DependencyCache {
        bool enabled = false;
        // The element and output of the last answer, while the cache is on;
        // null when there is none.
        ProjectElement *element = nullptr;
        std::string output;
        StringList answer;  // the last answer of fileDependencies
        std::string text;   // the last dependency file read
    };
    DependencyCache dependencyCache_;
};
