#include "support/file_status_cache.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/test_directory.h"

namespace {

void setModified(const std::string &file, time_t seconds) {
    const timespec times[2] = {{seconds, 0}, {seconds, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
}

TEST(FileStatusCache, OffEveryQuestionSeesTheFileAsItIsNow) {
    TestDirectory directory;
    const std::string file = directory.write("a.h", "12345");
    setModified(file, 1600000000);
    FileStatusCache cache;
    EXPECT_FALSE(cache.isEnabled());
    FileStatus status = cache.status(file);
    EXPECT_TRUE(status.exists);
    EXPECT_EQ(status.size, 5);
    EXPECT_EQ(status.lastModified, FileTime(1600000000, 0));

    setModified(file, 1600000009);
    EXPECT_EQ(cache.status(file).lastModified, FileTime(1600000009, 0));
    ASSERT_EQ(unlink(file.c_str()), 0);
    status = cache.status(file);
    EXPECT_FALSE(status.exists);
    EXPECT_EQ(status.size, 0);
    EXPECT_FALSE(status.lastModified.isValid());
}

TEST(FileStatusCache, OnEachPathIsReadOnceUntilCleared) {
    TestDirectory directory;
    const std::string file = directory.write("a.h", "x");
    const std::string missing = directory / "b.h";
    setModified(file, 1600000000);
    FileStatusCache cache;
    cache.setEnabled(true);
    EXPECT_EQ(cache.status(file).lastModified, FileTime(1600000000, 0));
    EXPECT_FALSE(cache.status(missing).exists);

    // Changes after the first question go unseen: the path isn't read again.
    setModified(file, 1600000009);
    directory.write("b.h", "now here");
    EXPECT_EQ(cache.status(file).lastModified, FileTime(1600000000, 0));
    EXPECT_FALSE(cache.status(missing).exists);

    // Until the cache forgets, as it does when files may have changed.
    cache.clear();
    EXPECT_EQ(cache.status(file).lastModified, FileTime(1600000009, 0));
    EXPECT_TRUE(cache.status(missing).exists);
    EXPECT_EQ(cache.status(missing).size, 8);

    // Turning it off and on again forgets too.
    setModified(file, 1600000020);
    cache.setEnabled(false);
    cache.setEnabled(true);
    EXPECT_EQ(cache.status(file).lastModified, FileTime(1600000020, 0));
}

TEST(FileStatusCache, ReadFileStatusOfADirectoryAndAnEmptyPath) {
    TestDirectory directory;
    EXPECT_TRUE(readFileStatus(directory.path()).exists);
    EXPECT_FALSE(readFileStatus("").exists);
}

// On, files are found from their open directories: a directory removed and
// made anew is seen as new once the cache is cleared, files are read from
// it, and beyond the bound on open directories paths are looked up whole.
TEST(FileStatusCache, FilesAreFoundFromTheirDirectoriesWhichClearingReopens) {
    TestDirectory directory;
    const std::string file = directory.write("obj/a.d", "a.o: a.c\n");
    FileStatusCache cache;
    cache.setEnabled(true);
    std::string text;
    EXPECT_TRUE(cache.readFile(file, text));
    EXPECT_EQ(text, "a.o: a.c\n");
    EXPECT_TRUE(cache.status(file).exists);

    ASSERT_EQ(unlink(file.c_str()), 0);
    ASSERT_EQ(rmdir((directory / "obj").c_str()), 0);
    directory.write("obj/a.d", "again\n");
    directory.write("obj/b.d", "b\n");
    cache.clear();
    EXPECT_TRUE(cache.status(directory / "obj/b.d").exists);
    EXPECT_TRUE(cache.readFile(file, text));
    EXPECT_EQ(text, "again\n");
    EXPECT_FALSE(cache.readFile(directory / "obj/none.d", text));
    EXPECT_FALSE(cache.status(directory / "none/x.d").exists);
    // A relative path is taken from the working directory, as stat() does.
    EXPECT_FALSE(cache.status("no-such-dir/x.d").exists);

    for (int i = 0; i < 300; ++i) {
        const std::string name = "d" + std::to_string(i) + "/f.d";
        directory.write(name, std::to_string(i));
        EXPECT_TRUE(cache.status(directory / name).exists) << name;
        EXPECT_TRUE(cache.readFile(directory / name, text)) << name;
        EXPECT_EQ(text, std::to_string(i));
    }
}

// Lists checked in order answer from the list before at the same position
// when the path is the same, and from the file system otherwise; clearing
// forgets both.
TEST(FileStatusCache, ListsAnswerFromTheSamePlaceOfTheListBefore) {
    TestDirectory directory;
    const std::string a = directory.write("a.h", "a"), b = directory.write("b.h", "bb");
    FileStatusCache cache;
    cache.setEnabled(true);
    EXPECT_EQ(cache.knownInList(0, a), nullptr);
    EXPECT_EQ(cache.statusInList(0, a).size, 1);
    EXPECT_EQ(cache.statusInList(1, b).size, 2);
    ASSERT_NE(cache.knownInList(0, a), nullptr);
    // The other order: each path is found all the same, by its own entry.
    EXPECT_EQ(cache.statusInList(0, b).size, 2);
    EXPECT_EQ(cache.statusInList(1, a).size, 1);
    EXPECT_EQ(cache.knownInList(5, a)->size, 1);

    directory.write("a.h", "changed");
    EXPECT_EQ(cache.statusInList(1, a).size, 1);
    cache.clear();
    EXPECT_EQ(cache.knownInList(1, a), nullptr);
    EXPECT_EQ(cache.statusInList(1, a).size, 7);
}

}  // namespace
