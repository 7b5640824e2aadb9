// The console builder: what a user sees of a build on standard output and
// standard error, with real child processes behind the commands.

#include "build/quillmake_builder.h"

#include "build/project_system_builder.h"
#include "build/standard_project_system.h"
#include "environment/install_location.h"
#include "support/command_line.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <map>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using Arguments = std::vector<std::string>;

bool exists(const std::string &path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0;
}

// Everything written to a stream so far.
std::string contents(FILE *stream) {
    fflush(stream);
    struct stat st;
    if (fstat(fileno(stream), &st) != 0)
        return "<unreadable>";
    std::string text(static_cast<size_t>(st.st_size), '\0');
    const ssize_t got = pread(fileno(stream), text.data(), text.size(), 0);
    text.resize(got < 0 ? 0 : static_cast<size_t>(got));
    return text;
}

// The constructor's settings, as the command line gives them.
struct Options {
    int prefix = 0;
    bool echo = false;
    bool show = false;
    bool noStderr = false;
    bool verbose = false;
};

// A builder whose standard output and standard error are scratch files, and
// a driver for its failed flag and project count.
class Console : public ::testing::Test {
protected:
    ~Console() override {
        fclose(out);
        fclose(err);
    }

    QuillmakeBuilder &builder(Options options = {}) {
        for (FILE *stream : {out, err}) {
            EXPECT_EQ(ftruncate(fileno(stream), 0), 0);
            rewind(stream);
        }
        builder_ = std::make_unique<QuillmakeBuilder>(&driver, options.prefix, options.echo, options.show,
                                                      options.noStderr, options.verbose, &idler, out, err);
        return *builder_;
    }

    // Runs a command to its end; the result is the exit status.
    int run(const Arguments &arguments, const std::string &outputFile = {}, const std::string &workingDirectory = {}) {
        builder_->addCommand(workingDirectory, arguments, outputFile);
        int status = -1000;
        while (!builder_->waitForCommand(nullptr, "Debug", status)) {
        }
        return status;
    }

    // A step of one command, as the scheduler replays it.
    int step(const std::string &title, const Arguments &arguments, const std::string &outputFile = {}) {
        builder_->beginStep(nullptr, title, "Debug", 0);
        const int status = run(arguments, outputFile);
        builder_->endStep(nullptr, "Debug");
        return status;
    }

    static Arguments shell(const std::string &script) { return {"/bin/sh", "-c", script}; }

    std::string output() { return contents(out); }
    std::string errors() { return contents(err); }

    TestDirectory directory;
    SystemMacros macros;
    StandardProjectSystem system{&macros};
    ProjectSystemBuilder driver{&system};
    Idler idler;
    FILE *out = tmpfile();
    FILE *err = tmpfile();
    std::unique_ptr<QuillmakeBuilder> builder_;
};

// Steps as the scheduler replays them, an action a line: "begin TITLE",
// "end", "sh SCRIPT" or "run COMMAND LINE" (a command run to its end), or a
// report and its text.
TEST_F(Console, WhatAUserSeesOfTheSteps) {
    const std::map<std::string, void (Builder::*)(const std::string &)> reports = {
        {"error", &Builder::reportError},     {"warning", &Builder::reportWarning},
        {"detail", &Builder::reportDetail},   {"outcome", &Builder::reportOutcome},
        {"message", &Builder::reportMessage},
    };
    const struct {
        Options options;
        std::vector<std::string> actions;
        std::string out, err;
        std::vector<int> statuses;
        int errorCount = 0;
    } cases[] = {
        // The title goes to the stream of the line that brings it out; a
        // title that nothing showed is forgotten at the end of its step.
        {{},
         {"begin Compiling 'a.c'", "sh echo one; echo two", "end", "begin Compiling 'b.c'", "sh echo warning >&2", "end",
          "begin Compiling 'c.c'", "sh true", "end", "begin Compiling 'd.c'", "sh echo; echo last", "end"},
         "Compiling 'a.c'\none\ntwo\nCompiling 'd.c'\n\nlast\n", "Compiling 'b.c'\nwarning\n", {0, 0, 0, 0}},
        // A slot's lines carry its number, but the title it brings out does
        // not; tool output passes through byte for byte.
        {{.prefix = 1}, {"begin T", "sh printf 'a\\000b\\377\\n\\tc'", "end"}, std::string("T\n1>a\0b\xff\n1>\tc\n", 14),
         "", {0}},
        // Reports show a hidden title once; only errors count, and the
        // scheduler fails the job.
        {{},
         {"begin Compiling 'a.c'", "sh echo said", "error first", "error second", "end", "begin Linking 'a.elf'",
          "error third", "end"},
         "Compiling 'a.c'\nsaid\nLinking 'a.elf'\n", "first\nsecond\nthird\n", {0}, 3},
        {{},
         {"begin Archiving 'lib.a'", "detail a.o does not exist.", "warning b.o supplied more than once", "end",
          "begin Copying 'x'", "outcome nothing to do", "message Output Directory property has changed.", "end"},
         "Archiving 'lib.a'\na.o does not exist.\nb.o supplied more than once\n"
         "Copying 'x'\nnothing to do\nOutput Directory property has changed.\n",
         "", {}},
        {{.noStderr = true}, {"begin Compiling 'a.c'", "sh echo bad >&2", "error failed"},
         "Compiling 'a.c'\nbad\nfailed\n", "", {0}, 1},
        // A failure names the command, on standard output, once the title is
        // out.
        {{.prefix = 1}, {"begin Compiling 'a.c'", "sh echo 'a.c:1: error' >&2; exit 1", "end"},
         "1>Error executing /bin/sh -c echo 'a.c:1: error' >&2; exit 1\n", "Compiling 'a.c'\n1>a.c:1: error\n", {1}},
        {{}, {"begin Compiling 'a.c'", "run echo hi > /quillmake-no-such-directory/log.txt", "end"},
         "Compiling 'a.c'\nhi\n", "", {0}},
        // Verbose titles come out at once, and aren't repeated; show runs
        // nothing and leaves the status as it was.
        {{.verbose = true},
         {"begin Compiling 'a.c'", "sh echo said", "error failed", "end", "begin Checking 'a.c'", "end"},
         "Compiling 'a.c'\nsaid\nChecking 'a.c'\n", "failed\n", {0}, 1},
        {{.echo = true, .show = true, .verbose = true}, {"begin Compiling 'a.c'", "run cc -c a.c", "end"},
         "Compiling 'a.c'\ncc -c a.c\n", "", {-1000}},
    };
    for (std::size_t row = 0; row < std::size(cases); ++row) {
        const auto &c = cases[row];
        builder(c.options);
        std::vector<int> statuses;
        for (const std::string &action : c.actions) {
            const std::string verb = action.substr(0, action.find(' '));
            const std::string text = action.substr(std::min(action.size(), verb.size() + 1));
            if (verb == "begin")
                builder_->beginStep(nullptr, text, "Debug", 0);
            else if (verb == "end")
                builder_->endStep(nullptr, "Debug");
            else if (verb == "sh")
                statuses.push_back(run(shell(text)));
            else if (verb == "run")
                statuses.push_back(run(splitCommandLine(text)));
            else
                (builder_.get()->*reports.at(verb))(text);
        }
        EXPECT_EQ(output(), c.out) << "row " << row;
        EXPECT_EQ(errors(), c.err) << "row " << row;
        EXPECT_EQ(statuses, c.statuses) << "row " << row;
        EXPECT_EQ(builder_->errorCount, c.errorCount) << "row " << row;
        EXPECT_FALSE(driver.failed) << "row " << row;
    }
}

TEST_F(Console, EchoPrintsCommandsAndDeletionsAndShowRunsNone) {
    builder({.echo = true});
    const std::string made = directory / "made.txt";
    builder_->beginStep(nullptr, "Compiling 'a.c'", "Debug", 0);
    EXPECT_EQ(run({"/bin/sh", "-c", "echo ran > \"$0\"", made}), 0);
    builder_->deleteFile(made, false);
    builder_->endStep(nullptr, "Debug");
    EXPECT_FALSE(exists(made));
    EXPECT_EQ(output(), "/bin/sh -c echo ran > \"$0\" " + made + "\nrm " + made + "\n");

    builder({.echo = true, .show = true});
    const std::string kept = directory.write("kept.o", "x");
    builder_->beginStep(nullptr, "Compiling 'a.c'", "Debug", 0);
    EXPECT_EQ(run({"touch", directory / "sub/made.o"}, directory / "sub/made.o", directory.path()), -1000);
    builder_->deleteFile(kept, false);
    builder_->endStep(nullptr, "Debug");
    EXPECT_TRUE(exists(kept));
    EXPECT_FALSE(exists(directory / "sub/made.o"));
    EXPECT_EQ(output(), "touch " + directory / "sub/made.o" + "\nrm " + kept + "\n");
    EXPECT_EQ(builder_->errorCount, 0);
}

TEST_F(Console, AFailedCommandIsNamedAndItsOutputFileDeleted) {
    builder();
    const std::string object = directory / "obj/a.o";
    EXPECT_EQ(step("Compiling 'a.c'", {"/bin/sh", "-c", "echo half > \"$0\"; exit 3", object}, object), 3);
    EXPECT_FALSE(exists(object));
    // The output file's directory was made for the command.
    EXPECT_TRUE(exists(directory / "obj"));
    EXPECT_EQ(output(), "Compiling 'a.c'\nError executing /bin/sh -c echo half > \"$0\"; exit 3 " + object + "\n");
    EXPECT_EQ(errors(), "");
    // The scheduler's report of the status is the error that counts.
    EXPECT_EQ(builder_->errorCount, 0);
    EXPECT_FALSE(driver.failed);
}

TEST_F(Console, AProgramThatCantBeStartedEndsWith255) {
    builder();
    const std::string object = directory.write("a.o", "old");
    EXPECT_EQ(step("Compiling 'a.c'", {"quillmake-no-such-program", "a.c"}, object), 255);
    EXPECT_FALSE(exists(object));
    // The same for a working directory that isn't there.
    builder_->beginStep(nullptr, "Linking 'a.elf'", "Debug", 0);
    EXPECT_EQ(run({"true"}, "", directory / "no-such-directory"), 255);
    builder_->endStep(nullptr, "Debug");
    EXPECT_EQ(output(), "Compiling 'a.c'\nError executing quillmake-no-such-program a.c\n"
                        "Linking 'a.elf'\nError executing true\n");
    EXPECT_EQ(errors(), "");
}

TEST_F(Console, NothingToRunCantBeExecutedAndCounts) {
    builder();
    const std::string object = directory.write("a.o", "old");
    builder_->beginStep(nullptr, "Compiling 'a.c'", "Debug", 0);
    builder_->addCommand(directory.path(), {">", "log.txt"}, object);
    EXPECT_FALSE(exists(object));
    EXPECT_EQ(builder_->errorCount, 1);
    EXPECT_TRUE(driver.failed);
    // With no child, the wait answers with the status of no start.
    int status = 0;
    EXPECT_TRUE(builder_->waitForCommand(nullptr, "Debug", status));
    EXPECT_EQ(status, -1);
    EXPECT_EQ(output(), "Compiling 'a.c'\ncan't execute command \"> log.txt\"\nError executing > log.txt\n");
}

TEST_F(Console, TheInstallationsToolsAreRunFromIt) {
    // An installation whose cp only says what it was asked.
    const std::string tool = directory.write("install/bin/cp", "#!/bin/sh\necho \"installed cp $*\"\n");
    ASSERT_EQ(chmod(tool.c_str(), 0755), 0);
    setInstallDirectories(directory / "install/bin/quillmake", 1);
    builder({.echo = true});
    const int status = step("Copying 'a.txt'", {"cp", "a.txt", "b.txt"});
    setInstallDirectories(std::string(QUILLMAKE_BUILD_BIN_DIR) + "/quillmake", 1);
    EXPECT_EQ(status, 0);
    // The command line shows the name as it was given.
    EXPECT_EQ(output(), "cp a.txt b.txt\nCopying 'a.txt'\ninstalled cp a.txt b.txt\n");
}

TEST_F(Console, AFileThatCantBeDeletedCountsTwice) {
    builder();
    const std::string file = directory.write("a.o", "x");
    builder_->deleteFile(file, false);
    EXPECT_FALSE(exists(file));
    builder_->deleteFile(file, true);
    EXPECT_EQ(builder_->errorCount, 0);
    EXPECT_FALSE(driver.failed);
    builder_->beginStep(nullptr, "Cleaning 'a.c'", "Debug", 0);
    builder_->deleteFile(file, false);
    EXPECT_EQ(output(), "Cleaning 'a.c'\n");
    EXPECT_EQ(errors(), "can't remove file \"" + file + "\"\n");
    // Counted as an error and as a failed step.
    EXPECT_EQ(builder_->errorCount, 2);
    EXPECT_TRUE(driver.failed);

    // Without a driver too; verbose, its title is out at once.
    QuillmakeBuilder alone(nullptr, 0, false, false, false, true, nullptr, out, err);
    alone.beginStep(nullptr, "Cleaning", "Debug", 0);
    alone.deleteFile(file, false);
    EXPECT_EQ(alone.errorCount, 2);
    EXPECT_EQ(output(), "Cleaning 'a.c'\nCleaning\n");
}

// Verbose titles name their project once a build visits more than one.
TEST_F(Console, VerboseTitlesOfSeveralProjectsNameTheProjectAndConfiguration) {
    system.loadSolution(directory.write(
        "s.tbp", "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"S\" version=\"2\">\n"
                 "<configuration Name=\"Debug\" /><project Name=\"P\"><file file_name=\"a.c\" /></project></solution>\n"));
    ProjectElement *project = system.findProject(system.solution, "P");
    ASSERT_TRUE(project);
    driver.projectCount = 2;
    builder({.prefix = 2, .verbose = true});
    builder_->beginStep(system.findFileByPath(project, "a.c"), "Compiling 'a.c'", "Debug", 0);
    builder_->beginStep(project, "Linking 'P'", "Release", 0);
    // A step outside any project has no project name and shows nothing.
    builder_->beginStep(system.solution, "Building 'S'", "Debug", 0);
    EXPECT_EQ(output(), "2>Compiling 'a.c' from project 'P' in configuration 'Debug'\n"
                        "2>Linking 'P' from project 'P' in configuration 'Release'\n");
}

TEST_F(Console, AbandonStopsTheChildAndRemovesItsOutputFile) {
    builder();
    const std::string object = directory / "a.o";
    const std::string title = "Compiling 'a.c'\n";
    builder_->beginStep(nullptr, "Compiling 'a.c'", "Debug", 0);
    builder_->addCommand("", shell("echo half > " + object + "; echo $$; exec sleep 30"), object);
    int status = -1000;
    while (output().size() <= title.size() || output().back() != '\n')
        ASSERT_FALSE(builder_->waitForCommand(nullptr, "Debug", status));
    const std::string pidLine = output().substr(title.size());
    const pid_t pid = std::atoi(pidLine.c_str());
    ASSERT_GT(pid, 0);
    ASSERT_TRUE(exists(object));
    builder_->abandonCommand();
    EXPECT_FALSE(builder_->running());
    // Reaped, not left as a zombie.
    EXPECT_EQ(kill(pid, 0), -1);
    EXPECT_EQ(errno, ESRCH);
    EXPECT_FALSE(exists(object));
    // The wait answers at once, as often as it is asked, and prints nothing.
    EXPECT_TRUE(builder_->waitForCommand(nullptr, "Debug", status));
    EXPECT_EQ(status, SIGTERM);
    EXPECT_TRUE(builder_->waitForCommand(nullptr, "Debug", status));
    EXPECT_EQ(status, SIGTERM);
    builder_->endStep(nullptr, "Debug");
    EXPECT_EQ(output(), title + pidLine);
    EXPECT_EQ(errors(), "");
    EXPECT_EQ(builder_->errorCount, 0);

    // Abandoning with nothing running changes nothing, and the builder runs
    // the next command as usual.
    builder_->abandonCommand();
    EXPECT_EQ(step("Compiling 'b.c'", shell("exit 2")), 2);
    EXPECT_EQ(output(), title + pidLine + "Compiling 'b.c'\nError executing /bin/sh -c exit 2\n");
}

TEST_F(Console, AbandonDropsOutputNotYetDelivered) {
    builder();
    builder_->beginStep(nullptr, "Compiling 'a.c'", "Debug", 0);
    // A line without its end is held back until the child ends.
    builder_->addCommand("", shell("printf partial; echo ready >&2; exec sleep 30"), "");
    int status = 0;
    while (errors().find("ready") == std::string::npos)
        ASSERT_FALSE(builder_->waitForCommand(nullptr, "Debug", status));
    builder_->abandonCommand();
    EXPECT_TRUE(builder_->waitForCommand(nullptr, "Debug", status));
    EXPECT_EQ(status, SIGTERM);
    EXPECT_EQ(output(), "");
    EXPECT_EQ(errors(), "Compiling 'a.c'\nready\n");
}

}  // namespace
