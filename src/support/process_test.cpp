#include "support/process.h"

#include "support/qtx_process.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <sys/stat.h>

namespace {

using Arguments = std::vector<std::string>;

struct Line {
    bool fromStandardOutput;
    std::string text;
    bool operator==(const Line &) const = default;
};

std::ostream &operator<<(std::ostream &out, const Line &line) {
    return out << (line.fromStandardOutput ? "out:" : "err:") << '"' << line.text << '"';
}

Line out(std::string text) { return {true, std::move(text)}; }
Line err(std::string text) { return {false, std::move(text)}; }

class RecordingProcess : public Process {
public:
    void outputLine(bool fromStandardOutput, std::string_view text) override {
        lines.push_back({fromStandardOutput, std::string(text)});
    }

    // Starts with capture and polls to the end; the result is the status.
    int run(const Arguments &arguments, const std::string &workingDirectory = {}) {
        if (startChild(arguments, workingDirectory, true, false) != 0)
            return -1000;
        return wait();
    }
    int wait() {
        int status = -1000;
        while (pollChild(status) != 0) {
        }
        return status;
    }

    std::vector<Line> lines;
};

// A shell script as a command, with the arguments after it as $1...
Arguments shell(const std::string &script, const Arguments &rest = {}) {
    Arguments arguments{"/bin/sh", "-c", script, "sh"};
    arguments.insert(arguments.end(), rest.begin(), rest.end());
    return arguments;
}

// Prints "[x]" for each argument x and a newline, then "e" on standard error.
const char *printArguments = "printf '[%s]' \"$@\"; echo; echo e >&2";

TEST(Process, DeliversTheLinesOfBothStreams) {
    RecordingProcess process;
    EXPECT_EQ(process.exitStatus(), -1);
    EXPECT_EQ(process.run(shell("printf 'one\\ntwo\\n'; printf 'bad\\n' >&2")), 0);
    EXPECT_EQ(process.exitStatus(), 0);
    EXPECT_FALSE(process.startFailed());
    EXPECT_FALSE(process.running());
    std::vector<Line> standardOutput, standardError;
    for (const Line &line : process.lines)
        (line.fromStandardOutput ? standardOutput : standardError).push_back(line);
    EXPECT_EQ(standardOutput, (std::vector<Line>{out("one"), out("two")}));
    EXPECT_EQ(standardError, (std::vector<Line>{err("bad")}));
}

TEST(Process, ExitStatusIsTheCodeOrTheSignalNumber) {
    RecordingProcess process;
    EXPECT_EQ(process.run(shell("exit 3")), 3);
    EXPECT_EQ(process.run(shell("exit 255")), 255);
    EXPECT_EQ(process.run(shell("kill -TERM $$")), SIGTERM);
    EXPECT_EQ(process.run(shell("kill -KILL $$")), SIGKILL);
    EXPECT_EQ(process.exitStatus(), SIGKILL);
    // With no child, pollChild answers at once with the stored status.
    int status = 0;
    EXPECT_EQ(process.pollChild(status), 0);
    EXPECT_EQ(status, SIGKILL);
}

TEST(Process, AProgramThatCantBeStartedShows255AndNoOutput) {
    TestDirectory dir;
    const std::string notExecutable = dir.write("script.sh", "#!/bin/sh\necho hi\n");
    RecordingProcess process;
    EXPECT_EQ(process.run({"quillmake-no-such-program", "x"}), 255);
    EXPECT_TRUE(process.startFailed());
    EXPECT_EQ(process.startError(), ENOENT);
    EXPECT_EQ(process.run({notExecutable}), 255);
    EXPECT_TRUE(process.startFailed());
    EXPECT_EQ(process.startError(), EACCES);
    EXPECT_EQ(process.run({"true"}, dir / "no-such-directory"), 255);
    EXPECT_TRUE(process.startFailed());
    EXPECT_EQ(process.startError(), ENOENT);
    EXPECT_EQ(process.lines, std::vector<Line>{});
    // A program that ends with 255 itself was started.
    EXPECT_EQ(process.run(shell("exit 255")), 255);
    EXPECT_FALSE(process.startFailed());
}

TEST(Process, NothingToRunIsMinusOne) {
    TestDirectory dir;
    RecordingProcess process;
    EXPECT_EQ(process.startChild({}, "", true, false), -1);
    EXPECT_EQ(process.startChild({">", "out.txt"}, dir.path(), true, false), -1);
    EXPECT_EQ(process.startChild({"2>err.txt", "printf"}, dir.path(), false, false), -1);
    EXPECT_FALSE(process.running());
    int status = 0;
    EXPECT_EQ(process.pollChild(status), 0);
    EXPECT_EQ(status, -1);
}

TEST(Process, RunsInTheWorkingDirectory) {
    TestDirectory dir;
    makeDirectories(dir / "sub");
    const std::string before = currentDirectory();
    RecordingProcess process;
    EXPECT_EQ(process.run({"pwd", "-P"}, dir / "sub"), 0);
    char resolved[PATH_MAX];
    ASSERT_TRUE(realpath((dir / "sub").c_str(), resolved));
    EXPECT_EQ(process.lines, std::vector<Line>{out(resolved)});
    EXPECT_EQ(currentDirectory(), before);
}

TEST(Process, LineEnds) {
    struct Case {
        const char *printed;
        std::vector<Line> lines;
    };
    const Case cases[] = {
        {"a\\nb\\n", {out("a"), out("b")}},
        {"a\\r\\nb\\r\\n", {out("a"), out("b")}},
        // The byte after a CR is dropped, whatever it is.
        {"a\\rXb\\n", {out("a"), out("b")}},
        {"a\\r\\rb\\n", {out("a"), out("b")}},
        {"\\n\\n", {out(""), out("")}},
        // An unfinished last line comes when the child ends.
        {"x\\ny", {out("x"), out("y")}},
        {"a\\r", {out("a")}},
        {"", {}},
        {"a\\000b\\n\\000\\n", {out(std::string("a\0b", 3)), out(std::string(1, '\0'))}},
    };
    for (const Case &c : cases) {
        RecordingProcess process;
        EXPECT_EQ(process.run({"printf", c.printed}), 0);
        EXPECT_EQ(process.lines, c.lines) << c.printed;
    }
}

TEST(Process, TheByteAfterACrIsDroppedAlsoWhenItComesLater) {
    // The shell waits for its input between the halves, so they arrive in
    // two reads.
    RecordingProcess process;
    ASSERT_EQ(process.startChild(shell("printf 'a\\r'; read x; printf '\\nb\\nc\\r'; read x; printf 'Xd'"), "",
                                 true, true),
              0);
    auto pollUntil = [&](size_t lines) {
        int status;
        while (process.lines.size() < lines)
            ASSERT_EQ(process.pollChild(status), 1);
    };
    pollUntil(1);
    EXPECT_EQ(process.writeToChild("\n", 1), 1);
    pollUntil(3);
    EXPECT_EQ(process.writeToChild("\n", 1), 1);
    EXPECT_EQ(process.wait(), 0);
    EXPECT_EQ(process.lines, (std::vector<Line>{out("a"), out("b"), out("c"), out("d")}));
}

TEST(Process, ALongLineIsDeliveredInPiecesOfTheMaximumLength) {
    const size_t cap = Process::maximumLineLength;
    const size_t total = 2 * cap + 12345;
    RecordingProcess process;
    EXPECT_EQ(process.run(shell("head -c " + std::to_string(total) + " /dev/zero | tr '\\000' x; printf '\\nend\\n'")),
              0);
    ASSERT_EQ(process.lines.size(), 4u);
    EXPECT_EQ(process.lines[0], out(std::string(cap, 'x')));
    EXPECT_EQ(process.lines[1], out(std::string(cap, 'x')));
    EXPECT_EQ(process.lines[2], out(std::string(12345, 'x')));
    EXPECT_EQ(process.lines[3], out("end"));

    // A line of exactly the maximum length stays whole.
    RecordingProcess exact;
    EXPECT_EQ(exact.run(shell("head -c " + std::to_string(cap) + " /dev/zero; printf '\\nz'")), 0);
    ASSERT_EQ(exact.lines.size(), 2u);
    EXPECT_EQ(exact.lines[0], out(std::string(cap, '\0')));
    EXPECT_EQ(exact.lines[1], out("z"));
}

TEST(Process, ManyLinesArriveInOrder) {
    RecordingProcess process;
    EXPECT_EQ(process.run({"seq", "1", "100000"}), 0);
    ASSERT_EQ(process.lines.size(), 100000u);
    for (size_t i = 0; i < process.lines.size(); ++i)
        ASSERT_EQ(process.lines[i], out(std::to_string(i + 1)));
}

TEST(Process, ObjectIsReusedForTheNextChild) {
    RecordingProcess process;
    EXPECT_EQ(process.run({"printf", "first\\rpartial"}), 0);
    process.lines.clear();
    EXPECT_EQ(process.run({"printf", "Xsecond\\n"}), 0);
    EXPECT_EQ(process.lines, std::vector<Line>{out("Xsecond")});
}

// Redirection: the forms of the tokens, each with its file checked.
class Redirection : public ::testing::Test {
protected:
    TestDirectory dir;
    RecordingProcess process;

    std::string file(const std::string &name) { return TestDirectory::read(dir / name); }
    bool exists(const std::string &name) { return access((dir / name).c_str(), F_OK) == 0; }
};

TEST_F(Redirection, ARedirectionEndsTheArguments) {
    EXPECT_EQ(process.run(shell(printArguments, {"a", ">", "out.txt", "b"}), dir.path()), 0);
    EXPECT_EQ(file("out.txt"), "[a]\n");
    EXPECT_EQ(process.lines, std::vector<Line>{err("e")});
    EXPECT_FALSE(exists("b"));
}

TEST_F(Redirection, EveryForm) {
    struct Case {
        Arguments tokens;
        const char *file;
        bool appends;
        bool output;  // standard output goes to the file
        bool error;   // standard error goes to the file
    };
    const Case cases[] = {
        {{">", "f"}, "f", false, true, false},      {{"1>", "f"}, "f", false, true, false},
        {{">>", "f"}, "f", true, true, false},      {{"1>>", "f"}, "f", true, true, false},
        {{"2>", "f"}, "f", false, false, true},     {{"2>>", "f"}, "f", true, false, true},
        {{"&>", "f"}, "f", false, true, true},      {{"&>>", "f"}, "f", true, true, true},
        {{">>f"}, "f", true, true, false},          {{">f"}, "f", false, true, false},
        {{"1>>f"}, "f", true, true, false},         {{"1>f"}, "f", false, true, false},
        {{"2>>f"}, "f", true, false, true},         {{"2>f"}, "f", false, false, true},
        {{"&>>f"}, "f", true, true, true},          {{"&>f"}, "f", false, true, true},
    };
    const std::string script = "printf 'o\\r\\n\\000'; printf 'e\\n' >&2";
    for (const Case &c : cases) {
        SCOPED_TRACE(c.tokens[0]);
        dir.write(c.file, "old\n");
        RecordingProcess child;
        Arguments arguments = shell(script);
        arguments.insert(arguments.end(), c.tokens.begin(), c.tokens.end());
        EXPECT_EQ(child.run(arguments, dir.path()), 0);
        std::string expected = c.appends ? "old\n" : "";
        std::vector<Line> lines;
        if (c.output)
            expected += std::string("o\r\n\0", 4);
        else
            lines.insert(lines.end(), {out("o"), out(std::string(1, '\0'))});
        if (c.error)
            expected += "e\n";
        else
            lines.push_back(err("e"));
        if (c.output && c.error) {
            // Both streams share one file; only their order may differ.
            const std::string got = file(c.file);
            EXPECT_TRUE(got == expected ||
                        got == (c.appends ? "old\n" : "") + std::string("e\no\r\n\0", 6))
                << got;
        } else {
            EXPECT_EQ(file(c.file), expected);
        }
        EXPECT_EQ(child.lines, lines);
    }
}

TEST_F(Redirection, BothStreamsToOneFileReachNoLine) {
    EXPECT_EQ(process.run(shell("printf 'o\\n'; printf 'e\\n' >&2", {"&>", "all.log"}), dir.path()), 0);
    const std::string log = file("all.log");
    EXPECT_TRUE(log == "o\ne\n" || log == "e\no\n") << log;
    EXPECT_EQ(process.lines, std::vector<Line>{});
}

TEST_F(Redirection, SeparateTokensRedirectBothStreams) {
    EXPECT_EQ(process.run(shell(printArguments, {"x", ">", "a", "2>", "b"}), dir.path()), 0);
    EXPECT_EQ(file("a"), "[x]\n");
    EXPECT_EQ(file("b"), "e\n");
    EXPECT_EQ(process.lines, std::vector<Line>{});
}

TEST_F(Redirection, AJoinedTokenTakesTheNextTokenAsItsPair) {
    EXPECT_EQ(process.run(shell(printArguments, {">a", "2>b"}), dir.path()), 0);
    EXPECT_EQ(file("a"), "[]\n");
    EXPECT_FALSE(exists("b"));
    EXPECT_EQ(process.lines, std::vector<Line>{err("e")});
}

TEST_F(Redirection, AStreamIsRedirectedOnlyOnce) {
    EXPECT_EQ(process.run(shell(printArguments, {"y", ">", "a", ">", "b", "&>", "c", "2>>", "d"}), dir.path()), 0);
    EXPECT_EQ(file("a"), "[y]\n");
    EXPECT_FALSE(exists("b"));
    EXPECT_FALSE(exists("c"));
    EXPECT_EQ(file("d"), "e\n");
}

TEST_F(Redirection, ATokenWithoutItsPathDoesNothing) {
    EXPECT_EQ(process.run(shell(printArguments, {"z", ">>"}), dir.path()), 0);
    EXPECT_EQ(process.lines, (std::vector<Line>{out("[z]"), err("e")}));
    EXPECT_FALSE(exists(">"));
}

TEST_F(Redirection, RelativePathsAreRelativeToTheWorkingDirectory) {
    makeDirectories(dir / "work");
    const std::string absolute = dir / "abs.txt";
    EXPECT_EQ(process.run(shell(printArguments, {"r", ">", "rel.txt", "2>", absolute}), dir / "work"), 0);
    EXPECT_EQ(file("work/rel.txt"), "[r]\n");
    EXPECT_EQ(file("abs.txt"), "e\n");
}

TEST_F(Redirection, AFileThatCantBeOpenedLeavesTheStreamCaptured) {
    EXPECT_EQ(process.run(shell(printArguments, {"q", ">", "no-such-dir/out.txt"}), dir.path()), 0);
    EXPECT_EQ(process.lines, (std::vector<Line>{out("[q]"), err("e")}));
}

TEST_F(Redirection, WorksWithoutCapture) {
    const int started = process.startChild(shell(printArguments, {"n", ">", "out.txt", "2>", "err.txt"}),
                                           dir.path(), false, false);
    EXPECT_EQ(started, 0);
    EXPECT_EQ(process.wait(), 0);
    EXPECT_EQ(file("out.txt"), "[n]\n");
    EXPECT_EQ(file("err.txt"), "e\n");
    EXPECT_EQ(process.lines, std::vector<Line>{});
}

TEST(Process, WithoutCaptureAProgramThatCantStartGives255) {
    RecordingProcess process;
    EXPECT_EQ(process.startChild({"quillmake-no-such-program"}, "", false, false), 255);
    EXPECT_TRUE(process.startFailed());
    EXPECT_FALSE(process.running());
}

TEST(Process, InputPipeFeedsTheChild) {
    RecordingProcess process;
    ASSERT_EQ(process.startChild({"cat"}, "", true, true), 0);
    const std::string text = "hello\nworld";
    EXPECT_EQ(process.writeToChild(text.data(), text.size()), static_cast<ssize_t>(text.size()));
    process.closeInput();
    EXPECT_EQ(process.wait(), 0);
    EXPECT_EQ(process.lines, (std::vector<Line>{out("hello"), out("world")}));
    EXPECT_EQ(process.writeToChild("x", 1), -1);
    EXPECT_EQ(errno, EBADF);
}

TEST(Process, WorksWhenTheProgramsStandardStreamsAreClosed) {
    // The pipes then get descriptors 0 and 1, and a child's pipe end that is
    // already its descriptor 1 would otherwise be closed on exec.
    fflush(stdout);
    const int savedInput = dup(0);
    const int savedOutput = dup(1);
    ASSERT_GE(savedInput, 0);
    ASSERT_GE(savedOutput, 0);
    close(0);
    close(1);
    RecordingProcess process;
    const int started = process.startChild({"cat"}, "", true, true);
    const ssize_t written = process.writeToChild("in\n", 3);
    process.closeInput();
    const int status = process.wait();
    dup2(savedInput, 0);
    dup2(savedOutput, 1);
    close(savedInput);
    close(savedOutput);
    EXPECT_EQ(started, 0);
    EXPECT_EQ(written, 3);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(process.lines, std::vector<Line>{out("in")});
}

TEST(Process, WritingToAChildThatClosedItsInputFailsQuietly) {
    RecordingProcess process;
    ASSERT_EQ(process.startChild(shell("exec 0<&-; echo closed; exec sleep 30"), "", true, true), 0);
    int status;
    while (process.lines.empty())
        ASSERT_EQ(process.pollChild(status), 1);
    EXPECT_EQ(process.writeToChild("x", 1), -1);
    EXPECT_EQ(errno, EPIPE);
    sigset_t pending;
    sigpending(&pending);
    EXPECT_FALSE(sigismember(&pending, SIGPIPE));
}

TEST(Process, AChildThatClosesItsPipesIsStillWaitedFor) {
    RecordingProcess process;
    ASSERT_EQ(process.startChild(shell("echo bye; exec >&- 2>&-; read x; exit 4"), "", true, true), 0);
    int status;
    // Poll until the output pipe is at its end and no longer held open.
    while (process.readFromChild(nullptr, 0) == 0 || errno != EBADF)
        ASSERT_EQ(process.pollChild(status), 1);
    EXPECT_TRUE(process.running());
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(process.pollChild(status), 1);
    EXPECT_EQ(process.writeToChild("\n", 1), 1);
    EXPECT_EQ(process.wait(), 4);
    EXPECT_EQ(process.lines, std::vector<Line>{out("bye")});
}

TEST(Process, DestructionHangsUpARunningChildAndWaitsForIt) {
    pid_t pid = 0;
    {
        RecordingProcess process;
        ASSERT_EQ(process.startChild(shell("echo $$; exec sleep 30"), "", true, false), 0);
        int status;
        while (process.lines.empty())
            ASSERT_EQ(process.pollChild(status), 1);
        pid = std::atoi(process.lines[0].text.c_str());
        ASSERT_GT(pid, 0);
        EXPECT_EQ(kill(pid, 0), 0);
    }
    // Reaped, not a zombie: the pid is gone.
    EXPECT_EQ(kill(pid, 0), -1);
    EXPECT_EQ(errno, ESRCH);
}

// Polls over a child that has closed its pipes each still wait their
// millisecond instead of spinning.
TEST(Process, AChildWithoutPipesIsPolledWithoutSpinning) {
    RecordingProcess process;
    ASSERT_EQ(process.startChild(shell("exec >&- 2>&-; sleep 0.3"), "", true, false), 0);
    int status;
    int polls = 0;
    while (process.pollChild(status) != 0)
        ++polls;
    EXPECT_EQ(status, 0);
    // A 1 millisecond wait allows about 300; spinning would make millions.
    EXPECT_LT(polls, 1000);
}

class TerminatingProcess : public RecordingProcess {
public:
    using Process::terminateChild;
};

TEST(Process, TerminateStopsTheChildAndDropsItsOutput) {
    TerminatingProcess process;
    ASSERT_EQ(process.startChild(shell("printf held; echo ready >&2; exec sleep 30"), "", true, false), 0);
    int status;
    while (process.lines.empty())
        ASSERT_EQ(process.pollChild(status), 1);
    process.terminateChild(SIGTERM);
    EXPECT_FALSE(process.running());
    EXPECT_EQ(process.exitStatus(), SIGTERM);
    EXPECT_EQ(process.pollChild(status), 0);
    EXPECT_EQ(status, SIGTERM);
    EXPECT_EQ(process.lines, std::vector<Line>{err("ready")});
    // Nothing to stop: nothing changes.
    process.terminateChild(SIGTERM);
    EXPECT_EQ(process.exitStatus(), SIGTERM);
}

TEST(Process, TerminateKillsAChildThatIgnoresTheSignal) {
    TerminatingProcess process;
    ASSERT_EQ(process.startChild(shell("trap '' TERM; echo ready; while :; do sleep 1; done"), "", true, false),
              0);
    int status;
    while (process.lines.empty())
        ASSERT_EQ(process.pollChild(status), 1);
    process.terminateChild(SIGTERM, 100);
    EXPECT_FALSE(process.running());
    EXPECT_EQ(process.exitStatus(), SIGKILL);
}

TEST(RunTool, CollectsTheLinesOfEachStream) {
    Arguments output, errors;
    EXPECT_EQ(runTool(shell("printf 'a\\nb'; printf 'c\\n' >&2; exit 2"), true, "", &output, &errors), 2);
    EXPECT_EQ(output, (Arguments{"a", "b"}));
    EXPECT_EQ(errors, Arguments{"c"});
    output.clear();
    EXPECT_EQ(runTool(shell("printf 'a\\n'; printf 'c\\n' >&2"), true, "", &output, nullptr), 0);
    EXPECT_EQ(output, Arguments{"a"});
    EXPECT_EQ(runTool({"quillmake-no-such-program"}, true, "", nullptr, nullptr), 255);
    EXPECT_EQ(runTool({}, true, "", nullptr, nullptr), -1);
}

TEST(RunTool, WithoutCaptureTheChildRunsOn) {
    TestDirectory dir;
    // The child waits for a file that appears only after runTool returns.
    const int started = runTool(shell("while [ ! -e go ]; do sleep 0.01; done; printf done > result", {}), false,
                                dir.path(), nullptr, nullptr);
    EXPECT_EQ(started, 0);
    dir.write("go");
    for (int i = 0; i < 1000 && TestDirectory::read(dir / "result") != "done"; ++i)
        usleep(10000);
    EXPECT_EQ(TestDirectory::read(dir / "result"), "done");
}

}  // namespace
