#include "build/builder.h"

#include "support/test_directory.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace {

// Records the reports the default operations make.
class RecordingBuilder : public Builder {
public:
    void beginStep(ProjectElement *, const std::string &, const std::string &, int) override {}
    void endStep(ProjectElement *, const std::string &) override {}
    void addCommand(const std::string &, const std::vector<std::string> &, const std::string &) override {}
    void reportError(const std::string &text) override { errors.push_back(text); }
    void stopCommand() override { ++stops; }

    std::vector<std::string> errors;
    int stops = 0;
};

TEST(BuilderWriteLines, MakesMissingDirectoriesAndWritesEachLineWithANewline) {
    TestDirectory directory;
    RecordingBuilder builder;
    const std::string file = directory / "a/b/list.txt";
    builder.writeLines(file, {"first", "", "dritt\xc3\xa9"});
    EXPECT_TRUE(builder.errors.empty());
    EXPECT_EQ(TestDirectory::read(file), "first\n\ndritt\xc3\xa9\n");
    builder.writeLines(file, {"short"});
    EXPECT_EQ(TestDirectory::read(file), "short\n");
}

TEST(BuilderWriteLines, ReportsWhatCannotBeMadeAndStops) {
    TestDirectory directory;
    const std::string blocker = directory.write("plain", "x");
    // A directory in the place of the file can't be opened for writing.
    ASSERT_EQ(mkdir((directory / "taken").c_str(), 0777), 0);
    for (const auto &[file, error] : {std::pair{blocker + "/sub/list.txt", "cannot mkdir " + blocker + "/sub"},
                                      std::pair{directory / "taken", "cannot open " + (directory / "taken")}}) {
        RecordingBuilder builder;
        builder.writeLines(file, {"x"});
        EXPECT_EQ(builder.errors, std::vector<std::string>{error});
        EXPECT_EQ(builder.stops, 1);
    }
}

TEST(NullBuilder, AnswersAtOnceAndDeletesNothing) {
    TestDirectory directory;
    const std::string file = directory.write("keep.o", "x");
    NullBuilder builder;
    int status = 42;
    EXPECT_TRUE(builder.waitForCommand(nullptr, "Debug", status));
    EXPECT_EQ(status, 42);
    EXPECT_TRUE(builder.acceptOutputFile(file));
    EXPECT_EQ(builder.diagnosticParser(), nullptr);
    builder.deleteFile(file, false);
    EXPECT_EQ(access(file.c_str(), F_OK), 0);
}

}  // namespace
