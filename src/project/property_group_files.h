#pragma once

#include "project/property_class.h"
#include "project/xml/xmlpp2.h"
#include "support/file_time.h"

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

class ProjectSystem;
class XMLElement;

using MacroNameSet = std::set<std::string, std::less<>>;

// A property group: a named choice whose values are the names of the
// <groupEntry> children of its <group> element. The element belongs to the
// file (or generic option set) that the class came from, which outlives it.
class PropertyValueGroupClass : public PropertyClass {
public:
    PropertyValueGroupClass(XMLElement *groupElement, bool fromLibrary);

    XMLElement *groupElement() const { return groupElement_; }
    bool fromLibrary() const { return fromLibrary_; }
    // 0 for every target.
    std::uint32_t target() const { return target_; }
    // True if the group is meant for a toolchain of that target code.
    bool appliesTo(std::uint32_t platformCode) const {
        return target_ == 0 || target_ == platformCode;
    }

private:
    XMLElement *groupElement_;
    bool fromLibrary_;
    std::uint32_t target_ = 0;
};

// One group file, read through the pre-processor; the document keeps the
// elements that its classes point to.
class PropertyValueGroupFile : public XMLPP2 {
public:
    PropertyValueGroupFile(const MacroTable *macroTable, std::string name, bool library);

    // Parses the file and makes a class of each <group> child of the root.
    // `time` is the file's time as the caller found it. False if the file
    // doesn't parse or has no root.
    bool read(const FileTime &time);

    std::vector<std::unique_ptr<PropertyValueGroupClass>> groups;
    std::string fileName;
    FileTime fileTime;
    // For the scan of a library directory.
    bool present = false;
    // The names of every <macro> item of the file, whatever it selects.
    MacroNameSet macroNames;

private:
    bool fromLibrary_;
};

// The group files of one library directory: "propertyGroups.xml" in each of
// its sub-directories. The directory is scanned on first use and again only
// after `scanned` has been cleared.
class PropertyValueGroupLibraryFiles {
public:
    // Files that a scan drops go to `stale`, since classes of them may still
    // be referenced.
    PropertyValueGroupLibraryFiles(ProjectSystem *system, std::string pattern,
                                   std::vector<std::unique_ptr<PropertyValueGroupFile>> &stale);

    // The files, in the order of their sub-directories' names.
    const std::vector<std::unique_ptr<PropertyValueGroupFile>> &files();
    // The names of the <macro> items of all files.
    const MacroNameSet &macroNames();

    std::string directoryPattern;
    ProjectSystem *projectSystem;
    bool scanned = false;

private:
    void scan();

    std::vector<std::unique_ptr<PropertyValueGroupFile>> files_;
    std::vector<std::unique_ptr<PropertyValueGroupFile>> &stale_;
    MacroNameSet macroNames_;
};

// All group files of a project system: the projects' own and the four
// library directories of the installation.
class PropertyGroupFiles {
public:
    explicit PropertyGroupFiles(ProjectSystem *system);
    PropertyGroupFiles(const PropertyGroupFiles &) = delete;
    PropertyGroupFiles &operator=(const PropertyGroupFiles &) = delete;

    // The loaded file of that (absolute) name, read again if its time has
    // changed. Null for an empty name, "None", and a file that can't be read.
    PropertyValueGroupFile *findGroupFile(const std::string &name);
    // The classes of projectFile and of the libraries, in precedence order.
    // Unless includeAll, the libcxx and STLport groups of the source and
    // package libraries are left out.
    std::vector<PropertyValueGroupClass *> groupClasses(PropertyValueGroupFile *projectFile,
                                                        bool includeAll);
    // False if no <macro> item of projectFile or of a library has the name.
    bool mayBeGroupMacro(PropertyValueGroupFile *projectFile, std::string_view name);
    // False if neither projectFile nor a library has a <macro> item.
    bool hasMacros(PropertyValueGroupFile *projectFile);

    // Most recent first.
    std::vector<std::unique_ptr<PropertyValueGroupFile>> projectFiles;
    std::vector<std::unique_ptr<PropertyValueGroupFile>> staleFiles;
    PropertyValueGroupLibraryFiles packageLibraries;
    PropertyValueGroupLibraryFiles targetLibraries;
    PropertyValueGroupLibraryFiles sampleLibraries;
    PropertyValueGroupLibraryFiles sourceLibraries;

private:
    ProjectSystem *system_;
    // Files that failed to read, with the time they had then: they aren't
    // read again until they change.
    std::map<std::string, FileTime, std::less<>> failed_;
};
