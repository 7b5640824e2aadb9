#include "project/xml/xml_node.h"

#include "project/xml/xml_element.h"

namespace {

XMLNode *lastOfChain(XMLNode *node) {
    while (node->nextSibling)
        node = node->nextSibling;
    return node;
}

} // namespace

// Deleting children one inside the other would recurse as deep as the tree.
// Instead the subtree is flattened: each node's children are spliced in front
// of the pending chain before the node itself is deleted childless.
XMLNode::~XMLNode() {
    XMLNode *pending = firstChild;
    firstChild = lastChild = nullptr;
    while (pending) {
        XMLNode *node = pending;
        pending = node->nextSibling;
        if (node->firstChild) {
            lastOfChain(node->firstChild)->nextSibling = pending;
            pending = node->firstChild;
            node->firstChild = node->lastChild = nullptr;
        }
        delete node;
    }
}

XMLElement *XMLNode::toElement() {
    return isElement() ? static_cast<XMLElement *>(this) : nullptr;
}

const XMLElement *XMLNode::toElement() const {
    return isElement() ? static_cast<const XMLElement *>(this) : nullptr;
}

void XMLNode::appendChild(XMLNode *child) {
    child->parent = this;
    child->nextSibling = nullptr;
    if (lastChild)
        lastChild->nextSibling = child;
    else
        firstChild = child;
    lastChild = child;
}

void XMLNode::prependChild(XMLNode *child) {
    child->parent = this;
    child->nextSibling = firstChild;
    firstChild = child;
    if (!lastChild)
        lastChild = child;
}

void XMLNode::removeChild(XMLNode *child) {
    XMLNode *previous = nullptr;
    for (XMLNode *node = firstChild; node; previous = node, node = node->nextSibling) {
        if (node != child)
            continue;
        if (previous)
            previous->nextSibling = child->nextSibling;
        else
            firstChild = child->nextSibling;
        if (lastChild == child)
            lastChild = previous;
        return;
    }
}

void XMLNode::replaceChild(XMLNode *oldChild, XMLNode *newChild) {
    XMLNode *previous = nullptr;
    for (XMLNode *node = firstChild; node; previous = node, node = node->nextSibling) {
        if (node != oldChild)
            continue;
        newChild->parent = this;
        newChild->nextSibling = oldChild->nextSibling;
        if (previous)
            previous->nextSibling = newChild;
        else
            firstChild = newChild;
        if (lastChild == oldChild)
            lastChild = newChild;
        return;
    }
}

void XMLNode::insertAfter(XMLNode *sibling, XMLNode *newChild) {
    XMLNode *node = firstChild;
    while (node && node != sibling)
        node = node->nextSibling;
    XMLNode *last = newChild;
    for (;;) {
        last->parent = this;
        if (!last->nextSibling)
            break;
        last = last->nextSibling;
    }
    if (!node) {
        if (lastChild)
            lastChild->nextSibling = newChild;
        else
            firstChild = newChild;
        lastChild = last;
        return;
    }
    last->nextSibling = node->nextSibling;
    node->nextSibling = newChild;
    if (lastChild == node)
        lastChild = last;
}
