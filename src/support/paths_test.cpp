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
