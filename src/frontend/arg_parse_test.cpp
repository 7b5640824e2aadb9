#include "frontend/arg_parse.h"

#include "frontend/program_log.h"
#include "support/test_directory.h"
#include "support/text_split.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

using QTx::ArgOption;
using QTx::ArgParse;
using Strings = std::vector<std::string>;

namespace {

// A parser with a recording handler and prefix options, as a table with
// joined values would have.
class TestParse : public ArgParse {
public:
    explicit TestParse(ProgramLog *log) : ArgParse(log) {
        addFlagOption("-f", &flag, "-f: a flag");
        addValueOption("-v", &value, "-v 'x': a value");
        addValueOption("-early", &early, "", 0);
        ArgOption prefix;
        prefix.kind = ArgOption::Prefix;
        prefix.stringTarget = &joined;
        addOption("-I", prefix);
        prefix.stringTarget = &joinedLonger;
        addOption("-Iq", prefix);
        addHandlerOption("-h", static_cast<ArgOption::Handler>(&TestParse::record), "");
        ArgOption flagHandler;
        flagHandler.hasHandler = true;
        flagHandler.handler = static_cast<ArgOption::Handler>(&TestParse::record);
        addOption("-g", flagHandler);
    }
    void plainArgument(const std::string &text) override { result += "[" + text + "]"; }
    void record(const std::string &name, const std::optional<std::string> &v) {
        result += name + "=" + (v ? "'" + *v + "'" : "null") + " ";
    }
    // What was set, then plain arguments and handler calls in order.
    std::string state() const {
        std::string text = flag ? "f " : "";
        for (const auto &[name, target] :
             {std::pair{"v", &value}, {"early", &early}, {"I", &joined}, {"Iq", &joinedLonger}})
            text += *target ? std::string(name) + "='" + **target + "' " : "";
        return text + result;
    }

    bool flag = false;
    std::optional<std::string> value, early, joined, joinedLonger;
    std::string result;
};

} // namespace

TEST(ArgParse, ListsAndIndirectFiles) {
    TestDirectory dir;
    const std::string args = dir.write("args", "# -f is a comment\n-v \"Debug Version\" a\r\n #x\n\n-v\nnext\nlast");
    const std::string quote = dir.write("quote", "#c\n-f\n#c\n#c\nx \"abc\ny\n");
    const std::string once = dir.write("once", "-f\n@" + dir / "once\n");
    // Twice per file would be 2^100 files; the count of files stops it.
    const std::string twice = dir.write("twice", "@" + dir / "twice\n@" + dir / "twice\nx\n");
    const std::string leaf = dir.write("leaf", "x\n");
    const std::string top = dir.write("top", "@" + leaf + " @" + leaf + "\n@" + leaf + "\ny\n");
    // A hundred levels open and the next does not.
    std::string levels = "[level100][after100]";
    for (int level = 1; level <= 100; ++level)
        dir.write(concat("f", std::to_string(level)),
                  concat("@", dir / "f") + std::to_string(level + 1) + "\nlevel" + std::to_string(level) + "\n");
    dir.write("f100", "level100\n@" + dir / "f101\nafter100\n");
    dir.write("f101", "level101\n");
    for (int level = 99; level >= 1; --level)
        levels += "[level" + std::to_string(level) + "]";
    std::string manyX;
    for (int file = 0; file < ArgParse::defaultIndirectFileLimit; ++file)
        manyX += "[x]";
    const std::string unrecognised = "qm: error: unrecognised option ";
    const std::string tooMany = "qm: error: too many indirect files\n";

    const struct {
        Strings list;
        int phase;
        std::string state, errors;
        int fileLimit = ArgParse::defaultIndirectFileLimit;
    } cases[] = {
        {{"-f", "-v", "", "", "a", "b"}, 1, "f v='' [a][b]", ""},
        // Handlers get the name and a value or null.
        {{"-h", "x y", "-g", "-h", "-g"}, 1, "-h='x y' -g=null -h='-g' ", ""},
        // A prefix option takes the rest of the argument, the exact key an
        // empty value. The first prefix in key order wins, even over a longer
        // match, but an exact key is looked up first.
        {{"-Iinclude"}, 1, "I='include' ", ""}, {{"-I"}, 1, "I='' ", ""},
        {{"-Iqx"}, 1, "I='qx' ", ""}, {{"-Iq"}, 1, "Iq='' ", ""},
        // Options of the other phase are stepped over with their values.
        {{"-early", "dir", "-v", "x", "plain"}, 1, "v='x' [plain]", ""},
        {{"-early", "dir", "-v", "x", "plain", "-f"}, 0, "early='dir' ", ""},
        {{"-x", "-", "-fx"}, 0, "", unrecognised + "-x\n" + unrecognised + "-\n" + unrecognised + "-fx\n"},
        {{"-y"}, 1, "", unrecognised + "-y\n"},
        // A missing value ends the list.
        {{"a", "-v"}, 1, "[a]", "qm: error: expected argument for option -v\n"},
        // Each line of an indirect file is a list of its own.
        {{"@" + args}, 1, "v='Debug Version' [a][#x][next][last]", "qm: error: expected argument for option -v\n"},
        // The line count leaves out comments.
        {{"@" + quote}, 1, "f [x][y]", "qm: error: unterminated string in indirect file " + quote + "(2)\n"},
        {{"@" + dir / "missing", "@" + dir.path(), "@", "after"}, 1, "[after]",
         "qm: error: can't open indirect file " + dir / "missing: No such file or directory\n" +
             "qm: error: can't open indirect file " + dir.path() + ": Is a directory\n" +
             "qm: error: can't open indirect file : No such file or directory\n"},
        {{"@" + dir / "f1", "outer"}, 1, levels + "[outer]", tooMany},
        {{"@" + once}, 1, "f ", tooMany},
        {{"@" + twice, "end"}, 1, manyX + "[end]", tooMany},
        // The limit counts files, not levels.
        {{"@" + top, "z"}, 1, "[x][x][y][z]", tooMany, 3},
    };
    for (const auto &c : cases) {
        std::ostringstream errors;
        ProgramLog log("qm", errors);
        TestParse parser(&log);
        parser.setIndirectFileLimit(c.fileLimit);
        parser.parse(c.list, c.phase);
        EXPECT_EQ(parser.state(), c.state) << c.list[0];
        EXPECT_EQ(errors.str(), c.errors) << c.list[0];
        EXPECT_EQ(log.errorCount(), std::count(c.errors.begin(), c.errors.end(), '\n')) << c.list[0];
    }

    // The limit is reported again in the next pass.
    std::ostringstream errors;
    ProgramLog log("qm", errors);
    TestParse parser(&log);
    parser.parse({"@" + once}, 0);
    parser.parse({"@" + once}, 1);
    EXPECT_EQ(errors.str(), tooMany + tooMany);
}

TEST(ArgParse, HelpEntriesSplitSortedIgnoringCaseAndDropped) {
    ArgParse parser(nullptr);
    bool flag = false;
    // Entries without a colon, empty ones among them, are dropped.
    parser.addFlagOption("-b", &flag, "-b: second;-A 'x':first: with colon;no colon;-C:third;;");
    std::string entries;
    for (const auto &entry : parser.helpEntries())
        entries += entry.left + "|" + entry.right + "\n";
    // The blank after the colon stays.
    EXPECT_EQ(entries, "-A 'x'|first: with colon\n-b| second\n-C|third\n");
}

TEST(ProgramLog, EveryErrorIsOneCountedLine) {
    std::ostringstream stream;
    ProgramLog log("/usr/bin/quillmake", stream);
    // Asking for the stream counts, before anything is written.
    std::ostream &out = log.errorStream();
    EXPECT_EQ(log.errorCount(), 1);
    out << "first" << '\n';
    log.error("second");
    EXPECT_EQ(stream.str(), "/usr/bin/quillmake: error: first\n/usr/bin/quillmake: error: second\n");
    EXPECT_EQ(log.errorCount(), 2);
}
