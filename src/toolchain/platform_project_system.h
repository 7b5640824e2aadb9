#pragma once

#include "support/file_time.h"
#include "support/macro_expansion.h"

#include <string>
#include <vector>

class ProjectElement;
class PropertyClass;

// Everything of a cross toolchain that depends on the processor
// architecture. The operations are in the order in which the toolchain
// asks them; each takes the node and the configuration it is asked for.
class PlatformProjectSystem {
public:
    using StringList = std::vector<std::string>;
    using PropertyClassList = std::vector<PropertyClass *>;

    virtual ~PlatformProjectSystem() = default;

    // The processor support libraries of a link, appended to libs.
    virtual void appendRuntimeLibraries(ProjectElement *element, const std::string &configuration,
                                        StringList &libs) = 0;
    // True if a stack, heap or debug I/O property is newer than time.
    virtual bool debugIoOrStackChanged(ProjectElement *element, const std::string &configuration,
                                       FileTime time) = 0;
    // Stack sizes, heap size and the debug I/O symbol, as name=value.
    virtual void appendLinkerSymbolDefinitions(ProjectElement *element, const std::string &configuration,
                                               StringList &list) = 0;
    // Endianness, CMSE and architecture options of the linker proper.
    virtual void appendLinkerOptions(ProjectElement *element, const std::string &configuration,
                                     StringList &list) = 0;
    // Target options of the compiler proper, the assembler and a
    // preprocess-only run; forGcc chooses gcc's spelling over the clang
    // back end's.
    virtual void appendCompilerTargetOptions(bool forGcc, ProjectElement *element,
                                             const std::string &configuration, StringList &list) = 0;
    virtual void appendAssemblerTargetOptions(bool forGcc, ProjectElement *element,
                                              const std::string &configuration, StringList &list) = 0;
    virtual void appendPreprocessTargetOptions(bool forGcc, ProjectElement *element,
                                               const std::string &configuration, StringList &list) = 0;
    // The predefined macros of the target, as -D options.
    virtual void appendTargetDefines(ProjectElement *element, const std::string &configuration,
                                     StringList &list) = 0;
    // -mcpu= and the float ABI for the bridge between LTO and the linker.
    virtual void appendBridgeTargetOptions(ProjectElement *element, const std::string &configuration,
                                           StringList &list) = 0;
    // The options of a driver command of the step; false if the step is
    // refused.
    virtual bool appendDriverTargetOptions(ProjectElement *element, const std::string &configuration, int step,
                                           StringList &list) = 0;
    // The platform's rows for a node of each kind.
    virtual void appendAssemblerProperties(ProjectElement *element, const std::string &configuration,
                                           PropertyClassList &list) = 0;
    virtual void appendCProperties(ProjectElement *element, const std::string &configuration,
                                   PropertyClassList &list) = 0;
    virtual void appendLinkerProperties(ProjectElement *element, const std::string &configuration,
                                        PropertyClassList &list) = 0;
    virtual void appendLibraryProperties(ProjectElement *element, const std::string &configuration,
                                         PropertyClassList &list) = 0;
    virtual void resetElement(ProjectElement *element) = 0;
    virtual void appendDebugProperties(ProjectElement *element, const std::string &configuration,
                                       PropertyClassList &list) = 0;
    virtual void appendToolchainProperties(ProjectElement *element, const std::string &configuration,
                                           PropertyClassList &list) = 0;
    // GCCTarget, LibExt, LibArch and the other macros of the target.
    virtual void addTargetMacros(ProjectElement *element, const std::string &configuration, MacroMap &map) = 0;
    // Target options for an external code model.
    virtual void appendCodeModelOptions(ProjectElement *element, const std::string &configuration,
                                        StringList &list) = 0;
    // Rewrites the library names of a link.
    virtual void filterLinkerInputs(ProjectElement *element, const std::string &configuration,
                                    StringList &libs) = 0;
    // The CMSE import library that a link makes beside the program, or empty.
    virtual std::string secondaryLinkOutput(ProjectElement *element, const std::string &configuration) = 0;
    // Rewrites old library paths, of a tree and of one value.
    virtual void migrateElement(ProjectElement *element) = 0;
    virtual void migrateValue(std::string &value) = 0;
    virtual std::string platformName() const = 0;
    virtual int platformCode() const = 0;
    virtual std::string executableFileExtension(ProjectElement *element, const std::string &configuration) = 0;
    // The human name of the chosen runtime library variant.
    virtual std::string describeLibraryVariant(ProjectElement *element, const std::string &configuration) = 0;
};
