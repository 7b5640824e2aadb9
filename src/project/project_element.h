#pragma once

#include "project/xml/xml_element.h"
#include "support/file_path.h"
#include "support/file_time.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

class ProjectSystem;
class SystemMacros;

// A node of the project tree. It is an XML element, so the attributes read
// from a solution file stay where the parser put them; the fields below are
// caches and flags that the ProjectSystem keeps on the node. The node knows
// almost nothing itself: every operation on the tree is one of the project
// system's.
class ProjectElement : public XMLElement {
public:
    // The kind of a node, decided by its tag; any other tag gives Solution.
    enum NodeKind : std::int32_t {
        Solution = 0,
        Configuration = 1,
        Project = 2,
        Folder = 3,
        File = 4,
    };

    using ElementMap = std::map<std::string, ProjectElement *, std::less<>>;
    using InheritedMap = std::map<std::string, std::vector<std::string>, std::less<>>;

    ProjectElement(std::string_view tag, ProjectSystem *projectSystem, SystemMacros *macros);
    ~ProjectElement() override;

    static NodeKind kindOfTag(std::string_view tag);

    // The node as a ProjectElement, or null for text nodes and for plain
    // elements that some other code linked into the tree.
    // The mark that every ProjectElement carries (see XMLNode::classMark).
    static constexpr std::uint8_t classMark = 1;
    static ProjectElement *from(XMLNode *node) {
        return node && node->classMark() == classMark ? static_cast<ProjectElement *>(node) : nullptr;
    }

    // The key of a configuration node in its parent's map: its Name, else
    // the last part of its file_name, else "<NULL>".
    static std::string configurationKey(const ProjectElement *configuration);

    // Enters the configuration children of every node of the subtree in the
    // node's configurations map; an entry that is already there stays. A
    // freshly parsed tree has empty maps, as the parser links children by
    // itself.
    static void mapConfigurations(ProjectElement *root);

    // The configuration children by name: a lookup cache, not an owner.
    ElementMap configurations;
    NodeKind nodeKind;
    bool modified = false;
    // The five path fields below are up to date.
    bool pathsValid = false;
    FilePath filePath;
    std::string baseDirectory;
    std::string relativeName;
    // Set only if file_name holds a macro.
    std::string pathsConfiguration;
    bool insideBaseDirectory = false;
    bool nameHasMacros = false;
    bool nameIsRelative = false;
    // A solution node that came from an import element.
    bool imported = false;
    // On a solution: every project below it, by display name.
    ElementMap projects;
    // On a solution: the parsed inherited_configurations of its
    // configuration children.
    InheritedMap inherited;
    FileTime fileTime;
    bool canModify = true;
    ProjectSystem *projectSystem;
    SystemMacros *macros;
};
