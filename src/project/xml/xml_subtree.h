#pragma once

#include "project/xml/xml_element.h"

#include <cstddef>

class XMLDocument;

// Whole-subtree helpers for the pre-processors. None of them recurses, so a
// subtree of any depth is fine.

// The number of nodes in the subtree of `node`, itself included.
std::size_t countSubtree(const XMLNode *node);
// The same for all the children of `node`.
std::size_t countChildren(const XMLNode *node);

// A deep copy of `node` that nobody owns yet: elements are made by the
// document's factory (so a copy has the document's element class), with the
// attributes and lines of the original.
XMLNode *copySubtree(XMLDocument &factory, const XMLNode *node);

// Calls `visit` for `node` and every element below it, in document order.
template <typename Visit>
void forEachElement(XMLNode *node, Visit visit);

// Removes every character data node whose text is only white space.
void dropBlankText(XMLNode *node);

// List surgery on the children of `parent` in constant time; `previous` is
// the child before the place (null: the front).
// Unlinks `node`, whose predecessor is `previous`, and clears its links.
void unlinkChild(XMLNode *parent, XMLNode *previous, XMLNode *node);
// Links the chain first..last (joined by nextSibling) behind `previous`.
void linkChildren(XMLNode *parent, XMLNode *previous, XMLNode *first, XMLNode *last);
// Takes all children of `from` and links them behind `previous` among the
// children of `parent`. Returns the last child moved, or `previous` if
// `from` had none.
XMLNode *moveChildren(XMLNode *from, XMLNode *parent, XMLNode *previous);

template <typename Visit>
void forEachElement(XMLNode *node, Visit visit) {
    XMLNode *top = node;
    while (node) {
        if (XMLElement *element = node->toElement())
            visit(*element);
        if (node->firstChild) {
            node = node->firstChild;
            continue;
        }
        while (node != top && !node->nextSibling)
            node = node->parent;
        node = node == top ? nullptr : node->nextSibling;
    }
}
