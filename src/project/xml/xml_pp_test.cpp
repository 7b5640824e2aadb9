#include "project/xml/xml_pp.h"
#include "project/xml/xmlpp2.h"

#include "support/date_time_macros.h"
#include "support/test_directory.h"
#include "support/text_split.h"
#include "support/trace.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>
#include <map>
#include <string>

namespace {

const std::string kPrefix = "XmlPP::processConditionals(): ";
const std::string stops = " copied and included nodes; processing stops\n";

// A document on one line, with ' for " and "<e a='1'/>" for "<e a='1' />".
std::string oneLine(XMLDocument &document) {
    std::string out;
    document.write(out, 0, 0);
    for (size_t at = 0; (at = out.find("\" />", at)) != std::string::npos;)
        out.erase(at + 1, 1);
    std::replace(out.begin(), out.end(), '"', '\'');
    return out;
}

// Made before the pre-processor, which keeps its address.
struct Macros {
    Macros() { systemMacros.systemMacros()["HostOS"] = "linux"; }
    MacroTable systemMacros;
};

std::string warning(const std::string &text) {
    return "warning: " + kPrefix + text + "\n";
}

// XmlPP over files in a scratch directory, with the trace sent to a file there.
struct XmlPPTest : ::testing::Test, Macros {
    TestDirectory scratch;
    XmlPP reader{systemMacros};
    std::string traceFile = scratch / "trace.txt";
    XmlPPTest() { setTraceDestination(traceFile.c_str()); }
    ~XmlPPTest() override { setTraceDestination(nullptr); }

    // Writes `text` as main.xml, loads it and returns the tree on one line.
    std::string load(const std::string &text, const std::string &macroText = {}, bool expandAttributes = false) {
        scratch.write("main.xml", text);
        EXPECT_TRUE(reader.load(scratch / "main.xml", macroText, expandAttributes)) << reader.errorText;
        return oneLine(reader.document);
    }
    // What was traced since the last call.
    std::string traced() {
        setTraceDestination(nullptr);
        const std::string text = TestDirectory::read(traceFile);
        scratch.write("trace.txt");
        setTraceDestination(traceFile.c_str());
        return text;
    }
};

// An XMLPP2 document that collects its warnings without their prefix.
struct Document : Macros, XMLPP2 {
    Document() : XMLPP2(&systemMacros) {}
    void warning(const std::string &text) override {
        warnings += (text.starts_with(kPrefix) ? text.substr(kPrefix.size()) : "!" + text) + "\n";
    }
    std::string tree() { return oneLine(*this); }
    std::string warnings;
};

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

TEST_F(XmlPPTest, Documents) {
    for (const auto &[name, content] : std::map<std::string, std::string>{
             {"part.xml", "<part v='$(A)$(B)'><define name='A' value='changed'/></part>"}, {"linux.xml", "<os/>"},
             {"notes.txt", std::string("a < b\nsecond\0hidden", 19)}, {"latin.txt", "caf\xE9"}, {"c.xml", "<c/>"},
             {"bad.xml", "<a>\n\n</b>"}, {"b.xml", "<b><include filename='c.xml'/></b>"}})
        scratch.write(name, content);
    reader.limits.includeDepth = 1;
    reader.defaultMacros = {{"Default", "default"}, {"Listed", "default"}};
    const std::string notOpened = "error: XmlPP::processConditionals could not open include file ";
    const struct {
        std::string text, tree, trace = "", macroText = "";
        bool expandAttributes = false;
    } cases[] = {
        // Blank text is dropped, other text kept.
        {"\n  <a> x </a>\n  <!--c-->\n", "<a> x </a><!--c-->"},
        {"<define name='A'/><define_macro value='1'/><define name='' value='1'/><z/>", "<z/>",
         repeat(warning("missing name and/or value in <define_macro>"), 3)},
        {"<define name='M' value='b'/><if M='a,b'><x/></if><ifnot M='a,b'><y/></ifnot><if Other=''><z/></if>"
         "<ifdef name='M'><d/></ifdef><ifndef name='M'><n/></ifndef><switch name='M'><case value='a'><ca/></case>"
         "<junk/><case value='c,b'><cb/></case><default><d1/></default></switch><switch name='Other'><default><d2/>"
         "</default></switch>",
         "<x/><z/><d/><cb/><d2/>"},
        {"<if a='1' b='2'><x/></if>", "<if a='1' b='2'><x/></if>", warning("one condition required for <if[not]>")},
        // The macro list is merged over the defaults.
        {"<e a='$(Default)' b='$(Listed)' c='$(C)'/>", "<e a='default' b='list' c=';'/>", "", "Listed=list;C=\\;",
         true},
        // expand_attributes names what to expand.
        {"<define name='A' value='1'/><e a='$(A)' b='$(A)' expand_attributes='a,c'/>", "<e a='1' b='$(A)' c=''/>"},
        {"<define name='N' value='Big Name'/><p><expand_definition name='N'/></p><p><expand_definition name='N' "
         "lowercase='no' underscore_spaces=''/></p><p><expand_definition name='Missing' default='fallback'/></p>"
         "<p><expand_definition name='Missing'/></p>",
         "<p>Big Name</p><p>big_name</p><p>fallback</p><p/>"},
        // With macros an include works on a copy of the map, else on the map.
        {"<define name='A' value='a'/><include filename='part.xml' macros='B=\nb' expand_macros=''/>"
         "<e v='$(A)' expand_attributes='v'/>",
         "<part v='ab'/><e v='a'/>"},
        {"<define name='A' value='a'/><include filename='part.xml'/><e v='$(A)' expand_attributes='v'/>",
         "<part v='a$(B)'/><e expand_attributes='v' v='changed'/>", "", "", true},
        // The file name is expanded only with expand_macros.
        {"<include filename='$(HostOS).xml' expand_macros=''/>", "<os/>"},
        {"<include filename='$(HostOS).xml'/>", "<include filename='$(HostOS).xml'/>",
         notOpened + scratch / "$(HostOS).xml\n"},
        {"<include type='text' filename='notes.txt'/><include type='text' filename='latin.txt' tag='p' class='c' id=''"
         " style='s' encoding='ISO-8859-1'/><include type='text' filename='notes.txt' encoding='UTF-8' no_root=''/>",
         "<pre>a &lt; b&#xa;second</pre><p class='c' style='s'>caf&#xc3;&#xa9;</p>a &lt; b&#xa;second&#x0;hidden"},
        {"<include type='text' filename='latin.txt' encoding='EBCDIC'/>", "<pre>caf&#xe9;</pre>",
         warning("unknown encoding EBCDIC of include file " + scratch / "latin.txt" + "; read as ASCII")},
        {"<include><k/></include><include filename='bad.xml'/><include filename='none.xml'/>",
         "<include><k/></include><include filename='bad.xml'/><include filename='none.xml'/>",
         "error: " + kPrefix + "missing filename in <include>\nerror: XmlPP: error reading XML - tagName mismatch on "
             "line 3 column 0 of include file " + scratch / "bad.xml" + "\n" + notOpened + scratch / "none.xml\n"},
        {"<include filename='main.xml'/><z/>", "<z/>",
         warning("include file " + scratch / "main.xml" + " includes itself; dropped")},
        {"<include filename='b.xml'/>", "<b/>",
         warning("include file " + scratch / "c.xml" + " is nested more than 1 deep; dropped")},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(load("<r>" + c.text + "</r>", c.macroText, c.expandAttributes), "<r>" + c.tree + "</r>") << c.text;
        EXPECT_EQ(traced(), c.trace) << c.text;
    }
    // A clock macro that the map doesn't hold has its current value.
    std::string year;
    ASSERT_TRUE(expandDateTimeMacro("DateYear", year));
    EXPECT_EQ(load("<r><expand_definition name='DateYear'/></r>"), "<r>" + year + "</r>");
    // Failures to load.
    EXPECT_FALSE(reader.load(scratch / "none.xml", "", false));
    EXPECT_EQ(reader.errorText, "couldn't read " + scratch / "none.xml");
    EXPECT_FALSE(reader.load(scratch.write("bad.xml", "<a>\n</b>"), "", false));
    EXPECT_EQ(reader.errorText, "tagName mismatch");
    EXPECT_EQ(reader.errorLine, 2);
    // XMLPP2 itself writes its warnings to the trace too.
    EXPECT_TRUE(XMLPP2(nullptr).loadText("<r><define/></r>", false));
    EXPECT_EQ(traced(), warning("missing name in <define>"));
}

TEST_F(XmlPPTest, DeepNestingWithoutRecursion) {
    // The define holds for everything behind it, outside all the levels.
    const int depth = 100000;
    EXPECT_EQ(load(concat("<r>", repeat("<g><if A=''>", depth)) + "<define name='A' value='x'/>" +
                   repeat("</if></g>", depth) + "<if A='x'><y/></if></r>"),
              concat("<r>", repeat("<g>", depth - 1)) + "<g/>" + repeat("</g>", depth - 1) + "<y/></r>");
}

TEST(XMLPP2, Directives) {
    std::string sevenLists; // 10^7 combinations
    for (char name : std::string("abcdefg"))
        sevenLists += std::string(" ") + name + "='1,2,3,4,5,6,7,8,9,10'";
    const std::string block = "<define name='A' value='outer'/><xmldef name='b'><e v='$(A)$(B)'/><ifdef name='B'>"
                              "<has/></ifdef></xmldef>";
    const Case cases[] = {
        // <if> compares with each item; an undefined macro is "".
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
        // <ifex> sees the local macros only; without an expression it is plain.
        {"<define name='N' value='4'/><ifex expression='$(N) &gt; 3'><big/></ifex><ifex expression='$(N) &lt; 3'>"
         "<small/></ifex><ifex expression='$(StudioDir) == 0'><s/></ifex><ifex expression='('><bad/></ifex>",
         "<big/>"},
        {"<ifex><a/></ifex><ifex expression=''/>", "<ifex><a/></ifex><ifex expression=''/>"},
        // <switch>: the first matching case, else the last default.
        {"<define name='M' value='2'/><switch name='M'><default><d1/></default><case value='1,2'><one/></case>"
         "<other><o/></other><case value='2'><two/></case><default><d2/></default></switch>",
         "<one/>"},
        {"<switch name='M'><default><d1/></default><case value='1'/><default><d2/></default></switch>", "<d2/>"},
        {"<switch name='M'><case value='1'><one/></case></switch><z/>", "<z/>"},
        {"<switch name='M'><case value='1,'><e/></case></switch>", "<e/>"},
        // A define is seen by what follows it in its list, and ends with it.
        {"<define name='X' value='out'/><if X='out'><define name='X' value='in'/><a v='$(X)'/></if><b v='$(X)'/>",
         "<a v='in'/><b v='out'/>", "", true},
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
        // <for> counts from start up to end.
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
        // Missing parts drop the loop; the warning shows it as the code has it.
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
        // <xmlput> copies the block from its definition on.
        {"<xmlput name='b'/><xmldef name='b'><x/><y/></xmldef><xmlput name='b'/><q><xmlput name='b'/></q>"
         "<xmldef name='b'><z/></xmldef><xmlput name='b'/>",
         "<xmlput name='b'/><x/><y/><q><x/><y/></q><z/>", "xmlput cannot fine xmldef named b\n"},
        {"<xmldef><a/></xmldef>", "<xmldef><a/></xmldef>"},
        // Without expansion the body is processed with the scope, unexpanded.
        {block + "<xmlput name='b' macros='B=1'/>", "<e v='$(A)$(B)'/>"},
        {block + "<xmlput name='b' macros='B=1;A=\\;\n' expand_macros=''/>", "<e v=';1'/><has/>"},
        {block + "<xmlput name='b'/>", "<e v='outer$(B)'/>", "", true},
        // Past the node limit processing stops at the directive.
        {"<for index='i' start='0' end='1' incr='0'><e/></for>", "<for end='1' incr='0' index='i' start='0'><e/></for>",
         "<for> would make more than 1000000" + stops},
        {"<foreach" + sevenLists + "><x/></foreach>", "<foreach" + sevenLists + "><x/></foreach>",
         "<foreach> would make more than 1000000" + stops},
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

TEST(XMLPP2, Includes) {
    TestDirectory scratch;
    for (const auto &[name, content] : std::map<std::string, std::string>{
             {"sub/part.xml", "<part k='1'><include filename='leaf.xml'/></part>"}, {"sub/leaf.xml", "<leaf/>"},
             {"env.xml", "<envelope x='1'><a/><b/></envelope>"}, {"part.xml", "<part Name='old'><c/></part>"},
             {"macros.xml", "<part v='$(A)$(B)'><e v='$(B)'/><define name='A' value='x'/></part>"},
             {"linux.xml", "<os/>"}, {"x.xml", "<x/>"}, {"bad.xml", "<!DOCTYPE Bad>\n<a>\n</b>"},
             {"empty.xml", "<!-- nothing -->"}, {"a.xml", "<a><include filename='b.xml'/><after/></a>"},
             {"b.xml", "<b><include filename='./a.xml'/><include filename='b.xml'/></b>"}})
        scratch.write(name, content);
    // A pipe without a writer would block, a device might never end.
    ASSERT_EQ(mkfifo((scratch / "pipe").c_str(), 0600), 0);
    makeDirectories(scratch / "dir");
    const auto unread = [](const std::string &path) {
        return "error \"couldn't read " + path + "\" in include file " + path + " line:1\n";
    };
    const struct {
        std::string text, tree, warnings = "", macros = "";
    } cases[] = {
        // The macro list starts the scope and turns on expansion.
        {"<e v='$(A)' w='$(B:none)'/><if A='x;y'><in/></if>", "<e v='x;y' w=''/><in/>", "", "A=x\\;y;B"},
        // The included root takes the include's place, or its children do.
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
        // A cycle is dropped.
        {"<include filename='a.xml'/>", "<a><b/><after/></a>",
         "include file " + scratch / "./a.xml" + " includes itself; dropped\ninclude file " + scratch / "b.xml" +
             " includes itself; dropped\n"},
    };
    // The document keeps its own doctype whatever the included files have.
    for (const auto &c : cases) {
        Document loaded;
        EXPECT_TRUE(loaded.load(scratch.write("main.xml", "<!DOCTYPE Main>\n<r>" + c.text + "</r>"), c.macros, false));
        EXPECT_EQ(loaded.tree(), "<!DOCTYPE Main>\n<r>" + c.tree + "</r>") << c.text;
        EXPECT_EQ(loaded.warnings, c.warnings) << c.text;
    }
}

// Bounds: what any input may cost.

TEST(XMLPP2Bounds, IncludeDepthAndNodes) {
    // f0 includes f1, and so on up to f1001: 1,000 nested includes work, and
    // f1001 is one too many. Each l file includes the next one twice.
    TestDirectory scratch;
    for (int i = 0; i < 1001; ++i) {
        const std::string n = std::to_string(i), next = std::to_string(i + 1);
        scratch.write("f" + n + ".xml", "<envelope><n" + n + "/><include filename='f" + next + ".xml'/></envelope>");
        if (i < 30)
            scratch.write("l" + n + ".xml",
                          concat("<envelope>", repeat("<include filename='l" + next + ".xml'/>", 2)) + "</envelope>");
    }
    scratch.write("f1001.xml", "<last/>");
    scratch.write("l30.xml", "<leaf/>");
    Document chain, doubling;
    ASSERT_TRUE(chain.load(scratch / "f0.xml", "", false));
    EXPECT_EQ(chain.warnings, "include file " + scratch / "f1001.xml" + " is nested more than 1000 deep; dropped\n");
    EXPECT_TRUE(chain.tree().ends_with("<n1000/></envelope>"));
    // 2^30 leaves unless bounded.
    doubling.limits.nodesMade = 10000;
    ASSERT_TRUE(doubling.load(scratch / "l0.xml", "", false));
    EXPECT_EQ(doubling.warnings, "<include> would make more than 10000" + stops);
}

TEST(XMLPP2Bounds, DeepTreesCopiesExpansionAndScopes) {
    // Nested bodies keep their order; a define holds however deep.
    const int depth = 100000;
    check({repeat("<e><if A=''><a/>", depth) + "<define name='A' value='1'/><leaf v='$(A)'/>" +
               repeat("</if><b/></e>", depth),
           repeat("<e><a/>", depth) + "<leaf v='1'/>" + repeat("<b/></e>", depth), "", true});
    // Past the node limit the directive and what follows stay as written.
    check({"<for index='i' start='0' end='5' incr='1'><e/></for><for index='i' start='0' end='1' incr='1'><f/></for>",
           "<e/><e/><e/><e/><e/><for end='1' incr='1' index='i' start='0'><f/></for>",
           "<for> would make more than 5" + stops},
          5);
    // A block that puts itself: 500 copies, and the put past the limit.
    check({"<xmldef name='b'><x/><xmlput name='b'/></xmldef><xmlput name='b'/>",
           repeat("<x/>", 500) + "<xmlput name='b'/>", "<xmlput> would make more than 1000" + stops},
          1000);
    // Each define doubles the text of the one before.
    std::string text = "<r><define name='A0' value='xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx' expand_macros='Yes'/>";
    for (int i = 1; i < 40; ++i) {
        const std::string n = std::to_string(i), previous = std::to_string(i - 1);
        text += "<define name='A" + n + "' value='" + repeat("$(A" + previous + ")", 2) + "'/>";
    }
    Document doubling;
    doubling.limits.expandedBytes = 1 << 20;
    ASSERT_TRUE(doubling.loadText(text + "<tail/></r>", false));
    EXPECT_EQ(doubling.warnings, "macro expansion made more than 1048576 bytes; processing stops\n");
    // A define at each of many levels copies the scope each time.
    text = "<r>";
    for (int i = 0; i < 20000; ++i)
        text += concat("<e><define name='M", std::to_string(i)) + "' value='v'/>";
    Document nested;
    nested.limits.scopeBytes = 1 << 24;
    ASSERT_TRUE(nested.loadText(text + repeat("</e>", 20000) + "</r>", false));
    EXPECT_EQ(nested.warnings, "local macros copied past 16777216 bytes; processing stops\n");
}
