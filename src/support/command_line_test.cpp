#include "support/command_line.h"

#include <gtest/gtest.h>

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

}  // namespace
