#pragma once

#include "project/project_system.h"
#include "project/standard_property_table.h"

// The project system of every toolchain: adds the tool part of the standard
// property table to the node part that the base holds.
class StandardProjectSystem : public ProjectSystem {
public:
    explicit StandardProjectSystem(SystemMacros *macroTable)
        : ProjectSystem(macroTable), toolProperties(propertyClasses) {}

    ToolProperties toolProperties;
};
