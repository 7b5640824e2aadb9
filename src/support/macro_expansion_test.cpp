#include "support/macro_expansion.h"

#include "support/date_time_macros.h"
#include "support/scoped_variable.h"
#include "support/text_split.h"

#include <gtest/gtest.h>

#include <ctime>

namespace {

// A table with known global and system macros, the clock macros known by
// name as the process-wide table knows them, and local macros for each kind
// of reference.
struct Expansion : ::testing::Test {
    MacroTable macros;
    MacroMap local{
        {"Defined", "/opt/x"}, {"B", "x"}, {"Empty", ""}, {"OutDir", "out"},
        // Values are expanded in turn, defaults inside them with the same tables.
        {"Root", "$(StudioDir)/root"}, {"Bin", "$(Root)/bin"}, {"Tool", "$(Missing:$(Bin))/tool"},
        // Values that refer to themselves, directly or in a cycle.
        {"Self", "$(Self)"}, {"X", "x$(X)"}, {"CA", "$(CB)"}, {"CB", "$(CA)"},
        {"C1", "1$(C2)"}, {"C2", "2$(C3)"}, {"C3", "3$(C1:default)"}, {"D", "$(E)$(E)"}, {"E", "$(D)$(D)"},
    };

    Expansion() {
        macros.systemMacros() = {{"StudioDir", "/opt/studio"}, {"Shared", "system"}, {"HostEXE", ""},
                                 {"Date", ""}, {"DateYear", ""}, {"UnixTime", ""}};
        macros.globalMacros() = {{"Shared", "global"}, {"GlobalOnly", "g"}};
    }

    std::string expand(const std::string &text, bool useGlobal = true, bool useSystem = true) {
        return expandMacrosWith(macros, local, text, useGlobal, useSystem);
    }
};

std::string repeat(const std::string &text, size_t count) {
    std::string result;
    for (size_t i = 0; i < count; ++i)
        result += text;
    return result;
}

TEST_F(Expansion, References) {
    const struct {
        const char *text, *expanded;
    } cases[] = {
        {"", ""}, {"plain text (with brackets)", "plain text (with brackets)"},
        {"$(Shared) $(OutDir) $(outdir)", "global out $(outdir)"},  // names are case-sensitive
        {"$(Bin)/gcc", "/opt/studio/root/bin/gcc"}, {"[$(Tool)]", "[/opt/studio/root/bin/tool]"},
        // Defaults of unknown names; an empty value is a value.
        {"$(GCCDIR:)", ""}, {"$(Defined:)", "/opt/x"}, {"$(A:$(B))", "x"}, {"$(A::$(B))", "$(B)"},
        {"[$(A:)] <$(Empty:default)>", "[] <>"},
        // A default ends at the balancing bracket, or with the text.
        {"$(LLD:$(StudioDir)/llvm/bin/ld.lld$(HostEXE))", "/opt/studio/llvm/bin/ld.lld"},
        {"$(A:f(x)) and $(N:(y))z", "f(x) and (y)z"},
        {"$(A:rest (of it", "rest (of it"}, {"$(StudioDir:rest (of it", "/opt/studio"},
        // The name ends at the first ":" or ")", whatever brackets it holds.
        {"$(a(b:x)y)", "xy)"},
        // Macro characters that start no reference, and broken references.
        {"$$(A) $$$(StudioDir)", "$(A) $/opt/studio"}, {"100$", "100$"}, {"a$b$", "a$b$"}, {"$$", "$"},
        {"abc$(def", "abcdef"}, {"$(StudioDir)$(", "/opt/studio"}, {"$()a$(:x)b", "ab"},
        {"$(Unknown)/a", "$(Unknown)/a"},
        // A value that is the whole text being expanded stays as it is, and a
        // cycle ends with the closing reference as written.
        {"$(Self)", "$(Self)"}, {"a$(Self)b", "a$(Self)b"}, {"$(X)", "xx$(X)"}, {"$(CA) <$(CB)>", "$(CA) <$(CB)>"},
        {"$(C1)", "123$(C1:default)"},
        {"$(D)", "$(D)$(D)$(D)$(D)"},  // each level doubles what the cycle would make
    };
    for (const auto &c : cases)
        EXPECT_EQ(expand(c.text), c.expanded) << c.text;
}

TEST_F(Expansion, LocalThenGlobalThenSystem) {
    EXPECT_EQ(expand("$(Shared)", false, true), "system");
    EXPECT_EQ(expand("$(Shared)", true, false), "global");
    EXPECT_EQ(expand("$(GlobalOnly)", false, true), "$(GlobalOnly)");
    EXPECT_EQ(expand("$(StudioDir) $(Date)", false, false), "$(StudioDir) $(Date)");
    EXPECT_EQ(expandMacros(macros, "$(Shared) $(StudioDir)"), "global /opt/studio");
    EXPECT_EQ(expandSystemMacros(macros, "$(Shared) $(GlobalOnly)"), "system $(GlobalOnly)");
    local["Shared"] = "local";
    local["StudioDir"] = "/mine";
    EXPECT_EQ(expand("$(Shared)"), "local");
    EXPECT_EQ(expand("$(StudioDir)", false, false), "/mine");
}

TEST_F(Expansion, ClockMacrosGiveTheTimeInAnyTable) {
    const std::time_t before = std::time(nullptr);
    const std::string year = expand("$(DateYear)");
    local["Date"] = "stale";
    const std::string date = expand("$(Date)");
    EXPECT_EQ(year.size(), 4u);
    EXPECT_EQ(date.substr(date.size() - 5), " " + year);
    const std::time_t now = std::stoll(expand("$(UnixTime)"));
    EXPECT_GE(now, before);
    EXPECT_LE(now, std::time(nullptr));
}

TEST(DateTimeMacros, TheNineNamesInLocalTime) {
    const std::time_t when = 1772723643;  // 2026-03-05 15:14:03 UTC
    const struct {
        const char *zone;
        std::time_t when;
        const char *name, *value;
    } cases[] = {
        {"UTC0", when, "Date", "5 March 2026"},   {"UTC0", when, "DateYear", "2026"},
        {"UTC0", when, "DateMonth", "03"},        {"UTC0", when, "DateDay", "05"},
        {"UTC0", when, "Time", "15:14:03"},       {"UTC0", when, "TimeHour", "15"},
        {"UTC0", when, "TimeMinute", "14"},       {"UTC0", when, "TimeSecond", "03"},
        {"UTC0", when, "UnixTime", "1772723643"},
        // Ten hours east it is the next day already; the Unix time is the same.
        {"XYZ-10", when, "Date", "6 March 2026"}, {"XYZ-10", when, "Time", "01:14:03"},
        {"XYZ-10", when, "UnixTime", "1772723643"}, {"UTC0", 1734220800, "Date", "15 December 2024"},
        {"UTC0", 0, "Date", "1 January 1970"},    {"UTC0", 0, "Time", "00:00:00"},
    };
    {
        const ScopedVariable outer("TZ", "UTC0");  // each row's zone replaces it for the row
        for (const auto &c : cases) {
            const ScopedVariable zone("TZ", c.zone);
            tzset();
            std::string value = "unchanged";
            EXPECT_TRUE(dateTimeMacroValue(c.name, c.when, value)) << c.name;
            EXPECT_EQ(value, c.value) << c.zone << " " << c.name << " at " << c.when;
        }
    }
    tzset();
    std::string value = "unchanged";
    for (const char *name : {"", "date", "Dates", "Timer", "Unix", "HostOS"})
        EXPECT_FALSE(dateTimeMacroValue(name, 0, value)) << name;
    EXPECT_EQ(value, "unchanged");
}

TEST_F(Expansion, NestingDeeperThanTheLimitIsLeftAsWritten) {
    // A chain of macros, each the next one's reference.
    const size_t limit = MacroExpansionLimits().depth, chain = limit + 10;
    for (size_t i = 0; i < chain; ++i)
        local[concat("M", std::to_string(i))] = concat("$(M", std::to_string(i + 1)) + ")";
    local[concat("M", std::to_string(chain))] = "end";
    EXPECT_EQ(expand("$(M0)"), concat("$(M", std::to_string(limit - 1)) + ")");
    EXPECT_EQ(expand(concat("$(M", std::to_string(chain - 5)) + ")"), "end");
    // Defaults nested ten thousand deep: the first levels are expanded, the
    // rest stands as written.
    const std::string nested = repeat("$(A:", 10000) + "x" + repeat(")", 10000);
    const size_t kept = 10000 - (limit - 1);
    EXPECT_EQ(expand(nested), repeat("$(A:", kept) + "x" + repeat(")", kept));
    EXPECT_EQ(expand(repeat("$(A:", 20) + "x" + repeat(")", 20)), "x");
    local["A"] = "a";
    EXPECT_EQ(expand(nested + "!"), "a!");
}

TEST_F(Expansion, GrowthIsBounded) {
    MacroExpansionLimits limits;
    limits.references = 10000;
    limits.size = size_t(1) << 20;
    // Each level doubles the one below: 2^40 times the bottom value if
    // nothing stopped it. The size of the result stops it here...
    local["L0"] = std::string(size_t(1) << 10, 'x');
    for (int i = 1; i <= 40; ++i)
        local[concat("L", std::to_string(i))] = concat("$(L", std::to_string(i - 1)) + concat(")$(L", std::to_string(i - 1)) + ")";
    const std::string big = expandMacrosWith(macros, local, "$(L40)tail", true, true, limits);
    EXPECT_GT(big.size(), limits.size);
    EXPECT_LT(big.size(), limits.size + 2000);
    EXPECT_TRUE(big.ends_with("$(L38)$(L39)tail"));  // what was left open stands as written
    // ...and the count of references where nothing is emitted.
    local["L0"] = "";
    const std::string empty = expandMacrosWith(macros, local, "$(L40)tail", true, true, limits);
    EXPECT_TRUE(empty.ends_with("$(L38)$(L39)tail"));
    EXPECT_LT(empty.size(), 1000u);
    // Each byte of the text adds one to the count, so that the text's own
    // references are all read, however many.
    EXPECT_EQ(expandMacrosWith(macros, local, repeat("$(B)", 20000), true, true, limits), std::string(20000, 'x'));
    // Ten megabytes of references take no more than their time.
    local["B"] = "$(Defined)-$(C:c)";
    EXPECT_EQ(expand(repeat("$(Defined)/$(B)$$;" + std::string(40, '.'), 200000)),
              repeat("/opt/x//opt/x-c$;" + std::string(40, '.'), 200000));
}

TEST(MacroLists, ParseSplitAndHash) {
    const MacroMap expected{{"A", "2"}, {"B", "x=y"}, {"C", ""}, {"D", ""}, {"E", "$(A)"}};
    EXPECT_EQ(parseMacroList({"A=1", "B=x=y", "C", "A=2", "D=", "E=$(A)"}), expected);

    using List = std::vector<std::string>;
    EXPECT_EQ(splitEscaped("a;b;;c;", false), (List{"a", "b", "c"}));
    EXPECT_EQ(splitEscaped("a;b;;c;", true), (List{"a", "b", "", "c", ""}));
    EXPECT_EQ(splitEscaped("", true), List{""});
    EXPECT_EQ(splitEscaped("A=x\\;y;B=\\\\;C=\\z", false), (List{"A=x;y", "B=\\", "C=z"}));
    EXPECT_EQ(splitEscaped("end\\", false), List{"end\\"});

    // Thirty-one times over the characters, wrapping at 32 bits.
    EXPECT_EQ(macroHashText(""), "0");
    EXPECT_EQ(macroHash("ab"), 97u * 31 + 98);
    EXPECT_EQ(macroHashText("/home/user/project/src/main.c"), "309e23f2");
    // Characters without an ASCII value count as zero: "é" is one character,
    // "€" one, "𝄞" two UTF-16 units, and each byte of malformed UTF-8 one.
    EXPECT_EQ(macroHash("\xC3\xA9x"), 0u * 31 + 'x');
    EXPECT_EQ(macroHash("a\xE2\x82\xAC"), 97u * 31);
    EXPECT_EQ(macroHash("a\xF0\x9D\x84\x9E"), 97u * 31 * 31);
    EXPECT_EQ(macroHash("a\xFF\xFE"), 97u * 31 * 31);
    EXPECT_EQ(macroHash("a\xC3"), 97u * 31);
}

}  // namespace
