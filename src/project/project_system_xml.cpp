#include "project/project_system_xml.h"

#include "project/project_load_progress_interface.h"

XMLElement *ProjectSystemXMLPP2::createElement(std::string_view tagName) {
    return new ProjectElement(tagName, projectSystem_, systemMacros_);
}

void ProjectSystemXMLPP2::warning(const std::string &text) {
    if (progress)
        progress->message(text);
    else
        XMLPP2::warning(text);
}

bool ProjectSystemXMLPP2::parse(const std::string &text) {
    return mapRoot(loadText(text, false));
}

bool ProjectSystemXMLPP2::load(const std::string &fileName, const std::string &macroText,
                               bool expandAttributes) {
    return mapRoot(XMLPP2::load(fileName, macroText, expandAttributes));
}

bool ProjectSystemXMLPP2::mapRoot(bool parsed) {
    if (parsed && root)
        ProjectElement::mapConfigurations(projectRoot());
    return parsed;
}
