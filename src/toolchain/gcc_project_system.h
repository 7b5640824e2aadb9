#pragma once

#include "build/standard_project_system.h"
#include "toolchain/gcc_property_table.h"

#include <string>

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
    bool mayBeToolMacro(std::string_view name) const override;
    // C and C++ files.
    bool canCheckSyntax(ProjectElement *element, const std::string &configuration) override;
    bool supportsModuleScan(ProjectElement *, const std::string &) override { return true; }
    bool usesRanlib(ProjectElement *, const std::string &) override { return true; }
    bool usesModuleMapper(ProjectElement *, const std::string &) override { return true; }
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

    GCCProperties gccProperties;

protected:
    // The lists of a driver compile, each in its order.
    void appendCodeGeneration(ProjectElement *element, const std::string &configuration, int step,
                              StringList &list);
    void appendDebugInformation(ProjectElement *element, const std::string &configuration, StringList &list);
    void appendOptimization(ProjectElement *element, const std::string &configuration, StringList &list);
    // The additional options of the step's language and their files; false
    // after a missing file has been reported, which ends the step.
    bool appendAdditionalOptions(ProjectElement *element, const std::string &configuration, int step,
                                 Builder *builder, StringList &list);
    bool readOptionsFile(ProjectElement *element, const std::string &configuration, PropertyClass *property,
                         Builder *builder, StringList &list);

    // The value of property, macro-expanded, split at ";" with empty entries
    // dropped; with a step, the entries of its variant for the step's
    // language (the property named with "_c_only", "_cpp_only" or
    // "_asm_only") follow.
    StringList expandedList(ProjectElement *element, PropertyClass *property,
                            const std::string &configuration, int step = 0);

    // The GCC level of addToolMacros alone.
    void addDriverToolMacros(ProjectElement *element, const std::string &configuration, MacroMap &map);
    // Inserts name=value unless the map or the global macros name it.
    void addToolMacro(MacroMap &map, const std::string &name, const std::string &value) const;

private:
    std::string executableExtension_;
};
