#include "support/macro_expansion.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// A table with known global and system macros, and the clock macros known by
// name as the process-wide table knows them.
struct Expansion : ::testing::Test {
    MacroTable macros;
    MacroMap local;

    Expansion() {
        macros.systemMacros()["StudioDir"] = "/opt/studio";
        macros.systemMacros()["Shared"] = "system";
        macros.globalMacros()["Shared"] = "global";
        macros.globalMacros()["GlobalOnly"] = "g";
        macros.systemMacros()["HostEXE"] = "";
        for (const char *clock : {"Date", "DateYear", "UnixTime"})
            macros.systemMacros()[clock] = "";
    }

    std::string expand(const std::string &text, bool useGlobal = true, bool useSystem = true) {
        return expandMacrosWith(macros, local, text, useGlobal, useSystem);
    }
};

std::string repeat(const std::string &text, size_t count) {
    std::string result;
    result.reserve(text.size() * count);
    for (size_t i = 0; i < count; ++i)
        result += text;
    return result;
}

}  // namespace

TEST_F(Expansion, TextWithoutReferencesIsReturnedAsItIs) {
    EXPECT_EQ(expand(""), "");
    EXPECT_EQ(expand("plain text (with brackets)"), "plain text (with brackets)");
}

TEST_F(Expansion, DefaultsOfUnknownNames) {
    EXPECT_EQ(expand("$(GCCDIR:)"), "");
    local["GCCDIR"] = "/opt/x";
    EXPECT_EQ(expand("$(GCCDIR:)"), "/opt/x");
    EXPECT_EQ(expand("$(PROJECT_TEMPLATE_FILE:project_templates)"), "project_templates");
    local["B"] = "x";
    EXPECT_EQ(expand("$(A:$(B))"), "x");
    EXPECT_EQ(expand("$(A::$(B))"), "$(B)");
    EXPECT_EQ(expand("[$(A:)]"), "[]");
}

TEST_F(Expansion, AnEmptyValueIsAValue) {
    local["Empty"] = "";
    EXPECT_EQ(expand("<$(Empty:default)>"), "<>");
}

TEST_F(Expansion, DefaultsEndAtTheBalancingBracket) {
    EXPECT_EQ(expand("$(LLD:$(StudioDir)/llvm/bin/ld.lld$(HostEXE))"), "/opt/studio/llvm/bin/ld.lld");
    EXPECT_EQ(expand("$(A:f(x)) and $(B:(y))z"), "f(x) and (y)z");
    // The name ends at the first ":" or ")", whatever brackets it holds.
    EXPECT_EQ(expand("$(a(b:x)y)"), "xy)");
    // A default that the text ends in is all the rest.
    EXPECT_EQ(expand("$(A:rest (of it"), "rest (of it");
    EXPECT_EQ(expand("$(StudioDir:rest (of it"), "/opt/studio");
}

TEST_F(Expansion, MacroCharacters) {
    EXPECT_EQ(expand("$$(A)"), "$(A)");
    EXPECT_EQ(expand("$$$(StudioDir)"), "$/opt/studio");
    EXPECT_EQ(expand("100$"), "100$");
    EXPECT_EQ(expand("$x"), "$x");
    EXPECT_EQ(expand("a$b$"), "a$b$");
    EXPECT_EQ(expand("$$"), "$");
}

TEST_F(Expansion, BrokenReferences) {
    EXPECT_EQ(expand("abc$(def"), "abcdef");
    EXPECT_EQ(expand("$(StudioDir)$("), "/opt/studio");
    EXPECT_EQ(expand("$()"), "");
    EXPECT_EQ(expand("a$(:x)b"), "ab");
    EXPECT_EQ(expand("$(Unknown)/a"), "$(Unknown)/a");
}

TEST_F(Expansion, NamesAreCaseSensitive) {
    local["OutDir"] = "out";
    EXPECT_EQ(expand("$(outdir) $(OutDir)"), "$(outdir) out");
}

TEST_F(Expansion, LocalThenGlobalThenSystem) {
    EXPECT_EQ(expand("$(Shared)"), "global");
    EXPECT_EQ(expand("$(Shared)", false, true), "system");
    EXPECT_EQ(expand("$(Shared)", true, false), "global");
    local["Shared"] = "local";
    EXPECT_EQ(expand("$(Shared)"), "local");
    EXPECT_EQ(expand("$(GlobalOnly)", false, true), "$(GlobalOnly)");
}

TEST_F(Expansion, BothSwitchesOffLeaveOnlyTheLocalMap) {
    EXPECT_EQ(expand("$(StudioDir)", false, false), "$(StudioDir)");
    EXPECT_EQ(expand("$(Date)", false, false), "$(Date)");
    local["StudioDir"] = "/mine";
    EXPECT_EQ(expand("$(StudioDir)", false, false), "/mine");
}

TEST_F(Expansion, TheThreeEntryPoints) {
    EXPECT_EQ(expandMacros(macros, "$(Shared) $(StudioDir)"), "global /opt/studio");
    EXPECT_EQ(expandSystemMacros(macros, "$(Shared) $(GlobalOnly)"), "system $(GlobalOnly)");
}

TEST_F(Expansion, ValuesAreExpandedInTurn) {
    local["Root"] = "$(StudioDir)/root";
    local["Bin"] = "$(Root)/bin";
    EXPECT_EQ(expand("$(Bin)/gcc"), "/opt/studio/root/bin/gcc");
    // A default of a reference inside a value sees the same tables.
    local["Tool"] = "$(Missing:$(Bin))/tool";
    EXPECT_EQ(expand("[$(Tool)]"), "[/opt/studio/root/bin/tool]");
}

TEST_F(Expansion, ClockMacrosGiveTheTimeInAnyTable) {
    const std::string year = expand("$(DateYear)");
    ASSERT_EQ(year.size(), 4u);
    EXPECT_GE(year, "2024");
    local["Date"] = "stale";
    const std::string date = expand("$(Date)");
    EXPECT_NE(date, "stale");
    EXPECT_NE(date.find(year), std::string::npos);
    EXPECT_EQ(expand("$(UnixTime)").find_first_not_of("0123456789"), std::string::npos);
}

TEST_F(Expansion, AValueThatIsTheWholeInputStaysAsItIs) {
    local["A"] = "$(A)";
    EXPECT_EQ(expand("$(A)"), "$(A)");
    EXPECT_EQ(expand("a$(A)b"), "a$(A)b");
    local["X"] = "x$(X)";
    EXPECT_EQ(expand("$(X)"), "xx$(X)");
}

TEST_F(Expansion, CyclesEndWithTheClosingReferenceAsWritten) {
    local["A"] = "$(B)";
    local["B"] = "$(A)";
    EXPECT_EQ(expand("$(A)"), "$(A)");
    EXPECT_EQ(expand("<$(B)>"), "<$(B)>");

    local["C1"] = "1$(C2)";
    local["C2"] = "2$(C3)";
    local["C3"] = "3$(C1:default)";
    EXPECT_EQ(expand("$(C1)"), "123$(C1:default)");

    // Each level doubles what the cycle would make.
    local["D"] = "$(E)$(E)";
    local["E"] = "$(D)$(D)";
    EXPECT_EQ(expand("$(D)"), "$(D)$(D)$(D)$(D)");
}

TEST_F(Expansion, NestingDeeperThanTheLimitIsLeftAsWritten) {
    // A chain of macros, each the next one's reference.
    const size_t chain = MacroExpansionLimits().depth + 10;
    for (size_t i = 0; i < chain; ++i)
        local["M" + std::to_string(i)] = "$(M" + std::to_string(i + 1) + ")";
    local["M" + std::to_string(chain)] = "end";
    const size_t last = MacroExpansionLimits().depth - 1;
    EXPECT_EQ(expand("$(M0)"), "$(M" + std::to_string(last) + ")");
    EXPECT_EQ(expand("$(M" + std::to_string(chain - 5) + ")"), "end");
}

TEST_F(Expansion, DefaultsNestedTenThousandDeep) {
    const size_t depth = 10000;
    const std::string nested = repeat("$(A:", depth) + "x" + repeat(")", depth);
    // The first levels are expanded; the rest stands as written.
    const size_t kept = depth - (MacroExpansionLimits().depth - 1);
    EXPECT_EQ(expand(nested), repeat("$(A:", kept) + "x" + repeat(")", kept));

    const std::string shallow = repeat("$(A:", 20) + "x" + repeat(")", 20);
    EXPECT_EQ(expand(shallow), "x");
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
        local["L" + std::to_string(i)] = "$(L" + std::to_string(i - 1) + ")$(L" + std::to_string(i - 1) + ")";
    const std::string big = expandMacrosWith(macros, local, "$(L40)tail", true, true, limits);
    EXPECT_GT(big.size(), limits.size);
    EXPECT_LT(big.size(), limits.size + 2000);
    // What was left open stands as written.
    EXPECT_TRUE(big.ends_with("$(L38)$(L39)tail"));

    // ...and the count of references where nothing is emitted.
    local["L0"] = "";
    const std::string empty = expandMacrosWith(macros, local, "$(L40)tail", true, true, limits);
    EXPECT_TRUE(empty.ends_with("$(L38)$(L39)tail"));
    EXPECT_LT(empty.size(), 1000u);
    // Each byte of the text adds one to the count, so that the text's own
    // references are all read, however many.
    local["E"] = "e";
    std::string many;
    for (int i = 0; i < 20000; ++i)
        many += "$(E)";
    EXPECT_EQ(expandMacrosWith(macros, local, many, true, true, limits), std::string(20000, 'e'));
}

TEST_F(Expansion, TenMegabytesOfReferences) {
    local["A"] = "alpha";
    local["B"] = "$(A)-$(C:c)";
    const std::string filler(40, '.');
    std::string text;
    std::string expected;
    while (text.size() < 10'000'000) {
        text += "$(A)/$(B)$$;" + filler;
        expected += "alpha/alpha-c$;" + filler;
    }
    EXPECT_EQ(expand(text), expected);
}

TEST(ParseMacroList, NameBeforeTheFirstEquals) {
    const MacroMap map = parseMacroList({"A=1", "B=x=y", "C", "A=2", "D=", "E=$(A)"});
    const MacroMap expected{{"A", "2"}, {"B", "x=y"}, {"C", ""}, {"D", ""}, {"E", "$(A)"}};
    EXPECT_EQ(map, expected);
    EXPECT_TRUE(parseMacroList({}).empty());
}

TEST(SplitEscaped, SemicolonsAndBackslashes) {
    using List = std::vector<std::string>;
    EXPECT_EQ(splitEscaped("a;b;;c;", false), (List{"a", "b", "c"}));
    EXPECT_EQ(splitEscaped("a;b;;c;", true), (List{"a", "b", "", "c", ""}));
    EXPECT_EQ(splitEscaped("", false), List{});
    EXPECT_EQ(splitEscaped("", true), List{""});
    EXPECT_EQ(splitEscaped("A=x\\;y;B=\\\\;C=\\z", false), (List{"A=x;y", "B=\\", "C=z"}));
    EXPECT_EQ(splitEscaped("end\\", false), List{"end\\"});
    EXPECT_EQ(splitEscaped("\\;", true), List{";"});
}

TEST(MacroHash, ThirtyOneTimesOverTheCharacters) {
    EXPECT_EQ(macroHash(""), 0u);
    EXPECT_EQ(macroHashText(""), "0");
    EXPECT_EQ(macroHash("a"), 97u);
    EXPECT_EQ(macroHash("ab"), 97u * 31 + 98);
    EXPECT_EQ(macroHashText("Debug"), "3eda633");
    // Wraps at 32 bits.
    EXPECT_EQ(macroHashText("/home/user/project/src/main.c"), "309e23f2");
}

TEST(MacroHash, CharactersWithoutAnASCIIValueCountAsZero) {
    // "é" is one character, "€" one, "𝄞" two UTF-16 units.
    EXPECT_EQ(macroHash("\xC3\xA9x"), 0u * 31 + 'x');
    EXPECT_EQ(macroHash("a\xC3\xA9"), 97u * 31);
    EXPECT_EQ(macroHash("a\xE2\x82\xAC"), 97u * 31);
    EXPECT_EQ(macroHash("a\xF0\x9D\x84\x9E"), 97u * 31 * 31);
    // Each byte of malformed UTF-8 is a character of its own.
    EXPECT_EQ(macroHash("a\xFF\xFE"), 97u * 31 * 31);
    EXPECT_EQ(macroHash("a\xC3"), 97u * 31);
}
