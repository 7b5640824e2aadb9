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
        // Escaped quotes group and stay.
        {"-DS=\\\"x y\\\" z", {"-DS=\"x y\"", "z"}},
        {"a\\b c\\ d\\", {"a\\b", "c\\", "d\\"}},  // other backslashes are ordinary
    };
    for (const auto &c : cases)
        EXPECT_EQ(splitCommandLine(c.text), c.arguments) << c.text;
}

TEST(SplitCommandChain, SplitsAtTheSeparatorAndDropsEmptyParts) {
    EXPECT_EQ(splitCommandChain(" && a &&  && b && "), (Arguments{"a", "b"}));
    EXPECT_EQ(splitCommandChain("a&&b &&c", "&&"), (Arguments{"a", "b ", "c"}));
}

}  // namespace
