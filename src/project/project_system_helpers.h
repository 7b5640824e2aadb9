#pragma once

#include <string>
#include <vector>

class ProjectElement;

// How a project system calls its owner: a warning that the user must see,
// about a node in a configuration. The front end decides where it goes.
class ProjectSystemHelpers {
public:
    virtual ~ProjectSystemHelpers() = default;
    virtual void warning(ProjectElement *element, const std::string &configuration,
                         const std::string &title, const std::vector<std::string> &messages) = 0;
};
