#include "project/xml/xml_document.h"
#include "project/xml/xml_writer.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string written(XMLDocument &document, int indent = 2, int lineWidth = 75) {
    std::string out;
    document.write(out, indent, lineWidth);
    return out;
}

// Parses text and writes it back.
std::string rewritten(const std::string &text, bool keepText = false, int indent = 2,
                      int lineWidth = 75) {
    XMLDocument document(keepText);
    EXPECT_TRUE(document.parse(text)) << document.errorText;
    return written(document, indent, lineWidth);
}

std::string escaped(std::string_view text) {
    std::string out;
    XMLWriter::appendEscaped(out, text);
    return out;
}

const char solutionExample[] =
    "<!DOCTYPE Tarnbench_Project_File>\n"
    "<solution Name=\"Blink\" target=\"8\" version=\"2\">\n"
    "  <project Name=\"Blink\">\n"
    "    <configuration\n"
    "      Name=\"Common\"\n"
    "      build_intermediate_directory=\"Output/$(Configuration)/Obj\"\n"
    "      project_type=\"Executable\" />\n"
    "    <folder Name=\"Source Files\" filter=\"c;cpp;s\">\n"
    "      <file file_name=\"main.c\" />\n"
    "    </folder>\n"
    "  </project>\n"
    "  <configuration Name=\"Debug\" build_quietly=\"No\" />\n"
    "</solution>\n";

} // namespace

TEST(XMLWriter, SolutionFileRoundTripsByteForByte) {
    EXPECT_EQ(rewritten(solutionExample), solutionExample);
}

TEST(XMLWriter, SolutionBuiltInAnyOrderIsWrittenInByteOrder) {
    XMLDocument document;
    document.doctype = "Tarnbench_Project_File";
    document.root = new XMLElement("solution");
    document.root->setAttribute("version", "2");
    document.root->setAttribute("target", "8");
    document.root->setAttribute("Name", "Blink");
    auto *project = new XMLElement("project");
    project->setAttribute("Name", "Blink");
    auto *common = new XMLElement("configuration");
    common->setAttribute("project_type", "Executable");
    common->setAttribute("build_intermediate_directory", "Output/$(Configuration)/Obj");
    common->setAttribute("Name", "Common");
    project->appendChild(common);
    auto *folder = new XMLElement("folder");
    folder->setAttribute("filter", "c;cpp;s");
    folder->setAttribute("Name", "Source Files");
    auto *file = new XMLElement("file");
    file->setAttribute("file_name", "main.c");
    folder->appendChild(file);
    project->appendChild(folder);
    auto *debug = new XMLElement("configuration");
    debug->setAttribute("build_quietly", "No");
    debug->setAttribute("Name", "Debug");
    document.root->appendChild(debug);
    document.root->prependChild(project);
    EXPECT_EQ(written(document), solutionExample);
    EXPECT_EQ(document.indent, 2);
    EXPECT_EQ(document.lineWidth, 75);
}

TEST(XMLWriter, DeclarationAndDoctypeLines) {
    XMLDocument document;
    document.version = "1.0";
    document.encoding = "UTF-8";
    EXPECT_EQ(written(document), "<?xml  version=\"1.0\" encoding=\"UTF-8\" ?>\n");
    document.version.reset();
    document.doctype = "d";
    document.root = new XMLElement("r");
    EXPECT_EQ(written(document), "<?xml  encoding=\"UTF-8\" ?>\n<!DOCTYPE d>\n<r/>\n");
    document.encoding.reset();
    document.version = "a\"b";
    EXPECT_EQ(written(document), "<?xml  version='a\"b' ?>\n<!DOCTYPE d>\n<r/>\n");
}

TEST(XMLWriter, EmptyElementsAndTextContent) {
    EXPECT_EQ(rewritten("<a></a>"), "<a/>\n");
    EXPECT_EQ(rewritten("<a x='1'></a>"), "<a x=\"1\" />\n");
    EXPECT_EQ(rewritten("<a>text</a>"), "<a/>\n");
    EXPECT_EQ(rewritten("<a>t&lt;xt</a>", true), "<a>t&lt;xt</a>\n");
    EXPECT_EQ(rewritten("<a>\n  <b>x</b>\n</a>", true), "<a>&#xa;  </a>\n")
        << "the white space before the first child stands for all children";
    EXPECT_EQ(rewritten("<a><b><c/></b></a>", false, 0), "<a><b><c/></b></a>");
}

TEST(XMLWriter, TextNodesAmongElements) {
    XMLDocument document;
    document.root = new XMLElement("a");
    document.root->appendChild(new XMLElement("b"));
    document.root->appendChild(new XMLData("x<y"));
    document.root->appendChild(new XMLComment("c<d"));
    document.root->appendChild(new XMLCDATASection("e<f"));
    document.root->appendChild(new XMLElement("g"));
    EXPECT_EQ(written(document), "<a>\n  <b/>\n  x&lt;y  <!--c<d-->  <![CDATA[e<f]]>  <g/>\n</a>\n");
}

TEST(XMLWriter, WrapsWhenTheLinePassesTheWidth) {
    // "<" + tag + each ` name="value"`: 1 + 1 + (1+4+v1) + (1+4+v2) at depth 0.
    const auto line = [](int valueLength, int depth) {
        XMLDocument document;
        auto *element = new XMLElement("e");
        element->setAttribute("a", std::string(size_t(valueLength), 'x'));
        element->setAttribute("b", "y");
        XMLElement *inner = element;
        for (int i = 0; i < depth; ++i) {
            auto *parent = new XMLElement("p");
            parent->appendChild(inner);
            inner = parent;
        }
        document.root = inner;
        return written(document);
    };
    const int fits = 75 - 2 - 6 - 5;
    EXPECT_EQ(line(fits, 0), "<e a=\"" + std::string(size_t(fits), 'x') + "\" b=\"y\" />\n");
    EXPECT_EQ(line(fits + 1, 0), "<e\n  a=\"" + std::string(size_t(fits + 1), 'x') +
                                     "\"\n  b=\"y\" />\n");
    EXPECT_EQ(line(fits - 2, 1), "<p>\n  <e a=\"" + std::string(size_t(fits - 2), 'x') +
                                     "\" b=\"y\" />\n</p>\n");
    EXPECT_EQ(line(fits - 1, 1), "<p>\n  <e\n    a=\"" + std::string(size_t(fits - 1), 'x') +
                                     "\"\n    b=\"y\" />\n</p>\n");
}

TEST(XMLWriter, WidthCountsRawValuesAndOnlyTwoOrMoreAttributes) {
    XMLDocument document;
    document.root = new XMLElement("e");
    document.root->setAttribute("a", std::string(200, 'x'));
    EXPECT_EQ(written(document), "<e a=\"" + std::string(200, 'x') + "\" />\n");

    document.root->setAttribute("a", "1");
    document.root->setAttribute("b", std::string(62, '&'));
    EXPECT_EQ(written(document), "<e a=\"1\" b=\"" + escaped(std::string(62, '&')) + "\" />\n")
        << "62 raw bytes fit although the escaped text is longer";

    EXPECT_EQ(written(document, 2, 10).substr(0, 9), "<e\n  a=\"1") << "narrow width wraps";
    EXPECT_EQ(written(document, 2, 0).substr(0, 9), "<e a=\"1\" ") << "width 0 never wraps";
}

TEST(XMLWriter, ValuelessAttributesStayInLine) {
    XMLDocument document;
    document.root = new XMLElement("e");
    document.root->setAttribute("flag", nullptr);
    document.root->setAttribute("long", std::string(80, 'v'));
    document.root->setAttribute("z", "1");
    EXPECT_EQ(written(document),
              "<e flag=\"\"\n  long=\"" + std::string(80, 'v') + "\"\n  z=\"1\" />\n");
    document.root->removeAttribute("long");
    EXPECT_EQ(written(document), "<e flag=\"\" z=\"1\" />\n");
}

TEST(XMLWriter, EscapesMarkupControlAndHighBytes) {
    EXPECT_EQ(escaped("a&b<c>d\"e'f"), "a&amp;b&lt;c&gt;d&quot;e'f");
    EXPECT_EQ(escaped("\n\t\r"), "&#xa;&#x9;&#xd;");
    EXPECT_EQ(escaped(std::string("\0\x1f\x7f", 3)), "&#x0;&#x1f;&#x7f;");
    EXPECT_EQ(escaped("caf\xc3\xa9 \xff"), "caf&#xc3;&#xa9; &#xff;");
    EXPECT_EQ(escaped(" ~"), " ~");
}

TEST(XMLWriter, EveryByteSurvivesWriteAndParse) {
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
    ASSERT_NE(back.root, nullptr);
    EXPECT_EQ(*back.root->attribute("v"), all);
    ASSERT_NE(back.root->firstChild, nullptr);
    EXPECT_EQ(static_cast<XMLData *>(back.root->firstChild)->text(), all);
    EXPECT_EQ(written(back), text);
}

TEST(XMLWriter, HundredThousandNestedElements) {
    const int depth = 100000;
    XMLDocument document;
    document.root = new XMLElement("e");
    XMLNode *node = document.root;
    for (int i = 1; i < depth; ++i) {
        auto *child = new XMLElement("e");
        node->appendChild(child);
        node = child;
    }
    std::string expected;
    for (int i = 1; i < depth; ++i)
        expected += "<e>";
    expected += "<e/>";
    for (int i = 1; i < depth; ++i)
        expected += "</e>";
    EXPECT_EQ(written(document, 0), expected);

    XMLDocument back;
    ASSERT_TRUE(back.parse(expected));
    EXPECT_EQ(written(back, 0), expected);
}
