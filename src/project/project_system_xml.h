#pragma once

#include "project/project_element.h"
#include "project/xml/qxml_document.h"

#include <string>
#include <string_view>

class ProjectSystem;
class SystemMacros;

// The document that reads a solution file: every element it creates is a
// ProjectElement of the project system, and after a parse the configuration
// children of every node are entered in the node's map, the first of a name
// winning.
class ProjectSystemXMLPP2 : public QXMLDocument {
public:
    ProjectSystemXMLPP2(ProjectSystem *projectSystem, SystemMacros *macros,
                        bool keepCharacterData = false)
        : QXMLDocument(keepCharacterData), projectSystem_(projectSystem), macros_(macros) {}

    XMLElement *createElement(std::string_view tagName) override;

    bool parse(const std::string &text);
    bool load(const std::string &fileName);

    // The root as the node it is; null if there is none.
    ProjectElement *projectRoot() const { return ProjectElement::from(root); }

private:
    bool mapRoot(bool parsed);

    ProjectSystem *projectSystem_;
    SystemMacros *macros_;
};
