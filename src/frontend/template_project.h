#pragma once

#include <iosfwd>
#include <string>
#include <vector>

class ProjectElement;
class ProjectLoadProgressInterface;
class ProjectSystem;

// What a -template or -type run asks for.
struct TemplateProjectRequest {
    std::string projectName;
    std::string projectType;
    std::string templateName;
    // The template files, unexpanded: a ";"-separated list with wildcards.
    std::string templatesFile;
    std::vector<std::string> files;
};

// Makes a solution in memory in the current directory with one project, of
// the type or from the template, with the files added; nothing is written.
// Returns the project. An unknown type or template prints its header and the
// valid names, one a line, on `out` and returns null. The template's
// warnings go to `progress`.
ProjectElement *createTemplateProject(ProjectSystem &system, const TemplateProjectRequest &request,
                                      ProjectLoadProgressInterface *progress, std::ostream &out);
