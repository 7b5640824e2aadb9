#include "project/xml/xml_pp.h"

#include "support/date_time_macros.h"
#include "support/test_directory.h"
#include "support/trace.h"

#include <gtest/gtest.h>

#include <string>

namespace {

const std::string kPrefix = "XmlPP::processConditionals(): ";

// Written text without the blank that the writer puts in "<e a=\"1\" />".
std::string compact(std::string text) {
    for (size_t at = 0; (at = text.find("\" />", at)) != std::string::npos;)
        text.erase(at + 1, 1);
    return text;
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

    // Writes `text` as main.xml, loads it and returns the tree on one line.
    std::string load(const std::string &text, const std::string &macroText = {}, bool expandAttributes = false) {
        scratch.write("main.xml", text);
        EXPECT_TRUE(reader.load(scratch / "main.xml", macroText, expandAttributes)) << reader.errorText;
        std::string out;
        if (reader.document.root)
            reader.document.write(out, 0, 0);
        return compact(out);
    }
    std::string traced() {
        setTraceDestination(nullptr);
        const std::string text = TestDirectory::read(traceFile);
        setTraceDestination(traceFile.c_str());
        return text;
    }
};

} // namespace

TEST_F(XmlPPTest, BlankTextIsDroppedAndOtherTextKept) {
    EXPECT_EQ(load("<r>\n  <a> x </a>\n  <!--c-->\n</r>\n"), "<r><a> x </a><!--c--></r>");
}

TEST_F(XmlPPTest, DefinesHoldForTheRestOfTheDocument) {
    EXPECT_EQ(load("<r><p><define name=\"A\" value=\"1\"/><define_macro name=\"B\" value=\"2\"/></p>"
                   "<if A=\"1\"><a/></if><if B=\"2\"><b/></if><a v=\"$(A)$(B)\"/></r>",
                   "", true),
              "<r><p/><a/><b/><a v=\"12\"/></r>");
    EXPECT_EQ(traced(), "");
}

TEST_F(XmlPPTest, DefineWarnings) {
    EXPECT_EQ(load("<r><define name=\"A\"/><define_macro value=\"1\"/><define name=\"\" value=\"1\"/><z/></r>"),
              "<r><z/></r>");
    const std::string line = "warning: " + kPrefix + "missing name and/or value in <define_macro>\n";
    EXPECT_EQ(traced(), line + line + line);
}

TEST_F(XmlPPTest, Conditionals) {
    EXPECT_EQ(load("<r><define name=\"M\" value=\"b\"/><if M=\"a,b\"><x/></if><ifnot M=\"a,b\"><y/></ifnot>"
                   "<if Other=\"\"><z/></if><ifdef name=\"M\"><d/></ifdef><ifndef name=\"M\"><n/></ifndef>"
                   "<switch name=\"M\"><case value=\"a\"><ca/></case><junk/><case value=\"c,b\"><cb/></case>"
                   "<default><d1/></default></switch><switch name=\"Other\"><default><d2/></default></switch></r>"),
              "<r><x/><z/><d/><cb/><d2/></r>");
    EXPECT_EQ(load("<r><if a=\"1\" b=\"2\"><x/></if></r>"), "<r><if a=\"1\" b=\"2\"><x/></if></r>");
    EXPECT_EQ(traced(), "warning: " + kPrefix + "one condition required for <if[not]>\n");
}

TEST_F(XmlPPTest, TheMacroListMergesOverTheDefaults) {
    reader.defaultMacros = {{"A", "default"}, {"B", "default"}};
    EXPECT_EQ(load("<r a=\"$(A)\" b=\"$(B)\" c=\"$(C)\"/>", "B=list;C=\\;", true),
              "<r a=\"default\" b=\"list\" c=\";\"/>");
}

TEST_F(XmlPPTest, ExpandAttributesNamesWhatToExpand) {
    EXPECT_EQ(load("<r><define name=\"A\" value=\"1\"/>"
                   "<e a=\"$(A)\" b=\"$(A)\" expand_attributes=\"a,c\"/></r>"),
              "<r><e a=\"1\" b=\"$(A)\" c=\"\"/></r>");
    // With expansion on, the attribute stays and everything is expanded.
    EXPECT_EQ(load("<r><define name=\"A\" value=\"1\"/><e a=\"$(A)\" expand_attributes=\"a\"/></r>", "", true),
              "<r><e a=\"1\" expand_attributes=\"a\"/></r>");
}

TEST_F(XmlPPTest, ExpandDefinition) {
    EXPECT_EQ(load("<r><define name=\"N\" value=\"Big Name\"/>"
                   "<p><expand_definition name=\"N\"/></p>"
                   "<p><expand_definition name=\"N\" lowercase=\"no\" underscore_spaces=\"\"/></p>"
                   "<p><expand_definition name=\"Missing\" default=\"fallback\"/></p>"
                   "<p><expand_definition name=\"Missing\"/></p></r>"),
              "<r><p>Big Name</p><p>big_name</p><p>fallback</p><p/></r>");
    // A clock macro that the map doesn't hold has its current value.
    const std::string year = load("<r><expand_definition name=\"DateYear\"/></r>");
    std::string now;
    ASSERT_TRUE(expandDateTimeMacro("DateYear", now));
    EXPECT_EQ(year, "<r>" + now + "</r>");
}

TEST_F(XmlPPTest, XmlInclude) {
    scratch.write("sub/part.xml", "<part v=\"$(A)\">\n  <define name=\"A\" value=\"in\"/>\n  <include filename=\"leaf.xml\"/>\n</part>");
    scratch.write("sub/leaf.xml", "<leaf/>");
    EXPECT_EQ(load("<r><include filename=\"sub/part.xml\"/><e v=\"$(A)\" expand_attributes=\"v\"/>"
                   "<include filename=\"sub/part.xml\" no_root=\"\"/></r>"),
              "<r><part v=\"$(A)\"><leaf/></part><e v=\"in\"/><leaf/></r>");
    EXPECT_EQ(traced(), "");
}

TEST_F(XmlPPTest, IncludeMacros) {
    scratch.write("part.xml", "<part v=\"$(A)$(B)\"><define name=\"A\" value=\"changed\"/></part>");
    // With macros the included file works on a copy of the map.
    EXPECT_EQ(load("<r><define name=\"A\" value=\"a\"/><include filename=\"part.xml\" macros=\"B=\nb\" expand_macros=\"\"/>"
                   "<e v=\"$(A)\" expand_attributes=\"v\"/></r>"),
              "<r><part v=\"ab\"/><e v=\"a\"/></r>");
    // Without, on the map itself.
    EXPECT_EQ(load("<r><define name=\"A\" value=\"a\"/><include filename=\"part.xml\"/>"
                   "<e v=\"$(A)\" expand_attributes=\"v\"/></r>",
                   "", true),
              "<r><part v=\"a$(B)\"/><e expand_attributes=\"v\" v=\"changed\"/></r>");
}

TEST_F(XmlPPTest, TheFileNameIsExpandedOnlyWithExpandMacros) {
    scratch.write("linux.xml", "<os/>");
    EXPECT_EQ(load("<r><include filename=\"$(HostOS).xml\" expand_macros=\"\"/></r>"), "<r><os/></r>");
    EXPECT_EQ(load("<r><include filename=\"$(HostOS).xml\"/></r>"), "<r><include filename=\"$(HostOS).xml\"/></r>");
    EXPECT_EQ(traced(), "error: XmlPP::processConditionals could not open include file " + scratch / "$(HostOS).xml\n");
}

TEST_F(XmlPPTest, TextInclude) {
    scratch.write("notes.txt", std::string("a < b\nsecond\0hidden", 19));
    scratch.write("latin.txt", "caf\xE9");
    EXPECT_EQ(load("<r><include type=\"text\" filename=\"notes.txt\"/>"
                   "<include type=\"text\" filename=\"latin.txt\" tag=\"p\" class=\"c\" id=\"\" style=\"s\" "
                   "encoding=\"ISO-8859-1\"/><include type=\"text\" filename=\"notes.txt\" encoding=\"UTF-8\" "
                   "no_root=\"\"/></r>"),
              "<r><pre>a &lt; b&#xa;second</pre><p class=\"c\" style=\"s\">caf&#xc3;&#xa9;</p>"
              "a &lt; b&#xa;second&#x0;hidden</r>");
    EXPECT_EQ(load("<r><include type=\"text\" filename=\"latin.txt\" encoding=\"EBCDIC\"/></r>"),
              "<r><pre>caf&#xe9;</pre></r>");
    EXPECT_EQ(traced(), "warning: " + kPrefix + "unknown encoding EBCDIC of include file " + scratch / "latin.txt" +
                            "; read as ASCII\n");
}

TEST_F(XmlPPTest, IncludeErrors) {
    scratch.write("bad.xml", "<a>\n\n</b>");
    EXPECT_EQ(load("<r><include><k/></include><include filename=\"bad.xml\"/><include filename=\"none.xml\"/></r>"),
              "<r><include><k/></include><include filename=\"bad.xml\"/><include filename=\"none.xml\"/></r>");
    EXPECT_EQ(traced(), "error: " + kPrefix + "missing filename in <include>\n"
                        "error: XmlPP: error reading XML - tagName mismatch on line 3 column 0 of include file " +
                            scratch / "bad.xml" + "\n"
                            "error: XmlPP::processConditionals could not open include file " +
                            scratch / "none.xml" + "\n");
}

TEST_F(XmlPPTest, CyclesAndDepth) {
    scratch.write("a.xml", "<a><include filename=\"main.xml\"/></a>");
    EXPECT_EQ(load("<r><include filename=\"a.xml\"/></r>"), "<r><a/></r>");
    EXPECT_EQ(traced(),
              "warning: " + kPrefix + "include file " + scratch / "main.xml" + " includes itself; dropped\n");
    reader.limits.includeDepth = 1;
    scratch.write("b.xml", "<b><include filename=\"c.xml\"/></b>");
    scratch.write("c.xml", "<c/>");
    EXPECT_EQ(load("<r><include filename=\"b.xml\"/></r>"), "<r><b/></r>");
    EXPECT_EQ(traced(), "warning: " + kPrefix + "include file " + scratch / "c.xml" +
                            " is nested more than 1 deep; dropped\n");
}

TEST_F(XmlPPTest, LoadFailures) {
    EXPECT_FALSE(reader.load(scratch / "none.xml", "", false));
    EXPECT_EQ(reader.errorText, "couldn't read " + scratch / "none.xml");
    scratch.write("bad.xml", "<a>\n</b>");
    EXPECT_FALSE(reader.load(scratch / "bad.xml", "", false));
    EXPECT_EQ(reader.errorText, "tagName mismatch");
    EXPECT_EQ(reader.errorLine, 2);
}

TEST_F(XmlPPTest, DeepNestingWithoutRecursion) {
    const int depth = 100000;
    std::string text;
    for (int i = 0; i < depth; ++i)
        text += "<g><if A=\"\">";
    text += "<define name=\"A\" value=\"x\"/>";
    for (int i = 0; i < depth; ++i)
        text += "</if></g>";
    // The define holds for everything behind it, outside all the levels.
    load(text + "\n");
    const XMLNode *node = reader.document.root;
    int levels = 0;
    for (; node && node->toElement() && node->toElement()->tagName == "g"; node = node->firstChild)
        ++levels;
    EXPECT_EQ(levels, depth);
    EXPECT_EQ(load("<r><g><define name=\"A\" value=\"x\"/></g><if A=\"x\"><seen/></if></r>"), "<r><g/><seen/></r>");
}
