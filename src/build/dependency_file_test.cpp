#include "build/dependency_file.h"

#include <gtest/gtest.h>

namespace {

using Names = std::vector<std::string>;

TEST(DependencyFile, ContinuationLinesJoinIntoOneRule) {
    const auto rules = parseDependencyRules("obj/a.o: a.c \\\n  inc/a.h \\\r\n inc/b.h\n\nb.h:\n");
    ASSERT_EQ(rules.size(), 2u);
    EXPECT_EQ(rules[0].targets, Names{"obj/a.o"});
    EXPECT_EQ(rules[0].prerequisites, (Names{"a.c", "inc/a.h", "inc/b.h"}));
    // A colon that ends a line closes the targets too.
    EXPECT_EQ(rules[1].targets, Names{"b.h"});
    EXPECT_TRUE(rules[1].prerequisites.empty());
}

TEST(DependencyFile, EscapedBlanksStayInTheName) {
    const auto rules = parseDependencyRules("my\\ obj.o: my\\ file.c dir\\ x/a\\#b.h cost$$.h c:\\src\\d.h\n");
    ASSERT_EQ(rules.size(), 1u);
    EXPECT_EQ(rules[0].targets, Names{"my obj.o"});
    EXPECT_EQ(rules[0].prerequisites,
              (Names{"my file.c", "dir x/a#b.h", "cost$.h", "c:\\src\\d.h"}));
}

TEST(DependencyFile, EscapesAtEitherEndOfANameAndSignsThatStayAsTheyAre) {
    const auto rules = parseDependencyRules("t.o: \\ lead.h trail\\ \tx$y.h $$$ a\\b.h");
    ASSERT_EQ(rules.size(), 1u);
    EXPECT_EQ(rules[0].prerequisites, (Names{" lead.h", "trail ", "x$y.h", "$$", "a\\b.h"}));
}

TEST(DependencyFile, ALineWithoutTargetIsAllPrerequisites) {
    const auto rules = parseDependencyRules("a.c\tb.h   c.h");
    ASSERT_EQ(rules.size(), 1u);
    EXPECT_TRUE(rules[0].targets.empty());
    EXPECT_EQ(rules[0].prerequisites, (Names{"a.c", "b.h", "c.h"}));
}

TEST(DependencyFile, SeveralTargetsAndAColonInsideAName) {
    // Only ": " cuts: "C:/x" is a name.
    const auto rules = parseDependencyRules("a.o a.d: C:/x/a.c\nlast.o: \\");
    ASSERT_EQ(rules.size(), 2u);
    EXPECT_EQ(rules[0].targets, (Names{"a.o", "a.d"}));
    EXPECT_EQ(rules[0].prerequisites, Names{"C:/x/a.c"});
    // A continuation at the end of the text ends the rule.
    EXPECT_EQ(rules[1].targets, Names{"last.o"});
}

TEST(DependencyFile, TheReaderGivesOneRuleAtATime) {
    // Plain names, unescaped ones and names of continued lines side by side,
    // all valid until the next rule is read.
    DependencyRuleReader reader("a.o: a.c dir\\ x/b.h \\\n  c$$.h\n\nb.o: b.c\n");
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.targets(), std::vector<std::string_view>{"a.o"});
    EXPECT_EQ(reader.prerequisites(), (std::vector<std::string_view>{"a.c", "dir x/b.h", "c$.h"}));
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.targets(), std::vector<std::string_view>{"b.o"});
    EXPECT_EQ(reader.prerequisites(), std::vector<std::string_view>{"b.c"});
    EXPECT_FALSE(reader.next());
    EXPECT_TRUE(reader.targets().empty());
    EXPECT_TRUE(reader.prerequisites().empty());
}

TEST(DependencyFile, NothingGivesNoRules) {
    EXPECT_TRUE(parseDependencyRules("").empty());
    EXPECT_TRUE(parseDependencyRules("\n \n\\\n").empty());
}

// Names are scanned in runs: an escape or a blank is found wherever it falls
// in a name, and a name may end anywhere.
TEST(DependencyFile, EscapesAndBlanksAtEveryPlaceInALongName) {
    const std::string stem = "/usr/include/x86_64-linux-gnu/bits";
    for (std::size_t at = 0; at <= stem.size(); ++at) {
        const std::string before = stem.substr(0, at), after = stem.substr(at);
        for (const auto &[written, read] :
             {std::pair<std::string, std::string>{"\\ ", " "}, {"$$", "$"}, {"\\#", "#"}, {"\\x", "\\x"}}) {
            // The last name ends with the text, at every length.
            const auto rules = parseDependencyRules("t.o: " + before + written + after + "\tz.h " + before);
            std::vector<std::string> expected{before + read + after, "z.h"};
            if (!before.empty())
                expected.push_back(before);
            ASSERT_EQ(rules.size(), 1u);
            EXPECT_EQ(rules[0].prerequisites, expected) << written << " at " << at;
        }
    }
}

}  // namespace
