#include "project/xml/qxml_document.h"
#include "project/xml/xml_writer.h"

#include "support/test_directory.h"
#include "support/text_split.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

// A subtree as tag[attributes](children), "data", !comment and [CDATA], with
// "@n" for a node found on line n other than 0.
std::string shape(const XMLNode *node) {
    std::string result;
    if (const XMLElement *element = node->toElement()) {
        result = element->tagName;
        for (const auto &[name, value] : element->attributes())
            result += (result == element->tagName ? "[" : ",") + name + (value ? "=" + *value : "");
        result += result == element->tagName ? "" : "]";
    } else {
        // Data, comment and CDATA section in the order of XMLNode::Kind.
        static const std::string open[] = {"", "\"", "!", "["}, close[] = {"", "\"", "", "]"};
        const int kind = int(node->kind());
        result = open[kind] + static_cast<const XMLTextNode *>(node)->text() + close[kind];
    }
    if (node->line != 0)
        result += concat("@", std::to_string(node->line));
    for (const XMLNode *child = node->firstChild; child; child = child->nextSibling) {
        result += child == node->firstChild ? "(" : ",";
        result += shape(child);
        result += child->nextSibling ? "" : ")";
    }
    return result;
}

std::string written(XMLDocument &document, int indent = 2, int lineWidth = 75) {
    std::string out;
    document.write(out, indent, lineWidth);
    return out;
}

// The tags of a node's children, checked against parent links and lastChild.
std::string childTags(const XMLNode &node) {
    std::string tags;
    const XMLNode *last = nullptr;
    for (const XMLNode *child = node.firstChild; child; last = child, child = child->nextSibling) {
        EXPECT_EQ(child->parent, &node);
        tags += child->toElement()->tagName;
    }
    EXPECT_EQ(node.lastChild, last);
    return tags;
}

} // namespace

TEST(XMLNode, ChangesKeepLinksConsistent) {
    // The nodes belong to the pool; the parent is empty again at the end.
    std::vector<std::unique_ptr<XMLElement>> pool;
    std::map<char, XMLElement *> n;
    for (char tag : std::string("abcemnuvwxyz"))
        n[tag] = pool.emplace_back(std::make_unique<XMLElement>(std::string(1, tag))).get();
    n['x']->nextSibling = n['y']; // insertAfter takes a whole chain
    n['m']->nextSibling = n['n'];
    XMLElement parent("p"), stranger("s");
    const struct {
        std::function<void()> change;
        const char *tags;
    } steps[] = {
        {[&] { parent.prependChild(n['b']); }, "b"},
        {[&] { parent.appendChild(n['c']); }, "bc"},
        {[&] { parent.prependChild(n['a']); }, "abc"},
        {[&] { parent.insertAfter(n['a'], n['x']); }, "axybc"},
        {[&] { parent.insertAfter(n['c'], n['m']); }, "axybcmn"},
        {[&] { parent.insertAfter(&stranger, n['w']); }, "axybcmnw"},
        {[&] { parent.removeChild(n['y']); }, "axbcmnw"},
        {[&] { parent.replaceChild(n['b'], n['z']); }, "axzcmnw"},
        {[&] { parent.replaceChild(n['a'], n['u']); }, "uxzcmnw"},
        {[&] { parent.replaceChild(n['w'], n['v']); }, "uxzcmnv"},
        {[&] { parent.removeChild(n['u']); }, "xzcmnv"},
        {[&] { parent.removeChild(n['v']); }, "xzcmn"},
        {[&] { parent.removeChild(&stranger); }, "xzcmn"},
        {[&] {
             for (char tag : std::string("zcnxm"))
                 parent.removeChild(n[tag]);
         },
         ""},
        {[&] { parent.insertAfter(nullptr, n['e']); }, "e"},
        {[&] { parent.removeChild(n['e']); }, ""},
    };
    for (const auto &step : steps) {
        step.change();
        EXPECT_EQ(childTags(parent), step.tags);
    }
    // A removed child keeps its links, so that a loop may go on from it.
    EXPECT_EQ(n['y']->nextSibling, n['b']);
    EXPECT_EQ(n['y']->parent, &parent);
}

TEST(XMLNode, DeepTreesAreReadWrittenAndDeletedWithoutRecursion) {
    const int depth = 100000;
    XMLDocument document;
    ASSERT_TRUE(document.parse(repeat("<e>\n", depth) + repeat("</e>", depth)));
    const XMLNode *deepest = document.root;
    while (deepest->firstChild)
        deepest = deepest->firstChild;
    EXPECT_EQ(deepest->line, depth - 1);
    EXPECT_EQ(written(document, 0), repeat("<e>", depth - 1) + "<e/>" + repeat("</e>", depth - 1));
    // A deep and wide tree is deleted whole; each node counts its deletion.
    struct CountedElement : XMLElement {
        explicit CountedElement(int &count) : XMLElement("n"), count_(count) {}
        ~CountedElement() override { ++count_; }
        int &count_;
    };
    int deleted = 0;
    auto *root = new CountedElement(deleted);
    XMLNode *node = root;
    for (int i = 0; i < depth; ++i, node = node->lastChild)
        node->appendChild(new CountedElement(deleted));
    for (int i = 0; i < 1000; ++i)
        root->appendChild(new CountedElement(deleted));
    delete root;
    EXPECT_EQ(deleted, depth + 1001);
}

TEST(XMLElement, Attributes) {
    XMLElement e("configuration");
    // The same text isn't assigned again; a changed one stays where it was.
    const std::string longValue(100, 'v');
    e.setAttribute("k", longValue);
    const std::string *value = e.attribute("k");
    const char *storage = value->data();
    e.setAttribute(std::string("k"), std::string(longValue));
    EXPECT_EQ(e.attribute("k")->data(), storage);
    e.setAttribute("k", "other");
    EXPECT_EQ(e.attribute("k"), value);
    EXPECT_EQ(*value, "other");
    // A null name is the empty name, a null value no value.
    e.setAttribute(nullptr, "v");
    EXPECT_EQ(*e.attribute(static_cast<const char *>(nullptr)), "v");
    e.setAttribute("flag", nullptr);
    EXPECT_TRUE(e.hasAttribute("flag"));
    EXPECT_EQ(e.attribute("flag"), nullptr);
    e.setAttribute("flag", "");
    EXPECT_EQ(*e.attribute("flag"), "");
    e.setAttribute("flag", nullptr);
    EXPECT_EQ(e.attribute("flag"), nullptr);
    EXPECT_TRUE(e.removeAttribute("flag"));
    EXPECT_FALSE(e.removeAttribute("flag"));
}

TEST(XMLParser, Documents) {
    // The tree is "" when there is no root; a failed parse has none either.
    const struct {
        const char *text, *tree, *error = "";
        int errorLine = 0;
        bool keepText = false;
    } cases[] = {
        // Values need quotes, or the name is dropped; the last value counts.
        {"<a b=1 c=\"2\" c=\"3\" d=x/>", "a[c=3]"},
        {"<a b c='x\"y' d = \"z\" e/>", "a[c=x\"y,d=z]"},
        {"<a _x=\"1\" :y=\"2\" -z9=\"3\"/>", "a[-z9=3,:y=2,_x=1]"},
        {"<a b=\"1\r\n2\">\n<c/></a>", "a[b=1\r\n2](c@2)"},
        // A value running to the end leaves no root.
        {"<a b=\"xyz", ""},
        // A bad name is an error on the line where it is found.
        {"<solution>\n  <project\n\n \"x\"/>\n</solution>", "", "bad tagName", 3},
        {"<a>\n<>", "", "bad tagName", 1},
        // An end tag closes by prefix, and an empty one closes anything.
        {"<project><a/></proj>", "project(a)"}, {"<a><b></></>", "a(b)"},
        {"<solution>\n<project>\n</projects>\n</solution>", "", "tagName mismatch", 2},
        // A slash in a start tag reads an end tag name.
        {"<ab/a>", "ab"}, {"<a/b>", "", "tagName mismatch"},
        // At the top only elements count, and the last one closed is the root.
        {"</x>\n<a/>", "a@1"}, {"<a><b></b>", ""}, {"<a/><b><c/></b>", "b(c)"}, {"junk <a/> more", "a"},
        {"<?xml-stylesheet href=\"a\"?><?foo version=\"9\"?><!ELEMENT a\n>text<a/>", "a@1"},
        // keepText keeps every run of character data, also empty ones.
        {"<a>\r\n  <b>x&amp;y\r</b>\n  <c/>\n</a>", "a(\"\n  \",b@1(\"x&y\"@1),\"\n  \"@1,c@2,\"\n\"@2)", "", 0, true},
        // Comments and CDATA sections outside all elements are dropped.
        {"<!-- top -->\n<a><!--in\nside--><b/></a><!-- after -->", "a@1(\"\"@1,!in\nside@1,\"\"@2,b@2,\"\"@2)", "", 0,
         true},
        {"<![CDATA[top]]><a><![CDATA[x<y>]]z]]><b/></a>", "a([x<y>]]z],b)"},
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

TEST(XMLWriter, ParsedTextsWrittenBack) {
    // "<" + tag + each ` name="value"`: 1 + 1 + (1+4+v1) + (1+4+v2) at depth 0.
    const std::string fits(75 - 2 - 6 - 5, 'x');
    const struct {
        std::string text, written = ""; // empty: the text itself
        bool keepText = false;
    } cases[] = {
        // A solution file round-trips byte for byte.
        {"<!DOCTYPE Tarnbench_Project_File>\n"
         "<solution Name=\"Blink\" target=\"8\" version=\"2\">\n"
         "  <project Name=\"Blink\">\n"
         "    <configuration\n"
         "      Name=\"Common\"\n"
         "      build_intermediate_directory=\"Output/$(Configuration)/Obj\" />\n"
         "  </project>\n"
         "</solution>\n"},
        {"<?xml version=1.0 encoding = \"latin1\" standalone='yes'?><a/>", "<?xml  encoding=\"latin1\" ?>\n<a/>\n"},
        // An internal subset gives no doctype.
        {"<?xml version='a\"b'?><!DOCTYPE d [ <!ENTITY y \"z\"> ]>", "<?xml  version='a\"b' ?>\n"},
        // The white space before the first child stands for all children.
        {"<a>\n  <b>x</b>\n</a>", "<a>&#xa;  </a>\n", true},
        // Attributes go on lines of their own when the line passes the width.
        {"<e a=\"" + fits + "\" b=\"y\"/>", "<e a=\"" + fits + "\" b=\"y\" />\n"},
        {"<e a=\"" + fits + "x\" b=\"y\"/>", "<e\n  a=\"" + fits + "x\"\n  b=\"y\" />\n"},
        {"<p><e a=\"" + fits.substr(1) + "\" b=\"y\"/></p>",
         "<p>\n  <e\n    a=\"" + fits.substr(1) + "\"\n    b=\"y\" />\n</p>\n"},
        // One attribute never wraps; the width counts raw bytes, not escaped ones.
        {"<e a=\"" + repeat("x", 200) + "\"/>", "<e a=\"" + repeat("x", 200) + "\" />\n"},
        {"<e a=\"1\" b=\"" + repeat("&amp;", 62) + "\"/>", "<e a=\"1\" b=\"" + repeat("&amp;", 62) + "\" />\n"},
    };
    for (const auto &c : cases) {
        XMLDocument document(c.keepText);
        ASSERT_TRUE(document.parse(c.text)) << c.text;
        EXPECT_EQ(written(document), c.written.empty() ? c.text : c.written) << c.text;
    }
}

TEST(XMLWriter, TreesMadeByProgram) {
    // An attribute without a value is written empty and stays in line.
    const std::string longValue(80, 'v');
    XMLDocument document;
    document.root = new XMLElement("a");
    document.root->setAttribute("n", nullptr);
    document.root->setAttribute("v", longValue);
    document.root->appendChild(new XMLElement("b"));
    document.root->appendChild(new XMLData("x<y"));
    document.root->appendChild(new XMLComment("c<d"));
    document.root->appendChild(new XMLCDATASection("e<f"));
    document.root->appendChild(new XMLElement("g"));
    EXPECT_EQ(written(document),
              "<a n=\"\"\n  v=\"" + longValue + "\">\n  <b/>\n  x&lt;y  <!--c<d-->  <![CDATA[e<f]]>  <g/>\n</a>\n");
    // Every byte is escaped so that it survives writing and parsing.
    std::string escaped;
    XMLWriter::appendEscaped(escaped, std::string("a&b<c>d\"e'f\n\t\r\0\x1f\x7f\xff~", 19));
    EXPECT_EQ(escaped, "a&amp;b&lt;c&gt;d&quot;e'f&#xa;&#x9;&#xd;&#x0;&#x1f;&#x7f;&#xff;~");
    std::string all;
    for (int c = 0; c < 256; ++c)
        all += char(c);
    XMLDocument everyByte, back(true);
    everyByte.root = new XMLElement("a");
    everyByte.root->setAttribute("v", all);
    everyByte.root->appendChild(new XMLData(all));
    const std::string text = written(everyByte);
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
    // A byte-order mark counts only whole: the "<" after a partial one stays.
    for (const char *mark : {"\xEF", "\xEF\xBB", "\xEF\xBB\xBF"}) {
        ASSERT_TRUE(document.load(scratch.write("bom.xml", mark + std::string("<a/>")).c_str()));
        EXPECT_EQ(shape(document.root), "a") << mark;
    }
}

TEST(DocumentFiles, FailuresNameTheFile) {
    TestDirectory scratch;
    QXMLDocument document;
    EXPECT_FALSE(document.load(scratch / "missing.xml"));
    EXPECT_EQ(document.errorText, "couldn't read " + scratch / "missing.xml");
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

TEST(QXMLDocument, ReadDoctypeOfFileAndElementText) {
    TestDirectory scratch;
    const struct {
        std::string content, doctype;
    } cases[] = {
        {"<!DOCTYPE Tarnbench_Project_File>\n<solution/>", "Tarnbench_Project_File"},
        {"\xEF\xBB\xBF<?xml version=\"1.0\"?>\n<!-- a <!DOCTYPE x> -->\n<?other ?>\n<!DOCTYPE  Veldane_Settings_File >",
         "Veldane_Settings_File"},
        // Only the first tag other than declarations and comments counts.
        {"<solution/>\n<!DOCTYPE Tarnbench_Project_File>", ""}, {"<!ELEMENT x>\n<!DOCTYPE Tarnbench_Project_File>", ""},
        {"<!DOCTYPE x [ <!ENTITY y \"z\"> ]>", ""}, {"<!DOCTYPEx>", ""}, {"<!-- unterminated <!DOCTYPE x>", ""},
        {"<?xml version=\"1.0\"", ""}, {"<!DOCTYPE x", ""}, {"", ""},
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
