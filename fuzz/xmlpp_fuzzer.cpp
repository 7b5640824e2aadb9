// Pre-processes arbitrary bytes with both pre-processors, with expansion on
// and off, under small limits. The tree left behind must be well linked and
// must write without trouble.
#include "environment/system_macros.h"
#include "project/xml/xml_pp.h"
#include "project/xml/xml_subtree.h"
#include "project/xml/xmlpp2.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

void fail(const char *what) {
    std::fprintf(stderr, "broken tree: %s\n", what);
    std::abort();
}

// Every child points at its parent, and lastChild is the end of the chain.
void checkLinks(const XMLNode *top) {
    const XMLNode *node = top;
    while (node) {
        const XMLNode *last = nullptr;
        for (const XMLNode *child = node->firstChild; child; child = child->nextSibling) {
            if (child->parent != node)
                fail("parent link");
            last = child;
        }
        if (node->lastChild != last)
            fail("last child");
        if (node->firstChild) {
            node = node->firstChild;
            continue;
        }
        while (node != top && !node->nextSibling)
            node = node->parent;
        node = node == top ? nullptr : node->nextSibling;
    }
}

void smallLimits(PreprocessorLimits &limits) {
    limits.includeDepth = 4;
    limits.nodesMade = 20000;
    limits.scopeBytes = 1 << 20;
    limits.expandedBytes = 1 << 20;
}

SystemMacros &macros() {
    static SystemMacros *table = new SystemMacros;
    return *table;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string text(reinterpret_cast<const char *>(data), size);
    for (const bool expand : {false, true}) {
        XMLPP2 document(&macros());
        smallLimits(document.limits);
        if (document.loadText(text, expand) && document.root) {
            if (document.root->parent || document.root->nextSibling)
                fail("root links");
            checkLinks(document.root);
            std::string out;
            document.write(out, 2, 75);
        }

        XmlPP reader(macros());
        smallLimits(reader.limits);
        if (reader.document.parse(text) && reader.document.root) {
            dropBlankText(reader.document.root);
            MacroMap map;
            reader.processConditionals(reader.document.root, std::string(), map, expand);
            if (reader.document.root) {
                checkLinks(reader.document.root);
                std::string out;
                reader.document.write(out, 2, 75);
            }
        }
    }
    return 0;
}
