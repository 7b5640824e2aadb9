#pragma once

#include "project/xml/xml_node.h"

// Walks over a subtree in document order, each node before its children,
// without a stack: trees may be far deeper than the call stack allows.

// The node after `node` in the subtree of `root`, or null at the end. With
// `descend` false the children of `node` are passed over.
inline XMLNode *nextInSubtree(XMLNode *node, const XMLNode *root, bool descend) {
    if (descend && node->firstChild)
        return node->firstChild;
    while (node && node != root) {
        if (node->nextSibling)
            return node->nextSibling;
        node = node->parent;
    }
    return nullptr;
}
