#include "frontend/run.h"

#include "environment/environment_settings.h"
#include "environment/install_location.h"
#include "environment/system_macros.h"
#include "frontend/console_build.h"
#include "frontend/console_export.h"
#include "frontend/console_progress.h"
#include "frontend/program_log.h"
#include "frontend/quillmake_arg_parse.h"
#include "frontend/selection.h"
#include "frontend/template_project.h"
#include "project/property_group_files.h"
#include "build/standard_project_system.h"
#include "support/exceptions.h"
#include "toolchain/arm/arm_project_system.h"
#include "toolchain/gcc_host_project_system.h"
#include "support/file_info.h"
#include "support/lock_file.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string_view>
#include <unistd.h>
#include <vector>

std::string templatesFileText(const std::optional<std::string> &templatesFileOption, bool host) {
    if (!text(templatesFileOption).empty())
        return *templatesFileOption;
    if (host)
        return "$(StudioDir)/targets/host_project_templates.xml";
    return "$(StudioDir)/targets/$(PROJECT_TEMPLATE_FILE:project_templates).xml;"
           "$(TargetsDir)/*/project_templates*.xml;"
           "$(TargetsDir)/*/*/project_templates*.xml";
}

BuildFlags fixBuildFlags(QuillmakeArgParse &args) {
    if (args.show)
        args.echo = true;
    BuildFlagOptions options;
    options.clean = args.clean;
    options.rebuild = args.rebuild;
    options.verbose = args.verbose;
    options.keepGoing = args.keepGoing;
    options.noUnity = args.noUnity;
    options.order = args.order;
    options.batch = args.batch;
    options.fp = args.fp;
    return computeBuildFlags(options);
}

unsigned chooseThreadCount(unsigned threadnumOption, const char *environmentValue,
                           long processorsOnline) {
    if (threadnumOption != 0)
        return threadnumOption;
    if (environmentValue) {
        if (const unsigned fromEnvironment = toUnsigned(environmentValue))
            return fromEnvironment;
    }
    return processorsOnline > 0 ? static_cast<unsigned>(processorsOnline) : 1;
}

unsigned threadCount(unsigned threadnumOption) {
    return chooseThreadCount(threadnumOption, std::getenv("QUILLMAKE_THREADNUM"),
                             sysconf(_SC_NPROCESSORS_ONLN));
}

std::unique_ptr<QTx::LockFile> claimLockFile(const std::string &path, int milliseconds,
                                             std::ostream &err) {
    auto lock = std::make_unique<QTx::LockFile>(path);
    if (lock->lock(milliseconds))
        return lock;
    err << "Failed to claim lock file: " << path << '\n' << std::flush;
    return nullptr;
}

namespace {

// Step 5. The crash handler isn't part of the program yet; tidying the dump
// directory and installing the handler go here.
void installCrashHandler() {}

// Steps 6 and 7: the studio macros with the user's global macros, the
// packages directory, and the -D macros over the global ones.
void addMacros(const QuillmakeArgParse &args, SystemMacros &macros) {
    EnvironmentSettings *settings = environmentSettings();
    addStudioMacros(macros, text(args.studioDirectory),
                    settings ? settings->globalMacros->stringList() : std::vector<std::string>());
    setPackagesDirectory(macros, text(args.packagesDirectory));
    for (const auto &[name, value] : args.globalMacros)
        macros.globalMacros()[name] = text(value);
}

// The ARM tools lie below $(StudioDir) unless the user's settings name
// another directory in its place.
void setToolStudioDirectory(StandardProjectSystem &system, const std::string &directory) {
    static constexpr std::string_view studioDir = "$(StudioDir)";
    PropertyClass *toolchainDirectory = system.nodeProperties.buildToolchainDirectory;
    const std::optional<std::string> &value = toolchainDirectory->defaultValue();
    if (value && value->starts_with(studioDir))
        toolchainDirectory->setDefaultValue(directory + value->substr(studioDir.size()));
}

// Step 10: the hosted GNU tools with -host, else the ARM cross tools.
std::unique_ptr<StandardProjectSystem> createProjectSystem(const QuillmakeArgParse &args,
                                                           SystemMacros &macros,
                                                           ProjectSystemHelpers *warning) {
    std::unique_ptr<StandardProjectSystem> system;
    if (args.host)
        system = std::make_unique<GCCHostProjectSystem>(&macros);
    else {
        system = std::make_unique<ARMProjectSystem>(&macros);
        if (const auto *settings = dynamic_cast<ARMTarnbenchEnvironmentSettings *>(environmentSettings()))
            setToolStudioDirectory(*system, settings->studioDirDirectory->string());
    }
    system->installDirectory = installDirectory();
    system->helpers = warning;
    return system;
}

long elapsedMilliseconds(std::chrono::steady_clock::time_point start) {
    return static_cast<long>(std::chrono::duration_cast<std::chrono::milliseconds>(
                                 std::chrono::steady_clock::now() - start)
                                 .count());
}

// Step 12 without a solution file: a project made in memory from -type or
// -template, which is the selected element.
ProjectElement *createTree(const QuillmakeArgParse &args, ProjectSystem &system) {
    const TemplateProjectRequest request{text(args.projectName), text(args.projectType),
                                         text(args.templateName), system.templatesFilePath, args.files};
    QuillmakeProjectLoadProgress progress(true);
    ProjectElement *project = createTemplateProject(system, request, &progress, std::cout);
    std::cout.flush();
    if (!project)
        endProgram(1);
    return project;
}

// Step 12: the tree of the run and its selected element.
ProjectElement *getTree(const QuillmakeArgParse &args, ProjectSystem &system) {
    if (text(args.solutionFile).empty())
        return createTree(args, system);
    QuillmakeProjectLoadProgress progress(true);
    const auto start = std::chrono::steady_clock::now();
    ProjectElement *selected =
        system.loadSolution(FileInfo(*args.solutionFile).absoluteFilePath(), nullptr, nullptr,
                          &progress, true);
    if (args.time) {
        const bool exporting = args.exportBuild || args.exportParallelBuild;
        std::fprintf(exporting ? stderr : stdout, "solution load time %ld seconds\n",
                     elapsedMilliseconds(start) / 1000);
    }
    std::fflush(stdout);
    if (!text(args.projectName).empty()) {
        selected = selectProject(system, selected, *args.projectName, std::cout);
        if (!selected)
            endProgram(1);
    }
    if (!text(args.solutionName).empty()) {
        selected = selectSolution(system, *args.solutionName, std::cout);
        if (!selected)
            endProgram(1);
    }
    return selected;
}

// Steps 13 to 18 on the selected element: -property and -sproperty, the check
// of the configuration, -showconfigs, the export run, and the packages
// directory of the solution.
void prepareSelection(const QuillmakeArgParse &args, StandardProjectSystem &system,
                      ProjectElement *selected) {
    const std::string &configuration = text(args.configuration);
    for (const std::string &entry : args.projectProperties) {
        if (!setCommandLineProperty(system, selected, configuration, entry, std::cout))
            endProgram(1);
    }
    const std::string &solutionConfiguration =
        text(args.solutionConfiguration).empty() ? configuration : *args.solutionConfiguration;
    for (const std::string &entry : args.solutionProperties)
        setSolutionProperty(system, solutionConfiguration, entry);

    if (!checkConfiguration(system, selected, configuration, std::cout))
        endProgram(1);
    if (args.showConfigurations) {
        showConfigurations(system, selected, configuration, args.batch, std::cout);
        endProgram(0);
    }
    if (args.exportBuild || args.exportParallelBuild) {
        // An export claims no lock file and leaves package_directory alone.
        ConsoleExportOptions options;
        options.configuration = configuration;
        options.parallelForm = args.exportParallelBuild;
        options.plainForm = args.exportBuild;
        options.includeProjectName = args.exportIncludeProjectName;
        options.noUnity = args.noUnity;
        options.batch = args.batch;
        options.time = args.time;
        runConsoleExport(system, selected, options);
        endProgram(0);
    }

    const std::optional<std::string> packages = system.getExpandedPropertyValue(
        system.rootOf(), system.nodeProperties.packageDirectory, configuration);
    if (packages && !packages->empty()) {
        setPackagesDirectory(*system.macros, *packages);
        system.propertyGroupFiles().packageLibraries.scanned = false;
    }
}

// Steps 21 to 25: the builders, the idler and the build itself.
ConsoleBuildResult runBuild(const QuillmakeArgParse &args, StandardProjectSystem &system,
                            ProjectElement *selected, unsigned threads, BuildFlags flags) {
    ConsoleBuildOptions options;
    options.configuration = text(args.configuration);
    options.threads = threads;
    options.flags = flags;
    options.echo = args.echo;
    options.show = args.show;
    options.noStderr = args.noStderr;
    options.verbose = args.verbose;
    options.batch = args.batch;
    options.time = args.time;
    return runConsoleBuild(system, selected, options);
}

std::vector<std::string> argumentList(int argc, char **argv) {
    return std::vector<std::string>(argv, argv + argc);
}

int run(int argc, char **argv) {
    // 1. The system macro table: made once, and kept to the end of the process.
    static SystemMacros *const systemMacros = new SystemMacros;
    SystemMacros &macros = *systemMacros;
    // 2. Where the program is installed.
    setInstallDirectories(executablePath(argv[0]), 1);
    // 3. The error reporter; it lives to the end of the process.
    ProgramLog *log = new ProgramLog(argv[0], std::cerr);
    ProgramLog::setInstance(log);
    // 4. The command line; it is valid from here on.
    QuillmakeArgParse args(log, macros);
    args.checkedParse(argumentList(argc, argv));
    // 5-7.
    installCrashHandler();
    addMacros(args, macros);
    // 8.
    const std::string templatesFile = templatesFileText(args.templatesFile, args.host);
    // 9-10.
    QuillmakeWarning warning(args.noStderr);
    std::unique_ptr<StandardProjectSystem> system = createProjectSystem(args, macros, &warning);
    system->templatesFilePath = templatesFile;
    // 11.
    const BuildFlags flags = fixBuildFlags(args);
    // 12.
    ProjectElement *selected = getTree(args, *system);
    // 13-18.
    prepareSelection(args, *system, selected);
    // 19.
    const unsigned threads = threadCount(args.threadCount);
    // 20.
    std::unique_ptr<QTx::LockFile> lock;
    if (!text(args.lockFile).empty()) {
        lock = claimLockFile(*args.lockFile, lockFileTimeout, std::cerr);
        if (!lock)
            endProgram(1);
    }
    // 21-25.
    const ConsoleBuildResult result = runBuild(args, *system, selected, threads, flags);
    // 24. The settings files are written as the settings go.
    closeEnvironmentSettings();
    // 26.
    if (lock)
        lock->release();
    if (result.interrupted) {
        std::fprintf(stderr, "error: build interrupted\n");
        endProgram(1);
    }
    // 27.
    if (result.errors != 0) {
        std::fprintf(stderr, "There were %d build errors\n", result.errors);
        endProgram(1);
    }
    // The tree and the caches of the build are left to the end of the
    // process: freeing a large solution node by node costs a tenth of a
    // build that has nothing to do.
    endProgram(0);
}

}  // namespace

int quillmakeMain(int argc, char **argv) {
    try {
        return run(argc, argv);
    } catch (const HException &e) {
        std::fprintf(stderr, "error: %s\n", e.message().c_str());
    } catch (const SolutionLoadError &e) {
        if (e.isBadXml())
            std::fprintf(stderr, "load error: bad XML file - %s\n", e.message().c_str());
        else
            std::fprintf(stderr, "load error: %s %s\n", e.detail().c_str(), e.message().c_str());
    } catch (...) {
        std::fprintf(stderr, "Internal error detected\n");
    }
    return 1;
}
