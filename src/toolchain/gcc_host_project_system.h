#pragma once

#include "toolchain/gcc_project_system.h"

// The machine's own GNU tools (-host): the driver toolchain that builds for
// the machine it runs on. Without GCCDIR the tools are found on the search
// path; executables have no extension.
class GCCHostProjectSystem : public GCCProjectSystem {
public:
    explicit GCCHostProjectSystem(SystemMacros *macroTable);
    bool isHostedToolchain() const override { return true; }
};
