#pragma once

#include "toolchain/gcc_project_system.h"

// The machine's own GNU tools (-host): the driver toolchain that builds for
// the machine it runs on. Without GCCDIR the tools are found on the search
// path; executables have no extension.
class GCCHostProjectSystem : public GCCProjectSystem {
public:
    explicit GCCHostProjectSystem(SystemMacros *macroTable);
    bool isHostedToolchain() const override { return true; }
    // The base list, then the debugger and remote debugging properties.
    void appendDebugProperties(ProjectElement *element, const std::string &configuration,
                               PropertyClassList &list) override;

    // Stored and listed for a debugger; no build step reads them.
    std::vector<PropertyClass *> debugProperties;

private:
    std::vector<std::unique_ptr<PropertyClass>> ownProperties_;
};
