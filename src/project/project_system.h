#pragma once

#include "environment/system_macros.h"
#include "project/project_element.h"
#include "project/property_class_map.h"
#include "project/standard_property_table.h"
#include "support/file_time.h"

#include <deque>
#include <optional>
#include <string>
#include <vector>

class PropertyClass;
class ProjectLoadProgressInterface;
class XMLDocument;

using StringList = std::vector<std::string>;

// Hears of changes to the tree; every operation does nothing by default.
// A console run has no observer.
class ProjectSystemObserver {
public:
    virtual ~ProjectSystemObserver() = default;
    virtual void errorReport(const std::string & /*title*/, const StringList & /*messages*/) {}
    virtual void fileWritten(ProjectElement * /*solution*/, const std::string & /*fileName*/) {}
    virtual void propertiesChanged(ProjectElement * /*element*/) {}
    virtual void pathsChanged(ProjectElement * /*element*/) {}
    virtual void propertyChanged(ProjectElement * /*element*/, const std::string & /*configuration*/,
                                 PropertyClass * /*property*/) {}
};

// One more party that hears of single property changes, after the observer.
class PropertyChangeListener {
public:
    virtual ~PropertyChangeListener() = default;
    virtual void propertyChanged(ProjectElement *element, const std::string &configuration,
                                 PropertyClass *property) = 0;
};

// Where one part of a looked-up value came from. A default or a value of the
// project system has no element and an empty configuration.
struct PropertyTraceRecord {
    std::optional<std::string> value;
    std::string configuration;
    ProjectElement *element = nullptr;
};
using PropertyTrace = std::vector<PropertyTraceRecord>;

// A property change made while tracking, newest first in the undo list.
struct PropertyUndoRecord {
    ProjectElement *element = nullptr;
    PropertyClass *property = nullptr;
    std::string configuration;
    FileTime time;
    std::optional<std::string> oldValue;
    bool oldModified = false;
    bool newModified = false;
};

// The owner of the project tree and of the property classes, and the home of
// every operation on the tree: navigation, names, look-ups, resolved paths,
// property values and configurations, reading and writing solution files.
// Operations take nodes that may be null and answer a null node with an
// empty or null result. The toolchains derive from it and replace the
// virtual operations.
class ProjectSystem {
public:
    // Configuration flags of configurationNames, also the modes of
    // addConfiguration.
    enum ConfigurationFlags : int {
        IncludeCommon = 1,
        PrivateConfigurations = 2,
        PublicConfigurations = 4,
        LoaderConfigurations = 8,
    };

    explicit ProjectSystem(SystemMacros *macros);
    ProjectSystem(const ProjectSystem &) = delete;
    ProjectSystem &operator=(const ProjectSystem &) = delete;
    virtual ~ProjectSystem();

    // ---- Operations that a toolchain replaces.

    // Stores a value in the node's store of the configuration.
    virtual void setPropertyValue(ProjectElement *element, PropertyClass *property,
                                  const std::string &configuration, const std::string &value);
    virtual std::string objectFileExtension() const;
    virtual std::string libraryFileExtension() const;
    virtual std::string executableFileExtension(ProjectElement *element,
                                                const std::string &configuration);
    virtual std::string platformName() const;
    // The target code of the toolchain: written into a saved solution that
    // states none.
    virtual int platformCode() const;
    // Adds the macros that name the tools.
    virtual void addToolMacros(ProjectElement *element, const std::string &configuration,
                               MacroMap &map);
    // A value for a property that no store holds; false lets the class's
    // default stand.
    virtual bool defaultPropertyValue(ProjectElement *element, const std::string &configuration,
                                      PropertyClass *property, std::string &value);
    // The properties that a loader configuration may hold.
    virtual std::vector<PropertyClass *> loaderProperties() const;
    // Every attribute of the configuration node other than Name and hidden
    // is a loader property.
    virtual bool isLoaderConfiguration(ProjectElement *configuration);
    // Given every configuration that addConfiguration makes in mode 8.
    virtual void initialiseNewConfiguration(ProjectElement *configuration);
    // The type name of a file: file_type unless it is "Default", else taken
    // from the extension ("C", "C++", "Assembly", "Header"), else empty.
    virtual std::string fileTypeName(ProjectElement *element, const std::string &configuration);
    virtual bool isCppProject(ProjectElement *element, const std::string &configuration);
    virtual ProjectElement *newSolution(const std::string &name, const std::string &directory,
                                        int target);
    virtual ProjectElement *newProject(ProjectElement *solution, const std::string &name,
                                       const std::string &directory, const std::string &type);
    // The directory of a node: its project's for files and folders.
    virtual std::string elementDirectory(ProjectElement *element);
    virtual std::string platformOf(ProjectElement *element, const std::string &configuration);

    // ---- Kinds and navigation. Nodes that aren't ProjectElements, such as
    // comments, are passed over.

    static bool isSolution(const ProjectElement *element) { return isKind(element, ProjectElement::Solution); }
    static bool isConfiguration(const ProjectElement *element) { return isKind(element, ProjectElement::Configuration); }
    static bool isProject(const ProjectElement *element) { return isKind(element, ProjectElement::Project); }
    static bool isFolder(const ProjectElement *element) { return isKind(element, ProjectElement::Folder); }
    static bool isFile(const ProjectElement *element) { return isKind(element, ProjectElement::File); }

    static ProjectElement *firstChild(const ProjectElement *element);
    static ProjectElement *nextSibling(const ProjectElement *element);
    static ProjectElement *parent(const ProjectElement *element);
    // The node itself if it is of the kind, else the nearest one above.
    static ProjectElement *projectOf(ProjectElement *element);
    static ProjectElement *solutionOf(ProjectElement *element);
    // The parent if it is a folder.
    static ProjectElement *folderOf(const ProjectElement *element);
    ProjectElement *rootOf() const { return solution; }

    // ---- Names.

    // The display name: Name, else the file name, else "<NULL>".
    std::string elementName(ProjectElement *element, bool fullPath = false);
    static std::string kindName(const ProjectElement *element);
    static std::string kindTitle(const ProjectElement *element);

    // ---- Attributes. Setting and removing mark the node modified while
    // tracking is on.

    static std::optional<std::string> attribute(const ProjectElement *element, std::string_view name);
    // False, with out untouched, if the attribute is missing.
    static bool attribute(const ProjectElement *element, std::string_view name, std::string &out);
    static bool hasAttribute(const ProjectElement *element, std::string_view name);
    void setAttribute(ProjectElement *element, std::string_view name, std::string_view value);
    void removeAttribute(ProjectElement *element, std::string_view name);
    void setName(ProjectElement *element, const std::string &name);
    // Also drops the node's resolved paths.
    void setFileName(ProjectElement *element, const std::string &name);

    // ---- Tree changes.

    // A new node of this project system, not yet linked.
    ProjectElement *createElement(std::string_view tag);
    void addChild(ProjectElement *parent, ProjectElement *child);
    // Unlinks child; the caller owns it then.
    void removeChild(ProjectElement *parent, ProjectElement *child);
    static ProjectElement *findConfiguration(ProjectElement *element, const std::string &name,
                                             bool searchParents = false);
    ProjectElement *addConfiguration(ProjectElement *element, const std::string &name, int mode);
    ProjectElement *addFolder(ProjectElement *parent, const std::string &name,
                              const std::string &filter);
    ProjectElement *addFile(ProjectElement *parent, const std::string &path);

    // ---- Look-ups.

    ProjectElement *findProject(ProjectElement *element, const std::string &name);
    ProjectElement *findSolution(const std::string &name);
    ProjectElement *findElementByName(ProjectElement *element, const std::string &name);
    static ProjectElement *findFileByPath(ProjectElement *element, const std::string &path);
    // The first file at or below element, each node before its children, of
    // the type whose build_exclude_from_build is "No".
    ProjectElement *findFileOfType(ProjectElement *element, const std::string &configuration,
                                   const std::string &type);
    static std::vector<ProjectElement *> filesOf(ProjectElement *element);
    static int countProjects(ProjectElement *element);
    // Files at or below element, descending only through folders.
    static int countFiles(ProjectElement *element);
    static bool isModified(ProjectElement *element, bool acrossSolutions);
    static void clearModified(ProjectElement *element, bool acrossSolutions);

    // ---- Paths. Each resolves the node's paths first; the result is kept on
    // the node, so a second call costs a flag test.

    void resolvePaths(ProjectElement *element, const std::string &configuration);
    std::string absoluteFilePath(ProjectElement *element, const std::string &configuration);
    std::string fileDirectory(ProjectElement *element, const std::string &configuration,
                              bool absolute = false);
    std::string fileBaseName(ProjectElement *element, const std::string &configuration,
                             bool complete = false);
    std::string fileExtension(ProjectElement *element, const std::string &configuration,
                              bool complete = false);
    std::string fileNameOnly(ProjectElement *element, const std::string &configuration);
    std::string relativeFileName(ProjectElement *element, const std::string &configuration);
    std::string fullProjectDirectory(ProjectElement *project);
    std::string solutionDirectory() const;
    // Drops the resolved paths of element and of every node below it.
    static void invalidatePaths(ProjectElement *element);

    // ---- Maps of the whole tree.

    void mapProjects(ProjectLoadProgressInterface *progress = nullptr);
    void rebuildInherited(ProjectElement *solutionElement);

    // ---- Property values.

    // The value of property on element for configuration, not expanded:
    // nearest node first; per node the configuration, its inherited names,
    // then "Common". A StringList collects every store instead.
    std::optional<std::string> getPropertyValue(ProjectElement *element, PropertyClass *property,
                                                const std::string &configuration,
                                                PropertyTrace *trace = nullptr);
    std::optional<std::string> getExpandedPropertyValue(ProjectElement *element,
                                                        PropertyClass *property,
                                                        const std::string &configuration);
    // Only the node's own store of the configuration.
    static std::optional<std::string> getOwnPropertyValue(ProjectElement *element,
                                                          PropertyClass *property,
                                                          const std::string &configuration);
    // True if the value comes from a store in the tree, not from a default.
    bool isPropertySet(ProjectElement *element, PropertyClass *property,
                       const std::string &configuration, std::optional<std::string> &value);
    StringList getPropertyList(const std::string &prefix, ProjectElement *element,
                               PropertyClass *property, const std::string &configuration,
                               bool expand, bool rawSplit, bool escapeQuotes);
    void clearPropertyValue(ProjectElement *element, PropertyClass *property,
                            const std::string &configuration);

    // ---- Macros of a node.

    MacroMap projectMacros(ProjectElement *element, const std::string &configuration);
    std::string expandProjectMacros(ProjectElement *element, const std::string &text,
                                    const std::string &configuration);
    // The one-entry cache of projectMacros, on for the time of a build.
    void setMacroCacheEnabled(bool enabled);
    void dropMacroCache() { macroCache_.element = nullptr; }

    // ---- Configurations.

    StringList inheritedConfigurations(ProjectElement *element, const std::string &configuration);
    void setInheritedConfigurations(ProjectElement *element, const std::string &configuration,
                                    const StringList &list);
    StringList configurationNames(ProjectElement *element, int flags);
    StringList batchBuildConfigurations(ProjectElement *element, const std::string &configuration);

    // ---- Solution files.

    // Reads a solution file and makes its tree the root; throws
    // SolutionLoadError.
    ProjectElement *readSolution(const std::string &fileName,
                                 ProjectLoadProgressInterface *progress = nullptr);
    // Writes the solution file of the node; false if it can't be written.
    bool saveSolution(ProjectElement *solutionElement, bool sorted);
    bool saveSolutionAs(ProjectElement *solutionElement, const std::string &fileName, bool sorted);
    // The document that a save writes, and its text.
    void buildSolutionDocument(XMLDocument &document, ProjectElement *solutionElement, bool sorted);
    std::string solutionText(ProjectElement *solutionElement, bool sorted);

    // Deletes the tree and clears every list.
    void close();

    // ---- State.

    SystemMacros *macros;
    ProjectElement *solution = nullptr;
    PropertyClassMap propertyClasses;
    NodeProperties nodeProperties;
    StringList projectNames;
    // Every nested solution in tree order, the root last.
    std::vector<ProjectElement *> allSolutions;
    StringList solutionNames;
    // The absolute paths of the solution files being read, root first.
    StringList loadedFiles;
    std::vector<ProjectElement *> templatedProjects;
    std::vector<ProjectElement *> dynamicFolders;
    std::vector<ProjectElement *> importElements;
    std::deque<PropertyUndoRecord> undoList;
    // Off while a load runs: a node read from file isn't modified.
    bool trackingChanges = false;
    ProjectSystemObserver *observer = nullptr;
    std::vector<PropertyChangeListener *> propertyListeners;
    // The text of $(StudioDir).
    std::string installDirectory;
    // What the XML writer said about the last failed save.
    std::string saveErrorText;

protected:
    static bool isKind(const ProjectElement *element, ProjectElement::NodeKind kind) {
        return element && element->nodeKind == kind;
    }
    void markModified(ProjectElement *element) {
        if (trackingChanges)
            element->modified = true;
    }
    // Expansion with the global and the system macros, no project macros.
    std::string expandGlobalMacros(const std::string &text) const;

private:
    void propertyChanged(ProjectElement *element, ProjectElement *store, PropertyClass *property,
                         const std::string &configuration, std::optional<std::string> oldValue);

    struct MacroCache {
        bool enabled = false;
        const ProjectElement *element = nullptr;
        std::string configuration;
        MacroMap map;
    };

    bool readStore(ProjectElement *element, const std::string &name, PropertyClass *property,
                   std::optional<std::string> &acc, PropertyTrace *trace);
    const StringList *inheritedList(ProjectElement *element, const std::string &configuration);
    XMLElement *copyTree(ProjectElement *solutionElement, bool sorted);
    bool writeSolution(ProjectElement *solutionElement, const std::string &fileName, bool sorted);

    MacroCache macroCache_;
};
