#pragma once

#include "environment/system_macros.h"
#include "project/generic_option_set.h"
#include "project/project_element.h"
#include "project/property_class_map.h"
#include "project/property_value.h"
#include "project/standard_property_table.h"
#include "support/file_time.h"
#include "support/short_name_set.h"

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

class PropertyClass;
class PropertyGroupFiles;
class PropertyValueGroupClass;
class PropertyValueGroupFile;
class ProjectFileNotFoundErrorHandler;
class TemplateNotFoundErrorHandler;
class ProjectMacroSource;
class ProjectSystemHelpers;
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
    // May add lines to the listing of a node, behind those of the project
    // system.
    virtual void appendPropertyValues(ProjectElement * /*element*/,
                                      const std::string & /*configuration*/,
                                      PropertyValueList & /*list*/) {}
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
    // False for every name that addToolMacros never adds, so that expanding
    // other names needn't make the tool macros. One set for the whole class
    // chain: this is asked for nearly every macro of every file.
    bool mayBeToolMacro(std::string_view name) const { return toolMacroNames_.contains(name); }
    // True while addToolMacros runs: the properties it expands see no tool
    // macros of their own.
    bool fillingToolMacros = false;
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
    // from the extension (".c" C, ".cpp" C++, ".s" Assembly, ".h" Header,
    // ".o" Object file, ".ld" Linker Script and so on), for ".xml" from the
    // document type (Memory Map, Section Placement), else empty.
    virtual std::string fileTypeName(ProjectElement *element, const std::string &configuration);
    virtual bool isCppProject(ProjectElement *element, const std::string &configuration);
    virtual ProjectElement *newSolution(const std::string &name, const std::string &directory,
                                        int target);
    virtual ProjectElement *newProject(ProjectElement *solution, const std::string &name,
                                       const std::string &directory, const std::string &type);
    // The directory of a node: its project's for files and folders.
    virtual std::string elementDirectory(ProjectElement *element);
    virtual std::string platformOf(ProjectElement *element, const std::string &configuration);
    // The save name that a property group item's property name stands for;
    // here the name itself.
    virtual std::string resolvePropertyName(ProjectElement *element, const std::string &name);
    // Told the target code of a project template that states one; the base
    // does nothing.
    virtual void setProjectTarget(ProjectElement *project, std::uint32_t target);
    // The project template files of a load: templatesFilePath with the
    // system macros expanded.
    virtual std::string projectTemplatesFile();

    // ---- Property listing: which properties a node of a given kind and
    // project type takes. The append operations add the classes of one kind
    // of node to the caller's list; here they add nothing, the toolchains
    // fill them in. A class may be added more than once: the listing keeps
    // one line per name.

    using PropertyClassList = std::vector<PropertyClass *>;

    // The lines of a node, for listing and generic editing.
    virtual PropertyValueList getPropertyValues(ProjectElement *element,
                                                const std::string &configuration);
    // The tool part of the lines, in the order of the save names.
    virtual PropertyValueList toolPropertyValues(ProjectElement *element,
                                                 const std::string &configuration);
    // One line for each loader property.
    virtual PropertyValueList loaderPropertyValues(ProjectElement *element,
                                                   const std::string &configuration);
    virtual void appendProjectTypeProperties(ProjectElement *element,
                                             const std::string &configuration,
                                             PropertyClassList &set, const std::string &type);
    // True for the toolchain that builds for the machine it runs on.
    virtual bool isHostedToolchain() const;
    virtual void appendCProperties(ProjectElement *element, const std::string &configuration,
                                   PropertyClassList &list);
    virtual void appendCppProperties(ProjectElement *element, const std::string &configuration,
                                     PropertyClassList &list);
    virtual void appendAssemblerProperties(ProjectElement *element,
                                           const std::string &configuration,
                                           PropertyClassList &list);
    virtual void appendSourceFileProperties(ProjectElement *element,
                                            const std::string &configuration,
                                            PropertyClassList &list);
    virtual void appendLinkerProperties(ProjectElement *element, const std::string &configuration,
                                        PropertyClassList &list);
    virtual void appendDebugProperties(ProjectElement *element, const std::string &configuration,
                                       PropertyClassList &list);
    virtual void appendLibraryProperties(ProjectElement *element, const std::string &configuration,
                                         PropertyClassList &list);
    virtual void appendToolchainProperties(ProjectElement *element,
                                           const std::string &configuration,
                                           PropertyClassList &list);
    // The toolchain's language options, for the files of externally built
    // projects.
    virtual void appendLanguageProperties(ProjectElement *element,
                                          const std::string &configuration,
                                          PropertyClassList &list);

    // ---- Generic option files: extra tool options that a project names in
    // build_generic_options_file_name, else the toolchain's standard file.

    // Makes the file of the node the active set, reading it on first use.
    void loadGenericOptions(ProjectElement *element, const std::string &configuration);
    // Null if no file is active or the active file couldn't be read.
    GenericOptionSet *activeGenericOptions() const { return genericOptions_.active; }
    // The toolchain's standard file, unexpanded; empty for none.
    std::string genericOptionsFileName;

    // ---- Property groups: named choices, defined in group files, that
    // contribute macros, include directories, defines, libraries and
    // packages, and may set properties and add files when chosen.

    // The loaded group file of that name, read again when it has changed;
    // null for an empty name, "None" and a file that can't be read.
    PropertyValueGroupFile *findGroupFile(const std::string &fileName);
    // The group file that the node's property_groups_file_path names.
    PropertyValueGroupFile *groupFileOf(ProjectElement *element, const std::string &configuration);
    // The groups of projectFile and of the library directories, first the
    // one that wins.
    std::vector<PropertyValueGroupClass *> groupClasses(PropertyValueGroupFile *projectFile,
                                                        bool includeAll);
    // The first group of the name whose target is 0 or `target`.
    PropertyValueGroupClass *findGroup(PropertyValueGroupFile *projectFile, const std::string &name,
                                       std::uint32_t target, bool includeAll);
    // findGroup with the node's group file and the toolchain's target.
    PropertyValueGroupClass *findGroupForNode(ProjectElement *element,
                                              const std::string &configuration,
                                              const std::string &name, bool includeAll);
    // Chooses an entry of the group for the node, as a property browser
    // would: the entry's property and file items are applied.
    void setGroupValue(ProjectElement *element, const std::string &configuration,
                       PropertyValueGroupClass *group, const std::string &value);
    // The <groupEntry> of that name, or null.
    static XMLElement *groupEntry(const PropertyValueGroupClass *group, std::string_view entryName);
    // True if an entry of the group has a <cdefine> item.
    static bool hasDefines(const PropertyValueGroupClass *group);
    // True if the item's selectors (configuration, property and
    // property_value) let it apply to the node; testConfiguration false
    // passes over `configuration`. `file` is the node's group file.
    bool groupItemApplies(ProjectElement *element, const std::string &configuration,
                          const XMLElement &item, PropertyValueGroupFile *file,
                          bool testConfiguration = true);
    // The property that an item names: a class of the map, else a group;
    // null if neither knows the name.
    PropertyClass *groupItemProperty(ProjectElement *element, const std::string &name,
                                     PropertyValueGroupFile *file);
    // The contributions of the chosen entries, appended to the list or map.
    void addGroupMacros(PropertyValueGroupFile *file, ProjectElement *element,
                        const std::string &configuration, MacroMap &map);
    void groupIncludes(ProjectElement *element, const std::string &configuration, StringList &list);
    void groupDefines(ProjectElement *element, const std::string &configuration, StringList &list);
    void groupLibraries(ProjectElement *element, const std::string &configuration, StringList &list);
    void groupPackages(ProjectElement *element, const std::string &configuration, StringList &list);
    PropertyGroupFiles &propertyGroupFiles() { return *groupFiles_; }

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
    // Whether getPropertyValue gives "Yes". A property that no store of the
    // tree holds has its default, found without a search or a copy.
    bool isYes(ProjectElement *element, PropertyClass *property, const std::string &configuration);
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
    // The same with extra macros that win over the node's, such as a build
    // step's $(TargetPath).
    std::string expandProjectMacros(ProjectElement *element, const std::string &text,
                                    const std::string &configuration, const MacroMap &extra);
    // The one-entry cache of projectMacros, on for the time of a build.
    void setMacroCacheEnabled(bool enabled);
    // Called on any change to the tree or its values: drops what the caches
    // of a build (macro source, stored property names) may have kept.
    void dropMacroCache() {
        macroCache_.element = nullptr;
        storedProperties_.root = nullptr;
    }

    // ---- Configurations.

    StringList inheritedConfigurations(ProjectElement *element, const std::string &configuration);
    void setInheritedConfigurations(ProjectElement *element, const std::string &configuration,
                                    const StringList &list);
    StringList configurationNames(ProjectElement *element, int flags);
    StringList batchBuildConfigurations(ProjectElement *element, const std::string &configuration);

    // ---- Solution files.

    // The whole load of a solution file: the file and its imports, load
    // commands, templated projects, the maps, dynamic folders and the
    // environment. The tree becomes the root; throws SolutionLoadError.
    ProjectElement *loadSolution(const std::string &fileName,
                                 ProjectFileNotFoundErrorHandler *fileNotFoundHandler = nullptr,
                                 TemplateNotFoundErrorHandler *templateHandler = nullptr,
                                 ProjectLoadProgressInterface *progress = nullptr,
                                 bool checkTarget = false);
    // One file with the files it imports; returns its root, which the
    // caller owns. `macroText` starts the pre-processor's macros.
    ProjectElement *readSolutionFile(const std::string &baseDirectory, const std::string &fileName,
                                     ProjectFileNotFoundErrorHandler *fileNotFoundHandler,
                                     ProjectLoadProgressInterface *progress,
                                     const std::string *macroText);
    // Adds a solution file below `parent` after the load.
    ProjectElement *importSolution(ProjectElement *parent, const std::string &fileName,
                                   ProjectFileNotFoundErrorHandler *fileNotFoundHandler,
                                   ProjectLoadProgressInterface *progress);
    // Fills a dynamic folder from the directories of its `path`.
    void populateFolder(ProjectElement *folder, const std::string &configuration);
    void scanDirectory(ProjectElement *folder, const std::string &directory,
                       const std::string &displayPath, const StringList &filter, bool recurse,
                       const StringList &exclude);
    // Brings a loaded tree up to date with the toolchain.
    virtual void migrateElement(ProjectElement *root);
    // The end of a load, also for a tree made in memory: the maps, the
    // toolchain's migration and the dynamic folders.
    void finishLoad(ProjectLoadProgressInterface *progress);
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
    // The front end's warning object; none in tests.
    ProjectSystemHelpers *helpers = nullptr;
    std::vector<PropertyChangeListener *> propertyListeners;
    // The text of $(StudioDir).
    std::string installDirectory;
    // The solution file of the last load and when it was loaded.
    std::string currentSolutionFile;
    FileTime loadTime;
    // The project template files, unexpanded: the front end's list, which a
    // solution's templates_file replaces.
    std::string templatesFilePath;
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
    // Names that addToolMacros may add; each toolchain class adds its own.
    // They must live as long as the system (string literals).
    void addToolMacroNames(std::span<const std::string_view> names) {
        for (std::string_view name : names)
            toolMacroNames_.insert(name);
    }

private:
    ShortNameSet toolMacroNames_;
    void expandTemplatedProjects(TemplateNotFoundErrorHandler *templateHandler,
                                 ProjectLoadProgressInterface *progress);
    void propertyChanged(ProjectElement *element, ProjectElement *store, PropertyClass *property,
                         const std::string &configuration, std::optional<std::string> oldValue);

    // One node's macro source, kept while the cache is on. An expansion
    // holds its own reference, since computing a macro may expand another
    // node's text and so replace the cached source.
    struct MacroCache {
        bool enabled = false;
        const ProjectElement *element = nullptr;
        std::shared_ptr<ProjectMacroSource> source;
    };
    std::shared_ptr<ProjectMacroSource> cachedMacroSource(ProjectElement *element,
                                                          const std::string &configuration);

    // While the macro cache is on (the time of a build): which properties
    // some configuration store of a tree holds. Most properties that a build
    // asks of a file are stored nowhere, and have their default without a
    // walk up the tree.
    struct StoredProperties {
        const ProjectElement *root = nullptr;     // the tree the names are of
        const ProjectElement *element = nullptr;  // last asked about, in root
        std::unordered_set<std::string> names;
        std::uint64_t generation = 0;  // of names, unique in the process
    };
    // False if no store of the element's tree holds the property; true
    // when it may be held, and always while the cache is off. Asked for
    // most property reads of a build: the common case, the element asked
    // last or its parent or child with the property's note current, is
    // answered here.
    bool mayBeStored(ProjectElement *element, const PropertyClass *property) {
        StoredProperties &stored = storedProperties_;
        const XMLNode *last = stored.element;
        if (!macroCache_.enabled || !element || !stored.root || !last ||
            property->storedNote.generation != stored.generation ||
            !(element == last || element->parent == last || last->parent == element))
            return mayBeStoredAnew(element, property);
        stored.element = element;
        return property->storedNote.held;
    }
    bool mayBeStoredAnew(ProjectElement *element, const PropertyClass *property);
    // Collects the names that the stores of the tree hold.
    void storedNamesOf(ProjectElement *root);

    bool readStore(ProjectElement *element, const std::string &name, PropertyClass *property,
                   std::optional<std::string> &acc, PropertyTrace *trace);
    const StringList *inheritedList(ProjectElement *element, const std::string &configuration);
    XMLElement *copyTree(ProjectElement *solutionElement, bool sorted);
    bool writeSolution(ProjectElement *solutionElement, const std::string &fileName, bool sorted);

    MacroCache macroCache_;
    StoredProperties storedProperties_;
    std::unique_ptr<PropertyGroupFiles> groupFiles_;
    // The file type of each ".xml" file met, by absolute path: its document
    // type is read once.
    std::map<std::string, std::string> xmlFileTypes_;

    // The generic option files read so far, by expanded name; null for a
    // file that couldn't be read.
    struct GenericOptions {
        std::string activeName;
        GenericOptionSet *active = nullptr;
        std::map<std::string, std::unique_ptr<GenericOptionSet>, std::less<>> sets;
        // genericOptionsFileName as last expanded, and the expansion.
        std::optional<std::string> standardText;
        std::string standardName;
    };
    GenericOptions genericOptions_;
};
