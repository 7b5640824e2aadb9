#include "project/generic_property_class.h"

#include "project/xml/xml_element.h"

#include <cctype>
#include <cstdlib>

namespace {

// Trims the ends and folds each inner run of white space to one blank.
std::string simplified(std::string_view text)
{
    std::string result;
    bool blank = false;
    for (char c : text) {
        if (std::isspace(static_cast<unsigned char>(c))) {
            blank = !result.empty();
            continue;
        }
        if (blank)
            result += ' ';
        blank = false;
        result += c;
    }
    return result;
}

// "-" and the text in the first pair of round brackets, or empty.
std::string bracketOption(const std::string &value)
{
    std::size_t open = value.find('(');
    if (open == std::string::npos)
        return {};
    std::size_t close = value.find(')', open + 1);
    if (close == std::string::npos)
        return {};
    std::string option = "-";
    option.append(value, open + 1, close - open - 1);
    return option;
}

} // namespace

GenericPropertyClass::GenericPropertyClass(const XMLElement &element)
{
    readDefinitionFields(element);
    normalise();

    if (element.hasAttribute("enumeration")) {
        // The values as read, not this class's own choices, which come from
        // the options being built here.
        for (const std::string &value : PropertyClass::choices())
            options_.emplace_back(value, bracketOption(value));
    }

    if (const std::string *values = element.attribute("values")) {
        std::string prefix;
        const std::string *option = element.attribute("option");
        const std::string *option2 = element.attribute("option2");
        if (option) {
            prefix = *option + ";";
        } else if (option2) {
            prefix = *option2;
            options_.emplace_back("None", "");
        }
        std::size_t start = 0;
        while (start <= values->size()) {
            std::size_t end = values->find(';', start);
            if (end == std::string::npos)
                end = values->size();
            std::string item = simplified(std::string_view(*values).substr(start, end - start));
            if (!item.empty())
                options_.emplace_back(item, prefix + item);
            start = end + 1;
        }
    }

    for (const XMLNode *child = element.firstChild; child; child = child->nextSibling) {
        const XMLElement *childElement = child->toElement();
        if (!childElement)
            continue;
        const std::string *value = childElement->attribute("value");
        const std::string *option = childElement->attribute("option");
        if (!value || !option)
            continue;
        options_.emplace_back(*value, *option);
        if (const std::string *value2 = childElement->attribute("value2"))
            options2_.emplace_back(*value2, *option);
    }

    if (const std::string *variant = element.attribute("variant")) {
        variant_ = *variant;
        shortText_ = std::string(shortText_.view()) + " [" + variant_ + "]";
    }
    if (const std::string *order = element.attribute("order"))
        order_ = static_cast<std::int32_t>(std::strtol(order->c_str(), nullptr, 10));
    if (const std::string *append = element.attribute("append"))
        appendText_ = *append;
    if (const std::string *option = element.attribute("option"))
        optionName_ = *option;
}

std::vector<std::string> GenericPropertyClass::choices() const
{
    std::vector<std::string> result;
    result.reserve(options_.size());
    for (const auto &[value, option] : options_)
        result.push_back(value);
    return result;
}
