#include "project/xml/xml_document.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// Parses without failing the test; the caller looks at the result.
struct Parsed {
    explicit Parsed(const std::string &text, bool keepText = false) : document(keepText) {
        ok = document.parse(text);
    }
    XMLElement *root() const { return document.root; }
    XMLDocument document;
    bool ok;
};

std::string attribute(const XMLElement *element, const char *name) {
    const std::string *value = element ? element->attribute(name) : nullptr;
    return value ? *value : "<null>";
}

const std::string &textOf(const XMLNode *node) {
    return static_cast<const XMLTextNode *>(node)->text();
}

// A compact picture of a subtree: elements as tag(children), data as "text",
// comments as !text, CDATA as [text].
std::string shape(const XMLNode *node) {
    switch (node->kind()) {
    case XMLNode::Kind::Data:
        return "\"" + textOf(node) + "\"";
    case XMLNode::Kind::Comment:
        return "!" + textOf(node);
    case XMLNode::Kind::CDATASection:
        return "[" + textOf(node) + "]";
    case XMLNode::Kind::Element:
        break;
    }
    std::string result = node->toElement()->tagName;
    if (!node->firstChild)
        return result;
    result += "(";
    for (const XMLNode *child = node->firstChild; child; child = child->nextSibling)
        result += (child == node->firstChild ? "" : ",") + shape(child);
    return result + ")";
}

} // namespace

TEST(XMLParser, AttributeValuesNeedQuotes) {
    Parsed unquoted("<a b=1 c=\"2\"/>");
    ASSERT_TRUE(unquoted.ok);
    EXPECT_EQ(unquoted.root()->attributes().size(), 1u);
    EXPECT_EQ(attribute(unquoted.root(), "c"), "2");

    Parsed noValue("<a b c='x\"y' d = \"z\" e/>");
    ASSERT_TRUE(noValue.ok);
    EXPECT_EQ(noValue.root()->attributes().size(), 2u);
    EXPECT_EQ(attribute(noValue.root(), "c"), "x\"y");
    EXPECT_EQ(attribute(noValue.root(), "d"), "z");

    Parsed unquotedAtEnd("<a b=x/>");
    ASSERT_TRUE(unquotedAtEnd.ok);
    EXPECT_EQ(shape(unquotedAtEnd.root()), "a");
    EXPECT_TRUE(unquotedAtEnd.root()->attributes().empty());

    Parsed names("<a _x=\"1\" :y=\"2\" -z9.=\"3\"/>");
    EXPECT_FALSE(names.ok) << "'.' isn't a name character, so it starts a bad name";
    Parsed goodNames("<a _x=\"1\" :y=\"2\" -z9=\"3\"/>");
    ASSERT_TRUE(goodNames.ok);
    EXPECT_EQ(goodNames.root()->attributes().size(), 3u);
}

TEST(XMLParser, LaterAttributeReplacesEarlier) {
    Parsed parsed("<a b=\"1\" b=\"2\"/>");
    ASSERT_TRUE(parsed.ok);
    EXPECT_EQ(attribute(parsed.root(), "b"), "2");
    EXPECT_EQ(parsed.root()->attributes().size(), 1u);
}

TEST(XMLParser, AttributeValuesKeepLineFeedsAndCarriageReturns) {
    Parsed parsed("<a b=\"1\r\n2\">\n<c/></a>");
    ASSERT_TRUE(parsed.ok);
    EXPECT_EQ(attribute(parsed.root(), "b"), "1\r\n2");
    EXPECT_EQ(parsed.root()->line, 0);
    EXPECT_EQ(parsed.root()->firstChild->line, 2);
}

TEST(XMLParser, ValueRunningToTheEndLeavesNoRoot) {
    Parsed parsed("<a b=\"xyz");
    EXPECT_TRUE(parsed.ok);
    EXPECT_EQ(parsed.root(), nullptr);
}

TEST(XMLParser, DecodesEntitiesAndCharacterReferences) {
    struct Case {
        const char *encoded;
        std::string decoded;
    } cases[] = {
        {"&lt;&gt;&amp;&quot;&apos;", "<>&\"'"},
        {"&#65;&#x41;", "AA"},
        {"&unknown;", "&unknown;"},
        {"&lt", "&lt"},
        {"&amp", "&amp"},
        {"a&b", "a&b"},
        {"&#;", std::string(1, '\0')},
        {"&#x;", std::string(1, '\0')},
        {"&#x1ff;", "\xff"},
        {"&#321;", "A"},
        {"&#x4g;", "\x50"},
        {"&#1a;", "\x14"},
        {"&#4!;", "("},
        {"&#X41;", ")"},
        {"&#65", "&#65"},
        {"&#&#65;", "\x41"},
        {"&#xc3;&#xa9;", "\xc3\xa9"},
        {"x&", "x&"},
    };
    for (const Case &c : cases) {
        Parsed inValue(std::string("<a v=\"") + c.encoded + "\"/>");
        ASSERT_TRUE(inValue.ok) << c.encoded;
        EXPECT_EQ(attribute(inValue.root(), "v"), c.decoded) << c.encoded;
        Parsed inText(std::string("<a>") + c.encoded + "</a>", true);
        ASSERT_TRUE(inText.ok) << c.encoded;
        EXPECT_EQ(textOf(inText.root()->firstChild), c.decoded) << c.encoded;
    }
}

TEST(XMLParser, ManyReferencesWithoutSemicolonStayText) {
    std::string text;
    for (int i = 0; i < 100000; ++i)
        text += "&#";
    Parsed parsed("<a v=\"" + text + "\"/>");
    ASSERT_TRUE(parsed.ok);
    EXPECT_EQ(attribute(parsed.root(), "v"), text);
}

TEST(XMLParser, BadAttributeNameIsErrorOne) {
    Parsed parsed("<solution>\n  <project\n\n \"x\"/>\n</solution>");
    EXPECT_FALSE(parsed.ok);
    EXPECT_EQ(parsed.document.errorText, "bad tagName");
    EXPECT_EQ(parsed.document.errorLine, 3);
    EXPECT_EQ(parsed.root(), nullptr);

    Parsed digit("<a 1b=\"x\"/>");
    EXPECT_FALSE(digit.ok);
    EXPECT_EQ(digit.document.errorLine, 0);

    Parsed emptyTag("<a>\n<>");
    EXPECT_FALSE(emptyTag.ok);
    EXPECT_EQ(emptyTag.document.errorText, "bad tagName");
    EXPECT_EQ(emptyTag.document.errorLine, 1);
}

TEST(XMLParser, EndTagClosesByPrefix) {
    Parsed prefix("<project><a/></proj>");
    ASSERT_TRUE(prefix.ok);
    EXPECT_EQ(shape(prefix.root()), "project(a)");

    Parsed longer("<solution>\n<project>\n</projects>\n</solution>");
    EXPECT_FALSE(longer.ok);
    EXPECT_EQ(longer.document.errorText, "tagName mismatch");
    EXPECT_EQ(longer.document.errorLine, 2);
    EXPECT_EQ(longer.root(), nullptr);

    Parsed empty("<a><b></></>");
    ASSERT_TRUE(empty.ok);
    EXPECT_EQ(shape(empty.root()), "a(b)");

    Parsed spaced("<a></a  \n >\n<b/>");
    ASSERT_TRUE(spaced.ok);
    EXPECT_EQ(shape(spaced.root()), "b");
    EXPECT_EQ(spaced.root()->line, 2);
}

TEST(XMLParser, SlashInStartTagReadsAnEndTagName) {
    Parsed closes("<ab/a>");
    ASSERT_TRUE(closes.ok);
    EXPECT_EQ(shape(closes.root()), "ab");

    Parsed mismatch("<a/b>");
    EXPECT_FALSE(mismatch.ok);
    EXPECT_EQ(mismatch.document.errorText, "tagName mismatch");

    Parsed blank("<a x=\"1\"/ >");
    ASSERT_TRUE(blank.ok);
    EXPECT_EQ(attribute(blank.root(), "x"), "1");
}

TEST(XMLParser, TopLevelRules) {
    Parsed strayEnd("</x>\n<a/>");
    ASSERT_TRUE(strayEnd.ok);
    EXPECT_EQ(shape(strayEnd.root()), "a");

    Parsed unclosed("<a><b></b>");
    EXPECT_TRUE(unclosed.ok);
    EXPECT_EQ(unclosed.root(), nullptr);
    EXPECT_EQ(unclosed.document.errorText, "");

    Parsed later("<a/><b><c/></b>");
    ASSERT_TRUE(later.ok);
    EXPECT_EQ(shape(later.root()), "b(c)");

    Parsed nothing("  \n ");
    EXPECT_TRUE(nothing.ok);
    EXPECT_EQ(nothing.root(), nullptr);

    Parsed textFirst("junk <a/> more");
    ASSERT_TRUE(textFirst.ok);
    EXPECT_EQ(shape(textFirst.root()), "a");
}

TEST(XMLParser, KeepTextKeepsEveryRunOfCharacterData) {
    const char *text = "<a>\r\n  <b>x&amp;y\r</b>\n  <c/>\n</a>";
    Parsed kept(text, true);
    ASSERT_TRUE(kept.ok);
    EXPECT_EQ(shape(kept.root()), "a(\"\n  \",b(\"x&y\"),\"\n  \",c,\"\n\")");
    EXPECT_EQ(kept.root()->firstChild->line, 0);
    EXPECT_EQ(kept.root()->firstChild->nextSibling->line, 1);

    Parsed dropped(text, false);
    ASSERT_TRUE(dropped.ok);
    EXPECT_EQ(shape(dropped.root()), "a(b,c)");

    Parsed empty("<a><b/></a>", true);
    ASSERT_TRUE(empty.ok);
    EXPECT_EQ(shape(empty.root()), "a(\"\",b,\"\")");
}

TEST(XMLParser, CommentsNeedKeepTextAndAnOpenElement) {
    const char *text = "<!-- top -->\n<a><!--in\nside--><b/></a><!-- after -->";
    Parsed kept(text, true);
    ASSERT_TRUE(kept.ok);
    EXPECT_EQ(shape(kept.root()), "a(\"\",!in\nside,\"\",b,\"\")");
    EXPECT_EQ(kept.root()->firstChild->nextSibling->line, 1);

    Parsed dropped(text, false);
    ASSERT_TRUE(dropped.ok);
    EXPECT_EQ(shape(dropped.root()), "a(b)");
}

TEST(XMLParser, CDATASectionsAreKeptInsideElements) {
    const char *text = "<![CDATA[top]]><a><![CDATA[x<y>]]z]]><b/></a>";
    Parsed dropped(text, false);
    ASSERT_TRUE(dropped.ok);
    EXPECT_EQ(shape(dropped.root()), "a([x<y>]]z],b)");

    Parsed kept(text, true);
    ASSERT_TRUE(kept.ok);
    EXPECT_EQ(shape(kept.root()), "a(\"\",[x<y>]]z],\"\",b,\"\")");
}

TEST(XMLParser, DoctypeAndDeclarations) {
    Parsed plain("<?xml version=\"1.0\" encoding='UTF-8'?>\n<!DOCTYPE  Tarnbench_Project_File >\n"
                 "<solution/>");
    ASSERT_TRUE(plain.ok);
    EXPECT_EQ(plain.document.doctype, "Tarnbench_Project_File");
    EXPECT_EQ(plain.document.version, "1.0");
    EXPECT_EQ(plain.document.encoding, "UTF-8");
    EXPECT_EQ(plain.root()->line, 2);

    Parsed subset("<!DOCTYPE x [\n<!ENTITY y \"z\">\n]>\n<a/>");
    ASSERT_TRUE(subset.ok);
    EXPECT_FALSE(subset.document.doctype.has_value());
    EXPECT_EQ(shape(subset.root()), "a");
    EXPECT_EQ(subset.root()->line, 3);

    Parsed other("<?xml-stylesheet href=\"a\"?><?foo version=\"9\"?><!ELEMENT a\n>text<a/>");
    ASSERT_TRUE(other.ok);
    EXPECT_FALSE(other.document.version.has_value());
    EXPECT_FALSE(other.document.doctype.has_value());
    EXPECT_EQ(shape(other.root()), "a");
    EXPECT_EQ(other.root()->line, 1);

    Parsed odd("<?xml version=1.0 encoding = \"latin1\" standalone='yes'?><a/>");
    ASSERT_TRUE(odd.ok);
    EXPECT_FALSE(odd.document.version.has_value());
    EXPECT_EQ(odd.document.encoding, "latin1");
}

TEST(XMLParser, ParseStartsFromAnEmptyDocument) {
    XMLDocument document;
    ASSERT_TRUE(document.parse("<?xml version=\"1\"?><!DOCTYPE d><a/>"));
    ASSERT_FALSE(document.parse("<b><c></d></b>"));
    EXPECT_EQ(document.errorText, "tagName mismatch");
    EXPECT_EQ(document.root, nullptr);
    EXPECT_FALSE(document.doctype.has_value());
    EXPECT_FALSE(document.version.has_value());
    ASSERT_TRUE(document.parse("<e/>"));
    EXPECT_EQ(document.errorText, "");
    EXPECT_EQ(shape(document.root), "e");
}

TEST(XMLParser, HundredThousandNestedElements) {
    const int depth = 100000;
    std::string text;
    for (int i = 0; i < depth; ++i)
        text += "<e>\n";
    for (int i = 0; i < depth; ++i)
        text += "</e>";
    XMLDocument document;
    ASSERT_TRUE(document.parse(text));
    int levels = 0;
    const XMLNode *deepest = document.root;
    for (const XMLNode *node = document.root; node; node = node->firstChild) {
        ++levels;
        deepest = node;
    }
    EXPECT_EQ(levels, depth);
    EXPECT_EQ(deepest->line, depth - 1);
}

namespace {

struct TaggedElement : XMLElement {
    using XMLElement::XMLElement;
};

struct TaggingDocument : XMLDocument {
    XMLElement *createElement(std::string_view tagName) override {
        ++created;
        return new TaggedElement(tagName);
    }
    int created = 0;
};

} // namespace

TEST(XMLParser, ElementsComeFromTheFactory) {
    TaggingDocument document;
    ASSERT_TRUE(document.parse("<a><b/><c><d/></c></a>"));
    EXPECT_EQ(document.created, 4);
    for (const XMLNode *node = document.root; node; node = node->firstChild)
        EXPECT_NE(dynamic_cast<const TaggedElement *>(node), nullptr);
}
