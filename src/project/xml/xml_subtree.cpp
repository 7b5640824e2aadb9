#include "project/xml/xml_subtree.h"

#include "project/xml/xml_document.h"

#include <cctype>

namespace {

// The node that follows `node` in document order within the subtree of
// `top`, children first; null at the end.
const XMLNode *nextInSubtree(const XMLNode *node, const XMLNode *top) {
    if (node->firstChild)
        return node->firstChild;
    while (node != top && !node->nextSibling)
        node = node->parent;
    return node == top ? nullptr : node->nextSibling;
}

XMLNode *copyNode(XMLDocument &factory, const XMLNode *node) {
    XMLNode *copy = nullptr;
    switch (node->kind()) {
    case XMLNode::Kind::Element: {
        const XMLElement *element = node->toElement();
        XMLElement *made = factory.createElement(element->tagName);
        for (const auto &[name, value] : element->attributes())
            made->setAttribute(name.c_str(), value ? value->c_str() : nullptr);
        copy = made;
        break;
    }
    case XMLNode::Kind::Data:
        copy = new XMLData(static_cast<const XMLData *>(node)->text());
        break;
    case XMLNode::Kind::Comment:
        copy = new XMLComment(static_cast<const XMLComment *>(node)->text());
        break;
    case XMLNode::Kind::CDATASection:
        copy = new XMLCDATASection(static_cast<const XMLCDATASection *>(node)->text());
        break;
    }
    copy->line = node->line;
    return copy;
}

} // namespace

std::size_t countSubtree(const XMLNode *node) {
    std::size_t count = 0;
    for (const XMLNode *at = node; at; at = nextInSubtree(at, node))
        ++count;
    return count;
}

std::size_t countChildren(const XMLNode *node) {
    return node ? countSubtree(node) - 1 : 0;
}

XMLNode *copySubtree(XMLDocument &factory, const XMLNode *node) {
    XMLNode *top = copyNode(factory, node);
    // Walks the original in document order; `copyParent` is the copy of the
    // original's parent at each step.
    XMLNode *copyParent = top;
    const XMLNode *at = node;
    for (;;) {
        if (at->firstChild) {
            if (at != node)
                copyParent = copyParent->lastChild;
            at = at->firstChild;
        } else {
            while (at != node && !at->nextSibling) {
                at = at->parent;
                if (at != node)
                    copyParent = copyParent->parent;
            }
            if (at == node)
                break;
            at = at->nextSibling;
        }
        copyParent->appendChild(copyNode(factory, at));
    }
    return top;
}

void dropBlankText(XMLNode *node) {
    const auto blank = [](const XMLNode *child) {
        if (child->kind() != XMLNode::Kind::Data)
            return false;
        for (const char c : static_cast<const XMLData *>(child)->text()) {
            if (!std::isspace(static_cast<unsigned char>(c)))
                return false;
        }
        return true;
    };
    forEachElement(node, [&](XMLElement &element) {
        XMLNode *previous = nullptr;
        for (XMLNode *child = element.firstChild; child;) {
            XMLNode *next = child->nextSibling;
            if (blank(child)) {
                unlinkChild(&element, previous, child);
                delete child;
            } else {
                previous = child;
            }
            child = next;
        }
    });
}

void unlinkChild(XMLNode *parent, XMLNode *previous, XMLNode *node) {
    if (previous)
        previous->nextSibling = node->nextSibling;
    else
        parent->firstChild = node->nextSibling;
    if (parent->lastChild == node)
        parent->lastChild = previous;
    node->parent = nullptr;
    node->nextSibling = nullptr;
}

void linkChildren(XMLNode *parent, XMLNode *previous, XMLNode *first, XMLNode *last) {
    XMLNode *following = previous ? previous->nextSibling : parent->firstChild;
    for (XMLNode *node = first;; node = node->nextSibling) {
        node->parent = parent;
        if (node == last)
            break;
    }
    last->nextSibling = following;
    if (previous)
        previous->nextSibling = first;
    else
        parent->firstChild = first;
    if (!following)
        parent->lastChild = last;
}

XMLNode *moveChildren(XMLNode *from, XMLNode *parent, XMLNode *previous) {
    XMLNode *first = from->firstChild;
    XMLNode *last = from->lastChild;
    if (!first)
        return previous;
    from->firstChild = from->lastChild = nullptr;
    linkChildren(parent, previous, first, last);
    return last;
}
