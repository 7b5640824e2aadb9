#include "project/macro_property_class.h"

MacroPropertyClass::MacroPropertyClass(std::string macroName, bool systemMacro,
                                       PropertyText description)
    : PropertyClass({}, String, "Properties",
                    systemMacro ? PropertyText("System Macro Values") : PropertyText("(Build Macro Values)"),
                    {}, std::move(description), std::nullopt),
      macroName_(std::move(macroName))
{
    // The title is the name.
    name_.reserve(macroName_.size() + 3);
    name_.append("$(").append(macroName_).append(")");
    shortText_ = name_;
}
