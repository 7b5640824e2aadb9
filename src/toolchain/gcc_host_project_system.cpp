#include "toolchain/gcc_host_project_system.h"

GCCHostProjectSystem::GCCHostProjectSystem(SystemMacros *macroTable)
    : GCCProjectSystem(macroTable, "$(GCCDIR:)", "$(StudioDir)/bin/gcc_warning_options.xml", "",
                       GCCTableFlags{true, false, true, true, false}) {}
