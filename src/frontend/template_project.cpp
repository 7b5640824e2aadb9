#include "frontend/template_project.h"

#include "project/project_system.h"
#include "project/project_templates.h"
#include "project/property_class.h"
#include "support/file_info.h"
#include "support/macro_expansion.h"

#include <algorithm>
#include <ostream>

ProjectElement *createTemplateProject(ProjectSystem &system, const TemplateProjectRequest &request,
                                      ProjectLoadProgressInterface *progress, std::ostream &out) {
    const std::string directory = absolutePathOf("");
    ProjectElement *root = system.newSolution(request.projectName, directory, 0);
    if (!request.projectType.empty()) {
        const std::vector<std::string> types = system.nodeProperties.projectType->values();
        if (std::find(types.begin(), types.end(), request.projectType) == types.end()) {
            out << "can't find project type '" << request.projectType << "' project types:\n";
            for (const std::string &type : types)
                out << type << '\n';
            return nullptr;
        }
    }
    ProjectElement *project = system.newProject(root, request.projectName, directory, request.projectType);
    if (!request.templateName.empty()) {
        static const MacroTable noMacros;
        const MacroTable &macros = system.macros ? *system.macros : noMacros;
        ProjectTemplates templates(macros, expandMacros(macros, request.templatesFile));
        XMLElement *definition = templates.findTemplate(request.templateName, 0);
        if (!definition) {
            out << "can't find template '" << request.templateName << "' installed templates:\n";
            for (const std::string &name : templates.templateNames())
                out << name << '\n';
            return nullptr;
        }
        expandProject(templates, system, root, project, definition, {}, {}, progress);
    }
    for (const std::string &fileName : request.files) {
        ProjectElement *file = system.createElement("file");
        system.addChild(project, file);
        system.setFileName(file, fileName);
    }
    system.finishLoad(nullptr);
    return project;
}
