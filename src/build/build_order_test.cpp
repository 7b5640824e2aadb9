// The order of a build's jobs, the slots that replay them one command at a
// time, and what a failure or an interrupt stops.

#include "build/interrupt.h"
#include "build/project_system_builder.h"
#include "build/standard_project_system.h"
#include "project/project_system_helpers.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <memory>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

using Strings = std::vector<std::string>;

class RecordingHelpers : public ProjectSystemHelpers {
public:
    void warning(ProjectElement *, const std::string &configuration, const std::string &title,
                 const std::vector<std::string> &messages) override {
        warnings.push_back(configuration + ": " + title);
        for (const std::string &message : messages)
            warnings.back() += " | " + message;
    }
    Strings warnings;
};

// Each file node builds as one step with one command named after the file;
// a file named "error.c" reports an error instead.
class ScriptedSystem : public StandardProjectSystem {
public:
    using StandardProjectSystem::StandardProjectSystem;
    bool buildElement(ProjectElement *element, const std::string &configuration, Builder *builder,
                      Idler *idler, BuildFlags) override {
        if (!isFile(element))
            return false;
        const std::string name = elementName(element);
        idler->stepDone(element, configuration);
        builder->beginStep(element, "Compiling '" + name + "'", configuration, 0);
        if (name == "error.c") {
            builder->reportError("cannot compile");
        } else {
            builder->addCommand("/work", {"cc", name}, "/out/" + name + ".o");
            builder->addCommand("/work", {"post", name}, "");
        }
        builder->endStep(element, configuration);
        return true;
    }
};

// A slot's builder: a command ends at its third wait (the first comes in the
// pass that starts it, so it stays busy for two more), with status 1 for
// "cc fail.c" and 0 for the rest. Every call is logged in order, with the
// slot's number.
class FakeBuilder : public Builder {
public:
    FakeBuilder(int slot, Strings &log) : slot_(slot), log_(log) {}
    void beginStep(ProjectElement *, const std::string &title, const std::string &, int) override { note("begin " + title); }
    void endStep(ProjectElement *, const std::string &) override { note("end"); }
    void addCommand(const std::string &, const std::vector<std::string> &arguments, const std::string &) override {
        running_ = arguments[0] + " " + arguments[1];
        note("start " + running_);
        remaining_ = 3;
    }
    bool waitForCommand(ProjectElement *, const std::string &, int &exitStatus) override {
        if (--remaining_ > 0)
            return false;
        exitStatus = running_ == "cc fail.c" ? 1 : 0;
        note("done " + running_ + " " + std::to_string(exitStatus));
        return true;
    }
    void reportError(const std::string &text) override { note("error " + text); }
    void stopCommand() override { note("stop"); }
    void note(const std::string &text) { log_.push_back(std::to_string(slot_) + ": " + text); }
    int slot_;
    Strings &log_;
    std::string running_;
    int remaining_ = 0;
};

// A loaded solution, and drivers to make its job list or run its build.
class BuildOrder : public ::testing::Test {
protected:
    void load(const std::string &body, bool solutionConfigurations = true) {
        const std::string configurations =
            solutionConfigurations ? "<configuration Name=\"Debug\" /><configuration Name=\"Release\" />\n" : "";
        system.helpers = &helpers;
        system.loadSolution(directory.write(
            "s.tbp", "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"S\" version=\"2\">\n" + configurations + body +
                         "</solution>\n"));
    }

    // The job list as "number name kind [dependencies]" lines.
    Strings jobs(ProjectElement *element, BuildFlags flags = BuildQuietChecks, bool batch = false, int threads = 2) {
        ProjectJobList list;
        driver = std::make_unique<ProjectSystemBuilder>(&system);
        driver->prepareBuild(element, "Debug", threads, {}, &idler, flags, true, batch, list);
        Strings lines;
        for (const ProjectJob *job : list) {
            std::string line = std::to_string(job->number) + " " + system.elementName(job->element);
            if (job->configuration != "Debug")
                line += "/" + job->configuration;
            if (job->flags & BuildJobBegin)
                line += " begin(" + std::to_string(job->flags >> 16) + ")";
            else if (job->flags & BuildJobEnd)
                line += (job->flags & BuildFilesAreJobs) ? " end+files" : " end";
            const char *separator = " [";
            for (const ProjectJob *dependency : job->dependencies) {
                line += separator + std::to_string(dependency->number);
                separator = ",";
            }
            lines.push_back(job->dependencies.empty() ? line : line + "]");
        }
        return lines;
    }

    // Builds a staging project P of the named files, with a logging builder
    // per slot.
    int build(ProjectSystemBuilder &scheduler, const Strings &files, int slots) {
        std::string body = "<project Name=\"P\"><configuration Name=\"Common\" project_type=\"Staging\" />";
        for (const std::string &name : files)
            body += "<file file_name=\"" + name + "\" />";
        load(body + "</project>\n");
        std::vector<Builder *> builders;
        for (int i = 0; i < slots; ++i)
            builders.push_back(fakes.emplace_back(std::make_unique<FakeBuilder>(i + 1, log)).get());
        return scheduler.build(system.solution, "Debug", slots, builders, &idler, BuildQuietChecks, true, false);
    }

    ProjectElement *project(const std::string &name) { return system.findProject(system.solution, name); }

    TestDirectory directory;
    SystemMacros macros;
    ScriptedSystem system{&macros};
    RecordingHelpers helpers;
    Idler idler;
    std::unique_ptr<ProjectSystemBuilder> driver;  // a new one for each job list
    Strings log;
    std::vector<std::unique_ptr<FakeBuilder>> fakes;
};

TEST_F(BuildOrder, JobListsAndDependencyErrors) {
    const struct {
        const char *body;
        const char *root;  // a project, a file "P/f" or, empty, the solution
        Strings jobs;
        Strings warnings = {};
        BuildFlags flags = BuildQuietChecks;
        int threads = 2;
        bool solutionConfigurations = true;
        int slots = 2;  // the slots the driver uses
    } cases[] = {
        // Dependencies come first whatever their place in the file; a file
        // of no kind has no job.
        {R"(<project Name="App"><configuration Name="Common" project_dependencies="Lib" />
            <file file_name="main.c" /><file file_name="util.c" /><file file_name="notes.txt" /></project>
            <project Name="Lib"><file file_name="lib.c" /></project><project Name="Alone" />)", "",
         {"1 Lib begin(2)", "2 lib.c [1]", "3 Lib end+files [2,1]", "4 App begin(3) [3]", "5 main.c [4]", "6 util.c [4]",
          "7 App end+files [5,6,4]", "8 Alone begin(1)", "9 Alone end+files [8]"}},
        // A shared dependency is built once.
        {R"(<project Name="A"><configuration Name="Common" project_dependencies="C" /></project>
            <project Name="B"><configuration Name="Common" project_dependencies="C" /></project>
            <project Name="C" />)", "",
         {"1 C begin(1)", "2 C end+files [1]", "3 A begin(1) [2]", "4 A end+files [3]", "5 B begin(1) [2]",
          "6 B end+files [5]"}},
        // Excluded projects get no jobs and nothing waits on them.
        {R"(<project Name="App"><configuration Name="Common" project_dependencies="Off" /></project>
            <project Name="Off"><configuration Name="Debug" build_exclude_from_build="Yes" />
            <file file_name="x.c" /></project>)", "", {"1 App begin(1)", "2 App end+files [1]"}},
        // Dependency errors are words, and the build goes on.
        {R"(<project Name="App"><configuration Name="Debug" />
            <configuration Name="Common" project_dependencies="Missing;Special;Loop" /></project>
            <project Name="Special"><configuration Name="Other" /></project>
            <project Name="Loop"><configuration Name="Debug" />
            <configuration Name="Common" project_dependencies="App" /></project>)", "",
         {"1 App begin(1)", "2 App end+files [1]", "3 Loop begin(1)", "4 Loop end+files [3]", "5 Special begin(1)",
          "6 Special end+files [5]"},
         {"Debug: Dependency error detected in 'App' | Can't find project 'Missing' | "
          "Configuration 'Debug' doesn't apply to dependent project 'Special' | "
          "Project 'App' has cyclic dependency on project 'Loop'",
          "Debug: Dependency error detected in 'Loop' | Project 'Loop' has cyclic dependency on project 'App'"},
         BuildQuietChecks, 2, false},
        // The dependencies of a staging project are chained unless they may
        // run in parallel.
        {R"(<project Name="Stage"><configuration Name="Common" project_type="Staging" project_dependencies="P1;P2;P3" />
            </project><project Name="P1" /><project Name="P2" /><project Name="P3" />)", "Stage",
         {"1 P1 begin(1)", "2 P1 end+files [1]", "3 P2 begin(1) [2]", "4 P2 end+files [3]", "5 P3 begin(1) [4]",
          "6 P3 end+files [5]", "7 Stage begin(1) [2,4,6]", "8 Stage end+files [7]"}},
        {R"(<project Name="Parallel"><configuration Name="Common" project_type="Staging"
            project_can_build_in_parallel="Yes" project_dependencies="P1;P2" /></project>
            <project Name="P1" /><project Name="P2" />)", "Parallel",
         {"1 P1 begin(1)", "2 P1 end+files [1]", "3 P2 begin(1)", "4 P2 end+files [3]", "5 Parallel begin(1) [2,4]",
          "6 Parallel end+files [5]"}},
        // A batch builds every chosen configuration, without file jobs.
        {R"(<configuration Name="Debug_Ext" />
            <project Name="App"><configuration Name="Common" batch_build_configurations="D*;Release" />
            <file file_name="main.c" /></project>
            <project Name="None"><file file_name="other.c" /></project>)", "",
         {"1 App begin(2)", "2 App end [1]", "3 App/Debug_Ext begin(2)", "4 App/Debug_Ext end [3]",
          "5 App/Release begin(2)", "6 App/Release end [5]"}, {}, BuildQuietChecks | BuildBatch},
        // One file runs on one slot.
        {R"(<project Name="App"><file file_name="main.c" /></project>)", "App/main.c",
         {"1 main.c begin(1)", "2 main.c end"}, {}, BuildQuietChecks, 8, true, 1},
    };
    for (const auto &c : cases) {
        helpers.warnings.clear();
        load(std::string(c.body) + "\n", c.solutionConfigurations);
        const std::string root = c.root;
        ProjectElement *element = root.empty() ? system.solution : project(root.substr(0, root.find('/')));
        if (root.find('/') != std::string::npos)
            element = system.findFileByPath(element, root.substr(root.find('/') + 1));
        EXPECT_EQ(jobs(element, c.flags, c.flags & BuildBatch, c.threads), c.jobs) << c.body;
        EXPECT_EQ(helpers.warnings, c.warnings) << c.body;
        EXPECT_EQ(driver->threadCount, c.slots) << c.body;
    }
}

// Wildcard dependencies follow the name order; titles name the verb, the
// node and the configuration.
TEST_F(BuildOrder, DependencyNamesAndTitles) {
    load(R"(<project Name="App"><configuration Name="Common" project_dependencies="lib*;&#10;;Tool" />
  <folder Name="Src"><file file_name="main.c" /></folder></project>
  <project Name="libz" /><project Name="liba" /><project Name="Lib" /><project Name="Tool" />
)");
    EXPECT_EQ(system.projectDependencyNames(project("App"), "Debug"), (Strings{"liba", "libz", "Tool"}));
    ProjectElement *file = system.findFileByPath(project("App"), "main.c");
    EXPECT_EQ(system.stepTitle(project("App"), "Debug", BuildQuietChecks),
              "Building 'App' from solution 'S' in configuration 'Debug'");
    EXPECT_EQ(system.stepTitle(file, "Debug", BuildCheckOnly | BuildQuietChecks),
              "Checking 'main.c' from project 'App' from solution 'S' in configuration 'Debug'");
    EXPECT_EQ(system.stepTitle(file, "Debug", BuildAnalyse),
              "Analyzing 'main.c' from project 'App' from solution 'S' in configuration 'Debug'");
    EXPECT_EQ(system.stepTitle(file, "Debug", BuildNoTitle), "");
}

// The walks keep their own stacks: deep folders and long dependency chains
// don't exhaust the program's. Folders and nested solutions come first.
TEST_F(BuildOrder, DeepTreesAndLongChainsAreOrdered) {
    const int depth = 10000;
    std::string body, open, close;
    for (int i = 0; i < depth; ++i) {
        body += "<project Name=\"P" + std::to_string(i) + "\"><configuration Name=\"Common\" " +
                (i + 1 < depth ? "project_dependencies=\"P" + std::to_string(i + 1) + "\"" : "") + " /></project>\n";
        open += "<folder Name=\"F" + std::to_string(i) + "\">";
        close += "</folder>";
    }
    load(body + open + "<project Name=\"Deep\" />" + close +
         "\n<solution Name=\"Inner\"><project Name=\"Nested\" /></solution>\n");
    const Strings list = jobs(system.solution);
    ASSERT_EQ(list.size(), std::size_t(2 * depth + 4));
    EXPECT_EQ(Strings(list.begin(), list.begin() + 5), (Strings{"1 Deep begin(1)", "2 Deep end+files [1]",
              "3 Nested begin(1)", "4 Nested end+files [3]", "5 P9999 begin(1)"}));
    EXPECT_EQ(list.back(), "20004 P0 end+files [20003]");
}

class Scheduler : public BuildOrder {};

TEST_F(Scheduler, SlotsReplayTheirJobsCommandByCommand) {
    const struct {
        const char *name;
        Strings files;
        int slots;
        int result;
        Strings log;
    } cases[] = {
        // Slot 1 takes the project's begin job, slot 2 the file job of a.c,
        // which waits for it; then each slot starts a command in turn.
        {"two slots run two commands at once", {"a.c", "b.c"}, 2, ProjectSystemBuilder::Built,
         {"2: begin Compiling 'a.c'", "2: start cc a.c", "1: begin Compiling 'b.c'", "1: start cc b.c",
          "2: done cc a.c 0", "2: start post a.c", "1: done cc b.c 0", "1: start post b.c", "2: done post a.c 0",
          "2: end", "1: done post b.c 0", "1: end"}},
        {"a failed command stops its job and the build", {"fail.c", "b.c", "c.c"}, 2, ProjectSystemBuilder::Failed,
         {"2: begin Compiling 'fail.c'", "2: start cc fail.c", "1: begin Compiling 'b.c'", "1: start cc b.c",
          "2: done cc fail.c 1", "2: error Build failed, exit status 0x1", "1: stop"}},
        {"a reported error fails the job", {"error.c", "b.c"}, 1, ProjectSystemBuilder::Failed,
         {"1: begin Compiling 'error.c'", "1: error cannot compile", "1: end", "1: error Build failed, exit status 0x1"}},
    };
    for (const auto &c : cases) {
        log.clear();
        ProjectSystemBuilder scheduler(&system);
        EXPECT_EQ(build(scheduler, c.files, c.slots), c.result) << c.name;
        EXPECT_EQ(log, c.log) << c.name;
    }
}

// A driver that cancels at its fourth pass, as an interrupt does. Passes
// are counted from the graph's making: one visit of the project.
class CancellingDriver : public ProjectSystemBuilder {
public:
    using ProjectSystemBuilder::ProjectSystemBuilder;
    void idle() override {
        if (++passes == 4)
            cancelled = true;
    }
    int passes = 0;
};

TEST_F(Scheduler, CancellingStopsTheBusySlots) {
    CancellingDriver cancelling(&system);
    EXPECT_EQ(build(cancelling, {"a.c", "b.c"}, 2), ProjectSystemBuilder::Cancelled);
    EXPECT_EQ(log, (Strings{"2: begin Compiling 'a.c'", "2: start cc a.c", "1: stop", "2: stop"}));
}

// ---- Interrupts under a guard are noted, not fatal, and cut blocking calls
// short.

volatile sig_atomic_t previousHandlerCalls = 0;
extern "C" void countCall(int) { previousHandlerCalls = previousHandlerCalls + 1; }

// The guard notes the last signal instead of dying and puts the previous
// handlers back; the note outlives it, and a new guard starts afresh.
TEST(InterruptGuard, NotesTheSignalAndPutsThePreviousHandlersBack) {
    struct sigaction counting {}, savedInterrupt {}, savedTerminate {};
    counting.sa_handler = countCall;
    sigemptyset(&counting.sa_mask);
    ASSERT_EQ(sigaction(SIGINT, &counting, &savedInterrupt), 0);
    ASSERT_EQ(sigaction(SIGTERM, &counting, &savedTerminate), 0);
    {
        InterruptGuard guard;
        EXPECT_FALSE(interruptRequested());
        ASSERT_EQ(raise(SIGTERM), 0);
        EXPECT_EQ(interruptSignal(), SIGTERM);
        ASSERT_EQ(raise(SIGINT), 0);
        EXPECT_EQ(interruptSignal(), SIGINT);
    }
    raise(SIGINT);
    raise(SIGTERM);
    const int calls = previousHandlerCalls;
    sigaction(SIGINT, &savedInterrupt, nullptr);
    sigaction(SIGTERM, &savedTerminate, nullptr);
    EXPECT_EQ(calls, 2);
    EXPECT_TRUE(interruptRequested());
    EXPECT_EQ(interruptSignal(), SIGINT);
    InterruptGuard guard;
    EXPECT_FALSE(interruptRequested());
    EXPECT_EQ(interruptSignal(), 0);
}

TEST(InterruptGuard, ABlockingReadReturnsEarly) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    InterruptGuard guard;
    const pid_t parent = getpid();
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    // The child interrupts the read again and again, in case it hadn't
    // begun; a read that went on regardless ends with the byte written last.
    if (child == 0) {
        for (int i = 0; i < 30; ++i) {
            usleep(100 * 1000);
            kill(parent, SIGTERM);
        }
        _exit(write(ends[1], "x", 1) == 1 ? 0 : 1);
    }
    char byte;
    const ssize_t got = read(ends[0], &byte, 1);
    const int error = errno;
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    close(ends[0]);
    close(ends[1]);
    EXPECT_EQ(got, -1);
    EXPECT_EQ(error, EINTR);
    EXPECT_EQ(interruptSignal(), SIGTERM);
}

}  // namespace
