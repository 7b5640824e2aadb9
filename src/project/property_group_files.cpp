// Property group files: reading them, keeping them while they are unchanged,
// and scanning the library directories of the installation for them.

#include "project/property_group_files.h"

#include "project/project_system.h"
#include "project/xml/xml_element.h"
#include "support/file_info.h"
#include "support/macro_expansion.h"
#include "support/normalise_path.h"

#include <algorithm>
#include <cstdlib>
#include <dirent.h>
#include <unordered_map>
#include <unordered_set>

namespace {

std::string textOf(const XMLElement &element, std::string_view name) {
    const std::string *value = element.attribute(name);
    return value ? *value : std::string();
}

// The child elements of `parent` with the tag.
template <class Visit>
void forEachChild(const XMLElement &parent, std::string_view tag, Visit visit) {
    for (XMLNode *node = parent.firstChild; node; node = node->nextSibling) {
        XMLElement *child = node->toElement();
        if (child && child->tagName == tag)
            visit(*child);
    }
}

// The names of the sub-directories of `directory`, sorted; false if it
// can't be read.
bool subDirectories(const std::string &directory, std::vector<std::string> &names) {
    DIR *handle = opendir(directory.c_str());
    if (!handle)
        return false;
    while (const dirent *entry = readdir(handle)) {
        const std::string_view name = entry->d_name;
        if (name == "." || name == "..")
            continue;
        // Links and unknown types are tried: the stat of the file decides.
        if (entry->d_type != DT_DIR && entry->d_type != DT_LNK && entry->d_type != DT_UNKNOWN)
            continue;
        names.emplace_back(name);
    }
    closedir(handle);
    std::sort(names.begin(), names.end());
    return true;
}

bool excludedUnlessAll(const PropertyValueGroupClass &group) {
    return group.name().starts_with("libcxx") || group.name() == "STLport";
}

} // namespace

// ---- PropertyValueGroupClass

PropertyValueGroupClass::PropertyValueGroupClass(XMLElement *element, bool library)
    : groupElement_(element), fromLibrary_(library) {
    type_ = Enumeration;
    name_ = textOf(*element, "name");
    page_ = textOf(*element, "page");
    if (page_.empty())
        page_ = "General";
    group_ = textOf(*element, "group");
    shortText_ = textOf(*element, "short");
    longText_ = textOf(*element, "long");
    if (const std::string *value = element->attribute("default"))
        defaultValue_ = *value;
    if (const std::string *value = element->attribute("order"))
        order_ = static_cast<std::int32_t>(std::strtol(value->c_str(), nullptr, 0));
    if (const std::string *value = element->attribute("target"))
        target_ = static_cast<std::uint32_t>(std::strtoul(value->c_str(), nullptr, 0));

    bool anyFamily = false;
    std::vector<std::string> families;
    forEachChild(*element, "groupEntry", [&](const XMLElement &entry) {
        const std::string *name = entry.attribute("name");
        if (!name)
            return;
        values_.push_back(*name);
        const std::string *family = entry.attribute("family");
        anyFamily = anyFamily || family;
        families.push_back(family ? *family : std::string());
    });
    if (anyFamily)
        displayValues_ = std::move(families);
    normalise();
}

// ---- PropertyValueGroupFile

PropertyValueGroupFile::PropertyValueGroupFile(const MacroTable *macroTable, std::string name,
                                               bool library)
    : XMLPP2(macroTable), fileName(std::move(name)), fromLibrary_(library) {}

bool PropertyValueGroupFile::read(const FileTime &time) {
    if (!load(fileName, std::string(), false) || !root)
        return false;
    fileTime = time;
    forEachChild(*root, "group", [&](XMLElement &group) {
        groups.push_back(std::make_unique<PropertyValueGroupClass>(&group, fromLibrary_));
        forEachChild(group, "groupEntry", [&](const XMLElement &entry) {
            forEachChild(entry, "macro", [&](const XMLElement &macro) {
                if (const std::string *name = macro.attribute("name"))
                    macroNames.insert(*name);
            });
        });
    });
    return true;
}

// ---- PropertyValueGroupLibraryFiles

PropertyValueGroupLibraryFiles::PropertyValueGroupLibraryFiles(
    ProjectSystem *system, std::string pattern,
    std::vector<std::unique_ptr<PropertyValueGroupFile>> &stale)
    : directoryPattern(std::move(pattern)), projectSystem(system), stale_(stale) {}

const std::vector<std::unique_ptr<PropertyValueGroupFile>> &PropertyValueGroupLibraryFiles::files() {
    if (!scanned)
        scan();
    return files_;
}

const MacroNameSet &PropertyValueGroupLibraryFiles::macroNames() {
    if (!scanned)
        scan();
    return macroNames_;
}

void PropertyValueGroupLibraryFiles::scan() {
    scanned = true;
    for (const auto &file : files_)
        file->present = false;
    std::string directory = projectSystem->macros
                                ? expandSystemMacros(*projectSystem->macros, directoryPattern)
                                : directoryPattern;
    normalisePath(directory);
    std::vector<std::string> names;
    if (!subDirectories(directory, names))
        return;

    std::unordered_map<std::string_view, std::unique_ptr<PropertyValueGroupFile> *> known;
    for (auto &file : files_)
        known.emplace(file->fileName, &file);
    std::vector<std::unique_ptr<PropertyValueGroupFile>> kept;
    for (const std::string &name : names) {
        const std::string path = directory + "/" + name + "/propertyGroups.xml";
        const FileInfo info(path);
        if (!info.isFile())
            continue;
        const FileTime time = info.lastModified();
        auto same = known.find(path);
        if (same != known.end() && (*same->second)->fileTime == time) {
            (*same->second)->present = true;
            kept.push_back(std::move(*same->second));
            known.erase(same);
            continue;
        }
        auto file = std::make_unique<PropertyValueGroupFile>(projectSystem->macros, path, true);
        if (!file->read(time))
            continue;
        file->present = true;
        kept.push_back(std::move(file));
    }
    // What is left wasn't found again, or has changed.
    for (auto &file : files_)
        if (file)
            stale_.push_back(std::move(file));
    files_ = std::move(kept);

    macroNames_.clear();
    for (const auto &file : files_)
        macroNames_.insert(file->macroNames.begin(), file->macroNames.end());
}

// ---- PropertyGroupFiles

PropertyGroupFiles::PropertyGroupFiles(ProjectSystem *system)
    : packageLibraries(system, "$(PackagesDir)/libraries", staleFiles),
      targetLibraries(system, "$(StudioDir)/targets", staleFiles),
      sampleLibraries(system, "$(StudioDir)/samples", staleFiles),
      sourceLibraries(system, "$(StudioDir)/source", staleFiles), system_(system) {}

PropertyValueGroupFile *PropertyGroupFiles::findGroupFile(const std::string &name) {
    if (name.empty() || name == "None")
        return nullptr;
    const FileTime time = FileInfo(name).lastModified();
    auto known = std::find_if(projectFiles.begin(), projectFiles.end(),
                              [&](const auto &file) { return file->fileName == name; });
    if (known != projectFiles.end()) {
        if ((*known)->fileTime == time)
            return known->get();
        staleFiles.push_back(std::move(*known));
        projectFiles.erase(known);
    }
    if (!time.isValid())
        return nullptr;
    auto failed = failed_.find(name);
    if (failed != failed_.end() && failed->second == time)
        return nullptr;

    auto file = std::make_unique<PropertyValueGroupFile>(system_->macros, name, false);
    if (!file->read(time)) {
        failed_[name] = time;
        return nullptr;
    }
    if (failed != failed_.end())
        failed_.erase(failed);
    projectFiles.insert(projectFiles.begin(), std::move(file));
    return projectFiles.front().get();
}

std::vector<PropertyValueGroupClass *> PropertyGroupFiles::groupClasses(
    PropertyValueGroupFile *projectFile, bool includeAll) {
    std::vector<PropertyValueGroupClass *> classes;
    const auto addAll = [&](PropertyValueGroupLibraryFiles &library, bool exclude) {
        for (const auto &file : library.files())
            for (const auto &group : file->groups)
                if (!exclude || !excludedUnlessAll(*group))
                    classes.push_back(group.get());
    };
    if (projectFile)
        for (const auto &group : projectFile->groups)
            classes.push_back(group.get());
    addAll(sourceLibraries, !includeAll);

    // A package's group doesn't add a name that is already there.
    std::unordered_set<std::string_view> names;
    for (const PropertyValueGroupClass *group : classes)
        names.insert(group->name());
    for (const auto &file : packageLibraries.files()) {
        for (const auto &group : file->groups) {
            if ((!includeAll && excludedUnlessAll(*group)) || !names.insert(group->name()).second)
                continue;
            classes.push_back(group.get());
        }
    }

    addAll(targetLibraries, false);
    addAll(sampleLibraries, false);
    return classes;
}

bool PropertyGroupFiles::mayBeGroupMacro(PropertyValueGroupFile *projectFile,
                                         std::string_view name) {
    if (projectFile && projectFile->macroNames.count(name))
        return true;
    for (PropertyValueGroupLibraryFiles *library :
         {&sourceLibraries, &packageLibraries, &targetLibraries, &sampleLibraries})
        if (library->macroNames().count(name))
            return true;
    return false;
}

bool PropertyGroupFiles::hasMacros(PropertyValueGroupFile *projectFile) {
    if (projectFile && !projectFile->macroNames.empty())
        return true;
    for (PropertyValueGroupLibraryFiles *library :
         {&sourceLibraries, &packageLibraries, &targetLibraries, &sampleLibraries})
        if (!library->macroNames().empty())
            return true;
    return false;
}
