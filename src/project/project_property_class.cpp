#include "project/project_property_class.h"

std::string ProjectPropertyClass::optionFor(const std::string &value) const
{
    for (const auto &[option, optionValue] : options_) {
        if (optionValue == value)
            return option;
    }
    return {};
}
