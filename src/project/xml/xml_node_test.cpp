#include "project/xml/xml_element.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

// The tag names of a node's children, read forwards through nextSibling,
// checked against parent links and lastChild on the way.
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
    for (char tag : std::string("abcdemnuvwxyz"))
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
        {[&] { parent.removeChild(n['z']); }, "xcmn"},
        {[&] { parent.removeChild(n['c']); }, "xmn"},
        {[&] { parent.removeChild(n['n']); }, "xm"},
        {[&] { parent.removeChild(n['x']); }, "m"},
        {[&] { parent.removeChild(n['m']); }, ""},
        {[&] { parent.appendChild(n['d']); }, "d"},
        {[&] { parent.removeChild(n['d']); }, ""},
        {[&] { parent.insertAfter(nullptr, n['e']); }, "e"},
        {[&] { parent.removeChild(n['e']); }, ""},
    };
    for (const auto &step : steps) {
        step.change();
        EXPECT_EQ(childTags(parent), step.tags);
    }
    EXPECT_EQ(n['e']->line, -1);
    // A removed child keeps its links, so that a loop may go on from it.
    EXPECT_EQ(n['y']->nextSibling, n['b']);
    EXPECT_EQ(n['y']->parent, &parent);
}

TEST(XMLNode, DeepAndWideTreesAreDeletedWithoutRecursion) {
    // Counts destructor calls so that the test sees every node go.
    struct CountedElement : XMLElement {
        explicit CountedElement(int &count) : XMLElement("n"), count_(count) {}
        ~CountedElement() override { ++count_; }
        int &count_;
    };
    int deleted = 0;
    auto *root = new CountedElement(deleted);
    XMLNode *node = root;
    for (int i = 0; i < 100000; ++i, node = node->lastChild)
        node->appendChild(new CountedElement(deleted));
    for (int i = 0; i < 1000; ++i)
        root->appendChild(new CountedElement(deleted));
    delete root;
    EXPECT_EQ(deleted, 101001);
}

TEST(XMLElement, Attributes) {
    XMLElement e("configuration");
    // In byte order of the names.
    for (const char *name : {"file_name", "Name", "build_quietly", "\xc3\xa9", "c_preprocessor_definitions"})
        e.setAttribute(name, "x");
    std::string names;
    for (const auto &attribute : e.attributes())
        names += attribute.first + " ";
    EXPECT_EQ(names, "Name build_quietly c_preprocessor_definitions file_name \xc3\xa9 ");

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
    EXPECT_EQ(*e.attribute(""), "v");
    EXPECT_EQ(*e.attribute(static_cast<const char *>(nullptr)), "v");
    e.setAttribute("flag", nullptr);
    EXPECT_TRUE(e.hasAttribute("flag"));
    EXPECT_EQ(e.attribute("flag"), nullptr);
    EXPECT_FALSE(e.attributes().at("flag").has_value());
    e.setAttribute("flag", "");
    EXPECT_EQ(*e.attribute("flag"), "");
    e.setAttribute("flag", nullptr);
    EXPECT_EQ(e.attribute("flag"), nullptr);

    EXPECT_EQ(e.attribute("missing"), nullptr);
    EXPECT_FALSE(e.hasAttribute("missing"));
    EXPECT_TRUE(e.removeAttribute("flag"));
    EXPECT_FALSE(e.removeAttribute("flag"));
    EXPECT_FALSE(e.hasAttribute("flag"));
}
