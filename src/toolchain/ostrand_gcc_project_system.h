#pragma once

#include "toolchain/clang_compatibility.h"
#include "toolchain/gcc_project_system.h"
#include "toolchain/ostrand_property_table.h"
#include "toolchain/platform_project_system.h"

// The cross toolchain laid out in the installation. Its platform, the
// architecture's half, answers the questions of names and extensions.
class OstrandGCCProjectSystem : public GCCProjectSystem, public ClangCompatibility {
public:
    explicit OstrandGCCProjectSystem(SystemMacros *macroTable);

    virtual PlatformProjectSystem *platform() = 0;
    const PlatformProjectSystem *platform() const {
        return const_cast<OstrandGCCProjectSystem *>(this)->platform();
    }

    std::string platformName() const override { return platform()->platformName(); }
    int platformCode() const override { return platform()->platformCode(); }
    std::string executableFileExtension(ProjectElement *element,
                                        const std::string &configuration) override {
        return platform()->executableFileExtension(element, configuration);
    }
    // With use_external_gcc "Yes" the driver's macros; otherwise the
    // installation's tools: AR, AS, CC1, CC1PLUS, CLANG, LIBLTO, LD, LTO1,
    // OBJCOPY, OBJDUMP, STRIP, and GCC and GPLUSPLUS as its own drivers.
    void addToolMacros(ProjectElement *element, const std::string &configuration,
                       MacroMap &map) override;
    // ".pcm" unless arm_compiler_variant is "gcc".
    std::string moduleInterfaceFilePath(ProjectElement *element, const std::string &configuration) override;
    // The driver's abilities with use_external_gcc "Yes"; the installation's
    // tools scan modules with gcc only, and need no ranlib or module mapper.
    bool supportsModuleScan(ProjectElement *element, const std::string &configuration) override;
    bool usesRanlib(ProjectElement *element, const std::string &configuration) override;
    bool usesModuleMapper(ProjectElement *element, const std::string &configuration) override;
    // arm_linker_variant is "Brenlow".
    bool usesBrenlowLinker(ProjectElement *element, const std::string &configuration) override;
    // Without use_external_gcc every property counts as set, with its
    // effective value.
    bool hasOwnValue(ProjectElement *element, PropertyClass *property, const std::string &configuration,
                     std::optional<std::string> &value) override;

    // With use_external_gcc "Yes" the steps of the GNU driver, with the
    // platform's target options. Otherwise the direct form: the build runs
    // the compiler proper, the assembler, ar and the linker itself. What
    // needs a tool of the installation that doesn't exist yet (its compiler
    // driver, the stack tally, the debug bridge, link-time optimization of
    // a link, the Brenlow tools, modules) reports that.
    void buildStep(ProjectElement *element, const std::string &configuration, int step,
                   const std::string &outputRelative, const std::string &outputFile, const StringList &inputs,
                   Builder *builder, BuildFlags flags) override;
    // The driver's preprocessing with use_external_gcc "Yes"; otherwise the
    // compiler proper's (or clang's) with -E, into the "_PP." file.
    void preprocessFile(ProjectElement *element, const std::string &configuration, Builder *builder,
                        bool dumpMacros, const StringList &extraOptions, std::string *resultFile) override;
    // In the direct form a precompiled header becomes <header>.gch (gcc) or
    // <header>.pch (clang), and clang's objects are bitcode, $(OBJ) ".bc",
    // with link-time optimization.
    std::string outputFilePath(int step, ProjectElement *element, const std::string &configuration) override;
    // In the direct form the kept assembly, listing and preprocessor output
    // of a compile or an assembly, and the kept response file, linker script
    // and log of a link, where they exist.
    void appendIntermediateFiles(ProjectElement *element, const std::string &configuration, int step,
                                 const std::string &output, StringList &list) override;
    // The installation's driver options (use_compiler_driver), or an
    // external driver's target options; then the platform's.
    bool appendDriverOptions(ProjectElement *element, const std::string &configuration, int step,
                             const std::string &output, StringList &list) override;
    // In the direct form the include directories and defines of its
    // compile, in the gcc spelling, without a dependency file.
    void preprocessorArguments(ProjectElement *element, const std::string &configuration,
                               StringList &list) override;
    // The driver's list, then clang's thread model for C++, the GNU version
    // and the platform's target options.
    void codeModelArguments(ProjectElement *element, const std::string &configuration,
                            StringList &list) override;
    // In the direct form the compiler proper with -fsyntax-only.
    void checkSyntax(ProjectElement *element, const std::string &configuration, Builder *builder) override;
    // The base's extra inputs, filtered by the platform.
    void linkerInputFiles(ProjectElement *element, const std::string &configuration, StringList &list) override;
    std::string secondaryLinkOutput(ProjectElement *element, const std::string &configuration) override;
    // <output directory>/<output's base name>.log, when arm_linker_variant is
    // "Brenlow" and linker_log_file "Yes".
    bool linkerLogFilePath(ProjectElement *element, const std::string &configuration, std::string &path) override;
    // The platform's stack, heap and debug I/O properties, and the section
    // placement file of a generated script, against time.
    bool linkerScriptInputsChanged(ProjectElement *element, const std::string &configuration, FileTime time) override;
    // The Brenlow linker's map file: with link_map_file other than "None",
    // <output directory>/<output's base name>.map, or .htm for HTML.
    bool mapFilePath(ProjectElement *element, const std::string &configuration, const std::string &linkOutput,
                     std::string &path) override;
    // The platform's stack, heap and debug I/O symbols, then the printf and
    // scanf implementations and __dso_handle that the installation's
    // libraries take.
    void linkerSymbolDefinitions(ProjectElement *element, const std::string &configuration,
                                 StringList &list) override;
    void migrateElement(ProjectElement *root) override;
    void migrateValue(std::string &value) override;

    // The rows that a node of each kind lists: the GNU rows that the
    // installation's tools read, the Ost rows of the kind, and the
    // platform's.
    void appendCProperties(ProjectElement *element, const std::string &configuration,
                           PropertyClassList &list) override;
    void appendAssemblerProperties(ProjectElement *element, const std::string &configuration,
                                   PropertyClassList &list) override;
    void appendLinkerProperties(ProjectElement *element, const std::string &configuration,
                                PropertyClassList &list) override;
    void appendLibraryProperties(ProjectElement *element, const std::string &configuration,
                                 PropertyClassList &list) override;
    void appendProjectTypeProperties(ProjectElement *element, const std::string &configuration,
                                     PropertyClassList &set, const std::string &type) override;
    void appendDebugProperties(ProjectElement *element, const std::string &configuration,
                               PropertyClassList &list) override;
    // gcc_target, gcc_version and the platform's list.
    void appendToolchainProperties(ProjectElement *element, const std::string &configuration,
                                   PropertyClassList &list) override;

    OstProperties ostProperties;

protected:
    // use_external_gcc is "Yes": the build issues the commands of an
    // external GNU toolchain's driver.
    bool externalGcc(ProjectElement *element, const std::string &configuration);
    // Neither use_external_gcc nor use_compiler_driver is "Yes": the build
    // runs the compiler proper and the assembler itself.
    bool directForm(ProjectElement *element, const std::string &configuration);
    // The direct form generates every script but the Brenlow linker's, which
    // must be given one.
    bool generatesLinkerScript(ProjectElement *element, const std::string &configuration) override;

private:
    // ---- The direct form.

    // Steps 2 and 3: the compiler proper, for gcc then the assembler.
    void compileStep(ProjectElement *element, const std::string &configuration, int step,
                     const std::string &outputRelative, const std::string &outputFile, const StringList &inputs,
                     Builder *builder);
    // Step 4: the preprocessor when asked for, then gas or clang's
    // assembler, and the section renaming.
    void assembleStep(ProjectElement *element, const std::string &configuration, const std::string &outputRelative,
                      const std::string &outputFile, const StringList &inputs, Builder *builder);
    // gas on the assembly text that cc1 or cc1plus wrote.
    void assembleCompilerOutput(ProjectElement *element, const std::string &configuration,
                                const std::string &assembly, const std::string &output, const std::string &outputFile,
                                Builder *builder);
    // Step 7: the libraries, the linker script (generated by ldplan unless
    // the project has one), ld or ld.lld, and the commands after the link.
    void linkStepDirect(ProjectElement *element, const std::string &configuration, const std::string &outputRelative,
                        const std::string &outputFile, const StringList &inputs, Builder *builder, BuildFlags flags);
    // The objects and libraries of a link, then the installation's runtime
    // libraries with link_include_standard_libraries, filtered by the
    // platform.
    StringList linkLibraries(ProjectElement *element, const std::string &configuration, const StringList &inputs);
    // The linker's arguments up to the libraries; false after a missing
    // options file has been reported.
    bool appendDirectLinkOptions(ProjectElement *element, const std::string &configuration, const std::string &script,
                                 const std::string &output, Builder *builder, StringList &list);
    // The error of a link that needs a tool of the installation that isn't
    // there yet; empty if the link can run.
    std::string unavailableLink(ProjectElement *element, const std::string &configuration);
    // The error of a compile that needs a tool of the installation that
    // isn't there yet; empty if the compile can run.
    std::string unavailableCompile(ProjectElement *element, const std::string &configuration, int step);

    // The program and its language options; step 4 is the assembly
    // language of the preprocessor.
    void appendLanguageOptions(ProjectElement *element, const std::string &configuration, int step, bool isGcc,
                               StringList &list);
    // Include directories, target and product defines, the node's defines
    // and the dependency file of output (none when it is empty).
    void appendDirectPreprocessorOptions(ProjectElement *element, const std::string &configuration, int step,
                                         bool isGcc, const std::string &output, StringList &list);
    void appendDirectCodeGeneration(ProjectElement *element, const std::string &configuration, bool isGcc,
                                    StringList &list);
    void appendClangDebugInformation(ProjectElement *element, const std::string &configuration, StringList &list);
    // -finput-charset and -fexec-charset of the node's file_codec.
    void appendCharacterSets(ProjectElement *element, const std::string &configuration, StringList &list);
    // The generic options of the step for the tool, then the additional
    // options; false after a missing options file has been reported.
    bool appendDirectAdditionalOptions(ProjectElement *element, const std::string &configuration, int step,
                                       const std::string &tool, Builder *builder, StringList &list);
    // -g and the DWARF version of an assembler, gas's or clang's.
    void appendAssemblerDebugInformation(ProjectElement *element, const std::string &configuration, bool gas,
                                         StringList &list);
    // "-Werror" and "-w" of the build's warning settings.
    void appendWarningSwitches(ProjectElement *element, const std::string &configuration, StringList &list);
    // "-v" unless build_quietly is "Yes"; then "-quiet" for gcc.
    void appendQuietOption(ProjectElement *element, const std::string &configuration, bool isGcc,
                           StringList &list);
    // A path as the direct form's commands name it: absolute with
    // arm_supply_absolute_file_path "Yes", else relative to the project.
    std::string commandPath(ProjectElement *element, const std::string &configuration, const std::string &path);
};
