#include "project/property_class.h"

#include "project/xml/xml_element.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr std::array<std::string_view, 18> typeWords = {
    "Boolean", "Integer", "IntegerHex", "IntegerRange", "String", "FileName",
    "ProjFileName", "StringList", "DirPath", "DirPathList", "Enumeration", "Color",
    "Font", "FixedPitchFont", "Custom", "JavaScript", "CommandLine", "COMPort",
};

std::string hexText(std::int32_t value)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%X", static_cast<unsigned>(value));
    return text;
}

std::int32_t unsignedDecimal(const std::string *text)
{
    if (!text)
        return 0;
    return static_cast<std::int32_t>(std::strtoul(text->c_str(), nullptr, 10));
}

std::vector<std::string> splitDroppingEmpty(const std::string &text, char separator)
{
    std::vector<std::string> items;
    std::size_t start = 0;
    while (start <= text.size()) {
        std::size_t end = text.find(separator, start);
        if (end == std::string::npos)
            end = text.size();
        if (end > start)
            items.emplace_back(text, start, end - start);
        start = end + 1;
    }
    return items;
}

} // namespace

std::string_view PropertyClass::typeWord(std::int32_t type)
{
    if (type < 0 || type >= static_cast<std::int32_t>(typeWords.size()))
        return "Unknown";
    return typeWords[static_cast<std::size_t>(type)];
}

std::optional<PropertyClass::Type> PropertyClass::definitionType(std::string_view word)
{
    for (std::int32_t type = Boolean; type <= JavaScript; ++type) {
        if (typeWords[static_cast<std::size_t>(type)] == word)
            return static_cast<Type>(type);
    }
    return std::nullopt;
}

PropertyClass::PropertyClass(std::string name, Type type, PropertyText page, PropertyText group,
                             PropertyText shortText, PropertyText longText,
                             std::optional<std::string> defaultValue, std::int32_t order)
    : name_(std::move(name)), group_(std::move(group)), shortText_(std::move(shortText)),
      longText_(std::move(longText)), defaultValue_(std::move(defaultValue)),
      page_(std::move(page)), type_(type), order_(order)
{
    normalise();
}

PropertyClass::PropertyClass(std::string name, PropertyText page, PropertyText group,
                             PropertyText shortText, PropertyText longText, bool defaultValue,
                             std::int32_t order)
    : PropertyClass(std::move(name), Boolean, std::move(page), std::move(group),
                    std::move(shortText), std::move(longText),
                    std::string(defaultValue ? "Yes" : "No"), order)
{
}

PropertyClass::PropertyClass(std::string name, Type type, std::int32_t minimum,
                             std::int32_t maximum, PropertyText page, PropertyText group,
                             PropertyText shortText, PropertyText longText,
                             std::int32_t defaultValue, std::string specialValue,
                             std::int32_t order)
    : PropertyClass(std::move(name), type, std::move(page), std::move(group),
                    std::move(shortText), std::move(longText),
                    type == IntegerHex ? hexText(defaultValue) : std::to_string(defaultValue),
                    order)
{
    specialValue_ = std::move(specialValue);
    minimum_ = minimum;
    maximum_ = maximum;
    singleStep_ = 1;
}

PropertyClass::PropertyClass(std::string name, Type type, std::vector<std::string> values,
                             std::string suffix, PropertyText page, PropertyText group,
                             PropertyText shortText, PropertyText longText,
                             std::optional<std::string> defaultValue, std::int32_t order,
                             std::uint32_t flags)
    : PropertyClass(std::move(name), type, std::move(page), std::move(group),
                    std::move(shortText), std::move(longText), std::move(defaultValue), order)
{
    suffix_ = std::move(suffix);
    flags_ = flags;
    setValues(std::move(values));
}

PropertyClass PropertyClass::readDefinition(const XMLElement &element)
{
    PropertyClass property;
    property.readDefinitionFields(element);
    property.normalise();
    return property;
}

void PropertyClass::readDefinitionFields(const XMLElement &element)
{
    auto text = [&](const char *attribute) {
        const std::string *value = element.attribute(attribute);
        return value ? *value : std::string();
    };
    name_ = text("name");
    const std::string *typeText = element.attribute("type");
    type_ = typeText ? definitionType(*typeText).value_or(Boolean) : Boolean;
    group_ = text("group");
    shortText_ = text("short");
    longText_ = text("long");
    if (const std::string *value = element.attribute("default"))
        defaultValue_ = *value;
    minimum_ = unsignedDecimal(element.attribute("minimum"));
    maximum_ = unsignedDecimal(element.attribute("maximum"));
    singleStep_ = unsignedDecimal(element.attribute("singlestep"));
    if (const std::string *value = element.attribute("enumeration"))
        setValues(splitDroppingEmpty(*value, ';'));
    specialValue_ = text("specialvalue");
    if (const std::string *value = element.attribute("order"))
        order_ = static_cast<std::int32_t>(std::strtol(value->c_str(), nullptr, 0));
}

void PropertyClass::setValues(std::vector<std::string> values)
{
    values_.clear();
    displayValues_.clear();
    if (values.empty() || values.front().find("~~") == std::string::npos) {
        values_ = std::move(values);
        return;
    }
    for (const std::string &item : values) {
        std::size_t split = item.find("~~");
        if (split == std::string::npos) {
            values_.push_back(item);
            displayValues_.emplace_back();
        } else {
            values_.push_back(item.substr(0, split));
            displayValues_.push_back(item.substr(split + 2));
        }
    }
}

std::vector<std::string> PropertyClass::choices() const
{
    if (type_ == Boolean && values_.empty())
        return {"No", "Yes"};
    return values_;
}

std::string PropertyClass::searchText() const
{
    std::string text = std::string(shortText_.view()) + ' ' + longText();
    if (!values_.empty()) {
        for (const std::string &value : values_)
            text += ' ' + value;
    }
    for (char &c : text)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

void PropertyClass::setPage(PropertyText page)
{
    page_ = page.keeping(normalisedPage(page));
}

void PropertyClass::setGroup(PropertyText group)
{
    group_ = group.keeping(normalisedGroup(group));
}

// Cut before the first " Options" or " Settings". Both begin with a blank,
// so one pass over the blanks finds the earlier; a toolchain's tables ask
// this of every class at every start.
std::string_view PropertyClass::normalisedGroup(std::string_view group)
{
    for (std::size_t at = group.find(' '); at != std::string_view::npos; at = group.find(' ', at + 1)) {
        const std::string_view rest = group.substr(at);
        if (rest.starts_with(" Options") || rest.starts_with(" Settings"))
            return group.substr(0, at);
    }
    return group;
}

std::string_view PropertyClass::normalisedPage(std::string_view page)
{
    if (page == "General" || page == "C/C++" || page == "Linker")
        return "Code";
    if (page == "Debugging")
        return "Debug";
    return page;
}

void PropertyClass::normalise()
{
    group_ = group_.keeping(normalisedGroup(group_));
    page_ = page_.keeping(normalisedPage(page_));
    if (type_ == Boolean && !defaultValue_)
        defaultValue_ = "No";
}
