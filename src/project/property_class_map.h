#pragma once

#include "project/property_class.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// The property classes that a project system knows, by save name, and the
// per-step lists of tool options. It doesn't own the classes: their tables
// do, and a class that another one replaces by name stays alive there.
class PropertyClassMap {
public:
    // Told when a name gets a second, different class: the title and the list
    // of names, as an observer's error report takes them.
    using MultipleDefinitionReport =
        std::function<void(const std::string &title, const std::vector<std::string> &names)>;

    // Enters property under its name. A name that is taken by another class
    // is reported and then points to property. Returns the class that was
    // replaced, or null.
    PropertyClass *addPropertyClass(PropertyClass *property);
    // Takes property out again if its name still points to it; restore, if
    // given, takes the name back.
    void removePropertyClass(PropertyClass *property, PropertyClass *restore = nullptr);
    // Null if no class has the name.
    PropertyClass *propertyClass(std::string_view name) const;

    // Appends property to the option list of a build step.
    void addToolProperty(PropertyClass *property, int step);
    // Removes property from a step's list, if it is there.
    void removeToolProperty(PropertyClass *property, int step);
    // The options of a step, in the order they were added.
    const std::vector<PropertyClass *> &toolProperties(int step) const;

    void setMultipleDefinitionReport(MultipleDefinitionReport report) { report_ = std::move(report); }

    // Every class entered, in name order.
    std::vector<PropertyClass *> inNameOrder() const;
    std::size_t size() const { return classes_.size(); }

private:
    // Keyed by the entered class's own name: a toolchain enters hundreds of
    // classes at start-up, and a copy of each name would cost more than the
    // look-ups that follow.
    using Classes = std::unordered_map<std::string_view, PropertyClass *>;
    Classes classes_;
    void rename(Classes::iterator entry, PropertyClass *property);
    std::map<int, std::vector<PropertyClass *>> toolProperties_;
    MultipleDefinitionReport report_;
};
