#include "support/paths.h"

#include <gtest/gtest.h>

#include "support/test_directory.h"

namespace {

struct RelativeCase {
    const char *base;
    const char *target;
    bool found;
    const char *result;
};

TEST(RelativePath, Table) {
    const RelativeCase cases[] = {
        {"/a/b", "/a/c/d", true, "../c/d"},
        {"/a", "/a", true, ""},
        {"/a", "/b", false, ""},
        {"/a/b", "/a", true, ".."},
        {"/a/b/c", "/a", true, "../.."},
        {"/a", "/a/b/c", true, "b/c"},
        {"/a/./b/", "/a//b/c/../d", true, "d"},
        {"/a/B", "/a/b", true, "../b"},
        {"/", "/a", false, ""},
        {"/a", "/", false, ""},
        {"/a", ".", true, ""},
    };
    for (const RelativeCase &c : cases) {
        std::string result = "junk";
        EXPECT_EQ(relativePath(c.base, c.target, result), c.found) << c.base << " -> " << c.target;
        EXPECT_EQ(result, c.result) << c.base << " -> " << c.target;
    }
}

TEST(RelativePath, RelativeArgumentsStartAtTheCurrentDirectory) {
    std::string result;
    ASSERT_TRUE(relativePath(currentDirectory(), "x/y", result));
    EXPECT_EQ(result, "x/y");
    ASSERT_TRUE(relativePath("x/y", "x/z", result));
    EXPECT_EQ(result, "../z");
}

TEST(RelativeFilePath, Table) {
    const RelativeCase cases[] = {
        {"/a/b", "/a/c/f.c", true, "../c/f.c"},
        {"/a/b", "/a/b/f.c", true, "f.c"},
        {"/a/b", "/a/b/sub/f.c", true, "sub/f.c"},
        {"/a", "/b/f.c", false, ""},
        {"/a", "/f.c", false, ""},
    };
    for (const RelativeCase &c : cases) {
        std::string result = "junk";
        EXPECT_EQ(relativeFilePath(c.base, c.target, result), c.found) << c.base << " -> " << c.target;
        EXPECT_EQ(result, c.result) << c.base << " -> " << c.target;
    }
}

TEST(RelativeOrAbsolute, FallsBackToTheAbsolutePath) {
    EXPECT_EQ(relativeOrAbsolute("/a/b", "/a/x/../c/f.c"), "../c/f.c");
    EXPECT_EQ(relativeOrAbsolute("/a", "/b/./f.c"), "/b/f.c");
    EXPECT_EQ(relativeOrAbsolute("/a", "/f.c"), "/f.c");
    EXPECT_EQ(relativeOrAbsolute(currentDirectory(), "sub/f.c"), "sub/f.c");
}

}  // namespace
