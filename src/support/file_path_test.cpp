#include "support/file_path.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/file_info.h"
#include "support/file_path_set.h"
#include "support/scoped_variable.h"
#include "support/test_directory.h"

namespace {

void setModified(const std::string &file, time_t seconds, long nanoseconds) {
    const timespec times[2] = {{seconds, nanoseconds}, {seconds, nanoseconds}};
    ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
}

// What the information says of the file: "e" exists, "f" file, "d" directory,
// "r" readable, "w" writable, or "-" for each that it isn't.
std::string flags(const FileInfo &info) {
    return std::string(info.exists() ? "e" : "-") + (info.isFile() ? "f" : "-") + (info.isDir() ? "d" : "-") +
           (info.isReadable() ? "r" : "-") + (info.isWritable() ? "w" : "-");
}

TEST(FileTime, OrdersAndComparesWholeSecondsAndShowsLocalTime) {
    const FileTime invalid, early(1700000000, 900000000), sameSecond(1700000000, 100), nextSecond(1700000001, 0);
    EXPECT_FALSE(invalid.isValid());
    EXPECT_LT(invalid, sameSecond);
    EXPECT_LT(sameSecond, early);
    EXPECT_LT(early, nextSecond);
    EXPECT_EQ(early, FileTime(1700000000, 900000000));
    EXPECT_FALSE(early.laterInSecondsThan(sameSecond));
    EXPECT_FALSE(sameSecond.laterInSecondsThan(early));
    EXPECT_TRUE(nextSecond.laterInSecondsThan(early));
    {
        const ScopedVariable zone("TZ", "UTC");
        tzset();
        EXPECT_EQ(FileTime(1700000000, 999999999).toText() + "|" + FileTime().toText(), "14.11.2023 22:13:20|");
    }
    tzset();
}

TEST(FileInfo, WhatTheFileIsStaysUntilRefresh) {
    TestDirectory scratch;
    const FileInfo missing(scratch / "missing.c");
    EXPECT_EQ(flags(missing), "-----");
    EXPECT_EQ(missing.size(), 0);
    EXPECT_FALSE(missing.lastModified().isValid() || missing.created().isValid() || missing.lastRead().isValid());
    EXPECT_EQ(flags(FileInfo(scratch.path())), "e-drw");

    const std::string file = scratch.write("t.c", "12345");
    setModified(file, 1600000000, 123456789);
    FileInfo info(file);
    EXPECT_EQ(flags(info), "ef-rw");
    EXPECT_EQ(info.size(), 5);
    EXPECT_EQ(info.lastModified(), FileTime(1600000000, 123456789));
    EXPECT_EQ(info.lastRead(), FileTime(1600000000, 123456789));
    EXPECT_TRUE(info.created().isValid());
    setModified(file, 1600000005, 0);
    EXPECT_EQ(info.lastModified().seconds(), 1600000000);
    info.refresh();
    EXPECT_EQ(info.lastModified(), FileTime(1600000005, 0));
    ASSERT_EQ(unlink(file.c_str()), 0);
    EXPECT_TRUE(info.exists());
    info.refresh();
    EXPECT_FALSE(info.exists());
}

TEST(FilePath, CopiesShareNormalisationAndChangesDetach) {
    FilePath original("x/./y//");
    FilePath copy = original;
    const std::string &seen = copy.text();
    EXPECT_EQ(seen, "x/y");
    EXPECT_EQ(&original.text(), &seen);  // normalised in place, once for both
    copy.assign("z/../w");
    EXPECT_EQ(copy.text(), "w");
    EXPECT_NE(&original.text(), &copy.text());
    FilePath third = original;
    third += "/end";
    EXPECT_EQ(original.text() + " " + third.text(), "x/y x/y/end");
    FilePath assigned;
    EXPECT_TRUE(assigned.isEmpty());
    assigned = third;
    assigned = assigned;
    EXPECT_EQ(assigned.text(), "x/y/end");
    EXPECT_EQ(FilePath(static_cast<const char *>(nullptr)).text(), "");
    // Text marked as normalised is kept as it is, until assigned anew.
    FilePath marked = FilePath::normalised("a/./b");
    EXPECT_EQ(marked.text(), "a/./b");
    marked.assign("a/./b");
    EXPECT_EQ(marked.text(), "a/b");
}

TEST(FilePath, ComparesAndAppendsNormalisedText) {
    const FilePath same("p"), directory("/a/b");
    EXPECT_EQ(FilePath("a/./b"), FilePath("a//b/"));
    EXPECT_EQ(FilePath("a/b"), "a/c/../b");
    EXPECT_NE(FilePath("a/B"), FilePath("a/b"));
    EXPECT_LT(FilePath("A/b"), FilePath("a/a"));
    EXPECT_FALSE(FilePath("x/./y") < FilePath("x/y"));
    EXPECT_FALSE(same < same);
    EXPECT_EQ(same, same);
    EXPECT_TRUE(FilePath("/a/b/c.c").endsWith(FilePath("b/./c.c")));
    EXPECT_FALSE(FilePath("/a/b/c.c").endsWith(FilePath("/b/c.h")));
    EXPECT_EQ(directory.append("/c.o").text() + " " + directory.append("/../d").text() + " " +
                  directory.append(".bak").text() + " " + directory.text(),
              "/a/b/c.o /a/d /a/b.bak /a/b");
    FilePath growing("/a");
    growing += "/b";
    growing += "/./c";
    EXPECT_EQ(growing.text(), "/a/b/c");
}

TEST(FilePath, NamePartsAndAbsoluteForms) {
    // File name, base name, complete base name, suffix, complete suffix and
    // directory.
    const struct {
        std::string path, parts;
    } cases[] = {
        {"/x/archive.tar.gz", "archive.tar.gz|archive|archive.tar|gz|tar.gz|/x"}, {"name", "name|name|name|||."},
        {"/top.c", "top.c|top|top|c|c|/"}, {"d/.bashrc", ".bashrc|||bashrc|bashrc|d"},
        {"d/e/file.", "file.|file|file|||d/e"},
        {"/", "|||||/"}, {"a/./b.c/", "b.c|b|b|c|c|a"},
    };
    for (const auto &c : cases) {
        const FilePath path(c.path);
        EXPECT_EQ(path.fileName() + "|" + path.baseName() + "|" + path.baseName(true) + "|" + path.suffix() + "|" +
                      path.suffix(true) + "|" + path.path(),
                  c.parts)
            << c.path;
    }
    EXPECT_EQ(directoryOf("a/b/c"), "a/b");

    const std::string current = currentDirectory();
    const FilePath relative("sub/../file.c"), absolute("/p/q/r.c");
    EXPECT_TRUE(relative.isRelative());
    EXPECT_FALSE(absolute.isRelative());
    EXPECT_EQ(relative.filePath(), "file.c");
    EXPECT_EQ(relative.absoluteFilePath(), current + "/file.c");
    EXPECT_EQ(absolute.absoluteFilePath(), "/p/q/r.c");
    EXPECT_EQ(relative.dir(true), FilePath(current));
    EXPECT_EQ(relative.dir().text() + "|" + absolute.dir().text(), "|/p/q");  // "." normalises to nothing
    EXPECT_EQ(FileInfo("/x/../y/z").filePath(), "/x/../y/z");
    EXPECT_EQ(FileInfo("x").absolutePath(), current);
    using Parts = std::vector<std::string>;
    EXPECT_EQ(FilePath("/a//b/c/").components(), (Parts{"a", "b", "c"}));
    EXPECT_EQ(FilePath("../a").components(), (Parts{"..", "a"}));
    EXPECT_EQ(FilePath("/").components(), Parts{});
    Parts expected = FilePath(current).components();
    expected.insert(expected.end(), {"x", "y"});
    EXPECT_EQ(FilePath("x/y").components(true), expected);
    TestDirectory scratch;
    makeDirectories(scratch / "a/b");
    const ChangeDirectory into(scratch / "a/b");
    EXPECT_EQ(FilePath("../up").absoluteFilePath(), scratch / "a/up");
    EXPECT_EQ(FilePath("").absoluteFilePath(), scratch / "a/b");
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
    other += "/g.txt";
    EXPECT_EQ(other.size(), 1);
    EXPECT_EQ(path.size(), 6);
}

TEST(FilePathSet, KeepsPathsSortedAndUnique) {
    FilePathSet set;
    for (const char *path : {"/b/x.c", "/a/z.c", "/c", "/a/y.c"})
        EXPECT_TRUE(set.insert(path)) << path;
    EXPECT_FALSE(set.insert("/a/./y.c"));
    std::string texts;
    for (const FilePath &path : set)
        texts += path.text() + " ";
    EXPECT_EQ(texts, "/a/y.c /a/z.c /b/x.c /c ");
    EXPECT_EQ(set.size(), 4u);
    EXPECT_TRUE(set.contains("/b/../b/x.c"));
    EXPECT_TRUE(set.contains("/c"));
    EXPECT_FALSE(set.contains("/b"));
    EXPECT_FALSE(set.contains("/d"));
}

// Readable and writable are what access() says for the user running, kept
// until a refresh. The superuser may read and write anything, so as root the
// checks run in a child that has become the unprivileged user "nobody".
TEST(FileInfo, PermissionsComeFromAccess) {
    TestDirectory scratch;
    const std::string file = scratch.write("ro.txt", "x");
    ASSERT_EQ(chmod(file.c_str(), 0444), 0);
    const auto look = [&file] {
        FileInfo info(file);
        std::string seen = flags(info);
        chmod(file.c_str(), 0200);
        seen += " " + flags(info);
        info.refresh();
        return seen + " " + flags(info);
    };
    std::string seen;
    if (geteuid() != 0) {
        seen = look();
    } else {
        const uid_t nobody = 65534;
        ASSERT_EQ(chmod(scratch.path().c_str(), 0755), 0);
        ASSERT_EQ(chown(file.c_str(), nobody, nobody), 0);
        int pipeEnds[2];
        ASSERT_EQ(pipe(pipeEnds), 0);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            close(pipeEnds[0]);
            if (setgid(nobody) == 0 && setuid(nobody) == 0) {
                const std::string text = look();
                if (write(pipeEnds[1], text.data(), text.size()) < 0)
                    _exit(2);
            }
            _exit(0);
        }
        close(pipeEnds[1]);
        char buffer[64];
        for (ssize_t n; (n = read(pipeEnds[0], buffer, sizeof buffer)) > 0;)
            seen.append(buffer, static_cast<std::size_t>(n));
        close(pipeEnds[0]);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    EXPECT_EQ(seen, "ef-r- ef-r- ef--w");
}

}  // namespace
