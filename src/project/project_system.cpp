#include "project/project_system.h"
#include "project/xml/qxml_document.h"

#include "project/project_macro_source.h"
#include "project/property_group_files.h"

ProjectSystem::ProjectSystem(SystemMacros *macroTable)
    : macros(macroTable), nodeProperties(propertyClasses),
      groupFiles_(std::make_unique<PropertyGroupFiles>(this)) {
    propertyClasses.setMultipleDefinitionReport(
        [this](const std::string &title, const StringList &names) {
            if (observer)
                observer->errorReport(title, names);
        });
}

ProjectSystem::~ProjectSystem() {
    close();
}

void ProjectSystem::close() {
    projectNames.clear();
    allSolutions.clear();
    solutionNames.clear();
    loadedFiles.clear();
    templatedProjects.clear();
    dynamicFolders.clear();
    for (ProjectElement *element : importElements)
        delete element;
    importElements.clear();
    undoList.clear();
    dropMacroCache();
    delete solution;
    solution = nullptr;
}

// ---- Defaults of the toolchain operations.

std::string ProjectSystem::objectFileExtension() const { return ".o"; }

std::string ProjectSystem::libraryFileExtension() const { return ".a"; }

std::string ProjectSystem::executableFileExtension(ProjectElement *, const std::string &) {
    return {};
}

std::string ProjectSystem::platformName() const { return "ARM"; }

int ProjectSystem::platformCode() const { return 8; }

void ProjectSystem::addToolMacros(ProjectElement *, const std::string &, MacroMap &) {}

bool ProjectSystem::defaultPropertyValue(ProjectElement *, const std::string &, PropertyClass *,
                                         std::string &) {
    return false;
}

std::vector<PropertyClass *> ProjectSystem::loaderProperties() const { return {}; }

bool ProjectSystem::isLoaderConfiguration(ProjectElement *configuration) {
    if (!configuration)
        return false;
    const std::vector<PropertyClass *> loader = loaderProperties();
    for (const auto &[name, value] : configuration->attributes()) {
        if (name == "Name" || name == "hidden")
            continue;
        bool known = false;
        for (const PropertyClass *property : loader)
            known = known || property->name() == name;
        if (!known)
            return false;
    }
    return true;
}

void ProjectSystem::initialiseNewConfiguration(ProjectElement *) {}

namespace {

// The type of a file whose file_type is "Default", by its extension; the
// case of the extension matters (".C" is C++, ".c" is C).
struct ExtensionType {
    std::string_view extension;
    std::string_view type;
};
constexpr ExtensionType extensionTypes[] = {
    {"c", "C"},          {"cpp", "C++"},       {"cc", "C++"},         {"cxx", "C++"},
    {"c++", "C++"},      {"C", "C++"},         {"s", "Assembly"},     {"S", "Assembly"},
    {"asm", "Assembly"}, {"h", "Header"},      {"hpp", "Header"},     {"hh", "Header"},
    {"hxx", "Header"},   {"inc", "Header"},    {"o", "Object file"},  {"a", "Library"},
    {"ld", "Linker Script"},                   {"elf", "Executable"},
};

// XML files are told apart by their document type.
constexpr ExtensionType doctypeTypes[] = {
    {"Quillmake_Memory_Map_File", "Memory Map"},
    {"Quillmake_Section_Placement_File", "Section Placement"},
};

}  // namespace

std::string ProjectSystem::fileTypeName(ProjectElement *element, const std::string &configuration) {
    if (!isFile(element) && !isFolder(element))
        return {};
    const std::optional<std::string> type =
        getPropertyValue(element, nodeProperties.fileType, configuration);
    if (type && !type->empty() && *type != "Default")
        return *type;
    const std::string extension = fileExtension(element, configuration);
    for (const ExtensionType &entry : extensionTypes)
        if (extension == entry.extension)
            return std::string(entry.type);
    if (extension == "xml") {
        const std::string path = absoluteFilePath(element, configuration);
        auto known = xmlFileTypes_.find(path);
        if (known == xmlFileTypes_.end()) {
            std::string found;
            const std::string doctype = QXMLDocument::readDoctypeOfFile(path);
            for (const ExtensionType &entry : doctypeTypes)
                if (doctype == entry.extension)
                    found = entry.type;
            known = xmlFileTypes_.emplace(path, found).first;
        }
        return known->second;
    }
    return {};
}

bool ProjectSystem::isCppProject(ProjectElement *element, const std::string &configuration) {
    if (!element)
        return false;
    // The property belongs to the tool table, which the base may lack.
    const std::optional<std::string> value =
        getPropertyValue(element, propertyClasses.propertyClass("is_cpp_project"), configuration);
    if (value == "Detect")
        return findFileOfType(element, configuration, "C++") != nullptr;
    return value == "Yes";
}

std::string ProjectSystem::platformOf(ProjectElement *element, const std::string &configuration) {
    if (!element)
        return platformName();
    const std::optional<std::string> value =
        getPropertyValue(element, nodeProperties.platform, configuration);
    // A configuration that names no platform belongs to the toolchain's.
    return value ? *value : platformName();
}

// ---- Navigation.

ProjectElement *ProjectSystem::firstChild(const ProjectElement *element) {
    if (!element)
        return nullptr;
    XMLNode *node = element->firstChild;
    while (node && !ProjectElement::from(node))
        node = node->nextSibling;
    return ProjectElement::from(node);
}

ProjectElement *ProjectSystem::nextSibling(const ProjectElement *element) {
    if (!element)
        return nullptr;
    XMLNode *node = element->nextSibling;
    while (node && !ProjectElement::from(node))
        node = node->nextSibling;
    return ProjectElement::from(node);
}

ProjectElement *ProjectSystem::parent(const ProjectElement *element) {
    return element ? ProjectElement::from(element->parent) : nullptr;
}

ProjectElement *ProjectSystem::projectOf(ProjectElement *element) {
    while (element && !isProject(element))
        element = parent(element);
    return element;
}

ProjectElement *ProjectSystem::solutionOf(ProjectElement *element) {
    while (element && !isSolution(element))
        element = parent(element);
    return element;
}

ProjectElement *ProjectSystem::folderOf(const ProjectElement *element) {
    ProjectElement *above = parent(element);
    return isFolder(above) ? above : nullptr;
}

// ---- Names.

std::string ProjectSystem::elementName(ProjectElement *element, bool fullPath) {
    if (!element)
        return {};
    if (const std::string *name = element->attribute("Name"); name && !name->empty())
        return *name;
    // Only files and folders resolve their file_name; other nodes take the
    // last part of it as written.
    if (!isFile(element) && !isFolder(element))
        return ProjectElement::configurationKey(element);
    const std::string *fileName = element->attribute("file_name");
    if (!fileName)
        return element->hasAttribute("file_name") ? std::string() : std::string("<NULL>");
    if (!fullPath && fileName->find("$(") != std::string::npos) {
        const size_t slash = fileName->rfind('/');
        return slash == std::string::npos ? *fileName : fileName->substr(slash + 1);
    }
    resolvePaths(element, "Common");
    return element->filePath.isEmpty() ? std::string() : element->filePath.fileName();
}

namespace {

const char *const kindNames[] = {"solution", "configuration", "project", "folder", "file"};
const char *const kindTitles[] = {"Solution", "Configuration", "Project", "Folder", "File"};

} // namespace

std::string ProjectSystem::kindName(const ProjectElement *element) {
    return element ? kindNames[element->nodeKind] : std::string();
}

std::string ProjectSystem::kindTitle(const ProjectElement *element) {
    return element ? kindTitles[element->nodeKind] : std::string();
}

// ---- Attributes.

std::optional<std::string> ProjectSystem::attribute(const ProjectElement *element,
                                                    std::string_view name) {
    if (!element)
        return std::nullopt;
    const std::string *value = element->attribute(name);
    return value ? std::optional<std::string>(*value) : std::nullopt;
}

bool ProjectSystem::attribute(const ProjectElement *element, std::string_view name,
                              std::string &out) {
    const std::string *value = element ? element->attribute(name) : nullptr;
    if (!value)
        return false;
    out = *value;
    return true;
}

bool ProjectSystem::hasAttribute(const ProjectElement *element, std::string_view name) {
    return element && element->hasAttribute(name);
}

void ProjectSystem::setAttribute(ProjectElement *element, std::string_view name,
                                 std::string_view value) {
    if (!element)
        return;
    element->XMLElement::setAttribute(name, value);
    storedProperties_.root = nullptr;  // the element may be a store
    markModified(element);
}

void ProjectSystem::removeAttribute(ProjectElement *element, std::string_view name) {
    if (element && element->removeAttribute(name)) {
        storedProperties_.root = nullptr;
        markModified(element);
    }
}

void ProjectSystem::setName(ProjectElement *element, const std::string &name) {
    setAttribute(element, "Name", name);
}

void ProjectSystem::setFileName(ProjectElement *element, const std::string &name) {
    if (!element)
        return;
    setAttribute(element, "file_name", name);
    element->pathsValid = false;
    dropMacroCache();
}
