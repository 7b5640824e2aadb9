#pragma once

#include "project/property_class.h"

#include <map>
#include <string>

// A property of a toolchain table that stands for one command-line option per
// value: it keeps the options, each with the value that it stands for.
class ProjectPropertyClass : public PropertyClass {
public:
    using PropertyClass::PropertyClass;

    // Enters option as the one that stands for value; an option given again
    // takes the new value.
    void addOption(const std::string &option, const std::string &value) { options_[option] = value; }
    // Option to value, in option order.
    const std::map<std::string, std::string> &options() const { return options_; }
    // The first option, in option order, that stands for value; empty if none.
    std::string optionFor(const std::string &value) const;

private:
    std::map<std::string, std::string> options_;
};
