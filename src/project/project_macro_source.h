#pragma once

#include "support/macro_expansion.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

class ProjectElement;
class ProjectSystem;
class PropertyValueGroupFile;

// The macros of one node in one configuration, computed when a reference asks
// for them. Expanding "$(IntDir)/$(InputName)$(OBJ)" thus costs one property
// look-up and two file name splits rather than the whole table, which a
// build would otherwise make for every file it checks.
//
// The values are those of the table that ProjectSystem::projectMacros makes,
// in which a later entry replaces an earlier one of the same name:
//   1. the node's `macros` property (user macros);
//   2. the built-in names ProjectNodeName ... PackageExt;
//   3. the macros of the chosen property group entries (looked for only by
//      the names that some <macro> item of the group files defines);
//   4. StudioDir;
//   5. the toolchain's tool macros (asked for only by the names that
//      ProjectSystem::mayBeToolMacro admits);
//   6. IntDir, RootOutDir, OutDir, RootRelativeOutDir and ToolChainDir, each
//      expanded with the table as it stands before it.
// The node's group file is named by property_groups_file_path, expanded with
// the first two layers.
// The source reads the tree as it is: it must not outlive a change to it.
class ProjectMacroSource : public MacroSource {
public:
    ProjectMacroSource(ProjectSystem &system, ProjectElement *element, std::string configuration);

    const std::string *find(std::string_view name) override { return findBelow(name, Derived::Count); }

    // The whole table, in the order above.
    MacroMap materialize();

    ProjectElement *element() const { return element_; }
    const std::string &configuration() const { return configuration_; }

    // The node's group file, found on first use; null for none.
    PropertyValueGroupFile *groupFile();

    // The names that are computed from properties at the end, in order.
    enum Derived { IntDir, RootOutDir, OutDir, RootRelativeOutDir, ToolChainDir, Count };

private:
    // The source as the expansion of derived name `limit` sees it.
    class Limited : public MacroSource {
    public:
        Limited(ProjectMacroSource &source, int limit) : source_(source), limit_(limit) {}
        const std::string *find(std::string_view name) override { return source_.findBelow(name, limit_); }

    private:
        ProjectMacroSource &source_;
        int limit_;
    };

    // What the expansion of the group file's name sees: layers 1 and 2.
    static constexpr int beforeGroups = -1;

    const std::string *findBelow(std::string_view name, int limit);
    const std::string *groupMacro(std::string_view name);
    const MacroMap &groupMacros();
    const std::string *derived(int which);
    const std::string *builtIn(std::size_t which);
    std::optional<std::string> computeBuiltIn(std::size_t which);
    const MacroMap &userMacros();
    const MacroMap &toolMacros();

    ProjectSystem &system_;
    ProjectElement *element_;
    std::string configuration_;

    // What has been computed; a slot that is done but empty is a name the
    // node doesn't have.
    struct Slot {
        bool done = false;
        std::optional<std::string> value;
    };
    static constexpr std::size_t builtInCount = 25;
    std::array<Slot, builtInCount> builtIns_;
    std::array<Slot, Derived::Count> derived_;
    std::string rawOutDir_;
    std::optional<MacroMap> userMacros_;
    std::optional<MacroMap> toolMacros_;
    bool groupFileKnown_ = false;
    PropertyValueGroupFile *groupFile_ = nullptr;
    std::optional<MacroMap> groupMacros_;
    bool computingGroupMacros_ = false;

public:
    // The built-in names in table order.
    static const std::array<std::string_view, builtInCount> builtInNames;
};
