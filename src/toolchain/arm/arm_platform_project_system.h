#pragma once

#include "toolchain/platform_project_system.h"

class StandardProjectSystem;

// The ARM half of the target toolchain.
class ARMPlatformProjectSystem : public PlatformProjectSystem {
public:
    explicit ARMPlatformProjectSystem(StandardProjectSystem *owner) : owner_(owner) {}
    std::string platformName() const override { return "ARM"; }
    int platformCode() const override { return 8; }
    // ".axf" when use_external_gcc is "Yes", else ".elf".
    std::string executableFileExtension(ProjectElement *element,
                                        const std::string &configuration) override;

private:
    StandardProjectSystem *owner_;
};
