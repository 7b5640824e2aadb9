#include "project/xml/xmlpp2.h"

#include "support/test_directory.h"
#include "support/trace.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <string>
#include <vector>

namespace {

using Strings = std::vector<std::string>;

// Written text without the blank that the writer puts in "<e a=\"1\" />".
std::string compact(std::string text) {
    for (size_t at = 0; (at = text.find("\" />", at)) != std::string::npos;)
        text.erase(at + 1, 1);
    return text;
}

// Made before the document, which keeps its address.
struct Macros {
    Macros() { systemMacros.systemMacros()["HostOS"] = "linux"; }
    MacroTable systemMacros;
};

// A document that collects its warnings.
class Document : public Macros, public XMLPP2 {
public:
    Document() : XMLPP2(&systemMacros) {}
    void warning(const std::string &text) override { warnings.push_back(text); }

    // The tree on one line.
    std::string tree() {
        std::string out;
        if (root)
            write(out, 0, 0);
        return compact(out);
    }

    Strings warnings;
};

// What a text becomes, with the warnings it gives.
struct Result {
    std::string tree;
    Strings warnings;
};

Result processed(const std::string &text, bool expandAttributes = false) {
    Document document;
    EXPECT_TRUE(document.loadText(text, expandAttributes)) << document.errorText;
    return {document.tree(), document.warnings};
}

std::string tree(const std::string &text, bool expandAttributes = false) {
    const Result result = processed(text, expandAttributes);
    EXPECT_EQ(result.warnings, Strings()) << text;
    return result.tree;
}

const std::string kPrefix = "XmlPP::processConditionals(): ";

} // namespace

TEST(XMLPP2Conditionals, IfComparesWithEachItemOfTheList) {
    EXPECT_EQ(tree("<r><define name=\"DEBUG\" value=\"2\"/>"
                   "<if DEBUG=\"1,2\"><a/><b/></if><if DEBUG=\"1,3\"><c/></if><if DEBUG=\"\"><d/></if></r>"),
              "<r><a/><b/></r>");
    // An undefined macro is the empty string, which only an empty item holds.
    EXPECT_EQ(tree("<r><if DEBUG=\"1,2\"><a/></if><if DEBUG=\"\"><b/></if><if DEBUG=\"x,\"><c/></if></r>"),
              "<r><b/><c/></r>");
    EXPECT_EQ(tree("<r><define name=\"M\" value=\"b\"/><ifnot M=\"a,c\"><x/></ifnot><ifnot M=\"a,b\"><y/></ifnot></r>"),
              "<r><x/></r>");
}

TEST(XMLPP2Conditionals, IfWithoutExactlyOneConditionIsAPlainElement) {
    const Result result = processed("<r><if><a/></if><ifnot A=\"1\" B=\"2\"><ifdef name=\"X\"/></ifnot></r>");
    EXPECT_EQ(result.tree, "<r><if><a/></if><ifnot A=\"1\" B=\"2\"/></r>");
    EXPECT_EQ(result.warnings, Strings(2, kPrefix + "one condition required for <if[not]>"));
}

TEST(XMLPP2Conditionals, IfdefAndIfndef) {
    EXPECT_EQ(tree("<r><define name=\"A\" value=\"\"/>"
                   "<ifdef name=\"A\"><a/></ifdef><ifdef name=\"B\"><b/></ifdef>"
                   "<ifndef name=\"A\"><c/></ifndef><ifndef name=\"B\"><d/></ifndef></r>"),
              "<r><a/><d/></r>");
    // A missing name is the empty name.
    EXPECT_EQ(tree("<r><ifdef><a/></ifdef><ifndef><b/></ifndef></r>"), "<r><b/></r>");
}

TEST(XMLPP2Conditionals, KeptBodiesAreProcessedAndTheLoopGoesOnBehindThem) {
    EXPECT_EQ(tree("<r><if A=\"\"><ifdef name=\"B\"><x/></ifdef><a><if A=\"\"><b/></if></a></if><c/></r>"),
              "<r><a><b/></a><c/></r>");
}

TEST(XMLPP2Switch, FirstMatchingCaseOrTheLastDefault) {
    const std::string cases = "<switch name=\"M\"><default><d1/></default><case value=\"1,2\"><one/></case>"
                              "<other><o/></other><case value=\"2\"><two/></case><default><d2/></default></switch>";
    EXPECT_EQ(tree("<r><define name=\"M\" value=\"2\"/>" + cases + "</r>"), "<r><one/></r>");
    EXPECT_EQ(tree("<r><define name=\"M\" value=\"9\"/>" + cases + "<z/></r>"), "<r><d2/><z/></r>");
    EXPECT_EQ(tree("<r><switch name=\"M\"><case value=\"1\"><one/></case></switch><z/></r>"), "<r><z/></r>");
    // Undefined is the empty value.
    EXPECT_EQ(tree("<r><switch name=\"M\"><case value=\"1,\"><e/></case></switch></r>"), "<r><e/></r>");
}

TEST(XMLPP2Scopes, ADefineIsSeenByWhatFollowsWithinItsList) {
    EXPECT_EQ(tree("<r><a v=\"$(X)\"/><define name=\"X\" value=\"1\"/><b v=\"$(X)\"><c v=\"$(X)\"/></b></r>", true),
              "<r><a v=\"$(X)\"/><b v=\"1\"><c v=\"1\"/></b></r>");
    EXPECT_EQ(tree("<r><p><define name=\"X\" value=\"1\"/><a v=\"$(X)\"/></p><b v=\"$(X)\"/></r>", true),
              "<r><p><a v=\"1\"/></p><b v=\"$(X)\"/></r>");
}

TEST(XMLPP2Scopes, ADefineInAKeptBodyEndsWithTheBody) {
    EXPECT_EQ(tree("<r><define name=\"X\" value=\"out\"/>"
                   "<if X=\"out\"><define name=\"X\" value=\"in\"/><a v=\"$(X)\"/></if><b v=\"$(X)\"/></r>",
                   true),
              "<r><a v=\"in\"/><b v=\"out\"/></r>");
}

TEST(XMLPP2Define, ValueIsStoredAsWritten) {
    EXPECT_EQ(tree("<r><define name=\"A\" value=\"$(B)\"/><define name=\"B\" value=\"b\"/>"
                   "<if A=\"$(B)\"><yes/></if></r>"),
              "<r><yes/></r>");
}

TEST(XMLPP2Define, Warnings) {
    const Result result = processed("<r><define value=\"1\"/><define name=\"\" value=\"1\"/>"
                                    "<define name=\"A\"/><ifdef name=\"A\"><a/></ifdef></r>");
    EXPECT_EQ(result.tree, "<r/>");
    EXPECT_EQ(result.warnings, (Strings{kPrefix + "missing name in <define>", kPrefix + "missing name in <define>",
                                        kPrefix + "missing value or expression in <define>"}));
}

TEST(XMLPP2Define, ExpandMacrosSwitchesExpansionFromHereOn) {
    EXPECT_EQ(tree("<r><define name=\"X\" value=\"1\"/><a v=\"$(X)\"/>"
                   "<define name=\"Y\" value=\"2\" expand_macros=\"Yes\"/><b v=\"$(X)$(Y)\"><c v=\"$(X)\"/></b>"
                   "<define name=\"Z\" value=\"3\" expand_macros=\"yes\"/><d v=\"$(X)\"/></r>"),
              "<r><a v=\"$(X)\"/><b v=\"12\"><c v=\"1\"/></b><d v=\"$(X)\"/></r>");
}

TEST(XMLPP2Define, Expressions) {
    EXPECT_EQ(tree("<r><define name=\"N\" value=\"6\"/><define name=\"A\" expression=\"$(N) * 7\"/>"
                   "<define name=\"H\" hex_expression=\"$(A) + 213\"/><define name=\"Z\" hex_expression=\"0\"/>"
                   "<x a=\"$(A)\" h=\"$(H)\" z=\"$(Z)\"/></r>",
                   true),
              "<r><x a=\"42\" h=\"0xFF\" z=\"0x0\"/></r>");
    // A failed evaluation sets nothing.
    EXPECT_EQ(tree("<r><define name=\"A\" value=\"old\"/><define name=\"A\" expression=\"(\"/>"
                   "<define name=\"B\" hex_expression=\"$(Unknown)\"/><x a=\"$(A)\" b=\"$(B)\"/></r>",
                   true),
              "<r><x a=\"old\" b=\"$(B)\"/></r>");
}

TEST(XMLPP2Ifex, EvaluatesWithTheLocalMacrosOnly) {
    EXPECT_EQ(tree("<r><define name=\"N\" value=\"4\"/><ifex expression=\"$(N) &gt; 3\"><big/></ifex>"
                   "<ifex expression=\"$(N) &lt; 3\"><small/></ifex><ifex expression=\"$(StudioDir) == 0\"><s/></ifex>"
                   "<ifex expression=\"(\"><bad/></ifex></r>"),
              "<r><big/></r>");
    // Without an expression it is a plain element.
    EXPECT_EQ(tree("<r><ifex><a/></ifex><ifex expression=\"\"/></r>"), "<r><ifex><a/></ifex><ifex expression=\"\"/></r>");
}

TEST(XMLPP2For, CopiesWithTheIndexMacros) {
    EXPECT_EQ(tree("<r><for index=\"i\" start=\"0\" end=\"3\" incr=\"1\"><e n=\"$(i)\" a=\"$(i_alpha)\"/></for><z/></r>"),
              "<r><e a=\"A\" n=\"0\"/><e a=\"B\" n=\"1\"/><e a=\"C\" n=\"2\"/><z/></r>");
    EXPECT_EQ(tree("<r><for index=\"i\" start=\"3\" end=\"3\" incr=\"1\"><e/></for><for index=\"i\" start=\"5\" "
                   "end=\"3\" incr=\"1\"><e/></for></r>"),
              "<r/>");
    EXPECT_EQ(tree("<r><for index=\"k\" start=\"10\" end=\"0x22\" incr=\"12\"><e h=\"$(k_hex)\" o=\"$(j)\"/></for></r>"),
              "<r><e h=\"0xA\" o=\"$(j)\"/><e h=\"0x16\" o=\"$(j)\"/></r>");
}

TEST(XMLPP2For, AddSubAndMul) {
    EXPECT_EQ(tree("<r><for index=\"i\" start=\"1\" end=\"3\" incr=\"1\" add=\"16\" mul=\"4\">"
                   "<e ap=\"$(i_ap)\" hex=\"$(i_ap_hex)\"/></for></r>"),
              "<r><e ap=\"20\" hex=\"0x14\"/><e ap=\"24\" hex=\"0x18\"/></r>");
    EXPECT_EQ(tree("<r><define name=\"S\" value=\"5\"/><for index=\"i\" start=\"0\" end=\"3\" incr=\"2\" sub=\"$(S)\">"
                   "<e ap=\"$(i_ap)\" hex=\"$(i_ap_hex)\"/></for></r>"),
              "<r><e ap=\"-5\" hex=\"0x-5\"/><e ap=\"-3\" hex=\"0x-3\"/></r>");
}

TEST(XMLPP2For, CopiesAreProcessedWithTheOuterScope) {
    EXPECT_EQ(tree("<r><define name=\"M\" value=\"1\"/><for index=\"i\" start=\"0\" end=\"3\" incr=\"1\">"
                   "<if M=\"$(i)\"><hit n=\"$(i)\"/></if></for></r>"),
              "<r><hit n=\"1\"/></r>");
}

TEST(XMLPP2For, MissingPartsWarnAndDrop) {
    const std::string warning = kPrefix + "<for index=\"i\" start=\"0\" end=\"32\" incr=\"1\">";
    const Result result = processed("<r><for start=\"0\" end=\"3\" incr=\"1\"><e/></for>"
                                    "<for index=\"i\" start=\"0\" end=\"3\" incr=\"1\"/>"
                                    "<for index=\"i\" start=\"0\" end=\"(\" incr=\"1\"><e/></for><z/></r>");
    EXPECT_EQ(result.tree, "<r><z/></r>");
    EXPECT_EQ(result.warnings, Strings(3, warning));
}

TEST(XMLPP2Foreach, AllCombinationsFirstVariableSlowest) {
    EXPECT_EQ(tree("<r><foreach a=\"1,2\" b=\"x,y,z\"><e v=\"$(a)$(b)\" n=\"$(FOREACH_COUNT)\"/></foreach></r>"),
              "<r><e n=\"0\" v=\"1x\"/><e n=\"1\" v=\"1y\"/><e n=\"2\" v=\"1z\"/>"
              "<e n=\"3\" v=\"2x\"/><e n=\"4\" v=\"2y\"/><e n=\"5\" v=\"2z\"/></r>");
}

TEST(XMLPP2Foreach, SeparatorLineBreaksAndExpansion) {
    EXPECT_EQ(tree("<r><define name=\"L\" value=\"p;q\"/><foreach v=\"a;\nb\" split_by=\";\"><e v=\"$(v)\"/></foreach>"
                   "<foreach v=\"$(L)\" split_by=\";\" expand_macros=\"\"><f v=\"$(v)\"/></foreach></r>"),
              "<r><e v=\"a\"/><e v=\"b\"/><f v=\"p\"/><f v=\"q\"/></r>");
}

TEST(XMLPP2Foreach, Exclusions) {
    // Attributes go in name order: "a" is read before the exclusions, "z"
    // after them. An exclusion takes its values out of both, but an entry
    // that no list read so far holds gives a warning.
    const Result result =
        processed("<r><foreach a=\"alpha,beta,gamma,delta\" exclude_entries=\"beta,omega,zeta\" exclude_wildcard=\"*l*\""
                  " z=\"zeta,eta,ilk\"><e v=\"$(a)$(z)\"/></foreach></r>");
    EXPECT_EQ(result.tree, "<r><e v=\"gammaeta\"/></r>");
    EXPECT_EQ(result.warnings, (Strings{kPrefix + "exclude_entries cannot find entry named omega",
                                        kPrefix + "exclude_entries cannot find entry named zeta"}));
    EXPECT_EQ(tree("<r><foreach v=\"Ab,ab\" exclude_wildcard=\"a*\"><e v=\"$(v)\"/></foreach></r>"),
              "<r><e v=\"Ab\"/></r>");
}

TEST(XMLPP2Xmldef, PutCopiesTheBlockFromItsDefinitionOn) {
    const Result result = processed("<r><xmlput name=\"b\"/><xmldef name=\"b\"><x/><y/></xmldef>"
                                    "<xmlput name=\"b\"/><q><xmlput name=\"b\"/></q>"
                                    "<xmldef name=\"b\"><z/></xmldef><xmlput name=\"b\"/></r>");
    EXPECT_EQ(result.tree, "<r><xmlput name=\"b\"/><x/><y/><q><x/><y/></q><z/></r>");
    EXPECT_EQ(result.warnings, Strings{kPrefix + "xmlput cannot fine xmldef named b"});
    EXPECT_EQ(tree("<r><xmldef><a/></xmldef></r>"), "<r><xmldef><a/></xmldef></r>");
}

TEST(XMLPP2Xmldef, MacrosOfAPut) {
    const std::string block = "<r><define name=\"A\" value=\"outer\"/><xmldef name=\"b\"><e v=\"$(A)$(B)\"/>"
                              "<ifdef name=\"B\"><has/></ifdef></xmldef>";
    // Without expansion the body is processed with the scope, unexpanded.
    EXPECT_EQ(tree(block + "<xmlput name=\"b\" macros=\"B=1\"/></r>"), "<r><e v=\"$(A)$(B)\"/></r>");
    EXPECT_EQ(tree(block + "<xmlput name=\"b\" macros=\"B=1;A=\\;\n\" expand_macros=\"\"/></r>"),
              "<r><e v=\";1\"/><has/></r>");
    EXPECT_EQ(tree(block + "<xmlput name=\"b\"/></r>", true), "<r><e v=\"outer$(B)\"/></r>");
}

TEST(XMLPP2Top, DirectivesCanReplaceTheRoot) {
    EXPECT_EQ(tree("<if A=\"\"><a/><b/></if>"), "<a/>");
    Document document;
    EXPECT_TRUE(document.loadText("<define name=\"A\" value=\"1\"/>", false));
    EXPECT_EQ(document.root, nullptr);
}

TEST(XMLPP2Load, TheMacroListStartsTheScopeAndTurnsOnExpansion) {
    TestDirectory scratch;
    const std::string file = scratch.write("a.xml", "<r v=\"$(A)\" w=\"$(B:none)\"><if A=\"x;y\"><in/></if></r>");
    Document document;
    EXPECT_TRUE(document.load(file, "A=x\\;y;B", false));
    EXPECT_EQ(document.tree(), "<r v=\"x;y\" w=\"\"><in/></r>");
    Document plainDocument;
    EXPECT_TRUE(plainDocument.load(file, "", false));
    EXPECT_EQ(plainDocument.tree(), "<r v=\"$(A)\" w=\"$(B:none)\"/>");
    Document missing;
    EXPECT_FALSE(missing.load(scratch / "none.xml", "", false));
    EXPECT_EQ(missing.errorText, "couldn't read " + scratch / "none.xml");
}

TEST(XMLPP2Warning, TheBaseWritesToTheTrace) {
    TestDirectory scratch;
    const std::string traceFile = scratch / "trace.txt";
    setTraceDestination(traceFile.c_str());
    {
        XMLPP2 document(nullptr);
        EXPECT_TRUE(document.loadText("<r><define/></r>", false));
    }
    setTraceDestination(nullptr);
    EXPECT_EQ(TestDirectory::read(traceFile), "warning: " + kPrefix + "missing name in <define>\n");
}

// Includes, with files in a scratch directory.
struct XMLPP2Include : ::testing::Test {
    TestDirectory scratch;

    Result load(const std::string &file, const std::string &macros = {}, std::size_t nodesMade = 1000000) {
        Document document;
        document.limits.nodesMade = nodesMade;
        EXPECT_TRUE(document.load(scratch / file, macros, false)) << document.errorText;
        return {document.tree(), document.warnings};
    }
};

TEST_F(XMLPP2Include, TheIncludedRootTakesThePlace) {
    scratch.write("main.xml", "<r><include filename=\"sub/part.xml\"/><z/></r>");
    scratch.write("sub/part.xml", "<part k=\"1\"><include filename=\"leaf.xml\"/></part>");
    scratch.write("sub/leaf.xml", "<leaf/>");
    const Result result = load("main.xml");
    EXPECT_EQ(result.tree, "<r><part k=\"1\"><leaf/></part><z/></r>");
    EXPECT_EQ(result.warnings, Strings());
}

TEST_F(XMLPP2Include, EnvelopeAndNoRootLeaveTheChildren) {
    scratch.write("main.xml", "<r><include filename=\"env.xml\"/><include filename=\"part.xml\" no_root=\"\"/></r>");
    scratch.write("env.xml", "<envelope x=\"1\"><a/><b/></envelope>");
    scratch.write("part.xml", "<part><c/></part>");
    EXPECT_EQ(load("main.xml").tree, "<r><a/><b/><c/></r>");
}

TEST_F(XMLPP2Include, InheritedAttributes) {
    scratch.write("main.xml", "<r><include filename=\"part.xml\" Name=\"N\" x=\"1\" inherit_attributes=\"Name;y\"/>"
                              "<include filename=\"part.xml\" Name=\"N\" inherit_attributes=\"Name\" no_root=\"\"/></r>");
    scratch.write("part.xml", "<part Name=\"old\"><c/></part>");
    EXPECT_EQ(load("main.xml").tree, "<r><part Name=\"N\"><c/></part><c/></r>");
}

TEST_F(XMLPP2Include, MacrosOfAnInclude) {
    scratch.write("main.xml", "<r><define name=\"A\" value=\"a\"/>"
                              "<include filename=\"part.xml\" macros=\"B=b\" expand_macros=\"Yes\"/>"
                              "<include filename=\"part.xml\" macros=\"B=b\"/></r>");
    scratch.write("part.xml", "<part v=\"$(A)$(B)\"><e v=\"$(B)\"/><define name=\"A\" value=\"x\"/></part>");
    EXPECT_EQ(load("main.xml").tree,
              "<r><part v=\"ab\"><e v=\"b\"/></part><part v=\"$(A)$(B)\"><e v=\"$(B)\"/></part></r>");
    // With expansion on from the macro list, the scope itself serves.
    scratch.write("second.xml", "<r><include filename=\"part.xml\"/><e v=\"$(A)\"/></r>");
    EXPECT_EQ(load("second.xml", "A=1").tree, "<r><part v=\"1$(B)\"><e v=\"$(B)\"/></part><e v=\"1\"/></r>");
}

TEST_F(XMLPP2Include, TheFileNameSeesTheSystemMacrosOnly) {
    scratch.write("main.xml", "<r><define name=\"Mine\" value=\"linux\"/><include filename=\"$(HostOS).xml\"/>"
                              "<include filename=\"$(Mine:x).xml\"/></r>");
    scratch.write("linux.xml", "<os/>");
    scratch.write("x.xml", "<x/>");
    EXPECT_EQ(load("main.xml").tree, "<r><os/><x/></r>");
}

TEST_F(XMLPP2Include, Failures) {
    scratch.write("main.xml", "<!DOCTYPE Main>\n<r><include/><include filename=\"bad.xml\"><k/></include>"
                              "<include filename=\"empty.xml\"/><include filename=\"missing.xml\"/></r>");
    scratch.write("bad.xml", "<!DOCTYPE Bad>\n<a>\n</b>");
    scratch.write("empty.xml", "<!-- nothing -->");
    Document document;
    ASSERT_TRUE(document.load(scratch / "main.xml", "", false));
    EXPECT_EQ(document.tree(), "<!DOCTYPE Main>\n<r><include/><include filename=\"bad.xml\"><k/></include>"
                               "<include filename=\"empty.xml\"/><include filename=\"missing.xml\"/></r>");
    EXPECT_EQ(document.warnings,
              (Strings{kPrefix + "missing filename in <include>",
                       kPrefix + "error \"tagName mismatch\" in include file " + scratch / "bad.xml" + " line:3",
                       kPrefix + "error: include file '" + scratch / "empty.xml" + "' is empty",
                       kPrefix + "error \"couldn't read " + scratch / "missing.xml" + "\" in include file " +
                           scratch / "missing.xml" + " line:1"}));
    // The document keeps its own doctype, and the last failed include's error.
    EXPECT_EQ(document.doctype, "Main");
    EXPECT_EQ(document.errorText, "couldn't read " + scratch / "missing.xml");
}

TEST_F(XMLPP2Include, OnlyRegularFilesAreRead) {
    // A pipe without a writer would block, a device might never end.
    ASSERT_EQ(mkfifo((scratch / "pipe").c_str(), 0600), 0);
    makeDirectories(scratch / "dir");
    scratch.write("main.xml", "<r><include filename=\"pipe\"/><include filename=\"dir\"/>"
                              "<include filename=\"/dev/zero\"/></r>");
    const Result result = load("main.xml");
    EXPECT_EQ(result.warnings.size(), 3u);
    EXPECT_EQ(result.warnings[0], kPrefix + "error \"couldn't read " + scratch / "pipe" + "\" in include file " +
                                      scratch / "pipe" + " line:1");
    EXPECT_EQ(result.warnings[2], kPrefix + "error \"couldn't read /dev/zero\" in include file /dev/zero line:1");
}

TEST_F(XMLPP2Include, ACycleIsDropped) {
    scratch.write("a.xml", "<a><include filename=\"b.xml\"/><after/></a>");
    scratch.write("b.xml", "<b><include filename=\"./a.xml\"/><include filename=\"b.xml\"/></b>");
    const Result result = load("a.xml");
    EXPECT_EQ(result.tree, "<a><b/><after/></a>");
    EXPECT_EQ(result.warnings, (Strings{kPrefix + "include file " + scratch / "./a.xml" + " includes itself; dropped",
                                        kPrefix + "include file " + scratch / "b.xml" + " includes itself; dropped"}));
}

TEST_F(XMLPP2Include, TheSameFileTwiceIsNoCycle) {
    scratch.write("a.xml", "<a><include filename=\"b.xml\"/><include filename=\"b.xml\"/></a>");
    scratch.write("b.xml", "<b/>");
    EXPECT_EQ(load("a.xml").tree, "<a><b/><b/></a>");
}

TEST_F(XMLPP2Include, DepthLimit) {
    // f0 includes f1, and so on up to f1001. From main.xml, f2 to f1001 are
    // 1,000 nested includes, which work; from f0, f1001 is one too many.
    const int depth = 1001;
    for (int i = 0; i < depth; ++i)
        scratch.write("f" + std::to_string(i) + ".xml",
                      "<envelope><n" + std::to_string(i) + "/><include filename=\"f" + std::to_string(i + 1) +
                          ".xml\"/></envelope>");
    scratch.write("f" + std::to_string(depth) + ".xml", "<last/>");
    scratch.write("main.xml", "<r><include filename=\"f2.xml\"/></r>");
    Result result = load("main.xml");
    EXPECT_EQ(result.warnings, Strings());
    EXPECT_NE(result.tree.find("<n1000/><last/></r>"), std::string::npos);

    result = load("f0.xml");
    EXPECT_EQ(result.warnings, Strings{kPrefix + "include file " + scratch / "f1001.xml" +
                                       " is nested more than 1000 deep; dropped"});
    EXPECT_NE(result.tree.find("<n1000/></envelope>"), std::string::npos);
}

// Bounds: what any input may cost.

TEST(XMLPP2Bounds, DeepTreesWithoutRecursion) {
    const int depth = 100000;
    std::string text;
    for (int i = 0; i < depth; ++i)
        text += "<e><if A=\"\">";
    text += "<define name=\"A\" value=\"1\"/><leaf v=\"$(A)\"/>";
    for (int i = 0; i < depth; ++i)
        text += "</if></e>";
    Document document;
    ASSERT_TRUE(document.loadText(text, true));
    const XMLNode *node = document.root;
    int levels = 0;
    while (node && node->firstChild && node->toElement()->tagName == "e") {
        node = node->firstChild;
        ++levels;
    }
    EXPECT_EQ(levels, depth);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(*node->toElement()->attribute("v"), "1");
}

TEST(XMLPP2Bounds, NestedBodiesKeepTheirContentInOrder) {
    const int depth = 100000;
    std::string text = "<r>";
    for (int i = 0; i < depth; ++i)
        text += "<if A=\"\"><a/>";
    for (int i = 0; i < depth; ++i)
        text += "</if><b/>";
    Document document;
    ASSERT_TRUE(document.loadText(text + "</r>", false));
    // 100,000 <a/> then 100,000 <b/>, all children of the root.
    int as = 0, bs = 0;
    bool ordered = true;
    for (const XMLNode *child = document.root->firstChild; child; child = child->nextSibling) {
        const std::string &tag = child->toElement()->tagName;
        if (tag == "a") {
            ordered = ordered && bs == 0;
            ++as;
        } else if (tag == "b") {
            ++bs;
        }
    }
    EXPECT_EQ(as, depth);
    EXPECT_EQ(bs, depth);
    EXPECT_TRUE(ordered);
    EXPECT_EQ(document.root->lastChild->toElement()->tagName, "b");
}

TEST(XMLPP2Bounds, CopiesStopAtTheNodeLimit) {
    const std::string stop = " copied and included nodes; processing stops";
    Result result = processed("<r><for index=\"i\" start=\"0\" end=\"1000000000\" incr=\"1\"><e/></for>"
                              "<if A=\"1\"><kept/></if></r>");
    // Processing stops at the loop: it and what follows stay as written.
    EXPECT_EQ(result.tree, "<r><for end=\"1000000000\" incr=\"1\" index=\"i\" start=\"0\"><e/></for>"
                           "<if A=\"1\"><kept/></if></r>");
    EXPECT_EQ(result.warnings, Strings{kPrefix + "<for> would make more than 1000000" + stop});

    result = processed("<r><for index=\"i\" start=\"0\" end=\"1\" incr=\"0\"><e/></for></r>");
    EXPECT_EQ(result.warnings, Strings{kPrefix + "<for> would make more than 1000000" + stop});

    result = processed("<r><foreach a=\"1,2,3,4,5,6,7,8,9,10\" b=\"1,2,3,4,5,6,7,8,9,10\" c=\"1,2,3,4,5,6,7,8,9,10\" "
                       "d=\"1,2,3,4,5,6,7,8,9,10\" e=\"1,2,3,4,5,6,7,8,9,10\" f=\"1,2,3,4,5,6,7,8,9,10\" "
                       "g=\"1,2,3,4,5,6,7,8,9,10\"><x/></foreach></r>");
    EXPECT_EQ(result.warnings, Strings{kPrefix + "<foreach> would make more than 1000000" + stop});

}

TEST(XMLPP2Bounds, ABlockThatPutsItselfStops) {
    Document document;
    document.limits.nodesMade = 1000;
    ASSERT_TRUE(document.loadText("<r><xmldef name=\"b\"><x/><xmlput name=\"b\"/></xmldef><xmlput name=\"b\"/></r>",
                                  false));
    EXPECT_EQ(document.warnings, Strings{kPrefix + "<xmlput> would make more than 1000 copied and included nodes; "
                                                   "processing stops"});
    // 500 copies of <x/>, and the put that would have passed the limit.
    const std::string tree = document.tree();
    EXPECT_EQ(tree.find("<xmlput name=\"b\"/></r>"), tree.size() - 22);
    size_t copies = 0;
    for (size_t at = 0; (at = tree.find("<x/>", at)) != std::string::npos; at += 4)
        ++copies;
    EXPECT_EQ(copies, 500u);
}

TEST(XMLPP2Bounds, LimitsCanBeSet) {
    Document document;
    document.limits.nodesMade = 5;
    ASSERT_TRUE(document.loadText("<r><for index=\"i\" start=\"0\" end=\"5\" incr=\"1\"><e/></for>"
                                  "<for index=\"i\" start=\"0\" end=\"1\" incr=\"1\"><f/></for></r>",
                                  false));
    EXPECT_EQ(document.tree(), "<r><e/><e/><e/><e/><e/><for end=\"1\" incr=\"1\" index=\"i\" start=\"0\"><f/></for></r>");
    EXPECT_EQ(document.warnings.size(), 1u);
}

TEST_F(XMLPP2Include, IncludesCountTowardsTheNodeLimit) {
    // Each level includes the next twice: 2^30 leaves unless bounded.
    for (int i = 0; i < 30; ++i)
        scratch.write("l" + std::to_string(i) + ".xml", "<envelope><include filename=\"l" + std::to_string(i + 1) +
                                                            ".xml\"/><include filename=\"l" + std::to_string(i + 1) +
                                                            ".xml\"/></envelope>");
    scratch.write("l30.xml", "<leaf/>");
    const Result result = load("l0.xml", "", 10000);
    EXPECT_EQ(result.warnings,
              Strings{kPrefix + "<include> would make more than 10000 copied and included nodes; processing stops"});
}

TEST(XMLPP2Bounds, ExpansionAndScopeCopiesAreBounded) {
    // Each define doubles the text of the one before.
    std::string text = "<r><define name=\"A0\" value=\"xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx\" expand_macros=\"Yes\"/>";
    for (int i = 1; i < 40; ++i)
        text += "<define name=\"A" + std::to_string(i) + "\" value=\"$(A" + std::to_string(i - 1) + ")$(A" +
                std::to_string(i - 1) + ")\"/>";
    Document document;
    document.limits.expandedBytes = 1 << 20;
    ASSERT_TRUE(document.loadText(text + "<tail/></r>", false));
    EXPECT_EQ(document.warnings, Strings{kPrefix + "macro expansion made more than 1048576 bytes; processing stops"});

    // A define at each of many levels copies the scope each time.
    text = "<r>";
    for (int i = 0; i < 20000; ++i)
        text += "<e><define name=\"M" + std::to_string(i) + "\" value=\"v\"/>";
    for (int i = 0; i < 20000; ++i)
        text += "</e>";
    Document nested;
    nested.limits.scopeBytes = 1 << 24;
    ASSERT_TRUE(nested.loadText(text + "</r>", false));
    EXPECT_EQ(nested.warnings, Strings{kPrefix + "local macros copied past 16777216 bytes; processing stops"});
}
