#include "frontend/console_progress.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

namespace {

// A FILE* whose bytes can be read back.
class MemoryStream {
public:
    MemoryStream() : file(open_memstream(&buffer, &size)) {}
    ~MemoryStream() {
        std::fclose(file);
        std::free(buffer);
    }
    std::string text() {
        std::fflush(file);
        return std::string(buffer, size);
    }
    std::FILE *file;

private:
    char *buffer = nullptr;
    std::size_t size = 0;
};

TEST(QuillmakeProjectLoadProgress, QuietPrintsLinesInTheFirstColumnAndNoTasks) {
    MemoryStream out;
    QuillmakeProjectLoadProgress progress(true, out.file);
    progress.beginTask("Loading solution a.tbp", 2);
    progress.message("line one");
    progress.warning("a warning");
    EXPECT_EQ(progress.depth(), 0);
    progress.endTask();
    EXPECT_EQ(out.text(), "line one\na warning\n");
}

TEST(QuillmakeProjectLoadProgress, TasksIndentTwoBlanksPerLevel) {
    MemoryStream out;
    QuillmakeProjectLoadProgress progress(false, out.file);
    progress.beginTask("outer", 2);
    progress.beginTask("inner", 3);
    progress.message("deep");
    progress.endTask();
    progress.message("middle");
    progress.endTask();
    progress.message("top");
    EXPECT_EQ(out.text(), "  outer\n    inner\n    deep\n  middle\ntop\n");
}

TEST(QuillmakeProjectLoadProgress, TargetPropertyLinesOfTemplatesAreDropped) {
    MemoryStream out;
    QuillmakeProjectLoadProgress progress(true, out.file);
    for (const char *line : {"template property target_x", "template property arm_target_device",
                             "template property arm_linker_jtag_speed",
                             "template property arm_simulator", "template property foo",
                             " template property target_x", "Template property target_x"})
        progress.message(line);
    EXPECT_EQ(out.text(),
              "template property foo\n template property target_x\nTemplate property target_x\n");
}

TEST(QuillmakeWarning, GoesToStandardOutputUnlessNoStderrIsGiven) {
    MemoryStream out, err;
    QuillmakeWarning toOutput(false, out.file, err.file);
    toOutput.warning(nullptr, "Debug", "Cyclic Dependency Detected", {"Cycle between 'a' and 'b'"});
    EXPECT_EQ(out.text(), "Cyclic Dependency Detected Cycle between 'a' and 'b'\n");
    EXPECT_EQ(err.text(), "");

    QuillmakeWarning toError(true, out.file, err.file);
    toError.warning(nullptr, "Debug", "title", {"one", "two"});
    toError.warning(nullptr, "Debug", "empty", {});
    EXPECT_EQ(err.text(), "title one\ntwo\nempty \n");
}

}  // namespace
