#pragma once

#include "toolchain/arm/arm_property_table.h"
#include "toolchain/arm/arm_target.h"
#include "toolchain/platform_project_system.h"

class OstrandGCCProjectSystem;

// The ARM half of the target toolchain: it adds the ARM rows to its
// project system's table and turns them into options, macros and library
// names. It reads the settings of a node into an arm::Target and leaves
// the lists to the functions of arm_target.h.
class ARMPlatformProjectSystem : public PlatformProjectSystem {
public:
    explicit ARMPlatformProjectSystem(OstrandGCCProjectSystem *owner);

    // The target settings of the node in the configuration.
    arm::Target target(ProjectElement *element, const std::string &configuration);

    void appendRuntimeLibraries(ProjectElement *element, const std::string &configuration,
                                StringList &libs) override;
    bool debugIoOrStackChanged(ProjectElement *element, const std::string &configuration, FileTime time) override;
    void appendLinkerSymbolDefinitions(ProjectElement *element, const std::string &configuration,
                                       StringList &list) override;
    void appendLinkerOptions(ProjectElement *element, const std::string &configuration, StringList &list) override;
    void appendCompilerTargetOptions(bool forGcc, ProjectElement *element, const std::string &configuration,
                                     StringList &list) override;
    void appendAssemblerTargetOptions(bool forGcc, ProjectElement *element, const std::string &configuration,
                                      StringList &list) override;
    void appendPreprocessTargetOptions(bool forGcc, ProjectElement *element, const std::string &configuration,
                                       StringList &list) override;
    void appendTargetDefines(ProjectElement *element, const std::string &configuration, StringList &list) override;
    void appendBridgeTargetOptions(ProjectElement *element, const std::string &configuration,
                                   StringList &list) override;
    bool appendDriverTargetOptions(ProjectElement *element, const std::string &configuration, int step,
                                   StringList &list) override;
    void appendAssemblerProperties(ProjectElement *element, const std::string &configuration,
                                   PropertyClassList &list) override;
    void appendCProperties(ProjectElement *element, const std::string &configuration,
                           PropertyClassList &list) override;
    void appendLinkerProperties(ProjectElement *element, const std::string &configuration,
                                PropertyClassList &list) override;
    void appendLibraryProperties(ProjectElement *element, const std::string &configuration,
                                 PropertyClassList &list) override;
    void resetElement(ProjectElement *) override {}
    void appendDebugProperties(ProjectElement *element, const std::string &configuration,
                               PropertyClassList &list) override;
    void appendToolchainProperties(ProjectElement *element, const std::string &configuration,
                                   PropertyClassList &list) override;
    void addTargetMacros(ProjectElement *element, const std::string &configuration, MacroMap &map) override;
    void appendCodeModelOptions(ProjectElement *element, const std::string &configuration,
                                StringList &list) override;
    void filterLinkerInputs(ProjectElement *element, const std::string &configuration, StringList &libs) override;
    std::string secondaryLinkOutput(ProjectElement *element, const std::string &configuration) override;
    void migrateElement(ProjectElement *element) override;
    void migrateValue(std::string &value) override;
    std::string platformName() const override { return "ARM"; }
    int platformCode() const override { return 8; }
    // ".axf" when use_external_gcc is "Yes", else ".elf".
    std::string executableFileExtension(ProjectElement *element, const std::string &configuration) override;
    std::string describeLibraryVariant(ProjectElement *element, const std::string &configuration) override;

    ARMProperties armProperties;

private:
    OstrandGCCProjectSystem *owner_;
};
