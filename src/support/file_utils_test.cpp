#include "support/file_utils.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/test_directory.h"

namespace {

bool isDirectory(const std::string &path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

bool exists(const std::string &path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0;
}

TEST(MakeDirectories, MakesEveryMissingLevel) {
    TestDirectory scratch;
    EXPECT_TRUE(makeDirectories(scratch / "a/b/c/d"));
    EXPECT_TRUE(isDirectory(scratch / "a/b/c/d"));
    EXPECT_TRUE(makeDirectories(scratch / "a/b/c/d"));
    EXPECT_TRUE(makeDirectories(scratch / "a/b/c/d/"));
    EXPECT_TRUE(makeDirectories(scratch / "a/x/../y//z"));
    EXPECT_TRUE(isDirectory(scratch / "a/y/z"));
    EXPECT_FALSE(exists(scratch / "a/x"));
    EXPECT_TRUE(makeDirectories("/"));
    EXPECT_TRUE(makeDirectories(scratch.path()));
}

TEST(MakeDirectories, RelativeToTheCurrentDirectory) {
    TestDirectory scratch;
    const ChangeDirectory into(scratch.path());
    EXPECT_TRUE(makeDirectories("r/s"));
    EXPECT_TRUE(isDirectory(scratch / "r/s"));
}

TEST(MakeDirectories, FailsUnderAPlainFile) {
    TestDirectory scratch;
    const std::string file = scratch.write("plain", "x");
    EXPECT_FALSE(makeDirectories(file + "/sub/deeper"));
    EXPECT_FALSE(exists(file + "/sub"));
    EXPECT_FALSE(makeDirectories(file));
    EXPECT_FALSE(makeDirectories(scratch / "plain/"));
}

TEST(MakeDirectories, DeepPathFailsCleanly) {
    TestDirectory scratch;
    std::string deep = scratch.path();
    for (int i = 0; i < 100000; ++i)
        deep += "/d";
    EXPECT_FALSE(makeDirectories(deep));  // longer than any path the system takes
}

TEST(RemoveFile, RemovesOnceOnly) {
    TestDirectory scratch;
    const std::string file = scratch.write("gone.o", "x");
    EXPECT_TRUE(removeFile(file));
    EXPECT_FALSE(exists(file));
    EXPECT_FALSE(removeFile(file));
    makeDirectories(scratch / "dir");
    EXPECT_FALSE(removeFile(scratch / "dir"));
}

TEST(ReadFile, ReadsTheWholeFileWhateverItsSize) {
    TestDirectory scratch;
    std::string text = "left over";
    EXPECT_TRUE(readFile(scratch.write("empty.d"), text));
    EXPECT_EQ(text, "");

    std::string large(100000, 'x');
    large[0] = '\0';  // bytes, not a C string
    large.back() = '\n';
    EXPECT_TRUE(readFile(scratch.write("large.d", large), text));
    EXPECT_EQ(text, large);

    // A file the system sizes as 0 is read to its end all the same.
    EXPECT_TRUE(readFile("/proc/self/status", text));
    EXPECT_EQ(text.compare(0, 5, "Name:"), 0) << text;
}

TEST(ReadFile, AMissingFileOrADirectoryIsEmptyAndFalse) {
    TestDirectory scratch;
    std::string text = "left over";
    EXPECT_FALSE(readFile(scratch / "none.d", text));
    EXPECT_EQ(text, "");
    text = "left over";
    EXPECT_FALSE(readFile(scratch.path(), text));
    EXPECT_EQ(text, "");
}

// Sets or clears an environment variable for the life of the object.
class EnvironmentVariable {
public:
    EnvironmentVariable(const char *name, const char *value) : name_(name) {
        const char *old = getenv(name);
        hadValue_ = old != nullptr;
        if (old)
            old_ = old;
        if (value)
            setenv(name, value, 1);
        else
            unsetenv(name);
    }
    ~EnvironmentVariable() {
        if (hadValue_)
            setenv(name_, old_.c_str(), 1);
        else
            unsetenv(name_);
    }

private:
    const char *name_;
    bool hadValue_;
    std::string old_;
};

TEST(TemporaryDirectory, FirstVariableThatIsSet) {
    {
        EnvironmentVariable tmp("TMP", nullptr), temp("TEMP", nullptr), tmpdir("TMPDIR", nullptr);
        EXPECT_EQ(temporaryDirectory(), "/tmp");
    }
    {
        EnvironmentVariable tmp("TMP", nullptr), temp("TEMP", nullptr), tmpdir("TMPDIR", "/var/d");
        EXPECT_EQ(temporaryDirectory(), "/var/d");
    }
    {
        EnvironmentVariable tmp("TMP", ""), temp("TEMP", "/var/e"), tmpdir("TMPDIR", "/var/d");
        EXPECT_EQ(temporaryDirectory(), "/var/e");
    }
    {
        EnvironmentVariable tmp("TMP", "/var/t"), temp("TEMP", "/var/e"), tmpdir("TMPDIR", "/var/d");
        EXPECT_EQ(temporaryDirectory(), "/var/t");
    }
}

TEST(SetEnvironment, SetsAndOverwrites) {
    EnvironmentVariable guard("QUILLMAKE_TEST_VARIABLE", nullptr);
    setEnvironment("QUILLMAKE_TEST_VARIABLE", "one");
    EXPECT_STREQ(getenv("QUILLMAKE_TEST_VARIABLE"), "one");
    setEnvironment("QUILLMAKE_TEST_VARIABLE", "two words");
    EXPECT_STREQ(getenv("QUILLMAKE_TEST_VARIABLE"), "two words");
}

}  // namespace
