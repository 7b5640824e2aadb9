#pragma once

#include "project/property_class.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
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
    std::size_t size() const { return size_; }

private:
    // An open-addressed table, probed linearly: a toolchain enters hundreds
    // of classes at every start, and a node and a copied name for each cost
    // more than the look-ups that follow. A slot's key is the name of the
    // class it holds, so replacing a class under its name needs no new key.
    struct Slot {
        std::size_t hash = 0;
        PropertyClass *property = nullptr;
    };
    std::vector<Slot> slots_;
    std::size_t size_ = 0;
    // The slot of name, or the empty slot where the probe for it ends.
    std::size_t find(std::string_view name, std::size_t hash) const;
    void grow();

    // Indexed by step: steps are small numbers.
    std::vector<std::vector<PropertyClass *>> toolProperties_;
    MultipleDefinitionReport report_;
};
