#include "support/file_utils.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/file_status_cache.h"
#include "support/scoped_variable.h"
#include "support/test_directory.h"
#include "support/text_split.h"

namespace {

void setModified(const std::string &file, time_t seconds) {
    const timespec times[2] = {{seconds, 0}, {seconds, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
}

TEST(MakeDirectories, TheRootIsThereButNothingUnderAFileNorBeyondTheLongestPath) {
    TestDirectory scratch;
    EXPECT_TRUE(makeDirectories("/"));
    const std::string file = scratch.write("plain", "x");
    EXPECT_FALSE(makeDirectories(file + "/sub/deeper"));
    std::string deep = scratch.path();
    for (int i = 0; i < 100000; ++i)
        deep += "/d";
    EXPECT_FALSE(makeDirectories(deep));  // longer than any path the system takes
}

TEST(ReadFile, ReadsWholeFilesOrNothing) {
    TestDirectory scratch;
    std::string text;
    // A file the system sizes as 0 is read to its end all the same.
    EXPECT_TRUE(readFile("/proc/self/status", text));
    EXPECT_EQ(text.compare(0, 5, "Name:"), 0) << text;
    // A missing file or a directory is empty and false.
    for (const std::string &path : {scratch / "none.d", scratch.path()}) {
        text = "left over";
        EXPECT_FALSE(readFile(path, text)) << path;
        EXPECT_EQ(text, "") << path;
    }
}

TEST(Environment, TemporaryDirectoryIsTheFirstVariableSetAndNotEmpty) {
    const ScopedVariable tmp("TMP", std::nullopt), temp("TEMP", ""), tmpdir("TMPDIR", "/var/d");
    EXPECT_EQ(temporaryDirectory(), "/var/d");
}

// "<size> at <seconds>.<nanoseconds>" of a file.
std::string seen(const FileStatus &status) {
    return std::to_string(status.size) + " at " + std::to_string(status.lastModified.seconds()) + "." +
           std::to_string(status.lastModified.nanoseconds());
}

// Off, every question reads the file. On, files are found from their open
// directories, and beyond the bound on open directories paths are looked up
// whole; lists checked in order answer from the list before at the same
// position when the path is the same.
TEST(FileStatusCache, OffReadsEachTimeOnFindsFilesFromTheirDirectoriesAndLists) {
    TestDirectory directory;
    const std::string file = directory.write("a.h", "12345"), b = directory.write("b.h", "bb");
    setModified(file, 1600000000);
    FileStatusCache cache;
    EXPECT_FALSE(cache.isEnabled());
    EXPECT_EQ(seen(cache.status(file)), "5 at 1600000000.0");
    setModified(file, 1600000009);
    EXPECT_EQ(seen(cache.status(file)), "5 at 1600000009.0");

    cache.setEnabled(true);
    // A relative path is taken from the working directory, as stat() does.
    EXPECT_FALSE(cache.status("no-such-dir/x.d").exists);
    std::string text;
    for (int i = 0; i < 300; ++i) {
        const std::string name = concat("d", std::to_string(i)) + "/f.d";
        directory.write(name, std::to_string(i));
        EXPECT_TRUE(cache.readFile(directory / name, text)) << name;
        EXPECT_EQ(text, std::to_string(i));
    }
    EXPECT_EQ(cache.statusInList(0, b).size, 2);
    EXPECT_EQ(cache.knownInList(5, b)->size, 2);
}

// While on, what was read is kept for thousands of paths, through the
// table's growth, however the files change; a clear forgets all of it.
TEST(FileStatusCache, KeepsEveryAnswerUntilCleared) {
    TestDirectory directory;
    FileStatusCache cache;
    cache.setEnabled(true);
    const int count = 3000;
    auto path = [&](int i) { return directory / concat("f", std::to_string(i)); };
    for (int i = 0; i < count; i += 7)
        directory.write(concat("f", std::to_string(i)), std::string(std::size_t(i % 50), 'x'));
    for (int i = 0; i < count; ++i)
        EXPECT_EQ(cache.status(path(i)).exists, i % 7 == 0) << i;
    for (int i = 0; i < count; i += 7)
        unlink(path(i).c_str());
    directory.write("f1", "late");
    for (int i = 0; i < count; ++i) {
        const FileStatus *known = cache.find(path(i));
        ASSERT_NE(known, nullptr) << i;
        EXPECT_EQ(known->exists, i % 7 == 0) << i;
        EXPECT_EQ(cache.status(path(i)).size, i % 7 == 0 ? i % 50 : 0) << i;
    }
    EXPECT_EQ(cache.find(path(count)), nullptr);
    cache.clear();
    EXPECT_EQ(cache.find(path(0)), nullptr);
    EXPECT_FALSE(cache.status(path(0)).exists);
    EXPECT_EQ(cache.status(path(1)).size, 4);
}

}  // namespace
