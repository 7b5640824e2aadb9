#pragma once

#include "project/macro_property_class.h"
#include "project/property_class.h"
#include "project/property_class_map.h"

#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// Writes the rows of a property table: each call makes one class with the
// page and group of the current section, keeps it in the owner list and
// enters it in the class map.
class PropertyTableMaker {
public:
    PropertyTableMaker(PropertyClassMap &map, std::vector<std::unique_ptr<PropertyClass>> &objects)
        : map_(map), objects_(objects)
    {
    }

    // The page and group of the rows that follow.
    void section(PropertyText page, PropertyText group);

    template <class Class = PropertyClass>
    Class *text(std::string name, PropertyClass::Type type, PropertyText shortText,
                PropertyText longText, std::optional<std::string> defaultValue)
    {
        return keep(std::make_unique<Class>(std::move(name), type, page_, group_,
                                            std::move(shortText), std::move(longText),
                                            std::move(defaultValue)));
    }

    PropertyClass *boolean(std::string name, PropertyText shortText, PropertyText longText,
                           bool defaultValue);

    PropertyClass *number(std::string name, PropertyClass::Type type, std::int32_t minimum,
                          std::int32_t maximum, PropertyText shortText, PropertyText longText,
                          std::int32_t defaultValue);

    template <class Class = PropertyClass>
    Class *enumeration(std::string name, std::vector<std::string> values,
                       PropertyText shortText, PropertyText longText,
                       std::optional<std::string> defaultValue)
    {
        return keep(std::make_unique<Class>(std::move(name), PropertyClass::Enumeration, std::move(values),
                                            std::string(), page_, group_, std::move(shortText),
                                            std::move(longText), std::move(defaultValue), 0, 0));
    }

    MacroPropertyClass *buildMacro(std::string macroName, PropertyText description);
    struct MacroRow {
        const char *name;
        PropertyText description;
    };
    // Makes a build macro row for each of rows, in order, and appends it.
    void appendBuildMacros(std::vector<MacroPropertyClass *> &list, std::initializer_list<MacroRow> rows);

    // Enters property in the option lists of the given build steps.
    void tools(PropertyClass *property, std::initializer_list<int> steps);

    template <class Class>
    Class *keep(std::unique_ptr<Class> property)
    {
        Class *raw = property.get();
        objects_.push_back(std::move(property));
        map_.addPropertyClass(raw);
        return raw;
    }

private:
    PropertyClassMap &map_;
    std::vector<std::unique_ptr<PropertyClass>> &objects_;
    PropertyText page_;
    PropertyText group_;
};
