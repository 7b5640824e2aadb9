#pragma once

#include "build/standard_project_system.h"
#include "toolchain/gcc_property_table.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

// The GNU tools driven through their compiler driver: gcc, g++ (or clang,
// clang++) and ar, found through the tool macros that addToolMacros fills.
class GCCProjectSystem : public StandardProjectSystem {
public:
    // toolDirectory becomes the default of build_toolchain_directory;
    // genericOptionsFile names the toolchain's generic option file;
    // executableExtension ends the names of executables.
    GCCProjectSystem(SystemMacros *macroTable, const std::string &toolDirectory,
                     const std::string &genericOptionsFile, std::string executableExtension,
                     const GCCTableFlags &flags);

    std::string objectFileExtension() const override { return ".o"; }
    std::string libraryFileExtension() const override { return ".a"; }
    std::string executableFileExtension(ProjectElement *, const std::string &) override {
        return executableExtension_;
    }
    std::string platformName() const override { return "LINUX"; }
    int platformCode() const override { return 15; }
    // CLANGTIDY, CC and CCPP, then GCC, GPLUSPLUS, AR, OBJCOPY, OBJDUMP,
    // RANLIB and STRIP: the expanded build_toolchain_directory and "/",
    // gcc_prefix and the tool's name. A name that the map or the global
    // macros already hold keeps its value.
    void addToolMacros(ProjectElement *element, const std::string &configuration,
                       MacroMap &map) override;
    // Inserts name=value unless the map or the global macros name it.
    void addToolMacro(MacroMap &map, const std::string &name, const std::string &value) const;
    // C and C++ files.
    bool canCheckSyntax(ProjectElement *element, const std::string &configuration) override;
    bool supportsModuleScan(ProjectElement *, const std::string &) override { return true; }
    bool usesRanlib(ProjectElement *, const std::string &) override { return true; }
    bool usesModuleMapper(ProjectElement *, const std::string &) override { return true; }
    // The kind of compile that the file's type name stands for: C, C++ or
    // assembly; KindNone for any other.
    int sourceKind(ProjectElement *element, const std::string &configuration);
    // The preprocessor options of the file's kind, without a dependency file.
    void preprocessorArguments(ProjectElement *element, const std::string &configuration,
                               StringList &list) override;
    // The base's list, then what clang needs to see the file as gcc does:
    // "-U__clang__", the language standard and options, the compiled module
    // interfaces and the precompiled header.
    void codeModelArguments(ProjectElement *element, const std::string &configuration,
                            StringList &list) override;
    // A compile of a C or C++ file with -fsyntax-only, through the driver.
    void checkSyntax(ProjectElement *element, const std::string &configuration, Builder *builder) override;
    // Include directories, defines, undefines, forced includes and macro
    // files of the node for a compile of the step, then the options that
    // make the compiler write the dependency file of output.
    void appendPreprocessorOptions(ProjectElement *element, const std::string &configuration, int step,
                                   const std::string &output, StringList &list) override;
    // The driver's compile of a C or C++ file; the other steps aren't
    // driven yet and say so.
    void buildStep(ProjectElement *element, const std::string &configuration, int step,
                   const std::string &outputRelative, const std::string &outputFile, const StringList &inputs,
                   Builder *builder, BuildFlags flags) override;

    // arm_linker_search_path and arm_linker_symbols_files, split at ";".
    void linkerLibraryDirectories(ProjectElement *element, const std::string &configuration,
                                  StringList &list) override;
    void linkerSymbolFiles(ProjectElement *element, const std::string &configuration,
                           StringList &list) override;
    // A target's hand-written linker script, else the memory map of the
    // script that the link generates; none for the hosted tools.
    bool linkerControlFiles(ProjectElement *element, const std::string &configuration, Builder *builder,
                            std::string &linkerScript, std::string &memoryMap) override;
    // The response file of a link or an archive and a generated linker
    // script, when they are kept and exist.
    void appendIntermediateFiles(ProjectElement *element, const std::string &configuration, int step,
                                 const std::string &output, StringList &list) override;

    // The response file of a link or an archive: linker_indirect_file_name,
    // else <intermediate directory>/<output's complete base name><suffix>.
    std::string indFileName(ProjectElement *element, const std::string &configuration,
                            const std::string &output, const std::string &suffix = ".ind");
    // Writes the response file: one quoted path a line, with the libraries
    // named in arm_linker_whole_archive between the whole-archive switches.
    void writeIndirect(ProjectElement *element, const std::string &configuration, const StringList &files,
                       const std::string &name, bool forDriver, Builder *builder);

    // The precompiled header of a project: the header file marked
    // gcc_precompiled_header in a project with gcc_enable_precompiled_header.
    // The driver writes it as <header>.gch beside the header, and every
    // other compile of the project includes it first.
    ProjectElement *precompiledHeaderOf(ProjectElement *element, const std::string &configuration);
    int precompiledHeaderStep(ProjectElement *element, const std::string &configuration) override;
    // With C++ modules on, runs clang-scan-deps over the project and keeps
    // which module each file provides and which files it imports; with a
    // precompiled header, orders without a scan.
    bool scanModuleDependencies(ProjectElement *project, const std::string &configuration) override;
    // The module that the last scan found the file to provide, else its
    // file name.
    std::string moduleNameOf(ProjectElement *element, const std::string &configuration) override;
    // The precompiled header, else the files whose modules the file imports.
    std::vector<ProjectElement *> filePrerequisites(ProjectElement *element,
                                                    const std::string &configuration) override;
    // Module name to object file, in name order.
    using ModuleList = std::map<std::string, std::string>;
    // The modules that a file's compile needs: its own (made at ownFile),
    // those it imports directly or not, and gcc_additional_modules.
    void collectModules(ProjectElement *element, const std::string &configuration, const std::string &ownFile,
                        ModuleList &result);
    // Writes the file's module map, <intermediate directory>/<base>.modmap,
    // for gcc's -fmodule-mapper; its path relative to the project
    // directory, or empty if it can't be written.
    std::string writeModuleMapFile(ProjectElement *element, const std::string &configuration,
                                   const std::string &ownFile);
    // The module options of a C++ compile that makes object: gcc's module
    // mapper with a map written for it, else the interfaces of the imported
    // modules that exist.
    void appendModuleOptions(ProjectElement *element, const std::string &configuration, const std::string &object,
                             StringList &list);
    // With modules on, the compiled interfaces of the imported modules join
    // the prerequisites of a C++ object.
    const StringList &fileDependencies(ProjectElement *element, const std::string &configuration,
                                       const std::string &output) override;
    void forcedIncludeFiles(ProjectElement *element, const std::string &configuration,
                            StringList &list) override;
    std::string outputFilePath(int step, ProjectElement *element, const std::string &configuration) override;
    void setDependencyCacheEnabled(bool enabled) override;

    // Takes the options of an existing link command that properties stand
    // for (script, search path, map file, entry point, symbols, target) into
    // the node's properties; the others stay in options, in their order.
    void importLinkerOption(ProjectElement *element, const std::string &configuration,
                            StringList &options) override;
    // The compile command of each C, C++ and assembly file at or below the
    // node, as the build runs it.
    void writeCompilationDatabaseEntry(ProjectElement *element, const std::string &configuration,
                                       std::string &text) override;
    // Preprocesses a C or C++ file through the driver; with resultFile the
    // text goes to <intermediate directory>/<base>_PP.<suffix>, whose path
    // it gets, else to the command's output.
    void preprocessFile(ProjectElement *element, const std::string &configuration, Builder *builder,
                        bool dumpMacros, const StringList &extraOptions, std::string *resultFile) override;

    // The rows that a node of each kind lists: the compile-side rows of the
    // step's option list (with the active generic options) less those of the
    // other languages, and the link-side rows for a link. A hosted toolchain
    // leaves out the rows that only a target needs.
    void appendCProperties(ProjectElement *element, const std::string &configuration,
                           PropertyClassList &list) override;
    void appendCppProperties(ProjectElement *element, const std::string &configuration,
                             PropertyClassList &list) override;
    void appendAssemblerProperties(ProjectElement *element, const std::string &configuration,
                                   PropertyClassList &list) override;
    void appendSourceFileProperties(ProjectElement *element, const std::string &configuration,
                                    PropertyClassList &list) override;
    void appendLinkerProperties(ProjectElement *element, const std::string &configuration,
                                PropertyClassList &list) override;

    GCCProperties gccProperties;

protected:
    // The link of an executable and the archive of a library through the
    // driver and ar, with the commands that follow a link.
    void linkStep(ProjectElement *element, const std::string &configuration, const std::string &outputRelative,
                  const std::string &outputFile, const StringList &inputs, Builder *builder);
    void archiveStep(ProjectElement *element, const std::string &configuration, const std::string &outputRelative,
                     const std::string &outputFile, const StringList &inputs, Builder *builder);
    // What the commands after a link work on.
    struct LinkOutputs {
        std::string output;             // the program, as the link's command names it
        std::string outputFile;         // the program's absolute path
        std::string indirect;           // the response file, empty for none
        std::string script;             // a generated linker script, empty for none
        bool direct = false;            // the build runs the linker itself
        std::string gapFill;            // direct form: the fill byte between sections, "0x.."
        std::string outputFileGapFill;  // direct form: the same for the converted file
    };
    // Removes what isn't kept, then fills gaps, extracts symbols, patches,
    // strips, reports the memory usage and converts the program, each when
    // asked for.
    void postLinkCommands(ProjectElement *element, const std::string &configuration, const LinkOutputs &made,
                          Builder *builder);
    // imagedump's report of how full each memory segment is.
    StringList memoryUsageCommand(ProjectElement *element, const std::string &configuration,
                                  const std::string &output);
    // The inputs as the linker takes them, with each library named in
    // arm_linker_whole_archive (by path or file name) between the switches.
    StringList linkEntries(ProjectElement *element, const std::string &configuration, const StringList &files,
                           bool forDriver, bool quoted);
    // The hand-written linker script of a link: a project file of type
    // "Linker Script", else link_linker_script_file when
    // link_use_linker_script_file is "Yes", found as it is, under the project
    // directory or under a library directory. False after a missing one has
    // been reported.
    bool hasLinkerScript(ProjectElement *element, const std::string &configuration, std::string &path,
                         Builder *builder);
    // True if a link without a hand-written script has one generated:
    // arm_generate_linker_script on a target.
    virtual bool generatesLinkerScript(ProjectElement *element, const std::string &configuration);
    // The memory map and section placement file that a generated script is
    // made from, absolute, empty for none; false after a named one that is
    // missing has been reported.
    bool linkerScriptSources(ProjectElement *element, const std::string &configuration, Builder *builder,
                             std::string &memoryMap, std::string &placement);
    // The generated linker script of a link: ldplan makes
    // <intermediate directory>/<output's base name>.ld from the memory map
    // or the segments, and the placement file, when the script is stale or
    // flags hold BuildAlways. Empty after an error has been reported.
    std::string linkerScriptPath(ProjectElement *element, const std::string &configuration, Builder *builder,
                                 const std::string &output, BuildFlags flags);
    // True if the script is missing, older than a file it is made from, or
    // older than a change of a property that ldplan reads.
    bool linkerScriptIsStale(ProjectElement *element, const std::string &configuration, const std::string &script,
                             const StringList &sources);
    // True if the inputs go through a response file: linker_use_indirect_files
    // "Yes", or "Auto" with more than limit inputs.
    bool usesIndirectFile(ProjectElement *element, const std::string &configuration, std::size_t count,
                          std::size_t limit);

    // --target=, --multi-lib-config= and --gcc-toolchain= of a clang driver.
    void appendClangTarget(ProjectElement *element, const std::string &configuration, StringList &list);
    // The wide character, enumeration size and char signedness options.
    void appendCharacterType(ProjectElement *element, const std::string &configuration, StringList &list);
    // The lists of a driver compile, each in its order.
    void appendCodeGeneration(ProjectElement *element, const std::string &configuration, int step,
                              StringList &list);
    void appendDebugInformation(ProjectElement *element, const std::string &configuration, StringList &list);
    void appendOptimization(ProjectElement *element, const std::string &configuration, StringList &list);
    // oz: the compiler knows -Oz.
    void appendOptimization(ProjectElement *element, const std::string &configuration, bool oz, StringList &list);
    // -std= of the step's language, with the "1z" names written as 17;
    // nothing for "None".
    void appendLanguageStandard(ProjectElement *element, const std::string &configuration, int step,
                                StringList &list);
    // The options of gcc_enable_all_warnings and of c_enforce_ansi_checking
    // when they are "Yes": the common list, then the step's language list.
    void appendAllWarnings(ProjectElement *element, const std::string &configuration, int step, StringList &list);
    void appendAnsiChecking(ProjectElement *element, const std::string &configuration, int step, StringList &list);
    // The entries of common and language, when enable is "Yes".
    void appendOptionLists(ProjectElement *element, const std::string &configuration, PropertyClass *enable,
                           PropertyClass *common, PropertyClass *language, StringList &list);
    // -ftls-model= in lower case, unless gcc_tls_model is "None".
    void appendTlsModel(ProjectElement *element, const std::string &configuration, StringList &list);
    // -I for each entry of c_user_include_directories and its variant of the
    // step; absolute entries are normalised.
    void appendUserIncludeDirectories(ProjectElement *element, const std::string &configuration, int step,
                                      StringList &list);
    // -D, -U, -include and -imacros of the defines, undefines, forced
    // includes and macro files of the step.
    void appendDefinesAndForcedIncludes(ProjectElement *element, const std::string &configuration, int step,
                                        StringList &list);
    // The listing of an object: $(OBJDUMP) object -d -S > <input's .lst>.
    void addListingCommand(ProjectElement *element, const std::string &configuration, const std::string &object,
                           const std::string &input, Builder *builder);
    // The additional options of the step's language and their files; false
    // after a missing file has been reported, which ends the step.
    bool appendAdditionalOptions(ProjectElement *element, const std::string &configuration, int step,
                                 Builder *builder, StringList &list);
    bool readOptionsFile(ProjectElement *element, const std::string &configuration, PropertyClass *property,
                         Builder *builder, StringList &list);
    // The flags of one list of the node's generic option file. A non-empty
    // filter passes over the properties whose variant names another tool.
    void appendGenericOptions(ProjectElement *element, const std::string &configuration,
                              GenericOptionSet::Tool tool, const std::string &filter, StringList &list);

    // The value of property, macro-expanded, split at ";" with empty entries
    // dropped; with a step, the entries of its variant for the step's
    // language (the property named with "_c_only", "_cpp_only" or
    // "_asm_only") follow.
    StringList expandedList(ProjectElement *element, PropertyClass *property,
                            const std::string &configuration, int step = 0);
    // expandedList of an include or define property. In an exported script
    // each double quote of an entry is written as \", so that the shell
    // passes it on.
    StringList preprocessorEntries(ProjectElement *element, PropertyClass *property,
                                   const std::string &configuration, int step = 0);

    // The GCC level of addToolMacros alone.
    void addDriverToolMacros(ProjectElement *element, const std::string &configuration, MacroMap &map);

private:
    std::string executableExtension_;
    // The precompiled header of each project, remembered for a build.
    struct PrecompiledHeaders {
        bool enabled = false;
        std::map<std::pair<ProjectElement *, std::string>, ProjectElement *> entries;
    };
    PrecompiledHeaders precompiledHeaders_;
    // What the last module scan found.
    struct ModuleScan {
        std::map<ProjectElement *, std::vector<ProjectElement *>> required;  // the files each file imports
        std::map<ProjectElement *, std::string> names;                      // the module each file provides
        bool scanning = false;  // the scanner's database is being written
        StringList dependencies;  // the last answer of fileDependencies with interfaces
    };
    ModuleScan moduleScan_;
    // The modules of the files that the file imports, directly or not,
    // with their objects.
    void importedModules(ProjectElement *element, const std::string &configuration, ModuleList &result);
};
