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

bool isDirectory(const std::string &path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

void setModified(const std::string &file, time_t seconds) {
    const timespec times[2] = {{seconds, 0}, {seconds, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
}

TEST(MakeDirectories, MakesEveryMissingLevelButNoneUnderAFile) {
    TestDirectory scratch;
    EXPECT_TRUE(makeDirectories(scratch / "a/b/c/d"));
    EXPECT_TRUE(isDirectory(scratch / "a/b/c/d"));
    EXPECT_TRUE(makeDirectories(scratch / "a/b/c/d/"));
    EXPECT_TRUE(makeDirectories(scratch / "a/x/../y//z"));
    EXPECT_TRUE(isDirectory(scratch / "a/y/z"));
    EXPECT_FALSE(isDirectory(scratch / "a/x"));
    EXPECT_TRUE(makeDirectories("/"));

    const std::string file = scratch.write("plain", "x");
    EXPECT_FALSE(makeDirectories(file + "/sub/deeper"));
    EXPECT_FALSE(makeDirectories(file));
    EXPECT_FALSE(makeDirectories(scratch / "plain/"));
    EXPECT_EQ(TestDirectory::read(file), "x");
    std::string deep = scratch.path();
    for (int i = 0; i < 100000; ++i)
        deep += "/d";
    EXPECT_FALSE(makeDirectories(deep));  // longer than any path the system takes

    const ChangeDirectory into(scratch.path());
    EXPECT_TRUE(makeDirectories("r/s"));
    EXPECT_TRUE(isDirectory(scratch / "r/s"));
}

TEST(RemoveAndReadFile, RemoveOnceReadWholeFiles) {
    TestDirectory scratch;
    const std::string file = scratch.write("gone.o", "x");
    EXPECT_TRUE(removeFile(file));
    EXPECT_FALSE(removeFile(file));
    EXPECT_FALSE(removeFile(scratch.path()));

    std::string text = "left over";
    EXPECT_TRUE(readFile(scratch.write("empty.d"), text));
    EXPECT_EQ(text, "");
    std::string large(100000, 'x');
    large[0] = '\0';  // bytes, not a C string
    EXPECT_TRUE(readFile(scratch.write("large.d", large), text));
    EXPECT_EQ(text, large);
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

TEST(Environment, TemporaryDirectoryIsTheFirstVariableSet) {
    const struct {
        std::optional<std::string> tmp, temp, tmpdir;
        const char *directory;
    } cases[] = {
        {std::nullopt, std::nullopt, std::nullopt, "/tmp"}, {std::nullopt, std::nullopt, "/var/d", "/var/d"},
        {"", "/var/e", "/var/d", "/var/e"},                 {"/var/t", "/var/e", "/var/d", "/var/t"},
    };
    for (const auto &c : cases) {
        const ScopedVariable tmp("TMP", c.tmp), temp("TEMP", c.temp), tmpdir("TMPDIR", c.tmpdir);
        EXPECT_EQ(temporaryDirectory(), c.directory);
    }
    const ScopedVariable guard("QUILLMAKE_TEST_VARIABLE", std::nullopt);
    setEnvironment("QUILLMAKE_TEST_VARIABLE", "one");
    setEnvironment("QUILLMAKE_TEST_VARIABLE", "two words");
    EXPECT_STREQ(getenv("QUILLMAKE_TEST_VARIABLE"), "two words");
}

// "<size> at <seconds>.<nanoseconds>" of a file, "none" of one that doesn't exist.
std::string seen(const FileStatus &status) {
    if (!status.exists)
        return status.size == 0 && !status.lastModified.isValid() ? "none" : "none, but with a size or time";
    return std::to_string(status.size) + " at " + std::to_string(status.lastModified.seconds()) + "." +
           std::to_string(status.lastModified.nanoseconds());
}

TEST(FileStatusCache, OffEveryQuestionReadsTheFileOnEachPathIsReadOnceUntilCleared) {
    TestDirectory directory;
    const std::string file = directory.write("a.h", "12345"), missing = directory / "b.h";
    setModified(file, 1600000000);
    FileStatusCache cache;
    EXPECT_FALSE(cache.isEnabled());
    EXPECT_EQ(seen(cache.status(file)), "5 at 1600000000.0");
    setModified(file, 1600000009);
    EXPECT_EQ(seen(cache.status(file)), "5 at 1600000009.0");
    EXPECT_EQ(seen(cache.status(missing)), "none");
    EXPECT_TRUE(readFileStatus(directory.path()).exists);
    EXPECT_EQ(seen(readFileStatus("")), "none");

    cache.setEnabled(true);
    EXPECT_EQ(seen(cache.status(file)), "5 at 1600000009.0");
    EXPECT_EQ(seen(cache.status(missing)), "none");
    // Changes after the first question go unseen: the path isn't read again.
    setModified(file, 1600000010);
    directory.write("b.h", "now here");
    EXPECT_EQ(seen(cache.status(file)), "5 at 1600000009.0");
    EXPECT_EQ(seen(cache.status(missing)), "none");
    // Until the cache forgets, as it does when files may have changed.
    cache.clear();
    EXPECT_EQ(seen(cache.status(file)), "5 at 1600000010.0");
    EXPECT_EQ(cache.status(missing).size, 8);
    // Turning it off and on again forgets too.
    setModified(file, 1600000020);
    cache.setEnabled(false);
    cache.setEnabled(true);
    EXPECT_EQ(seen(cache.status(file)), "5 at 1600000020.0");
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
        const std::string name = concat("d", std::to_string(i)) + "/f.d";
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
