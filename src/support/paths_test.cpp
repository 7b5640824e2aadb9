#include "support/paths.h"

#include <gtest/gtest.h>

#include "support/normalise_path.h"
#include "support/test_directory.h"

namespace {

TEST(NormalisePath, TableAndStability) {
    const struct {
        const char *text, *normalised;
    } cases[] = {
        {"a/b/../c/./d//e/", "a/c/d/e"}, {"/../a", "/../a"},       {"../../a", "../../a"}, {"a/..", ""},
        {"/", "/"},                      {"///", "/"},              {"/a/..", "/"},          {"", ""},
        {".", ""},                       {"./a", "a"},              {"a/./", "a"},           {"a//b", "a/b"},
        {"/a/b/", "/a/b"},               {"//a", "/a"},             {"a/../..", ".."},       {"a/b/../../../c", "../c"},
        {"../a/../b", "../b"},           {"/a/b/../../..", "/.."},  {"/usr/lib/gcc", "/usr/lib/gcc"},
        {"a.b/..c/.d", "a.b/..c/.d"},
    };
    for (const auto &c : cases) {
        std::string text = c.text;
        EXPECT_EQ(normalisePath(text), std::string(c.text) != c.normalised) << "from \"" << c.text << "\"";
        EXPECT_EQ(text, c.normalised) << "from \"" << c.text << "\"";
        // A normalised path stays as it is, and so does one that the quick
        // look calls plain.
        EXPECT_FALSE(normalisePath(text)) << "\"" << c.normalised << "\" changed to \"" << text << "\"";
        EXPECT_TRUE(!isPlainPath(c.text) || text == c.text) << "\"" << c.text << "\"";
    }
    for (const char *text : {"/usr/include/stdio.h", "a/b", "", "/"})
        EXPECT_TRUE(isPlainPath(text)) << "\"" << text << "\"";
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

TEST(RelativePath, FromADirectoryToAPathOrFile) {
    const struct {
        bool file;  // relativeFilePath, else relativePath
        const char *base, *target;
        bool found;
        const char *result;
    } cases[] = {
        {false, "/a/b", "/a/c/d", true, "../c/d"},     {false, "/a", "/a", true, ""},
        {false, "/a", "/b", false, ""},                {false, "/a/b/c", "/a", true, "../.."},
        {false, "/a", "/a/b/c", true, "b/c"},          {false, "/a/./b/", "/a//b/c/../d", true, "d"},
        {false, "/a/B", "/a/b", true, "../b"},         {false, "/", "/a", false, ""},
        {false, "/a", "/", false, ""},                 {false, "/a", ".", true, ""},
        {true, "/a/b", "/a/c/f.c", true, "../c/f.c"},  {true, "/a/b", "/a/b/f.c", true, "f.c"},
        {true, "/a/b", "/a/b/sub/f.c", true, "sub/f.c"}, {true, "/a", "/b/f.c", false, ""},
        {true, "/a", "/f.c", false, ""},
    };
    for (const auto &c : cases) {
        std::string result = "junk";
        EXPECT_EQ((c.file ? relativeFilePath : relativePath)(c.base, c.target, result), c.found)
            << c.base << " -> " << c.target;
        EXPECT_EQ(result, c.result) << c.base << " -> " << c.target;
    }
    // Relative arguments start at the current directory.
    std::string result;
    EXPECT_TRUE(relativePath(currentDirectory(), "x/y", result));
    EXPECT_EQ(result, "x/y");
    EXPECT_TRUE(relativePath("x/y", "x/z", result));
    EXPECT_EQ(result, "../z");

    EXPECT_EQ(relativeOrAbsolute("/a/b", "/a/x/../c/f.c"), "../c/f.c");
    EXPECT_EQ(relativeOrAbsolute("/a", "/b/./f.c"), "/b/f.c");
    EXPECT_EQ(relativeOrAbsolute(currentDirectory(), "sub/f.c"), "sub/f.c");
}

}  // namespace
