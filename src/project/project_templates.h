#pragma once

#include "project/xml/xmlpp2.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class ProjectElement;
class ProjectLoadProgressInterface;
class ProjectSystem;
class XMLElement;

using StringList = std::vector<std::string>;

// A file of project templates, read through the pre-processor without
// macros. A file that doesn't parse has no root.
class ProjectTemplateFile : public XMLPP2 {
public:
    enum Source { FromFile, FromText };
    // `source` is a file name, or with FromText the document itself.
    ProjectTemplateFile(const MacroTable *macroTable, const std::string &source,
                        Source kind = FromFile);
};

// One definition of a template file: its key and its element.
struct ProjectTemplateNode {
    std::string name;
    XMLElement *element = nullptr;
};
// Sorted by name.
using ProjectTemplateNodeList = std::vector<ProjectTemplateNode>;

// The project and configuration templates of a list of files and of the
// built-in text, which is read last. The object owns the files, and with
// them the elements that the lists point to.
class ProjectTemplates {
public:
    // `fileList` is expanded with the macros and split at ";"; each item may
    // hold wildcards.
    ProjectTemplates(const MacroTable &macros, const std::string &fileList);
    ProjectTemplates(const ProjectTemplates &) = delete;
    ProjectTemplates &operator=(const ProjectTemplates &) = delete;
    virtual ~ProjectTemplates();

    // Where duplicates are told; here nowhere.
    virtual void report(const std::string &text);

    // The first template of the name; with a non-zero target the first of
    // the name whose template_target is that target. Null if none.
    XMLElement *findTemplate(const std::string &name, std::uint32_t target) const;
    XMLElement *findConfiguration(const std::string &name, std::uint32_t target) const;
    // Reports neighbours of equal name and template_target.
    void checkDuplicates();

    // The template names, sorted, each once.
    StringList templateNames() const;

    std::vector<std::unique_ptr<ProjectTemplateFile>> files;
    ProjectTemplateNodeList projectTemplates;
    ProjectTemplateNodeList configurationTemplates;
    // The target of the expansion under way.
    ProjectElement *solution = nullptr;
    ProjectElement *project = nullptr;
};

// Templates that tell their duplicates to a load's progress object.
class MyProjectTemplates : public ProjectTemplates {
public:
    MyProjectTemplates(const MacroTable &macros, const std::string &fileList,
                       ProjectLoadProgressInterface *progress)
        : ProjectTemplates(macros, fileList), progress_(progress) {}
    void report(const std::string &text) override;

private:
    ProjectLoadProgressInterface *progress_;
};

// The text of the built-in templates, COMBINING and STAGING.
extern const char *const builtInProjectTemplates;

// template_target of a definition: strtoul with base 0, 0 if missing.
std::uint32_t templateTarget(const XMLElement *element);

// Fills `project` from `templateElement`: its type, its target, and the
// properties, configurations, folders, files, imports and choices of its
// children. `configurations` and `choices` ("name=value") come from the
// caller and may be empty. Warnings go to `progress`, if there is one.
void expandProject(ProjectTemplates &templates, ProjectSystem &system, ProjectElement *solution,
                   ProjectElement *project, XMLElement *templateElement,
                   const StringList &configurations, const StringList &choices,
                   ProjectLoadProgressInterface *progress);
