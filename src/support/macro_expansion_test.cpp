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
        {"Defined", "/opt/x"}, {"B", "x"},
        // Values that refer to themselves, directly or in a cycle through a
        // default.
        {"X", "x$(X)"}, {"C1", "1$(C2)"}, {"C2", "2$(C3)"}, {"C3", "3$(C1:default)"},
    };

    Expansion() {
        macros.systemMacros() = {{"StudioDir", "/opt/studio"}, {"Shared", "system"}, {"Date", ""},
                                 {"DateYear", ""}, {"UnixTime", ""}};
        macros.globalMacros() = {{"Shared", "global"}, {"GlobalOnly", "g"}};
    }

    std::string expand(const std::string &text, bool useGlobal = true, bool useSystem = true) {
        return expandMacrosWith(macros, local, text, useGlobal, useSystem);
    }
};

TEST_F(Expansion, References) {
    const struct {
        const char *text, *expanded;
    } cases[] = {
        {"$(A::$(B))", "$(B)"},  // a default that starts with ":" is taken as written
        {"$(StudioDir:rest (of it", "/opt/studio"},
        // Macro characters that start no reference, and broken references.
        {"a$b$", "a$b$"}, {"$(StudioDir)$(", "/opt/studio"}, {"$()a$(:x)b", "ab"},
        // A cycle ends with the closing reference as written.
        {"$(X)", "xx$(X)"}, {"$(C1)", "123$(C1:default)"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(expand(c.text), c.expanded) << c.text;
}

TEST_F(Expansion, LocalThenGlobalThenSystem) {
    EXPECT_EQ(expand("$(Shared)", false, true), "system");
    EXPECT_EQ(expand("$(StudioDir) $(Date)", false, false), "$(StudioDir) $(Date)");
    local["Shared"] = "local";
    EXPECT_EQ(expand("$(Shared)"), "local");
}

TEST_F(Expansion, ClockMacrosGiveTheTimeInAnyTable) {
    const std::time_t before = std::time(nullptr);
    const std::string year = expand("$(DateYear)");
    local["Date"] = "stale";
    const std::string date = expand("$(Date)");
    EXPECT_EQ(date.substr(date.size() - 5), " " + year);
    EXPECT_GE(std::stoll(expand("$(UnixTime)")), before);
}

TEST(DateTimeMacros, TheNineNamesInLocalTime) {
    const std::time_t when = 1772723643;  // 2026-03-05 15:14:03 UTC
    const struct {
        const char *zone;
        std::time_t when;
        const char *name, *value;
    } cases[] = {
        {"UTC0", when, "DateMonth", "03"},  {"UTC0", when, "DateDay", "05"},      {"UTC0", when, "TimeHour", "15"},
        {"UTC0", when, "TimeMinute", "14"}, {"UTC0", when, "TimeSecond", "03"},  {"UTC0", 0, "Time", "00:00:00"},
        // Ten hours east it is the next day already.
        {"XYZ-10", when, "Date", "6 March 2026"},
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
    for (const char *name : {"", "date", "Timer"}) {
        EXPECT_FALSE(dateTimeMacroValue(name, 0, value)) << name;
        EXPECT_FALSE(expandDateTimeMacro(name, value)) << name;
    }
    EXPECT_EQ(value, "unchanged");
    EXPECT_TRUE(dateTimeMacroValue("UnixTime", 1234567890, value));
    EXPECT_EQ(value, "1234567890");
    // Now: the seconds since the epoch, read when asked.
    const std::time_t before = std::time(nullptr);
    ASSERT_TRUE(expandDateTimeMacro("UnixTime", value));
    EXPECT_GE(std::stoll(value), before);
    EXPECT_LE(std::stoll(value), std::time(nullptr));
}

TEST_F(Expansion, NestingDeeperThanTheLimitIsLeftAsWritten) {
    // A chain of macros, each the next one's reference.
    const size_t limit = MacroExpansionLimits().depth, chain = limit + 10;
    for (size_t i = 0; i < chain; ++i)
        local[concat("M", std::to_string(i))] = concat("$(M", std::to_string(i + 1)) + ")";
    local[concat("M", std::to_string(chain))] = "end";
    EXPECT_EQ(expand("$(M0)"), concat("$(M", std::to_string(limit - 1)) + ")");
    // Defaults nested ten thousand deep: the first levels are expanded, the
    // rest stands as written.
    const std::string nested = repeat("$(A:", 10000) + "x" + repeat(")", 10000);
    const size_t kept = 10000 - (limit - 1);
    EXPECT_EQ(expand(nested), repeat("$(A:", kept) + "x" + repeat(")", kept));
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
    EXPECT_EQ(splitEscaped("a;b;;c;", true), (List{"a", "b", "", "c", ""}));
    EXPECT_EQ(splitEscaped("A=x\\;y;B=\\\\;C=\\z", false), (List{"A=x;y", "B=\\", "C=z"}));
    EXPECT_EQ(splitEscaped("end\\", false), List{"end\\"});

    // Thirty-one times over the characters, wrapping at 32 bits.
    EXPECT_EQ(macroHashText("/home/user/project/src/main.c"), "309e23f2");
    // Characters without an ASCII value count as zero: "€" is one character,
    // "𝄞" two UTF-16 units, and each byte of malformed UTF-8 one.
    EXPECT_EQ(macroHash("a\xE2\x82\xAC"), 97u * 31);
    EXPECT_EQ(macroHash("a\xF0\x9D\x84\x9E"), 97u * 31 * 31);
    EXPECT_EQ(macroHash("a\xFF\xFE"), 97u * 31 * 31);
    EXPECT_EQ(macroHash("a\xC3"), 97u * 31);
}

}  // namespace
