// The slots of a build: recording a job's calls, replaying them one command
// at a time, and what a failure stops.

#include "build/builder.h"
#include "build/idler.h"
#include "build/project_system_builder.h"
#include "build/standard_project_system.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Strings = std::vector<std::string>;

// Each file node builds as one step with one command named after the file;
// a file named "error.c" reports an error instead, "quiet.c" does nothing.
class ScriptedSystem : public StandardProjectSystem {
public:
    using StandardProjectSystem::StandardProjectSystem;
    bool buildElement(ProjectElement *element, const std::string &configuration, Builder *builder,
                      Idler *idler, BuildFlags) override {
        if (!isFile(element))
            return false;
        const std::string name = elementName(element);
        idler->stepDone(element, configuration);
        if (name == "quiet.c")
            return false;
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
// pass that starts it, so it stays busy for two more) with the status set
// for its file (0 by default). Every call is logged in order,
// with the slot's number.
class FakeBuilder : public Builder {
public:
    FakeBuilder(int slot, Strings &log, std::map<std::string, int> &statuses)
        : slot_(slot), log_(log), statuses_(statuses) {}
    void beginStep(ProjectElement *, const std::string &title, const std::string &, int) override {
        note("begin " + title);
    }
    void endStep(ProjectElement *, const std::string &) override { note("end"); }
    void addCommand(const std::string &, const std::vector<std::string> &arguments,
                    const std::string &) override {
        note("start " + arguments[0] + " " + arguments[1]);
        running_ = arguments[0] + " " + arguments[1];
        remaining_ = 3;
    }
    bool waitForCommand(ProjectElement *, const std::string &, int &exitStatus) override {
        if (--remaining_ > 0)
            return false;
        auto status = statuses_.find(running_);
        exitStatus = status == statuses_.end() ? 0 : status->second;
        note("done " + running_ + " " + std::to_string(exitStatus));
        return true;
    }
    void reportError(const std::string &text) override { note("error " + text); }
    void stopCommand() override { note("stop"); }

private:
    void note(const std::string &text) { log_.push_back(std::to_string(slot_) + ": " + text); }
    int slot_;
    Strings &log_;
    std::map<std::string, int> &statuses_;
    std::string running_;
    int remaining_ = 0;
};

class Scheduler : public ::testing::Test {
protected:
    // A project P of the files named, blank-separated.
    void load(const std::string &names) {
        std::string files;
        std::istringstream words(names);
        for (std::string name; words >> name;)
            files += "<file file_name=\"" + name + "\" />";
        system.loadSolution(directory.write(
            "s.tbp", "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"S\" version=\"2\"><configuration Name=\"Debug\" />"
                     "<project Name=\"P\"><configuration Name=\"Common\" project_type=\"Staging\" />" +
                         files + "</project></solution>\n"));
    }

    // A builder per slot, for the given driver.
    int build(ProjectSystemBuilder &driver, int slots, BuildFlags flags) {
        std::vector<Builder *> builders;
        for (int i = 0; i < slots; ++i)
            builders.push_back(fakes.emplace_back(std::make_unique<FakeBuilder>(i + 1, log, statuses)).get());
        return driver.build(system.solution, "Debug", slots, builders, &idler, flags, true, false);
    }

    TestDirectory directory;
    SystemMacros macros;
    ScriptedSystem system{&macros};
    Idler idler;
    Strings log;
    std::map<std::string, int> statuses;
    std::vector<std::unique_ptr<FakeBuilder>> fakes;
};

TEST_F(Scheduler, SlotsReplayTheirJobsCommandByCommand) {
    const struct {
        const char *name;
        const char *files;
        int slots;
        BuildFlags flags;
        std::map<std::string, int> statuses;
        int result;
        Strings log;
    } cases[] = {
        {"one slot finishes each job before the next", "a.c quiet.c b.c", 1, BuildQuietChecks, {},
         ProjectSystemBuilder::Built,
         {"1: begin Compiling 'a.c'", "1: start cc a.c", "1: done cc a.c 0", "1: start post a.c", "1: done post a.c 0",
          "1: end", "1: begin Compiling 'b.c'", "1: start cc b.c", "1: done cc b.c 0", "1: start post b.c",
          "1: done post b.c 0", "1: end"}},
        // Slot 1 takes the project's begin job, slot 2 the file job of a.c,
        // which waits for it; then each slot starts a command in turn.
        {"two slots run two commands at once", "a.c b.c", 2, BuildQuietChecks, {}, ProjectSystemBuilder::Built,
         {"2: begin Compiling 'a.c'", "2: start cc a.c", "1: begin Compiling 'b.c'", "1: start cc b.c",
          "2: done cc a.c 0", "2: start post a.c", "1: done cc b.c 0", "1: start post b.c", "2: done post a.c 0",
          "2: end", "1: done post b.c 0", "1: end"}},
        {"a failed command stops its job and the build", "a.c b.c c.c", 2, BuildQuietChecks, {{"cc a.c", 1}},
         ProjectSystemBuilder::Failed,
         {"2: begin Compiling 'a.c'", "2: start cc a.c", "1: begin Compiling 'b.c'", "1: start cc b.c",
          "2: done cc a.c 1", "2: error Build failed, exit status 0x1", "1: stop"}},
        {"keep going reports and hands out the rest", "a.c b.c", 1, BuildQuietChecks | BuildKeepGoing,
         {{"cc a.c", 11}}, ProjectSystemBuilder::Built,
         {"1: begin Compiling 'a.c'", "1: start cc a.c", "1: done cc a.c 11",
          "1: error Build failed, exit status 0xb 'a.c' in configuration 'Debug' "
          "continuing because 'keep going on error' has been enabled",
          "1: begin Compiling 'b.c'", "1: start cc b.c", "1: done cc b.c 0", "1: start post b.c",
          "1: done post b.c 0", "1: end"}},
        {"a reported error fails the job", "error.c b.c", 1, BuildQuietChecks, {}, ProjectSystemBuilder::Failed,
         {"1: begin Compiling 'error.c'", "1: error cannot compile", "1: end", "1: error Build failed, exit status 0x1"}},
        {"nothing to do is status zero", "quiet.c", 2, BuildQuietChecks, {}, ProjectSystemBuilder::NothingBuilt, {}},
    };
    for (const auto &c : cases) {
        load(c.files);
        log.clear();
        statuses = c.statuses;
        ProjectSystemBuilder driver(&system);
        EXPECT_EQ(build(driver, c.slots, c.flags), c.result) << c.name;
        EXPECT_EQ(log, c.log) << c.name;
    }
}

// A driver that cancels after a number of passes, as an interrupt does.
class CancellingDriver : public ProjectSystemBuilder {
public:
    using ProjectSystemBuilder::ProjectSystemBuilder;
    void idle() override {
        if (++passes == cancelAfter)
            cancelled = true;
    }
    int passes = 0;
    int cancelAfter = 0;
};

TEST_F(Scheduler, CancellingStopsTheBusySlots) {
    load("a.c b.c");
    CancellingDriver cancelling(&system);
    // Passes are counted from the graph's making: one visit of the project.
    cancelling.cancelAfter = 4;
    EXPECT_EQ(build(cancelling, 2, BuildQuietChecks), ProjectSystemBuilder::Cancelled);
    EXPECT_EQ(log, (Strings{"2: begin Compiling 'a.c'", "2: start cc a.c", "1: stop", "2: stop"}));
}

}  // namespace
