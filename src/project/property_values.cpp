// Reading and writing property values: the search over the stores of a node
// and of the nodes above it.

#include "project/project_system.h"
#include "project/tree_walk.h"
#include "support/macro_expansion.h"
#include "support/text_split.h"

namespace {

const std::string commonName = "Common";

} // namespace

bool ProjectSystem::readStore(ProjectElement *element, const std::string &name,
                              PropertyClass *property, std::optional<std::string> &acc,
                              PropertyTrace *trace) {
    auto store = element->configurations.find(name);
    if (store == element->configurations.end() || !store->second)
        return false;
    const XMLAttributes &attributes = store->second->attributes();
    auto stored = attributes.find(property->name());
    if (stored == attributes.end())
        return false;
    static const std::string noText;
    const std::string &value = stored->second ? *stored->second : noText;
    if (trace)
        trace->push_back({value, store->first, element});
    if (!acc || acc->empty())
        acc = value;
    else
        acc = value + ";" + *acc;
    return true;
}

bool ProjectSystem::mayBeStoredAnew(ProjectElement *element, const PropertyClass *property) {
    if (!macroCache_.enabled || !element)
        return true;
    StoredProperties &stored = storedProperties_;
    // A file's properties are asked one after the other, and its project's
    // between them: the tree of the element asked last, of its parent and
    // of its children is known until the tree changes, which drops the root.
    const XMLNode *last = stored.element;
    const bool known = stored.root && last &&
                       (element == last || element->parent == last || last->parent == element);
    if (!known) {
        ProjectElement *root = element;
        while (ProjectElement *up = parent(root))
            root = up;
        if (stored.root != root)
            storedNamesOf(root);
    }
    stored.element = element;
    PropertyClass::StoredNote &note = property->storedNote;
    if (note.generation != stored.generation)
        note = {stored.generation, stored.names.contains(property->name())};
    return note.held;
}

void ProjectSystem::storedNamesOf(ProjectElement *root) {
    StoredProperties &stored = storedProperties_;
    // Property classes may be shared between systems: each list of names
    // gets a number that no other list had.
    static std::uint64_t generations = 0;
    stored.names.clear();
    stored.generation = ++generations;
    for (XMLNode *node = root; node; node = nextInSubtree(node, root, true))
        if (const ProjectElement *e = ProjectElement::from(node))
            for (const auto &[name, store] : e->configurations)
                if (store)
                    for (const auto &[attribute, value] : store->attributes())
                        stored.names.insert(attribute);
    stored.root = root;
}

// The inherited list of a configuration as seen from a solution: the first
// non-empty one on the way up.
const StringList *ProjectSystem::inheritedList(ProjectElement *solutionElement,
                                               const std::string &configuration) {
    for (ProjectElement *e = solutionElement; e; e = parent(e)) {
        auto list = e->inherited.find(configuration);
        if (list != e->inherited.end() && !list->second.empty())
            return &list->second;
    }
    return nullptr;
}

std::optional<std::string> ProjectSystem::getPropertyValue(ProjectElement *element,
                                                           PropertyClass *property,
                                                           const std::string &configuration,
                                                           PropertyTrace *trace) {
    if (!property)
        return std::nullopt;
    const bool collect = property->type() == PropertyClass::StringList;
    const bool isCommon = configuration == commonName;
    std::optional<std::string> acc;

    // The inherited list comes from the solution around the node, which
    // changes only when the walk leaves that solution.
    ProjectElement *owner = nullptr;
    bool ownerKnown = false;
    const StringList *inherited = nullptr;
    ProjectElement *const start = mayBeStored(element, property) ? element : nullptr;
    for (ProjectElement *e = start, *previous = nullptr; e; previous = e, e = parent(e)) {
        if (ownerKnown && previous == owner)
            ownerKnown = false;
        if (e->configurations.empty())
            continue;
        if (readStore(e, configuration, property, acc, trace) && !collect)
            return acc;
        if (isCommon)
            continue;
        if (!ownerKnown) {
            owner = solutionOf(e);
            inherited = inheritedList(owner, configuration);
            ownerKnown = true;
        }
        if (inherited) {
            for (const std::string &name : *inherited)
                if (readStore(e, name, property, acc, trace) && !collect)
                    return acc;
        }
        if (readStore(e, commonName, property, acc, trace) && !collect)
            return acc;
    }
    if (acc)
        return acc;

    std::string value;
    if (defaultPropertyValue(element, configuration, property, value)) {
        if (trace)
            trace->push_back({value, {}, nullptr});
        return value;
    }
    if (trace)
        trace->push_back({property->defaultValue(), {}, nullptr});
    return property->defaultValue();
}

bool ProjectSystem::isYes(ProjectElement *element, PropertyClass *property, const std::string &configuration) {
    if (!property || mayBeStored(element, property))
        return getPropertyValue(element, property, configuration) == "Yes";
    std::string value;
    if (defaultPropertyValue(element, configuration, property, value))
        return value == "Yes";
    const std::optional<std::string> &byDefault = property->defaultValue();
    return byDefault && std::string_view(*byDefault) == "Yes";
}

std::optional<std::string> ProjectSystem::getExpandedPropertyValue(ProjectElement *element,
                                                                   PropertyClass *property,
                                                                   const std::string &configuration) {
    std::optional<std::string> value = getPropertyValue(element, property, configuration);
    if (!value)
        return value;
    return expandProjectMacros(element, *value, configuration);
}

std::optional<std::string> ProjectSystem::getOwnPropertyValue(ProjectElement *element,
                                                              PropertyClass *property,
                                                              const std::string &configuration) {
    if (!property)
        return std::nullopt;
    return attribute(findConfiguration(element, configuration), property->name());
}

bool ProjectSystem::isPropertySet(ProjectElement *element, PropertyClass *property,
                                  const std::string &configuration,
                                  std::optional<std::string> &value) {
    PropertyTrace trace;
    value = getPropertyValue(element, property, configuration, &trace);
    return !trace.empty() && trace.front().element != nullptr;
}

StringList ProjectSystem::getPropertyList(const std::string &prefix, ProjectElement *element,
                                          PropertyClass *property, const std::string &configuration,
                                          bool expand, bool rawSplit, bool escapeQuotes) {
    const std::optional<std::string> text = getPropertyValue(element, property, configuration);
    if (!text || text->empty())
        return {};
    StringList items = rawSplit ? splitEscaped(*text, false) : splitAtAny(*text, ";");
    if (expand) {
        bool hasMacros = false;
        for (const std::string &item : items)
            hasMacros = hasMacros || item.find('$') != std::string::npos;
        if (hasMacros) {
            const MacroMap map = projectMacros(element, configuration);
            for (std::string &item : items)
                item = expandMacrosWith(*macros, map, item, true, true);
        }
    }
    for (std::string &item : items) {
        if (escapeQuotes) {
            std::string escaped;
            for (const char c : item) {
                if (c == '"')
                    escaped += '\\';
                escaped += c;
            }
            item.swap(escaped);
        }
        item.insert(0, prefix);
    }
    return items;
}

void ProjectSystem::setPropertyValue(ProjectElement *element, PropertyClass *property,
                                     const std::string &configuration, const std::string &value) {
    if (!element || !property)
        return;
    ProjectElement *store = findConfiguration(element, configuration);
    if (!store)
        store = addConfiguration(element, configuration, PublicConfigurations);
    std::optional<std::string> oldValue;
    if (trackingChanges)
        oldValue = attribute(store, property->name());
    store->XMLElement::setAttribute(property->name(), value);
    propertyChanged(element, store, property, configuration, std::move(oldValue));
}

// The common end of a write: the undo record and the modified flag while
// tracking, the listeners, and the caches that the value may feed.
void ProjectSystem::propertyChanged(ProjectElement *element, ProjectElement *store,
                                    PropertyClass *property, const std::string &configuration,
                                    std::optional<std::string> oldValue) {
    if (trackingChanges) {
        undoList.push_front({element, property, configuration, FileTime::now(), std::move(oldValue),
                             store->modified, true});
        store->modified = true;
    }
    if (observer)
        observer->propertyChanged(element, configuration, property);
    for (PropertyChangeListener *listener : propertyListeners)
        listener->propertyChanged(element, configuration, property);
    dropMacroCache();
    if (trackingChanges)
        invalidatePaths(element);
}

void ProjectSystem::clearPropertyValue(ProjectElement *element, PropertyClass *property,
                                       const std::string &configuration) {
    if (!property)
        return;
    ProjectElement *store = findConfiguration(element, configuration);
    if (!store || !store->hasAttribute(property->name()))
        return;
    std::optional<std::string> oldValue = attribute(store, property->name());
    store->removeAttribute(property->name());
    propertyChanged(element, store, property, configuration, std::move(oldValue));
}
