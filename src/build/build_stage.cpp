// Staging (copying files to their place) and combining (one command over
// all files of a project).

#include "build/node_build.h"
#include "support/command_line.h"
#include "support/file_utils.h"
#include "support/paths.h"

// ---- Kind 9: stage.

bool NodeBuild::stageProject() {
    stepDone();
    const std::string command = expanded(system.toolProperties.stagePostBuildCommand);
    if (!command.empty() && force && !(flags & BuildCheckOnly) && hasBuilder) {
        beginStep("Post-stage command");
        builder->addCommand(workingDirectory(system.toolProperties.stagePostBuildCommandWd),
                            splitCommandLine(command), {});
        endStep();
    }
    return force;
}

bool NodeBuild::stageFile() {
    stepDone();
    const std::string target =
        system.outputFilePath(StandardProjectSystem::KindStage, element, configuration);
    const std::string source = system.sourcePath(element, configuration);

    beginCheck();
    std::string resolved;
    FileTime targetTime;
    const bool exists = system.checkTarget(projectDirectory, target, resolved, targetTime, builder,
                                           quiet, true);
    const bool run =
        force || !exists ||
        !system.inputsAreOlder(projectDirectory, target, targetTime, {source}, builder, quiet) ||
        !system.propertiesChanged(element, configuration, targetTime,
                                  StandardProjectSystem::KindStage, builder, quiet);
    if (!run)
        return upToDate("' is up to date.");
    endCheck();

    if ((flags & BuildClean) && exists)
        clean({resolved});
    if (checkOnly())
        return true;

    beginStep("Copying '" + name + "'");
    const std::string directory = workingDirectory(system.toolProperties.stageCommandWd);
    makeDirectories(directory);
    const StringList parts = splitCommandChain(
        expanded(system.toolProperties.stageCommand, {{"StageOutputFilePath", resolved}}), "&&");
    if (parts.empty()) {
        if (!quiet)
            builder->reportOutcome("nothing to do");
    } else {
        addCommands(parts, directory, resolved);
        setReadonly(system.toolProperties.stageSetReadonly, directory, resolved);
    }
    endStep();
    return true;
}

// ---- Kind 10: combine.

bool NodeBuild::combine() {
    stepDone();
    const std::string target =
        system.outputFilePath(StandardProjectSystem::KindCombine, element, configuration);

    // Every file below the project that is built, in tree order.
    StringList inputs;
    for (ProjectElement *node = StandardProjectSystem::firstChild(element); node;) {
        if (StandardProjectSystem::isFile(node) &&
            system.getPropertyValue(node, system.nodeProperties.buildExcludeFromBuild, configuration)
                    .value_or("No") == "No")
            inputs.push_back(system.sourcePath(node, configuration));
        ProjectElement *next = StandardProjectSystem::firstChild(node);
        while (!next && node != element) {
            next = StandardProjectSystem::nextSibling(node);
            if (!next)
                node = StandardProjectSystem::parent(node);
        }
        node = next;
    }

    beginCheck();
    std::string resolved;
    FileTime targetTime;
    // Without a target there is nothing to compare: the step always runs.
    bool exists = false;
    bool run = true;
    if (!target.empty()) {
        exists = system.checkTarget(projectDirectory, target, resolved, targetTime, builder, quiet,
                                    false);
        run = force || !exists ||
              !system.inputsAreOlder(projectDirectory, target, targetTime, inputs, builder, quiet) ||
              !system.propertiesChanged(element, configuration, targetTime,
                                        StandardProjectSystem::KindCombine, builder, quiet) ||
              !system.inputsAreOlder(projectDirectory, target, targetTime,
                                     system.fileDependencies(element, configuration, resolved),
                                     builder, quiet);
    }
    if (!run)
        return upToDate("' is up to date");
    endCheck();

    if ((flags & BuildClean) && exists)
        clean({resolved});
    if (checkOnly())
        return true;

    const std::string directory = workingDirectory(system.toolProperties.combineCommandWd);
    StringList relativeInputs;
    for (const std::string &input : inputs)
        relativeInputs.push_back(relativeOrAbsolute(directory, input));
    const MacroMap macros{{"CombiningOutputFilePath", resolved},
                          {"CombiningRelInputPaths", quotedList(relativeInputs)}};
    beginStep("Combining '" + name + "'");
    makeDirectories(directory);
    const StringList parts =
        splitCommandChain(expanded(system.toolProperties.combineCommand, macros), "&&");
    if (parts.empty()) {
        if (!quiet)
            builder->reportOutcome("nothing to do");
    } else {
        addCommands(parts, directory, resolved);
        if (!resolved.empty())
            setReadonly(system.toolProperties.combineSetReadonly, directory, resolved);
    }
    endStep();
    return true;
}
