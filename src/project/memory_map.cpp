#include "project/memory_map.h"

#include "support/file_info.h"
#include "support/simple_expression_parser.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <utility>
#include <vector>

// ---- Elements.

MemoryMapElement::MemoryMapElement(std::string_view tag, bool readOnlyFile)
    : XMLElement(tag), kind(kindOf(tag)), readOnly(readOnlyFile) {
    setClassMark(classMark);
}

MemoryMapElement::Kind MemoryMapElement::kindOf(std::string_view tag) {
    static constexpr std::array<std::string_view, 9> tags{
        "MemorySegment", "Register", "ProgramSection", "Root", "RegisterGroup",
        "BitField",      "Enum",     "Processor",      "Vector"};
    for (std::size_t i = 0; i < tags.size(); ++i)
        if (tags[i] == tag)
            return static_cast<Kind>(i);
    return Other;
}

const char *MemoryMapElement::text(std::string_view name) const {
    const std::string *value = attribute(name);
    return value ? value->c_str() : nullptr;
}

bool MemoryMapElement::has(std::string_view name) const {
    const std::string *value = attribute(name);
    return value && !value->empty();
}

std::uint64_t MemoryMapElement::number(std::string_view name) const {
    const char *value = text(name);
    return value ? std::strtoull(value, nullptr, 0) : 0;
}

MemoryMapElement::Access MemoryMapElement::access() const {
    const std::string *value = attribute("access");
    if (!value)
        return ReadWrite;
    if (*value == "ReadOnly")
        return ReadOnly;
    if (*value == "WriteOnly")
        return WriteOnly;
    if (*value == "None")
        return NoAccess;
    return ReadWrite;
}

MemoryMapElement *MemoryMapElement::firstChildElement() const {
    for (XMLNode *node = firstChild; node; node = node->nextSibling)
        if (MemoryMapElement *element = from(node))
            return element;
    return nullptr;
}

MemoryMapElement *MemoryMapElement::nextSiblingElement() const {
    for (XMLNode *node = nextSibling; node; node = node->nextSibling)
        if (MemoryMapElement *element = from(node))
            return element;
    return nullptr;
}

// ---- The document.

MemoryMap::MemoryMap(SystemMacros *macroTable) : XMLPP2(macroTable), systemMacros(macroTable) {}

MemoryMap::~MemoryMap() {
    for (XMLElement *element : replacedImports_)
        delete element;
}

XMLElement *MemoryMap::createElement(std::string_view tagName) {
    return new MemoryMapElement(tagName, readOnly);
}

bool MemoryMap::load(const std::string &name, const std::string &macroText, bool preprocessFile) {
    preprocess = preprocessFile;
    macroList = macroText;
    fileName.clear();  // a relative name is the caller's, not an earlier file's
    MemoryMapElement *top = readRoot(name);
    if (!top)
        return false;
    delete root;
    root = top;
    rootTag = top->tagName;
    fileName = name;
    processImports(top);
    evaluateAddresses(top);
    return true;
}

MemoryMapElement *MemoryMap::readRoot(const std::string &name) {
    std::string path = name;
    if (systemMacros)
        path = expandMacros(*systemMacros, path);
    if (isRelativePath(path) && !fileName.empty())
        path = absolutePathFrom(FileInfo(fileName).absolutePath(), path);
    const FileInfo info(path);
    if (!info.isFile())
        return nullptr;

    const bool previousReadOnly = readOnly;
    readOnly = !info.isWritable();
    XMLElement *const previousRoot = root;
    root = nullptr;
    const bool parsed = preprocess ? XMLPP2::load(path, macroList, false) : XMLDocument::load(path.c_str());
    XMLElement *tree = parsed ? takeRoot() : nullptr;
    delete root;
    root = previousRoot;
    readOnly = previousReadOnly;

    MemoryMapElement *result = MemoryMapElement::from(tree);
    if (!result) {
        delete tree;
        return nullptr;
    }
    result->modified = info.lastModified();
    return result;
}

void MemoryMap::processImports(MemoryMapElement *top) {
    XMLNode *previous = nullptr;
    for (XMLNode *node = top->firstChild; node; previous = node, node = node->nextSibling) {
        XMLElement *element = node->toElement();
        if (!element || element->tagName != "Import")
            continue;
        const std::string *importName = element->attribute("filename");
        MemoryMapElement *imported = importName ? readRoot(*importName) : nullptr;
        if (!imported)
            continue;
        // The imported root takes the Import element's place; the Import
        // element is kept for the link back to it.
        imported->parent = top;
        imported->nextSibling = element->nextSibling;
        if (previous)
            previous->nextSibling = imported;
        else
            top->firstChild = imported;
        if (top->lastChild == element)
            top->lastChild = imported;
        element->nextSibling = nullptr;
        imported->import = element;
        replacedImports_.push_back(element);
        node = imported;
    }
}

namespace {

// An unsigned expression. Plain numbers, by far the most common, are read
// without the parser.
bool evaluateUnsigned(const std::string &text, SimpleExpressionParser &parser, std::uint64_t &value) {
    const std::size_t digits = text[0] == '+' ? 1 : 0;
    if (text.size() > digits && text[digits] >= '0' && text[digits] <= '9') {
        char *end = nullptr;
        errno = 0;
        value = std::strtoull(text.c_str() + digits, &end, 0);
        if (*end == '\0' && errno == 0)
            return true;
    }
    bool ok = false;
    value = parser.evaluateUnsigned(text, ok);
    return ok;
}

// The start attribute: 0 when empty or not a number; a leading "+" adds base.
std::uint64_t evaluateStart(const MemoryMapElement &element, std::uint64_t base,
                            SimpleExpressionParser &parser) {
    const std::string *text = element.attribute("start");
    if (!text || text->empty())
        return 0;
    std::uint64_t value = 0;
    if (!evaluateUnsigned(*text, parser, value))
        value = 0;
    if (text->front() == '+')
        value += base;
    return value;
}

} // namespace

void MemoryMap::evaluateAddresses(MemoryMapElement *top) {
    if (!top)
        return;
    SimpleExpressionParser parser;
    // The walk keeps its own stack: a hostile file may nest deeply.
    std::vector<std::pair<MemoryMapElement *, std::uint64_t>> pending{{top, 0}};
    while (!pending.empty()) {
        auto [element, base] = pending.back();
        pending.pop_back();
        std::uint64_t childBase = base;
        switch (element->kind) {
        case MemoryMapElement::MemorySegment:
        case MemoryMapElement::ProgramSection:
        case MemoryMapElement::RegisterGroup: {
            element->start = evaluateStart(*element, base, parser);
            if (element->hasAttribute("start"))
                childBase = element->start & 0xFFFFFFFFu;
            std::uint64_t size = 0;
            if (const std::string *text = element->attribute("size");
                text && !text->empty() && evaluateUnsigned(*text, parser, size))
                element->size = size;
            break;
        }
        case MemoryMapElement::Register:
            element->start = evaluateStart(*element, base, parser);
            element->size = element->number("size");
            break;
        case MemoryMapElement::BitField:
        case MemoryMapElement::Enum:
            element->start = evaluateStart(*element, 0, parser);
            element->size = element->number("size");
            break;
        default:
            break;
        }
        // Children go on the stack last first, so that they are met in order.
        const std::size_t mark = pending.size();
        for (MemoryMapElement *child = element->firstChildElement(); child; child = child->nextSiblingElement())
            pending.emplace_back(child, childBase);
        std::reverse(pending.begin() + static_cast<std::ptrdiff_t>(mark), pending.end());
    }
}

MemoryMapElement *MemoryMap::findElement(MemoryMapElement *element, std::string_view name,
                                         MemoryMapElement::Kind kind) {
    std::vector<MemoryMapElement *> pending;
    if (element)
        pending.push_back(element);
    while (!pending.empty()) {
        MemoryMapElement *node = pending.back();
        pending.pop_back();
        if (node->kind == kind) {
            const std::string *nodeName = node->attribute("name");
            if (nodeName && *nodeName == name)
                return node;
        }
        const std::size_t mark = pending.size();
        for (MemoryMapElement *child = node->firstChildElement(); child; child = child->nextSiblingElement())
            pending.push_back(child);
        std::reverse(pending.begin() + static_cast<std::ptrdiff_t>(mark), pending.end());
    }
    return nullptr;
}
