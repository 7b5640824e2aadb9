#include "project/macro_property_class.h"

MacroPropertyClass::MacroPropertyClass(std::string macroName, bool systemMacro,
                                       std::string description)
    : PropertyClass("$(" + macroName + ")", String, "Properties",
                    systemMacro ? "System Macro Values" : "(Build Macro Values)",
                    "$(" + macroName + ")", std::move(description), std::nullopt),
      macroName_(std::move(macroName))
{
}
