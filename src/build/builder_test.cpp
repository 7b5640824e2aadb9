#include "build/builder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Records the reports the default operations make.
class RecordingBuilder : public Builder {
public:
    void beginStep(ProjectElement *, const std::string &, const std::string &, int) override {}
    void endStep(ProjectElement *, const std::string &) override {}
    void addCommand(const std::string &, const std::vector<std::string> &,
                    const std::string &) override {}
    void reportError(const std::string &text) override { errors.push_back(text); }
    void stopCommand() override { ++stops; }

    std::vector<std::string> errors;
    int stops = 0;
};

class TempDir {
public:
    TempDir() {
        char pattern[] = "/tmp/builder_test.XXXXXX";
        path = mkdtemp(pattern);
    }
    ~TempDir() { std::system(("rm -rf '" + path + "'").c_str()); }
    std::string path;
};

std::string readFile(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

}  // namespace

TEST(BuilderWriteLines, MakesMissingDirectoriesAndWritesEachLineWithANewline) {
    TempDir dir;
    RecordingBuilder builder;
    const std::string file = dir.path + "/a/b/list.txt";
    builder.writeLines(file, {"first", "", "dritt\xc3\xa9"});
    EXPECT_TRUE(builder.errors.empty());
    EXPECT_EQ(readFile(file), "first\n\ndritt\xc3\xa9\n");

    builder.writeLines(file, {"short"});
    EXPECT_EQ(readFile(file), "short\n");
}

TEST(BuilderWriteLines, ReportsADirectoryThatCannotBeMadeAndStops) {
    TempDir dir;
    const std::string blocker = dir.path + "/plain";
    std::ofstream(blocker) << "x";
    RecordingBuilder builder;
    builder.writeLines(blocker + "/sub/list.txt", {"x"});
    EXPECT_EQ(builder.errors, std::vector<std::string>{"cannot mkdir " + blocker + "/sub"});
    EXPECT_EQ(builder.stops, 1);
}

TEST(BuilderWriteLines, ReportsAFileThatCannotBeOpenedAndStops) {
    TempDir dir;
    RecordingBuilder builder;
    // A directory in the place of the file can't be opened for writing.
    const std::string target = dir.path + "/taken";
    mkdir(target.c_str(), 0777);
    builder.writeLines(target, {"x"});
    EXPECT_EQ(builder.errors, std::vector<std::string>{"cannot open " + target});
    EXPECT_EQ(builder.stops, 1);
}

TEST(BuilderDefaults, WaitForCommandAnswersAtOnceAndLeavesTheStatus) {
    NullBuilder builder;
    int status = 42;
    EXPECT_TRUE(builder.waitForCommand(nullptr, "Debug", status));
    EXPECT_EQ(status, 42);
    EXPECT_TRUE(builder.acceptOutputFile("/x/y.o"));
    EXPECT_EQ(builder.diagnosticParser(), nullptr);
}

TEST(NullBuilder, DeletesNothing) {
    TempDir dir;
    const std::string file = dir.path + "/keep.o";
    std::ofstream(file) << "x";
    NullBuilder builder;
    builder.deleteFile(file, false);
    EXPECT_EQ(access(file.c_str(), F_OK), 0);
}
