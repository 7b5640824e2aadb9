#pragma once

#include "project/project_system.h"

#include <vector>

// Visits `first`, the siblings after it and everything below them, each node
// before its children, without recursion: folders may nest deeper than the
// call stack allows. `visit(node)` answers true to enter the node's children.
template <class Visit>
void walkFromSibling(ProjectElement *first, Visit visit) {
    std::vector<ProjectElement *> resume;  // the siblings still to come above
    ProjectElement *node = first;
    while (node || !resume.empty()) {
        if (!node) {
            node = resume.back();
            resume.pop_back();
            continue;
        }
        ProjectElement *next = ProjectSystem::nextSibling(node);
        if (visit(node)) {
            if (ProjectElement *child = ProjectSystem::firstChild(node)) {
                resume.push_back(next);
                node = child;
                continue;
            }
        }
        node = next;
    }
}
