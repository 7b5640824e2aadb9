#include "project/property_class_map.h"

#include <algorithm>
#include <utility>

PropertyClass *PropertyClassMap::addPropertyClass(PropertyClass *property)
{
    auto [entry, added] = classes_.try_emplace(property->name(), property);
    if (added || entry->second == property)
        return nullptr;
    if (report_)
        report_("PropertyClass Multiple Definition", {property->name()});
    return std::exchange(entry->second, property);
}

void PropertyClassMap::removePropertyClass(PropertyClass *property, PropertyClass *restore)
{
    auto entry = classes_.find(property->name());
    if (entry == classes_.end() || entry->second != property)
        return;
    if (restore)
        entry->second = restore;
    else
        classes_.erase(entry);
}

PropertyClass *PropertyClassMap::propertyClass(std::string_view name) const
{
    auto entry = classes_.find(name);
    return entry == classes_.end() ? nullptr : entry->second;
}

void PropertyClassMap::addToolProperty(PropertyClass *property, int step)
{
    toolProperties_[step].push_back(property);
}

void PropertyClassMap::removeToolProperty(PropertyClass *property, int step)
{
    auto list = toolProperties_.find(step);
    if (list == toolProperties_.end())
        return;
    auto found = std::find(list->second.begin(), list->second.end(), property);
    if (found != list->second.end())
        list->second.erase(found);
}

const std::vector<PropertyClass *> &PropertyClassMap::toolProperties(int step) const
{
    static const std::vector<PropertyClass *> none;
    auto list = toolProperties_.find(step);
    return list == toolProperties_.end() ? none : list->second;
}
