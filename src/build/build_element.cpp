// buildElement: the walk over a node and its children, and the branches for
// source files (compile and assemble) and for externally built projects.

#include "build/node_build.h"
#include "support/command_line.h"
#include "support/file_info.h"

#include <vector>

namespace {

bool startsWith(const std::string &text, std::string_view prefix) {
    return text.compare(0, prefix.size(), prefix) == 0;
}

// A node whose children are being built.
struct Visit {
    ProjectElement *node;
    ProjectElement *nextChild;
    int kind;
    bool force;
};

}  // namespace

bool StandardProjectSystem::buildElement(ProjectElement *element, const std::string &configuration,
                                         Builder *builder, Idler *idler, BuildFlags flags) {
    NullBuilder nullBuilder;
    Idler plainIdler;
    Idler *progress = idler ? idler : &plainIdler;

    // Children come before their parent, walked with a stack of our own so
    // that the depth of the tree can't exhaust the call stack.
    std::vector<Visit> stack;
    auto enter = [&](ProjectElement *node) -> std::optional<bool> {
        if (isConfiguration(node))
            return false;
        selectPlatform(node, configuration);
        bool force = (flags & BuildAlways) ||
                     getPropertyValue(node, nodeProperties.buildAlwaysRebuild, configuration) == "Yes";
        const bool unity =
            isUnityFolder(node, configuration, flags & BuildNoUnity) &&
            getPropertyValue(node, nodeProperties.buildExcludeFromBuild, configuration).value_or("No") ==
                "No";
        if (unity) {
            if (const std::optional<bool> ended =
                    buildUnityFolder(*this, node, configuration, builder, progress, flags, force))
                return ended;
        }
        const int kind = buildKind(node, configuration, flags);
        const bool walk = kind != KindInput && !(flags & BuildFilesAreJobs) && !unity;
        stack.push_back({node, walk ? firstChild(node) : nullptr, kind, force});
        return std::nullopt;
    };
    auto finish = [&](const Visit &visit) {
        NodeBuild node(*this, visit.node, configuration, builder, &nullBuilder, progress, flags,
                       visit.force);
        if (flags & BuildAnalyse) {
            if (visit.kind != KindC && visit.kind != KindCpp)
                return false;
            node.stepDone();
            analyzeFile(visit.node, configuration, node.builder);
            return true;
        }
        switch (visit.kind) {
        case KindNone:
            return isFolder(visit.node) && visit.force;
        case KindC:
        case KindCpp:
        case KindAssembly:
            return node.compile(visit.kind);
        case KindInput:
            return isProject(visit.node) && node.externalCommands();
        case KindLink:
            return node.link();
        case KindArchive:
            return node.archive();
        case KindStage:
            return isProject(visit.node) ? node.stageProject() : node.stageFile();
        case KindCombine:
            return node.combine();
        default:
            return false;
        }
    };

    if (const std::optional<bool> ended = enter(element))
        return *ended;
    while (true) {
        Visit &top = stack.back();
        if (ProjectElement *child = top.nextChild) {
            top.nextChild = nextSibling(child);
            if (const std::optional<bool> ended = enter(child); ended && *ended)
                stack.back().force = true;
            continue;
        }
        const Visit visit = top;
        stack.pop_back();
        const bool built = finish(visit);
        if (stack.empty())
            return built;
        if (built)
            stack.back().force = true;
    }
}

// ---- Kinds 2, 3, 4: compile and assemble.

bool NodeBuild::compile(int kind) {
    stepDone();
    const std::string source = system.sourcePath(element, configuration);
    // A unity folder's file may not be written yet.
    if (!system.isFolder(element) && !system.fileStatusCache().status(source).exists) {
        beginStep("Checking Source File Exists");
        builder->reportError(source + " does not exist.");
        endStep();
        if (!(flags & BuildKeepGoing))
            return false;
    }

    const std::string target = system.compiledFilePath(kind, element, configuration);
    beginCheck();
    std::string resolved;
    FileTime targetTime;
    const bool exists = system.checkTarget(projectDirectory, target, resolved, targetTime, builder,
                                           quiet, true);
    bool run = force || !exists;
    const StringList sourceOnly{source};
    if (!run)
        run = !system.inputsAreOlder(projectDirectory, target, targetTime, sourceOnly, builder, quiet);
    if (!run) {
        // The dependency file's list (or the source alone), then the forced
        // include files; the list is the cache's own, not a copy.
        const StringList &dependencies = system.fileDependencies(element, configuration, resolved);
        StringList forced;
        system.forcedIncludeFiles(element, configuration, forced);
        run = !system.inputsAreOlder(projectDirectory, target, targetTime,
                                     dependencies.empty() ? sourceOnly : dependencies, builder, quiet) ||
              !system.inputsAreOlder(projectDirectory, target, targetTime, forced, builder, quiet);
    }
    if (!run)
        run = !system.propertiesChanged(element, configuration, targetTime, kind, builder, quiet);
    if (!run)
        return upToDate("' is up to date");
    endCheck();

    if ((flags & BuildClean) && exists)
        cleanOutputs(kind, resolved);
    if (checkOnly())
        return true;

    std::string compiledSource = source;
    const StringList preCommand =
        splitCommandLine(expanded(system.toolProperties.compilePreBuildCommand));
    if (!preCommand.empty()) {
        const std::string directory =
            workingDirectory(system.toolProperties.compilePreBuildCommandWd);
        std::string output = expanded(system.toolProperties.compilePreBuildCommandOutputFileName);
        if (!output.empty()) {
            output = absolutePathFrom(directory, output);
            compiledSource = output;
        }
        beginStep("Pre-compile command ");
        builder->addCommand(directory, preCommand, output);
        endStep();
    }

    const std::string projectType =
        system.getPropertyValue(element, system.nodeProperties.projectType, configuration)
            .value_or("");
    if (startsWith(projectType, "Externally Built"))
        externalCompile(kind, resolved);
    else
        system.buildStep(element, configuration, kind, relative(resolved), resolved,
                         {compiledSource}, builder, flags);

    if ((kind == StandardProjectSystem::KindC || kind == StandardProjectSystem::KindCpp) &&
        system.getPropertyValue(element, system.toolProperties.analyzeAfterCompile, configuration) ==
            "Yes")
        system.analyzeFile(element, configuration, builder);

    const MacroMap targetMacros{{"TargetPath", resolved}, {"RelTargetPath", relative(resolved)}};
    const StringList postCommand =
        splitCommandLine(expanded(system.toolProperties.compilePostBuildCommand, targetMacros));
    if (!postCommand.empty()) {
        beginStep("Post-compile command ");
        builder->addCommand(workingDirectory(system.toolProperties.compilePostBuildCommandWd),
                            postCommand, {});
        endStep();
    }
    return true;
}

void NodeBuild::externalCompile(int kind, const std::string &target) {
    const ToolProperties &tools = system.toolProperties;
    PropertyClass *command = kind == StandardProjectSystem::KindC     ? tools.externalCCompileCommand
                             : kind == StandardProjectSystem::KindCpp ? tools.externalCppCompileCommand
                                                                      : tools.externalAssembleCommand;
    const std::string dependencyFile = system.dependencyFilePath(element, configuration, target);
    MacroMap macros{{"TargetPath", target},
                    {"RelTargetPath", relative(target)},
                    {"DependencyPath", dependencyFile},
                    {"RelDependencyPath", relative(dependencyFile)}};
    system.externalCompileMacros(element, configuration, kind, macros);
    const StringList arguments = splitCommandLine(expanded(command, macros));
    if (arguments.empty())
        return;
    beginStep((kind == StandardProjectSystem::KindAssembly ? "Assembling '" : "Compiling '") + name +
              "'");
    builder->addCommand(projectDirectory, arguments, target);
    endStep();
}

void StandardProjectSystem::externalCompileMacros(ProjectElement *element,
                                                  const std::string &configuration, int kind,
                                                  MacroMap &map) {
    auto list = [&](const char *prefix, PropertyClass *property) {
        return joinedList(getPropertyList(prefix, element, property, configuration, true, false, false));
    };
    map["Defines"] = list("-D", toolProperties.cPreprocessorDefinitions);
    map["Undefines"] = list("-U", toolProperties.cPreprocessorUndefinitions);
    map["Includes"] = list("-I", toolProperties.cUserIncludeDirectories);
    map["IncludeFiles"] = list("-include ", toolProperties.cIncludeFiles);
    map["MacroFiles"] = list("-imacros ", toolProperties.cMacrosFiles);
    if (kind == KindAssembly) {
        map["AsmOptions"] = list("", toolProperties.asmAdditionalOptions);
    } else {
        map["COptions"] = list("", toolProperties.cAdditionalOptions);
        if (kind == KindC)
            map["COnlyOptions"] = list("", toolProperties.cOnlyAdditionalOptions);
        else
            map["CppOnlyOptions"] = list("", toolProperties.cppOnlyAdditionalOptions);
    }
}

// ---- Kind 5: the commands of an externally built project.

bool NodeBuild::externalCommands() {
    if (!hasBuilder)
        return false;
    const std::string cleanCommand = expanded(system.toolProperties.externalCleanCommand);
    if ((force || (flags & BuildClean)) && !cleanCommand.empty()) {
        beginStep("Running Clean command ");
        builder->addCommand(projectDirectory, splitCommandLine(cleanCommand), {});
        endStep();
    }
    if (flags & BuildCheckOnly)
        return true;
    const std::string buildCommand = expanded(system.toolProperties.externalBuildCommand);
    if (buildCommand.empty())
        return force;
    beginStep("Running Build command ");
    builder->addCommand(projectDirectory, splitCommandLine(buildCommand),
                        system.outputFilePath(StandardProjectSystem::KindInput, element, configuration));
    endStep();
    return true;
}

// ---- Cleaning.

void NodeBuild::cleanOutputs(int kind, const std::string &target) {
    StringList files{target};
    if (kind == StandardProjectSystem::KindC || kind == StandardProjectSystem::KindCpp ||
        kind == StandardProjectSystem::KindAssembly)
        files.push_back(system.dependencyFilePath(element, configuration, target));
    system.appendIntermediateFiles(element, configuration, kind, target, files);
    if (kind == StandardProjectSystem::KindLink) {
        std::string path;
        if (system.mapFilePath(element, configuration, target, path))
            files.push_back(path);
        if (system.linkerLogFilePath(element, configuration, path))
            files.push_back(path);
    }
    clean(files);
}
