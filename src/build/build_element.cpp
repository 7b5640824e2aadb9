// Placeholder until the per-node build lands.

#include "build/standard_project_system.h"
#include "support/exceptions.h"

bool StandardProjectSystem::buildElement(ProjectElement *, const std::string &, Builder *, Idler *,
                                         BuildFlags) {
    throw HException("building is not available yet");
}

StringList StandardProjectSystem::fileDependencies(ProjectElement *, const std::string &,
                                                   const std::string &) {
    return {};
}

void StandardProjectSystem::forcedIncludeFiles(ProjectElement *, const std::string &, StringList &) {}
