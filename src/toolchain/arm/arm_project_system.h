#pragma once

#include "toolchain/arm/arm_platform_project_system.h"
#include "toolchain/ostrand_gcc_project_system.h"

// The target toolchain: the installation's cross tools for ARM cores.
class ARMProjectSystem : public OstrandGCCProjectSystem, public ARMPlatformProjectSystem {
public:
    explicit ARMProjectSystem(SystemMacros *macroTable)
        : OstrandGCCProjectSystem(macroTable), ARMPlatformProjectSystem(this) {}

    PlatformProjectSystem *platform() override { return this; }
    // After storing a value of arm_core_type, the architecture follows the
    // core, and an instruction set of "None" becomes the core's.
    void setPropertyValue(ProjectElement *element, PropertyClass *property, const std::string &configuration,
                          const std::string &value) override;
    // Takes the target options of an imported link command into the ARM
    // rows; the others go to the GNU rows.
    void importLinkerOption(ProjectElement *element, const std::string &configuration,
                            StringList &options) override;

    // Both halves name these; the project system's answer, which asks the
    // platform where it should, is the one to call.
    using OstrandGCCProjectSystem::appendAssemblerProperties;
    using OstrandGCCProjectSystem::appendCProperties;
    using OstrandGCCProjectSystem::appendDebugProperties;
    using OstrandGCCProjectSystem::appendLibraryProperties;
    using OstrandGCCProjectSystem::appendLinkerProperties;
    using OstrandGCCProjectSystem::appendToolchainProperties;
    using OstrandGCCProjectSystem::executableFileExtension;
    using OstrandGCCProjectSystem::migrateElement;
    using OstrandGCCProjectSystem::migrateValue;
    using OstrandGCCProjectSystem::platformCode;
    using OstrandGCCProjectSystem::platformName;
    using OstrandGCCProjectSystem::secondaryLinkOutput;
};
