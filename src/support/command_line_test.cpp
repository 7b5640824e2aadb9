#include "support/command_line.h"

#include <gtest/gtest.h>

namespace {

using Arguments = std::vector<std::string>;

TEST(SplitCommandLine, BlanksSeparateQuotesGroup) {
    const struct {
        const char *text;
        Arguments arguments;
    } cases[] = {
        {"gcc -c  a.c   -o a.o ", {"gcc", "-c", "a.c", "-o", "a.o"}},
        {"a\tb c", {"a\tb", "c"}},  // only blanks separate
        {"   ", {}},
        // Double quotes group and are dropped; an unclosed one runs to the end.
        {"x \"a  b\"c", {"x", "a  bc"}},
        {"-DNAME=\"v w\" \"b c", {"-DNAME=v w", "b c"}},
        {"a \"\" b", {"a", "", "b"}},  // empty quotes are an empty argument
        // Escaped quotes group and stay; a plain quote inside an escaped one
        // still opens and closes its own part.
        {"-DS=\\\"x y\\\" z", {"-DS=\"x y\"", "z"}},
        {"\\\"a \"b c\" d\\\"", {"\"a b c d\""}},
        {"a\\b c\\ d\\", {"a\\b", "c\\", "d\\"}},  // other backslashes are ordinary
    };
    for (const auto &c : cases)
        EXPECT_EQ(splitCommandLine(c.text), c.arguments) << c.text;
}

TEST(SplitCommandChain, SplitsAtTheSeparatorAndDropsEmptyParts) {
    EXPECT_EQ(splitCommandChain("a x && b && c"), (Arguments{"a x", "b", "c"}));
    EXPECT_EQ(splitCommandChain(" && a &&  && b && "), (Arguments{"a", "b"}));
    EXPECT_EQ(splitCommandChain("a&&b"), (Arguments{"a&&b"}));
    EXPECT_EQ(splitCommandChain("a&&b &&c", "&&"), (Arguments{"a", "b ", "c"}));
}

}  // namespace
