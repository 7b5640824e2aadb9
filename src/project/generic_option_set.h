#pragma once

#include "project/generic_property_class.h"
#include "project/property_group_files.h"

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class PropertyClassMap;
class XMLElement;

// The contents of one generic option file: extra tool options, new defaults
// for known properties, and property group definitions. The reader of the
// file pre-processes it and hands over the root; activating the set on a
// project system's class map makes its options known to the build.
class GenericOptionSet {
public:
    enum Tool { Assembler, Compiler, CCompiler, CppCompiler, Linker };
    static constexpr std::size_t toolCount = 5;

    // A new default for the property of that name while the set is active.
    struct DefaultOverride {
        std::string name;
        std::string value;
    };

    // Reads the children of root. Each <group> element is moved out of the
    // tree and kept by the set.
    explicit GenericOptionSet(XMLElement &root);
    GenericOptionSet(const GenericOptionSet &) = delete;
    GenericOptionSet &operator=(const GenericOptionSet &) = delete;
    // Leaves the defaults of a map it is still active on as they are:
    // deactivate first.
    ~GenericOptionSet();

    const std::vector<std::unique_ptr<GenericPropertyClass>> &properties() const { return properties_; }
    // The options of one tool, in file order.
    const std::vector<GenericPropertyClass *> &toolProperties(Tool tool) const { return tools_[tool]; }
    // From <property> elements without "tool" and from <group> elements, in
    // file order.
    const std::vector<DefaultOverride> &defaultOverrides() const { return overrides_; }
    const std::vector<std::unique_ptr<XMLElement>> &groupElements() const { return groups_; }
    // One property group for each of groupElements(), in file order.
    const std::vector<std::unique_ptr<PropertyValueGroupClass>> &groupClasses() const {
        return groupClasses_;
    }

    // Registers every option and group, enters the options in the step
    // lists (assembler 4, compiler 2 and 3, C compiler 2, C++ compiler 3,
    // linker 7) and applies the default overrides to the properties that
    // map knows; unknown names are skipped.
    void activate(PropertyClassMap &map);
    // Undoes activate: defaults back, options out of the lists and the map.
    void deactivate(PropertyClassMap &map);
    bool isActive() const { return active_; }

private:
    struct AppliedOverride {
        PropertyClass *property;
        std::optional<std::string> oldDefault;
    };

    std::vector<std::unique_ptr<GenericPropertyClass>> properties_;
    std::array<std::vector<GenericPropertyClass *>, toolCount> tools_;
    std::vector<DefaultOverride> overrides_;
    std::vector<std::unique_ptr<XMLElement>> groups_;
    std::vector<std::unique_ptr<PropertyValueGroupClass>> groupClasses_;

    bool active_ = false;
    // Per option, then per group, the class that had its name before
    // activation.
    std::vector<PropertyClass *> replaced_;
    std::vector<AppliedOverride> applied_;
};
