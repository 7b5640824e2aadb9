#include "project/project_system_xml.h"

XMLElement *ProjectSystemXMLPP2::createElement(std::string_view tagName) {
    return new ProjectElement(tagName, projectSystem_, macros_);
}

bool ProjectSystemXMLPP2::parse(const std::string &text) {
    return mapRoot(QXMLDocument::parse(text));
}

bool ProjectSystemXMLPP2::load(const std::string &fileName) {
    return mapRoot(QXMLDocument::load(fileName));
}

bool ProjectSystemXMLPP2::mapRoot(bool parsed) {
    if (parsed && root)
        ProjectElement::mapConfigurations(projectRoot());
    return parsed;
}
