#include "build/command_line.h"

#include "build/qtx_process.h"
#include "environment/install_location.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace {

using Arguments = std::vector<std::string>;

TEST(SplitCommandLine, BlanksSeparateAndNothingElseDoes) {
    EXPECT_EQ(splitCommandLine("gcc -c  a.c   -o a.o "), (Arguments{"gcc", "-c", "a.c", "-o", "a.o"}));
    EXPECT_EQ(splitCommandLine("a\tb c"), (Arguments{"a\tb", "c"}));
    EXPECT_EQ(splitCommandLine(""), Arguments{});
    EXPECT_EQ(splitCommandLine("   "), Arguments{});
}

TEST(SplitCommandLine, DoubleQuotesGroupAndAreDropped) {
    EXPECT_EQ(splitCommandLine("\"a b\"c"), (Arguments{"a bc"}));
    EXPECT_EQ(splitCommandLine("x \"a  b\" y"), (Arguments{"x", "a  b", "y"}));
    EXPECT_EQ(splitCommandLine("-DNAME=\"v w\""), (Arguments{"-DNAME=v w"}));
    // An unclosed quote runs to the end.
    EXPECT_EQ(splitCommandLine("a \"b c"), (Arguments{"a", "b c"}));
}

TEST(SplitCommandLine, EmptyQuotesAreAnEmptyArgument) {
    EXPECT_EQ(splitCommandLine("\"\""), (Arguments{""}));
    EXPECT_EQ(splitCommandLine("a \"\" b"), (Arguments{"a", "", "b"}));
}

TEST(SplitCommandLine, EscapedQuotesGroupAndStay) {
    EXPECT_EQ(splitCommandLine("\\\"a b\\\""), (Arguments{"\"a b\""}));
    EXPECT_EQ(splitCommandLine("-DS=\\\"x y\\\" z"), (Arguments{"-DS=\"x y\"", "z"}));
    // A plain quote inside an escaped one still opens and closes its own part.
    EXPECT_EQ(splitCommandLine("\\\"a \"b c\" d\\\""), (Arguments{"\"a b c d\""}));
}

TEST(SplitCommandLine, OtherBackslashesAreOrdinary) {
    EXPECT_EQ(splitCommandLine("a\\b c\\ d\\"), (Arguments{"a\\b", "c\\", "d\\"}));
}

TEST(SplitCommandChain, SplitsAtTheSeparatorAndDropsEmptyParts) {
    EXPECT_EQ(splitCommandChain("a x && b && c"), (Arguments{"a x", "b", "c"}));
    EXPECT_EQ(splitCommandChain(" && a &&  && b && "), (Arguments{"a", "b"}));
    EXPECT_EQ(splitCommandChain("a&&b"), (Arguments{"a&&b"}));
    EXPECT_EQ(splitCommandChain(""), Arguments{});
    EXPECT_EQ(splitCommandChain("a&&b &&c", "&&"), (Arguments{"a", "b ", "c"}));
}

class ToolPath : public ::testing::Test {
protected:
    // The build tree is an installation with the tool links in its bin/.
    void SetUp() override { setInstallDirectories(std::string(QUILLMAKE_BUILD_BIN_DIR) + "/quillmake", 1); }
};

TEST_F(ToolPath, MapsTheInstallationsToolsOnly) {
    for (const char *name : {"cp", "treedup", "preamblegen", "chmod", "rm", "mv", "mkdir", "echo"})
        EXPECT_EQ(toolPath(name), installDirectory() + "/bin/" + name);
    EXPECT_EQ(toolPath("gcc"), "gcc");
    EXPECT_EQ(toolPath("/bin/cp"), "/bin/cp");
    EXPECT_EQ(toolPath("cpp"), "cpp");
    EXPECT_EQ(toolPath(""), "");
}

TEST_F(ToolPath, TheInstalledToolsRun) {
    TestDirectory dir;
    dir.write("a.txt", std::string("one\0two\n", 8));
    auto run = [&](Arguments arguments) {
        arguments[0] = toolPath(arguments[0]);
        std::vector<std::string> output, errors;
        const int status = runTool(arguments, true, dir.path(), &output, &errors);
        EXPECT_EQ(errors, Arguments{});
        return std::make_pair(status, output);
    };
    EXPECT_EQ(run({"mkdir", "-p", "sub/deeper"}).first, 0);
    EXPECT_EQ(run({"cp", "a.txt", "sub/deeper/b.txt"}).first, 0);
    EXPECT_EQ(TestDirectory::read(dir / "sub/deeper/b.txt"), std::string("one\0two\n", 8));
    EXPECT_EQ(run({"mv", "sub/deeper/b.txt", "c.txt"}).first, 0);
    EXPECT_EQ(TestDirectory::read(dir / "c.txt"), std::string("one\0two\n", 8));
    EXPECT_EQ(run({"chmod", "-w", "c.txt"}).first, 0);
    struct stat info;
    ASSERT_EQ(stat((dir / "c.txt").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0222, 0u);
    EXPECT_EQ(run({"rm", "-f", "c.txt"}).first, 0);
    EXPECT_NE(access((dir / "c.txt").c_str(), F_OK), 0);
    EXPECT_EQ(run({"echo", "hello", "world"}), std::make_pair(0, Arguments{"hello world"}));
}

}  // namespace
