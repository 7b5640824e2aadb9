#pragma once

#include <string>

class ProjectTemplates;

// Asked when a solution file or an import doesn't exist. True: the handler
// has changed `fileName`, and the load tries again with it.
class ProjectFileNotFoundErrorHandler {
public:
    virtual ~ProjectFileNotFoundErrorHandler() = default;
    virtual bool locate(std::string &fileName) = 0;
};

// Asked when a templated project names no template. True with
// `templateName` set to the one chosen.
class TemplateNotFoundErrorHandler {
public:
    virtual ~TemplateNotFoundErrorHandler() = default;
    virtual bool chooseTemplate(ProjectTemplates *templates, const std::string &projectName,
                                std::string &templateName) = 0;
};
