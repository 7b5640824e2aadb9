#include "environment/settings.h"

#include "support/test_directory.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sys/wait.h>

namespace {

using Values = std::map<std::string, std::string>;
const std::string head = "<!DOCTYPE Veldane_Settings_File>\n<settings>\n";

Values values(const Settings &settings) {
    Values live;
    for (const auto &[name, entry] : settings.entries())
        if (entry.state != Settings::State::Removed)
            live[name] = entry.value;
    return live;
}

void set(Settings &settings, const std::string &name, const std::string &value) {
    std::string previous;
    settings.setValue(name, value, previous);
}

}  // namespace

TEST(Settings, WritesEscapedValuesAndReadsThemAndOtherWritersBack) {
    TestDirectory dir;
    const std::string file = dir / "new/dir/settings.xml";
    const Values written{{"b", "x < y & \"q\" 'z' >"}, {"a", ""}, {"c", "dot\xc2\xb7" "end &middot; &amp;"}};
    {
        Settings settings;
        settings.open(file);
        for (const auto &[name, value] : written)
            set(settings, name, value);
    }
    EXPECT_EQ(TestDirectory::read(file),
              head + "  <setting name=\"a\"></setting>\n"
                     "  <setting name=\"b\">x &lt; y &amp; &quot;q&quot; &apos;z&apos; &gt;</setting>\n"
                     "  <setting name=\"c\">dot&middot;end &amp;middot; &amp;amp;</setting>\n</settings>\n");
    Settings again;
    again.open(file);
    EXPECT_EQ(values(again), written);
    again.open(dir.write("other.xml", "<settings><setting name=\"a\">1&nbsp;2&middot;&foo;&amp;lt;</setting>"
                                      "<setting>no name</setting><setting name=\"\">empty</setting><g>"
                                      "<setting name=\"b\">1</setting></g><setting name=\"b\">2</setting>"
                                      "<setting name=\"c\"><x/>y</setting></settings>"));
    EXPECT_EQ(values(again), (Values{{"a", "1 2\xc2\xb7&foo;&lt;"}, {"b", "2"}, {"c", ""}}));
    for (const char *damaged : {"", "<settings><setting name=\"a\">1</setting>", "<settings></other>", "\x01\xff<"})
        EXPECT_FALSE(Settings::parseText(damaged)) << damaged;
}

TEST(Settings, RemovedEntries) {
    Settings settings;
    std::string previous, removed;
    for (const char *name : {"a", "x/1", "x/2", "y/x/3", "[x]"})
        set(settings, name, "1");
    settings.removeMatching("x/?");
    settings.removeMatching("[[]*");
    settings.setValue("a", "2", previous);
    settings.remove("a", removed);
    EXPECT_EQ(settings.value("a", "default") + previous + removed, "default12");
    settings.setValue("a", "3", previous);  // a removed name is new again
    EXPECT_EQ(previous, "");
    EXPECT_EQ(values(settings), (Values{{"a", "3"}, {"y/x/3", "1"}}));
}

TEST(Settings, DamagedFilesAndLinksAreReplacedNeverWrittenThrough) {
    TestDirectory dir;
    const std::string file = dir.write("s.xml", head + "  <setting name=\"a\">1</setting>\n</settings>\n");
    const std::string first = TestDirectory::read(file);
    Settings settings;
    settings.open(file);
    dir.write("s.xml", "<settings><setting name=\"a\">cut");
    EXPECT_FALSE(settings.reload());
    EXPECT_EQ(values(settings), (Values{{"a", "1"}}));
    dir.write("outside", "mine");
    for (const char *suffix : {"", ".new", ".lck"}) {
        unlink((file + suffix).c_str());
        ASSERT_EQ(symlink((dir / "outside").c_str(), (file + suffix).c_str()), 0);
        ASSERT_TRUE(settings.save());
        EXPECT_TRUE(std::filesystem::is_regular_file(std::filesystem::symlink_status(file))) << suffix;
        EXPECT_EQ(TestDirectory::read(dir / "outside") + TestDirectory::read(file), "mine" + first) << suffix;
    }
    settings.reset();
    EXPECT_TRUE(values(settings).empty() && access(file.c_str(), F_OK) != 0);
    EXPECT_EQ(TestDirectory::read(file + ".bak"), first);
}

TEST(Settings, SyncPicksUpAndMergesOtherWriters) {
    TestDirectory dir;
    Settings mine, theirs;
    mine.open(dir / "s.xml");
    set(mine, "a", "mine");
    set(mine, "gone", "x");
    mine.save();
    theirs.open(dir / "s.xml");
    set(theirs, "b", "theirs");
    theirs.save();
    std::string written = TestDirectory::read(dir / "s.xml"), previous;
    mine.remove("gone", previous);
    set(mine, "a", "again");
    EXPECT_TRUE(mine.sync());
    EXPECT_EQ(TestDirectory::read(dir / "s.xml"), head + "  <setting name=\"a\">again</setting>\n"
                                                         "  <setting name=\"b\">theirs</setting>\n</settings>\n");
    // Without local changes (the same value is none) the file is read, not written.
    set(theirs, "b", "theirs");
    EXPECT_FALSE(theirs.modified() || theirs.sync());
    EXPECT_EQ(values(theirs), (Values{{"a", "again"}, {"b", "theirs"}}));
    EXPECT_EQ(TestDirectory::read(dir / "s.xml.bak"), written);
}

// Eight processes save their own values again and again, each from a table
// read just before, while this one reads the file without the lock: nothing
// is lost, and once the file is there it is always whole.
TEST(Settings, EightWritersAtOnceLoseNothing) {
    TestDirectory dir;
    const std::string file = dir / "s.xml";
    const int writers = 8, rounds = 15;
    Values expected;
    for (int w = 0; w < writers; ++w) {
        for (int r = 0; r < rounds; ++r)
            expected[std::to_string(w) + "/" + std::to_string(r)] = std::to_string(r);
        if (fork() != 0)
            continue;
        bool ok = true;
        for (int r = 0; r < rounds; ++r) {
            Settings settings;
            settings.open(file);
            set(settings, std::to_string(w) + "/" + std::to_string(r), std::to_string(r));
            usleep(500);
            ok = settings.save() && ok;
        }
        _exit(ok ? 0 : 1);
    }
    int broken = 0, failed = 0, status = 0;
    bool seen = false;
    for (int ended = 0; ended < writers;) {
        std::string text;
        const bool read = readFile(file, text);
        seen = seen || read;
        broken += read ? !Settings::parseText(text) || !text.ends_with("</settings>\n") : seen;
        if (const pid_t pid = waitpid(-1, &status, WNOHANG); pid != 0 && ++ended)
            failed += pid < 0 || !WIFEXITED(status) || WEXITSTATUS(status) != 0;
    }
    EXPECT_EQ(broken + failed, 0);
    Settings settings;
    settings.open(file);
    EXPECT_EQ(values(settings), expected);
    EXPECT_TRUE(access((file + ".lck").c_str(), F_OK) != 0 && access((file + ".new").c_str(), F_OK) != 0);
}
