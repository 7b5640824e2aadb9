#include "frontend/run.h"

#include "environment/install_location.h"
#include "environment/system_macros.h"
#include "frontend/program_log.h"
#include "frontend/quillmake_arg_parse.h"
#include "support/exceptions.h"
#include "support/lock_file.h"

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <unistd.h>
#include <vector>

class ProjectElement;

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

// Steps 6 and 7: the studio macros, the packages directory and the -D
// macros. The user's global macros come from the environment settings once
// they exist; the -D macros are added over them.
void addMacros(const QuillmakeArgParse &args, SystemMacros &macros) {
    addStudioMacros(macros, text(args.studioDirectory), {});
    setPackagesDirectory(macros, text(args.packagesDirectory));
    for (const auto &[name, value] : args.globalMacros)
        macros.globalMacros()[name] = text(value);
}

// Steps 9 and 10. The warning object and the one project system of the run
// (hosted GNU tools with -host, ARM otherwise) are made here.
void createProjectSystem(const QuillmakeArgParse &, const std::string & /*templatesFile*/) {}

// Step 12: the tree of the run and its selected element.
ProjectElement *getTree(const QuillmakeArgParse &args) {
    if (!text(args.solutionFile).empty())
        throw HException("loading solution files is not available yet");
    throw HException("creating projects from a template or type is not available yet");
}

// Steps 13 to 18 on the selected element: -property and -sproperty, the check
// of the configuration, -showconfigs, the export run, and the packages
// directory of the solution. They come with the project model.
void prepareSelection(QuillmakeArgParse &, ProjectElement *) {}

// Steps 21 to 25: the builders, the idler and the build itself; returns the
// sum of the builders' error counts.
int runBuild(const QuillmakeArgParse &, ProjectElement *, unsigned /*threads*/, BuildFlags) {
    throw HException("building is not available yet");
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
    createProjectSystem(args, templatesFile);
    // 11.
    const BuildFlags flags = fixBuildFlags(args);
    // 12.
    ProjectElement *selected = getTree(args);
    // 13-18.
    prepareSelection(args, selected);
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
    const int errors = runBuild(args, selected, threads, flags);
    // 26.
    if (lock)
        lock->release();
    // 27.
    if (errors != 0) {
        std::fprintf(stderr, "There were %d build errors\n", errors);
        endProgram(1);
    }
    return 0;
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
