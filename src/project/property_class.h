#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "project/property_text.h"

class XMLElement;

// The definition of one property: its save name, where and how a property
// browser shows it, its value type, default and allowed values. It holds no
// value; a PropertyClass* is the key with which values are read and written.
class PropertyClass {
public:
    enum Type : std::int32_t {
        Boolean = 0,
        Integer = 1,
        IntegerHex = 2,
        IntegerRange = 3,
        String = 4,
        FileName = 5,
        ProjFileName = 6,
        StringList = 7,
        DirPath = 8,
        DirPathList = 9,
        Enumeration = 10,
        Color = 11,
        Font = 12,
        FixedPitchFont = 13,
        Custom = 14,
        JavaScript = 15,
        CommandLine = 16,
        COMPort = 17,
    };

    // The word of a type number, as in definitions and the type listing;
    // "Unknown" for a number outside the enumeration.
    static std::string_view typeWord(std::int32_t type);
    // The type of a word in a property definition. Definitions know the words
    // up to "JavaScript" only; any other word gives nullopt.
    static std::optional<Type> definitionType(std::string_view word);

    // Text form.
    PropertyClass(std::string name, Type type, PropertyText page, PropertyText group,
                  PropertyText shortText, PropertyText longText,
                  std::optional<std::string> defaultValue, std::int32_t order = 0);
    // Boolean form: the default is stored as "Yes" or "No".
    PropertyClass(std::string name, PropertyText page, PropertyText group,
                  PropertyText shortText, PropertyText longText, bool defaultValue,
                  std::int32_t order = 0);
    // Number form: the default is written in hexadecimal for IntegerHex and
    // in decimal otherwise.
    PropertyClass(std::string name, Type type, std::int32_t minimum, std::int32_t maximum,
                  PropertyText page, PropertyText group, PropertyText shortText,
                  PropertyText longText, std::int32_t defaultValue, std::string specialValue,
                  std::int32_t order);
    // Enumeration form; values may be given as "value~~display" items.
    PropertyClass(std::string name, Type type, std::vector<std::string> values,
                  std::string suffix, PropertyText page, PropertyText group,
                  PropertyText shortText, PropertyText longText,
                  std::optional<std::string> defaultValue, std::int32_t order,
                  std::uint32_t flags);
    // From a <property> element of a property definition file. The page isn't
    // read from the element: the caller sets it.
    static PropertyClass readDefinition(const XMLElement &element);

    PropertyClass(const PropertyClass &) = default;
    PropertyClass &operator=(const PropertyClass &) = default;
    PropertyClass(PropertyClass &&) = default;
    PropertyClass &operator=(PropertyClass &&) = default;
    virtual ~PropertyClass() = default;

    // The help text; may hold HTML.
    virtual std::string longText() const { return std::string(longText_.view()); }
    // The allowed values: "No" and "Yes" for a Boolean without a list.
    virtual std::vector<std::string> choices() const;

    // Lower-cased title, help and values, for a browser's filter.
    std::string searchText() const;

    const std::string &name() const { return name_; }
    std::string_view group() const { return group_; }
    std::string_view shortText() const { return shortText_; }
    const std::string &suffix() const { return suffix_; }
    const std::string &attribute() const { return attribute_; }
    // Null if the property has no default.
    const std::optional<std::string> &defaultValue() const { return defaultValue_; }
    const std::string &specialValue() const { return specialValue_; }
    std::string_view page() const { return page_; }
    bool readOnly() const { return readOnly_; }
    bool perConfiguration() const { return perConfiguration_; }
    Type type() const { return type_; }
    const std::vector<std::string> &values() const { return values_; }
    // Empty when the shown texts are the values themselves.
    const std::vector<std::string> &displayValues() const { return displayValues_; }
    bool editable() const { return editable_; }
    std::int32_t minimum() const { return minimum_; }
    std::int32_t maximum() const { return maximum_; }
    std::int32_t singleStep() const { return singleStep_; }
    std::int32_t order() const { return order_; }
    std::uint32_t flags() const { return flags_; }

    void setReadOnly(bool readOnly) { readOnly_ = readOnly; }
    void setPerConfiguration(bool perConfiguration) { perConfiguration_ = perConfiguration; }
    void setDefaultValue(std::optional<std::string> value) { defaultValue_ = std::move(value); }
    void setShortText(PropertyText text) { shortText_ = std::move(text); }
    void setLongText(PropertyText text) { longText_ = std::move(text); }
    void setSpecialValue(std::string value) { specialValue_ = std::move(value); }
    void setOrder(std::int32_t order) { order_ = order; }
    void setEditable(bool editable) { editable_ = editable; }
    void setAttribute(std::string attribute) { attribute_ = std::move(attribute); }
    // Both normalise as the constructors do.
    void setPage(PropertyText page);
    void setGroup(PropertyText group);
    // Replaces the value list, with the "value~~display" rule.
    void setValues(std::vector<std::string> values);

    // The normalised forms of a group and a page: a part of the text given,
    // or a literal.
    static std::string_view normalisedGroup(std::string_view group);
    static std::string_view normalisedPage(std::string_view page);

    // The project system's note of whether a store of the tree it looked at
    // last holds this property's name: good while its generation is that
    // of the system's list of stored names. Asked for most property reads
    // of a build, so it lives here rather than in a map.
    struct StoredNote {
        std::uint64_t generation = 0;
        bool held = true;
    };
    mutable StoredNote storedNote;

protected:
    // An empty class for readDefinition and subclasses that fill it in.
    PropertyClass() = default;
    // The raw help text, for subclasses that compute their own.
    std::string_view storedLongText() const { return longText_; }

    std::string name_;
    PropertyText group_;
    PropertyText shortText_;
    PropertyText longText_;
    std::string suffix_;
    std::string attribute_;
    std::optional<std::string> defaultValue_;
    std::string specialValue_;
    PropertyText page_;
    bool readOnly_ = false;
    bool perConfiguration_ = true;
    Type type_ = Boolean;
    std::vector<std::string> values_;
    std::vector<std::string> displayValues_;
    bool editable_ = false;
    std::int32_t minimum_ = 0;
    std::int32_t maximum_ = 0;
    std::int32_t singleStep_ = 0;
    std::int32_t order_ = 0;
    std::uint32_t flags_ = 0;

    // Fills the fields that readDefinition reads from a <property> element.
    void readDefinitionFields(const XMLElement &element);
    // Cuts group and page to their normal forms; a Boolean without a
    // default gets "No".
    void normalise();
};
