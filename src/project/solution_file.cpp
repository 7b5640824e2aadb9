// Writing a solution file. The tree isn't written directly: a plain XML
// document is built from it, without the nodes that other files or the
// file system own, and that document is written.

#include "project/project_system.h"
#include "project/xml/xml_document.h"

#include <algorithm>
#include <cctype>
#include <utility>

namespace {

const char *const solutionDoctype = "Tarnbench_Project_File";

std::string foldedCase(std::string text) {
    for (char &c : text)
        c = char(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

void copyAttributes(const ProjectElement *source, XMLElement *copy, std::string_view skipped) {
    for (const auto &[name, value] : source->attributes()) {
        if (name == skipped)
            continue;
        copy->setAttribute(name.c_str(), value ? value->c_str() : nullptr);
    }
}

// The order of a sorted save: configurations, folders, files, then the rest.
int sortPass(const ProjectElement *element) {
    switch (element->nodeKind) {
    case ProjectElement::Configuration:
        return 0;
    case ProjectElement::Folder:
        return 1;
    case ProjectElement::File:
        return 2;
    default:
        return 3;
    }
}

} // namespace

XMLElement *ProjectSystem::copyTree(ProjectElement *start, bool sorted) {
    struct Pending {
        ProjectElement *source;
        XMLElement *parent;
    };
    XMLElement *root = nullptr;
    std::vector<Pending> pending{{start, nullptr}};
    std::vector<ProjectElement *> children;
    while (!pending.empty()) {
        const auto [source, parentCopy] = pending.back();
        pending.pop_back();
        children.clear();
        XMLElement *copy;
        if (source != start && isSolution(source) && source->imported) {
            // Its children belong to the imported file.
            copy = new XMLElement("import");
            copy->setAttribute("file_name", source->attribute("file_name")
                                                ? std::string_view(*source->attribute("file_name"))
                                                : std::string_view());
            if (!source->canModify)
                copy->setAttribute("can_modify_solution", "No");
        } else if (isFolder(source) && source->hasAttribute("path")) {
            // The files of a dynamic folder come from the file system.
            copy = new XMLElement(source->tagName);
            copyAttributes(source, copy, {});
            for (ProjectElement *child = firstChild(source); child; child = nextSibling(child))
                if (isConfiguration(child))
                    children.push_back(child);
        } else {
            if (const std::string *name = source->attribute("Name"); !name || name->empty())
                source->removeAttribute("Name");
            if (isFolder(source))
                source->removeAttribute("file_name");
            copy = new XMLElement(source->tagName);
            // An imported solution's file_name is the name it was imported
            // under, which belongs to the importing file.
            copyAttributes(source, copy, source == start && source->imported ? "file_name" : "");
            for (ProjectElement *child = firstChild(source); child; child = nextSibling(child))
                children.push_back(child);
            if (sorted) {
                // Per pass, equal names in reverse tree order: a child goes
                // in front of one that compares equal.
                std::vector<std::pair<std::string, ProjectElement *>> keyed;
                std::vector<ProjectElement *> ordered;
                for (int pass = 0; pass < 4; ++pass) {
                    keyed.clear();
                    for (auto child = children.rbegin(); child != children.rend(); ++child)
                        if (sortPass(*child) == pass)
                            keyed.emplace_back(foldedCase(elementName(*child)), *child);
                    std::stable_sort(keyed.begin(), keyed.end(),
                                     [](const auto &a, const auto &b) { return a.first < b.first; });
                    for (const auto &entry : keyed)
                        ordered.push_back(entry.second);
                }
                children.swap(ordered);
            }
        }
        if (parentCopy)
            parentCopy->appendChild(copy);
        else
            root = copy;
        for (auto child = children.rbegin(); child != children.rend(); ++child)
            pending.push_back({*child, copy});
    }
    return root;
}

void ProjectSystem::buildSolutionDocument(XMLDocument &document, ProjectElement *solutionElement,
                                          bool sorted) {
    if (!solutionElement->hasAttribute("target"))
        solutionElement->XMLElement::setAttribute("target", std::to_string(platformCode()));
    document.root = copyTree(solutionElement, sorted);
    document.doctype = solutionDoctype;
}

std::string ProjectSystem::solutionText(ProjectElement *solutionElement, bool sorted) {
    if (!solutionElement)
        return {};
    XMLDocument document;
    buildSolutionDocument(document, solutionElement, sorted);
    std::string text;
    document.write(text, 2, 75);
    return text;
}

bool ProjectSystem::writeSolution(ProjectElement *solutionElement, const std::string &fileName,
                                  bool sorted) {
    if (!solutionElement)
        return false;
    XMLDocument document;
    buildSolutionDocument(document, solutionElement, sorted);
    if (!document.save(fileName.c_str(), 2, 75)) {
        saveErrorText = document.errorText;
        return false;
    }
    saveErrorText.clear();
    solutionElement->fileTime = FilePath(fileName).lastModified();
    clearModified(solutionElement, false);
    if (observer)
        observer->fileWritten(solutionElement, fileName);
    return true;
}

bool ProjectSystem::saveSolution(ProjectElement *solutionElement, bool sorted) {
    if (!solutionElement)
        return false;
    return writeSolution(solutionElement, solutionElement->filePath.text(), sorted);
}

bool ProjectSystem::saveSolutionAs(ProjectElement *solutionElement, const std::string &fileName,
                                   bool sorted) {
    return writeSolution(solutionElement, fileName, sorted);
}
