// The console builder: what a user sees of a build on standard output and
// standard error, with real child processes behind the commands.

#include "build/quillmake_builder.h"

#include "build/project_system_builder.h"
#include "build/standard_project_system.h"
#include "environment/install_location.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
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
        builder_ = std::make_unique<QuillmakeBuilder>(&driver, options.prefix, options.echo, options.show,
                                                      options.noStderr, options.verbose, &idler, out, err);
        return *builder_;
    }

    // Runs a command to its end; the result is the exit status.
    int run(const Arguments &arguments, const std::string &outputFile = {},
            const std::string &workingDirectory = {}) {
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

TEST_F(Console, AQuietStepLeavesNoTrace) {
    builder();
    EXPECT_EQ(step("Compiling 'a.c'", {"true"}), 0);
    builder_->beginStep(nullptr, "Checking 'b.c'", "Debug", 0);
    builder_->endStep(nullptr, "Debug");
    EXPECT_EQ(output(), "");
    EXPECT_EQ(errors(), "");
    EXPECT_EQ(builder_->errorCount, 0);
    EXPECT_FALSE(driver.failed);
}

TEST_F(Console, TheTitleComesOutOnceBeforeTheFirstLineOfItsStep) {
    builder();
    EXPECT_EQ(step("Compiling 'a.c'", shell("echo one; echo two")), 0);
    // The title goes to the stream of the line that brings it out.
    EXPECT_EQ(step("Compiling 'b.c'", shell("echo warning >&2")), 0);
    // A title that nothing showed is forgotten at the end of its step.
    EXPECT_EQ(step("Compiling 'c.c'", {"true"}), 0);
    EXPECT_EQ(step("Compiling 'd.c'", shell("echo; echo last")), 0);
    EXPECT_EQ(output(), "Compiling 'a.c'\none\ntwo\nCompiling 'd.c'\n\nlast\n");
    EXPECT_EQ(errors(), "Compiling 'b.c'\nwarning\n");
}

TEST_F(Console, ASlotsLinesCarryItsNumberButTheTitleItBringsOutDoesNot) {
    builder({.prefix = 2});
    EXPECT_EQ(step("Compiling 'a.c'", shell("echo one; echo two >&2")), 0);
    EXPECT_EQ(output(), "Compiling 'a.c'\n2>one\n");
    EXPECT_EQ(errors(), "2>two\n");
}

TEST_F(Console, ReportErrorShowsAHiddenTitleOnceAndCounts) {
    builder();
    builder_->beginStep(nullptr, "Compiling 'a.c'", "Debug", 0);
    EXPECT_EQ(run(shell("echo said")), 0);
    builder_->reportError("first");
    builder_->reportError("second");
    builder_->endStep(nullptr, "Debug");
    builder_->beginStep(nullptr, "Linking 'a.elf'", "Debug", 0);
    builder_->reportError("third");
    builder_->endStep(nullptr, "Debug");
    EXPECT_EQ(output(), "Compiling 'a.c'\nsaid\nLinking 'a.elf'\n");
    EXPECT_EQ(errors(), "first\nsecond\nthird\n");
    EXPECT_EQ(builder_->errorCount, 3);
    // The scheduler fails the job; the builder only counts.
    EXPECT_FALSE(driver.failed);
}

TEST_F(Console, ReportErrorWithAPrefix) {
    builder({.prefix = 2});
    builder_->beginStep(nullptr, "Linking 'a.elf'", "Debug", 0);
    builder_->reportError("undefined symbol");
    EXPECT_EQ(output(), "2>Linking 'a.elf'\n");
    EXPECT_EQ(errors(), "2>undefined symbol\n");
}

TEST_F(Console, OtherReportsShowTheTitleAndCountNothing) {
    builder();
    builder_->beginStep(nullptr, "Archiving 'lib.a'", "Debug", 0);
    builder_->reportDetail("a.o does not exist.");
    builder_->reportWarning("b.o supplied more than once");
    builder_->endStep(nullptr, "Debug");
    builder_->beginStep(nullptr, "Copying 'x'", "Debug", 0);
    builder_->reportOutcome("nothing to do");
    builder_->reportMessage("Output Directory property has changed.");
    builder_->endStep(nullptr, "Debug");
    EXPECT_EQ(output(), "Archiving 'lib.a'\na.o does not exist.\nb.o supplied more than once\n"
                        "Copying 'x'\nnothing to do\nOutput Directory property has changed.\n");
    EXPECT_EQ(errors(), "");
    EXPECT_EQ(builder_->errorCount, 0);
}

TEST_F(Console, NoStderrSendsErrorOutputToStandardOutput) {
    builder({.noStderr = true});
    builder_->beginStep(nullptr, "Compiling 'a.c'", "Debug", 0);
    EXPECT_EQ(run(shell("echo bad >&2")), 0);
    builder_->reportError("failed");
    EXPECT_EQ(output(), "Compiling 'a.c'\nbad\nfailed\n");
    EXPECT_EQ(errors(), "");
}

TEST_F(Console, ToolOutputPassesThroughByteForByte) {
    builder({.prefix = 1});
    EXPECT_EQ(step("T", shell("printf 'a\\000b\\377\\n\\tc'")), 0);
    EXPECT_EQ(output(), std::string("T\n1>a\0b\xff\n1>\tc\n", 14));
}

TEST_F(Console, EchoPrintsCommandsAndDeletions) {
    builder({.echo = true});
    const std::string made = directory / "made.txt";
    builder_->beginStep(nullptr, "Compiling 'a.c'", "Debug", 0);
    EXPECT_EQ(run({"/bin/sh", "-c", "echo ran > \"$0\"", made}), 0);
    builder_->deleteFile(made, false);
    builder_->endStep(nullptr, "Debug");
    EXPECT_FALSE(exists(made));
    EXPECT_EQ(output(), "/bin/sh -c echo ran > \"$0\" " + made + "\nrm " + made + "\n");
}

TEST_F(Console, ShowPrintsAndRunsNothing) {
    builder({.echo = true, .show = true});
    const std::string kept = directory.write("kept.o", "x");
    const std::string made = directory / "sub/made.o";
    builder_->beginStep(nullptr, "Compiling 'a.c'", "Debug", 0);
    builder_->addCommand(directory.path(), {"touch", made}, made);
    int status = 77;
    EXPECT_TRUE(builder_->waitForCommand(nullptr, "Debug", status));
    EXPECT_EQ(status, 77);
    builder_->deleteFile(kept, false);
    builder_->endStep(nullptr, "Debug");
    EXPECT_TRUE(exists(kept));
    EXPECT_FALSE(exists(made));
    EXPECT_EQ(output(), "touch " + made + "\nrm " + kept + "\n");
    EXPECT_EQ(builder_->errorCount, 0);
}

TEST_F(Console, ShowAloneIsSilent) {
    builder({.show = true});
    builder_->beginStep(nullptr, "Compiling 'a.c'", "Debug", 0);
    builder_->addCommand("", {"false"}, "");
    int status = 0;
    EXPECT_TRUE(builder_->waitForCommand(nullptr, "Debug", status));
    EXPECT_EQ(status, 0);
    EXPECT_EQ(output(), "");
}

TEST_F(Console, ShowVerbosePrintsTitlesAndCommands) {
    builder({.echo = true, .show = true, .verbose = true});
    EXPECT_EQ(step("Compiling 'a.c'", {"cc", "-c", "a.c"}), -1000);
    EXPECT_EQ(output(), "Compiling 'a.c'\ncc -c a.c\n");
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

TEST_F(Console, AFailureAfterOutputNamesTheCommandOnceTheTitleIsOut) {
    builder({.prefix = 1});
    EXPECT_EQ(step("Compiling 'a.c'", shell("echo 'a.c:1: error' >&2; exit 1")), 1);
    EXPECT_EQ(output(), "1>Error executing /bin/sh -c echo 'a.c:1: error' >&2; exit 1\n");
    EXPECT_EQ(errors(), "Compiling 'a.c'\n1>a.c:1: error\n");
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

TEST_F(Console, AnUnwritableRedirectionLeavesTheOutputOnTheConsole) {
    builder();
    EXPECT_EQ(step("Compiling 'a.c'", {"echo", "hi", ">", directory / "no-such-directory/log.txt"}), 0);
    EXPECT_EQ(output(), "Compiling 'a.c'\nhi\n");
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

TEST_F(Console, DeleteFile) {
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
}

TEST_F(Console, WithoutADriverFailuresStillCount) {
    QuillmakeBuilder alone(nullptr, 0, false, false, false, true, nullptr, out, err);
    alone.beginStep(nullptr, "Cleaning", "Debug", 0);
    alone.deleteFile(directory / "missing.o", false);
    EXPECT_EQ(alone.errorCount, 2);
    EXPECT_EQ(output(), "Cleaning\n");
}

// Verbose titles name their project once a build visits more than one.
class VerboseConsole : public Console {
protected:
    void SetUp() override {
        const std::string file = directory.write(
            "s.tbp", "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"S\" version=\"2\">\n"
                     "  <configuration Name=\"Debug\" />\n  <project Name=\"P\">\n"
                     "    <folder Name=\"src\"><file file_name=\"a.c\" /></folder>\n"
                     "  </project>\n</solution>\n");
        system.loadSolution(file);
        ASSERT_TRUE(system.solution);
        project = ProjectSystem::firstChild(system.solution);
        while (project && !ProjectSystem::isProject(project))
            project = ProjectSystem::nextSibling(project);
        ASSERT_TRUE(project);
        ProjectElement *folder = ProjectSystem::firstChild(project);
        while (folder && !ProjectSystem::isFolder(folder))
            folder = ProjectSystem::nextSibling(folder);
        ASSERT_TRUE(folder);
        sourceFile = ProjectSystem::firstChild(folder);
        ASSERT_TRUE(sourceFile && ProjectSystem::isFile(sourceFile));
    }

    ProjectElement *project = nullptr;
    ProjectElement *sourceFile = nullptr;
};

TEST_F(VerboseConsole, OneProjectGivesTheTitleAlone) {
    driver.projectCount = 1;
    builder({.verbose = true});
    builder_->beginStep(sourceFile, "Compiling 'a.c'", "Debug", 0);
    EXPECT_EQ(run(shell("echo said")), 0);
    builder_->reportError("failed");
    builder_->endStep(sourceFile, "Debug");
    builder_->beginStep(sourceFile, "Checking 'a.c'", "Debug", 0);
    builder_->endStep(sourceFile, "Debug");
    // A title printed at once isn't repeated by what follows.
    EXPECT_EQ(output(), "Compiling 'a.c'\nsaid\nChecking 'a.c'\n");
    EXPECT_EQ(errors(), "failed\n");
}

TEST_F(VerboseConsole, SeveralProjectsNameTheProjectAndConfiguration) {
    driver.projectCount = 2;
    builder({.prefix = 2, .verbose = true});
    builder_->beginStep(sourceFile, "Compiling 'a.c'", "Debug", 0);
    EXPECT_EQ(builder_->currentElement, sourceFile);
    EXPECT_EQ(builder_->configuration, "Debug");
    builder_->endStep(sourceFile, "Debug");
    EXPECT_EQ(builder_->currentElement, nullptr);
    EXPECT_EQ(builder_->configuration, "");
    builder_->beginStep(project, "Linking 'P'", "Release", 0);
    builder_->endStep(project, "Release");
    // A step outside any project has no project name and shows nothing.
    builder_->beginStep(system.solution, "Building 'S'", "Debug", 0);
    builder_->endStep(system.solution, "Debug");
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
