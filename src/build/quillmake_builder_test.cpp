// The console builder: what a user sees of a build on standard output and
// standard error, with real child processes behind the commands.

#include "build/quillmake_builder.h"

#include "build/node_build_test_fixture.h"
#include "build/project_system_builder.h"
#include "environment/install_location.h"
#include "support/command_line.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <map>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using Arguments = std::vector<std::string>;

bool exists(const std::string &path) { return access(path.c_str(), F_OK) == 0; }

// The constructor's settings, as the command line gives them.
struct Options {
    int prefix = 0;
    bool echo = false, show = false, noStderr = false, verbose = false;
};

// A builder whose standard output and standard error are scratch files, and
// a driver for its failed flag and project count.
class Console : public NodeBuildTest {
protected:
    ~Console() override {
        std::fclose(out);
        std::fclose(err);
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
    int run(const Arguments &arguments, const std::string &outputFile = {}) {
        builder_->addCommand("", arguments, outputFile);
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

    // Everything written to standard output or standard error so far.
    std::string output() { return std::fflush(out) == 0 ? TestDirectory::read(directory / "out") : "<unflushed>"; }
    std::string errors() { return std::fflush(err) == 0 ? TestDirectory::read(directory / "err") : "<unflushed>"; }

    ProjectSystemBuilder driver{&system};
    FILE *out = std::fopen((directory / "out").c_str(), "w+");
    FILE *err = std::fopen((directory / "err").c_str(), "w+");
    std::unique_ptr<QuillmakeBuilder> builder_;
};

// Steps as the scheduler replays them, an action a line: "begin TITLE",
// "end", "sh SCRIPT" or "run COMMAND LINE" (a command run to its end), or a
// report and its text.
TEST_F(Console, WhatAUserSeesOfTheSteps) {
    const std::map<std::string, void (Builder::*)(const std::string &)> reports = {
        {"error", &Builder::reportError}, {"warning", &Builder::reportWarning}, {"detail", &Builder::reportDetail},
        {"outcome", &Builder::reportOutcome}, {"message", &Builder::reportMessage}};
    const struct {
        Options options;
        std::vector<std::string> actions;
        std::string out, err;
        std::vector<int> statuses;
        int errorCount = 0;
    } cases[] = {
        // The title goes to the stream of the line that brings it out; a
        // title that nothing showed is forgotten at the end of its step.
        {{}, {"begin Compiling 'a.c'", "sh echo one; echo two", "end", "begin Compiling 'b.c'", "sh echo warning >&2",
              "end", "begin Compiling 'c.c'", "sh true", "end", "begin Compiling 'd.c'", "sh echo; echo last", "end"},
         "Compiling 'a.c'\none\ntwo\nCompiling 'd.c'\n\nlast\n", "Compiling 'b.c'\nwarning\n", {0, 0, 0, 0}},
        // A slot's lines carry its number, but the title it brings out does
        // not; tool output passes through byte for byte.
        {{.prefix = 1}, {"begin T", "sh printf 'a\\000b\\377\\n\\tc'", "end"}, std::string("T\n1>a\0b\xff\n1>\tc\n", 14),
         "", {0}},
        {{}, {"begin Archiving 'lib.a'", "detail a.o does not exist.", "warning b.o supplied more than once", "end",
              "begin Copying 'x'", "outcome nothing to do", "message Output Directory property has changed.", "end"},
         "Archiving 'lib.a'\na.o does not exist.\nb.o supplied more than once\n"
         "Copying 'x'\nnothing to do\nOutput Directory property has changed.\n", "", {}},
        {{.noStderr = true}, {"begin Compiling 'a.c'", "sh echo bad >&2", "error failed"},
         "Compiling 'a.c'\nbad\nfailed\n", "", {0}, 1},
        // A redirection that can't be opened leaves the output where it was.
        {{}, {"begin Compiling 'a.c'", "run echo hi > /quillmake-no-such-directory/log.txt", "end"},
         "Compiling 'a.c'\nhi\n", "", {0}},
        // Verbose titles come out at once, and aren't repeated.
        {{.verbose = true},
         {"begin Compiling 'a.c'", "sh echo said; exit 1", "error failed", "end", "begin Checking 'a.c'", "end"},
         "Compiling 'a.c'\nsaid\nError executing /bin/sh -c echo said; exit 1\nChecking 'a.c'\n", "failed\n", {1}, 1},
    };
    for (const auto &c : cases) {
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
        EXPECT_EQ(output(), c.out) << c.actions[1];
        EXPECT_EQ(errors(), c.err) << c.actions[1];
        EXPECT_EQ(statuses, c.statuses) << c.actions[1];
        EXPECT_EQ(builder_->errorCount, c.errorCount) << c.actions[1];
        EXPECT_FALSE(driver.failed) << c.actions[1];
    }
}

TEST_F(Console, TheInstallationsToolsAreRunFromIt) {
    // An installation whose cp only says what it was asked; the command line
    // shows the name as it was given.
    const std::string tool = directory.write("install/bin/cp", "#!/bin/sh\necho \"installed cp $*\"\n");
    ASSERT_EQ(chmod(tool.c_str(), 0755), 0);
    setInstallDirectories(directory / "install/bin/quillmake", 1);
    builder({.echo = true});
    step("Copying 'a.txt'", {"cp", "a.txt", "b.txt"});
    setInstallDirectories(std::string(QUILLMAKE_BUILD_BIN_DIR) + "/quillmake", 1);
    EXPECT_EQ(output(), "cp a.txt b.txt\nCopying 'a.txt'\ninstalled cp a.txt b.txt\n");
}

// A list file is written whole, its directories made first; what can't be
// made, opened or deleted is reported as an error.
TEST_F(Console, FilesThatCantBeWrittenOrDeletedAreErrors) {
    builder();
    const std::string list = directory / "a/b/list.txt";
    builder_->writeLines(list, {"first", "", "dritt\xc3\xa9"});
    EXPECT_EQ(TestDirectory::read(list), "first\n\ndritt\xc3\xa9\n");
    builder_->writeLines(list, {"short"});
    EXPECT_EQ(TestDirectory::read(list), "short\n");
    const std::string plain = directory.write("plain", "x");
    builder_->writeLines(plain + "/sub/list.txt", {"x"});
    builder_->writeLines(directory / "a", {"x"});  // a directory in the file's place
    EXPECT_EQ(errors(), "cannot mkdir " + plain + "/sub\ncannot open " + (directory / "a") + "\n");
    EXPECT_EQ(builder_->errorCount, 2);

    // A write cut short (here by a file size limit, as a full disk would)
    // leaves no list behind; a device is reported but not removed.
    builder();
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{}, small{};
    getrlimit(RLIMIT_FSIZE, &limit);
    small = {4096, limit.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    const std::string cut = directory / "cut.txt";
    builder_->writeLines(cut, {"first", std::string(5000, 'x')});
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, oldHandler);
    EXPECT_FALSE(exists(cut));
    builder_->writeLines("/dev/full", {"x"});
    EXPECT_TRUE(exists("/dev/full"));
    EXPECT_EQ(errors(), "cannot write " + cut + "\ncannot write /dev/full\n");

    // A file deleted already is no error when quiet; otherwise it counts
    // twice, as an error and as a failed step.
    builder();
    builder_->deleteFile(plain, false);
    EXPECT_FALSE(exists(plain));
    builder_->deleteFile(plain, true);
    EXPECT_EQ(builder_->errorCount, 0);
    EXPECT_FALSE(driver.failed);
    builder_->beginStep(nullptr, "Cleaning 'a.c'", "Debug", 0);
    builder_->deleteFile(plain, false);
    EXPECT_EQ(output(), "Cleaning 'a.c'\n");
    EXPECT_EQ(errors(), "can't remove file \"" + plain + "\"\n");
    EXPECT_EQ(builder_->errorCount, 2);
    EXPECT_TRUE(driver.failed);
    // Without a driver too; verbose, its title is out at once.
    QuillmakeBuilder alone(nullptr, 0, false, false, false, true, nullptr, out, err);
    alone.beginStep(nullptr, "Cleaning", "Debug", 0);
    alone.deleteFile(plain, false);
    EXPECT_EQ(alone.errorCount, 2);
    EXPECT_EQ(output(), "Cleaning 'a.c'\nCleaning\n");

    // A builder that runs nothing answers at once and deletes nothing.
    NullBuilder none;
    int status = 42;
    EXPECT_TRUE(none.waitForCommand(nullptr, "Debug", status));
    EXPECT_EQ(status, 42);
    none.deleteFile(list, false);
    EXPECT_TRUE(exists(list));
}

// Verbose titles name their project once a build visits more than one.
TEST_F(Console, VerboseTitlesOfSeveralProjectsNameTheProjectAndConfiguration) {
    load("<project Name=\"P\"><file file_name=\"a.c\" /></project>\n");
    ProjectElement *project = system.findProject(system.solution, "P");
    driver.projectCount = 2;
    builder({.prefix = 2, .verbose = true});
    builder_->beginStep(system.findFileByPath(project, "a.c"), "Compiling 'a.c'", "Debug", 0);
    builder_->beginStep(project, "Linking 'P'", "Release", 0);
    // A step outside any project has no project name and shows nothing.
    builder_->beginStep(system.solution, "Building 'S'", "Debug", 0);
    EXPECT_EQ(output(), "2>Compiling 'a.c' from project 'P' in configuration 'Debug'\n"
                        "2>Linking 'P' from project 'P' in configuration 'Release'\n");
}

// An interrupted build abandons its command: the child is stopped and
// reaped, its half-written output file removed and its unfinished line
// dropped. The wait then answers at once, as often as it is asked, and
// prints nothing.
TEST_F(Console, AnAbandonedOrFailedCommandLeavesNoOutputFile) {
    const std::string object = directory / "a.o";
    const std::string title = "Compiling 'a.c'\n";
    builder().beginStep(nullptr, "Compiling 'a.c'", "Debug", 0);
    builder_->addCommand("", shell("echo half > " + object + "; printf partial; echo $$ >&2; exec sleep 30"), object);
    int status = -1000;
    while (errors().size() <= title.size() || errors().back() != '\n')
        ASSERT_FALSE(builder_->waitForCommand(nullptr, "Debug", status));
    const std::string pidLine = errors().substr(title.size());
    const pid_t pid = std::atoi(pidLine.c_str());
    ASSERT_GT(pid, 0);
    ASSERT_TRUE(exists(object));
    builder_->abandonCommand();
    EXPECT_FALSE(builder_->running());
    // Reaped, not left as a zombie.
    EXPECT_EQ(kill(pid, 0), -1);
    EXPECT_EQ(errno, ESRCH);
    EXPECT_FALSE(exists(object));
    for (int ask = 0; ask < 2; ++ask) {
        EXPECT_TRUE(builder_->waitForCommand(nullptr, "Debug", status));
        EXPECT_EQ(status, SIGTERM);
    }
    builder_->endStep(nullptr, "Debug");
    EXPECT_EQ(output(), "");
    EXPECT_EQ(errors(), title + pidLine);
    EXPECT_EQ(builder_->errorCount, 0);

    // Abandoning with nothing running changes nothing; a command without an
    // output file is stopped the same way.
    builder_->abandonCommand();
    builder_->addCommand("", {"sleep", "30"}, "");
    builder_->abandonCommand();
    EXPECT_TRUE(builder_->waitForCommand(nullptr, "Debug", status));
    EXPECT_EQ(status, SIGTERM);

    // The next command runs as usual. Failed, it is named on standard output
    // and its half-written output file deleted, in the directory made for
    // it; the scheduler's report of the status is the error that counts.
    const std::string half = directory / "obj/b.o";
    EXPECT_EQ(step("Compiling 'b.c'", {"/bin/sh", "-c", "echo half > \"$0\"; exit 3", half}, half), 3);
    EXPECT_FALSE(exists(half));
    EXPECT_TRUE(exists(directory / "obj"));
    EXPECT_EQ(output(), "Compiling 'b.c'\nError executing /bin/sh -c echo half > \"$0\"; exit 3 " + half + "\n");
    EXPECT_EQ(errors(), title + pidLine);
    EXPECT_EQ(builder_->errorCount, 0);
    EXPECT_FALSE(driver.failed);

    // Nothing to run can't be executed: the old output file is deleted and
    // the step fails at once. With no child, the wait answers with the status
    // of no start.
    const std::string old = directory.write("c.o", "old");
    builder().beginStep(nullptr, "Compiling 'c.c'", "Debug", 0);
    builder_->addCommand(directory.path(), {">", "log.txt"}, old);
    EXPECT_FALSE(exists(old));
    EXPECT_EQ(builder_->errorCount, 1);
    EXPECT_TRUE(driver.failed);
    EXPECT_TRUE(builder_->waitForCommand(nullptr, "Debug", status));
    EXPECT_EQ(status, -1);
    EXPECT_EQ(output(), "Compiling 'c.c'\ncan't execute command \"> log.txt\"\nError executing > log.txt\n");
}

}  // namespace
