#include "project/xml/xml_pp.h"

#include "support/date_time_macros.h"
#include "support/test_directory.h"
#include "support/trace.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

const std::string kPrefix = "XmlPP::processConditionals(): ";

std::string warning(const std::string &text) {
    return "warning: " + kPrefix + text + "\n";
}

// A pre-processor over files in a scratch directory, with the trace sent to
// a file there.
struct XmlPPTest : ::testing::Test {
    TestDirectory scratch;
    MacroTable macros;
    XmlPP reader{macros};
    std::string traceFile = scratch / "trace.txt";

    XmlPPTest() {
        macros.systemMacros()["HostOS"] = "linux";
        setTraceDestination(traceFile.c_str());
    }
    ~XmlPPTest() override { setTraceDestination(nullptr); }

    // Writes `text` as main.xml, loads it and returns the tree on one line,
    // with ' for " and without the blank that the writer puts in "<e a='1' />".
    std::string load(const std::string &text, const std::string &macroText = {}, bool expandAttributes = false) {
        scratch.write("main.xml", text);
        EXPECT_TRUE(reader.load(scratch / "main.xml", macroText, expandAttributes)) << reader.errorText;
        std::string out;
        if (reader.document.root)
            reader.document.write(out, 0, 0);
        for (size_t at = 0; (at = out.find("\" />", at)) != std::string::npos;)
            out.erase(at + 1, 1);
        std::replace(out.begin(), out.end(), '"', '\'');
        return out;
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

} // namespace

TEST_F(XmlPPTest, Documents) {
    scratch.write("sub/part.xml", "<part v='$(A)'>\n  <define name='A' value='in'/>\n  <include filename='leaf.xml'/>\n"
                                  "</part>");
    scratch.write("sub/leaf.xml", "<leaf/>");
    scratch.write("part.xml", "<part v='$(A)$(B)'><define name='A' value='changed'/></part>");
    scratch.write("linux.xml", "<os/>");
    scratch.write("notes.txt", std::string("a < b\nsecond\0hidden", 19));
    scratch.write("latin.txt", "caf\xE9");
    scratch.write("bad.xml", "<a>\n\n</b>");
    scratch.write("a.xml", "<a><include filename='main.xml'/></a>");
    reader.defaultMacros = {{"Default", "default"}, {"Listed", "default"}};
    const std::string noValue = warning("missing name and/or value in <define_macro>");
    const std::string notOpened = "error: XmlPP::processConditionals could not open include file ";
    // The children of a root <r>, before and after processing.
    const struct {
        std::string text, tree, trace = "", macroText = "";
        bool expandAttributes = false;
    } cases[] = {
        // Blank text is dropped, other text kept.
        {"\n  <a> x </a>\n  <!--c-->\n", "<a> x </a><!--c-->"},
        // A define holds for the rest of the document, outside its element too.
        {"<p><define name='A' value='1'/><define_macro name='B' value='2'/></p><if A='1'><a/></if><if B='2'><b/></if>"
         "<a v='$(A)$(B)'/>",
         "<p/><a/><b/><a v='12'/>", "", "", true},
        {"<define name='A'/><define_macro value='1'/><define name='' value='1'/><z/>", "<z/>",
         noValue + noValue + noValue},
        {"<define name='M' value='b'/><if M='a,b'><x/></if><ifnot M='a,b'><y/></ifnot><if Other=''><z/></if>"
         "<ifdef name='M'><d/></ifdef><ifndef name='M'><n/></ifndef><switch name='M'><case value='a'><ca/></case>"
         "<junk/><case value='c,b'><cb/></case><default><d1/></default></switch><switch name='Other'><default><d2/>"
         "</default></switch>",
         "<x/><z/><d/><cb/><d2/>"},
        {"<if a='1' b='2'><x/></if>", "<if a='1' b='2'><x/></if>", warning("one condition required for <if[not]>")},
        // The macro list is merged over the defaults.
        {"<e a='$(Default)' b='$(Listed)' c='$(C)'/>", "<e a='default' b='list' c=';'/>", "", "Listed=list;C=\\;",
         true},
        // expand_attributes names what to expand; with expansion on, it stays.
        {"<define name='A' value='1'/><e a='$(A)' b='$(A)' expand_attributes='a,c'/>", "<e a='1' b='$(A)' c=''/>"},
        {"<define name='A' value='1'/><e a='$(A)' expand_attributes='a'/>", "<e a='1' expand_attributes='a'/>", "",
         "", true},
        {"<define name='N' value='Big Name'/><p><expand_definition name='N'/></p><p><expand_definition name='N' "
         "lowercase='no' underscore_spaces=''/></p><p><expand_definition name='Missing' default='fallback'/></p>"
         "<p><expand_definition name='Missing'/></p>",
         "<p>Big Name</p><p>big_name</p><p>fallback</p><p/>"},
        // Includes are taken from the including file's directory; a define in
        // one holds for the rest of the document.
        {"<include filename='sub/part.xml'/><e v='$(A)' expand_attributes='v'/><include filename='sub/part.xml' "
         "no_root=''/>",
         "<part v='$(A)'><leaf/></part><e v='in'/><leaf/>"},
        // With macros the included file works on a copy of the map; without,
        // on the map itself.
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
        {"<include filename='a.xml'/>", "<a/>",
         warning("include file " + scratch / "main.xml" + " includes itself; dropped")},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(load("<r>" + c.text + "</r>", c.macroText, c.expandAttributes), "<r>" + c.tree + "</r>") << c.text;
        EXPECT_EQ(traced(), c.trace) << c.text;
    }
    // A clock macro that the map doesn't hold has its current value.
    const std::string year = load("<r><expand_definition name='DateYear'/></r>");
    std::string now;
    ASSERT_TRUE(expandDateTimeMacro("DateYear", now));
    EXPECT_EQ(year, "<r>" + now + "</r>");
}

TEST_F(XmlPPTest, IncludeDepthAndLoadFailures) {
    reader.limits.includeDepth = 1;
    scratch.write("b.xml", "<b><include filename='c.xml'/></b>");
    scratch.write("c.xml", "<c/>");
    EXPECT_EQ(load("<r><include filename='b.xml'/></r>"), "<r><b/></r>");
    EXPECT_EQ(traced(), warning("include file " + scratch / "c.xml" + " is nested more than 1 deep; dropped"));

    EXPECT_FALSE(reader.load(scratch / "none.xml", "", false));
    EXPECT_EQ(reader.errorText, "couldn't read " + scratch / "none.xml");
    EXPECT_FALSE(reader.load(scratch.write("bad.xml", "<a>\n</b>"), "", false));
    EXPECT_EQ(reader.errorText, "tagName mismatch");
    EXPECT_EQ(reader.errorLine, 2);
}

TEST_F(XmlPPTest, DeepNestingWithoutRecursion) {
    const int depth = 100000;
    std::string open, close;
    for (int i = 0; i < depth; ++i) {
        open += "<g><if A=''>";
        close += "</if></g>";
    }
    // The define holds for everything behind it, outside all the levels.
    load(open + "<define name='A' value='x'/>" + close + "\n");
    int levels = 0;
    for (const XMLNode *node = reader.document.root; node && node->toElement()->tagName == "g"; node = node->firstChild)
        ++levels;
    EXPECT_EQ(levels, depth);
}
