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

TEST(FileTime, OrdersInvalidFirstAndShowsLocalTime) {
    EXPECT_LT(FileTime(), FileTime(1700000000, 100));
    EXPECT_LT(FileTime(1700000000, 100), FileTime(1700000000, 900000000));
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
    EXPECT_EQ(info.lastRead(), FileTime(1600000000, 123456789));
    EXPECT_TRUE(info.created().isValid());
    setModified(file, 1600000005, 0);
    EXPECT_EQ(info.lastModified().seconds(), 1600000000);
    info.refresh();
    EXPECT_EQ(info.lastModified(), FileTime(1600000005, 0));
}

// Readable and writable are what access() says for the user running, kept
// until a refresh. The superuser may read and write anything, so as root the
// checks run in a child that has become the unprivileged user "nobody" and
// tells by its exit status whether it saw what it should.
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
    const std::string expected = "ef-r- ef-r- ef--w";
    if (geteuid() != 0) {
        EXPECT_EQ(look(), expected);
        return;
    }
    const uid_t nobody = 65534;
    ASSERT_EQ(chmod(scratch.path().c_str(), 0755), 0);
    ASSERT_EQ(chown(file.c_str(), nobody, nobody), 0);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0)
        _exit(setgid(nobody) == 0 && setuid(nobody) == 0 && look() == expected ? 0 : 1);
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

TEST(FilePath, CopiesShareNormalisationComparesAndChangesDetach) {
    FilePath original("x/./y//");
    FilePath copy = original;
    copy.assign("z/../w");
    FilePath assigned;
    assigned = copy;
    assigned = assigned;
    EXPECT_EQ(assigned.text(), "w");
    EXPECT_EQ(FilePath(static_cast<const char *>(nullptr)).text(), "");
    // Text marked as normalised is kept as it is, until assigned anew.
    FilePath marked = FilePath::normalised("a/./b");
    EXPECT_EQ(marked.text(), "a/./b");
    marked.assign("a/./b");
    EXPECT_EQ(marked.text(), "a/b");

    EXPECT_LT(FilePath("A/b"), FilePath("a/a"));
    EXPECT_FALSE(original < original);
    EXPECT_EQ(original, original);
    EXPECT_TRUE(FilePath("/a/b/c.c").endsWith(FilePath("b/./c.c")));
}

TEST(FilePath, NamePartsAndAbsoluteForms) {
    // File name, base name, complete base name, suffix, complete suffix and
    // directory of the root.
    const FilePath root("/");
    EXPECT_EQ(root.fileName() + "|" + root.baseName() + "|" + root.baseName(true) + "|" + root.suffix() + "|" +
                  root.suffix(true) + "|" + root.path(),
              "|||||/");

    const FilePath relative("sub/../file.c"), absolute("/p/q/r.c");
    EXPECT_TRUE(relative.isRelative());
    EXPECT_FALSE(absolute.isRelative());
    EXPECT_EQ(relative.filePath(), "file.c");
    EXPECT_EQ(relative.dir().text() + "|" + absolute.dir().text(), "|/p/q");  // "." normalises to nothing
    EXPECT_EQ(FileInfo("/x/../y/z").filePath(), "/x/../y/z");
    TestDirectory scratch;
    const ChangeDirectory into(scratch.path());
    EXPECT_EQ(FilePath("").absoluteFilePath(), scratch.path());
}

TEST(FilePath, FileQuestionsReadAnewButSizeIsKept) {
    TestDirectory scratch;
    const FilePath path(scratch / "f.txt");
    const FilePath copy = path;
    EXPECT_FALSE(path.exists());
    scratch.write("f.txt", "abc");
    EXPECT_TRUE(copy.exists());  // re-read, through the shared information
    EXPECT_TRUE(path.isReadable());
    EXPECT_EQ(path.size(), 3);
    EXPECT_FALSE(path.isDir());
    scratch.write("f.txt", "abcdef");
    EXPECT_EQ(path.size(), 3);  // kept until refreshed
    path.refresh();
    EXPECT_EQ(copy.size(), 6);
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
}

}  // namespace
