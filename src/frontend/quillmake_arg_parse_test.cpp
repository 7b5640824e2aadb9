#include "frontend/quillmake_arg_parse.h"

#include "environment/system_macros.h"
#include "frontend/program_log.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>
#include <unistd.h>

using Strings = std::vector<std::string>;

struct QuillmakeArgs : ::testing::Test {
    std::ostringstream errors;
    ProgramLog log{"qm", errors};
    SystemMacros macros;
    QuillmakeArgParse args{&log, macros};

    void parseBoth(const Strings &list) {
        args.parse(list, 0);
        args.parse(list, 1);
    }
};

TEST_F(QuillmakeArgs, EverythingStartsUnset) {
    EXPECT_FALSE(args.configuration);
    EXPECT_FALSE(args.solutionFile);
    EXPECT_FALSE(args.solutionName);
    EXPECT_FALSE(args.lockFile);
    EXPECT_FALSE(args.batch);
    EXPECT_EQ(args.threadCount, 0u);
    EXPECT_TRUE(args.globalMacros.empty());
}

TEST_F(QuillmakeArgs, MacrosSplitAtTheFirstEqualsAndTheLastWins) {
    parseBoth({"-D", "b=1", "-D", "a=x=y", "-D", "bare", "-D", "b=2", "-D", "e="});
    using Macros = std::map<std::string, std::optional<std::string>>;
    EXPECT_EQ(args.globalMacros,
              (Macros{{"a", "x=y"}, {"b", "2"}, {"bare", std::nullopt}, {"e", ""}}));
    EXPECT_EQ(errors.str(), "");
}

TEST_F(QuillmakeArgs, ListsKeepTheirOrder) {
    parseBoth({"-file", "b.c", "-property", "p=1", "-file", "a.c", "-sproperty", "s", "-property",
               "q"});
    EXPECT_EQ(args.files, (Strings{"b.c", "a.c"}));
    EXPECT_EQ(args.projectProperties, (Strings{"p=1", "q"}));
    EXPECT_EQ(args.solutionProperties, Strings{"s"});
}

TEST_F(QuillmakeArgs, LastPlainArgumentIsTheSolutionFile) {
    parseBoth({"-config", "Debug", "a.tbp", "b.tbp"});
    EXPECT_EQ(args.solutionFile, "b.tbp");
    EXPECT_EQ(args.configuration, "Debug");
}

TEST_F(QuillmakeArgs, StudioDirHasTwoSpellingsAndRootUserDirActsFirst) {
    args.parse({"-rootuserdir", "/r", "-studiodir", "/a"}, 0);
    EXPECT_EQ(args.rootUserDirectory, "/r");
    EXPECT_FALSE(args.studioDirectory);
    args.parse({"-rootuserdir", "/ignored", "-studiodir", "/a", "-StudioDir", "/b"}, 1);
    EXPECT_EQ(args.rootUserDirectory, "/r");
    EXPECT_EQ(args.studioDirectory, "/b");
}

TEST_F(QuillmakeArgs, ThreadNumber) {
    args.parse({"-threadnum", "8"}, 1);
    EXPECT_EQ(args.threadCount, 8u);
    args.parse({"-threadnum", "4x"}, 1);
    EXPECT_EQ(args.threadCount, 0u);
    EXPECT_EQ(errors.str(), "");
}

TEST(ToUnsigned, DecimalOrZero) {
    EXPECT_EQ(toUnsigned("12"), 12u);
    EXPECT_EQ(toUnsigned(" 7 "), 7u);
    EXPECT_EQ(toUnsigned("+3"), 3u);
    EXPECT_EQ(toUnsigned("4294967295"), 4294967295u);
    EXPECT_EQ(toUnsigned("4294967296"), 0u);
    EXPECT_EQ(toUnsigned("99999999999999999999999"), 0u);
    EXPECT_EQ(toUnsigned("-1"), 0u);
    EXPECT_EQ(toUnsigned("abc"), 0u);
    EXPECT_EQ(toUnsigned("1 2"), 0u);
    EXPECT_EQ(toUnsigned("0x10"), 0u);
    EXPECT_EQ(toUnsigned("+"), 0u);
    EXPECT_EQ(toUnsigned(""), 0u);
}

TEST_F(QuillmakeArgs, QuotedValueInAnIndirectFile) {
    char path[] = "/tmp/quillmake-args.XXXXXX";
    const int fd = mkstemp(path);
    ASSERT_GE(fd, 0);
    const std::string content = "-config \"Debug Version\" \"my solution.tbp\"\n";
    ASSERT_EQ(write(fd, content.data(), content.size()), static_cast<ssize_t>(content.size()));
    close(fd);
    parseBoth({std::string("@") + path});
    unlink(path);
    EXPECT_EQ(args.configuration, "Debug Version");
    EXPECT_EQ(args.solutionFile, "my solution.tbp");
}

TEST_F(QuillmakeArgs, BatchWithoutConfigBuildsCommon) {
    parseBoth({"-batch", "a.tbp"});
    EXPECT_TRUE(args.applyRules());
    EXPECT_EQ(args.configuration, "Common");
    EXPECT_EQ(errors.str(), "");
}

TEST_F(QuillmakeArgs, ConfigGivenWithBatchIsKept) {
    parseBoth({"-batch", "-config", "Release", "a.tbp"});
    EXPECT_TRUE(args.applyRules());
    EXPECT_EQ(args.configuration, "Release");
}

TEST_F(QuillmakeArgs, EveryDocumentedOptionHasOneHelpEntry) {
    const auto entries = args.helpEntries();
    EXPECT_EQ(entries.size(), 27u);
    for (const auto &entry : entries) {
        const std::string option = entry.left.substr(0, entry.left.find(' '));
        EXPECT_TRUE(args.options().count(option)) << entry.left;
        EXPECT_FALSE(entry.right.empty()) << entry.left;
    }
}
