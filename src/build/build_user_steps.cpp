// The user's commands around a project's build, and the directory step of
// an export.

#include "build/builder.h"
#include "build/idler.h"
#include "build/standard_project_system.h"
#include "support/command_line.h"
#include "support/file_info.h"
#include "support/file_utils.h"

namespace {

// Runs a user command chain under a step of its own; its directory is made
// first.
void runUserCommand(StandardProjectSystem &system, ProjectElement *element,
                    const std::string &configuration, Builder *builder, const std::string &command,
                    PropertyClass *workingDirectoryProperty, const std::string &verb) {
    const std::string projectDirectory = system.projectDirectory(element, configuration);
    std::string directory = system.expandedValue(element, workingDirectoryProperty, configuration);
    directory = directory.empty() ? projectDirectory : absolutePathFrom(projectDirectory, directory);
    makeDirectories(directory);
    builder->beginStep(element, verb + system.displayName(element) + "'", configuration, 0);
    for (const std::string &part : splitCommandChain(command, " && ")) {
        const std::vector<std::string> arguments = splitCommandLine(part);
        if (!arguments.empty())
            builder->addCommand(directory, arguments, {});
    }
    builder->endStep(element, configuration);
}

}  // namespace

bool StandardProjectSystem::preBuildStep(ProjectElement *element, const std::string &configuration,
                                         Builder *builder, BuildFlags flags) {
    const std::string command = expandedValue(element, toolProperties.preBuildCommand, configuration);
    if (command.empty() || !builder)
        return false;
    if (!(flags & BuildAlways) &&
        getPropertyValue(element, toolProperties.preBuildCommandControl, configuration) !=
            "Always Run") {
        // Ask, without a word, whether anything would be built. -nounity
        // stays, so that the question sees the folders as the build will.
        NullBuilder nothing;
        Idler noProgress;
        if (!buildElement(element, configuration, &nothing, &noProgress,
                          BuildCheckOnly | BuildQuietChecks | (flags & BuildNoUnity)))
            return false;
    }
    runUserCommand(*this, element, configuration, builder, command,
                   toolProperties.preBuildCommandWd, "Pre-Building '");
    return true;
}

void StandardProjectSystem::postBuildStep(ProjectElement *element, const std::string &configuration,
                                          Builder *builder, bool built) {
    const std::string command =
        expandedValue(element, toolProperties.postBuildCommand, configuration);
    if (command.empty() || !builder)
        return;
    if (!built && getPropertyValue(element, toolProperties.postBuildCommandControl, configuration) !=
                      "Always Run")
        return;
    runUserCommand(*this, element, configuration, builder, command,
                   toolProperties.postBuildCommandWd, "Post-Building '");
}

void StandardProjectSystem::directoryStep(ProjectElement *element, const std::string &configuration,
                                          Builder *builder) {
    const std::string intermediate =
        expandedValue(element, nodeProperties.buildIntermediateDirectory, configuration);
    const std::string output =
        expandedValue(element, nodeProperties.buildOutputDirectory, configuration);
    if ((intermediate.empty() && output.empty()) || !builder)
        return;
    const std::string directory = projectDirectory(element, configuration);
    builder->beginStep(element, "Creating Build Directories For '" + displayName(element) + "'",
                       configuration, 0);
    if (!intermediate.empty())
        builder->addCommand(directory, {"mkdir", "-p", intermediate}, {});
    if (!output.empty() && output != intermediate)
        builder->addCommand(directory, {"mkdir", "-p", output}, {});
    builder->endStep(element, configuration);
}
