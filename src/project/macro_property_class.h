#pragma once

#include "project/property_class.h"

// Describes a macro in a property listing: named and titled "$(<macro>)",
// with the description as its help.
class MacroPropertyClass : public PropertyClass {
public:
    // systemMacro chooses the group "System Macro Values"; build macros go
    // under "(Build Macro Values)".
    MacroPropertyClass(std::string macroName, bool systemMacro, PropertyText description);

    const std::string &macroName() const { return macroName_; }

private:
    std::string macroName_;
};
