#pragma once

#include "project/property_class.h"

#include <string>
#include <utility>
#include <vector>

class XMLElement;

// A tool option read from a generic option file: a property definition plus
// the command-line text for each of its values.
class GenericPropertyClass : public PropertyClass {
public:
    // (value, command-line option) pairs.
    using OptionList = std::vector<std::pair<std::string, std::string>>;

    // From a <property> element; the page is left for the caller to set.
    explicit GenericPropertyClass(const XMLElement &element);

    // The values of options, in order.
    std::vector<std::string> choices() const override;

    const OptionList &options() const { return options_; }
    const OptionList &options2() const { return options2_; }
    const std::string &variant() const { return variant_; }
    const std::string &appendText() const { return appendText_; }
    // The "option" attribute as written: the option that a property other
    // than an enumeration puts before each argument of its value.
    const std::string &optionName() const { return optionName_; }

private:
    OptionList options_;
    OptionList options2_;
    std::string variant_;
    std::string appendText_;
    std::string optionName_;
};
