#include "frontend/console_progress.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

namespace {

// A FILE* whose bytes can be read back.
struct MemoryStream {
    char *buffer = nullptr;
    std::size_t size = 0;
    std::FILE *file = open_memstream(&buffer, &size);

    ~MemoryStream() {
        std::fclose(file);
        std::free(buffer);
    }
    std::string text() {
        std::fflush(file);
        return std::string(buffer, size);
    }
};

} // namespace

TEST(QuillmakeProjectLoadProgress, TasksIndentTwoBlanksPerLevelUnlessQuiet) {
    MemoryStream quietOut, out;
    QuillmakeProjectLoadProgress quiet(true, quietOut.file), loud(false, out.file);
    for (QuillmakeProjectLoadProgress *progress : {&quiet, &loud}) {
        progress->beginTask("outer", 2);
        progress->beginTask("inner", 3);
        progress->message("deep");
        EXPECT_EQ(progress->depth(), progress == &quiet ? 0 : 2);
        progress->endTask();
        progress->warning("middle");
        progress->endTask();
        progress->message("top");
    }
    EXPECT_EQ(quietOut.text(), "deep\nmiddle\ntop\n");
    EXPECT_EQ(out.text(), "  outer\n    inner\n    deep\n  middle\ntop\n");

    // The target property lines of templates are dropped.
    for (const char *line : {"template property target_x", "template property arm_target_device",
                             "template property arm_linker_jtag_speed", "template property arm_simulator",
                             "template property foo", " template property target_x", "Template property target_x"})
        quiet.message(line);
    EXPECT_EQ(quietOut.text(), "deep\nmiddle\ntop\ntemplate property foo\n template property target_x\n"
                               "Template property target_x\n");
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
