#include "project/memory_map.h"

#include "support/file_info.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

namespace {

class MemoryMapTest : public ::testing::Test {
protected:
    // Loads text as the file name, pre-processed with macroList.
    bool load(const std::string &name, const std::string &text, const std::string &macroList = "") {
        return map.load(directory.write(name, text), macroList, true);
    }
    MemoryMapElement *find(const char *name, MemoryMapElement::Kind kind) {
        return MemoryMap::findElement(map.rootElement(), name, kind);
    }
    // The tags of the root's children, in order.
    std::string childTags() {
        std::string tags;
        for (MemoryMapElement *child = map.rootElement()->firstChildElement(); child;
             child = child->nextSiblingElement())
            tags += (tags.empty() ? "" : " ") + child->tagName + (child->name() ? ":" + std::string(child->name()) : "");
        return tags;
    }

    TestDirectory directory;
    SystemMacros macros;
    MemoryMap map{&macros};
};

TEST_F(MemoryMapTest, AddressesAreEvaluatedWithTheBaseThatParentsHandDown) {
    ASSERT_TRUE(load("map.xml", R"(<Root name="Chip">
  <MemorySegment name="RAM" start="0x20000000" size="0x100 * 2" access="ReadOnly">
    <ProgramSection name="rel" start="+0x100" size="8"/>
    <ProgramSection name="abs" start="0x100" size="UNDEFINED"/>
    <RegisterGroup name="nostart"><Register name="inner" start="+4"/></RegisterGroup>
  </MemorySegment>
  <RegisterGroup name="G" start="0x40000000">
    <Register name="R" start="+0x10" size="0x20"><BitField name="B" start="+3" size="2"/></Register>
    <Register name="plain" start="0x8" size="junk"/>
    <Register name="undefined" start="+NOPE"/>
  </RegisterGroup>
  <RegisterGroup name="high" start="0x1FFFFFFF0"><Register name="wrapped" start="+0x20"/></RegisterGroup>
  <RegisterGroup name="top" start="0xFFFFFFFFFFFFFFFF"><Register name="max" start="+0xFFFFFFFFFFFFFFFF"/></RegisterGroup>
  <registergroup name="o" start="0x10" size="0x10"/>
</Root>)"));
    using K = MemoryMapElement;
    const struct {
        const char *name;
        MemoryMapElement::Kind kind;
        std::uint64_t start, size;
    } rows[] = {
        {"RAM", K::MemorySegment, 0x20000000, 0x200}, {"rel", K::ProgramSection, 0x20000100, 8},
        {"abs", K::ProgramSection, 0x100, 0},         {"inner", K::Register, 0x20000004, 0},
        {"R", K::Register, 0x40000010, 0x20},         {"B", K::BitField, 3, 2},
        {"plain", K::Register, 8, 0},                 {"undefined", K::Register, 0x40000000, 0},
        // The base is handed down in 32 bits; sums wrap.
        {"wrapped", K::Register, 0x100000010u, 0},    {"max", K::Register, 0xFFFFFFFEu, 0},
        {"o", K::Other, 0, 0},  // not evaluated
    };
    for (const auto &row : rows) {
        const MemoryMapElement *element = find(row.name, row.kind);
        ASSERT_NE(element, nullptr) << row.name;
        EXPECT_EQ(element->start, row.start) << row.name;
        EXPECT_EQ(element->size, row.size) << row.name;
    }
    EXPECT_EQ(find("RAM", K::MemorySegment)->access(), K::ReadOnly);
    EXPECT_EQ(find("R", K::MemorySegment), nullptr);
    EXPECT_EQ(map.rootTag, "Root");
}

TEST_F(MemoryMapTest, ImportsOfTheRootAreReplacedByTheRootsTheyName) {
    directory.write("sub/flash.xml", "<Root name=\"F\"><MemorySegment name=\"FLASH\" start=\"0x8000000\"/>"
                                     "<Import filename=\"../main.xml\"/></Root>");
    directory.write("sub/bad.xml", "this is not XML");
    const std::string main = directory.write(
        "main.xml", "<Root><Import filename=\"sub/flash.xml\"/><Import filename=\"sub/bad.xml\"/>"
                    "<Import filename=\"missing.xml\"/><Import/><MemorySegment name=\"RAM\"/></Root>");
    ASSERT_TRUE(map.load(main, "", false));
    EXPECT_EQ(childTags(), "Root:F Import Import Import MemorySegment:RAM");
    MemoryMapElement *imported = map.rootElement()->firstChildElement();
    ASSERT_NE(imported->import, nullptr);
    EXPECT_EQ(*imported->import->attribute("filename"), "sub/flash.xml");
    EXPECT_EQ(imported->modified, FileInfo(directory / "sub/flash.xml").lastModified());
    // An import inside an imported file stays, so a cycle ends there.
    EXPECT_EQ(imported->firstChildElement()->nextSiblingElement()->tagName, "Import");
    EXPECT_EQ(find("FLASH", MemoryMapElement::MemorySegment)->start, 0x8000000u);
}

TEST_F(MemoryMapTest, MacrosReachThePreprocessorOnly) {
    ASSERT_TRUE(load("map.xml", R"x(<Root><MemorySegment name="$(N)" start="$(S)"/></Root>)x", "N=FLASH;S=0x400"));
    EXPECT_EQ(find("FLASH", MemoryMapElement::MemorySegment)->start, 0x400u);
    MemoryMap plain(&macros);
    ASSERT_TRUE(plain.load(directory / "map.xml", "N=FLASH", false));
    EXPECT_STREQ(plain.rootElement()->firstChildElement()->name(), "$(N)");
}

TEST_F(MemoryMapTest, BadInputGivesNoRootAndDeepNestingIsWalkedWithoutRecursion) {
    for (const char *text : {"", "plain text", "<Root><MemorySegment></Root>", "<Root"}) {
        MemoryMap bad(&macros);
        EXPECT_FALSE(bad.load(directory.write("bad.xml", text), "", true)) << text;
        EXPECT_EQ(bad.rootElement(), nullptr) << text;
    }
    EXPECT_FALSE(map.load(directory / "none.xml", "", false));
    constexpr int depth = 50000;
    std::string open, close;
    for (int i = 0; i < depth; ++i)
        open += "<RegisterGroup start=\"+1\">", close += "</RegisterGroup>";
    ASSERT_TRUE(load("deep.xml", "<Root>" + open + "<Register name=\"deep\" start=\"+0\"/>" + close + "</Root>"));
    EXPECT_EQ(find("deep", MemoryMapElement::Register)->start, std::uint64_t(depth));
}

} // namespace
