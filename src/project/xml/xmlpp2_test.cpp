#include "project/xml/xmlpp2.h"

#include "support/test_directory.h"
#include "support/trace.h"
#include "support/text_split.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>
#include <string>

namespace {

const std::string kPrefix = "XmlPP::processConditionals(): ";
const std::string stops = " copied and included nodes; processing stops\n";

// Made before the document, which keeps its address.
struct Macros {
    Macros() { systemMacros.systemMacros()["HostOS"] = "linux"; }
    MacroTable systemMacros;
};

// A document that collects its warnings, each on a line without the prefix
// that all of them have.
class Document : public Macros, public XMLPP2 {
public:
    Document() : XMLPP2(&systemMacros) {}
    void warning(const std::string &text) override {
        warnings += (text.starts_with(kPrefix) ? text.substr(kPrefix.size()) : "!" + text) + "\n";
    }
    // The tree on one line, with ' for " and without the blank that the
    // writer puts in "<e a='1' />".
    std::string tree() {
        std::string out;
        if (root)
            write(out, 0, 0);
        for (size_t at = 0; (at = out.find("\" />", at)) != std::string::npos;)
            out.erase(at + 1, 1);
        std::replace(out.begin(), out.end(), '"', '\'');
        return out;
    }
    std::string warnings;
};

std::string repeat(const std::string &text, int times) {
    std::string result;
    while (times-- > 0)
        result += text;
    return result;
}

// The children of a root <r>, before and after processing.
struct Case {
    std::string text, tree, warnings = "";
    bool expandAttributes = false;
};

void check(const Case &c, std::size_t nodesMade = 1000000) {
    Document document;
    document.limits.nodesMade = nodesMade;
    EXPECT_TRUE(document.loadText("<r>" + c.text + "</r>", c.expandAttributes)) << document.errorText;
    EXPECT_EQ(document.tree(), c.tree.empty() ? "<r/>" : "<r>" + c.tree + "</r>") << c.text;
    EXPECT_EQ(document.warnings, c.warnings) << c.text;
}

} // namespace

TEST(XMLPP2, Conditionals) {
    const Case cases[] = {
        // <if> compares with each item of the list; an undefined macro is the
        // empty string, which only an empty item holds.
        {"<define name='D' value='2'/><if D='1,2'><a/><b/></if><if D='1,3'><c/></if><if D=''><d/></if>", "<a/><b/>"},
        {"<if D='1,2'><a/></if><if D=''><b/></if><if D='x,'><c/></if>", "<b/><c/>"},
        {"<define name='M' value='b'/><ifnot M='a,c'><x/></ifnot><ifnot M='a,b'><y/></ifnot>", "<x/>"},
        // Without exactly one condition it is a plain element.
        {"<if><a/></if><ifnot A='1' B='2'><ifdef name='X'/></ifnot>", "<if><a/></if><ifnot A='1' B='2'/>",
         repeat("one condition required for <if[not]>\n", 2)},
        // A missing name is the empty name.
        {"<define name='A' value=''/><ifdef name='A'><a/></ifdef><ifdef name='B'><b/></ifdef><ifndef name='A'><c/>"
         "</ifndef><ifndef name='B'><d/></ifndef><ifdef><e/></ifdef><ifndef><f/></ifndef>",
         "<a/><d/><f/>"},
        // Kept bodies are processed, and the loop goes on behind them.
        {"<if A=''><ifdef name='B'><x/></ifdef><a><if A=''><b/></if></a></if><c/>", "<a><b/></a><c/>"},
        // <ifex> evaluates with the local macros only; without an expression
        // it is a plain element.
        {"<define name='N' value='4'/><ifex expression='$(N) &gt; 3'><big/></ifex><ifex expression='$(N) &lt; 3'>"
         "<small/></ifex><ifex expression='$(StudioDir) == 0'><s/></ifex><ifex expression='('><bad/></ifex>",
         "<big/>"},
        {"<ifex><a/></ifex><ifex expression=''/>", "<ifex><a/></ifex><ifex expression=''/>"},
        // <switch>: the first matching case, else the last default; an
        // undefined name has the empty value.
        {"<define name='M' value='2'/><switch name='M'><default><d1/></default><case value='1,2'><one/></case>"
         "<other><o/></other><case value='2'><two/></case><default><d2/></default></switch>",
         "<one/>"},
        {"<define name='M' value='9'/><switch name='M'><default><d1/></default><case value='1,2'><one/></case>"
         "<other><o/></other><case value='2'><two/></case><default><d2/></default></switch><z/>",
         "<d2/><z/>"},
        {"<switch name='M'><case value='1'><one/></case></switch><z/>", "<z/>"},
        {"<switch name='M'><case value='1,'><e/></case></switch>", "<e/>"},
    };
    for (const Case &c : cases)
        check(c);

    // Directives can replace the root.
    Document document;
    EXPECT_TRUE(document.loadText("<if A=''><a/><b/></if>", false));
    EXPECT_EQ(document.tree(), "<a/>");
    EXPECT_TRUE(document.loadText("<define name='A' value='1'/>", false));
    EXPECT_EQ(document.root, nullptr);
}

TEST(XMLPP2, Defines) {
    const Case cases[] = {
        // A define is seen by what follows it within its list, and ends with
        // the list, also with a kept body.
        {"<a v='$(X)'/><define name='X' value='1'/><b v='$(X)'><c v='$(X)'/></b>",
         "<a v='$(X)'/><b v='1'><c v='1'/></b>", "", true},
        {"<p><define name='X' value='1'/><a v='$(X)'/></p><b v='$(X)'/>", "<p><a v='1'/></p><b v='$(X)'/>", "", true},
        {"<define name='X' value='out'/><if X='out'><define name='X' value='in'/><a v='$(X)'/></if><b v='$(X)'/>",
         "<a v='in'/><b v='out'/>", "", true},
        // The value is stored as written.
        {"<define name='A' value='$(B)'/><define name='B' value='b'/><if A='$(B)'><yes/></if>", "<yes/>"},
        {"<define value='1'/><define name='' value='1'/><define name='A'/><ifdef name='A'><a/></ifdef>", "",
         "missing name in <define>\nmissing name in <define>\nmissing value or expression in <define>\n"},
        // expand_macros switches expansion on from there on, in the list.
        {"<define name='X' value='1'/><a v='$(X)'/><define name='Y' value='2' expand_macros='Yes'/>"
         "<b v='$(X)$(Y)'><c v='$(X)'/></b><define name='Z' value='3' expand_macros='yes'/><d v='$(X)'/>",
         "<a v='$(X)'/><b v='12'><c v='1'/></b><d v='$(X)'/>"},
        {"<define name='N' value='6'/><define name='A' expression='$(N) * 7'/><define name='H' hex_expression="
         "'$(A) + 213'/><define name='Z' hex_expression='0'/><x a='$(A)' h='$(H)' z='$(Z)'/>",
         "<x a='42' h='0xFF' z='0x0'/>", "", true},
        // A failed evaluation sets nothing.
        {"<define name='A' value='old'/><define name='A' expression='('/><define name='B' hex_expression='$(Unknown)'/>"
         "<x a='$(A)' b='$(B)'/>",
         "<x a='old' b='$(B)'/>", "", true},
    };
    for (const Case &c : cases)
        check(c);
}

TEST(XMLPP2, Copies) {
    std::string sevenLists; // 10^7 combinations
    for (char name : std::string("abcdefg"))
        sevenLists += std::string(" ") + name + "='1,2,3,4,5,6,7,8,9,10'";
    const std::string block = "<define name='A' value='outer'/><xmldef name='b'><e v='$(A)$(B)'/><ifdef name='B'>"
                              "<has/></ifdef></xmldef>";
    const Case cases[] = {
        {"<for index='i' start='0' end='3' incr='1'><e n='$(i)' a='$(i_alpha)'/></for><z/>",
         "<e a='A' n='0'/><e a='B' n='1'/><e a='C' n='2'/><z/>"},
        {"<for index='i' start='3' end='3' incr='1'><e/></for><for index='i' start='5' end='3' incr='1'><e/></for>",
         ""},
        {"<for index='k' start='10' end='0x22' incr='12'><e h='$(k_hex)' o='$(j)'/></for>",
         "<e h='0xA' o='$(j)'/><e h='0x16' o='$(j)'/>"},
        {"<for index='i' start='1' end='3' incr='1' add='16' mul='4'><e ap='$(i_ap)' hex='$(i_ap_hex)'/></for>",
         "<e ap='20' hex='0x14'/><e ap='24' hex='0x18'/>"},
        {"<define name='S' value='5'/><for index='i' start='0' end='3' incr='2' sub='$(S)'><e ap='$(i_ap)' "
         "hex='$(i_ap_hex)'/></for>",
         "<e ap='-5' hex='0x-5'/><e ap='-3' hex='0x-3'/>"},
        // Copies are processed with the outer scope.
        {"<define name='M' value='1'/><for index='i' start='0' end='3' incr='1'><if M='$(i)'><hit n='$(i)'/></if>"
         "</for>",
         "<hit n='1'/>"},
        // Missing parts drop the loop; the warning shows it as the code would
        // have it.
        {"<for start='0' end='3' incr='1'><e/></for><for index='i' start='0' end='3' incr='1'/>"
         "<for index='i' start='0' end='(' incr='1'><e/></for><z/>",
         "<z/>", repeat("<for index=\"i\" start=\"0\" end=\"32\" incr=\"1\">\n", 3)},
        // <foreach>: all combinations, the first variable slowest.
        {"<foreach a='1,2' b='x,y,z'><e v='$(a)$(b)' n='$(FOREACH_COUNT)'/></foreach>",
         "<e n='0' v='1x'/><e n='1' v='1y'/><e n='2' v='1z'/><e n='3' v='2x'/><e n='4' v='2y'/><e n='5' v='2z'/>"},
        {"<define name='L' value='p;q'/><foreach v='a;\nb' split_by=';'><e v='$(v)'/></foreach>"
         "<foreach v='$(L)' split_by=';' expand_macros=''><f v='$(v)'/></foreach>",
         "<e v='a'/><e v='b'/><f v='p'/><f v='q'/>"},
        // Attributes go in name order: "a" is read before the exclusions, "z"
        // after them. An exclusion takes its values out of both, but an entry
        // that no list read so far holds gives a warning.
        {"<foreach a='alpha,beta,gamma,delta' exclude_entries='beta,omega,zeta' exclude_wildcard='*l*' "
         "z='zeta,eta,ilk'><e v='$(a)$(z)'/></foreach>",
         "<e v='gammaeta'/>",
         "exclude_entries cannot find entry named omega\nexclude_entries cannot find entry named zeta\n"},
        {"<foreach v='Ab,ab' exclude_wildcard='a*'><e v='$(v)'/></foreach>", "<e v='Ab'/>"},
        // <xmlput> copies the block from its definition on.
        {"<xmlput name='b'/><xmldef name='b'><x/><y/></xmldef><xmlput name='b'/><q><xmlput name='b'/></q>"
         "<xmldef name='b'><z/></xmldef><xmlput name='b'/>",
         "<xmlput name='b'/><x/><y/><q><x/><y/></q><z/>", "xmlput cannot fine xmldef named b\n"},
        {"<xmldef><a/></xmldef>", "<xmldef><a/></xmldef>"},
        // Without expansion the body is processed with the scope, unexpanded.
        {block + "<xmlput name='b' macros='B=1'/>", "<e v='$(A)$(B)'/>"},
        {block + "<xmlput name='b' macros='B=1;A=\\;\n' expand_macros=''/>", "<e v=';1'/><has/>"},
        {block + "<xmlput name='b'/>", "<e v='outer$(B)'/>", "", true},
        // Past the node limit processing stops at the directive: it and what
        // follows stay as written.
        {"<for index='i' start='0' end='1000000000' incr='1'><e/></for><if A='1'><kept/></if>",
         "<for end='1000000000' incr='1' index='i' start='0'><e/></for><if A='1'><kept/></if>",
         "<for> would make more than 1000000" + stops},
        {"<for index='i' start='0' end='1' incr='0'><e/></for>", "<for end='1' incr='0' index='i' start='0'><e/></for>",
         "<for> would make more than 1000000" + stops},
        {"<foreach" + sevenLists + "><x/></foreach>", "<foreach" + sevenLists + "><x/></foreach>",
         "<foreach> would make more than 1000000" + stops},
    };
    for (const Case &c : cases)
        check(c);
    check({"<for index='i' start='0' end='5' incr='1'><e/></for><for index='i' start='0' end='1' incr='1'><f/></for>",
           "<e/><e/><e/><e/><e/><for end='1' incr='1' index='i' start='0'><f/></for>",
           "<for> would make more than 5" + stops},
          5);
}

TEST(XMLPP2, LoadAndTrace) {
    TestDirectory scratch;
    // The macro list starts the scope and turns on expansion.
    const std::string file = scratch.write("a.xml", "<r v='$(A)' w='$(B:none)'><if A='x;y'><in/></if></r>");
    Document document, plainDocument, missing;
    EXPECT_TRUE(document.load(file, "A=x\\;y;B", false));
    EXPECT_EQ(document.tree(), "<r v='x;y' w=''><in/></r>");
    EXPECT_TRUE(plainDocument.load(file, "", false));
    EXPECT_EQ(plainDocument.tree(), "<r v='$(A)' w='$(B:none)'/>");
    EXPECT_FALSE(missing.load(scratch / "none.xml", "", false));
    EXPECT_EQ(missing.errorText, "couldn't read " + scratch / "none.xml");

    // The base class writes warnings to the trace.
    const std::string traceFile = scratch / "trace.txt";
    setTraceDestination(traceFile.c_str());
    EXPECT_TRUE(XMLPP2(nullptr).loadText("<r><define/></r>", false));
    setTraceDestination(nullptr);
    EXPECT_EQ(TestDirectory::read(traceFile), "warning: " + kPrefix + "missing name in <define>\n");
}

TEST(XMLPP2, Includes) {
    TestDirectory scratch;
    scratch.write("sub/part.xml", "<part k='1'><include filename='leaf.xml'/></part>");
    scratch.write("sub/leaf.xml", "<leaf/>");
    scratch.write("env.xml", "<envelope x='1'><a/><b/></envelope>");
    scratch.write("part.xml", "<part Name='old'><c/></part>");
    scratch.write("macros.xml", "<part v='$(A)$(B)'><e v='$(B)'/><define name='A' value='x'/></part>");
    scratch.write("linux.xml", "<os/>");
    scratch.write("x.xml", "<x/>");
    scratch.write("bad.xml", "<!DOCTYPE Bad>\n<a>\n</b>");
    scratch.write("empty.xml", "<!-- nothing -->");
    scratch.write("a.xml", "<a><include filename='b.xml'/><after/></a>");
    scratch.write("b.xml", "<b><include filename='./a.xml'/><include filename='b.xml'/></b>");
    // A pipe without a writer would block, a device might never end.
    ASSERT_EQ(mkfifo((scratch / "pipe").c_str(), 0600), 0);
    makeDirectories(scratch / "dir");
    const auto unread = [](const std::string &file) {
        return "error \"couldn't read " + file + "\" in include file " + file + " line:1\n";
    };
    const struct {
        std::string text, tree, warnings = "", macros = "";
    } cases[] = {
        // The included root takes the include's place; an envelope or no_root
        // leaves its children.
        {"<include filename='sub/part.xml'/><z/>", "<part k='1'><leaf/></part><z/>"},
        {"<include filename='env.xml'/><include filename='part.xml' no_root=''/>", "<a/><b/><c/>"},
        {"<include filename='part.xml' Name='N' x='1' inherit_attributes='Name;y'/>"
         "<include filename='part.xml' Name='N' inherit_attributes='Name' no_root=''/>",
         "<part Name='N'><c/></part><c/>"},
        {"<define name='A' value='a'/><include filename='macros.xml' macros='B=b' expand_macros='Yes'/>"
         "<include filename='macros.xml' macros='B=b'/>",
         "<part v='ab'><e v='b'/></part><part v='$(A)$(B)'><e v='$(B)'/></part>"},
        // With expansion on from the macro list, the scope itself serves.
        {"<include filename='macros.xml'/><e v='$(A)'/>", "<part v='1$(B)'><e v='$(B)'/></part><e v='1'/>", "", "A=1"},
        // The file name sees the system macros only.
        {"<define name='Mine' value='linux'/><include filename='$(HostOS).xml'/><include filename='$(Mine:x).xml'/>",
         "<os/><x/>"},
        {"<include/><include filename='bad.xml'><k/></include><include filename='empty.xml'/>",
         "<include/><include filename='bad.xml'><k/></include><include filename='empty.xml'/>",
         "missing filename in <include>\nerror \"tagName mismatch\" in include file " + scratch / "bad.xml" +
             " line:3\nerror: include file '" + scratch / "empty.xml" + "' is empty\n"},
        // Only regular files are read.
        {"<include filename='pipe'/><include filename='dir'/><include filename='/dev/zero'/>",
         "<include filename='pipe'/><include filename='dir'/><include filename='/dev/zero'/>",
         unread(scratch / "pipe") + unread(scratch / "dir") + unread("/dev/zero")},
        // A cycle is dropped; the same file twice is none.
        {"<include filename='a.xml'/>", "<a><b/><after/></a>",
         "include file " + scratch / "./a.xml" + " includes itself; dropped\ninclude file " + scratch / "b.xml" +
             " includes itself; dropped\n"},
        {"<include filename='x.xml'/><include filename='x.xml'/>", "<x/><x/>"},
    };
    for (const auto &c : cases) {
        Document document;
        EXPECT_TRUE(document.load(scratch.write("main.xml", "<r>" + c.text + "</r>"), c.macros, false));
        EXPECT_EQ(document.tree(), "<r>" + c.tree + "</r>") << c.text;
        EXPECT_EQ(document.warnings, c.warnings) << c.text;
    }
    // The document keeps its own doctype, and the last failed include's error.
    Document document;
    document.load(scratch.write("main.xml", "<!DOCTYPE Main>\n<r><include filename='bad.xml'/>"
                                            "<include filename='missing.xml'/></r>"),
                  "", false);
    EXPECT_EQ(document.doctype, "Main");
    EXPECT_EQ(document.errorText, "couldn't read " + scratch / "missing.xml");
    EXPECT_EQ(document.warnings, "error \"tagName mismatch\" in include file " + scratch / "bad.xml" + " line:3\n" +
                                     unread(scratch / "missing.xml"));
}

// Bounds: what any input may cost.

TEST(XMLPP2Bounds, IncludeDepthAndNodes) {
    TestDirectory scratch;
    // f0 includes f1, and so on up to f1001. From main.xml, f2 to f1001 are
    // 1,000 nested includes, which work; from f0, f1001 is one too many.
    for (int i = 0; i < 1001; ++i)
        scratch.write(concat("f", std::to_string(i)) + ".xml", concat("<envelope><n", std::to_string(i)) + "/><include filename='f" +
                                                            std::to_string(i + 1) + ".xml'/></envelope>");
    scratch.write("f1001.xml", "<last/>");
    Document fromMain, fromF0;
    ASSERT_TRUE(fromMain.load(scratch.write("main.xml", "<r><include filename='f2.xml'/></r>"), "", false));
    EXPECT_EQ(fromMain.warnings, "");
    EXPECT_TRUE(fromMain.tree().ends_with("<n1000/><last/></r>"));
    ASSERT_TRUE(fromF0.load(scratch / "f0.xml", "", false));
    EXPECT_EQ(fromF0.warnings, "include file " + scratch / "f1001.xml" + " is nested more than 1000 deep; dropped\n");
    EXPECT_TRUE(fromF0.tree().ends_with("<n1000/></envelope>"));

    // Each level includes the next twice: 2^30 leaves unless bounded.
    for (int i = 0; i < 30; ++i)
        scratch.write(concat("l", std::to_string(i)) + ".xml",
                      "<envelope>" + repeat(concat("<include filename='l", std::to_string(i + 1)) + ".xml'/>", 2) +
                          "</envelope>");
    scratch.write("l30.xml", "<leaf/>");
    Document doubling;
    doubling.limits.nodesMade = 10000;
    ASSERT_TRUE(doubling.load(scratch / "l0.xml", "", false));
    EXPECT_EQ(doubling.warnings, "<include> would make more than 10000" + stops);
}

TEST(XMLPP2Bounds, DeepTreesWithoutRecursion) {
    const int depth = 100000;
    Document document;
    ASSERT_TRUE(document.loadText(repeat("<e><if A=''>", depth) + "<define name='A' value='1'/><leaf v='$(A)'/>" +
                                      repeat("</if></e>", depth),
                                  true));
    EXPECT_EQ(document.tree(), repeat("<e>", depth) + "<leaf v='1'/>" + repeat("</e>", depth));

    // Nested bodies keep their content in order.
    check({repeat("<if A=''><a/>", depth) + repeat("</if><b/>", depth), repeat("<a/>", depth) + repeat("<b/>", depth)});
}

TEST(XMLPP2Bounds, CopiesExpansionAndScopesAreBounded) {
    // A block that puts itself: 500 copies of <x/>, and the put that would
    // have passed the limit.
    check({"<xmldef name='b'><x/><xmlput name='b'/></xmldef><xmlput name='b'/>",
           repeat("<x/>", 500) + "<xmlput name='b'/>", "<xmlput> would make more than 1000" + stops},
          1000);

    // Each define doubles the text of the one before.
    std::string text = "<r><define name='A0' value='xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx' expand_macros='Yes'/>";
    for (int i = 1; i < 40; ++i)
        text += concat("<define name='A", std::to_string(i)) + "' value='" + repeat(concat("$(A", std::to_string(i - 1)) + ")", 2) +
                "'/>";
    Document document;
    document.limits.expandedBytes = 1 << 20;
    ASSERT_TRUE(document.loadText(text + "<tail/></r>", false));
    EXPECT_EQ(document.warnings, "macro expansion made more than 1048576 bytes; processing stops\n");

    // A define at each of many levels copies the scope each time.
    text = "<r>";
    for (int i = 0; i < 20000; ++i)
        text += concat("<e><define name='M", std::to_string(i)) + "' value='v'/>";
    Document nested;
    nested.limits.scopeBytes = 1 << 24;
    ASSERT_TRUE(nested.loadText(text + repeat("</e>", 20000) + "</r>", false));
    EXPECT_EQ(nested.warnings, "local macros copied past 16777216 bytes; processing stops\n");
}
