#include "support/trace.h"

#include <cctype>
#include <gtest/gtest.h>
#include <sstream>
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

// Whether `line` is "[<ms> <ms>] " and `rest`, each number present only if
// its clock runs.
bool stamped(const std::string &line, bool sinceStart, bool sincePrevious, const std::string &rest) {
    size_t at = 0;
    const auto text = [&](const std::string &expected) {
        if (line.compare(at, expected.size(), expected) != 0)
            return false;
        at += expected.size();
        return true;
    };
    const auto number = [&](bool present) {
        const size_t first = at;
        while (at < line.size() && isdigit(static_cast<unsigned char>(line[at])))
            ++at;
        return present == (at > first);
    };
    return text("[") && number(sinceStart) && text(" ") && number(sincePrevious) && text("] " + rest) &&
           at == line.size();
}

TEST(Trace, StartsWithErrorsAndWarningsOn) {
    EXPECT_EQ(traceFlags, 19u);
    EXPECT_TRUE(traceFlags & TraceErrors);
    EXPECT_TRUE(traceFlags & TraceWarnings);
    EXPECT_FALSE(traceFlags & TraceNotices);
}

TEST(Trace, WritesCategoryTextAndNewlineToAFile) {
    TestDirectory scratch;
    const std::string file = scratch.write("trace.txt", "old content\n");
    {
        TraceToFile to(file);
        trace("warning", true, "value %d of %s", 42, "x");
        trace("note", false, "%s", "");  // empty text: nothing at all
        trace("note", false, "no newline");
        trace("error", true, "%s", "last");
    }
    EXPECT_EQ(TestDirectory::read(file), "warning: value 42 of x\nnote: no newlineerror: last\n");
}

TEST(Trace, NothingWithoutADestination) {
    TestDirectory scratch;
    const std::string file = scratch / "never.txt";
    {
        TraceToFile to(file);
        setTraceDestination(nullptr);
        trace("error", true, "dropped");
    }
    EXPECT_NE(access(file.c_str(), F_OK), 0);
}

TEST(Trace, LongTextIsCut) {
    TestDirectory scratch;
    const std::string file = scratch / "long.txt";
    {
        TraceToFile to(file);
        const std::string text(100000, 'x');
        trace("c", false, "%s", text.c_str());
    }
    EXPECT_EQ(TestDirectory::read(file), "c: " + std::string(65535, 'x'));
}

TEST(Trace, TimeStamps) {
    TestDirectory scratch;
    const std::string file = scratch / "stamps.txt";
    {
        TraceToFile to(file);
        startTraceClocks(true, true);
        trace("a", true, "one");
        startTraceClocks(false, true);
        trace("b", true, "two");
        startTraceClocks(true, false);
        trace("c", true, "three");
    }
    std::istringstream text(TestDirectory::read(file));
    std::string line;
    ASSERT_TRUE(std::getline(text, line));
    EXPECT_TRUE(stamped(line, true, true, "a: one")) << line;
    ASSERT_TRUE(std::getline(text, line));
    EXPECT_TRUE(stamped(line, false, true, "b: two")) << line;
    ASSERT_TRUE(std::getline(text, line));
    EXPECT_TRUE(stamped(line, true, false, "c: three")) << line;
    EXPECT_FALSE(std::getline(text, line));
}

TEST(Trace, StandardStreams) {
    for (const char *name : {"-", "stdout"}) {
        testing::internal::CaptureStdout();
        setTraceDestination(name);
        trace("out", true, "%d", 1);
        setTraceDestination(nullptr);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "out: 1\n") << name;
    }
    testing::internal::CaptureStderr();
    setTraceDestination("stderr");
    trace("err", true, "%d", 2);
    setTraceDestination(nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "err: 2\n");
}

}  // namespace
