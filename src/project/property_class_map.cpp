#include "project/property_class_map.h"

#include <algorithm>
#include <utility>

namespace {

std::size_t hashOf(std::string_view name)
{
    return std::hash<std::string_view>{}(name);
}

} // namespace

std::size_t PropertyClassMap::find(std::string_view name, std::size_t hash) const
{
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
        const Slot &slot = slots_[i];
        if (!slot.property || (slot.hash == hash && slot.property->name() == name))
            return i;
    }
}

// A toolchain's classes fit the first size, so a start doesn't rehash.
void PropertyClassMap::grow()
{
    std::vector<Slot> old = std::exchange(slots_, std::vector<Slot>(std::max<std::size_t>(slots_.size() * 2, 1024)));
    const std::size_t mask = slots_.size() - 1;
    for (const Slot &slot : old) {
        if (!slot.property)
            continue;
        std::size_t i = slot.hash & mask;
        while (slots_[i].property)
            i = (i + 1) & mask;
        slots_[i] = slot;
    }
}

PropertyClass *PropertyClassMap::addPropertyClass(PropertyClass *property)
{
    // At most three quarters full, so that probes stay short.
    if ((size_ + 1) * 4 > slots_.size() * 3)
        grow();
    const std::size_t hash = hashOf(property->name());
    Slot &slot = slots_[find(property->name(), hash)];
    if (!slot.property) {
        slot = {hash, property};
        ++size_;
        return nullptr;
    }
    if (slot.property == property)
        return nullptr;
    if (report_)
        report_("PropertyClass Multiple Definition", {property->name()});
    return std::exchange(slot.property, property);
}

void PropertyClassMap::removePropertyClass(PropertyClass *property, PropertyClass *restore)
{
    if (slots_.empty())
        return;
    const std::size_t mask = slots_.size() - 1;
    std::size_t i = find(property->name(), hashOf(property->name()));
    if (slots_[i].property != property)
        return;
    if (restore) {
        slots_[i].property = restore;
        return;
    }
    // Shifts back the entries of the probe sequence that follow, so that
    // no probe ends early at the hole.
    for (std::size_t next = (i + 1) & mask; slots_[next].property; next = (next + 1) & mask) {
        const std::size_t home = slots_[next].hash & mask;
        // The entry may fill the hole if its home doesn't lie cyclically
        // in (i, next].
        if (((next - home) & mask) >= ((next - i) & mask)) {
            slots_[i] = slots_[next];
            i = next;
        }
    }
    slots_[i] = Slot{};
    --size_;
}

std::vector<PropertyClass *> PropertyClassMap::inNameOrder() const
{
    std::vector<PropertyClass *> list;
    list.reserve(size_);
    for (const Slot &slot : slots_)
        if (slot.property)
            list.push_back(slot.property);
    std::sort(list.begin(), list.end(),
              [](const PropertyClass *a, const PropertyClass *b) { return a->name() < b->name(); });
    return list;
}

PropertyClass *PropertyClassMap::propertyClass(std::string_view name) const
{
    if (slots_.empty())
        return nullptr;
    return slots_[find(name, hashOf(name))].property;
}

void PropertyClassMap::addToolProperty(PropertyClass *property, int step)
{
    if (step < 0)
        return;
    if (static_cast<std::size_t>(step) >= toolProperties_.size())
        toolProperties_.resize(step + 1);
    toolProperties_[step].push_back(property);
}

void PropertyClassMap::removeToolProperty(PropertyClass *property, int step)
{
    if (step < 0 || static_cast<std::size_t>(step) >= toolProperties_.size())
        return;
    std::vector<PropertyClass *> &list = toolProperties_[step];
    auto found = std::find(list.begin(), list.end(), property);
    if (found != list.end())
        list.erase(found);
}

const std::vector<PropertyClass *> &PropertyClassMap::toolProperties(int step) const
{
    static const std::vector<PropertyClass *> none;
    if (step < 0 || static_cast<std::size_t>(step) >= toolProperties_.size())
        return none;
    return toolProperties_[step];
}
