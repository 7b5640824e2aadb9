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
    PropertyClass *replaced = entry->second;
    rename(entry, property);
    return replaced;
}

void PropertyClassMap::removePropertyClass(PropertyClass *property, PropertyClass *restore)
{
    auto entry = classes_.find(property->name());
    if (entry == classes_.end() || entry->second != property)
        return;
    if (restore)
        rename(entry, restore);
    else
        classes_.erase(entry);
}

// The key views the name of the class that the entry holds.
void PropertyClassMap::rename(Classes::iterator entry, PropertyClass *property)
{
    auto node = classes_.extract(entry);
    node.key() = property->name();
    node.mapped() = property;
    classes_.insert(std::move(node));
}

std::vector<PropertyClass *> PropertyClassMap::inNameOrder() const
{
    std::vector<PropertyClass *> list;
    list.reserve(classes_.size());
    for (const auto &[name, property] : classes_)
        list.push_back(property);
    std::sort(list.begin(), list.end(),
              [](const PropertyClass *a, const PropertyClass *b) { return a->name() < b->name(); });
    return list;
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
