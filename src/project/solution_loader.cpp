// Loading a solution: the file and the files it imports, load commands,
// templated projects, the maps, dynamic folders and the environment.

#include "project/load_handlers.h"
#include "project/project_load_progress_interface.h"
#include "project/project_system.h"
#include "project/project_system_process.h"
#include "project/project_system_xml.h"
#include "project/project_templates.h"
#include "support/command_line.h"
#include "support/exceptions.h"
#include "support/file_info.h"
#include "support/file_utils.h"
#include "support/macro_expansion.h"
#include "support/paths.h"
#include "support/text_split.h"

#include <cstdlib>
#include <deque>
#include <memory>

namespace {

const char *const solutionDoctype = "Tarnbench_Project_File";

// Two imports of one file at two places of a tree aren't a cycle, so a few
// files that each import the next twice would make copies without end. A
// load reads at most this many solution files.
constexpr std::size_t maximumSolutionFiles = 10000;

// The names of the target codes that a solution may state.
std::string targetName(unsigned long code) {
    static const char *const names[] = {
        "MULTOS", "OTA",  "RTX",  "AVR",   "Windows Smart Card", "Lightfoot", "Java Card",
        "ARM",    "MSP430", "CPU11", "OSVM", "CPU08", "SH4",     "Win32",     "Linux",
        "MacOS",  "Solaris", "MAXQ", "MAXQ30", "RISC-V"};
    if (code >= 1 && code <= std::size(names))
        return names[code - 1];
    return std::to_string(code);
}

// The decimal value of `target`; false if the attribute is missing or isn't
// a whole number.
bool statedTarget(const ProjectElement *root, unsigned long &code) {
    const std::string *text = root->attribute("target");
    if (!text || text->empty())
        return false;
    char *end = nullptr;
    code = std::strtoul(text->c_str(), &end, 10);
    return end && *end == '\0';
}

// Keeps count of the progress steps a load opens, so that a failure can
// close them all before it is thrown.
class ProgressSteps {
public:
    explicit ProgressSteps(ProjectLoadProgressInterface *progress) : progress_(progress) {}
    void begin(const std::string &text, int level) {
        if (progress_) {
            progress_->beginTask(text, level);
            ++open_;
        }
    }
    void end() {
        if (progress_ && open_ > 0) {
            progress_->endTask();
            --open_;
        }
    }
    void setProgress(int done, int total) {
        if (progress_)
            progress_->setProgress(done, total);
    }
    [[noreturn]] void fail(SolutionLoadError error) {
        while (open_ > 0)
            end();
        throw error;
    }
    ProjectLoadProgressInterface *progress() const { return progress_; }

private:
    ProjectLoadProgressInterface *progress_;
    int open_ = 0;
};

// Sets "name=value" items in the program's environment, for the rest of the
// process and the children it starts.
void setEnvironmentPairs(const std::vector<std::string> &pairs) {
    for (const std::string &pair : pairs) {
        const std::size_t equals = pair.find('=');
        if (equals == std::string::npos)
            setEnvironment(pair, "");
        else
            setEnvironment(pair.substr(0, equals), pair.substr(equals + 1));
    }
}

// Reads a solution file and the files that its imports name into one tree.
// The tree is built without recursion: the nodes wait on a stack, and an
// import pushes the file it names, whose end is handled once its nodes are
// done, as a recursive reader would.
class SolutionReader {
public:
    SolutionReader(ProjectSystem &system, ProjectFileNotFoundErrorHandler *handler, ProgressSteps &steps)
        : system_(system), handler_(handler), steps_(steps) {}

    // The root of the file, with the files it imports in place.
    ProjectElement *read(const std::string &baseDirectory, const std::string &fileName,
                         const std::string *macroText);

private:
    // A file whose tree is being built.
    struct OpenFile {
        std::string path;
        std::string directory;
        ProjectElement *root = nullptr;
    };
    struct Work {
        enum Kind { Visit, EndFile };
        Kind kind;
        ProjectElement *element;
        OpenFile *file;
    };

    OpenFile *beginFile(const std::string &baseDirectory, std::string fileName,
                        const std::string *macroText);
    void endFile(OpenFile &file);
    void visit(ProjectElement *element, OpenFile &file);
    void runLoadCommands(const std::string &commandText, const ProjectElement *root,
                         const std::string &directory, const std::string &path);

    ProjectSystem &system_;
    ProjectFileNotFoundErrorHandler *handler_;
    ProgressSteps &steps_;
    std::deque<OpenFile> files_;
    std::vector<Work> work_;
};

ProjectElement *SolutionReader::read(const std::string &baseDirectory, const std::string &fileName,
                                     const std::string *macroText) {
    // Until it is done, the tree belongs to the reader.
    OpenFile *first = beginFile(baseDirectory, fileName, macroText);
    std::unique_ptr<ProjectElement> owner(first->root);
    work_.push_back({Work::EndFile, nullptr, first});
    work_.push_back({Work::Visit, first->root, first});
    while (!work_.empty()) {
        const Work item = work_.back();
        work_.pop_back();
        if (item.kind == Work::EndFile)
            endFile(*item.file);
        else
            visit(item.element, *item.file);
        // An import at the top replaces the file's root.
        if (first->root != owner.get()) {
            owner.release();
            owner.reset(first->root);
        }
    }
    return owner.release();
}

SolutionReader::OpenFile *SolutionReader::beginFile(const std::string &baseDirectory, std::string fileName,
                                                    const std::string *macroText) {
    FileInfo info(fileName);
    for (;;) {
        if (info.exists())
            break;
        if (!baseDirectory.empty() && info.isRelative()) {
            const FileInfo joined(baseDirectory + "/" + fileName);
            if (joined.exists()) {
                info = joined;
                break;
            }
        }
        if (!handler_ || !handler_->locate(fileName))
            steps_.fail(SolutionLoadError(" does not exist", false, fileName));
        info = FileInfo(fileName);
    }
    if (info.isDir() || !info.isReadable())
        steps_.fail(SolutionLoadError(" cannot access", false, fileName));

    steps_.begin("Loading solution " + info.fileName(), 2);
    const std::string path = info.absoluteFilePath();
    for (const std::string &loaded : system_.loadedFiles) {
        if (loaded == path)
            steps_.fail(SolutionLoadError(" solution already loaded", false, path));
    }
    if (files_.size() >= maximumSolutionFiles)
        steps_.fail(SolutionLoadError(" imports more than " + std::to_string(maximumSolutionFiles) +
                                          " solution files",
                                      false, path));

    ProjectSystemXMLPP2 document(&system_, system_.macros);
    document.progress = steps_.progress();
    const bool withMacros = macroText && !macroText->empty();
    if (!document.load(path, withMacros ? *macroText : std::string(), withMacros))
        steps_.fail(SolutionLoadError(document.errorText, true, fileName, document.errorLine));
    if (document.doctype != solutionDoctype)
        steps_.fail(SolutionLoadError(" not a solution file", false, fileName));
    if (!document.root)
        steps_.fail(SolutionLoadError(" is a malformed solution file (bad XML)", false, fileName));

    // The document keeps the tree until the steps that may fail are done.
    ProjectElement *root = document.projectRoot();
    const std::string directory = info.absolutePath();
    system_.loadedFiles.push_back(path);

    if (const std::string *command = root->attribute("load_command")) {
        const std::string expanded = system_.macros ? expandMacros(*system_.macros, *command) : *command;
        if (!expanded.empty())
            runLoadCommands(expanded, root, directory, path);
    }
    if (const std::string *templates = root->attribute("templates_file")) {
        const MacroMap local{{"SolutionDir", directory}};
        std::string expanded =
            system_.macros ? expandMacrosWith(*system_.macros, local, *templates, true, true) : *templates;
        if (!expanded.empty()) {
            if (isRelativePath(expanded))
                expanded = directory + "/" + expanded;
            system_.templatesFilePath = expanded;
        }
    }

    OpenFile &file = files_.emplace_back();
    file.path = path;
    file.directory = directory;
    file.root = root;
    document.takeRoot();
    return &file;
}

void SolutionReader::runLoadCommands(const std::string &commandText, const ProjectElement *root,
                                     const std::string &directory, const std::string &path) {
    steps_.begin("Executing load commands", 2);
    const std::string *environmentText = root->attribute("load_command_environment");
    const std::string environment =
        !environmentText ? std::string()
        : system_.macros ? expandMacros(*system_.macros, *environmentText)
                         : *environmentText;
    const std::vector<std::string> pairs = splitAtAny(environment, ";");
    for (const std::string &command : splitCommandChain(commandText, "&&")) {
        const std::vector<std::string> arguments = splitCommandLine(command);
        ProjectSystemProcess process(steps_.progress(), arguments, directory, pairs);
        const int status = process.exitStatus();
        if (status == 0)
            continue;
        if (status == -1)
            steps_.fail(SolutionLoadError(
                "solution load command \"" + (arguments.empty() ? std::string() : arguments[0]) + "\" not found",
                false, path));
        steps_.fail(SolutionLoadError("solution load command failed (" + std::to_string(status) + ") ", false,
                                      path));
    }
    steps_.end();
}

void SolutionReader::visit(ProjectElement *element, OpenFile &file) {
    if (element->tagName == "import") {
        const std::string fileName = element->attribute("file_name") ? *element->attribute("file_name") : "";
        const std::string macroText = element->attribute("macros") ? *element->attribute("macros") : "";
        const std::string *canModify = element->attribute("can_modify_solution");
        const bool modifiable = !canModify || *canModify != "No";
        const SystemMacros *table = system_.macros;
        const std::string expandedName = table ? expandMacros(*table, fileName) : fileName;
        const std::string expandedMacros = table ? expandMacros(*table, macroText) : macroText;

        OpenFile *imported = beginFile(file.directory, expandedName, &expandedMacros);
        ProjectElement *child = imported->root;
        child->XMLElement::setAttribute("file_name", fileName);
        child->imported = true;
        child->canModify = modifiable;
        if (ProjectElement *parent = ProjectSystem::parent(element)) {
            parent->replaceChild(element, child);
        } else {
            file.root = child;
        }
        system_.importElements.push_back(element);
        work_.push_back({Work::EndFile, nullptr, imported});
        work_.push_back({Work::Visit, child, imported});
        return;
    }

    if (element->hasAttribute("template_name"))
        system_.templatedProjects.push_back(element);
    else if (element->hasAttribute("path"))
        system_.dynamicFolders.push_back(element);

    std::vector<ProjectElement *> children;
    for (ProjectElement *child = ProjectSystem::firstChild(element); child;
         child = ProjectSystem::nextSibling(child))
        children.push_back(child);
    for (ProjectElement *child : children) {
        if (ProjectSystem::isConfiguration(child))
            element->configurations.emplace(system_.elementName(child), child);
    }
    const bool counting = steps_.progress() && steps_.progress()->depth() == 1;
    for (std::size_t i = children.size(); i-- > 0;)
        work_.push_back({Work::Visit, children[i], &file});
    if (counting)
        steps_.setProgress(0, int(children.size()));
    if (system_.trackingChanges)
        element->modified = false;
}

void SolutionReader::endFile(OpenFile &file) {
    ProjectElement *root = file.root;
    root->filePath = FilePath(file.path);
    root->fileTime = root->filePath.lastModified();
    system_.loadedFiles.pop_back();

    if (const std::string *version = root->attribute("version"); !version || *version != "2") {
        root->XMLElement::setAttribute("version", "2");
        ProjectSystem::clearModified(root, false);
        system_.undoList.clear();
    }
    for (ProjectElement *import : system_.importElements)
        delete import;
    system_.importElements.clear();

    setEnvironmentPairs(system_.getPropertyList("", root, system_.nodeProperties.environmentVariables,
                                                "Common", true, false, false));
    steps_.end();
}

}  // namespace

ProjectElement *ProjectSystem::loadSolution(const std::string &fileName,
                                            ProjectFileNotFoundErrorHandler *fileNotFoundHandler,
                                            TemplateNotFoundErrorHandler *templateHandler,
                                            ProjectLoadProgressInterface *progress, bool checkTarget) {
    close();
    trackingChanges = false;
    ProgressSteps steps(progress);
    solution = SolutionReader(*this, fileNotFoundHandler, steps).read("", fileName, nullptr);

    unsigned long target = 0;
    if (checkTarget && statedTarget(solution, target) && target != 0 &&
        target != static_cast<unsigned long>(platformCode()))
        steps.fail(SolutionLoadError("invalid solution target (" + targetName(target) + ")", false, fileName));

    if (!templatedProjects.empty())
        expandTemplatedProjects(templateHandler, progress);

    finishLoad(progress);

    currentSolutionFile = fileName;
    loadTime = FileTime::now();
    trackingChanges = true;
    return solution;
}

void ProjectSystem::finishLoad(ProjectLoadProgressInterface *progress) {
    ProgressSteps steps(progress);
    steps.begin("Mapping project information", 0);
    mapProjects(progress);
    steps.end();

    migrateElement(solution);

    if (!dynamicFolders.empty()) {
        steps.begin("Populating dynamic folders", 3);
        int done = 0;
        for (ProjectElement *folder : dynamicFolders) {
            ProjectElement *project = projectOf(folder);
            std::string title = "Populating folder '" + elementName(folder) + "'";
            if (project)
                title += " in project '" + elementName(project) + "'";
            steps.begin(title, 3);
            populateFolder(folder, "Common");
            steps.end();
            steps.setProgress(++done, int(dynamicFolders.size()));
        }
        steps.end();
    }
}

ProjectElement *ProjectSystem::readSolutionFile(const std::string &baseDirectory,
                                                const std::string &fileName,
                                                ProjectFileNotFoundErrorHandler *fileNotFoundHandler,
                                                ProjectLoadProgressInterface *progress,
                                                const std::string *macroText) {
    ProgressSteps steps(progress);
    return SolutionReader(*this, fileNotFoundHandler, steps).read(baseDirectory, fileName, macroText);
}

// Each project that names a template is filled from it; the templates are
// read once for all of them.
void ProjectSystem::expandTemplatedProjects(TemplateNotFoundErrorHandler *templateHandler,
                                            ProjectLoadProgressInterface *progress) {
    ProgressSteps steps(progress);
    steps.begin("Expanding templated projects", 0);
    static const MacroTable noMacros;
    MyProjectTemplates templates(macros ? *macros : noMacros, projectTemplatesFile(), progress);
    templates.checkDuplicates();
    const int total = int(templatedProjects.size());
    int done = 0;
    for (ProjectElement *project : std::vector<ProjectElement *>(templatedProjects)) {
        steps.setProgress(done++, total);
        const std::string name = attribute(project, "Name").value_or("");
        std::string templateName = attribute(project, "template_name").value_or("");
        const std::string configurations = attribute(project, "template_configurations").value_or("");
        const std::string choices = attribute(project, "template_choices").value_or("");
        steps.begin("Expanding project '" + name + "'", 0);
        for (const char *attributeName : {"template_name", "template_configurations", "template_choices"})
            removeAttribute(project, attributeName);
        if (templateName.empty() &&
            (!templateHandler || !templateHandler->chooseTemplate(&templates, name, templateName))) {
            close();
            steps.fail(SolutionLoadError(name, false, "no template for project "));
        }
        XMLElement *definition = templates.findTemplate(templateName, 0);
        if (!definition) {
            close();
            steps.fail(SolutionLoadError("project template not found", false, templateName));
        }
        try {
            expandProject(templates, *this, solutionOf(project), project, definition,
                          splitAtAny(configurations, ";"), splitAtAny(choices, ";"), progress);
        } catch (const SolutionLoadError &error) {
            steps.fail(error);
        }
        steps.end();
    }
    steps.end();
}

void ProjectSystem::setProjectTarget(ProjectElement *, std::uint32_t) {}

std::string ProjectSystem::projectTemplatesFile() {
    return macros ? expandSystemMacros(*macros, templatesFilePath) : templatesFilePath;
}

ProjectElement *ProjectSystem::importSolution(ProjectElement *parentElement, const std::string &fileName,
                                              ProjectFileNotFoundErrorHandler *fileNotFoundHandler,
                                              ProjectLoadProgressInterface *progress) {
    if (!parentElement)
        return nullptr;
    loadedFiles.clear();
    for (ProjectElement *s = solutionOf(parentElement); s; s = solutionOf(parent(s)))
        loadedFiles.insert(loadedFiles.begin(), s->filePath.absoluteFilePath());

    ProjectElement *owner = solutionOf(parentElement);
    const std::string base = owner && !owner->filePath.isEmpty() ? owner->filePath.path(true) : std::string();
    std::string name = fileName;
    std::string stored = fileName;
    if (fileName.find('$') == std::string::npos) {
        std::string relative;
        if (!base.empty() && relativeFilePath(base, FileInfo(fileName).absoluteFilePath(), relative))
            stored = relative;
    } else if (macros) {
        name = expandMacros(*macros, fileName);
    }
    for (ProjectElement *child = firstChild(parentElement); child; child = nextSibling(child)) {
        if (attribute(child, "file_name") == stored)
            return child;
    }

    std::unique_ptr<ProjectElement> root(readSolutionFile(base, name, fileNotFoundHandler, progress, nullptr));
    loadedFiles.clear();
    unsigned long target = 0;
    if (statedTarget(root.get(), target) && target != static_cast<unsigned long>(platformCode()))
        throw SolutionLoadError("incompatible solution target (" + targetName(target) + ")", false, base);
    root->XMLElement::setAttribute("file_name", stored);
    root->imported = true;
    root->canModify = true;
    ProjectElement *child = root.release();
    addChild(parentElement, child);
    mapProjects();
    return child;
}

void ProjectSystem::migrateElement(ProjectElement *) {}
