#pragma once

#include "project/xml/xml_node.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

// Attribute values by name, in byte order of the names. A value without text
// (std::nullopt) stands for an attribute written without "=value". The
// comparator is transparent so that look-ups by string_view don't allocate.
using XMLAttributes = std::map<std::string, std::optional<std::string>, std::less<>>;

// An element: a tag and its attributes. Subclasses of XMLDocument create their
// own element classes through XMLDocument::createElement.
class XMLElement : public XMLNode {
public:
    explicit XMLElement(std::string_view tag) : XMLNode(Kind::Element), tagName(tag) {}

    virtual const XMLAttributes &attributes() const { return attributes_; }

    // The value of an attribute, or null if it is missing or has no value.
    // The pointer stays valid until that attribute is removed.
    const std::string *attribute(std::string_view name) const;
    // A null name is the empty name.
    const std::string *attribute(const char *name) const;
    bool hasAttribute(std::string_view name) const;

    // Sets an attribute; an existing value is only assigned when its text
    // differs. A null name is the empty name, a null value means no value.
    void setAttribute(std::string_view name, std::string_view value);
    void setAttribute(const char *name, const char *value);
    // True if the attribute was there.
    bool removeAttribute(std::string_view name);

    std::string tagName;

private:
    friend class XMLParser;
    void assignAttribute(std::string_view name, std::optional<std::string_view> value);

    XMLAttributes attributes_;
};
