#include "project/generic_option_set.h"

#include "project/property_class_map.h"
#include "project/xml/xml_element.h"

#include <algorithm>
#include <string_view>

namespace {

struct ToolWord {
    std::string_view word;
    GenericOptionSet::Tool tool;
    const char *page;
};

constexpr ToolWord toolWords[] = {
    {"assembler", GenericOptionSet::Assembler, "Assembler"},
    {"compiler", GenericOptionSet::Compiler, "C/C++"},
    {"c_compiler", GenericOptionSet::CCompiler, "C/C++"},
    {"cpp_compiler", GenericOptionSet::CppCompiler, "C/C++"},
    {"linker", GenericOptionSet::Linker, "Linker"},
};

// The build steps whose option lists take a tool's properties.
std::vector<int> stepsOf(GenericOptionSet::Tool tool)
{
    switch (tool) {
    case GenericOptionSet::Assembler: return {4};
    case GenericOptionSet::Compiler: return {2, 3};
    case GenericOptionSet::CCompiler: return {2};
    case GenericOptionSet::CppCompiler: return {3};
    case GenericOptionSet::Linker: return {7};
    }
    return {};
}

} // namespace

GenericOptionSet::GenericOptionSet(XMLElement &root)
{
    // Unlink all children at once and put back all but the groups, so that
    // taking out many groups stays linear.
    std::vector<XMLNode *> children;
    for (XMLNode *child = root.firstChild; child; child = child->nextSibling)
        children.push_back(child);
    root.firstChild = root.lastChild = nullptr;

    for (XMLNode *child : children) {
        XMLElement *element = child->toElement();
        if (element && element->tagName == "group") {
            element->parent = nullptr;
            element->nextSibling = nullptr;
            groups_.emplace_back(element);
            groupClasses_.push_back(std::make_unique<PropertyValueGroupClass>(element, false));
            if (const std::string *value = element->attribute("default")) {
                const std::string *name = element->attribute("name");
                overrides_.push_back({name ? *name : std::string(), *value});
            }
            continue;
        }
        root.appendChild(child);
        if (!element || element->tagName != "property")
            continue;

        const std::string *tools = element->attribute("tool");
        if (!tools) {
            const std::string *name = element->attribute("name");
            const std::string *value = element->attribute("default");
            if (name && value)
                overrides_.push_back({*name, *value});
            continue;
        }

        auto &property = properties_.emplace_back(std::make_unique<GenericPropertyClass>(*element));
        std::string_view words = *tools;
        std::size_t start = 0;
        while (start <= words.size()) {
            std::size_t end = std::min(words.find(';', start), words.size());
            std::string_view word = words.substr(start, end - start);
            for (const ToolWord &known : toolWords) {
                if (known.word == word) {
                    property->setPage(std::string(known.page));
                    tools_[known.tool].push_back(property.get());
                }
            }
            start = end + 1;
        }
    }
}

GenericOptionSet::~GenericOptionSet() = default;

void GenericOptionSet::activate(PropertyClassMap &map)
{
    if (active_)
        return;
    active_ = true;
    for (const auto &property : properties_)
        replaced_.push_back(map.addPropertyClass(property.get()));
    for (const auto &group : groupClasses_)
        replaced_.push_back(map.addPropertyClass(group.get()));
    for (std::size_t tool = 0; tool < toolCount; ++tool) {
        for (GenericPropertyClass *property : tools_[tool]) {
            for (int step : stepsOf(static_cast<Tool>(tool)))
                map.addToolProperty(property, step);
        }
    }
    for (const DefaultOverride &entry : overrides_) {
        PropertyClass *property = map.propertyClass(entry.name);
        if (!property)
            continue;
        applied_.push_back({property, property->defaultValue()});
        property->setDefaultValue(entry.value);
    }
}

void GenericOptionSet::deactivate(PropertyClassMap &map)
{
    if (!active_)
        return;
    active_ = false;
    for (auto applied = applied_.rbegin(); applied != applied_.rend(); ++applied)
        applied->property->setDefaultValue(applied->oldDefault);
    applied_.clear();
    for (std::size_t tool = 0; tool < toolCount; ++tool) {
        for (GenericPropertyClass *property : tools_[tool]) {
            for (int step : stepsOf(static_cast<Tool>(tool)))
                map.removeToolProperty(property, step);
        }
    }
    const std::size_t options = properties_.size();
    for (std::size_t index = groupClasses_.size(); index-- > 0;)
        map.removePropertyClass(groupClasses_[index].get(), replaced_[options + index]);
    for (std::size_t index = options; index-- > 0;)
        map.removePropertyClass(properties_[index].get(), replaced_[index]);
    replaced_.clear();
}
