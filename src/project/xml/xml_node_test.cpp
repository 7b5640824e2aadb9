#include "project/xml/xml_element.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// The tag names of a node's children, read forwards through nextSibling,
// checked against parent links and lastChild on the way.
std::string childTags(const XMLNode &node) {
    std::string tags;
    const XMLNode *last = nullptr;
    for (const XMLNode *child = node.firstChild; child; child = child->nextSibling) {
        EXPECT_EQ(child->parent, &node);
        tags += child->toElement()->tagName;
        last = child;
    }
    EXPECT_EQ(node.lastChild, last);
    return tags;
}

XMLElement *element(const char *tag) {
    return new XMLElement(tag);
}

// Counts destructor calls so that tests can see every node go.
struct CountedElement : XMLElement {
    explicit CountedElement(int &count) : XMLElement("n"), count_(count) {}
    ~CountedElement() override { ++count_; }
    int &count_;
};

} // namespace

TEST(XMLNode, AppendAndPrependKeepLinksConsistent) {
    XMLElement parent("p");
    parent.prependChild(element("b"));
    EXPECT_EQ(childTags(parent), "b");
    parent.appendChild(element("c"));
    parent.prependChild(element("a"));
    EXPECT_EQ(childTags(parent), "abc");
    EXPECT_EQ(parent.firstChild->line, -1);
}

TEST(XMLNode, RemoveChildUnlinksWithoutDeletingOrResettingLinks) {
    XMLElement parent("p");
    XMLElement *a = element("a"), *b = element("b"), *c = element("c");
    parent.appendChild(a);
    parent.appendChild(b);
    parent.appendChild(c);

    parent.removeChild(b);
    EXPECT_EQ(childTags(parent), "ac");
    EXPECT_EQ(b->nextSibling, c) << "a loop may go on from the removed child";
    EXPECT_EQ(b->parent, &parent);
    delete b;

    parent.removeChild(c);
    EXPECT_EQ(childTags(parent), "a");
    delete c;
    parent.removeChild(a);
    EXPECT_EQ(childTags(parent), "");
    EXPECT_EQ(parent.firstChild, nullptr);

    XMLElement stranger("s");
    parent.appendChild(a);
    parent.removeChild(&stranger);
    EXPECT_EQ(childTags(parent), "a");
}

TEST(XMLNode, ReplaceChildTakesOverPlaceAndLinks) {
    XMLElement parent("p");
    XMLElement *a = element("a"), *b = element("b"), *c = element("c");
    parent.appendChild(a);
    parent.appendChild(b);
    parent.appendChild(c);

    parent.replaceChild(b, element("x"));
    EXPECT_EQ(childTags(parent), "axc");
    delete b;
    parent.replaceChild(c, element("y"));
    EXPECT_EQ(childTags(parent), "axy");
    delete c;
    parent.replaceChild(a, element("z"));
    EXPECT_EQ(childTags(parent), "zxy");
    delete a;
}

TEST(XMLNode, InsertAfterTakesWholeChainAndFallsBackToTheEnd) {
    XMLElement parent("p");
    XMLElement *a = element("a"), *b = element("b");
    parent.insertAfter(nullptr, a);
    EXPECT_EQ(childTags(parent), "a");
    parent.appendChild(b);

    XMLElement *x = element("x"), *y = element("y");
    x->nextSibling = y;
    parent.insertAfter(a, x);
    EXPECT_EQ(childTags(parent), "axyb");

    XMLElement *m = element("m"), *n = element("n");
    m->nextSibling = n;
    parent.insertAfter(b, m);
    EXPECT_EQ(childTags(parent), "axybmn");

    XMLElement stranger("s");
    parent.insertAfter(&stranger, element("z"));
    EXPECT_EQ(childTags(parent), "axybmnz");
}

TEST(XMLNode, DeepAndWideTreesAreDeletedWithoutRecursion) {
    int deleted = 0;
    auto *root = new CountedElement(deleted);
    XMLNode *node = root;
    for (int i = 0; i < 100000; ++i) {
        auto *child = new CountedElement(deleted);
        node->appendChild(child);
        node = child;
    }
    for (int i = 0; i < 1000; ++i)
        root->appendChild(new CountedElement(deleted));
    delete root;
    EXPECT_EQ(deleted, 101001);
}

TEST(XMLElement, AttributesAreInByteOrder) {
    XMLElement e("configuration");
    e.setAttribute("file_name", "f");
    e.setAttribute("Name", "n");
    e.setAttribute("build_quietly", "No");
    e.setAttribute("\xc3\xa9", "x");
    e.setAttribute("c_preprocessor_definitions", "D");
    std::vector<std::string> names;
    for (const auto &attribute : e.attributes())
        names.push_back(attribute.first);
    EXPECT_EQ(names, (std::vector<std::string>{"Name", "build_quietly", "c_preprocessor_definitions",
                                               "file_name", "\xc3\xa9"}));
}

TEST(XMLElement, SetAttributeReplacesOnlyChangedText) {
    XMLElement e("a");
    const std::string longValue(100, 'v');
    e.setAttribute("k", longValue);
    const std::string *value = e.attribute("k");
    ASSERT_NE(value, nullptr);
    const char *storage = value->data();
    e.setAttribute(std::string("k"), std::string(longValue));
    EXPECT_EQ(e.attribute("k")->data(), storage) << "same text: not assigned";
    e.setAttribute("k", "other");
    EXPECT_EQ(e.attribute("k"), value) << "the value stays where it was";
    EXPECT_EQ(*value, "other");
    EXPECT_EQ(e.attributes().size(), 1u);
}

TEST(XMLElement, NullNameIsTheEmptyKeyAndNullValueIsNoValue) {
    XMLElement e("a");
    e.setAttribute(nullptr, "v");
    ASSERT_NE(e.attribute(""), nullptr);
    EXPECT_EQ(*e.attribute(""), "v");
    EXPECT_EQ(*e.attribute(static_cast<const char *>(nullptr)), "v");

    e.setAttribute("flag", nullptr);
    EXPECT_TRUE(e.hasAttribute("flag"));
    EXPECT_EQ(e.attribute("flag"), nullptr);
    EXPECT_FALSE(e.attributes().at("flag").has_value());
    e.setAttribute("flag", "");
    ASSERT_NE(e.attribute("flag"), nullptr);
    EXPECT_EQ(*e.attribute("flag"), "");
    e.setAttribute("flag", nullptr);
    EXPECT_EQ(e.attribute("flag"), nullptr);

    EXPECT_EQ(e.attribute("missing"), nullptr);
    EXPECT_FALSE(e.hasAttribute("missing"));
    EXPECT_TRUE(e.removeAttribute("flag"));
    EXPECT_FALSE(e.removeAttribute("flag"));
    EXPECT_FALSE(e.hasAttribute("flag"));
}
