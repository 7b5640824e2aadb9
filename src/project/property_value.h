#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class ProjectElement;
class ProjectSystem;
class PropertyClass;
class PropertyValueGroupClass;
class PropertyValueGroupFile;
class XMLElement;

// One property of one node as a listing or a generic editor sees it. A null
// value (nullopt) differs from an empty one, as in the look-up.
class PropertyValue {
public:
    explicit PropertyValue(PropertyClass *property);
    PropertyValue(const PropertyValue &) = default;
    PropertyValue &operator=(const PropertyValue &) = delete;
    virtual ~PropertyValue() = default;

    virtual std::unique_ptr<PropertyValue> clone() const = 0;
    virtual bool isReadOnly() const { return readOnly; }
    // True if the value isn't stored on the node itself.
    virtual bool isInherited() const = 0;
    // The help of the class.
    virtual std::string longText() const;
    virtual void setValue(const std::string &text) = 0;
    virtual std::optional<std::string> value() const = 0;

    // The save name of the class.
    const std::string &name() const;

    bool readOnly;
    // Hints for a property browser; the core neither sets nor reads them.
    std::array<bool, 2> displayFlags{};
    PropertyClass *propertyClass;
};

// A computed line, such as a file's full path: the value is the text it was
// made with.
class SimplePropertyValue : public PropertyValue {
public:
    SimplePropertyValue(PropertyClass *property, std::optional<std::string> text);

    std::unique_ptr<PropertyValue> clone() const override;
    bool isInherited() const override { return true; }
    void setValue(const std::string &text) override { text_ = text; }
    std::optional<std::string> value() const override { return text_; }

private:
    std::optional<std::string> text_;
};

// A property of a node in one configuration, read and written through the
// project system. A property that isn't per configuration lives in "Common".
class ProjectPropertyValue : public PropertyValue {
public:
    ProjectPropertyValue(ProjectElement *element, PropertyClass *property,
                         const std::string &configuration, ProjectSystem *projectSystem);

    std::unique_ptr<PropertyValue> clone() const override;
    // True unless the node's own store of the configuration holds the value.
    bool isInherited() const override;
    void setValue(const std::string &text) override;
    // A StringList shows only what the node's own store adds to the list;
    // any other type shows the value the look-up finds.
    std::optional<std::string> value() const override;

    ProjectElement *element;
    std::string configuration;
    ProjectSystem *projectSystem;
};

// The project's directory: a change moves every file of the project.
class ProjectDirectoryProjectPropertyValue : public ProjectPropertyValue {
public:
    using ProjectPropertyValue::ProjectPropertyValue;
    std::unique_ptr<PropertyValue> clone() const override;
    void setValue(const std::string &text) override;
};

// The project's macros: file names may be made of them.
class ProjectMacrosProjectPropertyValue : public ProjectPropertyValue {
public:
    using ProjectPropertyValue::ProjectPropertyValue;
    std::unique_ptr<PropertyValue> clone() const override;
    void setValue(const std::string &text) override;
};

// A setting of a dynamic folder, which the folder element holds as an
// attribute of its own rather than in a configuration store.
class DynamicFolderPropertyValue : public ProjectPropertyValue {
public:
    using ProjectPropertyValue::ProjectPropertyValue;
    std::unique_ptr<PropertyValue> clone() const override;
    bool isInherited() const override;
    void setValue(const std::string &text) override;
    std::optional<std::string> value() const override;
};

// The configurations that a solution's configuration falls back on, joined
// by ";".
class InheritedConfigurationsProjectPropertyValue : public ProjectPropertyValue {
public:
    using ProjectPropertyValue::ProjectPropertyValue;
    std::unique_ptr<PropertyValue> clone() const override;
    void setValue(const std::string &text) override;
    std::optional<std::string> value() const override;
};

// The public configurations of the solution around the node, joined by ";".
// Setting the list creates the names that are missing and deletes the
// solution's public configurations that aren't named.
class PublicConfigurationsProjectPropertyValue : public ProjectPropertyValue {
public:
    using ProjectPropertyValue::ProjectPropertyValue;
    std::unique_ptr<PropertyValue> clone() const override;
    void setValue(const std::string &text) override;
    std::optional<std::string> value() const override;
};

// The same for the private (hidden) configurations.
class PrivateConfigurationsProjectPropertyValue : public ProjectPropertyValue {
public:
    using ProjectPropertyValue::ProjectPropertyValue;
    std::unique_ptr<PropertyValue> clone() const override;
    void setValue(const std::string &text) override;
    std::optional<std::string> value() const override;
};

// The choice of a property group on a node. Choosing an entry also applies
// its <property> and <file> items: it sets the properties they name and adds
// the files they list.
class PropertyValueGroupValue : public ProjectPropertyValue {
public:
    PropertyValueGroupValue(ProjectElement *element, PropertyValueGroupClass *group,
                            const std::string &configuration, ProjectSystem *projectSystem);

    std::unique_ptr<PropertyValue> clone() const override;
    // Takes the entry of the text, else the group's default entry; applies
    // its items, then stores the text.
    void setValue(const std::string &text) override;

    PropertyValueGroupClass *groupClass() const;

private:
    void applyProperty(const XMLElement &item, PropertyValueGroupFile *file);
    void applyFile(const XMLElement &item);
};

// An owning list of values in insertion order.
class PropertyValueList {
public:
    using Items = std::vector<std::unique_ptr<PropertyValue>>;

    void append(std::unique_ptr<PropertyValue> value) { items_.push_back(std::move(value)); }
    // Moves every value of other behind those of this list.
    void append(PropertyValueList &&other);

    std::size_t size() const { return items_.size(); }
    bool empty() const { return items_.empty(); }
    PropertyValue *at(std::size_t index) const { return items_[index].get(); }
    // The first value of the save name, or null.
    PropertyValue *find(std::string_view name) const;

    Items::const_iterator begin() const { return items_.begin(); }
    Items::const_iterator end() const { return items_.end(); }

private:
    Items items_;
};
