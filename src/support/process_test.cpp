#include "support/process.h"

#include "support/qtx_process.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <csignal>

namespace {

using namespace std::string_literals;
using Arguments = std::vector<std::string>;

// Collects the lines of each stream, each followed by "\n" (a line holds no
// LF or CR of its own).
class RecordingProcess : public Process {
public:
    using Process::terminateChild;

    void outputLine(bool fromStandardOutput, std::string_view text) override {
        (fromStandardOutput ? out : err).append(text) += '\n';
    }
    // Starts with capture and polls to the end; the result is the status.
    int run(const Arguments &arguments, const std::string &workingDirectory = {}) {
        return startChild(arguments, workingDirectory, true, false) == 0 ? wait() : -1000;
    }
    int wait() {
        int status = -1000;
        while (pollChild(status) != 0) {
        }
        return status;
    }
    // Polls until standard output or error has something.
    void pollForOutput() {
        int status;
        while (out.empty() && err.empty())
            ASSERT_EQ(pollChild(status), 1);
    }

    std::string out, err;
};

// A shell script as a command, with the arguments after it as $1...
Arguments shell(const std::string &script, const Arguments &rest = {}) {
    Arguments arguments{"/bin/sh", "-c", script, "sh"};
    arguments.insert(arguments.end(), rest.begin(), rest.end());
    return arguments;
}

// A long line is delivered in pieces of the maximum length; a line of exactly
// that length stays whole.
TEST(Process, LongLinesComeInPiecesOfTheMaximumLength) {
    const size_t cap = Process::maximumLineLength;
    const struct {
        std::string script, out;
    } cases[] = {
        {"head -c " + std::to_string(2 * cap + 12345) + " /dev/zero | tr '\\000' x; printf '\\nend\\n'",
         std::string(cap, 'x') + "\n" + std::string(cap, 'x') + "\n" + std::string(12345, 'x') + "\nend\n"},
        {"head -c " + std::to_string(cap) + " /dev/zero; printf '\\nz'", std::string(cap, '\0') + "\nz\n"},
    };
    for (const auto &c : cases) {
        RecordingProcess process;
        EXPECT_EQ(process.run(shell(c.script)), 0);
        EXPECT_EQ(process.out + "|" + process.err, c.out + "|") << c.script.substr(0, 50);
        // With no child, pollChild answers at once with the stored status.
        int status = -1000;
        EXPECT_EQ(process.pollChild(status), 0);
        EXPECT_EQ(status, 0);
    }
}

TEST(Process, WhatCantBeStartedShows255AndNothingToRunMinusOne) {
    TestDirectory dir;
    RecordingProcess process;
    // A program that can't be started shows 255; without capture that is
    // the result of the start.
    EXPECT_EQ(process.startChild({"quillmake-no-such-program"}, "", false, false), 255);
    EXPECT_EQ(process.startError(), ENOENT);
    // An empty command, or one of redirections only, is nothing to run.
    EXPECT_EQ(process.startChild({}, "", true, false), -1);
    EXPECT_EQ(process.startChild({"2>err.txt", "printf"}, dir.path(), false, false), -1);
}

TEST(Process, TheByteAfterACrIsDroppedAlsoWhenItComesLater) {
    // The shell waits for its input between the halves, so they arrive in
    // two reads.
    RecordingProcess process;
    ASSERT_EQ(process.startChild(shell("printf 'a\\r'; read x; printf '\\nb\\nc\\r'; read x; printf 'Xd'"), "", true,
                                 true),
              0);
    process.pollForOutput();
    EXPECT_EQ(process.writeToChild("\n", 1), 1);
    int status;
    while (process.out.size() < 6)
        ASSERT_EQ(process.pollChild(status), 1);
    EXPECT_EQ(process.writeToChild("\n", 1), 1);
    EXPECT_EQ(process.wait(), 0);
    EXPECT_EQ(process.out, "a\nb\nc\nd\n");
}

// Redirection: the tokens from the first redirection on are taken in pairs
// and are no arguments; each stream is redirected once. The script prints
// "[x]" for each argument x and a newline, then "e" on standard error.
TEST(Process, RedirectionTokens) {
    const char *script = "printf '[%s]' \"$@\"; echo; echo e >&2";
    const struct {
        Arguments tokens;
        std::string out, err;
        std::vector<std::pair<std::string, const char *>> files;  // null: there is no file
    } cases[] = {
        {{"a", ">", "out.txt", "b"}, "", "e\n", {{"out.txt", "[a]\n"}, {"b", nullptr}}},
        // A joined token takes the next token as its pair.
        {{">a", "2>b"}, "", "e\n", {{"a", "[]\n"}, {"b", nullptr}}},
        {{"y", ">", "a", ">", "b", "&>", "c", "2>>", "d"}, "", "",
         {{"a", "[y]\n"}, {"b", nullptr}, {"c", nullptr}, {"d", "e\n"}}},
        {{"z", ">>"}, "[z]\n", "e\n", {}},  // a token without its path does nothing
        // A file that can't be opened leaves the stream captured.
        {{"q", ">", "no-such-dir/out.txt"}, "[q]\n", "e\n", {}},
    };
    for (const auto &c : cases) {
        TestDirectory dir;
        RecordingProcess process;
        EXPECT_EQ(process.run(shell(script, c.tokens), dir.path()), 0);
        EXPECT_EQ(process.out + "|" + process.err, c.out + "|" + c.err) << c.tokens.back();
        for (const auto &[name, content] : c.files)
            EXPECT_EQ(access((dir / name).c_str(), F_OK) ? "no file" : TestDirectory::read(dir / name),
                      content ? content : "no file")
                << name;
    }

    // Without capture the child writes the files itself.
    TestDirectory dir;
    RecordingProcess process;
    EXPECT_EQ(process.startChild(shell(script, {"n", ">", "out.txt", "2>", "err.txt"}), dir.path(), false, false), 0);
    EXPECT_EQ(process.wait(), 0);
    EXPECT_EQ(TestDirectory::read(dir / "out.txt") + TestDirectory::read(dir / "err.txt"), "[n]\ne\n");
}

TEST(Process, EveryRedirectionForm) {
    const struct {
        Arguments tokens;
        bool appends, output, error;  // output, error: the stream goes to the file
    } cases[] = {
        {{"1>", "f"}, false, true, false},  {{">>", "f"}, true, true, false}, {{"1>>", "f"}, true, true, false},
        {{"&>>", "f"}, true, true, true},   {{">>f"}, true, true, false},     {{"1>>f"}, true, true, false},
        {{"1>f"}, false, true, false},      {{"2>>f"}, true, false, true},    {{"&>>f"}, true, true, true},
        {{"&>f"}, false, true, true},
    };
    TestDirectory dir;
    for (const auto &c : cases) {
        SCOPED_TRACE(c.tokens[0]);
        dir.write("f", "old\n");
        RecordingProcess child;
        EXPECT_EQ(child.run(shell("printf 'o\\r\\n\\000'; printf 'e\\n' >&2", c.tokens), dir.path()), 0);
        const std::string old = c.appends ? "old\n" : "";
        const std::string file = TestDirectory::read(dir / "f");
        if (c.output && c.error) {  // both streams share one file; only their order may differ
            EXPECT_TRUE(file == old + "o\r\n\0e\n"s || file == old + "e\no\r\n\0"s) << file;
        } else {
            EXPECT_EQ(file, old + (c.output ? "o\r\n\0"s : "") + (c.error ? "e\n" : ""));
        }
        EXPECT_EQ(child.out, c.output ? "" : "o\n\0\n"s);
        EXPECT_EQ(child.err, c.error ? "" : "e\n");
    }
}

TEST(Process, InputPipeFeedsTheChildAlsoWhenTheProgramsStandardStreamsAreClosed) {
    // The pipes then get descriptors 0 and 1, and a child's pipe end that is
    // already its descriptor 1 would otherwise be closed on exec.
    fflush(stdout);
    const int savedInput = dup(0), savedOutput = dup(1);
    close(0);
    close(1);
    RecordingProcess process;
    process.startChild({"cat"}, "", true, true);
    const ssize_t written = process.writeToChild("hello\nworld", 11);
    process.closeInput();
    process.wait();
    dup2(savedInput, 0);
    dup2(savedOutput, 1);
    close(savedInput);
    close(savedOutput);
    EXPECT_EQ(written, 11);
    EXPECT_EQ(process.out, "hello\nworld\n");
    EXPECT_EQ(process.writeToChild("x", 1), -1);
    EXPECT_EQ(errno, EBADF);
}

TEST(Process, AChildThatClosesItsPipesIsStillWaitedFor) {
    RecordingProcess process;
    ASSERT_EQ(process.startChild(shell("echo bye; exec 0<&- >&- 2>&-; sleep 0.5; exit 4"), "", true, true), 0);
    int status;
    // Poll until the output pipe is at its end and no longer held open.
    while (process.readFromChild(nullptr, 0) == 0 || errno != EBADF)
        ASSERT_EQ(process.pollChild(status), 1);
    // Polls over a child without pipes still wait their millisecond instead
    // of spinning: a hundred take about a tenth of a second.
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(process.pollChild(status), 1);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(90));
    // Writing to a child that closed its input fails quietly: no SIGPIPE.
    EXPECT_EQ(process.writeToChild("x", 1), -1);
    EXPECT_EQ(errno, EPIPE);
    sigset_t pending;
    sigpending(&pending);
    EXPECT_FALSE(sigismember(&pending, SIGPIPE));
    EXPECT_EQ(process.wait(), 4);
}

TEST(Process, DestructionHangsUpARunningChildAndWaitsForIt) {
    pid_t pid = 0;
    {
        RecordingProcess process;
        ASSERT_EQ(process.startChild(shell("echo $$; exec sleep 30"), "", true, false), 0);
        process.pollForOutput();
        pid = std::atoi(process.out.c_str());
        ASSERT_GT(pid, 0);
        EXPECT_EQ(kill(pid, 0), 0);
    }
    // Reaped, not a zombie: the pid is gone.
    EXPECT_EQ(kill(pid, 0), -1);
    EXPECT_EQ(errno, ESRCH);
}

TEST(Process, TerminateStopsTheChildAndDropsItsOutput) {
    RecordingProcess process;
    ASSERT_EQ(process.startChild(shell("printf held; echo ready >&2; exec sleep 30"), "", true, false), 0);
    process.pollForOutput();
    process.terminateChild(SIGTERM);
    EXPECT_EQ(process.exitStatus(), SIGTERM);
    EXPECT_EQ(process.out + "|" + process.err, "|ready\n");
    process.terminateChild(SIGKILL);  // nothing to stop: nothing changes
    EXPECT_EQ(process.exitStatus(), SIGTERM);

    // A child that ignores the signal is killed when the grace time is over.
    ASSERT_EQ(process.startChild(shell("trap '' TERM; echo ready; while :; do sleep 1; done"), "", true, false), 0);
    process.err.clear();
    process.pollForOutput();
    process.terminateChild(SIGTERM, 100);
    EXPECT_EQ(process.exitStatus(), SIGKILL);
}

TEST(RunTool, CollectsTheLinesOfEachStreamOrLetsTheChildRunOn) {
    Arguments output, errors;
    EXPECT_EQ(runTool(shell("printf 'a\\nb'; printf 'c\\n' >&2; exit 2"), true, "", &output, &errors), 2);
    EXPECT_EQ(output, (Arguments{"a", "b"}));
    EXPECT_EQ(errors, Arguments{"c"});
    EXPECT_EQ(runTool(shell("printf 'a\\n'; printf 'c\\n' >&2"), true, "", nullptr, nullptr), 0);
    // Without capture the child waits for a file that appears only after
    // runTool returns.
    TestDirectory dir;
    const Arguments waiting = shell("while [ ! -e go ]; do sleep 0.01; done; printf done > result");
    EXPECT_EQ(runTool(waiting, false, dir.path(), nullptr, nullptr), 0);
    dir.write("go");
    for (int i = 0; i < 1000 && TestDirectory::read(dir / "result") != "done"; ++i)
        usleep(10000);
    EXPECT_EQ(TestDirectory::read(dir / "result"), "done");
}

}  // namespace
