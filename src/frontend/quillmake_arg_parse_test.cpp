#include "frontend/quillmake_arg_parse.h"

#include "environment/system_macros.h"
#include "frontend/program_log.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

#include <sstream>

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

TEST_F(QuillmakeArgs, ValuesListsAndMacros) {
    TestDirectory dir;
    const std::string file = dir.write("args", "-config \"Debug Version\" \"my solution.tbp\"\n");
    parseBoth({"-D", "b=1", "-D", "a=x=y", "-D", "bare", "-D", "b=2", "-D", "e=", "-file", "b.c", "-property", "p=1",
               "-file", "a.c", "-sproperty", "s", "-property", "q", "-config", "Debug", "a.tbp", "@" + file});
    // A macro is split at the first "=", and the last one of a name wins.
    EXPECT_EQ(args.globalMacros, (std::map<std::string, std::optional<std::string>>{
                                     {"a", "x=y"}, {"b", "2"}, {"bare", std::nullopt}, {"e", ""}}));
    EXPECT_EQ(args.files, (Strings{"b.c", "a.c"}));
    EXPECT_EQ(args.projectProperties, (Strings{"p=1", "q"}));
    EXPECT_EQ(args.solutionProperties, Strings{"s"});
    EXPECT_EQ(args.configuration, "Debug Version");
    // The last plain argument is the solution file.
    EXPECT_EQ(args.solutionFile, "my solution.tbp");
    EXPECT_EQ(errors.str(), "");
}

TEST_F(QuillmakeArgs, StudioDirHasTwoSpellingsAndRootUserDirActsFirst) {
    args.parse({"-rootuserdir", "/r", "-studiodir", "/a"}, 0);
    EXPECT_EQ(args.rootUserDirectory, "/r");
    EXPECT_FALSE(args.studioDirectory);
    args.parse({"-rootuserdir", "/ignored", "-studiodir", "/a", "-StudioDir", "/b"}, 1);
    EXPECT_EQ(args.rootUserDirectory, "/r");
    EXPECT_EQ(args.studioDirectory, "/b");
}

TEST_F(QuillmakeArgs, ThreadNumberIsDecimalOrZero) {
    args.parse({"-threadnum", "8"}, 1);
    EXPECT_EQ(args.threadCount, 8u);
    args.parse({"-threadnum", "4x"}, 1);
    EXPECT_EQ(args.threadCount, 0u);
    EXPECT_EQ(errors.str(), "");
    const std::pair<const char *, unsigned> cases[] = {
        {"12", 12u}, {" 7 ", 7u},    {"+3", 3u},   {"4294967295", 4294967295u}, {"4294967296", 0u},
        {"99999999999999999999999", 0u}, {"-1", 0u}, {"abc", 0u}, {"1 2", 0u}, {"0x10", 0u}, {"+", 0u}, {"", 0u},
    };
    for (const auto &[text, value] : cases)
        EXPECT_EQ(toUnsigned(text), value) << text;
}

TEST_F(QuillmakeArgs, BatchWithoutConfigBuildsCommon) {
    parseBoth({"-batch", "a.tbp"});
    EXPECT_TRUE(args.applyRules());
    EXPECT_EQ(args.configuration, "Common");
    QuillmakeArgParse release(&log, macros);
    release.parse({"-batch", "-config", "Release", "a.tbp"}, 1);
    EXPECT_TRUE(release.applyRules());
    EXPECT_EQ(release.configuration, "Release");
    EXPECT_EQ(errors.str(), "");
}

TEST_F(QuillmakeArgs, EveryDocumentedOptionHasOneHelpEntry) {
    const auto entries = args.helpEntries();
    EXPECT_EQ(entries.size(), 27u);
    for (const auto &entry : entries) {
        EXPECT_TRUE(args.options().count(entry.left.substr(0, entry.left.find(' ')))) << entry.left;
        EXPECT_FALSE(entry.right.empty()) << entry.left;
    }
}
