#include "project/xml/xml_element.h"

const std::string *XMLElement::attribute(std::string_view name) const {
    auto it = attributes_.find(name);
    if (it == attributes_.end() || !it->second)
        return nullptr;
    return &*it->second;
}

const std::string *XMLElement::attribute(const char *name) const {
    return attribute(name ? std::string_view(name) : std::string_view());
}

bool XMLElement::hasAttribute(std::string_view name) const {
    return attributes_.find(name) != attributes_.end();
}

void XMLElement::assignAttribute(std::string_view name, std::optional<std::string_view> value) {
    auto it = attributes_.lower_bound(name);
    if (it == attributes_.end() || it->first != name) {
        attributes_.emplace_hint(it, std::string(name),
                                 value ? std::optional<std::string>(std::in_place, *value)
                                       : std::nullopt);
        return;
    }
    std::optional<std::string> &current = it->second;
    if (!value)
        current.reset();
    else if (!current || *current != *value)
        current.emplace(*value);
}

void XMLElement::setAttribute(std::string_view name, std::string_view value) {
    assignAttribute(name, value);
}

void XMLElement::setAttribute(const char *name, const char *value) {
    assignAttribute(name ? std::string_view(name) : std::string_view(),
                 value ? std::optional<std::string_view>(value) : std::nullopt);
}

bool XMLElement::removeAttribute(std::string_view name) {
    auto it = attributes_.find(name);
    if (it == attributes_.end())
        return false;
    attributes_.erase(it);
    return true;
}
