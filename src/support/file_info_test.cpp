#include "support/file_info.h"

#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/test_directory.h"

namespace {

void setModified(const std::string &file, time_t seconds, long nanoseconds) {
    const timespec times[2] = {{seconds, nanoseconds}, {seconds, nanoseconds}};
    ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
}

TEST(FileTime, OrdersAndComparesWholeSeconds) {
    const FileTime invalid;
    const FileTime early(1700000000, 900000000);
    const FileTime sameSecond(1700000000, 100);
    const FileTime nextSecond(1700000001, 0);
    EXPECT_FALSE(invalid.isValid());
    EXPECT_TRUE(early.isValid());
    EXPECT_LT(invalid, sameSecond);
    EXPECT_LT(sameSecond, early);
    EXPECT_LT(early, nextSecond);
    EXPECT_EQ(early, FileTime(1700000000, 900000000));

    EXPECT_FALSE(early.laterInSecondsThan(sameSecond));
    EXPECT_FALSE(sameSecond.laterInSecondsThan(early));
    EXPECT_TRUE(nextSecond.laterInSecondsThan(early));
    EXPECT_FALSE(early.laterInSecondsThan(nextSecond));
    EXPECT_EQ(nextSecond.seconds(), 1700000001);
}

TEST(FileTime, TextInLocalTime) {
    const char *zone = getenv("TZ");
    const std::string saved = zone ? zone : "";
    setenv("TZ", "UTC", 1);
    tzset();
    EXPECT_EQ(FileTime(1700000000, 999999999).toText(), "14.11.2023 22:13:20");
    EXPECT_EQ(FileTime().toText(), "");
    if (zone)
        setenv("TZ", saved.c_str(), 1);
    else
        unsetenv("TZ");
    tzset();
}

TEST(FileInfo, MissingFile) {
    TestDirectory scratch;
    const FileInfo info(scratch / "missing.c");
    EXPECT_FALSE(info.exists());
    EXPECT_FALSE(info.isFile());
    EXPECT_FALSE(info.isDir());
    EXPECT_FALSE(info.isReadable());
    EXPECT_FALSE(info.isWritable());
    EXPECT_EQ(info.size(), 0);
    EXPECT_FALSE(info.lastModified().isValid());
    EXPECT_FALSE(info.created().isValid());
    EXPECT_FALSE(info.lastRead().isValid());
}

TEST(FileInfo, FilesAndDirectories) {
    TestDirectory scratch;
    const std::string file = scratch.write("dir/data.bin", "12345");
    const FileInfo info(file);
    EXPECT_TRUE(info.exists());
    EXPECT_TRUE(info.isFile());
    EXPECT_FALSE(info.isDir());
    EXPECT_EQ(info.size(), 5);
    EXPECT_TRUE(info.isReadable());
    EXPECT_TRUE(info.isWritable());

    const FileInfo directory(scratch / "dir");
    EXPECT_TRUE(directory.exists());
    EXPECT_TRUE(directory.isDir());
    EXPECT_FALSE(directory.isFile());
}

TEST(FileInfo, TimesKeepNanosecondsAndStayUntilRefresh) {
    TestDirectory scratch;
    const std::string file = scratch.write("t.c", "x");
    setModified(file, 1600000000, 123456789);
    FileInfo info(file);
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
    EXPECT_FALSE(info.lastModified().isValid());
}

TEST(FileInfo, PermissionsComeFromAccess) {
    if (geteuid() == 0)
        GTEST_SKIP() << "the superuser may write anything";
    TestDirectory scratch;
    const std::string file = scratch.write("ro.txt", "x");
    ASSERT_EQ(chmod(file.c_str(), 0444), 0);
    FileInfo info(file);
    EXPECT_TRUE(info.isReadable());
    EXPECT_FALSE(info.isWritable());
    ASSERT_EQ(chmod(file.c_str(), 0200), 0);
    EXPECT_TRUE(info.isReadable());  // kept until refresh
    info.refresh();
    EXPECT_FALSE(info.isReadable());
    EXPECT_TRUE(info.isWritable());
}

TEST(FileInfo, NamesOfRelativePaths) {
    const FileInfo bare("main.cpp");
    EXPECT_TRUE(bare.isRelative());
    EXPECT_EQ(bare.path(), ".");
    EXPECT_EQ(bare.absoluteFilePath(), currentDirectory() + "/main.cpp");
    EXPECT_EQ(bare.absolutePath(), currentDirectory());
    EXPECT_EQ(FileInfo("").absoluteFilePath(), currentDirectory());
    EXPECT_EQ(FileInfo("/x/../y/z").absoluteFilePath(), "/y/z");
    EXPECT_EQ(FileInfo("/x/../y/z").filePath(), "/x/../y/z");
    EXPECT_EQ(directoryOf("/a"), "/");
    EXPECT_EQ(directoryOf("a/b/c"), "a/b");
}

}  // namespace
