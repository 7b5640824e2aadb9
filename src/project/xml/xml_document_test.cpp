#include "project/xml/qxml_document.h"
#include "project/xml/xml_writer.h"

#include "support/test_directory.h"
#include "support/text_split.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace {

std::string repeat(const std::string &text, int times) {
    std::string result;
    while (times-- > 0)
        result += text;
    return result;
}

// A compact picture of a subtree: elements as tag[attributes](children), data
// as "text", comments as !text, CDATA as [text]; "@n" for a node found on line
// n other than 0.
std::string shape(const XMLNode *node) {
    std::string result;
    if (const XMLElement *element = node->toElement()) {
        result = element->tagName;
        const char *separator = "[";
        for (const auto &[name, value] : element->attributes()) {
            result += separator + name + (value ? "=" + *value : "");
            separator = ",";
        }
        result += *separator == ',' ? "]" : "";
    } else {
        const std::string &text = static_cast<const XMLTextNode *>(node)->text();
        const XMLNode::Kind kind = node->kind();
        result = kind == XMLNode::Kind::Data      ? "\"" + text + "\""
                 : kind == XMLNode::Kind::Comment ? "!" + text
                                                  : "[" + text + "]";
    }
    if (node->line != 0)
        result += concat("@", std::to_string(node->line));
    for (const XMLNode *child = node->firstChild; child; child = child->nextSibling) {
        result += child == node->firstChild ? '(' : ',';
        result += shape(child);
        if (!child->nextSibling)
            result += ')';
    }
    return result;
}

std::string written(XMLDocument &document, int indent = 2, int lineWidth = 75) {
    std::string out;
    document.write(out, indent, lineWidth);
    return out;
}

} // namespace

TEST(XMLParser, Documents) {
    // The tree is "" when there is no root; a failed parse has none either.
    const struct {
        const char *text, *tree, *error = "";
        int errorLine = 0;
        bool keepText = false;
    } cases[] = {
        // Attribute values need quotes; names without a value are dropped.
        {"<a b=1 c=\"2\"/>", "a[c=2]"},
        {"<a b c='x\"y' d = \"z\" e/>", "a[c=x\"y,d=z]"},
        {"<a b=x/>", "a"},
        {"<a _x=\"1\" :y=\"2\" -z9=\"3\"/>", "a[-z9=3,:y=2,_x=1]"},
        // '.' isn't a name character, so it starts a bad name.
        {"<a _x=\"1\" :y=\"2\" -z9.=\"3\"/>", "", "bad tagName"},
        {"<a b=\"1\" b=\"2\"/>", "a[b=2]"},
        {"<a b=\"1\r\n2\">\n<c/></a>", "a[b=1\r\n2](c@2)"},
        // A value running to the end leaves no root.
        {"<a b=\"xyz", ""},
        // A bad name is an error on the line where it is found.
        {"<solution>\n  <project\n\n \"x\"/>\n</solution>", "", "bad tagName", 3},
        {"<a 1b=\"x\"/>", "", "bad tagName"},
        {"<a>\n<>", "", "bad tagName", 1},
        // An end tag closes by prefix, and an empty one closes anything.
        {"<project><a/></proj>", "project(a)"},
        {"<solution>\n<project>\n</projects>\n</solution>", "", "tagName mismatch", 2},
        {"<a><b></></>", "a(b)"},
        {"<a></a  \n >\n<b/>", "b@2"},
        // A slash in a start tag reads an end tag name.
        {"<ab/a>", "ab"},
        {"<a/b>", "", "tagName mismatch"},
        {"<a x=\"1\"/ >", "a[x=1]"},
        // At the top, stray end tags, text and declarations are passed over;
        // the last closed element is the root.
        {"</x>\n<a/>", "a@1"},
        {"<a><b></b>", ""},
        {"<a/><b><c/></b>", "b(c)"},
        {"  \n ", ""},
        {"junk <a/> more", "a"},
        {"<?xml version=\"1.0\" encoding='UTF-8'?>\n<!DOCTYPE  Tarnbench_Project_File >\n<solution/>", "solution@2"},
        {"<!DOCTYPE x [\n<!ENTITY y \"z\">\n]>\n<a/>", "a@3"},
        {"<?xml-stylesheet href=\"a\"?><?foo version=\"9\"?><!ELEMENT a\n>text<a/>", "a@1"},
        // keepText keeps every run of character data, also empty ones.
        {"<a>\r\n  <b>x&amp;y\r</b>\n  <c/>\n</a>", "a(\"\n  \",b@1(\"x&y\"@1),\"\n  \"@1,c@2,\"\n\"@2)", "", 0, true},
        {"<a>\r\n  <b>x&amp;y\r</b>\n  <c/>\n</a>", "a(b@1,c@2)"},
        {"<a><b/></a>", "a(\"\",b,\"\")", "", 0, true},
        // Comments need keepText and an open element; CDATA sections the latter.
        {"<!-- top -->\n<a><!--in\nside--><b/></a><!-- after -->", "a@1(\"\"@1,!in\nside@1,\"\"@2,b@2,\"\"@2)", "", 0,
         true},
        {"<!-- top -->\n<a><!--in\nside--><b/></a><!-- after -->", "a@1(b@2)"},
        {"<![CDATA[top]]><a><![CDATA[x<y>]]z]]><b/></a>", "a([x<y>]]z],b)"},
        {"<![CDATA[top]]><a><![CDATA[x<y>]]z]]><b/></a>", "a(\"\",[x<y>]]z],\"\",b,\"\")", "", 0, true},
    };
    for (const auto &c : cases) {
        XMLDocument document(c.keepText);
        EXPECT_EQ(document.parse(c.text), !*c.error) << c.text;
        EXPECT_EQ(document.root ? shape(document.root) : "", c.tree) << c.text;
        EXPECT_EQ(document.errorText, c.error) << c.text;
        EXPECT_EQ(document.errorLine, c.errorLine) << c.text;
    }
    // Each parse starts from an empty document.
    XMLDocument document;
    ASSERT_TRUE(document.parse("<?xml version=\"1\"?><!DOCTYPE d><a/>"));
    ASSERT_FALSE(document.parse("<b><c></d></b>"));
    EXPECT_FALSE(document.root || document.doctype || document.version);
    ASSERT_TRUE(document.parse("<e/>"));
    EXPECT_EQ(document.errorText, "");
}

TEST(XMLParser, DecodesEntitiesAndCharacterReferences) {
    const struct {
        std::string encoded, decoded;
    } cases[] = {
        {"&lt;&gt;&amp;&quot;&apos;", "<>&\"'"}, {"&#65;&#x41;", "AA"}, {"&#xc3;&#xa9;", "\xc3\xa9"},
        // Unknown or unterminated references stay as they are.
        {"&unknown;", "&unknown;"}, {"&lt", "&lt"}, {"&amp", "&amp"}, {"a&b", "a&b"}, {"x&", "x&"}, {"&#65", "&#65"},
        // A reference keeps the low byte of its value, whatever its digits.
        {"&#;", std::string(1, '\0')}, {"&#x;", std::string(1, '\0')}, {"&#x1ff;", "\xff"}, {"&#321;", "A"},
        {"&#x4g;", "\x50"}, {"&#1a;", "\x14"}, {"&#4!;", "("}, {"&#X41;", ")"}, {"&#&#65;", "\x41"},
        // Many references without a semicolon stay text, in linear time.
        {repeat("&#", 100000), repeat("&#", 100000)},
    };
    for (const auto &c : cases) {
        XMLDocument inValue, inText(true);
        ASSERT_TRUE(inValue.parse("<a v=\"" + c.encoded + "\"/>"));
        EXPECT_EQ(shape(inValue.root), "a[v=" + c.decoded + "]") << c.encoded.substr(0, 20);
        ASSERT_TRUE(inText.parse("<a>" + c.encoded + "</a>"));
        EXPECT_EQ(shape(inText.root), "a(\"" + c.decoded + "\")") << c.encoded.substr(0, 20);
    }
}

TEST(XMLParser, HundredThousandNestedElementsReadAndWritten) {
    const int depth = 100000;
    XMLDocument document;
    ASSERT_TRUE(document.parse(repeat("<e>\n", depth) + repeat("</e>", depth)));
    int levels = 0;
    const XMLNode *deepest = document.root;
    for (const XMLNode *node = document.root; node; node = node->firstChild, ++levels)
        deepest = node;
    EXPECT_EQ(levels, depth);
    EXPECT_EQ(deepest->line, depth - 1);
    EXPECT_EQ(written(document, 0), repeat("<e>", depth - 1) + "<e/>" + repeat("</e>", depth - 1));
}

TEST(XMLWriter, ParsedTextsWrittenBack) {
    // "<" + tag + each ` name="value"`: 1 + 1 + (1+4+v1) + (1+4+v2) at depth 0.
    const std::string fits(75 - 2 - 6 - 5, 'x');
    const struct {
        std::string text, written = ""; // empty: the text itself
        bool keepText = false;
        int indent = 2, width = 75;
    } cases[] = {
        // A solution file round-trips byte for byte.
        {"<!DOCTYPE Tarnbench_Project_File>\n"
         "<solution Name=\"Blink\" target=\"8\" version=\"2\">\n"
         "  <project Name=\"Blink\">\n"
         "    <configuration\n"
         "      Name=\"Common\"\n"
         "      build_intermediate_directory=\"Output/$(Configuration)/Obj\"\n"
         "      project_type=\"Executable\" />\n"
         "  </project>\n"
         "  <configuration Name=\"Debug\" build_quietly=\"No\" />\n"
         "</solution>\n"},
        {"<?xml version=\"1.0\" encoding='UTF-8'?>\n<!DOCTYPE  Tarnbench_Project_File >\n<solution/>",
         "<?xml  version=\"1.0\" encoding=\"UTF-8\" ?>\n<!DOCTYPE Tarnbench_Project_File>\n<solution/>\n"},
        {"<?xml version=1.0 encoding = \"latin1\" standalone='yes'?><a/>", "<?xml  encoding=\"latin1\" ?>\n<a/>\n"},
        {"<?xml version='a\"b'?><!DOCTYPE d>", "<?xml  version='a\"b' ?>\n<!DOCTYPE d>\n"},
        // An internal subset gives no doctype.
        {"<!DOCTYPE x [ <!ENTITY y \"z\"> ]><a/>", "<a/>\n"},
        {"<a></a>", "<a/>\n"},
        {"<a x='1'></a>", "<a x=\"1\" />\n"},
        {"<a>text</a>", "<a/>\n"},
        {"<a>t&lt;xt</a>", "<a>t&lt;xt</a>\n", true},
        // The white space before the first child stands for all children.
        {"<a>\n  <b>x</b>\n</a>", "<a>&#xa;  </a>\n", true},
        {"<a><b><c/></b></a>", "<a><b><c/></b></a>", false, 0},
        // Attributes go on lines of their own when the line passes the width.
        {"<e a=\"" + fits + "\" b=\"y\"/>", "<e a=\"" + fits + "\" b=\"y\" />\n"},
        {"<e a=\"" + fits + "x\" b=\"y\"/>", "<e\n  a=\"" + fits + "x\"\n  b=\"y\" />\n"},
        {"<p><e a=\"" + fits.substr(2) + "\" b=\"y\"/></p>",
         "<p>\n  <e a=\"" + fits.substr(2) + "\" b=\"y\" />\n</p>\n"},
        {"<p><e a=\"" + fits.substr(1) + "\" b=\"y\"/></p>",
         "<p>\n  <e\n    a=\"" + fits.substr(1) + "\"\n    b=\"y\" />\n</p>\n"},
        {"<e a=\"1\" b=\"2\"/>", "<e\n  a=\"1\"\n  b=\"2\" />\n", false, 2, 10},
        {"<e a=\"1\" b=\"" + fits + fits + "\"/>", "<e a=\"1\" b=\"" + fits + fits + "\" />\n", false, 2, 0},
        // One attribute never wraps; the width counts raw bytes, not escaped ones.
        {"<e a=\"" + repeat("x", 200) + "\"/>", "<e a=\"" + repeat("x", 200) + "\" />\n"},
        {"<e a=\"1\" b=\"" + repeat("&amp;", 62) + "\"/>", "<e a=\"1\" b=\"" + repeat("&amp;", 62) + "\" />\n"},
    };
    for (const auto &c : cases) {
        XMLDocument document(c.keepText);
        ASSERT_TRUE(document.parse(c.text)) << c.text;
        EXPECT_EQ(written(document, c.indent, c.width), c.written.empty() ? c.text : c.written) << c.text;
        EXPECT_EQ(std::pair(document.indent, document.lineWidth), std::pair(c.indent, c.width));
    }
}

TEST(XMLWriter, TreesMadeByProgram) {
    XMLDocument document;
    document.root = new XMLElement("a");
    document.root->appendChild(new XMLElement("b"));
    document.root->appendChild(new XMLData("x<y"));
    document.root->appendChild(new XMLComment("c<d"));
    document.root->appendChild(new XMLCDATASection("e<f"));
    document.root->appendChild(new XMLElement("g"));
    EXPECT_EQ(written(document), "<a>\n  <b/>\n  x&lt;y  <!--c<d-->  <![CDATA[e<f]]>  <g/>\n</a>\n");

    // An attribute without a value is written empty and stays in line.
    delete document.takeRoot();
    EXPECT_EQ(document.root, nullptr);
    document.root = new XMLElement("e");
    document.root->setAttribute("a", nullptr);
    document.root->setAttribute("b", std::string(80, 'v'));
    document.root->setAttribute("z", "1");
    EXPECT_EQ(written(document), "<e a=\"\"\n  b=\"" + std::string(80, 'v') + "\"\n  z=\"1\" />\n");
    document.root->removeAttribute("b");
    EXPECT_EQ(written(document), "<e a=\"\" z=\"1\" />\n");
}

TEST(XMLWriter, EveryByteIsEscapedAndSurvivesWriteAndParse) {
    const auto escaped = [](const std::string &text) {
        std::string out;
        XMLWriter::appendEscaped(out, text);
        return out;
    };
    EXPECT_EQ(escaped("a&b<c>d\"e'f"), "a&amp;b&lt;c&gt;d&quot;e'f");
    EXPECT_EQ(escaped(std::string("\n\t\r\0\x1f\x7f", 6)), "&#xa;&#x9;&#xd;&#x0;&#x1f;&#x7f;");
    EXPECT_EQ(escaped("caf\xc3\xa9 \xff ~"), "caf&#xc3;&#xa9; &#xff; ~");

    std::string all;
    for (int c = 0; c < 256; ++c)
        all += char(c);
    XMLDocument document;
    document.root = new XMLElement("a");
    document.root->setAttribute("v", all);
    document.root->appendChild(new XMLData(all));
    const std::string text = written(document);
    XMLDocument back(true);
    ASSERT_TRUE(back.parse(text));
    EXPECT_EQ(shape(back.root), "a[v=" + all + "](\"" + all + "\")");
    EXPECT_EQ(written(back), text);
}

TEST(DocumentFiles, LoadAndSaveKeepBytes) {
    TestDirectory scratch;
    XMLDocument document;
    ASSERT_TRUE(document.load(scratch.write("in.tbp", "<!DOCTYPE Tarnbench_Project_File>\n"
                                                      "<solution Name=\"caf\xc3\xa9 &quot;1&quot; &lt;2&gt;\" />\n")
                                  .c_str()));
    EXPECT_EQ(*document.root->attribute("Name"), "caf\xc3\xa9 \"1\" <2>");
    ASSERT_TRUE(document.save((scratch / "out.tbp").c_str(), 2, 75));
    EXPECT_EQ(TestDirectory::read(scratch / "out.tbp"),
              "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"caf&#xc3;&#xa9; &quot;1&quot; &lt;2&gt;\" />\n");

    // A large tree is streamed to the file in pieces with the same bytes.
    for (int i = 0; i < 20000; ++i) {
        document.root->appendChild(new XMLElement("file"));
        document.root->lastChild->toElement()->setAttribute("file_name", concat("src/file", std::to_string(i)) + ".c");
    }
    const std::string expected = written(document);
    ASSERT_GT(expected.size(), 256u * 1024u * 2u);
    ASSERT_TRUE(document.save((scratch / "big.xml").c_str(), 2, 75));
    EXPECT_EQ(TestDirectory::read(scratch / "big.xml"), expected);
}

TEST(DocumentFiles, FailuresNameTheFile) {
    TestDirectory scratch;
    QXMLDocument document;
    EXPECT_FALSE(document.load(scratch / "missing.xml"));
    EXPECT_EQ(document.errorText, "couldn't read " + scratch / "missing.xml");
    EXPECT_EQ(document.errorLine, 0);
    EXPECT_FALSE(document.load(scratch.path()));
    EXPECT_EQ(document.errorText, "couldn't read " + scratch.path());
    EXPECT_FALSE(document.load(scratch.write("bad.xml", "<a>\n<b>\n</c>\n</a>\n")));
    EXPECT_EQ(document.errorText, "tagName mismatch");
    EXPECT_EQ(document.errorLine, 2);

    document.root = new XMLElement("a");
    EXPECT_FALSE(document.save(scratch / "no/such/dir.xml", 2, 75));
    EXPECT_EQ(document.errorText, "couldn't write " + scratch / "no/such/dir.xml");
    EXPECT_FALSE(document.save("/dev/full", 2, 75));
    EXPECT_EQ(document.errorText, "couldn't write /dev/full");
}

TEST(DocumentFiles, ByteOrderMarkNeedsAllThreeBytes) {
    TestDirectory scratch;
    // The "<" after a partial mark stays, and the element is found.
    for (const char *mark : {"\xEF", "\xEF\xBB", "\xEF\xBB\xBF"}) {
        XMLDocument document;
        ASSERT_TRUE(document.load(scratch.write("bom.xml", mark + std::string("<a/>")).c_str()));
        EXPECT_EQ(document.root ? shape(document.root) : "", "a") << mark;
    }
    std::FILE *stream = std::fopen((scratch / "bom.xml").c_str(), "rb");
    XMLDocument streamed;
    EXPECT_TRUE(streamed.parseFile(stream));
    std::fclose(stream);
    EXPECT_EQ(streamed.root ? shape(streamed.root) : "", "a");
}

TEST(QXMLDocument, ReadDoctypeOfFileAndElementText) {
    TestDirectory scratch;
    const struct {
        std::string content, doctype;
    } cases[] = {
        {"<!DOCTYPE Tarnbench_Project_File>\n<solution/>", "Tarnbench_Project_File"},
        {"\xEF\xBB\xBF<?xml version=\"1.0\"?>\n<!-- a <!DOCTYPE x> -->\n<?other ?>\n<!DOCTYPE  Veldane_Settings_File >",
         "Veldane_Settings_File"},
        {"<!DOCTYPE\nProject_Templates_File\n>", "Project_Templates_File"},
        // Only the first tag other than declarations and comments counts.
        {"<solution/>\n<!DOCTYPE Tarnbench_Project_File>", ""},
        {"<!ELEMENT x>\n<!DOCTYPE Tarnbench_Project_File>", ""},
        {"<!DOCTYPE x [ <!ENTITY y \"z\"> ]>", ""},
        {"<!DOCTYPEx>", ""},
        {"<!-- unterminated <!DOCTYPE x>", ""},
        {"<?xml version=\"1.0\"", ""},
        {"<!DOCTYPE x", ""},
        {"", ""},
        {std::string(100000, ' ') + "<!-- " + std::string(100000, '-') + " -->\n<!DOCTYPE far>", "far"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(QXMLDocument::readDoctypeOfFile(scratch.write("f", c.content)), c.doctype) << c.content.substr(0, 60);
    EXPECT_EQ(QXMLDocument::readDoctypeOfFile(scratch / "missing"), "");

    // The text of an element joins its data children only.
    QXMLDocument document(true);
    ASSERT_TRUE(document.parse("<a>one <b>no</b>two<!--no--><![CDATA[no]]>\xc3\xa9&amp;</a>"));
    EXPECT_EQ(QXMLDocument::elementText(document.root), "one two\xc3\xa9&");
    EXPECT_EQ(document.elementText(nullptr), "");
}
