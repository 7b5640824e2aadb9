#include "support/trace.h"

#include <gtest/gtest.h>
#include <regex>
#include <unistd.h>

#include "support/test_directory.h"

namespace {

// Sends the trace to a file for the life of the object.
class TraceToFile {
public:
    explicit TraceToFile(const std::string &file) { setTraceDestination(file.c_str()); }
    ~TraceToFile() {
        setTraceDestination(nullptr);
        startTraceClocks(false, false);
    }
};

TEST(Trace, WritesCategoryTextNewlineAndTimeStampsToAFile) {
    TestDirectory scratch;
    const std::string file = scratch.write("trace.txt", "old content\n");
    {
        TraceToFile to(file);
        trace("warning", true, "value %d of %s", 42, "x");
        trace("note", false, "%s", "");  // empty text: nothing at all
        trace("note", false, "no newline");
        trace("c", true, "%s", std::string(100000, 'x').c_str());  // long text is cut
    }
    EXPECT_EQ(TestDirectory::read(file),
              "warning: value 42 of x\nnote: no newlinec: " + std::string(65535, 'x') + "\n");
    {
        TraceToFile to(scratch / "never.txt");
        setTraceDestination(nullptr);
        trace("error", true, "dropped");
    }
    EXPECT_NE(access((scratch / "never.txt").c_str(), F_OK), 0);
    // Time stamps in milliseconds of the clocks that run.
    {
        TraceToFile to(file);
        startTraceClocks(true, true);
        trace("a", true, "one");
        startTraceClocks(false, true);
        trace("b", true, "two");
        startTraceClocks(true, false);
        trace("c", true, "three");
    }
    const std::string text = TestDirectory::read(file);  // written anew
    const std::regex lines("\\[\\d+ \\d+\\] a: one\n\\[ \\d+\\] b: two\n\\[\\d+ \\] c: three\n");
    EXPECT_TRUE(std::regex_match(text, lines)) << text;
}

TEST(Trace, StandardStreams) {
    for (const char *name : {"-", "stdout", "stderr"}) {
        const bool error = name == std::string("stderr");
        error ? testing::internal::CaptureStderr() : testing::internal::CaptureStdout();
        setTraceDestination(name);
        trace("out", true, "%d", 1);
        setTraceDestination(nullptr);
        EXPECT_EQ(error ? testing::internal::GetCapturedStderr() : testing::internal::GetCapturedStdout(), "out: 1\n")
            << name;
    }
}

}  // namespace
