#include "support/paths.h"

#include <gtest/gtest.h>

#include "support/normalise_path.h"

namespace {

TEST(NormalisePath, RootStaysAndDeepPathsWork) {
    std::string text = "/a/..";
    EXPECT_TRUE(normalisePath(text));
    EXPECT_EQ(text, "/");
    EXPECT_FALSE(normalisePath(text));  // a normalised path stays as it is
    // Levels a hundred thousand deep are walked without recursion.
    std::string deep;
    for (int i = 0; i < 100000; ++i)
        deep += "d/";
    for (int i = 0; i < 100000; ++i)
        deep += "../";
    deep += "x";
    normalisePath(deep);
    EXPECT_EQ(deep, "x");
}

TEST(NormalisePath, PlainPathSeesASeparatorPairAtEveryPosition) {
    // Long paths are looked at in blocks: a pair at any place, across a
    // block's edge or in the overlapping last block, must still be seen.
    for (std::size_t size = 2; size <= 50; ++size) {
        std::string plain;
        for (std::size_t i = 0; i < size; ++i)
            plain += i % 3 == 2 ? '/' : i % 3 == 1 ? '.' : 'a';
        if (plain.back() == '/')
            plain.back() = 'b';
        EXPECT_TRUE(isPlainPath(plain)) << plain;
        for (std::size_t at = 0; at + 1 < size; ++at)
            for (const char *pair : {"//", "/."}) {
                std::string text = plain;
                text.replace(at, 2, pair);
                EXPECT_FALSE(isPlainPath(text)) << text;
            }
    }
    EXPECT_FALSE(isPlainPath(".a/b"));
    EXPECT_FALSE(isPlainPath("a/b/"));
    EXPECT_TRUE(isPlainPath("/"));
}

TEST(RelativePath, FromADirectoryToAPathOrFile) {
    const struct {
        bool file;  // relativeFilePath, else relativePath
        const char *base, *target;
        bool found;
        const char *result;
    } cases[] = {
        {false, "/a/b/c", "/a", true, "../.."}, {false, "/", "/a", false, ""},
        {false, "/a", ".", true, ""},           {true, "/a", "/f.c", false, ""},
    };
    for (const auto &c : cases) {
        std::string result = "junk";
        EXPECT_EQ((c.file ? relativeFilePath : relativePath)(c.base, c.target, result), c.found)
            << c.base << " -> " << c.target;
        EXPECT_EQ(result, c.result) << c.base << " -> " << c.target;
    }
    EXPECT_EQ(relativeOrAbsolute("/a", "/b/./f.c"), "/b/f.c");
}

}  // namespace
