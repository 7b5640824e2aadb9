#pragma once

#include "environment/system_macros.h"
#include "project/project_element.h"
#include "project/xml/xmlpp2.h"

#include <string>
#include <string_view>

class ProjectLoadProgressInterface;
class ProjectSystem;

// The document that reads a solution file: every element it creates is a
// ProjectElement of the project system, the tree is pre-processed, and then
// the configuration children of every node are entered in the node's map,
// the first of a name winning.
class ProjectSystemXMLPP2 : public XMLPP2 {
public:
    ProjectSystemXMLPP2(ProjectSystem *projectSystem, SystemMacros *macroTable,
                        bool keepCharacterData = false)
        : XMLPP2(macroTable, keepCharacterData), projectSystem_(projectSystem), systemMacros_(macroTable) {}

    XMLElement *createElement(std::string_view tagName) override;
    // A line for the load progress, if there is one; else the trace.
    void warning(const std::string &text) override;

    // Parse and pre-process; `macroText` starts the local macros.
    bool parse(const std::string &text);
    bool load(const std::string &fileName, const std::string &macroText = std::string(),
              bool expandAttributes = false);

    // The root as the node it is; null if there is none.
    ProjectElement *projectRoot() const { return ProjectElement::from(root); }

    // Where warnings go while a solution loads.
    ProjectLoadProgressInterface *progress = nullptr;

private:
    bool mapRoot(bool parsed);

    ProjectSystem *projectSystem_;
    SystemMacros *systemMacros_;
};
