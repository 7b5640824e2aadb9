#pragma once

#include "toolchain/arm/arm_platform_project_system.h"
#include "toolchain/ostrand_gcc_project_system.h"

// The target toolchain: the installation's cross tools for ARM cores.
class ARMProjectSystem : public OstrandGCCProjectSystem, public ARMPlatformProjectSystem {
public:
    explicit ARMProjectSystem(SystemMacros *macroTable)
        : OstrandGCCProjectSystem(macroTable), ARMPlatformProjectSystem(this) {}

    PlatformProjectSystem *platform() override { return this; }
    std::string platformName() const override { return ARMPlatformProjectSystem::platformName(); }
    int platformCode() const override { return ARMPlatformProjectSystem::platformCode(); }
    std::string executableFileExtension(ProjectElement *element,
                                        const std::string &configuration) override {
        return ARMPlatformProjectSystem::executableFileExtension(element, configuration);
    }
};
