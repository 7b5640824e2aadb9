#include "support/file_path.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "support/file_info.h"
#include "support/file_path_set.h"
#include "support/test_directory.h"

namespace {

TEST(FilePath, CopiesShareNormalisationAndChangesDetach) {
    FilePath original("x/./y//");
    FilePath copy = original;
    const std::string &seen = copy.text();
    EXPECT_EQ(seen, "x/y");
    // The original's body was normalised in place, not a second time.
    EXPECT_EQ(&original.text(), &seen);

    copy.assign("z/../w");
    EXPECT_EQ(copy.text(), "w");
    EXPECT_EQ(original.text(), "x/y");
    EXPECT_NE(&original.text(), &copy.text());

    FilePath third = original;
    third += "/end";
    EXPECT_EQ(third.text(), "x/y/end");
    EXPECT_EQ(original.text(), "x/y");

    FilePath assigned;
    assigned = third;
    assigned = assigned;
    EXPECT_EQ(assigned.text(), "x/y/end");
    EXPECT_TRUE(FilePath().isEmpty());
    EXPECT_EQ(FilePath(static_cast<const char *>(nullptr)).text(), "");
}

TEST(FilePath, MarkedNormalisedTextIsKept) {
    EXPECT_EQ(FilePath::normalised("a/./b").text(), "a/./b");
    FilePath path = FilePath::normalised("a/./b");
    path.assign("a/./b");
    EXPECT_EQ(path.text(), "a/b");
}

TEST(FilePath, ComparesNormalisedText) {
    EXPECT_EQ(FilePath("a/./b"), FilePath("a//b/"));
    EXPECT_EQ(FilePath("a/b"), "a/c/../b");
    EXPECT_NE(FilePath("a/B"), FilePath("a/b"));
    EXPECT_LT(FilePath("a/b"), FilePath("a/c"));
    EXPECT_LT(FilePath("A"), FilePath("a"));
    EXPECT_FALSE(FilePath("x/./y") < FilePath("x/y"));
    const FilePath same("p");
    EXPECT_FALSE(same < same);
    EXPECT_EQ(same, same);
}

TEST(FilePath, AppendMakesANewPathOrChangesInPlace) {
    const FilePath directory("/a/b");
    const FilePath file = directory.append("/c.o");
    EXPECT_EQ(file.text(), "/a/b/c.o");
    EXPECT_EQ(directory.text(), "/a/b");
    EXPECT_EQ(directory.append("/../d").text(), "/a/d");
    EXPECT_EQ(FilePath("/a/b").append(".bak").text(), "/a/b.bak");

    FilePath growing("/a");
    growing += "/b";
    growing += "/./c";
    EXPECT_EQ(growing.text(), "/a/b/c");
}

struct NameCase {
    const char *path;
    const char *fileName, *baseName, *completeBaseName, *suffix, *completeSuffix, *directory;
};

TEST(FilePath, NameParts) {
    const NameCase cases[] = {
        {"/x/archive.tar.gz", "archive.tar.gz", "archive", "archive.tar", "gz", "tar.gz", "/x"},
        {"name", "name", "name", "name", "", "", "."},
        {"/top.c", "top.c", "top", "top", "c", "c", "/"},
        {"d/.bashrc", ".bashrc", "", "", "bashrc", "bashrc", "d"},
        {"d/e/file.", "file.", "file", "file", "", "", "d/e"},
        {"/", "", "", "", "", "", "/"},
        {"a/./b.c/", "b.c", "b", "b", "c", "c", "a"},
    };
    for (const NameCase &c : cases) {
        const FilePath path(c.path);
        SCOPED_TRACE(c.path);
        EXPECT_EQ(path.fileName(), c.fileName);
        EXPECT_EQ(path.baseName(), c.baseName);
        EXPECT_EQ(path.baseName(true), c.completeBaseName);
        EXPECT_EQ(path.suffix(), c.suffix);
        EXPECT_EQ(path.suffix(true), c.completeSuffix);
        EXPECT_EQ(path.path(), c.directory);
    }
}

TEST(FilePath, AbsoluteFormsUseTheCurrentDirectory) {
    const std::string current = currentDirectory();
    const FilePath relative("sub/../file.c");
    EXPECT_TRUE(relative.isRelative());
    EXPECT_EQ(relative.filePath(), "file.c");
    EXPECT_EQ(relative.absoluteFilePath(), current + "/file.c");
    EXPECT_EQ(relative.path(true), current);
    EXPECT_EQ(relative.dir(true), FilePath(current));
    EXPECT_EQ(relative.dir().text(), "");  // "." normalises to nothing

    const FilePath absolute("/p/q/r.c");
    EXPECT_FALSE(absolute.isRelative());
    EXPECT_EQ(absolute.absoluteFilePath(), "/p/q/r.c");
    EXPECT_EQ(absolute.dir().text(), "/p/q");

    TestDirectory scratch;
    makeDirectories(scratch / "a/b");
    const ChangeDirectory into(scratch / "a/b");
    EXPECT_EQ(FilePath("../up").absoluteFilePath(), scratch / "a/up");
    EXPECT_EQ(FilePath("").absoluteFilePath(), scratch / "a/b");
}

TEST(FilePath, Components) {
    using Parts = std::vector<std::string>;
    EXPECT_EQ(FilePath("/a//b/c/").components(), (Parts{"a", "b", "c"}));
    EXPECT_EQ(FilePath("../a").components(), (Parts{"..", "a"}));
    EXPECT_EQ(FilePath("").components(), Parts{});
    EXPECT_EQ(FilePath("/").components(), Parts{});

    Parts expected = FilePath(currentDirectory()).components();
    expected.push_back("x");
    expected.push_back("y");
    EXPECT_EQ(FilePath("x/y").components(true), expected);
}

TEST(FilePath, EndsWithComparesTexts) {
    EXPECT_TRUE(FilePath("/a/b/c.c").endsWith(FilePath("b/./c.c")));
    EXPECT_TRUE(FilePath("/a/bc.c").endsWith(FilePath("c.c")));
    EXPECT_FALSE(FilePath("/a/b/c.c").endsWith(FilePath("/b/c.h")));
    EXPECT_TRUE(FilePath("/a").endsWith(FilePath("")));
}

TEST(FilePath, FileQuestionsReadAnewButSizeIsKept) {
    TestDirectory scratch;
    const FilePath path(scratch / "f.txt");
    const FilePath copy = path;
    EXPECT_FALSE(path.exists());
    EXPECT_FALSE(path.lastModified().isValid());

    scratch.write("f.txt", "abc");
    EXPECT_TRUE(copy.exists());  // re-read, through the shared information
    EXPECT_TRUE(path.isReadable());
    EXPECT_EQ(path.size(), 3);
    EXPECT_FALSE(path.isDir());
    EXPECT_TRUE(path.lastModified().isValid());

    scratch.write("f.txt", "abcdef");
    EXPECT_EQ(path.size(), 3);  // kept until refreshed
    path.refresh();
    EXPECT_EQ(copy.size(), 6);

    // New text, new information.
    FilePath other = path;
    scratch.write("dir/g.txt", "g");
    other.assign(scratch / "dir");
    EXPECT_TRUE(other.isDir());
    EXPECT_EQ(path.size(), 6);
    other += "/g.txt";
    EXPECT_EQ(other.size(), 1);
}

TEST(FilePathSet, KeepsPathsSortedAndUnique) {
    FilePathSet set;
    EXPECT_TRUE(set.insert("/b/x.c"));
    EXPECT_TRUE(set.insert("/a/z.c"));
    EXPECT_TRUE(set.insert("/c"));
    EXPECT_TRUE(set.insert("/a/y.c"));
    EXPECT_FALSE(set.insert("/a/./y.c"));
    ASSERT_EQ(set.size(), 4u);

    std::vector<std::string> texts;
    for (const FilePath &path : set)
        texts.push_back(path.text());
    EXPECT_EQ(texts, (std::vector<std::string>{"/a/y.c", "/a/z.c", "/b/x.c", "/c"}));

    EXPECT_TRUE(set.contains("/b/../b/x.c"));
    EXPECT_TRUE(set.contains("/c"));
    EXPECT_FALSE(set.contains("/b"));
    EXPECT_FALSE(set.contains("/d"));
    EXPECT_FALSE(set.contains("/"));
}

}  // namespace
