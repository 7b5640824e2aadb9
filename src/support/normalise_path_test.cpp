#include "support/normalise_path.h"

#include <gtest/gtest.h>

namespace {

struct Case {
    const char *text;
    const char *normalised;
};

const Case cases[] = {
    {"a/b/../c/./d//e/", "a/c/d/e"},
    {"/../a", "/../a"},
    {"../../a", "../../a"},
    {"a/..", ""},
    {"/", "/"},
    {"///", "/"},
    {"/a/..", "/"},
    {"", ""},
    {".", ""},
    {"./a", "a"},
    {"a/./", "a"},
    {"a//b", "a/b"},
    {"/a/b/", "/a/b"},
    {"//a", "/a"},
    {"a/../..", ".."},
    {"a/b/../../../c", "../c"},
    {"../a/../b", "../b"},
    {"/a/b/../../..", "/.."},
    {"/usr/lib/gcc", "/usr/lib/gcc"},
    {"a.b/..c/.d", "a.b/..c/.d"},
};

TEST(NormalisePath, Table) {
    for (const Case &c : cases) {
        std::string text = c.text;
        const bool changed = normalisePath(text);
        EXPECT_EQ(text, c.normalised) << "from \"" << c.text << "\"";
        EXPECT_EQ(changed, std::string(c.text) != c.normalised) << "from \"" << c.text << "\"";
    }
}

TEST(NormalisePath, IsStable) {
    for (const Case &c : cases) {
        std::string text = c.normalised;
        EXPECT_FALSE(normalisePath(text)) << "\"" << c.normalised << "\" changed to \"" << text << "\"";
    }
}

TEST(NormalisePath, APlainPathIsOneThatNothingChanges) {
    // Whatever the quick look calls plain, normalising leaves alone.
    for (const Case &c : cases) {
        std::string text = c.text;
        if (isPlainPath(c.text)) {
            EXPECT_FALSE(normalisePath(text)) << "\"" << c.text << "\"";
        }
    }
    EXPECT_TRUE(isPlainPath("/usr/include/stdio.h"));
    EXPECT_TRUE(isPlainPath("a/b"));
    EXPECT_TRUE(isPlainPath(""));
    EXPECT_TRUE(isPlainPath("/"));
    for (const char *text : {"./a", "a/", "a//b", "/a/./b", "/a/../b", "a/..", ".", ".."})
        EXPECT_FALSE(isPlainPath(text)) << "\"" << text << "\"";
}

TEST(NormalisePath, DeepPathsWork) {
    std::string deep;
    for (int i = 0; i < 100000; ++i)
        deep += "d/";
    for (int i = 0; i < 100000; ++i)
        deep += "../";
    deep += "x";
    normalisePath(deep);
    EXPECT_EQ(deep, "x");
}

}  // namespace
