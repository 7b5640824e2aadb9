#include "frontend/arg_parse.h"

#include "frontend/program_log.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

using QTx::ArgOption;
using QTx::ArgParse;
using QTx::IndirectLine;
using QTx::tokenizeIndirectLine;
using Tokens = std::vector<std::string>;

// ---- Tokens of an indirect-file line ---------------------------------------

TEST(IndirectTokens, BlanksSeparateAndTabsDoNot) {
    EXPECT_EQ(tokenizeIndirectLine("  -config   Debug  ").tokens, (Tokens{"-config", "Debug"}));
    EXPECT_EQ(tokenizeIndirectLine("a\tb c\t").tokens, (Tokens{"a\tb", "c\t"}));
    EXPECT_EQ(tokenizeIndirectLine("").tokens, Tokens{});
    EXPECT_EQ(tokenizeIndirectLine("    ").tokens, Tokens{});
    EXPECT_EQ(tokenizeIndirectLine("\t").tokens, Tokens{"\t"});
}

TEST(IndirectTokens, QuotedTokensKeepBlanksAndHaveNoEscapes) {
    EXPECT_EQ(tokenizeIndirectLine("-config \"Debug Version\" x").tokens,
              (Tokens{"-config", "Debug Version", "x"}));
    EXPECT_EQ(tokenizeIndirectLine("\"a\\\" b").tokens, (Tokens{"a\\", "b"}));
    EXPECT_EQ(tokenizeIndirectLine("\"\" x").tokens, (Tokens{"", "x"}));
}

TEST(IndirectTokens, QuotesSideBySideAndInsideBareTokens) {
    EXPECT_EQ(tokenizeIndirectLine("\"a\"\"b\"").tokens, (Tokens{"a", "b"}));
    EXPECT_EQ(tokenizeIndirectLine("\"a\"b c").tokens, (Tokens{"a", "b", "c"}));
    EXPECT_EQ(tokenizeIndirectLine("a\"b c\"").tokens, (Tokens{"a\"b", "c\""}));
    EXPECT_FALSE(tokenizeIndirectLine("a\"b c\"").unterminated);
}

TEST(IndirectTokens, UnterminatedQuoteKeepsTheTokensBeforeIt) {
    const IndirectLine line = tokenizeIndirectLine("-batch x \"abc def");
    EXPECT_TRUE(line.unterminated);
    EXPECT_EQ(line.tokens, (Tokens{"-batch", "x"}));
    EXPECT_TRUE(tokenizeIndirectLine("\"").unterminated);
    EXPECT_EQ(tokenizeIndirectLine("\"a\" \"b").tokens, Tokens{"a"});
}

// ---- The parse loop --------------------------------------------------------

// A parser with a recording handler and prefix options, as a table with
// joined values would have.
class TestParse : public ArgParse {
public:
    explicit TestParse(ProgramLog *log) : ArgParse(log) {
        addFlagOption("-f", &flag, "-f: a flag");
        addValueOption("-v", &value, "-v 'x': a value");
        addValueOption("-early", &early, "", 0);
        ArgOption prefix;
        prefix.kind = ArgOption::Prefix;
        prefix.stringTarget = &joined;
        addOption("-I", prefix);
        prefix.stringTarget = &joinedLonger;
        addOption("-Iq", prefix);
        addHandlerOption("-h", static_cast<ArgOption::Handler>(&TestParse::record), "");
        ArgOption flagHandler;
        flagHandler.hasHandler = true;
        flagHandler.handler = static_cast<ArgOption::Handler>(&TestParse::record);
        addOption("-g", flagHandler);
    }
    void plainArgument(const std::string &text) override { plain.push_back(text); }
    void record(const std::string &name, const std::optional<std::string> &v) {
        calls.push_back(name + "=" + (v ? "'" + *v + "'" : "null"));
    }

    bool flag = false;
    std::optional<std::string> value, early, joined, joinedLonger;
    Tokens plain, calls;
};

struct ParseFixture : ::testing::Test {
    std::ostringstream errors;
    ProgramLog log{"qm", errors};
    TestParse parser{&log};
};

TEST_F(ParseFixture, FlagsValuesAndPlainArguments) {
    parser.parse({"-f", "-v", "", "", "a", "b"}, 1);
    EXPECT_TRUE(parser.flag);
    ASSERT_TRUE(parser.value);
    EXPECT_EQ(*parser.value, "");
    EXPECT_EQ(parser.plain, (Tokens{"a", "b"}));
    EXPECT_EQ(errors.str(), "");
    EXPECT_EQ(log.errorCount(), 0);
}

TEST_F(ParseFixture, HandlersGetTheNameAndAValueOrNull) {
    parser.parse({"-h", "x y", "-g", "-h", "-g"}, 1);
    EXPECT_EQ(parser.calls, (Tokens{"-h='x y'", "-g=null", "-h='-g'"}));
}

TEST_F(ParseFixture, PrefixOptionsTakeTheRestOfTheArgument) {
    parser.parse({"-Iinclude"}, 1);
    EXPECT_EQ(parser.joined, "include");
    // The exact key gives an empty value, not a null one.
    parser.parse({"-I"}, 1);
    EXPECT_EQ(parser.joined, "");
    // The first prefix in key order wins, even over a longer match.
    parser.parse({"-Iqx"}, 1);
    EXPECT_EQ(parser.joined, "qx");
    EXPECT_FALSE(parser.joinedLonger);
    // An exact key is looked up before any prefix.
    parser.parse({"-Iq"}, 1);
    EXPECT_EQ(parser.joinedLonger, "");
    EXPECT_EQ(errors.str(), "");
}

TEST_F(ParseFixture, OtherPhaseOptionsAreSteppedOverWithTheirValues) {
    parser.parse({"-early", "dir", "-v", "x", "plain"}, 1);
    EXPECT_FALSE(parser.early);
    EXPECT_EQ(parser.value, "x");
    EXPECT_EQ(parser.plain, Tokens{"plain"});

    TestParse phaseZero(&log);
    phaseZero.parse({"-early", "dir", "-v", "x", "plain", "-f"}, 0);
    EXPECT_EQ(phaseZero.early, "dir");
    EXPECT_FALSE(phaseZero.value);
    EXPECT_FALSE(phaseZero.flag);
    EXPECT_TRUE(phaseZero.plain.empty());
    EXPECT_EQ(errors.str(), "");
}

TEST_F(ParseFixture, UnrecognisedOptionsAreReportedInEitherPhase) {
    parser.parse({"-x", "-", "-fx"}, 0);
    parser.parse({"-y"}, 1);
    EXPECT_EQ(errors.str(),
              "qm: error: unrecognised option -x\n"
              "qm: error: unrecognised option -\n"
              "qm: error: unrecognised option -fx\n"
              "qm: error: unrecognised option -y\n");
    EXPECT_EQ(log.errorCount(), 4);
}

TEST_F(ParseFixture, MissingValueEndsTheList) {
    parser.parse({"a", "-v"}, 1);
    EXPECT_EQ(errors.str(), "qm: error: expected argument for option -v\n");
    EXPECT_FALSE(parser.value);
    EXPECT_EQ(parser.plain, Tokens{"a"});
}

// ---- Indirect files --------------------------------------------------------

class IndirectFixture : public ParseFixture {
protected:
    void SetUp() override {
        char pattern[] = "/tmp/argparse-test.XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        dir = pattern;
    }
    void TearDown() override {
        const std::string command = "rm -rf '" + dir + "'";
        ASSERT_EQ(std::system(command.c_str()), 0);
    }
    std::string write(const std::string &name, const std::string &content) {
        const std::string path = dir + "/" + name;
        std::ofstream(path, std::ios::binary) << content;
        return path;
    }
    std::string dir;
};

TEST_F(IndirectFixture, EachLineIsAListOfItsOwn) {
    const std::string path = write("args", "# -f is a comment\n"
                                           "-v \"Debug Version\" a\r\n"
                                           " #x\n"
                                           "\n"
                                           "-v\n"
                                           "next\n"
                                           "last");
    parser.parse({"@" + path}, 1);
    EXPECT_EQ(parser.value, "Debug Version");
    EXPECT_FALSE(parser.flag);
    EXPECT_EQ(parser.plain, (Tokens{"a", "#x", "next", "last"}));
    EXPECT_EQ(errors.str(), "qm: error: expected argument for option -v\n");
}

TEST_F(IndirectFixture, UnterminatedStringCountsLinesWithoutComments) {
    const std::string path = write("args", "#c\n-f\n#c\n#c\nx \"abc\ny\n");
    parser.parse({"@" + path}, 1);
    EXPECT_EQ(errors.str(), "qm: error: unterminated string in indirect file " + path + "(2)\n");
    EXPECT_EQ(parser.plain, (Tokens{"x", "y"}));
    EXPECT_TRUE(parser.flag);
}

TEST_F(IndirectFixture, FilesThatCantBeOpened) {
    parser.parse({"@" + dir + "/missing", "@" + dir, "@", "after"}, 1);
    EXPECT_EQ(errors.str(),
              "qm: error: can't open indirect file " + dir + "/missing: No such file or directory\n"
              "qm: error: can't open indirect file " + dir + ": Is a directory\n"
              "qm: error: can't open indirect file : No such file or directory\n");
    EXPECT_EQ(parser.plain, Tokens{"after"});
}

TEST_F(IndirectFixture, HundredLevelsOpenAndTheNextDoesNot) {
    for (int level = 1; level <= 101; ++level) {
        const std::string next = "@" + dir + "/f" + std::to_string(level + 1);
        write("f" + std::to_string(level), level < 101 ? next + "\nlevel" + std::to_string(level) + "\n"
                                                       : "level101\n");
    }
    write("f100", "level100\n@" + dir + "/f101\nafter100\n");
    parser.parse({"@" + dir + "/f1", "outer"}, 1);
    EXPECT_EQ(errors.str(), "qm: error: too many indirect files\n");
    ASSERT_EQ(parser.plain.size(), 102u);
    EXPECT_EQ(parser.plain[0], "level100");
    EXPECT_EQ(parser.plain[1], "after100");
    EXPECT_EQ(parser.plain[2], "level99");
    EXPECT_EQ(parser.plain[100], "level1");
    EXPECT_EQ(parser.plain[101], "outer");
}

TEST_F(IndirectFixture, FilesIncludingThemselvesEnd) {
    const std::string once = write("once", "-f\n@" + dir + "/once\n");
    parser.parse({"@" + once}, 1);
    EXPECT_EQ(errors.str(), "qm: error: too many indirect files\n");
    EXPECT_EQ(log.errorCount(), 1);

    // Twice per file would be 2^100 files; the count of files stops it.
    errors.str("");
    const std::string twice = write("twice", "@" + dir + "/twice\n@" + dir + "/twice\nx\n");
    TestParse other(&log);
    other.parse({"@" + twice, "end"}, 1);
    EXPECT_EQ(errors.str(), "qm: error: too many indirect files\n");
    EXPECT_EQ(other.plain.back(), "end");
    EXPECT_EQ(other.plain.size(), static_cast<size_t>(ArgParse::defaultIndirectFileLimit) + 1);
}

TEST_F(IndirectFixture, FileLimitCountsFilesNotLevels) {
    const std::string leaf = write("leaf", "x\n");
    const std::string top = write("top", "@" + leaf + " @" + leaf + "\n@" + leaf + "\ny\n");
    parser.setIndirectFileLimit(3);
    parser.parse({"@" + top, "z"}, 1);
    EXPECT_EQ(errors.str(), "qm: error: too many indirect files\n");
    EXPECT_EQ(parser.plain, (Tokens{"x", "x", "y", "z"}));
}

TEST_F(IndirectFixture, LimitIsReportedAgainInTheNextPass) {
    const std::string once = write("once", "@" + dir + "/once\n");
    parser.parse({"@" + once}, 0);
    parser.parse({"@" + once}, 1);
    EXPECT_EQ(log.errorCount(), 2);
}

// ---- Help entries ----------------------------------------------------------

TEST(HelpEntries, SplitSortedIgnoringCaseAndDropped) {
    std::ostringstream errors;
    ProgramLog log("qm", errors);
    ArgParse parser(&log);
    bool flag = false;
    parser.addFlagOption("-b", &flag, "-b: second;-A 'x':first: with colon");
    parser.addFlagOption("-c", &flag, "no colon");
    parser.addFlagOption("-d", &flag, "");
    parser.addFlagOption("-e", &flag, "-C:third;;");
    const auto entries = parser.helpEntries();
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_EQ(entries[0].left, "-A 'x'");
    EXPECT_EQ(entries[0].right, "first: with colon");
    EXPECT_EQ(entries[1].left, "-b");
    EXPECT_EQ(entries[1].right, " second");  // the blank after the colon stays
    EXPECT_EQ(entries[2].left, "-C");
    EXPECT_EQ(entries[2].right, "third");
}
