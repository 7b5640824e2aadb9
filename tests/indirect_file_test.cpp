// "@file" arguments: files of further arguments, read line by line.
#include "harness.h"

#include <gtest/gtest.h>

using e2e::quillmakePath;
using e2e::runQuillmake;
using e2e::Sandbox;

namespace {

std::string error(const std::string &text) { return quillmakePath() + ": error: " + text + "\n"; }

// A run that gets past the command line and looks for its solution file
// (<box> stands for the sandbox's path).
const std::string notLoading = "load error: <box>/a.tbp  does not exist\n";

const std::string noFile = ".tbp file or -template or -type must be specified.";

void expectRun(const Sandbox &box, const std::vector<std::string> &arguments, const std::string &err,
               int status) {
    const auto r = runQuillmake(box, arguments);
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err, box.expand(err));
    EXPECT_EQ(r.status, status);
}

// level1 .. level<count>, each including the next; the last one holds `last`.
void writeChain(const Sandbox &box, int count, const std::string &last) {
    for (int level = 1; level < count; ++level)
        box.write("level" + std::to_string(level), "@level" + std::to_string(level + 1) + "\n");
    box.write("level" + std::to_string(count), last);
}

}  // namespace

TEST(IndirectFile, OptionsAndSolutionFromAFile) {
    Sandbox box;
    box.write("args", "# build settings\n-config Debug\n\n-batch   a.tbp\n");
    expectRun(box, {"@args"}, notLoading, 1);
}

TEST(IndirectFile, HundredLevelsOpen) {
    Sandbox box;
    writeChain(box, 100, "-config Debug a.tbp\n");
    expectRun(box, {"@level1"}, notLoading, 1);
}

TEST(IndirectFile, TheHundredAndFirstLevelDoesNotAndParsingGoesOn) {
    Sandbox box;
    writeChain(box, 101, "-never\n");
    box.write("level100", "@level101\n-after\n");
    expectRun(box, {"@level1", "-outer"},
              error("too many indirect files") + error("unrecognised option -after") +
                  error("unrecognised option -outer"),
              1);
}

TEST(IndirectFile, FilesIncludingThemselvesEnd) {
    Sandbox box;
    box.write("self", "@self\n");
    expectRun(box, {"-config", "Debug", "a.tbp", "@self"}, error("too many indirect files"), 1);
    box.write("twice", "@twice @twice\n@twice\n");
    expectRun(box, {"-config", "Debug", "a.tbp", "@twice"}, error("too many indirect files"), 1);
}

TEST(IndirectFile, QuotedValueWithABlank) {
    Sandbox box;
    // "Debug Version" is one value: nothing is left for a solution file.
    box.write("args", "-config \"Debug Version\" -batch\n");
    expectRun(box, {"@args"}, error(noFile), 1);
    box.write("help", "-helpdg \"my options.txt\"\n");
    expectRun(box, {"@help"}, "", 0);
    EXPECT_TRUE(box.exists("my options.txt"));
}

TEST(IndirectFile, ValueOptionAtTheEndOfALine) {
    Sandbox box;
    box.write("args", "-config\nDebug a.tbp\n");
    expectRun(box, {"@args"}, error("expected argument for option -config"), 1);
}

TEST(IndirectFile, CommentsOnlyInTheFirstColumn) {
    Sandbox box;
    box.write("comment", "-config Debug\n#x\n");
    expectRun(box, {"@comment"}, error(noFile), 1);
    box.write("plain", "-config Debug\n #x\n");
    expectRun(box, {"@plain"}, "load error: <box>/#x  does not exist\n", 1);
}

TEST(IndirectFile, EmptyQuotedTokenIsIgnored) {
    Sandbox box;
    box.write("args", "-config Debug a.tbp \"\"\n");
    expectRun(box, {"@args"}, notLoading, 1);
}

TEST(IndirectFile, UnterminatedStringCountsLinesWithoutComments) {
    Sandbox box;
    box.write("args", "# one\n-config Debug\n# two\n#three\n-batch \"a.tbp\n");
    expectRun(box, {"@args"}, error("unterminated string in indirect file args(2)"), 1);
}

TEST(IndirectFile, MissingFile) {
    Sandbox box;
    expectRun(box, {"-config", "Debug", "a.tbp", "@missing.txt"},
              error("can't open indirect file missing.txt: No such file or directory"), 1);
    expectRun(box, {std::string(1, '@') += box.at("none")},
              error("can't open indirect file " + box.at("none") + ": No such file or directory"), 1);
}
